#include "mchost/model/open_files.h"

#include <algorithm>
#include <cstring>
#include <optional>

#include "mchost/base/paths.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/system.h"
#include "mchost/session/owned_state.h"
#include "mchost/session/session.h"
#include "mchost/space/view.h"

namespace {

unsigned char modes[8];  // the first byte: the active design file is 3D. Published by its address

}  // namespace

unsigned char* mgds_modesP = modes;

namespace host {
namespace {

// Where the session keeps them, while it does: calls that are made for each element need a short way there.
OpenFiles* made = nullptr;

// Keeps a flag up for as long as this stands.
struct FlagScope {
    explicit FlagScope(bool& raised) : flag(raised) { flag = true; }
    ~FlagScope() { flag = false; }
    bool& flag;
};

}  // namespace

OpenFiles& openFiles() {
    return made ? *made : sessionState<OpenFiles>();
}

OpenFiles::OpenFiles() {
    made = this;
}

OpenFiles::~OpenFiles() {
    for (const Opened& opened : all_) {
        const int status = withFile("close the design file", opened.file->name(), [&] { close(*opened.file); });
        if (status != MDL_SUCCESS) markFailed();
    }
    active_ = nullptr;
    publishActive();
    made = nullptr;
}

ModelRef* OpenFiles::place(ModelRef* handle) const {
    if (!handle || (active_ && handle == &active_->place)) return active_ ? &active_->place : nullptr;
    const bool isFile = std::ranges::any_of(all_, [&](const Opened& opened) { return handle == &opened.file->place; });
    return isFile || places_.contains(handle) ? handle : nullptr;
}

DesignFile* OpenFiles::open(const std::string& path, DesignFile::Use use, FileKind kind) {
    auto file = std::make_unique<DesignFile>(path, use, kind);
    file->model.serial = ++lastSerial_;
    return all_.emplace_back(Opened{std::move(file)}).file.get();
}

OpenFiles::Opened& OpenFiles::entryOf(const DesignFile& file) {
    return *std::ranges::find(all_, &file, [](const Opened& opened) { return opened.file.get(); });
}

const DesignFile& OpenFiles::fileOf(const Model& model) const {
    return *std::ranges::find(all_, &model, [](const Opened& opened) { return &opened.file->model; })->file;
}

Model* OpenFiles::modelOf(uint64_t serial) const {
    const auto found = std::ranges::find_if(all_, [&](const Opened& o) { return o.file->model.serial == serial; });
    return found != all_.end() ? &found->file->model : nullptr;
}

ModelRef* OpenFiles::placeOf(const Model& model) const {
    const auto found = std::ranges::find_if(all_, [&](const Opened& o) { return &o.file->model == &model; });
    return found != all_.end() ? &found->file->place : nullptr;
}

// Closing may fail, and the file stays open then, with what can be taken back in it where that still lies.
void OpenFiles::close(DesignFile& file) {
    if (file.shrinksAtClosing()) journal.forget(file.model);
    file.close();
    journal.forget(file.model);
}

void OpenFiles::drop(DesignFile* file) {
    hide(*file);
    dropBelow(file->place);
    journal.forget(file->model);
    std::erase_if(all_, [&](const Opened& opened) { return opened.file.get() == file; });
    dropUnused();
}

// ---- the active file ----

void OpenFiles::publishActive() const {
    const std::string name = active_ ? active_->name() : std::string();
    std::memcpy(tcbP->designFileName, name.c_str(), name.size() + 1);
    modes[0] = active_ && active_->model.is3d;
}

void OpenFiles::dropActive() {
    told_.clear();
    if (!active_) return;
    drop(std::exchange(active_, nullptr));
    publishActive();
}

// Closes the active file in favour of the next one. When that fails it stays open, and applications hear of it again.
void OpenFiles::leaveActive(const std::string& next) {
    if (!active_) return;
    const std::string name = active_->name();
    bool told = false;
    try {
        active_->save();
        fireNewDesignFile(next.c_str(), 0);
        told = true;
        close(*active_);
        dropActive();
    } catch (const FileProblem& problem) {
        if (told) fireNewDesignFile(name.c_str(), 1);
        throw FileProblem("\"" + name + "\", which is open, can't be closed: " + problem.what());
    }
}

// A file that is opened again is closed first, so that it isn't its own rival.
void OpenFiles::switchActive(const std::string& path, bool readOnly) {
    if (switching_) throw FileProblem("another one is being opened. Open it when that is done.");
    const FlagScope scope(switching_);
    const std::string name = hostName(path);
    if (name.size() >= sizeof tcbP->designFileName) {
        throw FileProblem("its full name is longer than 255 characters. Move it to a folder with a shorter name.");
    }
    const auto use = readOnly ? DesignFile::Use::read : DesignFile::Use::write;
    const bool again = active_ && active_->is(path);
    DesignFile* next = again ? nullptr : open(path, use, FileKind::designFile);
    if (next) ++entryOf(*next).openings;  // holds it till it is the active one
    try {
        leaveActive(name);
    } catch (...) {
        if (next) drop(next);
        throw;
    }
    if (next) --entryOf(*next).openings;
    active_ = again ? open(path, use, FileKind::designFile) : next;
    publishActive();
    fireNewDesignFile(name.c_str(), 1);
    tellViewsChanged();
}

void OpenFiles::closeActive() {
    if (switching_) throw FileProblem("another one is being opened. Close it when that is done.");
    const FlagScope scope(switching_);
    try {
        active_->save();
        fireNewDesignFile(active_->name().c_str(), 0);
        close(*active_);
    } catch (...) {
        dropActive();
        throw;
    }
    dropActive();
}

// ---- files beside it ----

// Writing to it, this session alone knows what it holds.
DesignFile* OpenFiles::openHere(const std::string& path) const {
    if (active_ && active_->is(path)) return active_;
    const auto found = std::ranges::find_if(
        all_, [&](const Opened& opened) { return opened.file->takesChanges() && opened.file->is(path); });
    return found != all_.end() ? found->file.get() : nullptr;
}

ModelRef* OpenFiles::openWork(const std::string& path, FileKind kind, DesignFile::Use use) {
    DesignFile* file = use == DesignFile::Use::look ? openHere(path) : nullptr;
    if (file && file == active_) return &file->place;
    if (!file) file = open(path, use, kind);
    if (use == DesignFile::Use::write && file->isReadOnly()) {
        drop(file);
        throw FileProblem("it or its folder can't be written. Check their permissions, or copy the file first.");
    }
    ++entryOf(*file).openings;
    return &file->place;
}

void OpenFiles::closeWork(DesignFile& file) {
    if (--entryOf(file).openings > 0) return;
    try {
        close(file);
    } catch (...) {
        drop(&file);
        throw;
    }
    drop(&file);
}

void OpenFiles::finishCommand() {
    journal.beginStep("");
    for (const Opened& opened : all_) {
        if (!opened.file->takesChanges()) continue;
        const int status = withFile("store the design file", opened.file->name(), [&] { opened.file->save(); });
        if (status != MDL_SUCCESS) markFailed();
    }
}

ModelRef* OpenFiles::levelLibrary(const std::string& path) {
    std::error_code failed;
    const auto time = std::filesystem::last_write_time(path, failed);
    if (failed) return nullptr;
    if (!levelLibrary_ || !levelLibrary_->is(path) || levelLibraryTime_ != time) {
        levelLibrary_ = open(path, DesignFile::Use::look, FileKind::designFile);
        levelLibraryTime_ = time;
        dropUnused();
    }
    return &levelLibrary_->place;
}

// ---- what the rooms of models ask ----

ModelRef* openPlace(ModelRef* place) noexcept {
    return guarded<ModelRef*>(nullptr, [&] { return openFiles().place(place); });
}

DesignFile* openFile(ModelRef* place) noexcept {
    if (!place && made) return made->active();
    const ModelRef* found = openPlace(place);
    return found ? found->file : nullptr;
}

Model* openModel(ModelRef* place) noexcept {
    DesignFile* file = openFile(place);
    return file ? &file->model : nullptr;
}

Model* writableModel(ModelRef* place) {
    DesignFile* file = openFile(place);
    if (!file) {
        fileProblem("Can't change a design file that isn't open: open it first.");
        return nullptr;
    }
    if (place && openPlace(place)->parent) {
        fileProblem("Can't change the design file \"" + file->name() +
                    "\" where it is attached. Change it as a file of its own.");
        return nullptr;
    }
    if (file->takesChanges()) return &file->model;
    fileProblem("Can't change the design file \"" + file->name() +
                "\": it is open to be read only. Open it to be written, or copy it first.");
    return nullptr;
}

uint64_t activeModelSerial() noexcept {
    const Model* model = openModel(nullptr);
    return model ? model->serial : 0;
}

}  // namespace host
