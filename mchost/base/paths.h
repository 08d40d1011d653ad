// Names of files as the host writes them, against paths of the system.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace host {

// The path (UTF-8) that a host name stands for: `\` is `/`, a drive letter is the folder that MC_DRIVE_<letter> names,
// a colon in front of a path is dropped. A name with UTF-8 sequences in it is taken as UTF-8, every other one as
// Windows-1252. The folder that stands for a drive by default is made when it isn't there, with a folder "temp" in it.
std::string systemPath(std::string_view name);
// The same as a full path, without "." and "..".
std::string fullPath(std::string_view name);

// A text of the host as UTF-8, by the same rule.
std::string utf8FromHost(std::string_view text);

// The host's name for a path of the system: in Windows-1252 when that has all its characters, else as it is.
std::string hostName(std::string_view path);

// mchost below XDG_DATA_HOME or ~/.local/share. It need not exist.
std::filesystem::path userDataFolder();

// The parts of a host name, as they stand in it.
struct NameParts {
    std::string_view device;     // "c:" or empty
    std::string_view directory;  // with its last separator
    std::string_view name;
    std::string_view extension;  // without its dot
};
NameParts partsOf(std::string_view name);

constexpr size_t longestHostName = 255;

}  // namespace host
