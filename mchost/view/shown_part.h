// What the clips around a place leave of lines and points, from wherever they are looked at.
#pragma once

#include <span>
#include <vector>

#include "mchost/view/places.h"

namespace host {

using LinePieces = std::vector<std::vector<Point3d>>;

class ShownPart {
  public:
    // Points are given as `fromMaster` has them from the UOR of the file that is open by itself.
    ShownPart(std::span<const ShownClip> clips, const Transform& fromMaster);

    // A clip, and the way to its plane from where points are given.
    struct Part {
        Transform toPlane;
        ClipArea area;
    };
    std::span<const Part> parts() const { return parts_; }

    bool isWhole() const { return parts_.empty(); }
    bool holds(const Point3d& point) const;
    // The pieces of a line that are left, in order.
    LinePieces piecesOf(std::span<const Point3d> line) const;

  private:
    std::vector<Part> parts_;
};

}  // namespace host
