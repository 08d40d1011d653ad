// A folder for files that aren't whole yet, beside the place where they are to go.
#pragma once

#include <filesystem>
#include <optional>
#include <span>
#include <string>

#include "mchost/base/unfinished.h"

namespace host {

// Only its owner may enter it, and it goes with the files in it when this does or when a signal ends the process. A
// killed process leaves one behind; the next one that is made in the same folder clears it away.
class WorkFolder {
  public:
    // In `folder`, empty for the current one.
    explicit WorkFolder(const std::filesystem::path& folder);
    ~WorkFolder();
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;

    // 0, or the system's error number when there is none.
    int error() const { return error_; }
    const std::string& path() const { return path_; }
    // Where a file is made that is to be `target`.
    std::filesystem::path draftOf(const std::filesystem::path& target) const { return path_ / target.filename(); }

    struct Placed {
        int error = 0;  // the system's error number
        size_t at = 0;  // of the target that it is about
    };
    // Gives the files that were made for these targets their places, as mdlWorkFolder_place.
    Placed place(std::span<const std::filesystem::path> targets) const;

  private:
    bool make(const std::string& pattern);

    std::string path_;
    std::optional<Unfinished> noted_;
    int lock_ = -1;  // held as long as the folder is in use
    int error_ = 0;
};

}  // namespace host
