#include "mclib/project/dialog.h"

#include <cstring>

#include "mchost/mdl/dialog.h"
#include "mchost/mdl/files.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/resource.h"
#include "mchost/mdl/system.h"
#include "mclib/frame/errors.h"
#include "mclib/frame/main.h"
#include "mclib/frame/named_messages.hpp"
#include "mclib/frame/resource_files.h"
#include "mclib/frame/shown_path.h"
#include "mclib/project/records.h"
#include "mclib/project/shared.h"
#include "mclib/project/store.h"
#include "resources/ids.h"

namespace mc {

namespace {

using mc::project::projectId;
using mc::project::projectType;

enum {
    NO_PROJECT_FLAGS = MSGBOX_KIND_2 | MSGBOX_FIRST_64,
    OVERWRITE_FLAGS = MSGBOX_KIND_8 | MSGBOX_FIRST_32 | MSGBOX_SECOND_256,
};
constexpr const char* projectFiles = "*.rsc";
constexpr const char* projectFileTitle = "Prosjekt info";
constexpr int32_t projectFileDefaults = -20001;

void (*projectWritten)() = nullptr;

void reportFile(int flags, mc::Error<const char*> message, const char* file) {
    mc::showBox(flags, message, shownPath(file).c_str());
    mdlSystem_noteFailure();
}

// ---- the project resource file: the block as it is, which holds nothing but texts ----

// A stored text may lack its NUL.
void endTexts(mclibProsjektData& project) {
    auto* const bytes = reinterpret_cast<char*>(&project);
    for (const StructField* field = projectFields; field->name; ++field)
        for (uint32_t line = 1; line <= field->count; ++line) bytes[field->offset + line * field->size - 1] = '\0';
}

void loadProject(const char* name) {
    const mdl::ResourceFile file(name, MDL_RSC_READ);
    if (!file) return reportFile(MSGBOX_NOTICE, ids::errors::cantOpen, name);
    const mdl::Resource stored(file.handle(), projectType, projectId);
    if (!stored || stored.bytes().size() < sizeof *mclibpd)
        return reportFile(NO_PROJECT_FLAGS, ids::errors::noProjectData, name);
    std::memcpy(mclibpd, stored.get(), sizeof *mclibpd);
    endTexts(*mclibpd);
}

void saveProject(const char* name) {
    if (mdlResource_createFile(name, projectFileTitle, MDL_RSC_WRITE) != MDL_SUCCESS)
        return reportFile(MSGBOX_NOTICE, ids::errors::cantOpen, name);
    const mdl::ResourceFile file(name, MDL_RSC_WRITE);
    if (!file) return reportFile(MSGBOX_NOTICE, ids::errors::cantOpen, name);
    const int status =
        mdlResource_add(file.handle(), projectType, projectId, mclibpd, sizeof *mclibpd, 0, projectFileTitle);
    if (status == MDL_SUCCESS) return;
    const bool isProtected = status == MDL_RSC_READ_ONLY;
    reportFile(MSGBOX_NOTICE, isProtected ? ids::errors::resourceProtected : ids::errors::resourceNotWritten, name);
}

bool mayOverwrite(const char* name) {
    int32_t attributes = 0;
    if (mdlFile_getFileAttributes(&attributes, name) != MDL_SUCCESS) return true;
    return mc::showBox(OVERWRITE_FLAGS, ids::errors::replaceFile, shownPath(name).c_str()) != MSGBOX_SECOND;
}

// ---- what the buttons do ----

void loadFromFile(MdlDialog* dialog) {
    char name[256] = "";
    if (mclibUpf_defFileOpen(name, nullptr, projectFiles, nullptr, mc::languageText(ids::texts::readProject),
                             projectFileDefaults) != MDL_SUCCESS)
        return;
    loadProject(name);
    mdlDialog_itemsSynch(dialog);
}

void saveToFile(MdlDialog*) {
    char name[256] = "";
    if (mclibUpf_defFileCreate(name, nullptr, projectFiles, nullptr, mc::languageText(ids::texts::saveProject),
                               projectFileDefaults) == MDL_SUCCESS &&
        mayOverwrite(name))
        saveProject(name);
}

void readFromDesign(MdlDialog* dialog) {
    mclibProject_readProjectInfoFromDesignFile(mclibpd);
    mdlDialog_itemsSynch(dialog);
}

void writeToDesign(MdlDialog*) {
    mclibProject_writeProjectInfoToDesignFile(mclibpd);
    if (projectWritten) projectWritten();
}

// ---- hooks ----

void projectDialog(DialogMessage* message) {
    message->handled =
        message->type == DIALOG_CREATE || message->type == DIALOG_INIT || message->type == DIALOG_DESTROY;
    if (message->type == DIALOG_CREATE) mclibProject_readProjectInfoFromDesignFile(mclibpd);
}

template <void (*action)(MdlDialog*)>
void button(DialogMessage* message) {
    message->handled = message->type == ITEM_BUTTON;
    if (message->handled && message->state == 1) action(message->dialog);
}

}  // namespace

const DialogHook projectHooks[] = {
    {ids::hooks::project, projectDialog},
    {ids::hooks::loadProject, button<loadFromFile>},
    {ids::hooks::saveProject, button<saveToFile>},
    {ids::hooks::readProject, button<readFromDesign>},
    {ids::hooks::writeProject, button<writeToDesign>},
    endOfHooks,
};

void setProjectWritten(void (*function)()) {
    projectWritten = function;
}

}  // namespace mc

using namespace mc;

int mclibProject_dialogOpen(void) {
    return mdlDialog_open(0, ids::project::id) ? MCLIB_SUCCESS : MCLIB_ERROR;
}
