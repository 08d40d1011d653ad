// Which design files are open, and the calls that open, store and close them.
#include <algorithm>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>

#include "mchost/base/guard.h"
#include "mchost/base/paths.h"
#include "mchost/mdl/files.h"
#include "mchost/mdl/level.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/system.h"
#include "mchost/model/design_file.h"
#include "mchost/session/session.h"

namespace {

unsigned char modes[8];  // the first byte: the open design file is 3D

}  // namespace

unsigned char* mgds_modesP = modes;

namespace host {
namespace {

struct LevelLibrary {
    std::unique_ptr<DesignFile> file;
    std::filesystem::file_time_type time;
};

// Lives for the process; emptied when a session ends.
struct OpenFiles {
    std::unique_ptr<DesignFile> active;
    std::vector<std::unique_ptr<DesignFile>> work;
    LevelLibrary levelLibrary;
    bool switching = false;  // one design file is being exchanged for another
} files;

std::string fullPath(const char* name) {
    return std::filesystem::absolute(systemPath(name)).lexically_normal().string();
}

// "Can't WHAT "NAME": WHY"
int cannot(const char* what, std::string_view name, const FileProblem& problem) {
    return fileProblem(std::string("Can't ") + what + " \"" + std::string(name) + "\": " + problem.what());
}

// Runs a call that gives a file's name; 0, or MDL_ERROR with a line.
template <class Body>
int withFile(const char* what, const char* name, Body body) {
    return guarded(int{MDL_ERROR}, [&]() -> int {
        const char* given = name ? name : "";
        try {
            if (*given == '\0') throw FileProblem("no name was given. Give one.");
            return body(fullPath(given));
        } catch (const FileProblem& problem) {
            return cannot(what, given, problem);
        }
    });
}

void publishActive() {
    const std::string name = files.active ? files.active->name() : std::string();
    std::memcpy(tcbP->designFileName, name.c_str(), name.size() + 1);
    modes[0] = files.active && files.active->model.is3d;
}

void closeActive() {
    if (!files.active) return;
    files.active->close();
    files.active.reset();
    publishActive();
}

// Closes the active file in favour of the next one. When that fails it stays open, and applications hear of it again.
void leaveActive(const std::string& next) {
    if (!files.active) return;
    const std::string name = files.active->name();
    bool told = false;
    try {
        files.active->save();
        fireNewDesignFile(next.c_str(), 0);
        told = true;
        closeActive();
    } catch (const FileProblem& problem) {
        if (told) fireNewDesignFile(name.c_str(), 1);
        throw FileProblem("\"" + name + "\", which is open, can't be closed: " + problem.what());
    }
}

void closeAtSessionEnd() {
    if (files.active) mdlSystem_closeDesignFile();
    while (!files.work.empty())
        if (mdlWorkDgn_closeFile(&files.work.back()->model) != MDL_SUCCESS) markFailed();
    files = {};
    publishActive();
}

void watchSession() {
    static const bool watching = (observeSessionEnd(closeAtSessionEnd), true);
    (void)watching;
}

// Opens `path` in place of the active file, which stays open when that fails. A file that is opened again is closed
// first, so that it isn't its own rival.
void exchangeActive(const std::string& path, bool readOnly) {
    const std::string name = hostName(path);
    if (name.size() >= sizeof tcbP->designFileName) {
        throw FileProblem("its full name is longer than 255 characters. Move it to a folder with a shorter name.");
    }
    const auto use = readOnly ? DesignFile::Use::read : DesignFile::Use::write;
    const bool again = files.active && files.active->is(path);
    std::unique_ptr<DesignFile> next = again ? nullptr : std::make_unique<DesignFile>(path, use);
    leaveActive(name);
    files.active = again ? std::make_unique<DesignFile>(path, use) : std::move(next);
    publishActive();
    fireNewDesignFile(name.c_str(), 1);
}

ModelRef* openWork(const std::string& path, FileKind kind, DesignFile::Use use = DesignFile::Use::look) {
    auto file = std::make_unique<DesignFile>(path, use, kind);
    if (use == DesignFile::Use::write && file->isReadOnly()) {
        throw FileProblem("it or its folder can't be written. Check their permissions, or copy the file first.");
    }
    files.work.push_back(std::move(file));
    return &files.work.back()->model;
}

struct SwitchingScope {
    SwitchingScope() { files.switching = true; }
    ~SwitchingScope() { files.switching = false; }
};

// Leaves no active file behind, however its closing ends.
struct Dropped {
    ~Dropped() {
        if (!files.active) return;
        files.active.reset();
        publishActive();
    }
};

// The level library, read anew when the file has changed. Null without one.
ModelRef* levelLibrary(const std::string& path) {
    LevelLibrary& library = files.levelLibrary;
    std::error_code failed;
    const auto time = std::filesystem::last_write_time(path, failed);
    if (failed) return nullptr;
    if (!library.file || !library.file->is(path) || library.time != time) {
        library.file = std::make_unique<DesignFile>(path, DesignFile::Use::look);
        library.time = time;
    }
    return &library.file->model;
}

}  // namespace

int fileProblem(std::string_view line) {
    mdlOutput_messageCenter(10, std::string(line).c_str(), "", 0);
    return MDL_ERROR;
}

ModelRef* openModel(ModelRef* model) {
    ModelRef* active = files.active ? &files.active->model : nullptr;
    if (model == nullptr || model == active) return active;
    if (files.levelLibrary.file && model == &files.levelLibrary.file->model) return model;
    const bool isWork = std::ranges::any_of(files.work, [&](const auto& file) { return &file->model == model; });
    return isWork ? model : nullptr;
}

ModelRef* writableModel(ModelRef* model) {
    ModelRef* found = openModel(model);
    if (found == nullptr) {
        fileProblem("Can't change a design file that isn't open: open it first.");
        return nullptr;
    }
    if (found->file->takesChanges()) return found;
    fileProblem("Can't change the design file \"" + found->file->name() +
                "\": it is open to be read only. Open it to be written, or copy it first.");
    return nullptr;
}

}  // namespace host

using namespace host;

int mdlSystem_createDesignFile(const char* name, int is3d) {
    return withFile("make the design file", name, [&](const std::string& path) {
        createContainer(path, is3d != 0);
        return MDL_SUCCESS;
    });
}

int mdlSystem_newDesignFile(const char* name, int readOnly) {
    return withFile("open the design file", name, [&](const std::string& path) {
        if (files.switching) throw FileProblem("another one is being opened. Open it when that is done.");
        const SwitchingScope scope;
        watchSession();
        exchangeActive(path, readOnly != 0);
        return MDL_SUCCESS;
    });
}

int mdlSystem_saveDesignFile(void) {
    if (!files.active) return MDL_SUCCESS;
    return withFile("store the design file", files.active->name().c_str(), [](const std::string&) {
        files.active->save();
        return MDL_SUCCESS;
    });
}

int mdlSystem_closeDesignFile(void) {
    if (!files.active) return MDL_ERROR;
    return withFile("close the design file", files.active->name().c_str(), [](const std::string&) {
        if (files.switching) throw FileProblem("another one is being opened. Close it when that is done.");
        const SwitchingScope scope;
        const std::string name = files.active->name();
        const Dropped dropped;
        files.active->save();
        fireNewDesignFile(name.c_str(), 0);
        closeActive();
        return MDL_SUCCESS;
    });
}

int mdlWorkDgn_openFile(ModelRef** modelP, const char* name) {
    if (modelP == nullptr) return MDL_ERROR;
    return withFile("open the design file", name, [&](const std::string& path) {
        watchSession();
        const bool isActive = files.active && files.active->is(path);
        *modelP = isActive ? &files.active->model : openWork(path, FileKind::designFile);
        return MDL_SUCCESS;
    });
}

int mdlWorkDgn_openFileToWrite(ModelRef** modelP, const char* name) {
    if (modelP == nullptr) return MDL_ERROR;
    return withFile("open the design file", name, [&](const std::string& path) {
        watchSession();
        *modelP = openWork(path, FileKind::designFile, DesignFile::Use::write);
        return MDL_SUCCESS;
    });
}

int mdlWorkDgn_openCellLibrary(ModelRef** modelP, const char* name) {
    if (modelP == nullptr) return MDL_ERROR;
    return withFile("open the cell library", name, [&](const std::string& path) {
        watchSession();
        *modelP = openWork(path, FileKind::cellLibrary);
        return MDL_SUCCESS;
    });
}

int mdlWorkDgn_closeFile(ModelRef* model) {
    if (model == nullptr) return MDL_ERROR;
    const auto found = std::ranges::find(files.work, model, [](const auto& file) { return &file->model; });
    if (found == files.work.end()) return model == mdlModelRef_getActive() ? MDL_SUCCESS : MDL_ERROR;
    const std::unique_ptr<DesignFile> file = std::move(*found);
    files.work.erase(found);
    return withFile("close the design file", file->name().c_str(), [&](const std::string&) {
        file->close();
        return MDL_SUCCESS;
    });
}

ModelRef* mdlLevelLibrary_getModelRef(void) {
    return guarded<ModelRef*>(nullptr, []() -> ModelRef* {
        const std::unique_ptr<char, void (*)(void*)> name(mdlSystem_getExpandedCfgVar("MS_LEVELLIB"),
                                                          dlmSystem_mdlFree);
        if (!name || *name == '\0') return nullptr;
        watchSession();
        try {
            return levelLibrary(fullPath(name.get()));
        } catch (const FileProblem& problem) {
            cannot("read the level library from the design file", name.get(), problem);
            return nullptr;
        }
    });
}

// ---- models ----

ModelRef* mdlModelRef_getActive(void) {
    return openModel(nullptr);
}

int mdlModelRef_isReadOnly(ModelRef* model) {
    const ModelRef* found = openModel(model);
    return found == nullptr || found->file->isReadOnly();
}

int mdlModelRef_is3D(ModelRef* model) {
    const ModelRef* found = openModel(model);
    return found != nullptr && found->is3d;
}

double mdlModelRef_getUorPerMaster(ModelRef* model) {
    const ModelRef* found = openModel(model);
    return found ? found->uorPerMaster : 1;
}

uint32_t mdlModelRef_getElementCount(ModelRef* model) {
    const ModelRef* found = openModel(model);
    return found ? found->elements.liveCount() : 0;
}

int mdlModelRef_getRange(ModelRef* model, Range3d* range) {
    return guarded(int{MDL_ERROR}, [&]() -> int {
        ModelRef* found = openModel(model);
        if (found == nullptr || range == nullptr) return MDL_ERROR;
        const std::optional<Range3d> all = modelRange(*found);
        if (!all) return MDL_ERROR;
        *range = *all;
        return MDL_SUCCESS;
    });
}
