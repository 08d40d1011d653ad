// A picture of the sheet in black and white, a bit a pixel, through the library's rasteriser.
#pragma once

#include <string>

#include "drawing.h"
#include "sheet.h"

namespace alignment {

struct RasterSize {
    int width, height;  // pixels
};
constexpr int largestRasterSide = 30000;

// Writes the paper with an upright page on it as a PBM file (P4): as large as fits the pixels, in their middle. False
// after a message.
bool writeRaster(const std::string& name, ElementDescr* page, const Sheet& sheet, RasterSize size);

}  // namespace alignment
