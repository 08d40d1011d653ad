#include "mchost/resource/open_files.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

#include "mchost/base/guard.h"
#include "mchost/base/paths.h"
#include "mchost/base/sqlite.h"
#include "mchost/mdl/files.h"
#include "mchost/mdl/resource.h"
#include "mchost/mdl/system.h"
#include "mchost/resource/store.h"
#include "mchost/session/owned_state.h"
#include "mchost/session/session.h"

namespace host {

namespace {

using SharedContents = std::shared_ptr<const ResourceContents>;

// Tells one state of one file from all others.
struct FileStamp {
    dev_t device;
    ino_t inode;
    off_t size;
    time_t seconds;
    long nanoseconds;
    bool operator==(const FileStamp&) const = default;
};

struct OpenFile {
    RscHandle handle;
    MdlDesc* owner;  // null: opened outside any application
    FileStamp stamp;
    SharedContents contents;
    int mode;
    std::unique_ptr<ResourceStore> store;
};

// An application's files leave it when they are closed or the application ends.
struct OpenFiles {
    std::vector<OpenFile> files;                         // in order of opening
    std::vector<std::pair<MdlDesc*, std::string>> told;  // why a file can't be read, and who knows it
    RscHandle lastHandle = 0;
};
OpenFiles& openFiles() {
    return sessionState<OpenFiles>();
}

// MDL_SUCCESS when all of them are whole without a log now.
int closeFiles(const std::function<bool(const OpenFile&)>& which) {
    int status = MDL_SUCCESS;
    for (const OpenFile& file : openFiles().files)
        if (which(file) && guarded<int>(MDL_ERROR, [&] { return file.store->close(), MDL_SUCCESS; }) != MDL_SUCCESS)
            status = MDL_ERROR;
    std::erase_if(openFiles().files, which);
    return status;
}

void closeFilesOf(MdlDesc* desc) {
    if (closeFiles([desc](const OpenFile& file) { return file.owner == desc; }) != MDL_SUCCESS) markFailed();
    std::erase_if(openFiles().told, [desc](const auto& known) { return known.first == desc; });
}

std::optional<FileStamp> stampOf(const std::string& path) {
    struct stat info;
    if (stat(path.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) return std::nullopt;
    return FileStamp{info.st_dev, info.st_ino, info.st_size, info.st_mtim.tv_sec, info.st_mtim.tv_nsec};
}

// A file that some application has open is read once.
SharedContents contentsOf(const std::string& path, const FileStamp& stamp) {
    for (const OpenFile& file : openFiles().files)
        if (file.stamp == stamp) return file.contents;
    return std::make_shared<const ResourceContents>(readContainer(path));
}

std::string variable(const char* name) {
    char value[4096];
    return mdlSystem_getCfgVar(value, name, sizeof value) == MDL_SUCCESS ? value : std::string();
}

// The file beside the current application's module; empty when there is none.
std::string fileBesideModule() {
    const std::string module = modulePath(mdlSystem_getCurrMdlDesc());
    if (module.empty()) return {};
    const std::string beside = std::filesystem::path(module).replace_extension(".rsc").string();
    return stampOf(beside) ? beside : std::string();
}

// The file that all applications share; empty when none is named.
std::string sharedFile() {
    const std::string named = variable("MS_APPRSC");
    return named.empty() ? named : systemPath(named);
}

// The file of that name; empty when there is none.
std::string namedFile(const char* name) {
    char found[256];
    return mdlFile_find(found, name, nullptr, "rsc") == MDL_SUCCESS ? systemPath(found) : std::string();
}

// The folder too, which takes the log of what is written.
bool canBeWritten(const std::string& path) {
    return access(path.c_str(), W_OK) == 0 && folderCanBeWritten(path);
}

RscHandle openFile(const std::string& path, int mode) {
    const std::optional<FileStamp> stamp = stampOf(path);
    if (!stamp || (mode == MDL_RSC_WRITE && !canBeWritten(path))) return 0;
    SharedContents contents;
    try {
        contents = contentsOf(path, *stamp);
    } catch (const ResourceError& error) {
        tellUnreadable(error);
        return 0;
    }
    std::erase_if(openFiles().told, [&](const auto& known) { return known.second.starts_with(path + ": "); });
    letGoAtEnd<closeFilesOf>(mdlSystem_getCurrMdlDesc());
    const RscHandle handle = openFiles().lastHandle + 1;
    openFiles().files.push_back(
        {handle, mdlSystem_getCurrMdlDesc(), *stamp, std::move(contents), mode, std::make_unique<ResourceStore>(path)});
    return openFiles().lastHandle = handle;
}

// Without the shared file no message could be shown, which nobody would otherwise learn of.
void tellMissingFile(const std::string& shared) {
    if (shared.empty() || stampOf(shared)) return;
    const std::string text = "The resource file \"" + shared + "\" isn't there, so messages can't be shown. " +
                             "Check the configuration variable MS_APPRSC.";
    mdlOutput_messageCenter(MDL_PRIORITY_WARNING, hostName(text).c_str(), "", 0);
}

// The shared file lies behind an application's own: what the own one lacks is found there.
RscHandle openOwnFile(int mode) {
    const std::string own = fileBesideModule(), shared = sharedFile();
    tellMissingFile(shared);
    if (!own.empty() && !shared.empty() && shared != own)
        guarded<RscHandle>(0, [&] { return openFile(shared, MDL_RSC_READ); });
    const std::string& path = own.empty() ? shared : own;
    return path.empty() ? 0 : openFile(path, mode);
}

RscHandle openNamedFile(const char* name, int mode) {
    const std::string path = namedFile(name);
    return path.empty() ? 0 : openFile(path, mode);
}

// Calls `look` for the file of that handle, or for all in order of search, until it gives something.
template <class Look>
auto search(RscHandle handle, Look look) -> decltype(look(std::declval<const OpenFile&>())) {
    const auto& files = openFiles().files;
    if (handle != 0) {
        const auto file = std::ranges::find(files, handle, &OpenFile::handle);
        return file == files.end() ? nullptr : look(*file);
    }
    MdlDesc* const current = mdlSystem_getCurrMdlDesc();
    for (const bool own : {true, false})
        for (auto file = files.rbegin(); file != files.rend(); ++file)
            if ((file->owner == current) == own)
                if (auto found = look(*file)) return found;
    return nullptr;
}

// What `part` of a file holds under `key`.
template <class Value, class Key>
std::shared_ptr<const Value> find(RscHandle handle, const std::map<Key, Value> ResourceContents::*part,
                                  const Key& key) {
    return search(handle, [&](const OpenFile& file) -> std::shared_ptr<const Value> {
        const auto& values = (*file.contents).*part;
        const auto found = values.find(key);
        if (found == values.end()) return nullptr;
        return std::shared_ptr<const Value>(file.contents, &found->second);
    });
}

}  // namespace

std::string currentLanguage() {
    std::string language = variable("MS_LANGUAGE");
    for (char& c : language)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return language.empty() ? std::string(fallbackLanguage) : language;
}

std::shared_ptr<const DialogLayout> findDialogLayout(RscHandle file, int32_t dialogId) {
    return find(file, &ResourceContents::dialogs, dialogId);
}

std::shared_ptr<const Icon> findIcon(RscHandle file, int32_t iconId) {
    return find(file, &ResourceContents::icons, iconId);
}

std::shared_ptr<const MenuLayout> findMenuLayout(RscHandle file, int32_t menuId) {
    return find(file, &ResourceContents::menus, menuId);
}

std::shared_ptr<const ResourceContents> contentsOf(RscHandle handle) {
    return search(handle, [](const OpenFile& file) { return file.contents; });
}

void tellUnreadable(const ResourceError& error) {
    auto& told = openFiles().told;
    const std::pair<MdlDesc*, std::string> known(mdlSystem_getCurrMdlDesc(), error.what());
    if (std::ranges::find(told, known) != told.end()) return;
    told.push_back(known);
    letGoAtEnd<closeFilesOf>(known.first);
    reportError(error.what());
}

std::vector<OpenStore> openStores(RscHandle handle) {
    std::vector<OpenStore> stores;
    search(handle, [&](const OpenFile& file) -> const OpenFile* {
        stores.push_back({file.handle, file.mode, file.store.get()});
        return nullptr;
    });
    return stores;
}

}  // namespace host

int mdlResource_openFile(RscHandle* handleP, const char* name, int mode) noexcept {
    if (handleP) *handleP = 0;
    return host::guarded<int>(MDL_ERROR, [&]() -> int {
        if (mode != MDL_RSC_READ && mode != MDL_RSC_WRITE) return MDL_ERROR;
        const RscHandle handle = name ? host::openNamedFile(name, mode) : host::openOwnFile(mode);
        if (handleP) *handleP = handle;
        return handle == 0 ? MDL_ERROR : MDL_SUCCESS;
    });
}

int mdlResource_closeFile(RscHandle handle) noexcept {
    const auto isIt = [handle](const host::OpenFile& file) { return file.handle == handle; };
    if (std::ranges::none_of(host::openFiles().files, isIt)) return MDL_ERROR;
    return host::closeFiles(isIt);
}

int mdlResource_loadFromStringList(char* buffer, RscHandle rscFile, int32_t listId, int32_t messageId) noexcept {
    return host::guarded<int>(MDL_ERROR, [&]() -> int {
        const auto texts = host::find(rscFile, &host::ResourceContents::strings, std::pair(listId, messageId));
        const std::string* text = texts ? texts->in(host::currentLanguage()) : nullptr;
        if (!buffer || !text) return MDL_ERROR;
        const size_t size = std::min(text->size(), host::longestString);
        std::memcpy(buffer, text->data(), size);
        buffer[size] = '\0';
        return MDL_SUCCESS;
    });
}
