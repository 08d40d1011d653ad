#include "mchost/model/walk.h"

#include <memory>
#include <vector>

#include "mchost/base/guard.h"
#include "mchost/element/compound.h"
#include "mchost/element/descriptor.h"
#include "mchost/element/fill.h"
#include "mchost/element/geometry.h"
#include "mchost/element/layout.h"
#include "mchost/element/range.h"
#include "mchost/mdl/level.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/space/current.h"

namespace host {
namespace {

// Dashes and gaps with a scale of their own.
void takeOwnScales(MdlLook& look, const MSElementBuffer* element) {
    LineStyleParams params;
    if (look.styleScale == 0 || mdlElement_getLineStyle(nullptr, &params, element) != MDL_SUCCESS) return;
    if (params.modifiers & LINE_STYLE_DASH_SCALE) look.dashScale = params.dashScale / look.styleScale;
    if (params.modifiers & LINE_STYLE_GAP_SCALE) look.gapScale = params.gapScale / look.styleScale;
}

MdlLook lookOf(const ElementDescr& node) {
    MdlLook look = {};
    mdlElement_getEffectiveSymbology(&look.color, &look.weight, &look.style, &look.styleScale, &look.styleWidth,
                                     node.element, node.model);
    look.dashScale = look.gapScale = 1;
    takeOwnScales(look, node.element);
    look.filled = mdlElement_isFilled(node.element);
    look.fillColor = fillColorOf(node.element).value_or(-1);
    look.model = node.model;
    return look;
}

bool isComplexShape(const ElementDescr& node) {
    return headOf(node.element).type == MDL_COMPLEX_SHAPE;
}

// Whether they meet as seen from above.
bool meet(const Range3d& a, const Range3d& b) {
    return a.low.x <= b.high.x && b.low.x <= a.high.x && a.low.y <= b.high.y && b.low.y <= a.high.y;
}

class Walk {
  public:
    Walk(const MdlPen& pen, const Transform& current) : pen_(pen), current_(current) {
        if (pen.transform) transformed_ = std::make_unique_for_overwrite<MSElementBuffer>();
    }

    void goAlong(const ElementDescr* ed) {
        for (; ed; ed = ed->next) {
            visit(*ed);
            goAlong(ed->firstChild);
        }
    }

  private:
    // The components of a complex shape are drawn with it.
    bool isSkipped(const ElementDescr& node) const {
        return (node.parent && isComplexShape(*node.parent)) || (pen_.skip && pen_.skip(pen_.userArg, &node) != 0);
    }

    void visit(const ElementDescr& node) {
        if (isSkipped(node)) return;
        const MSElementBuffer* element = node.element;
        if (pen_.transform) {
            element = transformed_.get();
            if (mdlElement_transform(transformed_.get(), node.element, pen_.transform) != MDL_SUCCESS) return;
        }
        if (isOutside(element)) return;
        if (!visitShown(node, element)) give(node, element);
    }

    // The elements that show a compound or a tag.
    bool visitShown(const ElementDescr& node, const MSElementBuffer* element) {
        const int type = headOf(element).type;
        if (!isCompoundType(type) && type != MDL_TAG) return false;
        if (!shown_) shown_ = std::make_unique_for_overwrite<MSElementBuffer>();
        ElementDescr part{};
        part.model = node.model;
        part.parent = const_cast<ElementDescr*>(&node);
        part.element = shown_.get();
        return forEachShown(element, shown_.get(), [&](const MSElementBuffer* shown) {
            if (!pen_.skip || pen_.skip(pen_.userArg, &part) == 0) give(part, shown);
        });
    }

    void give(const ElementDescr& node, const MSElementBuffer* element) {
        if (const auto text = textOf(element)) {
            if (pen_.text && text->body.count > 0) giveText(node, element);
        } else if (pen_.line && stroke(node, element)) {
            giveLine(node, element);
        }
    }

    bool isOutside(const MSElementBuffer* element) const {
        Range3d own;
        return pen_.range && elementRange(element, own) && !meet(own, *pen_.range);
    }

    bool stroke(const ElementDescr& node, const MSElementBuffer* element) {
        points_.clear();
        if (!isComplexShape(node)) return strokeElement(points_, element, pen_.tolerance, current_);
        return pen_.transform ? strokeTransformed(node) : strokeNode(points_, &node, pen_.tolerance, current_);
    }

    bool strokeTransformed(const ElementDescr& node) {
        ElementDescr alone = node;
        alone.next = nullptr;
        mdl::Descr copy;
        return mdlElmdscr_duplicate(copy.out(), &alone) == MDL_SUCCESS &&
               mdlElmdscr_transform(copy.get(), pen_.transform) == MDL_SUCCESS &&
               strokeNode(points_, copy.get(), pen_.tolerance, current_);
    }

    void giveText(const ElementDescr& node, const MSElementBuffer* element) {
        const MdlLook look = lookOf(node);
        pen_.text(pen_.userArg, element, &look);
    }

    void giveLine(const ElementDescr& node, const MSElementBuffer* element) {
        const MdlLook look = lookOf(node);
        pen_.line(pen_.userArg, element, &look, points_.data(), static_cast<int32_t>(points_.size()));
    }

    const MdlPen& pen_;
    const Transform& current_;
    std::unique_ptr<MSElementBuffer> transformed_;  // the element in hand
    std::unique_ptr<MSElementBuffer> shown_;        // what shows it
    std::vector<Point3d> points_;
};

}  // namespace

void walkDescriptor(const ElementDescr* ed, const MdlPen& pen, const Transform& current) {
    Walk(pen, current).goAlong(ed);
}

}  // namespace host

int mdlElmdscr_walk(const ElementDescr* ed, const MdlPen* pen) noexcept {
    if (!pen || !(pen->tolerance > 0)) return MDL_ERROR;
    return host::guarded<int>(MDL_ERROR, [&] {
        const Transform current = host::currentFromWorld();  // the pen may open others meanwhile
        host::walkDescriptor(ed, *pen, current);
        return MDL_SUCCESS;
    });
}
