#include "programs/mchost_modules.h"

#include <dlfcn.h>

#include <algorithm>
#include <map>
#include <string_view>

#include "mchost/base/charset.h"
#include "mchost/base/paths.h"
#include "mchost/mdl/system.h"

namespace mchost {

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> foldersOfApplications() {
    std::vector<fs::path> folders;
    for (const std::string& folder : entriesOf("MS_MDL")) folders.emplace_back(host::systemPath(folder));
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
    if (handle == nullptr) return std::nullopt;
    const auto* text = static_cast<const char*>(dlsym(handle, "mdlDescription"));
    const bool application = text != nullptr || dlsym(handle, "main") != nullptr;
    std::optional<std::string> description;
    if (application) description = text != nullptr ? text : "";
    dlclose(handle);
    return description;
}

}  // namespace

std::vector<std::string> entriesOf(const char* variable) {
    std::vector<std::string> entries;
    char* value = mdlSystem_getExpandedCfgVar(variable);
    for (std::string_view left = value == nullptr ? "" : value; !left.empty();) {
        const std::string_view entry = left.substr(0, left.find(';'));
        if (!entry.empty()) entries.emplace_back(entry);
        left.remove_prefix(std::min(left.size(), entry.size() + 1));
    }
    dlmSystem_mdlFree(value);
    return entries;
}

fs::path programFolder() {
    std::error_code error;
    return fs::read_symlink("/proc/self/exe", error).parent_path();
}

bool isFile(const fs::path& path) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    return fs::exists(status) && !fs::is_directory(status);
}

std::optional<fs::path> findApplication(const std::string& name) {
    if (auto module = moduleAt(host::systemPath(name))) return module;
    if (name.find('/') != std::string::npos) return std::nullopt;
    for (const fs::path& folder : foldersOfApplications())
        if (auto module = moduleAt(folder / name)) return module->lexically_normal();
    return std::nullopt;
}

std::string listOfApplications() {
    std::map<std::string, std::string> found;  // the first of a name is the one that is started
    for (const fs::path& folder : foldersOfApplications()) {
        std::error_code error;
        for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
            const std::string name = entry->path().stem();
            if (entry->path().extension() != ".so" || name.starts_with("lib") || found.contains(name)) continue;
            if (const auto description = descriptionOf(entry->path())) found[name] = *description;
        }
    }
    size_t width = 0;
    for (const auto& [name, description] : found) width = std::max(width, name.size());
    std::string text;
    for (const auto& [name, description] : found)
        text +=
            "  " + name + (description.empty() ? "" : std::string(width + 2 - name.size(), ' ') + description) + "\n";
    return text.empty() ? "No applications are found along MS_MDL.\n" : "Applications:\n" + text;
}

}  // namespace mchost
