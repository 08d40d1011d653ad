// Folders that configuration variables name. Internal to this folder.
#pragma once

#include <string>
#include <string_view>

#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/system.h"

namespace mc::print {

// The expanded value of a variable; empty for one that isn't defined.
inline std::string valueOf(const char* variable) {
    const mdl::HostPtr<char> value(mdlSystem_getExpandedCfgVar(variable));
    return value ? value.get() : "";
}

// The folder with a separator at its end, of the kind that it has already; an empty one stays empty.
inline std::string withSeparator(std::string folder) {
    if (folder.empty() || std::string_view("/\\:").find(folder.back()) != std::string_view::npos) return folder;
    folder += folder.find('/') == std::string::npos ? '\\' : '/';
    return folder;
}

}  // namespace mc::print
