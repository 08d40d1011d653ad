#include "apps/common/last_files.h"

#include <mchost/mdl/file_dialogs.h>
#include <mchost/mdl/files.h>
#include <mclib/mclib.h>
#include "apps/common/tell.h"

namespace app {

namespace {

UserFileRecord recordOf(int32_t id) {
    UserFileRecord record = {};
    mdlUserPrefs_getFileName(&record, mclibUpf_getHandle(), id);
    return record;
}

}  // namespace

LastFiles::~LastFiles() {
    mclibUpf_close();
}

bool LastFiles::open() {
    char folder[256];
    if (mclibUpf_getHandle() != 0) return true;
    if (mdlSystem_getenv(folder, "MS_USERPREF", sizeof folder) != MDL_SUCCESS) return false;
    mclibUpf_open(nullptr, variable_, defaultName_);
    return mclibUpf_getHandle() != 0;
}

std::optional<std::string> LastFiles::last(int32_t id) {
    if (!open()) {
        fail("no files are remembered; define MS_USERPREF with the name of a file, beside which they are kept");
        return {};
    }
    const UserFileRecord record = recordOf(id);
    if (record.fileName[0] != '\0') return record.fileName;
    fail(std::string(mclibUpf_getUpfFileName()) + ": no file is remembered yet; name one this time");
    return {};
}

std::optional<std::string> LastFiles::ask(int32_t id, const char* filter, const char* title) {
    char name[256] = "";
    open();
    if (mclibUpf_defFileOpen(name, "", filter, nullptr, title, id) != MDL_SUCCESS) return {};
    return name;
}

void LastFiles::remember(int32_t id, const std::string& name) {
    char full[256];
    if (mdlFile_find(full, name.c_str(), nullptr, nullptr) != MDL_SUCCESS || !open()) return;
    // The first save of a record leaves its lists empty; the second puts the file into them.
    const bool isNew = recordOf(id).fileCount == 0;
    mclibUpf_saveFileName(full, mclibUpf_getHandle(), id);
    if (isNew) mclibUpf_saveFileName(full, mclibUpf_getHandle(), id);
}

}  // namespace app
