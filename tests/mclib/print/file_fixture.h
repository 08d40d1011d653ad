// A folder with one print file, for drivers without an application.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>

#include "mclib/frame/export.h"

// The exported calls of a driver, and what a job writes in front of and behind what is drawn.
struct DriverCalls {
    int (*open)(const char* fileName);
    void (*close)();
    int (*status)();
    std::string head, end;
};

class PrintFileTest : public testing::Test {
  protected:
    explicit PrintFileTest(DriverCalls calls) : driver(std::move(calls)) {
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

    // What drawing writes to a page.
    template <class Draw>
    std::string page(Draw draw) {
        EXPECT_EQ(driver.open(file.c_str()), 1);
        draw();
        driver.close();
        EXPECT_EQ(driver.status(), MCLIB_SUCCESS);
        const std::string all = read(file);
        EXPECT_TRUE(all.starts_with(driver.head) && all.ends_with(driver.end)) << all;
        return all.substr(driver.head.size(), all.size() - driver.head.size() - driver.end.size());
    }

    // Neither without a job nor behind one that couldn't be opened, and the next job is a good one.
    template <class Draw>
    void expectNothingIsDrawnWithoutAJob(Draw drawAll) {
        drawAll();
        driver.close();
        EXPECT_EQ(driver.status(), MCLIB_SUCCESS);
        EXPECT_EQ(driver.open((folder / "no folder" / "page").c_str()), 0);
        drawAll();
        driver.close();
        EXPECT_EQ(driver.status(), MCLIB_ERROR);
        EXPECT_EQ(page([] {}), "");
    }

    const DriverCalls driver;
    std::filesystem::path folder;
    std::string file;
};

inline const Point3d corner[] = {{10, 20, 9}, {30, 20, 9}, {30, 40, 9}};
