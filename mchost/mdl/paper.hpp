// How the weights and line styles of elements look on paper, for all who draw there.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace mdl {

// Pen widths in millimetres by weight; other weights are drawn as weight 2.
// clang-format off
inline constexpr auto penWidths = std::to_array<double>({
    // 0    1     2     3    4    5    6    7    8    9    10   11   12   13   14   15
    0.1, 0.25, 0.35, 0.5, 0.7, 1.0, 1.5, 2.0, 2.5, 3.0, 3.5, 4.0, 4.5, 5.0, 5.5, 6.0,
});
// clang-format on
constexpr double penWidthOf(int32_t weight) {
    constexpr size_t otherWeights = 2;
    return penWidths[0 <= weight && weight < 16 ? static_cast<size_t>(weight) : otherWeights];
}
static_assert(penWidths.size() == 16);

// Dashes and gaps in turn, by line style, in points (72 to the inch) and divided by blanks, as PostScript's setdash
// takes them; other styles without a pattern of their own are drawn as style 0.
inline constexpr auto styleDashes = std::to_array<const char*>({
    "",                             // 0 solid
    "0.96 2.4",                     // 1 dots
    "5.76 3.6",                     // 2 medium dashes
    "11.28 5.76",                   // 3 long dashes
    "14.16 3.6 0.72 3.6",           // 4 dash and dot
    "17.04 8.4",                    // 5 longest dashes
    "14.16 3.6 0.72 3.6 0.72 3.6",  // 6 dash and two dots
    "14.16 5.76 7.2 5.76",          // 7 long and short dashes
});
constexpr const char* dashesOfStyle(int32_t style) {
    return styleDashes[0 <= style && style < 8 ? static_cast<size_t>(style) : 0];
}
static_assert(styleDashes.size() == 8);

}  // namespace mdl
