// What searches of the drawing share: which elements are looked for, where, and which of them count.
#pragma once

#include "mchost/mdl/owned.hpp"
#include "mclib/design/text_search.h"

namespace mc::design {

// Bounds of a size, both included; a negative one is none.
struct Limits {
    double least, most;

    bool accept(double value) const { return value >= least && (most < 0 || value <= most); }
};

// The levels to look on (null: all), and the look; negative values take any.
struct ElementFilter {
    const MdlBitMask* levels;
    int32_t weight, style, color;

    bool accepts(const MSElementBuffer& element) const;
};

enum class ElementGroup : int32_t { lines = 1, circles, rectangles, texts };

// Has the scan find elements of a group in the active model, one at a time: on the levels of the mask (null: all), and,
// with `inBox`, where their range meets the box between two corners of the current transform, which are cut to whole
// UOR; z doesn't count. False for another group, and when the scan can't be made: no design file, no memory.
bool prepareScan(const mdl::Scan& scan, ElementGroup group, const MdlBitMask* levels, bool inBox, const Point3d& low,
                 const Point3d& high);

// The same box for any scan. False when a corner isn't a finite place.
enum class Depth { all, asTold };
bool setBox(ScanCriteria* criteria, const Point3d& low, const Point3d& high, Depth depth);

// A portion of what a scan finds, from its beginning.
struct Batch {
    static constexpr int32_t most = 64;

    FilePos positions[most];
    int32_t count;
    bool isCut;  // there are more

    explicit Batch(ScanCriteria* criteria);
    const FilePos* begin() const { return positions; }
    const FilePos* end() const { return positions + count; }
};

// Room for an element; null when out of memory, which the user has been told.
using ElementBuffer = mdl::HostPtr<MSElementBuffer>;
ElementBuffer makeElementBuffers(size_t count = 1);

}  // namespace mc::design
