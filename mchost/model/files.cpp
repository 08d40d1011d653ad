// The calls that open, store and close design files, and what they tell of models.
#include "mchost/mdl/files.h"

#include <memory>

#include "mchost/base/paths.h"
#include "mchost/mdl/level.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/system.h"
#include "mchost/model/open_files.h"
#include "mchost/session/drawing.h"

namespace host {
namespace {

// The same as withFile for a file that is named by a caller: the body gets its path.
template <class Body>
int withNamedFile(const char* what, const char* name, Body body) {
    const char* given = name ? name : "";
    return withFile(what, given, [&] {
        if (*given == '\0') throw FileProblem("no name was given. Give one.");
        body(fullPath(given));
    });
}

int openWork(ModelRef** modelP, const char* what, const char* name, FileKind kind, DesignFile::Use use) {
    if (!modelP) return MDL_ERROR;
    return withNamedFile(what, name, [&](const std::string& path) { *modelP = openFiles().openWork(path, kind, use); });
}

ViewTable* viewsOfActive() {
    Model* const active = openModel(nullptr);
    return active ? &active->views : nullptr;
}

[[maybe_unused]] const bool known = (setDrawingCalls({.getActive = mdlModelRef_getActive,
                                                      .getUorPerMaster = mdlModelRef_getUorPerMaster,
                                                      .lineStyleFromName = mdlLineStyle_numberFromName,
                                                      .getViews = viewsOfActive,
                                                      .finishCommand = [] { openFiles().finishCommand(); },
                                                      .closeDesignFile = mdlSystem_closeDesignFile}),
                                     true);

}  // namespace
}  // namespace host

using namespace host;

int mdlSystem_createDesignFile(const char* name, int is3d) noexcept {
    return withNamedFile("make the design file", name,
                         [&](const std::string& path) { createContainer(path, is3d != 0); });
}

int mdlSystem_newDesignFile(const char* name, int readOnly) noexcept {
    return withNamedFile("open the design file", name,
                         [&](const std::string& path) { openFiles().switchActive(path, readOnly != 0); });
}

int mdlSystem_saveDesignFile(void) noexcept {
    DesignFile* active = openFile(nullptr);
    if (!active) return MDL_SUCCESS;
    return withFile("store the design file", active->name(), [&] { active->saveWithViews(); });
}

int mdlSystem_closeDesignFile(void) noexcept {
    DesignFile* active = openFile(nullptr);
    if (!active) return MDL_ERROR;
    return withFile("close the design file", active->name(), [] { openFiles().closeActive(); });
}

int mdlWorkDgn_openFile(ModelRef** modelP, const char* name) noexcept {
    return openWork(modelP, "open the design file", name, FileKind::designFile, DesignFile::Use::look);
}

int mdlWorkDgn_openFileToWrite(ModelRef** modelP, const char* name) noexcept {
    return openWork(modelP, "open the design file", name, FileKind::designFile, DesignFile::Use::write);
}

int mdlWorkDgn_openCellLibrary(ModelRef** modelP, const char* name) noexcept {
    return openWork(modelP, "open the cell library", name, FileKind::cellLibrary, DesignFile::Use::look);
}

int mdlWorkDgn_closeFile(ModelRef* model) noexcept {
    ModelRef* place = model ? openPlace(model) : nullptr;
    if (!place || place->parent) return MDL_ERROR;
    DesignFile* file = place->file;
    if (file == openFile(nullptr)) return MDL_SUCCESS;
    if (!openFiles().isWork(*file)) return MDL_ERROR;
    return withFile("close the design file", file->name(), [&] { openFiles().closeWork(*file); });
}

ModelRef* mdlLevelLibrary_getModelRef(void) noexcept {
    const std::unique_ptr<char, void (*)(void*)> name(mdlSystem_getExpandedCfgVar("MS_LEVELLIB"), dlmSystem_mdlFree);
    if (!name || *name == '\0') return nullptr;
    ModelRef* library = nullptr;
    withNamedFile("read the level library from the design file", name.get(),
                  [&](const std::string& path) { library = openFiles().levelLibrary(path); });
    return library;
}

// ---- models ----

ModelRef* mdlModelRef_getActive(void) noexcept {
    return openPlace(nullptr);
}

int mdlModelRef_isReadOnly(ModelRef* model) noexcept {
    const DesignFile* file = openFile(model);
    return !file || file->isReadOnly();
}

int mdlModelRef_is3D(ModelRef* model) noexcept {
    const Model* found = openModel(model);
    return found && found->is3d;
}

double mdlModelRef_getUorPerMaster(ModelRef* model) noexcept {
    const Model* found = openModel(model);
    return found ? found->uorPerMaster : 1;
}

uint32_t mdlModelRef_getElementCount(ModelRef* model) noexcept {
    const Model* found = openModel(model);
    return found ? found->elements.liveCount() : 0;
}

int mdlModelRef_getRange(ModelRef* model, Range3d* range) noexcept {
    return guarded(int{MDL_ERROR}, [&]() -> int {
        Model* found = openModel(model);
        if (!found || !range) return MDL_ERROR;
        const std::optional<Range3d> all = modelRange(*found);
        if (!all) return MDL_ERROR;
        *range = *all;
        return MDL_SUCCESS;
    });
}
