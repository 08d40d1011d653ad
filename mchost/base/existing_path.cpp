#include "mchost/base/existing_path.h"

#include <limits.h>
#include <strings.h>

#include <system_error>
#include <utility>

namespace host {

namespace fs = std::filesystem;

std::optional<std::string> entryIgnoringCase(const fs::path& folder, const std::string& name,
                                             bool (*fits)(const fs::path&)) {
    std::optional<std::string> found;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        std::string candidate = entry->path().filename();
        if (strcasecmp(candidate.c_str(), name.c_str()) != 0 || (found && *found < candidate)) continue;
        if (fits(entry->path())) found = std::move(candidate);
    }
    return found;
}

std::optional<std::string> existingPath(const std::string& path) {
    std::error_code error;
    if (path.size() >= PATH_MAX) return std::nullopt;  // the system opens none
    if (fs::exists(path, error)) return path;
    const fs::path whole = path;
    fs::path found = whole.root_path();
    for (const fs::path& part : whole.relative_path()) {
        if (part.empty()) continue;  // behind a separator at the end
        if (fs::exists(found / part, error)) {
            found /= part;
            continue;
        }
        if (found.empty()) found = ".";
        const auto entry = entryIgnoringCase(found, part, [](const fs::path&) { return true; });
        if (!entry) return std::nullopt;
        found /= *entry;
    }
    return whole.has_relative_path() ? std::optional(found) : std::nullopt;
}

}  // namespace host
