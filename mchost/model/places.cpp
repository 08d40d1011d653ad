// The places below those of open files: what is attached to their models, and to the models attached there.
#include <algorithm>
#include <filesystem>

#include "mchost/base/paths.h"
#include "mchost/base/variables.h"
#include "mchost/mdl/system.h"
#include "mchost/model/open_files.h"
#include "mchost/space/vector.h"

namespace host {
namespace {

namespace fs = std::filesystem;

constexpr size_t mostPlaces = 100'000;

const Attachment* findAttachment(const Model& model, uint32_t number, const std::string& file) {
    const auto found = std::ranges::lower_bound(model.attachments, number, {}, &Attachment::number);
    return found != model.attachments.end() && found->number == number && found->file == file ? &*found : nullptr;
}

// A file that isn't where it was is looked for beside the one that it is attached to, and then in the folders of the
// variable, by its path from there and by its last name.
std::string whereItLies(const fs::path& folder, const fs::path& name) {
    std::vector<fs::path> folders{folder};
    for (const std::string& further : variableEntries("MC_REFERENCES")) folders.emplace_back(systemPath(further));
    std::error_code unknown;
    for (const fs::path& in : folders) {
        for (const fs::path& path : {in / name, in / name.filename()}) {
            if (fs::exists(path, unknown)) return path.lexically_normal().string();
        }
    }
    return (folder / name).lexically_normal().string();
}

}  // namespace

const Attachment* attachmentOf(const ModelRef& place) {
    const bool known = place.parent && place.parent->file;
    return known ? findAttachment(place.parent->file->model, place.number, place.attached) : nullptr;
}

Transform toMaster(const ModelRef& place) {
    const Attachment* attachment = attachmentOf(place);
    return attachment ? toMaster(*place.parent) * attachment->toParent : identityTransform;
}

bool OpenFiles::isShown(const DesignFile& file) const {
    return std::ranges::any_of(places_, [&](const ModelRef* place) { return place->file == &file; });
}

DesignFile* OpenFiles::attachedFile(const DesignFile& to, const std::string& name) {
    const std::string path = whereItLies(fs::path(to.path()).parent_path(), name);
    if (DesignFile* file = openHere(path)) return file;
    const auto known = std::ranges::find_if(
        all_, [&](const Opened& opened) { return isShown(*opened.file) && opened.file->is(path); });
    return known != all_.end() ? known->file.get() : open(path, DesignFile::Use::look, FileKind::designFile);
}

void OpenFiles::makePlace(ModelRef& parent, const Attachment& attachment) {
    if (places_.size() >= mostPlaces) {
        throw FileProblem("more than 100,000 models are shown in it, one in the other. Detach some of them.");
    }
    parent.below.reserve(parent.below.size() + 1);
    auto made = std::make_unique<ModelRef>();
    made->parent = &parent;
    made->number = attachment.number;
    made->attached = attachment.file;
    places_.insert(made.get());
    parent.below.push_back(std::move(made));
}

void OpenFiles::dropBelow(ModelRef& place) noexcept {
    for (const auto& child : place.below) {
        dropBelow(*child);
        places_.erase(child.get());
    }
    place.below.clear();
    place.belowAsOf = UINT64_MAX;
}

// Takes the places out whose attachment isn't there any more, and makes those of new ones.
void OpenFiles::matchPlaces(ModelRef& place) {
    std::erase_if(place.below, [&](const std::unique_ptr<ModelRef>& child) {
        if (attachmentOf(*child)) return false;
        dropBelow(*child);
        places_.erase(child.get());
        return true;
    });
    for (const Attachment& attachment : place.file->model.attachments) {
        const auto isIts = [&](const auto& child) { return child->number == attachment.number; };
        if (std::ranges::none_of(place.below, isIts)) makePlace(place, attachment);
    }
    std::ranges::sort(place.below, {}, [](const auto& child) { return child->number; });
}

bool OpenFiles::isToldFirst(const std::string& what) {
    return told_.insert(what).second;
}

// Whether the place shows a model that it lies in itself.
bool OpenFiles::closesCircle(const ModelRef& place) {
    const ModelRef* above = place.parent;
    while (above && above->file != place.file) above = above->parent;
    const std::string& name = place.file->name();
    if (above && !place.file->model.attachments.empty() && isToldFirst("circle " + name)) {
        const std::string line = "The design file \"" + name +
                                 "\" is attached within itself. It is shown once more there, and what is attached to "
                                 "it isn't.";
        mdlOutput_messageCenter(MDL_PRIORITY_WARNING, line.c_str(), "", 0);
    }
    return above;
}

void OpenFiles::lookFor(ModelRef& child) {
    const DesignFile& in = *child.parent->file;
    withFile("read the attached design file", child.attached, [&] {
        try {
            child.file = attachedFile(in, child.attached);
        } catch (const FileProblem&) {
            if (isToldFirst(in.path() + " " + child.attached)) throw;
        }
    });
}

void OpenFiles::follow(ModelRef& place) {
    if (!place.file || place.belowAsOf == place.file->model.attachmentChanges || closesCircle(place)) return;
    matchPlaces(place);
    for (const auto& child : place.below) {
        if (!child->file) lookFor(*child);
    }
    place.belowAsOf = place.file->model.attachmentChanges;
    dropUnused();
}

// The file is closed: where it was shown it is looked for anew.
void OpenFiles::hide(const DesignFile& file) noexcept {
    const auto showsIt = [&](const ModelRef* place) { return place->file == &file; };
    for (auto at = std::ranges::find_if(places_, showsIt); at != places_.end();
         at = std::ranges::find_if(places_, showsIt)) {
        ModelRef& place = **at;
        place.file = nullptr;
        place.parent->belowAsOf = UINT64_MAX;
        dropBelow(place);
    }
}

void OpenFiles::dropUnused() {
    const auto isUnused = [&](const Opened& opened) {
        const DesignFile* file = opened.file.get();
        return file != active_ && file != levelLibrary_ && opened.openings == 0 && !isShown(*file);
    };
    for (auto at = std::ranges::find_if(all_, isUnused); at != all_.end(); at = std::ranges::find_if(all_, isUnused)) {
        drop(at->file.get());
    }
}

}  // namespace host
