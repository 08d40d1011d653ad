// What is attached to models: attaching, detaching, and walks over it.
#include "mchost/mdl/reference.h"

#include <algorithm>
#include <cstring>
#include <filesystem>

#include "mchost/base/paths.h"
#include "mchost/mdl/model.h"
#include "mchost/model/open_files.h"
#include "mchost/model/table_rules.h"
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

// The file that attachments of the place are kept in; FileProblem when they can't be changed.
DesignFile& keeperOf(const ModelRef& place) {
    if (place.parent) throw FileProblem("it is attached itself. Open it to be written.");
    if (!place.file->takesChanges()) throw FileProblem("it is open to be read only. Open it to be written.");
    return *place.file;
}

// How the file is named in what is attached to another: from that one's folder when it lies in there.
std::string nameFrom(const DesignFile& parent, const std::string& path) {
    const std::filesystem::path folder = std::filesystem::path(parent.path()).parent_path();
    const std::filesystem::path relative = std::filesystem::path(path).lexically_relative(folder);
    return relative.empty() || *relative.begin() == ".." ? path : relative.string();
}

// Master units on master units.
Transform byUnits(const Model& from, const Model& to) {
    const double factor = to.uorPerMaster / from.uorPerMaster;
    return {{{factor, 0, 0, 0}, {0, factor, 0, 0}, {0, 0, factor, 0}}};
}

// Changes the attachments of a model, so that it can be taken back.
template <class Change>
void changeAttachments(DesignFile& keeper, Change apply) {
    openFiles().journal.keepAttachments(keeper.model);
    apply(keeper.model.attachments);
    noteAttachmentsChanged(keeper.model);
    openFiles().follow(keeper.place);
}

ModelRef* attach(DesignFile& keeper, const std::string& path, const Transform* toParent, std::vector<ClipPoint> clip) {
    const std::vector<Attachment>& before = keeper.model.attachments;
    Attachment made = {.number = before.empty() ? 1 : before.back().number + 1,
                       .file = nameFrom(keeper, path),
                       .clip = std::move(clip)};
    const DesignFile& file = *openFiles().attachedFile(keeper, made.file);
    made.toParent = toParent ? *toParent : byUnits(file.model, keeper.model);
    if (!isSound(made)) {
        openFiles().dropUnused();
        throw FileProblem("its transform has no way back, or its clip isn't 3 to 5000 points. Give others.");
    }
    changeAttachments(keeper, [&](std::vector<Attachment>& all) { all.push_back(std::move(made)); });
    return keeper.place.below.back().get();
}

void detach(DesignFile& keeper, uint32_t number) {
    changeAttachments(keeper, [&](std::vector<Attachment>& all) {
        std::erase_if(all, [&](const Attachment& attachment) { return number == 0 || attachment.number == number; });
    });
}

const Attachment* openAttachment(ModelRef* handle) {
    const ModelRef* place = handle ? openPlace(handle) : nullptr;
    return place ? attachmentOf(*place) : nullptr;
}

// In master units of the parent for one of the model.
double scaleOf(const ModelRef& place, const Attachment& attachment) {
    const auto& form = attachment.toParent.form;
    const double length3 = length({form[0][0], form[1][0], form[2][0]});
    return place.file ? length3 * place.file->model.uorPerMaster / place.parent->file->model.uorPerMaster : length3;
}

bool* switchOf(Attachment& attachment, int32_t parameter) {
    if (parameter == MDL_REFERENCE_SHOWN) return &attachment.shown;
    return parameter == MDL_REFERENCE_HIDDEN ? &attachment.hidden : nullptr;
}

}  // namespace
}  // namespace host

using namespace host;

// ---- attaching ----

int mdlRefFile_attach(ModelRef** placeP, ModelRef* parent, const char* fileName, const Transform* toParent,
                      const Point3d* clip, int32_t clipCount) noexcept {
    const char* given = fileName ? fileName : "";
    return withFile("attach the design file", given, [&] {
        ModelRef* to = openPlace(parent);
        if (!to) throw FileProblem("the model that it is to be shown in isn't open. Open that first.");
        if (*given == '\0') throw FileProblem("no name was given. Give one.");
        std::vector<ClipPoint> corners;
        for (int32_t i = 0; clip && i < clipCount; ++i) corners.push_back({clip[i].x, clip[i].y});
        ModelRef* made = attach(keeperOf(*to), fullPath(given), toParent, std::move(corners));
        if (placeP) *placeP = made;
    });
}

int mdlRefFile_detach(int32_t number) noexcept {
    DesignFile* active = openFile(nullptr);
    const auto isIts = [&](const Attachment& attachment) { return attachment.number == static_cast<uint32_t>(number); };
    if (!active || (number != -1 && std::ranges::none_of(active->model.attachments, isIts))) return MDL_ERROR;
    return withFile("detach design files from", active->name(),
                    [&] { detach(keeperOf(active->place), number < 0 ? 0 : static_cast<uint32_t>(number)); });
}

int mdlRefFile_detachModel(ModelRef* model) noexcept {
    const Attachment* attachment = openAttachment(model);
    if (!attachment) return MDL_ERROR;
    return withFile("detach the design file", attachment->file,
                    [&] { detach(keeperOf(*model->parent), model->number); });
}

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
        std::ranges::transform(attachment->clip, corners, [](const ClipPoint& p) { return Point3d{p.x, p.y, 0}; });
    return MDL_SUCCESS;
}

int mdlRefFile_getParameters(void* valueP, int32_t parameter, ModelRef* model) noexcept {
    const Attachment* attachment = openAttachment(model);
    if (!attachment || !valueP) return MDL_ERROR;
    if (parameter == MDL_REFERENCE_SCALE) {
        const double scale = scaleOf(*model, *attachment);
        std::memcpy(valueP, &scale, sizeof scale);
        return MDL_SUCCESS;
    }
    const bool* flag = switchOf(const_cast<Attachment&>(*attachment), parameter);
    if (!flag && parameter != MDL_REFERENCE_FOUND) return MDL_ERROR;
    const int32_t value = flag ? *flag : model->file != nullptr;
    std::memcpy(valueP, &value, sizeof value);
    return MDL_SUCCESS;
}

int mdlRefFile_setParameters(const void* valueP, int32_t parameter, ModelRef* model) noexcept {
    const Attachment* attachment = openAttachment(model);
    Attachment none;
    if (!attachment || !valueP || !switchOf(none, parameter)) return MDL_ERROR;
    int32_t value = 0;
    std::memcpy(&value, valueP, sizeof value);
    return withFile("change how the design file is shown:", attachment->file, [&] {
        changeAttachments(keeperOf(*model->parent), [&](std::vector<Attachment>& all) {
            *switchOf(*std::ranges::find(all, model->number, &Attachment::number), parameter) = value != 0;
        });
    });
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
