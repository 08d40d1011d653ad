// The files that an application's user worked with last. They stand in the application's own preference file, in the
// folder of the host's (the configuration variable MS_USERPREF), each kind of file in a record of its own.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <mchost/mdl/file_dialogs.h>
#include <mchost/mdl/files.h>
#include <mclib/mclib.h>
#include <mclib/app/tell.hpp>

namespace mcapp {

class LastFiles {
  public:
    // The preference file has the name that the configuration variable `variable` tells, or `defaultName`. It is
    // opened, and made, when it is needed; without MS_USERPREF there is none, and nothing is remembered.
    LastFiles(const char* variable, const char* defaultName) : variable_(variable), defaultName_(defaultName) {}
    ~LastFiles();
    LastFiles(const LastFiles&) = delete;
    LastFiles& operator=(const LastFiles&) = delete;

    // The file that was remembered last in the record `id`. Nothing after a message.
    std::optional<std::string> last(int32_t id);
    // Asks for a file to read, and offers the remembered ones. Nothing when nobody answers.
    std::optional<std::string> ask(int32_t id, const char* filter, const char* title);
    // A name whose full form has more than 255 characters isn't remembered.
    void remember(int32_t id, const std::string& name);

  private:
    bool open();

    const char *variable_, *defaultName_;
};

namespace detail {

inline UserFileRecord recordOf(int32_t id) {
    UserFileRecord record = {};
    mdlUserPrefs_getFileName(&record, mclibUpf_getHandle(), id);
    return record;
}

}  // namespace detail

inline LastFiles::~LastFiles() {
    mclibUpf_close();
}

inline bool LastFiles::open() {
    char folder[256];
    if (mclibUpf_getHandle() != 0) return true;
    if (mdlSystem_getenv(folder, "MS_USERPREF", sizeof folder) != MDL_SUCCESS) return false;
    mclibUpf_open(nullptr, variable_, defaultName_);
    return mclibUpf_getHandle() != 0;
}

inline std::optional<std::string> LastFiles::last(int32_t id) {
    if (!open()) {
        fail("no files are remembered; define MS_USERPREF with the name of a file, beside which they are kept");
        return {};
    }
    const UserFileRecord record = detail::recordOf(id);
    if (record.fileName[0] != '\0') return record.fileName;
    fail(std::string(mclibUpf_getUpfFileName()) + ": no file is remembered yet; name one this time");
    return {};
}

inline std::optional<std::string> LastFiles::ask(int32_t id, const char* filter, const char* title) {
    char name[256] = "";
    open();
    if (mclibUpf_defFileOpen(name, "", filter, nullptr, title, id) != MDL_SUCCESS) return {};
    return name;
}

inline void LastFiles::remember(int32_t id, const std::string& name) {
    char full[256];
    if (mdlFile_find(full, name.c_str(), nullptr, nullptr) != MDL_SUCCESS || !open()) return;
    // The first save of a record leaves its lists empty; the second puts the file into them.
    const bool isNew = detail::recordOf(id).fileCount == 0;
    mclibUpf_saveFileName(full, mclibUpf_getHandle(), id);
    if (isNew) mclibUpf_saveFileName(full, mclibUpf_getHandle(), id);
}

}  // namespace mcapp
