// Network names of files.
#pragma once

#include <string>
#include <string_view>

#include "mchost/base/export.h"

namespace host {

// "\\server\share\folder\file" for a path of the system that lies below a network drive in the table of mounts (as
// /proc/mounts has it); empty for any other.
HOST_EXPORT std::string universalName(const std::string& path, std::string_view mounts);

}  // namespace host
