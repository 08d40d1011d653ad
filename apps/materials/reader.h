// Reads a list of materials from a text file; README.md tells its lines.
#pragma once

#include <string>

#include "list.h"

namespace materials {

// A line that fails is told with file, line and caret, and the next ones are read all the same. False when one failed
// or the file can't be read.
bool readList(const std::string& fileName, List& list);

}  // namespace materials
