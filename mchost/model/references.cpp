// What is told of attached models, and walks over them.
#include "mchost/mdl/reference.h"

#include <algorithm>
#include <cstring>

#include "mchost/base/paths.h"
#include "mchost/model/attachments.h"
#include "mchost/model/open_files.h"
#include "mchost/space/vector.h"

struct ModelRefIterator {
    std::vector<ModelRef*> places;
    size_t next = 0;
};

namespace host {
namespace {

// Everything below the place, each before what is below it, down to so many levels; 0 is all.
void collectBelow(ModelRef& place, int32_t depth, std::vector<ModelRef*>& places) {
    openFiles().follow(place);
    for (const auto& child : place.below) {
        places.push_back(child.get());
        if (depth != 1) collectBelow(*child, depth - 1, places);
    }
}

// Whether its switch hides the place, or a place around it isn't shown.
bool isHidden(const ModelRef& place) {
    const Attachment* const own = attachmentOf(place);
    if (own->hidden) return true;
    for (const ModelRef* above = place.parent; const Attachment* around = attachmentOf(*above); above = above->parent) {
        if (around->hidden || !around->shown) return true;
    }
    return false;
}

std::optional<int32_t> flagOf(const ModelRef& place, const Attachment& attachment, int32_t parameter) {
    switch (parameter) {
        case MDL_REFERENCE_SHOWN: return attachment.shown;
        case MDL_REFERENCE_FOUND: return place.file != nullptr;
        case MDL_REFERENCE_HIDDEN: return isHidden(place);
        default: return std::nullopt;
    }
}

}  // namespace
}  // namespace host

using namespace host;

// ---- what is told of attachments ----

int mdlModelRef_isReference(ModelRef* model) noexcept {
    return openAttachment(model) ? 1 : 0;
}

ModelRef* mdlModelRef_getParent(ModelRef* model) noexcept {
    const ModelRef* place = openPlace(model);
    return place ? place->parent : nullptr;
}

int mdlRefFile_getNumber(ModelRef* model) noexcept {
    const Attachment* attachment = openAttachment(model);
    return attachment ? static_cast<int>(attachment->number) : 0;
}

int mdlRefFile_getFileName(char* name, int32_t size, ModelRef* model) noexcept {
    const Attachment* attachment = openAttachment(model);
    if (!attachment || !name || size < 1) return MDL_ERROR;
    return guarded<int>(MDL_ERROR, [&]() -> int {
        const std::string full = model->file ? model->file->name() : hostName(attachment->file);
        const size_t copied = std::min(full.size(), static_cast<size_t>(size) - 1);
        std::memcpy(name, full.data(), copied);
        name[copied] = '\0';
        return copied == full.size() ? int{MDL_SUCCESS} : int{MDL_ERROR};
    });
}

int mdlRefFile_getTransform(Transform* toParent, ModelRef* model) noexcept {
    const Attachment* attachment = openAttachment(model);
    if (!attachment || !toParent) return MDL_ERROR;
    *toParent = attachment->toParent;
    return MDL_SUCCESS;
}

int mdlRefFile_getClip(Point3d* corners, int32_t* countP, ModelRef* model) noexcept {
    const Attachment* attachment = openAttachment(model);
    if (!attachment) return MDL_ERROR;
    if (countP) *countP = static_cast<int32_t>(attachment->clip.size());
    if (corners)
        std::ranges::transform(attachment->clip, corners, [](const Point2& p) { return Point3d{p.x, p.y, 0}; });
    return MDL_SUCCESS;
}

int mdlRefFile_getClipElement(FilePos* elementP, ModelRef* model) noexcept {
    const Attachment* attachment = openAttachment(model);
    if (!attachment || !elementP) return MDL_ERROR;
    *elementP = attachment->clipElement;
    return MDL_SUCCESS;
}

int mdlRefFile_isLevelOn(ModelRef* model, int32_t view, LevelId level) noexcept {
    const Attachment* attachment = openAttachment(model);
    const Level* found = attachment && model->file ? findLevel(model->file->model, level) : nullptr;
    return found && isView(view) && !attachment->levelsOff[static_cast<size_t>(view)].contains(found->name);
}

int mdlRefFile_getParameters(void* valueP, int32_t parameter, ModelRef* model) noexcept {
    const Attachment* attachment = openAttachment(model);
    if (!attachment || !valueP) return MDL_ERROR;
    if (parameter == MDL_REFERENCE_SCALE) {
        const double scale = scaleToMaster(*model);
        std::memcpy(valueP, &scale, sizeof scale);
        return MDL_SUCCESS;
    }
    const std::optional<int32_t> flag = flagOf(*model, *attachment, parameter);
    if (!flag) return MDL_ERROR;
    std::memcpy(valueP, &*flag, sizeof *flag);
    return MDL_SUCCESS;
}

// ---- walks ----

int mdlModelRefIterator_create(ModelRefIterator** iteratorP, ModelRef* root, int32_t flags, int32_t depth) noexcept {
    if (!iteratorP) return MDL_ERROR;
    *iteratorP = nullptr;
    ModelRef* place = openPlace(root);
    if (!place || !place->file) return MDL_ERROR;
    return withFile("show all that is attached to", place->file->name(), [&] {
        auto iterator = std::make_unique<ModelRefIterator>();
        if (flags & MDL_ITERATE_ACTIVE) iterator->places.push_back(place);
        if (flags & MDL_ITERATE_REFERENCES) collectBelow(*place, std::max(depth, 0), iterator->places);
        *iteratorP = iterator.release();
    });
}

ModelRef* mdlModelRefIterator_getFirst(ModelRefIterator* iterator) noexcept {
    if (!iterator) return nullptr;
    iterator->next = 0;
    return mdlModelRefIterator_getNext(iterator);
}

ModelRef* mdlModelRefIterator_getNext(ModelRefIterator* iterator) noexcept {
    while (iterator && iterator->next < iterator->places.size()) {
        if (ModelRef* place = openPlace(iterator->places[iterator->next++])) return place;
    }
    return nullptr;
}

void mdlModelRefIterator_free(ModelRefIterator** iteratorP) noexcept {
    if (!iteratorP) return;
    delete *iteratorP;
    *iteratorP = nullptr;
}
