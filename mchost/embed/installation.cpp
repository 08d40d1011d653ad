#include "mchost/embed/installation.h"

#include <dlfcn.h>

#include <algorithm>
#include <string_view>

#include "mchost/base/paths.h"
#include "mchost/base/variables.h"

namespace host {

namespace {

namespace fs = std::filesystem;

constexpr const char* configurationName = "mchost.cfg";

fs::path canonical(const fs::path& path) {
    std::error_code error;
    const fs::path found = fs::canonical(path, error);
    return error ? path : found;
}

// The file that holds this code.
fs::path ownFile() {
    Dl_info info{};
    const bool known = dladdr(reinterpret_cast<const void*>(&ownFile), &info) != 0 && info.dli_fname;
    return canonical(known ? info.dli_fname : "/proc/self/exe");
}

bool isInstallation(const fs::path& folder) {
    return isFile(folder / "share/mclib" / configurationName) || isFile(folder / "bin" / configurationName);
}

// The folder that bin and share/mclib lie in, above the one of this library.
fs::path root() {
    const fs::path own = ownFile();
    for (fs::path folder = own.parent_path(); folder.has_relative_path(); folder = folder.parent_path())
        if (isInstallation(folder)) return folder;
    return canonical("/proc/self/exe").parent_path().parent_path();
}

std::vector<fs::path> foldersOfApplications() {
    std::vector<fs::path> folders;
    for (const std::string& folder : variableEntries("MS_MDL")) folders.emplace_back(systemPath(folder));
    folders.push_back(programFolder() / "lib");
    folders.push_back(programFolder() / "../lib");
    return folders;
}

// The module of an application in a folder: a name without its suffix is completed, so that a folder or a file of
// sources with the application's name doesn't stand in the way.
std::optional<fs::path> moduleAt(const fs::path& name) {
    const fs::path completed = name.string() + ".so";
    if (name.extension() == ".so" && isFile(name)) return name;
    if (isFile(completed)) return completed;
    return std::nullopt;
}

// What the module says of itself; nothing for one that isn't an application, and for one that can't be loaded.
std::optional<std::string> descriptionOf(const fs::path& module) {
    void* const handle = dlopen(module.c_str(), RTLD_LAZY | RTLD_LOCAL);
    if (!handle) return std::nullopt;
    const auto* text = static_cast<const char*>(dlsym(handle, "mdlDescription"));
    const bool application = text || dlsym(handle, "main");
    std::optional<std::string> description;
    if (application) description = text ? text : "";
    dlclose(handle);
    return description;
}

}  // namespace

fs::path programFolder() {
    return root() / "bin";
}

fs::path dataFolder() {
    const fs::path installed = root() / "share/mclib";
    return isFile(installed / "mclib.rsc") ? installed : root() / "lib";
}

fs::path defaultConfiguration() {
    for (const fs::path& folder : {programFolder(), root() / "share/mclib"})
        if (isFile(folder / configurationName)) return folder / configurationName;
    return {};
}

bool isFile(const fs::path& path) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    return fs::exists(status) && !fs::is_directory(status);
}

std::optional<fs::path> findApplication(const std::string& name) {
    if (auto module = moduleAt(systemPath(name))) return module;
    if (name.find('/') != std::string::npos) return std::nullopt;
    for (const fs::path& folder : foldersOfApplications())
        if (auto module = moduleAt(folder / name)) return module->lexically_normal();
    return std::nullopt;
}

std::map<std::string, std::string> describedApplications() {
    std::map<std::string, std::string> found;  // the first of a name is the one that is started
    for (const fs::path& folder : foldersOfApplications()) {
        std::error_code error;
        for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
            const std::string name = entry->path().stem();
            if (entry->path().extension() != ".so" || name.starts_with("lib") || found.contains(name)) continue;
            if (const auto description = descriptionOf(entry->path())) found[name] = *description;
        }
    }
    return found;
}

}  // namespace host
