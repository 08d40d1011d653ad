// A picture's file while it is being made.
#pragma once

#include <unistd.h>

#include <filesystem>
#include <string>

namespace host {

// A file beside the one to be made, removed unless it has taken its place.
class Draft {
  public:
    explicit Draft(const std::filesystem::path& target)
        : target_(target), path_(target.string() + ".part" + std::to_string(getpid())) {}
    ~Draft() {
        std::error_code ignored;
        if (!placed_) std::filesystem::remove(path_, ignored);
    }
    const std::string& path() const { return path_; }
    bool place() {
        std::error_code failed;
        std::filesystem::rename(path_, target_, failed);
        placed_ = !failed;
        return placed_;
    }

  private:
    std::filesystem::path target_;
    std::string path_;
    bool placed_ = false;
};

}  // namespace host
