// A descriptor as what a pen draws: lines, filled outlines and texts, each with its look.
#pragma once

#include <functional>
#include <vector>

#include "mchost/element/text.h"
#include "mchost/mdl/elmdscr.h"
#include "mchost/space/vector.h"

namespace host {

// What an element is drawn with: the symbology in effect for it.
struct Look {
    int32_t color = 0, weight = 0, style = 0;
    double styleScale = 1, styleWidth = 0;
    bool filled = false;
    double gray = noGray;  // 0 (black) to 1 (white): the outline is filled with this, and has no line
    ModelRef* model = nullptr;

    static constexpr double noGray = -1;
};

struct Pen {
    std::function<void(const std::vector<Point3d>& points, const Look& look)> line;
    std::function<void(const TextView& text, const Look& look)> text;
    // May change the look of an element; false leaves it out. None: everything as it is.
    std::function<bool(const MSElementBuffer* element, Look& look)> adjust = nullptr;
};

// Calls the pen for chain and children, in UOR, in their order. Elements without a look of their own (headers,
// application data) and elements outside `range` are left out; `tolerance` is that of strokes, in UOR.
void draw(const ElementDescr* ed, const Range3d* range, double tolerance, const Pen& pen);

// The same for the elements of the active model that meet `range`, whose axes are those of the view; the pen gets them
// in these axes. False when the model can't be read.
bool drawModel(const Range3d& range, const RotMatrix& view, double tolerance, const Pen& pen);

}  // namespace host
