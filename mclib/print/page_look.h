// How the elements of a page look on paper: for the page walker, and for those who show pages.
#pragma once

#include <array>
#include <cstdint>

#include "mchost/mdl/element.h"
#include "mchost/mdl/level.h"

namespace mc::print {

// The level with this code lies under everything else on the page, and the colours of its shapes are greys.
constexpr int32_t backgroundLevel = 63;

// A page is drawn in two passes. A filter of 0 or above takes the elements of that level code alone, a negative one
// leaves those of its absolute value out.
constexpr std::array<int32_t, 2> pagePasses = {backgroundLevel, -backgroundLevel};
constexpr bool isInPass(int32_t filter, int32_t levelCode) {
    if (filter >= 0 && levelCode != filter) return false;
    return filter > 0 || levelCode != -filter;
}

// 0 for a level that has none.
inline int32_t codeOfLevel(ModelRef* model, LevelId level) {
    int32_t code = 0;
    mdlLevel_getCode(&code, model, level);
    return code;
}

inline bool isClosedShape(const MSElementBuffer* element) {
    const int type = mdlElement_getType(element);
    return type == MDL_SHAPE || type == MDL_COMPLEX_SHAPE || type == MDL_ELLIPSE;
}

// The grey that a closed shape is filled with, 0 black to 1 white, or noFill: on the background level the colours 100
// (white) to 200 (black) are greys.
constexpr double noFill = -1.0;
constexpr bool isGreyColor(int32_t levelCode, int32_t color) {
    return levelCode == backgroundLevel && 100 <= color && color <= 200;
}
inline double fillOf(const MSElementBuffer* element, int32_t levelCode, int32_t color) {
    if (isGreyColor(levelCode, color)) return 1.0 - (color - 100) * 0.01;
    return mdlElement_isFilled(element) ? 0.0 : noFill;
}

}  // namespace mc::print
