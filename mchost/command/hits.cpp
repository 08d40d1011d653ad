#include "mchost/command/hits.h"

#include <algorithm>
#include <optional>
#include <span>
#include <tuple>

#include "mchost/element/geometry.h"
#include "mchost/element/range.h"
#include "mchost/element/text.h"
#include "mchost/mdl/transform.h"
#include "mchost/model/design_file.h"
#include "mchost/space/current.h"
#include "mchost/view/area.h"
#include "mchost/view/seen.h"

namespace host {
namespace {

// Looks at the elements of a model one by one.
class Look {
  public:
    Look(ModelRef& place, const Aim& aim) : model_(place.file->model), seen_(aim.view, model_), reach_(aim.reach) {
        mdlTMatrix_fromRMatrix(&toSeen_, &viewRotation(aim.view));
        at_ = flat(applyToPoint(toSeen_, aim.point));
        toSeen_ = toSeen_ * toMaster(place);
    }

    std::vector<Hit> hits() {
        Transform fromSeen;
        if (!invert(toSeen_, fromSeen)) return {};
        const Range3d window = windowBehind(fromSeen);
        std::vector<FilePos> found;
        rangesOf(model_).search(window, found);
        for (const FilePos position : found) takeParts(position, window);
        std::ranges::sort(hits_, {}, [](const Hit& hit) { return std::tuple(hit.distance, hit.position, hit.number); });
        return std::move(hits_);
    }

  private:
    static Point3d flat(const Point3d& p) { return {p.x, p.y, 0}; }

    // The part of the model around what is seen there, however deep it lies.
    Range3d windowBehind(const Transform& fromSeen) {
        RangeBuilder seen;
        forEachCorner(rangesOf(model_).bounds(), [&](const Point3d& p) { seen.add(applyToPoint(toSeen_, p)); });
        const double back = seen.range().low.z, front = seen.range().high.z;
        RangeBuilder window;
        forEachCorner({{at_.x - reach_, at_.y - reach_, back}, {at_.x + reach_, at_.y + reach_, front}},
                      [&](const Point3d& p) { window.add(applyToPoint(fromSeen, p)); });
        return window.range();
    }

    template <class Visit>
    static void forEachCorner(const Range3d& r, Visit visit) {
        for (const double x : {r.low.x, r.high.x}) {
            for (const double y : {r.low.y, r.high.y}) {
                for (const double z : {r.low.z, r.high.z}) visit(Point3d{x, y, z});
            }
        }
    }

    void takeParts(FilePos position, const Range3d& window) {
        uint32_t number = 0;
        forEachNode(model_.elements.record(position), [&](const StoredNode& node) {
            const uint32_t its = number++;
            if (!seen_(node.element->head) || !meets(node.element, window)) return;
            const std::optional<double> distance = distanceTo(node.element);
            if (distance && *distance <= reach_) hits_.push_back({position, its, *distance});
        });
    }

    static bool meets(const MSElementBuffer* element, const Range3d& window) {
        Range3d range;
        if (!elementRange(element, range)) return false;
        const auto& [low, high] = range;
        return low.x <= window.high.x && high.x >= window.low.x && low.y <= window.high.y && high.y >= window.low.y &&
               low.z <= window.high.z && high.z >= window.low.z;
    }

    std::optional<double> distanceTo(const MSElementBuffer* element) {
        points_.clear();
        const std::optional<TextView> text = textOf(element);
        if (text) return text->body.count != 0 ? std::optional(distanceTo(textBox(*text))) : std::nullopt;
        constexpr double fine = 0.1;
        if (!strokeElement(points_, element, fine * reach_, toSeen_)) return std::nullopt;
        for (Point3d& p : points_) p = flat(p);
        return distanceToLine();
    }

    // 0 in a text.
    double distanceTo(const TextBox& box) {
        for (const Point3d& p : {box.lowerLeft, box.lowerLeft + box.along, box.lowerLeft + box.along + box.up,
                                 box.lowerLeft + box.up, box.lowerLeft}) {
            points_.push_back(flat(applyToPoint(toSeen_, p)));
        }
        bool left = true, right = true;
        for (size_t i = 1; i < points_.size(); ++i) {
            const double side = cross(points_[i] - points_[i - 1], at_ - points_[i - 1]).z;
            left = left && side >= 0;
            right = right && side <= 0;
        }
        return left || right ? 0 : distanceToLine();
    }

    double distanceToLine() const {
        double nearest = distance(at_, points_.front());
        for (size_t i = 1; i < points_.size(); ++i) {
            nearest = std::min(nearest, distance(at_, nearestOnSegment(at_, points_[i - 1], points_[i])));
        }
        return nearest;
    }

    Model& model_;
    Seen seen_;
    double reach_;
    Transform toSeen_;  // from the model to the axes of the view
    Point3d at_;        // seen, without depth
    std::vector<Point3d> points_;
    std::vector<Hit> hits_;
};

}  // namespace

Aim aimAt(const Point3d& point, int32_t view) {
    constexpr double pixels = 10;
    return {point, view, pixels * viewPixelSize(view)};
}

std::vector<Hit> hitsAt(ModelRef& place, const Aim& aim) {
    return place.file ? Look(place, aim).hits() : std::vector<Hit>{};
}

}  // namespace host
