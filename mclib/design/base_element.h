// Base elements of symbols: which elements of a drawing qualify, and where the boxes of texts are told from.
#pragma once

#include <optional>

#include "mclib/design/circles.h"
#include "mclib/design/element_search.h"
#include "mclib/design/pattern.h"

namespace mc::design {

struct BaseElement {
    const MSElementBuffer* element;  // as it was found, or as it was made, until the next one is asked for
    Point3d origin;
    double size;
};

// In the current transform, which is that of master units.
class BaseElements {
  public:
    // `spec` must outlive this, as `done`, the positions of those that were reported, must.
    BaseElements(const SearchElementSpec& spec, const PositionSet& done);

    // Nothing when the element doesn't qualify.
    std::optional<BaseElement> baseOf(const MSElementBuffer& element, FilePos position);

  private:
    // What a visit of the parts of a compound element has come to.
    struct PartVisit {
        BaseElements& bases;
        std::optional<Arc> first;  // of the arcs
        double turn = 0;           // of those that belong to it
        std::optional<BaseElement> found;
    };

    std::optional<BaseElement> plainBaseOf(const MSElementBuffer& element, FilePos position);
    std::optional<BaseElement> baseInCompound(const MSElementBuffer& element);
    static int visitPart(MSElementBuffer* part, void* visit, int32_t order, int32_t offset, ElementDescr*);
    std::optional<BaseElement> basePart(const MSElementBuffer& part);
    std::optional<BaseElement> circlePart(const MSElementBuffer& part, PartVisit& visit);
    bool hasSize(const Arc& arc) const { return sizesA_.accept(arc.primary) && sizesB_.accept(arc.secondary); }
    std::optional<BaseElement> lineOf(const MSElementBuffer& element) const;
    std::optional<BaseElement> circleOf(const MSElementBuffer& element, FilePos position);
    std::optional<BaseElement> ellipseOf(const Arc& arc, const RotMatrix* rotation, const MSElementBuffer& look);
    std::optional<BaseElement> rectangleOf(const MSElementBuffer& element) const;
    std::optional<BaseElement> textOf(const MSElementBuffer& element) const;

    const SearchElementSpec& spec_;
    const ElementFilter filter_;
    const Limits sizesA_, sizesB_;
    const Pattern pattern_;
    ArcCircles arcs_;
    const ElementBuffer made_ = makeElementBuffers();
};

}  // namespace mc::design
