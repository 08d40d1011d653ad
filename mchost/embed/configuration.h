// Configuration variables from files and from outside. For the files of this room.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace host {

// Defines a variable, without blanks around name and value and with the names of the installation's folders replaced;
// false for a bad name or level.
bool defineVariable(std::string_view name, std::string_view value, int level);

// Defines the variables of a file; what is wrong with it, or nothing.
std::optional<std::string> readConfiguration(const std::filesystem::path& path, int level);

}  // namespace host
