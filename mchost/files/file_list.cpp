// The entries of a folder as a string list.
#include <algorithm>
#include <filesystem>
#include <optional>
#include <vector>

#include "mchost/base/guard.h"
#include "mchost/base/paths.h"
#include "mchost/files/file_list.h"
#include "mchost/mdl/files.h"
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
    std::string pattern;
    bool folders;

    bool takes(const fs::directory_entry& entry) const {
        std::error_code error;
        return entry.is_directory(error) == folders && matchesPattern(pattern, entry.path().filename().string());
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
        if (!pattern || pattern[0] == '\0') return MDL_ERROR;
        const auto names =
            host::entriesMatching(host::systemPath(pattern), (attributes & MDL_ATTRIBUTE_DIRECTORY) != 0);
        if (!names) return MDL_ERROR;
        *listP = host::listOf(*names);
        return *listP ? MDL_SUCCESS : MDL_ERROR;
    });
}
