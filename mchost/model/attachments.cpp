#include "mchost/model/attachments.h"

#include "mchost/base/guard.h"
#include "mchost/element/descriptor.h"
#include "mchost/element/range.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/model/open_files.h"
#include "mchost/model/table_rules.h"
#include "mchost/space/vector.h"

namespace host {
namespace {

// Fine enough for curves that go round a clip, against their size.
double fineTolerance(const Range3d& range) {
    constexpr double fine = 1e-5;
    return std::max(fine * distance(range.low, range.high), 1e-6);
}

}  // namespace

const Attachment* openAttachment(ModelRef* handle) noexcept {
    const ModelRef* const place = handle ? openPlace(handle) : nullptr;
    return place ? attachmentOf(*place) : nullptr;
}

bool canClip(const MSElementBuffer* element) {
    const int type = mdlElement_getType(element);
    return type == MDL_SHAPE || type == MDL_COMPLEX_SHAPE || type == MDL_ELLIPSE;
}

Ring clipCorners(const Model& model, const Attachment& attachment) {
    if (attachment.clipElement == 0) return attachment.clip;
    if (!model.elements.isLive(attachment.clipElement)) return {};
    uint32_t count = 0;
    const mdl::DescrPtr ed(readUnit(model, attachment.clipElement, nullptr, count));
    Range3d range;
    std::vector<Point3d> points;
    if (!ed || !canClip(ed->element) ||
        mdlElmdscr_computeRange(&range.low, &range.high, ed.get(), nullptr) != MDL_SUCCESS ||
        !strokeNode(points, ed.get(), fineTolerance(range), identityTransform) || points.size() < 4)
        return {};
    points.pop_back();  // it ends where it began
    Ring corners;
    for (const Point3d& p : points) corners.push_back({p.x, p.y});
    return corners;
}

std::optional<RotMatrix> turnOf(const Transform& transform) {
    const double factor = length(applyToVector(transform, {1, 0, 0}));
    RotMatrix turn;
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) turn.form[row][column] = transform.form[row][column] / factor;
    }
    return nearestRotation(turn);
}

double scaleToMaster(const ModelRef& place) {
    const Point3d x = applyToVector(toMaster(place), {1, 0, 0});
    const ModelRef* root = &place;
    while (root->parent) root = root->parent;
    const double units = place.file ? place.file->model.uorPerMaster / root->file->model.uorPerMaster : 1;
    return length(x) * units;
}

}  // namespace host
