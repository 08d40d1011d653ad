// The input file of a road, and the attributes that it tells.
#pragma once

#include <optional>
#include <string>

#include "road.h"

namespace alignment {

// Reads a road, and registers its attributes with the library. Nothing, after one message that tells file, line, column
// and what is wrong, when it can't be read as a whole.
std::optional<Road> readRoad(const std::string& fileName);

}  // namespace alignment
