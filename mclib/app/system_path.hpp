// Names of files as applications get and give them, against paths that the standard library can open.
#pragma once

#include <filesystem>

#include <mchost/mdl/files.h>

namespace mcapp {

// The path of the system for a name of the host; empty, which no file is, for one that is too long.
inline std::filesystem::path systemPath(const std::filesystem::path& name) {
    char path[4096];
    mdlFile_getSystemPath(path, sizeof path, name.c_str());
    return path;
}

}  // namespace mcapp
