// Circles and the arcs that they are drawn with.
#pragma once

#include <optional>

#include "mchost/mdl/model.h"
#include "mclib/design/criteria.h"
#include "mclib/design/position_set.h"

namespace mc::design {

// An arc or an ellipse, which is an arc of a full turn. In the current transform.
struct Arc {
    Point3d center;
    double primary, secondary, sweep;
    RotMatrix rotation;

    bool belongsTo(const Arc& first) const;  // lies on the same circle, to within 1%
};
std::optional<Arc> arcOf(const MSElementBuffer& element);

// The sum of sweeps, in radians, of the arcs that a circle is drawn with.
constexpr double leastTurn = 6.2657, mostTurn = 6.3;

// Finds out which arcs are circles together.
class ArcCircles {
  public:
    explicit ArcCircles(const PositionSet& done) : done_(done) {
        if (scan_) mdlScanCriteria_addSingleElementTypeTest(scan_.criteria(), MDL_ARC);
    }

    // Whether the arcs around go round once with this one. Each arc is asked for once: those that were looked at on
    // the way belong to no other circle. `done` are the positions of circles that need no answer.
    bool isCircle(const Arc& arc, FilePos position);

  private:
    double turnOf(const Batch& arcs, const Arc& first);

    const PositionSet& done_;
    PositionSet visited_;
    ModelRef* const model_ = mdlModelRef_getActive();
    const mdl::Scan scan_{model_};
    const ElementBuffer element_ = makeElementBuffers();
};

}  // namespace mc::design
