// Where this host and what belongs to it lie. For the files of this room.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace host {

// The folder with mchost and, in a build tree, its configuration.
std::filesystem::path programFolder();
// The folder with mclib.rsc.
std::filesystem::path dataFolder();
// mchost.cfg of the installation; empty when there is none.
std::filesystem::path defaultConfiguration();

bool isFile(const std::filesystem::path& path);

// The module of an application: a path, or a name along MS_MDL or in the folders lib of the installation, with or
// without ".so".
std::optional<std::filesystem::path> findApplication(const std::string& name);

// What the applications that are found by their names tell of themselves (MDL_DESCRIPTION), by name.
std::map<std::string, std::string> describedApplications();

}  // namespace host
