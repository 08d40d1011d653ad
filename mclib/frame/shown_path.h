// Names of files as messages show them.
#pragma once

#include <string>

#include "mchost/mdl/files.h"

namespace mc {

// The path of this system that a name of the host stands for, as narrow text; the name itself when that is too long.
inline std::string shownPath(const char* name) {
    char shown[4096];
    return mdlFile_getSystemName(shown, sizeof shown, name) == MDL_SUCCESS ? shown : name;
}

}  // namespace mc
