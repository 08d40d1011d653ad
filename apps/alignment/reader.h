// The input file of a road, and the attributes that it tells.
#pragma once

#include <optional>
#include <string>

#include <mclib/app/input.hpp>
#include "attributes.h"
#include "road.h"

namespace alignment {

// Reads a road over what `begun` says of it, and adds its attributes. Nothing, after a message that tells file, line,
// column and what is wrong, when it can't be read as a whole or has a letter that is refused.
std::optional<Road> readRoad(const std::string& fileName, mcapp::Input::LetterRefusal letterRefusal, Road begun,
                             Attributes& attributes);

}  // namespace alignment
