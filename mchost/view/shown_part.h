// What the clips around a place leave of lines and points, from wherever they are looked at.
#pragma once

#include <span>
#include <vector>

#include "mchost/view/places.h"
#include "mchost/view/prism.h"

namespace host {

using LinePieces = std::vector<std::vector<Point3d>>;

class ShownPart {
  public:
    // Points are given as `fromMaster` has them from the UOR of the file that is open by itself.
    ShownPart(std::span<const ShownClip> clips, const Transform& fromMaster);

    bool isWhole() const { return prisms_.empty(); }
    bool holds(const Point3d& point) const;
    // The pieces of a line that are left, in order.
    LinePieces piecesOf(std::span<const Point3d> line) const;

  private:
    std::vector<std::shared_ptr<const std::vector<ClipPoint>>> outlines_;
    std::vector<Prism> prisms_;
};

}  // namespace host
