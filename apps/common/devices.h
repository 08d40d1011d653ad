// The print devices by the names and suffixes that users give them, and the letters that they have.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <mclib/mclib.h>
#include "apps/common/input.h"

namespace app {

struct Device {
    std::string_view name;
    int number;                          // PRINT_...
    const char* suffix;                  // of the print file
    Input::LetterRefusal letterRefusal;  // of texts that go there; null: it has all of Windows-1252
};

// The first one is taken when none is told.
const Device& usualDevice();
inline constexpr const char* deviceNames = "postscript, hpgl, pcl or ascii";
// Null when there is no device of that name.
const Device* deviceNamed(std::string_view name);

// The device for an output file of that suffix (".ps"; letter case doesn't count) when the user asked for `asked`
// (null: for none). Null, with `why`, when the suffix belongs to another device or to something that isn't made here.
const Device* deviceFor(std::string_view suffix, const Device* asked, std::string& why);

}  // namespace app
