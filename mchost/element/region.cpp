#include "mchost/element/region.h"

#include <algorithm>
#include <memory>
#include <optional>

#include "mchost/base/guard.h"
#include "mchost/element/descriptor.h"
#include "mchost/element/fill.h"
#include "mchost/element/polygons.h"
#include "mchost/mdl/region.h"

namespace host {
namespace {

// The way back from where the points of a plane are seen.
class PlaneMap {
  public:
    // Nothing when the points are seen on one line.
    static std::optional<PlaneMap> of(std::span<const Point3d> points, const Transform& toPlane) {
        const auto seen = [&](size_t i) { return flat(toPlane, points[i]); };
        PlaneMap map{.origin_ = points[0], .seenOrigin_ = seen(0)};
        const auto farthest = [&](auto measure) {
            size_t best = 0;
            for (size_t i = 1; i < points.size(); ++i)
                if (measure(seen(i)) > measure(seen(best))) best = i;
            return best;
        };
        const size_t first = farthest([&](const Point2& p) { return length(map.from(p)); });
        map.seenX_ = map.from(seen(first));
        const size_t second = farthest([&](const Point2& p) { return std::fabs(map.across(map.from(p))); });
        map.seenY_ = map.from(seen(second));
        map.x_ = points[first] - points[0];
        map.y_ = points[second] - points[0];
        const double squared = length(map.seenX_) * length(map.seenX_);
        if (!(std::fabs(map.across(map.seenY_)) > 1e-9 * squared)) return {};
        return map;
    }
    Point3d at(const Point2& p) const {
        const Point2 v = from(p);
        const double whole = across(seenY_), x = cross(v, seenY_) / whole, y = across(v) / whole;
        return origin_ + x_ * x + y_ * y;
    }

    Point3d origin_{}, x_{}, y_{};
    Point2 seenOrigin_{}, seenX_{}, seenY_{};

  private:
    static double length(const Point2& v) { return std::hypot(v.x, v.y); }
    Point2 from(const Point2& p) const { return p - seenOrigin_; }
    double across(const Point2& v) const { return cross(seenX_, v); }
};

// A shape that looks like the element; false when it has more corners than a shape takes.
bool makeShape(MSElementBuffer* out, const MSElementBuffer* like, const std::vector<Point3d>& corners) {
    if (corners.size() >= MDL_MAX_POINTS) return false;
    const int filled = mdlElement_isFilled(like);
    if (mdlShape_create(out, like, corners.data(), static_cast<int32_t>(corners.size()), filled) != MDL_SUCCESS)
        return false;
    const auto color = fillColorOf(like);
    if (!filled || !color) return true;
    const auto index = static_cast<uint32_t>(*color);
    return mdlElement_setFillColor(out, &index) == MDL_SUCCESS;
}

Ring seenRing(std::span<const Point3d> outline, const Transform& toPlane) {
    Ring ring;
    for (const Point3d& p : outline) ring.push_back(flat(toPlane, p));
    return ring;
}

std::optional<std::vector<Point3d>> outlineOfClosed(const ElementDescr* ed, double tolerance) {
    std::vector<Point3d> outline;
    if (!mdlElmdscr_isClosed(ed) || !strokeNode(outline, ed, tolerance, identityTransform)) return {};
    return outline;
}

}  // namespace

int addIntersection(NewChain& to, const ElementDescr* closed, const Rings& with, const Transform& toPlane,
                    double tolerance) {
    const auto outline = outlineOfClosed(closed, tolerance);
    if (!outline) return MDL_REGION_OPEN;
    const auto back = PlaneMap::of(*outline, toPlane);
    if (!back) return MDL_REGION_NO_PLANE;
    const mdl::CurrTransScope inUor(mdl::CurrTransScope::Begin::uor);
    if (!inUor) return MDL_REGION_NO_MEMORY;
    const auto shape = std::make_unique_for_overwrite<MSElementBuffer>();
    NewChain shapes(closed->model);
    for (const Ring& ring : intersectToOutlines({seenRing(*outline, toPlane)}, with)) {
        std::vector<Point3d> corners;
        for (const Point2& p : ring) corners.push_back(back->at(p));
        if (!makeShape(shape.get(), closed->element, corners)) return MDL_REGION_TOO_LARGE;
        shapes.add(shape.get());
    }
    to.add(shapes);
    return MDL_SUCCESS;
}

}  // namespace host

using namespace host;

int mdlElmdscr_intersectShapes(ElementDescr** outPP, const ElementDescr* shape, const ElementDescr* other,
                               double tolerance) noexcept {
    if (!outPP) return MDL_REGION_OPEN;
    *outPP = nullptr;
    if (!shape || !other || !(tolerance > 0)) return MDL_REGION_OPEN;
    return guarded<int>(MDL_REGION_NO_MEMORY, [&]() -> int {
        const auto with = outlineOfClosed(other, tolerance);
        if (!with) return MDL_REGION_OPEN;
        NewChain shapes(shape->model);
        const int status =
            addIntersection(shapes, shape, {seenRing(*with, identityTransform)}, identityTransform, tolerance);
        shapes.give(outPP);
        return status;
    });
}
