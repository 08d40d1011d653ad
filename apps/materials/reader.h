// Reads a list of materials from a text file; README.md tells its lines.
#pragma once

#include <string>

#include <mclib/app/input.hpp>
#include "list.h"

namespace materials {

// A line that fails is told with file, line and caret, and the next ones are read all the same; so is one with a letter
// that is refused. False when one failed or the file can't be read.
bool readList(const std::string& fileName, mcapp::Input::LetterRefusal letterRefusal, List& list);

}  // namespace materials
