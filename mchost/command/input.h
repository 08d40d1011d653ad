// What a line of the user means to a command.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "mchost/mdl/types.h"

namespace host {

struct CommandInput {
    enum class Kind { point, move, reset, end } kind;
    Point3d point{};   // master units
    int32_t view = 0;  // 0 to 7
};

// "x,y[,z] [view]" with the view from 1 to 8, which is 1 when it isn't given, and the same behind "move" for the
// cursor; "reset", "r" or nothing; or "end". Nothing for what can't be read.
std::optional<CommandInput> commandInputIn(std::string_view line);

// Refuses, with a line for the user, while no design file is open.
void requireDesignFile();

// Of the active model.
Point3d inUor(const Point3d& masterUnits);

}  // namespace host
