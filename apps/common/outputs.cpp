#include "apps/common/outputs.h"

#include <cerrno>
#include <cstring>

#include "apps/common/system_path.h"
#include "apps/common/tell.h"

namespace app {

namespace fs = std::filesystem;

bool failOutput(const std::string& name, const std::string& what) {
    return fail(fs::path(name).filename().string() + ": " + what);
}

namespace {

constexpr const char* kept = ".kept";  // behind the suffix: what a file of the same name was

std::string lastPart(const std::string& name) {
    return name.substr(name.find_last_of("/\\:") + 1);
}

}  // namespace

Outputs::Outputs(const fs::path& base, const std::vector<const char*>& suffixes)
    : base_(base.string()), suffixes_(suffixes.begin(), suffixes.end()), folder_(nullptr, mdlWorkFolder_remove) {
    for (const std::string& suffix : suffixes_) names_.push_back(base_ + suffix);
}

bool Outputs::prepare(const fs::path& input, bool overwrite) {
    std::error_code error;
    for (const fs::path& name : names_) {
        const fs::file_status status = fs::symlink_status(systemPath(name), error);
        if (!fs::exists(status)) continue;
        if (fs::is_directory(status))
            return fail(name.string() + ": a folder has that name; give another one with --out");
        if (fs::equivalent(systemPath(name), systemPath(input), error))
            return fail(name.string() + ": that is the input; give another name with --out");
        if (!overwrite) {
            return fail(name.string() + ": the file is there already; give --overwrite or another name with --out");
        }
    }
    MdlWorkFolder* folder = nullptr;
    if (const int failed = mdlWorkFolder_make(&folder, base_.c_str())) {
        const std::string place = fs::path(base_).parent_path().string();
        const std::string why = std::strerror(failed);
        return fail(place.empty() ? "the current folder can't be written: " + why
                                  : place + ": the folder can't be written (" + why + "); give another one with --out");
    }
    folder_.reset(folder);
    return true;
}

std::string Outputs::temporary(const char* suffix) const {
    return std::string(mdlWorkFolder_name(folder_.get())) + "/" + lastPart(base_) + suffix;
}

fs::path Outputs::inFolder(const std::string& suffix) const {
    return systemPath(temporary(suffix.c_str()));
}

// What had the name is kept for as long as another file may fail; a file system without links keeps nothing.
bool Outputs::put(size_t i) {
    const fs::path name = systemPath(names_[i]);
    std::error_code error;
    isNew_.push_back(!fs::exists(fs::symlink_status(name, error)));
    fs::create_hard_link(name, inFolder(suffixes_[i] + kept), error);
    fs::rename(inFolder(suffixes_[i]), name, error);
    return !error || fail(names_[i].string() + ": the file can't be put in place: " + error.message());
}

void Outputs::takeBack(size_t i) {
    const fs::path name = systemPath(names_[i]);
    std::error_code error;
    fs::rename(inFolder(suffixes_[i] + kept), name, error);
    if (isNew_[i]) fs::remove(name, error);
}

bool Outputs::finish() {
    if (mdlSystem_memoryFailures() != 0) return fail("memory has run out on the way, so no file is made");
    if (mdlSystem_failureNoted()) return fail("something is missing, as told above, so no file is made");
    for (size_t i = 0; i < names_.size(); ++i) {
        if (put(i)) continue;
        while (i-- > 0) takeBack(i);
        return false;
    }
    folder_.reset();
    return true;
}

}  // namespace app
