// The applications that mchost finds. Paths are of this system, names as a user gives them; all texts are UTF-8.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace mchost {

// The entries of a configuration variable, divided by semicolons; empty ones left out.
std::vector<std::string> entriesOf(const char* variable);

std::filesystem::path programFolder();

bool isFile(const std::filesystem::path& path);

// The module of an application: a path, or a name along MS_MDL or in the folders lib of mchost, with or without ".so".
std::optional<std::filesystem::path> findApplication(const std::string& name);

// A line for each application that has no path: its name, and what it is for where its MDL_DESCRIPTION tells.
std::string listOfApplications();

}  // namespace mchost
