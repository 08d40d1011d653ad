// How line styles look to devices that have patterns of their own (mchost/mdl/paper.hpp has the others).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "mchost/mdl/paper.hpp"

namespace mc {

// A line style of the host on each device that knows dashes.
struct LineStyle {
    const char* psDash;  // between the brackets of setdash, in points
    int32_t pclType;     // HP-GL/2 line type
    double pclLength;    // HP-GL/2 pattern length
};

// clang-format off
constexpr auto lineStyles = std::to_array<LineStyle>({
    // PostScript            PCL type  length
    { mdl::dashesOfStyle(0), 0,        0.0  },
    { mdl::dashesOfStyle(1), 2,        0.25 },
    { mdl::dashesOfStyle(2), 2,        1.0  },
    { mdl::dashesOfStyle(3), 3,        1.8  },
    { mdl::dashesOfStyle(4), 4,        2.3  },
    { mdl::dashesOfStyle(5), 3,        2.7  },
    { mdl::dashesOfStyle(6), 6,        2.8  },
    { mdl::dashesOfStyle(7), 5,        3.2  },
});
// clang-format on
static_assert(lineStyles.size() == mdl::styleDashes.size());

constexpr const LineStyle& lineStyleOf(int32_t style) {
    return lineStyles[0 <= style && style < 8 ? static_cast<size_t>(style) : 0];
}

}  // namespace mc
