// What a bit mask is inside.
#pragma once

#include <vector>

#include "mchost/mdl/bitmask.h"

struct MdlBitMask {
    std::vector<bool> bits;
    bool test(uint32_t bit) const { return bit < bits.size() && bits[bit]; }
};
