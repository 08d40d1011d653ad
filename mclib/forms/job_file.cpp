#include "mclib/forms/job_file.h"

#include <unistd.h>

#include <filesystem>

namespace forms {

namespace {

namespace fs = std::filesystem;

// Empty for a name that is too long.
fs::path systemPath(const std::string& name) {
    char path[4096];
    return mdlFile_getSystemPath(path, sizeof path, name.c_str()) == MDL_SUCCESS ? path : "";
}

// Whether another file can, and may, take the place of what has the name.
bool canBeReplaced(const fs::path& path) {
    std::error_code error;
    const fs::file_type type = fs::symlink_status(path, error).type();
    if (type == fs::file_type::not_found) return !path.empty();
    return type == fs::file_type::regular && access(path.c_str(), W_OK) == 0;
}

std::string lastPart(const std::string& name) {
    return name.substr(name.find_last_of("/\\:") + 1);
}

}  // namespace

JobFile::JobFile(const char* name) : name_(name) {
    MdlWorkFolder* folder = nullptr;
    if (!canBeReplaced(systemPath(name_)) || mdlWorkFolder_make(&folder, name) != 0) return;
    folder_.reset(folder);
    temporary_ = std::string(mdlWorkFolder_name(folder)) + "/" + lastPart(name_);
}

bool JobFile::publish() {
    if (!folder_) return true;
    const fs::path from = systemPath(temporary_), to = systemPath(name_);
    std::error_code error;
    if (const fs::perms before = fs::status(to, error).permissions(); !error && before != fs::perms::unknown)
        fs::permissions(from, before, error);
    fs::rename(from, to, error);
    return !error;
}

}  // namespace forms
