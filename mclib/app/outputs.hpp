// The files that an application makes. They are made in a folder of their own and get their names when all of them are
// whole, so a failure on the way leaves what was there as it was.
#pragma once

#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <mchost/mdl/files.h>
#include <mclib/app/system_path.hpp>
#include <mclib/app/tell.hpp>

namespace mcapp {

// A message about a file that isn't whole yet: the folder it lies in tells the user nothing. Always false.
bool failOutput(const std::string& name, const std::string& what);

// Where files go that are called `name` unless the user tells otherwise: `out` is a folder, a path without suffix, or
// empty, which is the current folder.
std::filesystem::path outputBase(const std::filesystem::path& out, const std::filesystem::path& name);

class Outputs {
  public:
    // `base` is a name of the host without suffix.
    Outputs(const std::filesystem::path& base, const std::vector<const char*>& suffixes);
    Outputs(const Outputs&) = delete;
    Outputs& operator=(const Outputs&) = delete;

    // Whether the files can be made: none is the input or is there already unless it may be replaced, and the folder
    // takes them. False after a message.
    bool prepare(const std::filesystem::path& input, bool overwrite);
    // The name of the host under which the file with that suffix is made.
    std::string temporary(const char* suffix) const;
    // Gives the files their own names: all of them, or none. False after a message.
    bool finish();
    const std::vector<std::filesystem::path>& names() const { return names_; }

  private:
    std::string base_;
    std::vector<std::string> suffixes_;
    std::vector<std::filesystem::path> names_;
    std::unique_ptr<MdlWorkFolder, decltype(&mdlWorkFolder_remove)> folder_;
};

namespace detail {

inline std::string lastPart(const std::string& name) {
    return name.substr(name.find_last_of("/\\:") + 1);
}

}  // namespace detail

namespace fs = std::filesystem;

inline bool failOutput(const std::string& name, const std::string& what) {
    return fail(fs::path(name).filename().string() + ": " + what);
}

inline fs::path outputBase(const fs::path& out, const fs::path& name) {
    if (out.empty()) return name;
    return out.filename().empty() || fs::is_directory(systemPath(out)) ? out / name : out;
}

inline Outputs::Outputs(const fs::path& base, const std::vector<const char*>& suffixes)
    : base_(base.string()), suffixes_(suffixes.begin(), suffixes.end()), folder_(nullptr, mdlWorkFolder_remove) {
    for (const std::string& suffix : suffixes_) names_.push_back(base_ + suffix);
}

inline bool Outputs::prepare(const fs::path& input, bool overwrite) {
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

inline std::string Outputs::temporary(const char* suffix) const {
    return std::string(mdlWorkFolder_name(folder_.get())) + "/" + detail::lastPart(base_) + suffix;
}

inline bool Outputs::finish() {
    if (mdlSystem_memoryFailures() != 0) return fail("memory has run out on the way, so no file is made");
    if (mdlSystem_failureNoted()) return fail("something is missing, as told above, so no file is made");
    std::vector<std::string> names(names_.begin(), names_.end());
    std::vector<const char*> places;
    for (const std::string& name : names) places.push_back(name.c_str());
    int32_t failed = 0;
    const int error = mdlWorkFolder_place(folder_.get(), places.data(), static_cast<int32_t>(places.size()), &failed);
    if (error != 0) {
        return fail(names[static_cast<size_t>(failed)] + ": the file can't be put in place: " + std::strerror(error));
    }
    folder_.reset();
    return true;
}

}  // namespace mcapp
