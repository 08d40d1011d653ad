#include "mchost/command/hits.h"

#include <algorithm>
#include <optional>
#include <tuple>

#include "mchost/element/geometry.h"
#include "mchost/element/range.h"
#include "mchost/element/text.h"
#include "mchost/mdl/transform.h"
#include "mchost/model/design_file.h"
#include "mchost/model/parts.h"
#include "mchost/space/current.h"
#include "mchost/view/area.h"
#include "mchost/view/places.h"
#include "mchost/view/seen.h"
#include "mchost/view/shown_part.h"

namespace host {
namespace {

Point3d flat(const Point3d& p) {
    return {p.x, p.y, 0};
}

template <class Visit>
void forEachCorner(const Range3d& r, Visit visit) {
    for (const double x : {r.low.x, r.high.x}) {
        for (const double y : {r.low.y, r.high.y}) {
            for (const double z : {r.low.z, r.high.z}) visit(Point3d{x, y, z});
        }
    }
}

// The part of the model that lies behind a box of what is seen; nothing when there is no way back.
std::optional<Range3d> windowBehind(Model& model, const Transform& toSeen, const Range3d& box) {
    Transform fromSeen;
    if (!invert(toSeen, fromSeen)) return std::nullopt;
    RangeBuilder seen, window;
    forEachCorner(rangesOf(model).bounds(), [&](const Point3d& p) { seen.add(applyToPoint(toSeen, p)); });
    const double back = seen.range().low.z, front = seen.range().high.z;
    forEachCorner({{box.low.x, box.low.y, back}, {box.high.x, box.high.y, front}},
                  [&](const Point3d& p) { window.add(applyToPoint(fromSeen, p)); });
    return window.range();
}

bool meets(const MSElementBuffer* element, const Range3d& window) {
    Range3d range;
    if (!elementRange(element, range)) return false;
    const auto& [low, high] = range;
    return low.x <= window.high.x && high.x >= window.low.x && low.y <= window.high.y && high.y >= window.low.y &&
           low.z <= window.high.z && high.z >= window.low.z;
}

// Whether a point lies in the box of a text, whose corners go round it.
bool isInBox(const Point3d& at, const std::vector<Point3d>& corners) {
    bool left = true, right = true;
    for (size_t i = 1; i < corners.size(); ++i) {
        const double side = cross(corners[i] - corners[i - 1], at - corners[i - 1]).z;
        left = left && side >= 0;
        right = right && side <= 0;
    }
    return left || right;
}

// Looks at the elements of a model one by one.
class Look {
  public:
    Look(ModelRef& place, const Aim& aim, std::span<const ShownClip> clips)
        : place_(place),
          model_(place.file->model),
          seen_(aim.view, model_, attachmentOf(place)),
          reach_(aim.reach),
          toSeen_(seenFrom(aim.view)),
          shown_(clips, toSeen_) {
        at_ = flat(applyToPoint(toSeen_, aim.point));
        toSeen_ = toSeen_ * toMaster(place);
    }

    std::vector<Hit> hits() {
        const Range3d box = {{at_.x - reach_, at_.y - reach_, 0}, {at_.x + reach_, at_.y + reach_, 0}};
        const auto window = windowBehind(model_, toSeen_, box);
        if (!window) return {};
        std::vector<FilePos> found;
        rangesOf(model_).search(*window, found);
        for (const FilePos position : found) takeParts(position, *window);
        return std::move(hits_);
    }

  private:
    void takeParts(FilePos position, const Range3d& window) {
        uint32_t number = 0;
        forEachNode(model_.elements.record(position), [&](const StoredNode& node) {
            const uint32_t its = number++;
            if (!seen_(node.element->head) || !meets(node.element, window)) return;
            const std::optional<double> distance = distanceTo(node.element);
            if (distance && *distance <= reach_) hits_.push_back({&place_, position, its, *distance});
        });
    }

    // To the nearest of the elements that a compound holds.
    std::optional<double> distanceTo(const MSElementBuffer* element) {
        std::optional<double> nearest;
        forEachPart(element, [&](const MSElementBuffer* part) {
            const auto its = distanceToOutline(part);
            if (its && (!nearest || *its < *nearest)) nearest = its;
        });
        return nearest;
    }

    std::optional<double> distanceToOutline(const MSElementBuffer* element) {
        constexpr double fine = 0.1;
        if (!outlineOf(points_, element, fine * reach_, toSeen_)) return std::nullopt;
        if (shownTextOf(element)) return distanceToText();
        if (shown_.isWhole()) return distanceAlong(points_);
        std::optional<double> nearest;
        for (const std::vector<Point3d>& piece : shown_.piecesOf(points_)) {
            const double its = distanceAlong(piece);
            if (!nearest || its < *nearest) nearest = its;
        }
        return nearest;
    }

    // A text is there as a whole, when the lower left corner of its box is.
    std::optional<double> distanceToText() {
        if (!shown_.holds(points_.front())) return std::nullopt;
        for (Point3d& p : points_) p = flat(p);
        return isInBox(at_, points_) ? 0 : distanceAlong(points_);
    }

    double distanceAlong(std::span<const Point3d> points) const {
        double nearest = distance(at_, flat(points.front()));
        for (size_t i = 1; i < points.size(); ++i) {
            nearest = std::min(nearest, distance(at_, nearestOnSegment(at_, flat(points[i - 1]), flat(points[i]))));
        }
        return nearest;
    }

    ModelRef& place_;
    Model& model_;
    Seen seen_;
    double reach_;
    Transform toSeen_;  // from the model to what is seen
    ShownPart shown_;   // of what is seen
    Point3d at_;        // seen, without depth
    std::vector<Point3d> points_;
    std::vector<Hit> hits_;
};

void sortByDistance(std::vector<Hit>& hits) {
    std::ranges::stable_sort(hits, {},
                             [](const Hit& hit) { return std::tuple(hit.distance, hit.position, hit.number); });
}

}  // namespace

Aim aimAt(const Point3d& point, int32_t view) {
    constexpr double pixels = 10;
    return {point, view, pixels * viewPixelSize(view)};
}

const MSElementBuffer* Hit::element() const {
    return nodeOf(place->file->model.elements.record(position), number);
}

std::vector<Hit> hitsAt(ModelRef& place, const Aim& aim, std::span<const ShownClip> clips) {
    std::vector<Hit> hits = place.file ? Look(place, aim, clips).hits() : std::vector<Hit>{};
    sortByDistance(hits);
    return hits;
}

std::vector<Hit> hitsAnywhere(const Aim& aim) {
    std::vector<Hit> hits;
    for (const ShownPlace& shown : shownPlaces(aim.view)) {
        const std::vector<Hit> its = hitsAt(*shown.place, aim, shown.clips);
        hits.insert(hits.end(), its.begin(), its.end());
    }
    sortByDistance(hits);
    return hits;
}

Transform seenFrom(int32_t view) {
    Transform toSeen;
    mdlTMatrix_fromRMatrix(&toSeen, &viewRotation(view));
    return toSeen;
}

std::vector<FilePos> elementsBehind(Model& model, const Transform& toSeen, const Range3d& seen) {
    std::vector<FilePos> found;
    if (const auto window = windowBehind(model, toSeen, seen)) rangesOf(model).search(*window, found);
    std::ranges::sort(found);
    return found;
}

bool outlineOf(std::vector<Point3d>& points, const MSElementBuffer* element, double tolerance,
               const Transform& transform) {
    points.clear();
    const std::optional<TextView> text = shownTextOf(element);
    if (!text) return strokeElement(points, element, tolerance, transform);
    if (text->body.count == 0) return false;
    const auto [corner, along, up] = textBox(*text);
    for (const Point3d& p : {corner, corner + along, corner + along + up, corner + up, corner})
        points.push_back(applyToPoint(transform, p));
    return true;
}

}  // namespace host
