// --help, which every application answers with its usage and status 0.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include <mchost/mdl/system.h>

namespace app {

// True when the usage was asked for, and has been printed.
inline bool helped(const std::vector<std::string>& arguments, const char* usage) {
    if (std::ranges::find(arguments, "--help") == arguments.end()) return false;
    toolSubsystem_printf("%s", usage);
    return true;
}

}  // namespace app
