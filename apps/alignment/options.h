// What the user asks for on the command line.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <mclib/app/devices.hpp>
#include "raster.h"

namespace alignment {

struct Options {
    std::string input;  // empty: to be asked for
    std::string out, printer, paper = "A3", picture = "png";
    std::string attributes, saveAttributes, own;  // resource files
    const McPrintDevice* device = nullptr;        // null: by the suffix of `out`
    std::optional<RasterSize> raster;
    double scale = 0, step = 20;
    bool portrait = false, overwrite = false, list = false, last = false;
};

extern const char* const usage;

// With the device set, and `out` without the suffix of the print file. Nothing after a message and the usage.
std::optional<Options> optionsFrom(const std::vector<std::string>& arguments);

}  // namespace alignment
