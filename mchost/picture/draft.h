// A picture's file while it is being made.
#pragma once

#include <cstring>
#include <filesystem>
#include <string>

#include "mchost/files/work_folder.h"

namespace host {

// A file on its way to the place of `target`, removed unless it gets there.
class Draft {
  public:
    explicit Draft(const std::filesystem::path& target)
        : target_(target), folder_(target.parent_path()), path_(folder_.draftOf(target)) {}
    // Why no file can be made there; empty when it can.
    std::string problem() const {
        if (folder_.error() == 0) return {};
        return std::string("its folder can't be written (") + std::strerror(folder_.error()) + "); give another one";
    }
    const std::string& path() const { return path_.native(); }
    bool place() const { return folder_.place({&target_, 1}).error == 0; }

  private:
    std::filesystem::path target_;
    WorkFolder folder_;
    std::filesystem::path path_;
};

}  // namespace host
