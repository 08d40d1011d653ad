#include "mchost/picture/drawing.h"

#include "mchost/element/descriptor.h"
#include "mchost/element/geometry.h"
#include "mchost/element/range.h"

namespace host {
namespace {

Look lookOf(const ElementDescr* node) {
    Look look;
    mdlElement_getEffectiveSymbology(&look.color, &look.weight, &look.style, &look.styleScale, &look.styleWidth,
                                     node->element, node->model);
    look.filled = mdlElement_isFilled(node->element) != 0;
    look.model = node->model;
    return look;
}

// Whether they meet as seen from above.
bool meet(const Range3d& a, const Range3d& b) {
    return a.low.x <= b.high.x && b.low.x <= a.high.x && a.low.y <= b.high.y && b.low.y <= a.high.y;
}

bool isOutside(const ElementDescr* node, const Range3d* range) {
    Range3d own;
    return range && elementRange(node->element, own) && !meet(own, *range);
}

}  // namespace

void draw(const ElementDescr* ed, const Range3d* range, double tolerance, const Pen& pen) {
    std::vector<Point3d> points;
    for (; ed; ed = ed->next) {
        const bool outline = headOf(ed->element).type == MDL_COMPLEX_SHAPE;
        if (!outline && ed->firstChild) draw(ed->firstChild, range, tolerance, pen);
        if (isOutside(ed, range)) continue;
        Look look = lookOf(ed);
        if (pen.adjust && !pen.adjust(ed->element, look)) continue;
        points.clear();
        if (const auto text = textOf(ed->element)) {
            if (text->body.count > 0) pen.text(*text, look);
        } else if (strokeNode(points, ed, tolerance, identityTransform)) {
            pen.line(points, look);
        }
    }
}

}  // namespace host
