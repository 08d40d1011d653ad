// Reads labels from a text file; README.md tells its lines.
#pragma once

#include <optional>
#include <string>

#include "label.h"

namespace labels {

// A line that fails is told with file, line and caret, and the next ones are read all the same. Nothing when one
// failed; a file without labels fails when it must have some. The attributes that it tells are in the table then. scale
// above 0 stands for the SCALE of the file.
std::optional<LabelFile> readLabels(const std::string& fileName, double scale, bool needsLabels);

}  // namespace labels
