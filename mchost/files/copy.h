// Copies of files that are there as a whole or not at all.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "mchost/base/unfinished.h"

namespace host {

// A new file in a folder, without a name that anybody looks for; removed at the end unless it was put in place.
class TemporaryFile {
  public:
    explicit TemporaryFile(const std::filesystem::path& folder);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    // Writes all of a file into it, down to the disk. 0 or the system's error number.
    int fillFrom(const std::filesystem::path& source);
    // Takes the name of `destination`, in whose place it then stands, with the permissions that one had.
    int putInPlace(const std::filesystem::path& destination);
    const std::string& path() const { return path_; }

  private:
    std::string path_;
    std::optional<Unfinished> noted_;
    int descriptor_ = -1;
    int error_ = 0;
};

// Copies a file on paths of the system, as mdlFile_copy does for names of files.
int copyFile(const std::filesystem::path& destination, const std::filesystem::path& source);

}  // namespace host
