// Attaching and detaching models, and changing how they are shown.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <iterator>

#include "mchost/base/paths.h"
#include "mchost/mdl/reference.h"
#include "mchost/model/attachments.h"
#include "mchost/model/open_files.h"
#include "mchost/model/table_rules.h"
#include "mchost/space/vector.h"

namespace host {
namespace {

namespace fs = std::filesystem;

// The file that attachments of the place are kept in; FileProblem when they can't be changed.
DesignFile& keeperOf(const ModelRef& place) {
    if (place.parent) throw FileProblem("it is attached itself. Open it to be written.");
    if (!place.file->takesChanges()) throw FileProblem("it is open to be read only. Open it to be written.");
    return *place.file;
}

// How the file is named in what is attached to another: from that one's folder, unless the two have nothing but the
// root in common.
std::string nameFrom(const DesignFile& parent, const fs::path& path) {
    const fs::path folder = fs::path(parent.path()).parent_path();
    const auto [end, other] = std::mismatch(folder.begin(), folder.end(), path.begin(), path.end());
    const fs::path relative = path.lexically_relative(folder);
    return std::distance(folder.begin(), end) < 2 || relative.empty() ? path.string() : relative.string();
}

// Why a file couldn't be shown so; null for nothing.
const char* problemOf(const Attachment& attachment) {
    if (!attachment.clip.empty() && !isClip(attachment.clip))
        return "its clip isn't 3 to 5000 corners with finite coordinates. Give others.";
    return isSound(attachment) ? nullptr : "its transform has no way back, or its name is too long. Give others.";
}

void requireSound(const Attachment& attachment) {
    if (const char* const why = problemOf(attachment)) throw FileProblem(why);
}

// Changes the attachments of a model, so that it can be taken back.
template <class Change>
void changeAttachments(DesignFile& keeper, Change apply) {
    openFiles().journal.keepAttachments(keeper.model);
    apply(keeper.model.attachments);
    noteAttachmentsChanged(keeper.model);
    openFiles().follow(keeper.place);
}

Ring cornersOf(const Point3d* clip, int32_t count) {
    Ring corners;
    for (int32_t i = 0; clip && i < count; ++i) corners.push_back({clip[i].x, clip[i].y});
    return corners;
}

// ---- where it lies ----

// Master units on master units.
double unitFactor(const Model& from, const Model& to) {
    return to.uorPerMaster / from.uorPerMaster;
}

Transform placedBy(const MdlRefPlacement& placement, const Model& from, const Model& to) {
    if (!(placement.scale > 0)) throw FileProblem("its scale isn't above 0. Give another one.");
    const std::optional<RotMatrix> turn = nearestRotation(placement.rotation);
    if (!turn) throw FileProblem("its rotation isn't one. Give another one.");
    const double factor = placement.scale * unitFactor(from, to);
    const auto& r = turn->form;
    const auto& [x, y, z] = placement.offset;
    return {{{factor * r[0][0], factor * r[0][1], factor * r[0][2], x},
             {factor * r[1][0], factor * r[1][1], factor * r[1][2], y},
             {factor * r[2][0], factor * r[2][1], factor * r[2][2], z}}};
}

constexpr MdlRefPlacement unplaced{{0, 0, 0}, identityMatrix, 1};

// Nothing for a transform that isn't made of the three.
std::optional<MdlRefPlacement> placementOf(const ModelRef& place, const Attachment& attachment) {
    const auto& f = attachment.toParent.form;
    const std::optional<RotMatrix> rotation = turnOf(attachment.toParent);
    if (!rotation || !place.file) return std::nullopt;
    const double factor = length({f[0][0], f[1][0], f[2][0]});
    const double unit = unitFactor(place.file->model, place.parent->file->model);
    return MdlRefPlacement{{f[0][3], f[1][3], f[2][3]}, *rotation, factor / unit};
}

// ---- attaching ----

// `transformFrom` tells the transform from the model that is attached.
template <class TransformFrom>
ModelRef* attach(DesignFile& keeper, const std::string& path, TransformFrom transformFrom, Ring clip) {
    const std::vector<Attachment>& before = keeper.model.attachments;
    Attachment made = {.number = before.empty() ? 1 : before.back().number + 1,
                       .file = nameFrom(keeper, path),
                       .clip = std::move(clip)};
    const DesignFile& file = *openFiles().attachedFile(keeper, made.file);
    try {
        made.toParent = transformFrom(file.model);
        requireSound(made);
    } catch (const FileProblem&) {
        openFiles().dropUnused();
        throw;
    }
    changeAttachments(keeper, [&](std::vector<Attachment>& all) { all.push_back(std::move(made)); });
    return keeper.place.below.back().get();
}

// As mdlRefFile_attach, for a file that lies as `transformFrom` tells and has the clip that `clip` gives.
template <class Clip, class TransformFrom>
int attachNamed(ModelRef** placeP, ModelRef* parent, const char* fileName, Clip clip,
                TransformFrom transformFrom) noexcept {
    const char* given = fileName ? fileName : "";
    return withFile("attach the design file", given, [&] {
        ModelRef* to = openPlace(parent);
        if (!to) throw FileProblem("the model that it is to be shown in isn't open. Open that first.");
        if (*given == '\0') throw FileProblem("no name was given. Give one.");
        ModelRef* made = attach(
            keeperOf(*to), fullPath(given), [&](const Model& from) { return transformFrom(from, to->file->model); },
            clip());
        if (placeP) *placeP = made;
    });
}

void detach(DesignFile& keeper, uint32_t number) {
    changeAttachments(keeper, [&](std::vector<Attachment>& all) {
        std::erase_if(all, [&](const Attachment& attachment) { return number == 0 || attachment.number == number; });
    });
}

// ---- changing ----

// Gives the attachment of a place that is attached what `apply` makes of it.
template <class Change>
void change(const ModelRef& place, Change apply) {
    DesignFile& keeper = keeperOf(*place.parent);
    Attachment changed = *attachmentOf(place);
    apply(changed);
    requireSound(changed);
    changeAttachments(keeper, [&](std::vector<Attachment>& all) {
        *std::ranges::find(all, changed.number, &Attachment::number) = std::move(changed);
    });
}

template <class Change>
int changeAttachment(ModelRef* model, Change apply) noexcept {
    const Attachment* const attachment = openAttachment(model);
    if (!attachment) return MDL_ERROR;
    return withFile("change how the design file is shown:", attachment->file, [&] { change(*model, apply); });
}

bool* switchOf(Attachment& attachment, int32_t parameter) {
    if (parameter == MDL_REFERENCE_SHOWN) return &attachment.shown;
    return parameter == MDL_REFERENCE_HIDDEN ? &attachment.hidden : nullptr;
}

// The name of a level of the model that is attached; also of one that it hasn't any more, while it is off.
void switchLevel(Attachment& attachment, int32_t view, const std::wstring& name, bool on) {
    LevelNames& off = attachment.levelsOff[static_cast<size_t>(view)];
    if (on)
        off.erase(name);
    else
        off.insert(name);
}

}  // namespace
}  // namespace host

using namespace host;

// ---- attaching ----

int mdlRefFile_attach(ModelRef** placeP, ModelRef* parent, const char* fileName, const Transform* toParent,
                      const Point3d* clip, int32_t clipCount) noexcept {
    const auto corners = [&] { return cornersOf(clip, clipCount); };
    return attachNamed(placeP, parent, fileName, corners, [&](const Model& from, const Model& to) {
        return toParent ? *toParent : placedBy(unplaced, from, to);
    });
}

int mdlRefFile_attachAt(ModelRef** placeP, ModelRef* parent, const char* fileName,
                        const MdlRefPlacement* placement) noexcept {
    return attachNamed(
        placeP, parent, fileName, [] { return Ring(); },
        [&](const Model& from, const Model& to) { return placedBy(placement ? *placement : unplaced, from, to); });
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

// ---- changing ----

int mdlRefFile_setFileName(ModelRef** placeP, const char* fileName, ModelRef* model) noexcept {
    if (!fileName || *fileName == '\0' || !openAttachment(model)) return MDL_ERROR;
    return withFile("attach the design file", fileName, [&] {
        ModelRef& parent = *model->parent;
        const uint32_t number = model->number;
        change(*model, [&](Attachment& attachment) {
            attachment.file = nameFrom(*parent.file, fullPath(fileName));
            openFiles().attachedFile(*parent.file, attachment.file);
        });
        const auto itsNumber = [](const auto& child) { return child->number; };
        if (placeP) *placeP = std::ranges::find(parent.below, number, itsNumber)->get();
    });
}

int mdlRefFile_transform(const Transform* transform, ModelRef* model) noexcept {
    if (!transform) return MDL_ERROR;
    return changeAttachment(model, [&](Attachment& attachment) {
        attachment.toParent = *transform * attachment.toParent;
        for (Point2& corner : attachment.clip) {
            const Point3d moved = applyToPoint(*transform, {corner.x, corner.y, 0});
            corner = {moved.x, moved.y};
        }
    });
}

int mdlRefFile_getPlacement(MdlRefPlacement* placement, ModelRef* model) noexcept {
    const Attachment* const attachment = openAttachment(model);
    const auto found = attachment ? placementOf(*model, *attachment) : std::nullopt;
    if (!found || !placement) return MDL_ERROR;
    *placement = *found;
    return MDL_SUCCESS;
}

int mdlRefFile_setPlacement(const MdlRefPlacement* placement, ModelRef* model) noexcept {
    if (!placement) return MDL_ERROR;
    return changeAttachment(model, [&](Attachment& attachment) {
        if (!model->file) throw FileProblem("the file isn't found, so its units aren't known. Bring it back first.");
        attachment.toParent = placedBy(*placement, model->file->model, model->parent->file->model);
    });
}

int mdlRefFile_setClip(const Point3d* corners, int32_t count, ModelRef* model) noexcept {
    return changeAttachment(model, [&](Attachment& attachment) {
        attachment.clip = cornersOf(corners, count);
        attachment.clipElement = 0;
    });
}

int mdlRefFile_setClipElement(FilePos element, ModelRef* model) noexcept {
    return changeAttachment(model, [&](Attachment& attachment) {
        if (!canClip(model->parent->file->model.elements.element(element)))
            throw FileProblem("its clip is no shape, complex shape or ellipse of this file. Take another element.");
        attachment.clip.clear();
        attachment.clipElement = element;
    });
}

int mdlRefFile_setLevelOn(ModelRef* model, int32_t view, LevelId level, int32_t on) noexcept {
    const Level* const found = openAttachment(model) && model->file ? findLevel(model->file->model, level) : nullptr;
    if (!found || !isView(view)) return MDL_ERROR;
    return changeAttachment(model,
                            [&](Attachment& attachment) { switchLevel(attachment, view, found->name, on != 0); });
}

int mdlRefFile_setParameters(const void* valueP, int32_t parameter, ModelRef* model) noexcept {
    Attachment none;
    if (!valueP || !switchOf(none, parameter)) return MDL_ERROR;
    int32_t value = 0;
    std::memcpy(&value, valueP, sizeof value);
    return changeAttachment(model, [&](Attachment& attachment) { *switchOf(attachment, parameter) = value != 0; });
}
