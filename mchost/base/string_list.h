// What a string list is made of, for the files of this room.
#pragma once

#include <cstdint>
#include <deque>
#include <string>

#include "mchost/mdl/lists.h"

constexpr int32_t usualLimit = 65535, greatestLimit = 1 << 24;  // members

struct StringList {
    int32_t infoFields;
    int32_t limit;
    std::deque<std::string> texts{};
    std::deque<int32_t> info{};  // infoFields values for each text
};
