#include "mchost/view/shown_part.h"

#include <algorithm>

#include "mchost/space/current.h"

namespace host {

ShownPart::ShownPart(std::span<const ShownClip> clips, const Transform& fromMaster) {
    for (const ShownClip& clip : clips) {
        Transform toPlane;
        if (invert(fromMaster * toMaster(*clip.parent), toPlane)) parts_.push_back({toPlane, ClipArea(*clip.outline)});
    }
}

bool ShownPart::holds(const Point3d& point) const {
    return std::ranges::all_of(parts_, [&](const Part& part) {
        const Point3d at = applyToPoint(part.toPlane, point);
        return part.area.isInside({at.x, at.y});
    });
}

LinePieces ShownPart::piecesOf(std::span<const Point3d> line) const {
    LinePieces pieces = {{line.begin(), line.end()}};
    for (const Part& part : parts_) {
        LinePieces left;
        for (const std::vector<Point3d>& piece : pieces)
            std::ranges::move(piecesInside(part.area, part.toPlane, piece), std::back_inserter(left));
        pieces = std::move(left);
    }
    return pieces;
}

}  // namespace host
