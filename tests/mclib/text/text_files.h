// A folder of its own for a test that reads text files; no session is needed.
#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

class TextFiles {
  public:
    TextFiles() {
        std::string name = (std::filesystem::temp_directory_path() / "mclib_text_XXXXXX").string();
        folder = mkdtemp(name.data());
    }
    ~TextFiles() { std::filesystem::remove_all(folder); }
    TextFiles(const TextFiles&) = delete;
    TextFiles& operator=(const TextFiles&) = delete;

    // Writes a file below the folder, and gives its path.
    std::string write(std::string_view name, std::string_view bytes) const {
        const std::filesystem::path path = folder / name;
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary) << bytes;
        return path.string();
    }

    std::filesystem::path folder;
};
