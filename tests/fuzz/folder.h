// Where a fuzzer keeps the files of its process: in memory where that can be, and gone at the end.
#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>

#include "bytes.h"

class Folder {
  public:
    Folder() : path_(std::string(access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp") + "/fuzz_XXXXXX") {
        require(mkdtemp(path_.data()));
    }
    ~Folder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::string pathOf(std::string_view name) const { return path_ + "/" + std::string(name); }
    // Gives the file's path.
    std::string write(std::string_view name, std::string_view bytes) const {
        std::ofstream(pathOf(name), std::ios::binary) << bytes;
        return pathOf(name);
    }
    std::string read(std::string_view name) const {
        std::ostringstream bytes;
        bytes << std::ifstream(pathOf(name), std::ios::binary).rdbuf();
        return bytes.str();
    }
    // Of a file with its companions.
    void removeDatabase(const std::string& path) const {
        for (const char* companion : {"", "-wal", "-shm", "-journal"}) unlink((path + companion).c_str());
    }

  private:
    std::string path_;
};

// The folder of this process.
inline const Folder& folder() {
    static const Folder only;
    return only;
}
