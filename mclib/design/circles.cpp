// Circles that are drawn as several arcs.
#include "mclib/design/circles.h"

#include <cmath>

#include "mchost/mdl/element.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/vector.h"

namespace mc::design {

std::optional<Arc> arcOf(const MSElementBuffer& element) {
    Arc arc = {};
    if (mdlArc_extract(&arc.center, &arc.primary, &arc.secondary, &arc.rotation, nullptr, &arc.sweep, &element) !=
        MDL_SUCCESS)
        return {};
    return arc;
}

bool Arc::belongsTo(const Arc& first) const {
    constexpr double tolerance = 0.01;
    const double reach = 2 * tolerance * first.primary;
    return primary < (1 + tolerance) * first.primary && primary > first.primary / (1 + tolerance) &&
           (mdlVec_pointEqual(&center, &first.center) != 0 ||
            (std::fabs(center.x - first.center.x) < reach && std::fabs(center.y - first.center.y) < reach));
}

bool ArcCircles::isCircle(const Arc& arc, FilePos position) {
    if (!scan_ || !element_ || visited_.has(position)) return false;
    const double reach = arc.primary;
    const Point3d low = {arc.center.x - reach, arc.center.y - reach, arc.center.z - reach};
    const Point3d high = {arc.center.x + reach, arc.center.y + reach, arc.center.z + reach};
    if (!setBox(scan_.criteria(), low, high, Depth::asTold)) return false;
    const Batch arcs(scan_.criteria());
    if (arcs.count == 0 || done_.has(arcs.positions[0])) return false;
    const double turn = turnOf(arcs, arc);
    for (const FilePos looked : arcs) visited_.add(looked);
    return leastTurn <= turn && turn <= mostTurn;
}

double ArcCircles::turnOf(const Batch& arcs, const Arc& first) {
    double turn = 0;
    for (const FilePos position : arcs) {
        if (mdlElement_read(element_.get(), model_, position) == 0) continue;
        const std::optional<Arc> arc = arcOf(*element_);
        if (arc && arc->belongsTo(first)) turn += std::fabs(arc->sweep);
    }
    return turn;
}

}  // namespace mc::design
