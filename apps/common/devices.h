// The print devices by the names that users give them.
#pragma once

#include <algorithm>
#include <iterator>
#include <string_view>

#include "mclib.h"

namespace app {

struct Device {
    std::string_view name;
    int number;          // PRINT_...
    const char* suffix;  // of the print file
};

// clang-format off
inline constexpr Device devices[] = {
    {"postscript", PRINT_POSTSCRIPT, ".ps"},
    {"hpgl",       PRINT_HPGL,       ".hpgl"},
    {"pcl",        PRINT_PCL,        ".pcl"},
    {"ascii",      PRINT_ASCII,      ".txt"},
};
// clang-format on
inline constexpr const char* deviceNames = "postscript, hpgl, pcl or ascii";

// Null when there is no device of that name.
inline const Device* deviceNamed(std::string_view name) {
    const Device* const device = std::ranges::find(devices, name, &Device::name);
    return device == std::end(devices) ? nullptr : device;
}

}  // namespace app
