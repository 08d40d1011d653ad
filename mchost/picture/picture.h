// Pictures as files, whatever they show.
#pragma once

#include <functional>
#include <string>

#include "mchost/picture/sheet.h"

namespace host {

struct PictureFrame {
    Range3d range;  // seen from above
    double widthMm;
    double dpi;  // of PNG
};

// Draws on the sheet; what went wrong, or null.
using DrawPicture = std::function<const char*(Sheet&)>;

// Makes the file, of the kind that its suffix tells: whole, or MDL_ERROR with a line in the message centre, and a file
// of that name is as it was.
int writePicture(const std::string& path, const PictureFrame& frame, const DrawPicture& draw);

}  // namespace host
