#include "mchost/view/shown_part.h"

#include <algorithm>

#include "mchost/space/current.h"

namespace host {

ShownPart::ShownPart(std::span<const ShownClip> clips, const Transform& fromMaster) {
    for (const ShownClip& clip : clips) {
        Prism prism{{}, clip.outline.get()};
        if (!invert(fromMaster * toMaster(*clip.parent), prism.intoModel)) continue;
        outlines_.push_back(clip.outline);
        prisms_.push_back(prism);
    }
}

bool ShownPart::holds(const Point3d& point) const {
    return std::ranges::all_of(prisms_, [&](const Prism& prism) { return isInside(prism, point); });
}

LinePieces ShownPart::piecesOf(std::span<const Point3d> line) const {
    LinePieces pieces = {{line.begin(), line.end()}};
    for (const Prism& prism : prisms_) {
        LinePieces left;
        for (const std::vector<Point3d>& piece : pieces)
            std::ranges::move(piecesInside(prism, piece), std::back_inserter(left));
        pieces = std::move(left);
    }
    return pieces;
}

}  // namespace host
