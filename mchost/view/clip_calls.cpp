// What bounds references, for those who copy them.
#include <memory>

#include "mchost/base/guard.h"
#include "mchost/element/polygons.h"
#include "mchost/mdl/clip.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/reference_info.h"
#include "mchost/model/attachments.h"
#include "mchost/model/open_files.h"
#include "mchost/view/shown_part.h"

// In UOR of the active model.
struct ClipDescr {
    host::ShownPart within;
};

namespace host {
namespace {

// What is left of the chain behind all clips; `in` itself when none has cut it.
ElementDescr* clipped(ElementDescr* in, const ClipDescr& boundary) {
    mdl::DescrPtr left;
    for (const auto& [toPlane, area] : boundary.within.parts()) {
        ElementDescr* cut = nullptr;
        const Clipped what = clipDescriptor(&cut, left ? left.get() : in, area, toPlane);
        if (what == Clipped::nothing) return nullptr;
        if (what == Clipped::cut) left.reset(cut);
    }
    return left ? left.release() : in;
}

// ---- what is told of a reference ----

// The corners of a clip in the active model.
Ring inMaster(const ShownClip& clip) {
    const Transform transform = toMaster(*clip.parent);
    Ring ring;
    for (const Point2& p : *clip.outline) {
        const Point3d at = applyToPoint(transform, {p.x, p.y, 0});
        ring.push_back({at.x, at.y});
    }
    return ring;
}

// All of them in one outline, which goes from the first to each of the others and back.
Ring joined(const Rings& rings) {
    Ring all;
    for (const Ring& ring : rings) {
        all.insert(all.end(), ring.begin(), ring.end());
        if (rings.size() == 1) break;
        all.push_back(ring.front());
        if (&ring != &rings.front()) all.push_back(all.front());
    }
    return all;
}

// What lies in all clips.
Ring outlineOf(std::span<const ShownClip> clips) {
    Rings left{inMaster(clips.front())};
    for (const ShownClip& clip : clips.subspan(1)) left = intersectToOutlines(left, {inMaster(clip)});
    return joined(left);
}

bool isShapeOrEllipse(const MSElementBuffer* element) {
    const int type = mdlElement_getType(element);
    return type == MDL_SHAPE || type == MDL_ELLIPSE;
}

// The element of the active model that alone bounds the place; 0 for none.
FilePos clipElementOf(const ModelRef& place, size_t clips) {
    const FilePos element = attachmentOf(place)->clipElement;
    const bool alone = clips == 1 && element != 0 && place.parent == openPlace(nullptr);
    return alone && isShapeOrEllipse(place.parent->file->model.elements.element(element)) ? element : 0;
}

// The corners go with the block.
struct OwnedInfo : MdlReferenceInfo {
    std::vector<Point3d> corners;
};

std::unique_ptr<OwnedInfo> infoOf(const ModelRef& place, int32_t view) {
    const Transform transform = toMaster(place);
    auto info = std::make_unique<OwnedInfo>();
    info->offset = {transform.form[0][3], transform.form[1][3], transform.form[2][3]};
    info->rotation = turnOf(transform).value_or(identityMatrix);
    info->scale = scaleToMaster(place);
    const std::vector<ShownClip> clips = clipsAround(place);
    info->clipElement = clipElementOf(place, clips.size());
    if (clips.empty() || info->clipElement != 0) return info;
    for (const Point2& p : outlineOf(clips))
        info->corners.push_back(rotate(viewRotation(view), {p.x - info->offset.x, p.y - info->offset.y, 0}));
    info->clipCount = static_cast<int32_t>(info->corners.size());
    info->clip = info->corners.data();
    return info;
}

}  // namespace
}  // namespace host

using namespace host;

int mdlClip_getRefBoundary(ClipDescr** clipPP, ModelRef* reference, int32_t view) noexcept {
    if (!clipPP) return MDL_ERROR;
    *clipPP = nullptr;
    if (!openAttachment(reference) || !isView(view)) return MDL_ERROR;
    return guarded<int>(MDL_ERROR, [&] {
        ShownPart within(clipsAround(*reference), identityTransform);
        if (!within.isWhole()) *clipPP = new ClipDescr{std::move(within)};
        return MDL_SUCCESS;
    });
}

int mdlClip_element(ElementDescr** outPP, ElementDescr* in, ModelRef*, const ClipDescr* clip, int32_t) noexcept {
    if (!outPP) return MDL_ERROR;
    *outPP = nullptr;
    if (!in || !clip) return MDL_ERROR;
    return guarded<int>(MDL_ERROR, [&] {
        *outPP = clipped(in, *clip);
        return MDL_SUCCESS;
    });
}

void mdlClip_free(ClipDescr** clipPP) noexcept {
    if (!clipPP) return;
    delete *clipPP;
    *clipPP = nullptr;
}

int mdlRefFile_getInfo(MdlReferenceInfo** infoPP, ModelRef* reference, int32_t view) noexcept {
    if (!infoPP) return MDL_ERROR;
    *infoPP = nullptr;
    if (!openAttachment(reference) || !isView(view)) return MDL_ERROR;
    return guarded<int>(MDL_ERROR, [&] {
        *infoPP = infoOf(*reference, view).release();
        return MDL_SUCCESS;
    });
}

void mdlRefFile_freeInfo(MdlReferenceInfo** infoPP) noexcept {
    if (!infoPP) return;
    delete static_cast<OwnedInfo*>(*infoPP);
    *infoPP = nullptr;
}
