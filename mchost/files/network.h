// Network names of files.
#pragma once

#include <string>
#include <string_view>

namespace host {

// "\\server\share\folder\file" for a path of the system that lies below a network drive in the table of mounts (as
// /proc/mounts has it); empty for any other.
std::string universalName(const std::string& path, std::string_view mounts);

}  // namespace host
