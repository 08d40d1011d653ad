// A folder with one print file, for drivers without an application.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "mclib/frame/export.h"

class PrintFileTest : public testing::Test {
  protected:
    PrintFileTest() {
        std::string name = (std::filesystem::temp_directory_path() / "mclib_print_XXXXXX").string();
        folder = mkdtemp(name.data());
        file = (folder / "page.out").string();
    }
    ~PrintFileTest() override { std::filesystem::remove_all(folder); }

    static std::string read(const std::filesystem::path& path) {
        std::ostringstream bytes;
        bytes << std::ifstream(path, std::ios::binary).rdbuf();
        return bytes.str();
    }

    std::filesystem::path folder;
    std::string file;
};

inline const Point3d corner[] = {{10, 20, 9}, {30, 20, 9}, {30, 40, 9}};
