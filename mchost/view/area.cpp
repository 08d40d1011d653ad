#include "mchost/view/area.h"

#include "mchost/mdl/transform.h"
#include "mchost/model/model_ref.h"
#include "mchost/model/table_rules.h"
#include "mchost/view/places.h"
#include "mchost/view/seen.h"

namespace host {
namespace {

constexpr Point3d areaOfNothing{100, 75, 0};  // master units

// Around all that the clips leave, in master UOR; however high or low it lies.
std::optional<Range3d> rangeOfClips(const ShownPlace& shown) {
    std::optional<Range3d> left;
    for (const ShownClip& clip : shown.clips) {
        RangeBuilder outline;
        const Transform toMaster = host::toMaster(*clip.parent);
        for (const Point2& p : *clip.outline) outline.add(applyToPoint(toMaster, {p.x, p.y, 0}));
        Range3d box = outline.range();
        if (left) {
            box.low = {std::max(box.low.x, left->low.x), std::max(box.low.y, left->low.y), 0};
            box.high = {std::min(box.high.x, left->high.x), std::min(box.high.y, left->high.y), 0};
        }
        left = box;
    }
    return left;
}

// False when nothing is left.
bool cut(Range3d& range, const Range3d& clip) {
    range.low.x = std::max(range.low.x, clip.low.x);
    range.low.y = std::max(range.low.y, clip.low.y);
    range.high.x = std::min(range.high.x, clip.high.x);
    range.high.y = std::min(range.high.y, clip.high.y);
    return range.low.x <= range.high.x && range.low.y <= range.high.y;
}

// The range of what the view shows of a place, in the axes of the view.
void addPlace(RangeBuilder& all, int32_t view, const ShownPlace& shown) {
    Model& model = *openModel(shown.place);
    const Seen seen(view, model, attachmentOf(*shown.place));
    const Transform toMaster = host::toMaster(*shown.place);
    const std::optional<Range3d> clip = rangeOfClips(shown);
    Transform intoView;
    mdlTMatrix_fromRMatrix(&intoView, &viewRotation(view));
    const std::span<const ElementKey> keys = model.elements.keys();
    rangesOf(model).forEach([&](FilePos position, const Range3d& box) {
        if (!seen(keys[position])) return;
        Range3d range = rangeThrough(toMaster, box);
        if (!clip || cut(range, *clip)) all.add(rangeThrough(intoView, range));
    });
}

// All that it shows; what a view of nothing shows when there is nothing, or nothing that a view can show.
Range3d fittedRange(int32_t view) {
    RangeBuilder all;
    for (const ShownPlace& shown : shownPlaces(view)) addPlace(all, view, shown);
    if (all.any()) {
        const Range3d range = withMargin(all.range());
        if (isViewArea(range.low, range.high - range.low)) return range;
    }
    const double uor = mdlCnv_masterToUOR(nullptr, 1, nullptr);
    return {{}, areaOfNothing * uor};
}

// The range is in the axes of the view.
bool show(int32_t view, const Range3d& range) {
    const Point3d origin = unrotate(viewRotation(view), range.low), extent = range.high - range.low;
    if (!isViewArea(origin, extent)) return false;
    View& changed = viewToChange(view);
    changed.origin = origin;
    changed.extent = extent;
    return true;
}

bool showAnew(int32_t view, const Range3d& range) {
    if (!show(view, range)) return false;
    noteViewChanged(view);
    return true;
}

Point3d middleOf(const Range3d& range) {
    return (range.low + range.high) * 0.5;
}

}  // namespace

const View& lookAt(int32_t view) {
    if (!viewAt(view).isFitted()) show(view, fittedRange(view));
    return viewAt(view);
}

ViewMap viewMap(int32_t view) {
    const View& shown = lookAt(view);
    const ViewSize& size = viewSize(view);
    return {{0, 0, size.width, size.height}, shown.rotation, shown.origin, shown.extent};
}

double viewPixelSize(int32_t view) {
    return 1 / viewMap(view).scale();
}

Range3d shownRange(const View& view) {
    const Point3d low = rotate(view.rotation, view.origin);
    return {low, low + view.extent};
}

Range3d withMargin(Range3d range) {
    const Point3d span = range.high - range.low;
    const double longer = std::max({span.x, span.y, 1.0}), margin = 0.02 * longer;
    const double x = margin + std::max(0.0, 0.01 * longer - span.x), y = margin + std::max(0.0, 0.01 * longer - span.y);
    range.low = range.low - Point3d{x, y, 0};
    range.high = range.high + Point3d{x, y, 0};
    return range;
}

bool setViewArea(int32_t view, const Point3d& origin, const Point3d& extent) {
    if (!isViewArea(origin, extent)) return false;
    View& changed = viewToChange(view);
    changed.origin = origin;
    changed.extent = extent;
    noteViewChanged(view);
    return true;
}

bool setViewWindow(int32_t view, const Point3d& corner, const Point3d& opposite) {
    Range3d range = shownRange(lookAt(view));
    const Point3d a = rotate(viewRotation(view), corner), b = rotate(viewRotation(view), opposite);
    if (!isFinite(a) || !isFinite(b)) return false;
    range.low = {std::min(a.x, b.x), std::min(a.y, b.y), range.low.z};
    range.high = {std::max(a.x, b.x), std::max(a.y, b.y), range.high.z};
    return showAnew(view, range);
}

bool fitView(int32_t view) {
    return showAnew(view, fittedRange(view));
}

bool zoomView(int32_t view, double factor, const std::optional<Point3d>& about) {
    Range3d range = shownRange(lookAt(view));
    const Point3d fixed = about ? rotate(viewRotation(view), *about) : middleOf(range);
    if (!(factor > 0) || !isFinite(fixed)) return false;
    for (Point3d* const corner : {&range.low, &range.high}) {
        corner->x = fixed.x + (corner->x - fixed.x) / factor;
        corner->y = fixed.y + (corner->y - fixed.y) / factor;
    }
    return showAnew(view, range);
}

bool panView(int32_t view, double right, double up) {
    const Range3d range = shownRange(lookAt(view));
    const Point3d by{right, up, 0};
    return isFinite(by) && showAnew(view, {range.low + by, range.high + by});
}

bool centerView(int32_t view, const Point3d& center) {
    const Point3d by = rotate(viewRotation(view), center) - middleOf(shownRange(lookAt(view)));
    return panView(view, by.x, by.y);
}

bool turnView(int32_t view, const RotMatrix& rotation) {
    const View before = viewAt(view);
    const std::optional<RotMatrix> exact = nearestRotation(rotation);
    if (!exact) return false;
    View& changed = viewToChange(view);
    changed.rotation = *exact;
    if (!before.isFitted()) {
        noteViewChanged(view);
        return true;
    }
    const Point3d middle = unrotate(before.rotation, middleOf(shownRange(before)));
    const Point3d half = before.extent * 0.5, seen = rotate(*exact, middle);
    return showAnew(view, {seen - half, seen + half});
}

}  // namespace host
