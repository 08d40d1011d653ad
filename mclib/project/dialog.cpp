#include "mclib/project/dialog.h"

#include <array>
#include <cstring>

#include "mchost/mdl/dialog.h"
#include "mchost/mdl/files.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/resource.h"
#include "mchost/mdl/system.h"
#include "mclib/frame/errors.h"
#include "mclib/frame/main.h"
#include "mclib/frame/resource_files.h"
#include "mclib/frame/shown_path.h"
#include "mclib/project/records.h"
#include "mclib/project/shared.h"
#include "mclib/project/store.h"

namespace {

using project::projectId;
using project::projectType;

enum { LOAD_TITLE = 54, SAVE_TITLE = 55 };
enum { ERROR_OPEN = 1, ERROR_NO_PROJECT = 7, QUESTION_OVERWRITE = 8, ERROR_WRITE = 9, ERROR_READ_ONLY = 10 };
enum {
    NO_PROJECT_FLAGS = MSGBOX_KIND_2 | MSGBOX_FIRST_64,
    OVERWRITE_FLAGS = MSGBOX_KIND_8 | MSGBOX_FIRST_32 | MSGBOX_SECOND_256,
};
static_assert(NO_PROJECT_FLAGS == 66 && OVERWRITE_FLAGS == 296);
constexpr const char* projectFiles = "*.rsc";
constexpr const char* projectFileTitle = "Prosjekt info";
constexpr int32_t projectFileDefaults = -20001;

void (*projectWritten)() = nullptr;

void report(int flags, int message, const char* file) {
    mclibError_rscMsgBoxPrintf(flags, MCLIB_ERRORS, message, shownPath(file).c_str());
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
    if (!file) return report(MSGBOX_NOTICE, ERROR_OPEN, name);
    const mdl::Resource stored(file.handle(), projectType, projectId);
    if (!stored || stored.bytes().size() < sizeof *mclibpd) return report(NO_PROJECT_FLAGS, ERROR_NO_PROJECT, name);
    std::memcpy(mclibpd, stored.get(), sizeof *mclibpd);
    endTexts(*mclibpd);
}

void saveProject(const char* name) {
    if (mdlResource_createFile(name, projectFileTitle, MDL_RSC_WRITE) != MDL_SUCCESS)
        return report(MSGBOX_NOTICE, ERROR_OPEN, name);
    const mdl::ResourceFile file(name, MDL_RSC_WRITE);
    if (!file) return report(MSGBOX_NOTICE, ERROR_OPEN, name);
    const int status =
        mdlResource_add(file.handle(), projectType, projectId, mclibpd, sizeof *mclibpd, 0, projectFileTitle);
    if (status != MDL_SUCCESS) report(MSGBOX_NOTICE, status == MDL_RSC_READ_ONLY ? ERROR_READ_ONLY : ERROR_WRITE, name);
}

bool mayOverwrite(const char* name) {
    int32_t attributes = 0;
    if (mdlFile_getFileAttributes(&attributes, name) != MDL_SUCCESS) return true;
    return mclibError_rscMsgBoxPrintf(OVERWRITE_FLAGS, MCLIB_ERRORS, QUESTION_OVERWRITE, shownPath(name).c_str()) !=
           MSGBOX_SECOND;
}

// ---- what the buttons do ----

void load(MdlDialog* dialog) {
    char name[256] = "";
    if (mclibUpf_defFileOpen(name, nullptr, projectFiles, nullptr, mclibUtil_getLanguageText(LOAD_TITLE),
                             projectFileDefaults) != MDL_SUCCESS)
        return;
    loadProject(name);
    mdlDialog_itemsSynch(dialog);
}

void save(MdlDialog*) {
    char name[256] = "";
    if (mclibUpf_defFileCreate(name, nullptr, projectFiles, nullptr, mclibUtil_getLanguageText(SAVE_TITLE),
                               projectFileDefaults) == MDL_SUCCESS &&
        mayOverwrite(name))
        saveProject(name);
}

void read(MdlDialog* dialog) {
    mclibProject_readProjectInfoFromDesignFile(mclibpd);
    mdlDialog_itemsSynch(dialog);
}

void write(MdlDialog*) {
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

constexpr auto projectHooks = std::to_array<DialogHook>({
    {20024, projectDialog},
    {20025, button<load>},
    {20026, button<save>},
    {20027, button<read>},
    {20028, button<write>},
});

}  // namespace

void publishProjectHooks() {
    mdlDialog_hookPublish(static_cast<int32_t>(projectHooks.size()), projectHooks.data());
}

void setProjectWritten(void (*function)()) {
    projectWritten = function;
}

int mclibProject_dialogOpen(void) {
    return mdlDialog_open(0, PROJECT_DIALOG) ? MCLIB_SUCCESS : MCLIB_ERROR;
}
