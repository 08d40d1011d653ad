// Finding files along search paths, and taking names apart and putting them together.
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <new>
#include <optional>

#include "mchost/base/existing_path.h"
#include "mchost/base/guard.h"
#include "mchost/base/paths.h"
#include "mchost/base/variables.h"
#include "mchost/mdl/files.h"

namespace host {

namespace {

namespace fs = std::filesystem;

enum class Case { asItStands, aside };

// The full host name of a file that is there; a folder isn't a file.
std::optional<std::string> fullNameOfFile(const std::string& name, Case letters) {
    const std::string named = systemPath(name);
    const std::optional<std::string> path = letters == Case::aside ? existingPath(named) : named;
    std::error_code error;
    const fs::file_status status = fs::status(path.value_or(""), error);
    if (!fs::exists(status) || fs::is_directory(status)) return std::nullopt;
    if (*path == named && fs::path(named).is_absolute()) return name;
    const fs::path whole = fs::absolute(*path, error);
    if (error == std::errc::not_enough_memory) throw std::bad_alloc();
    return error ? std::nullopt : std::optional(hostName(whole.lexically_normal().string()));
}

std::optional<std::string> findWithExtension(const std::string& name, std::string_view extension, Case letters) {
    if (auto found = fullNameOfFile(name, letters)) return found;
    if (extension.empty() || !partsOf(name).extension.empty()) return std::nullopt;
    return fullNameOfFile(name + (extension.starts_with('.') ? "" : ".") + std::string(extension), letters);
}

std::string inFolder(std::string folder, std::string_view name) {
    if (!folder.ends_with('/') && !folder.ends_with('\\')) folder += '/';
    return folder.append(name);
}

bool isAbsolute(std::string_view name) {
    const NameParts parts = partsOf(name);
    return !parts.device.empty() || parts.directory.starts_with('/') || parts.directory.starts_with('\\');
}

// The first thing that `find` makes of the entries of a variable.
template <class Find>
std::optional<std::string> firstAlong(const char* variable, Find find) {
    for (std::string& entry : variableEntries(variable)) {
        if (auto found = find(std::move(entry))) return found;
    }
    return std::nullopt;
}

std::optional<std::string> findAlong(const std::string& name, const char* searchVariable, std::string_view extension,
                                     Case letters) {
    if (name.empty()) return std::nullopt;
    const bool isBare = name.find_first_of("/\\:") == std::string::npos;
    if (auto found = isBare ? std::nullopt : findWithExtension(name, extension, letters)) return found;
    if (isAbsolute(name)) return std::nullopt;
    auto found = firstAlong(searchVariable, [&](std::string folder) {
        return findWithExtension(inFolder(std::move(folder), name), extension, letters);
    });
    return found || !isBare ? found : findWithExtension(name, extension, letters);
}

// Letter case counts where a file has the name as it stands.
std::optional<std::string> findAlong(const std::string& name, const char* searchVariable, std::string_view extension) {
    if (auto found = findAlong(name, searchVariable, extension, Case::asItStands)) return found;
    return findAlong(name, searchVariable, extension, Case::aside);
}

void copyPart(char* buffer, std::string_view part) {
    if (!buffer) return;
    std::ranges::copy(part, buffer);
    buffer[part.size()] = '\0';
}

std::string_view textOf(const char* part) {
    return !part ? std::string_view() : part;
}

// Leaves the buffer empty when the text doesn't fit.
int giveWhole(char* buffer, int size, std::string_view text) {
    if (!buffer || size < 1) return MDL_ERROR;
    const bool fits = text.size() < static_cast<size_t>(size);
    copyPart(buffer, fits ? text : std::string_view());
    return fits ? MDL_SUCCESS : MDL_ERROR;
}

std::string builtName(std::string_view device, std::string_view directory, std::string_view name,
                      std::string_view extension) {
    std::string path(device);
    if (!device.empty() && !device.ends_with(':')) path += ':';
    path += directory;
    const bool followed = !name.empty() || !extension.empty();
    if (!directory.empty() && followed && !directory.ends_with('/') && !directory.ends_with('\\')) {
        path += path.find('/') != std::string::npos ? '/' : '\\';
    }
    path += name;
    if (extension.empty()) return path;
    return path.append(extension.starts_with('.') ? "" : ".").append(extension);
}

// The shortest and the longest form of a shortened name around "...": what it begins with stays.
std::string abbreviated(std::string_view name, size_t longest) {
    constexpr std::string_view gap = "...";
    if (longest <= gap.size()) return std::string(name.substr(name.size() - longest));
    const NameParts parts = partsOf(name);
    const size_t rooted = parts.directory.starts_with('/') || parts.directory.starts_with('\\') ? 1 : 0;
    const std::string start = std::string(name.substr(0, parts.device.size() + rooted)).append(gap);
    // The longest end of whole parts that fits behind the start.
    for (size_t at = start.size(); at < name.size(); ++at) {
        const bool whole = name[at] == '/' || name[at] == '\\';
        if (whole && start.size() + name.size() - at <= longest) return start + std::string(name.substr(at));
    }
    return std::string(gap).append(name.substr(name.size() - (longest - gap.size())));
}

}  // namespace

}  // namespace host

using namespace host;

int mdlFile_find(char* result, const char* name, const char* searchVariable, const char* defaultExtension) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        const std::optional<std::string> found =
            !name
                ? firstAlong(searchVariable, [](const std::string& file) { return fullNameOfFile(file, Case::aside); })
                : findAlong(name, searchVariable, textOf(defaultExtension));
        if (!found || found->size() > longestHostName) return MDL_ERROR;
        copyPart(result, *found);
        return MDL_SUCCESS;
    });
}

int mdlFile_parseName(const char* path, char* device, char* directory, char* name, char* extension) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        const std::string copy(textOf(path));  // a buffer may be the path's own
        const bool good = path != nullptr && copy.size() <= longestHostName;
        const NameParts parts = good ? partsOf(copy) : NameParts{};
        copyPart(device, parts.device);
        copyPart(directory, parts.directory);
        copyPart(name, parts.name);
        copyPart(extension, parts.extension);
        return good ? MDL_SUCCESS : MDL_ERROR;
    });
}

int mdlFile_buildName(char* path, const char* device, const char* directory, const char* name,
                      const char* extension) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        if (!path) return MDL_ERROR;
        const std::string built = builtName(textOf(device), textOf(directory), textOf(name), textOf(extension));
        const bool good = built.size() <= longestHostName;
        copyPart(path, good ? std::string_view(built) : std::string_view());
        return good ? MDL_SUCCESS : MDL_ERROR;
    });
}

int mdlFile_abbreviateName(char* name, int size) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        if (!name || size < 1) return MDL_ERROR;
        const std::string_view text = name;
        const size_t longest = static_cast<size_t>(size) - 1;
        if (text.size() > longest) copyPart(name, abbreviated(text, longest));
        return MDL_SUCCESS;
    });
}

int mdlFile_getSystemPath(char* path, int size, const char* name) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int { return giveWhole(path, size, systemPath(textOf(name))); });
}

int mdlFile_getSystemName(char* shown, int size, const char* name) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int { return giveWhole(shown, size, hostName(systemPath(textOf(name)))); });
}

int mdlFile_getFileAttributes(int32_t* attributesP, const char* name) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        if (!name || name[0] == '\0') return MDL_ERROR;
        const fs::path path = systemPath(name);
        std::error_code error;
        const fs::file_status status = fs::status(path, error);
        if (!fs::exists(status)) return MDL_ERROR;
        const int32_t attributes = (fs::is_directory(status) ? MDL_ATTRIBUTE_DIRECTORY : 0) |
                                   (access(path.c_str(), W_OK) != 0 ? MDL_ATTRIBUTE_READ_ONLY : 0);
        if (attributesP) *attributesP = attributes;
        return MDL_SUCCESS;
    });
}
