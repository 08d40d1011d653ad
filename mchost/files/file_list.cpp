// The entries of a folder as a string list.
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <vector>

#include "mchost/base/guard.h"
#include "mchost/base/paths.h"
#include "mchost/base/variables.h"
#include "mchost/files/file_list.h"
#include "mchost/mdl/find_files.h"
#include "mchost/mdl/lists.h"

namespace host {

namespace {

namespace fs = std::filesystem;

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

bool hasWildcard(std::string_view text) {
    return text.find_first_of("*?") != std::string_view::npos;
}

struct Selection {
    std::string patterns;  // divided by ";"
    bool folders;

    bool takes(const fs::directory_entry& entry) const {
        std::error_code error;
        return entry.is_directory(error) == folders && fits(entry.path().filename().string());
    }
    bool fits(const std::string& name) const {
        for (std::string_view rest = patterns; !rest.empty();) {
            const size_t end = std::min(rest.find(';'), rest.size());
            if (matchesPattern(rest.substr(0, end), name)) return true;
            rest.remove_prefix(std::min(end + 1, rest.size()));
        }
        return false;
    }
};

// Sorted names of the entries; nothing when the folder can't be read.
std::optional<std::vector<std::string>> entriesOf(const fs::path& folder, const Selection& selection) {
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        if (selection.takes(*entry)) names.push_back(entry->path().filename());
    }
    if (error) return std::nullopt;
    std::ranges::sort(names);
    return names;
}

std::optional<std::vector<std::string>> entriesMatching(std::string path, bool folders) {
    while (path.size() > 1 && path.ends_with('/')) path.pop_back();
    const fs::path whole = path;
    const fs::path folder = whole.has_parent_path() ? whole.parent_path() : fs::path(".");
    const std::string last = whole.filename();
    if (hasWildcard(last)) return entriesOf(folder, {last, folders});
    std::error_code error;
    const fs::file_status status = fs::status(whole, error);
    if (!fs::exists(status) || fs::is_directory(status) != folders) return std::vector<std::string>();
    return std::vector<std::string>{last.empty() ? path : last};
}

std::vector<std::string> mappedDrives() {
    std::vector<std::string> drives;
    for (char letter = 'a'; letter <= 'z'; ++letter) {
        const char capital = static_cast<char>(letter - 'a' + 'A');
        if (letter == 'c' || !variables().expandedValue(std::string("MC_DRIVE_") + capital).value_or("").empty())
            drives.push_back(std::string("[-") + letter + ":-]");
    }
    return drives;
}

StringList* listOf(const std::vector<std::string>& names) {
    StringList* list = mdlStringList_create(static_cast<int32_t>(names.size()), 1);
    if (!list) return nullptr;
    for (size_t i = 0; i < names.size(); ++i) {
        if (mdlStringList_setMember(list, static_cast<int32_t>(i), hostName(names[i]).c_str(), nullptr) ==
            MDL_SUCCESS) {
            continue;
        }
        mdlStringList_destroy(list);
        return nullptr;
    }
    return list;
}

}  // namespace

bool matchesPattern(std::string_view pattern, std::string_view name) {
    if (name.starts_with('.') && !pattern.starts_with('.')) return false;
    if (pattern == "*.*") return true;
    size_t p = 0, n = 0;
    size_t star = std::string_view::npos, taken = 0;  // the last star, and where the name went on behind it
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            taken = n;
        } else if (p < pattern.size() && (pattern[p] == '?' || lower(pattern[p]) == lower(name[n]))) {
            ++p;
            ++n;
        } else if (star != std::string_view::npos) {
            p = star + 1;
            n = ++taken;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

}  // namespace host

int mdlFileList_get(StringList** listP, const char* pattern, int attributes) noexcept {
    return host::guarded<int>(MDL_ERROR, [&]() -> int {
        if (!listP) return MDL_ERROR;
        *listP = nullptr;
        const bool drives = (attributes & MDL_ATTRIBUTE_DRIVE) != 0, folders = attributes & MDL_ATTRIBUTE_DIRECTORY;
        if (!drives && (!pattern || pattern[0] == '\0')) return MDL_ERROR;
        const auto names = drives ? host::mappedDrives() : host::entriesMatching(host::systemPath(pattern), folders);
        if (!names) return MDL_ERROR;
        *listP = host::listOf(*names);
        return *listP ? MDL_SUCCESS : MDL_ERROR;
    });
}

int mdlFile_findFiles(StringList** listP, const char* pattern, int attribute) noexcept {
    return mdlFileList_get(listP, pattern, attribute == MDL_FIND_FOLDERS ? MDL_ATTRIBUTE_DIRECTORY : 0);
}

int mdlFile_getIdentity(MdlFileIdentity* identity, const char* name) noexcept {
    return host::guarded<int>(MDL_ERROR, [&]() -> int {
        struct stat found {};
        if (!identity || !name || stat(host::systemPath(name).c_str(), &found) != 0) return MDL_ERROR;
        *identity = {found.st_dev, found.st_ino};
        return MDL_SUCCESS;
    });
}
