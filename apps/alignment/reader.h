// The input file of a road, and the attributes that it tells.
#pragma once

#include <optional>
#include <string>

#include "attributes.h"
#include "road.h"

namespace alignment {

// Reads a road over what `begun` says of it, and adds its attributes. Nothing, after one message that tells file, line,
// column and what is wrong, when it can't be read as a whole.
std::optional<Road> readRoad(const std::string& fileName, Road begun, Attributes& attributes);

}  // namespace alignment
