// Names of the system that are there, letter case aside.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace host {

// The path of what is there under that path, letter case aside where a part of it isn't there as it stands; nothing
// when there is none. Of several that differ in case alone it is the first in order of name.
std::optional<std::string> existingPath(const std::string& path);

// The first entry of a folder, in order of name, that is called so, letter case aside, and that `fits`.
std::optional<std::string> entryIgnoringCase(const std::filesystem::path& folder, const std::string& name,
                                             bool (*fits)(const std::filesystem::path& path));

}  // namespace host
