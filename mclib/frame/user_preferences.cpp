// The application's user preference file, and the file dialogs that remember in it.
#include <algorithm>
#include <cstring>
#include <string>

#include "mchost/mdl/file_dialogs.h"
#include "mchost/mdl/files.h"
#include "mchost/mdl/resource.h"
#include "mchost/mdl/system.h"
#include "mclib/frame/global_data.h"
#include "mclib/frame/main.h"
#include "mclib/frame/resource_files.h"
#include "mclib/frame/text_buffer.h"

namespace mc {

namespace {

// ---- the file ----

// The state of the application whose file is open; null, with a line on the console, when none is.
GlobalData* openPreferences() {
    GlobalData* data = mclibMain_getGlobalDataP();
    if (data && data->upfIsOpen) return data;
    toolSubsystem_printf("User preference file not open!!\n");
    return nullptr;
}

bool isOpen(const GlobalData* data) {
    return data && data->upfIsOpen;
}

void markOpen(GlobalData& data, bool readOnly) {
    data.upfIsOpen = 1;
    data.upfIsReadOnly = readOnly;
}

// First for writing; then for reading, when it is there and can't be written to; then it is made.
int openPath(GlobalData& data, const char* path) {
    McHandle& file = data.upfHandle;
    if (mdlResource_openFile(&file.handle, path, MDL_RSC_WRITE) == MDL_SUCCESS) {
        copyText(file.name, path);
        markOpen(data, false);
        return MCLIB_SUCCESS;
    }
    const bool exists = mdlFile_find(nullptr, path, nullptr, nullptr) == MDL_SUCCESS;
    if (exists && mclibResource_openFile(&file, path, MDL_RSC_READ) == MCLIB_SUCCESS) {
        markOpen(data, true);
        return MCLIB_SUCCESS;
    }
    if (mclibResource_openFile(&file, path, MDL_RSC_WRITE) == MCLIB_SUCCESS) {
        markOpen(data, false);
        return MCLIB_SUCCESS;
    }
    file.handle = 0;
    data.upfIsOpen = 0;
    return MCLIB_ERROR;
}

// ---- remembered files ----

UserFileRecord recordOf(int32_t handle, int32_t id) {
    UserFileRecord record = {};
    mdlUserPrefs_getFileName(&record, handle, id);
    return record;
}

int32_t preferenceHandle() {
    const GlobalData* data = mclibMain_getGlobalDataP();
    return isOpen(data) ? data->upfHandle.handle : 0;
}

using History = char[MDL_HISTORY_MOST][256];

// Puts the value in front; the entries before its old place, or all, move down by one.
void remember(History& list, int32_t& count, const char* value) {
    count = std::clamp(count, 0, int32_t{MDL_HISTORY_MOST});
    int32_t place = 0;
    while (place < count && std::strcmp(list[place], value) != 0) ++place;
    if (place == count && count < MDL_HISTORY_MOST) ++count;
    place = std::min(place, MDL_HISTORY_MOST - 1);
    std::memmove(list[1], list[0], static_cast<size_t>(place) * sizeof list[0]);
    copyText(list[0], value);
}

void setCurrent(UserFileRecord& record, const char* fileName) {
    char device[256], directory[256], extension[256];
    mdlFile_parseName(fileName, device, directory, nullptr, extension);
    copyText(record.fileName, fileName);
    copyText(record.filter, ("*." + std::string(extension)).c_str());
    copyText(record.directory, (std::string(device) + directory).c_str());
}

}  // namespace

}  // namespace mc

using namespace mc;

int mclibUpf_initialize(GlobalData* data) {
    if (data) data->upfHandle = {};
    return 0;
}

void mclibUpf_open(McHandle* out, const char* variable, const char* defaultName) {
    char hostFile[256], device[256], directory[256], name[256];
    if (mdlSystem_getenv(hostFile, "MS_USERPREF", sizeof hostFile) != MDL_SUCCESS) {
        toolSubsystem_printf("\"MS_USERPREF\" undefined!\n");
        return;
    }
    mdlFile_parseName(hostFile, device, directory, nullptr, nullptr);
    if (!variable || mdlSystem_getenv(name, variable, sizeof name) != MDL_SUCCESS)
        copyText(name, defaultName ? defaultName : "");
    mclibUpf_openWithPath(out, (std::string(device) + directory + name).c_str());
}

int mclibUpf_openWithPath(McHandle* out, const char* path) {
    GlobalData* data = mclibMain_getGlobalDataP();
    if (!data || !path || openPath(*data, path) != MCLIB_SUCCESS) return MCLIB_ERROR;
    if (out) *out = data->upfHandle;
    return MCLIB_SUCCESS;
}

void mclibUpf_close(void) {
    GlobalData* data = mclibMain_getGlobalDataP();
    if (!isOpen(data)) return;
    mclibResource_closeFile(&data->upfHandle);
    data->upfIsOpen = 0;
}

int mclibUpf_load(int32_t type, int32_t id, void* dest, int size) {
    GlobalData* data = openPreferences();
    return data ? mclibResource_load(&data->upfHandle, type, id, dest, size) : int{MCLIB_ERROR};
}

int mclibUpf_save(int32_t type, int32_t id, const void* data, int size) {
    GlobalData* preferences = openPreferences();
    if (!preferences) return MCLIB_ERROR;
    if (preferences->upfIsReadOnly) return MCLIB_SUCCESS;
    return mclibResource_add(&preferences->upfHandle, type, id, data, size, 0);
}

int32_t mclibUpf_getHandle(void) {
    return preferenceHandle();
}

McHandle* mclibUpf_getMcHandle(void) {
    GlobalData* data = mclibMain_getGlobalDataP();
    return isOpen(data) ? &data->upfHandle : nullptr;
}

char* mclibUpf_getUpfFileName(void) {
    McHandle* file = mclibUpf_getMcHandle();
    return file ? file->name : nullptr;
}

int mclibUpf_saveFileName(const char* fileName, int32_t handle, int32_t id) {
    if (!fileName) return MCLIB_ERROR;
    UserFileRecord record = recordOf(handle, id);
    setCurrent(record, fileName);
    if (record.marker == MDL_USER_FILE_MARKER && record.version == MDL_USER_FILE_VERSION) {
        remember(record.fileHistory, record.fileCount, record.fileName);
        remember(record.filterHistory, record.filterCount, record.filter);
        remember(record.directoryHistory, record.directoryCount, record.directory);
    }
    record.marker = MDL_USER_FILE_MARKER;
    record.version = MDL_USER_FILE_VERSION;
    return mdlUserPrefs_saveFileName(&record, handle, id);
}

int mclibUpf_defFileOpen(char* result, const char* defaultName, const char* filter, const char* directoryVariable,
                         const char* title, int32_t id) {
    const int32_t handle = preferenceHandle();
    const UserFileRecord record = recordOf(handle, id);
    const bool remembered = record.fileName[0] != '\0';
    if (remembered) mdlUserPrefs_saveFileName(&record, 0, id);
    return mdlDialog_defFileOpen(result, 0, 0, remembered ? record.fileName : defaultName, filter, directoryVariable,
                                 title, id, handle);
}

int mclibUpf_defFileCreate(char* result, const char* defaultName, const char* filter, const char* directoryVariable,
                           const char* title, int32_t id) {
    const int32_t handle = preferenceHandle();
    const UserFileRecord record = recordOf(handle, id);
    const char* name = record.fileName[0] != '\0' ? record.fileName : defaultName;
    return mdlDialog_defFileCreate(result, 0, 0, name, filter, directoryVariable, title, id, handle);
}

StringList* mclibUpf_defFileListEdit(int* reply, StringList* list, int32_t options, const char* title,
                                     const char* listTitle, const char* filter, const char* defaultDirectory,
                                     int32_t id) {
    const int32_t handle = preferenceHandle();
    UserFileRecord record = recordOf(handle, id);
    FileDialogResult result = {};
    const char* directory = defaultDirectory;
    if (record.directory[0] != '\0') {
        directory = record.directory;
        copyText(result.filter, record.filter);
    }
    StringList* edited = mdlFileList_edit(&result, list, options, title, listTitle, filter, directory);
    if (reply) *reply = result.reply;
    if (result.reply != MDL_FILES_OK) return list;
    copyText(record.directory, result.directory);
    copyText(record.filter, result.filter);
    mdlUserPrefs_saveFileName(&record, handle, id);
    return edited;
}
