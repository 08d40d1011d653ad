// How line weights and line styles look on paper.
#pragma once

#include <array>
#include <cstdint>

// Pen widths of the host's line weights, in millimetres.
// clang-format off
constexpr auto penWidths = std::to_array<double>({
    // 0    1     2     3    4    5    6    7    8    9    10   11   12   13   14   15
    0.1, 0.25, 0.35, 0.5, 0.7, 1.0, 1.5, 2.0, 2.5, 3.0, 3.5, 4.0, 4.5, 5.0, 5.5, 6.0,
});
// clang-format on
constexpr int32_t fallbackWeight = 2;

// A line style of the host on each device that knows dashes.
struct LineStyle {
    int32_t style;
    const char* psDash;  // between the brackets of setdash, in points
    int32_t pclType;     // HP-GL/2 line type
    double pclLength;    // HP-GL/2 pattern length
};

// clang-format off
constexpr auto lineStyles = std::to_array<LineStyle>({
    // style  PostScript dash               PCL type  length
    {  0,     "",                           0,        0.0  },
    {  1,     "0.96 2.4",                   2,        0.25 },
    {  2,     "5.76 3.6",                   2,        1.0  },
    {  3,     "11.28 5.76",                 3,        1.8  },
    {  4,     "14.16 3.6 0.72 3.6",         4,        2.3  },
    {  5,     "17.04 8.4",                  3,        2.7  },
    {  6,     "14.16 3.6 0.72 3.6 0.72 3.6", 6,       2.8  },
    {  7,     "14.16 5.76 7.2 5.76",        5,        3.2  },
});
// clang-format on
static_assert(penWidths.size() == 16 && lineStyles.size() == 8 && lineStyles.back().style == 7);

constexpr double penWidthOf(int32_t weight) {
    return penWidths[0 <= weight && weight < 16 ? static_cast<size_t>(weight) : fallbackWeight];
}

constexpr const LineStyle& lineStyleOf(int32_t style) {
    return lineStyles[0 <= style && style < 8 ? static_cast<size_t>(style) : 0];
}
