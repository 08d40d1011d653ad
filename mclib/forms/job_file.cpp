#include "mclib/forms/job_file.h"

#include <unistd.h>

#include <filesystem>

namespace mc::forms {

namespace {

namespace fs = std::filesystem;

// Empty for a name that is too long.
fs::path systemPath(const std::string& name) {
    char path[4096];
    return mdlFile_getSystemPath(path, sizeof path, name.c_str()) == MDL_SUCCESS ? path : "";
}

// Whether another file may take the place of the one that has the name.
bool canBeReplaced(const fs::path& path) {
    std::error_code error;
    return fs::symlink_status(path, error).type() == fs::file_type::regular && access(path.c_str(), W_OK) == 0;
}

std::string lastPart(const std::string& name) {
    return name.substr(name.find_last_of("/\\:") + 1);
}

}  // namespace

JobFile::JobFile(const char* name) : name_(name) {
    const fs::path path = systemPath(name_);
    std::error_code error;
    isNew_ = !path.empty() && fs::symlink_status(path, error).type() == fs::file_type::not_found;
    MdlWorkFolder* folder = nullptr;
    if (!canBeReplaced(path) || mdlWorkFolder_make(&folder, name) != 0) return;
    folder_.reset(folder);
    temporary_ = std::string(mdlWorkFolder_name(folder)) + "/" + lastPart(name_);
}

JobFile::~JobFile() {
    std::error_code error;
    if (isNew_) fs::remove(systemPath(name_), error);
}

bool JobFile::publish() {
    isNew_ = false;
    if (!folder_) return true;
    const char* const name = name_.c_str();
    return mdlWorkFolder_place(folder_.get(), &name, 1, nullptr) == 0;
}

}  // namespace mc::forms
