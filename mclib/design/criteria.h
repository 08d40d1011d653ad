// What searches of the drawing share: which elements are looked for, and which of them count.
#pragma once

#include "mchost/mdl/owned.hpp"
#include "mclib/design/text_search.h"

namespace mc::design {

// The levels to look on (null: all), and the look; negative values take any.
struct ElementFilter {
    const MdlBitMask* levels;
    int32_t weight, style, color;

    bool accepts(const MSElementBuffer& element) const;
};

enum class ElementGroup : int32_t { lines = 1, circles, rectangles, texts };

// Has the scan find elements of a group in the active model, one at a time: on the levels of the mask (null: all), and,
// with `inBox`, where their range meets the box between two corners of the current transform, which are cut to whole
// UOR. False for another group, and when the scan can't be made: no design file, no memory.
bool prepareScan(const mdl::Scan& scan, ElementGroup group, const MdlBitMask* levels, bool inBox, const Point3d& low,
                 const Point3d& high);

}  // namespace mc::design
