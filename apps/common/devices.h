// The print devices by the names and suffixes that users give them, and the letters that they have.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

#include <mclib/mclib.h>
#include "apps/common/input.h"

namespace app {

// The first one is taken when none is told.
const McPrintDevice& usualDevice();
// The devices that make files, by the names that users ask for them: "a, b or c".
std::string deviceNames();
// Null when there is no device of that name that makes files.
const McPrintDevice* deviceNamed(std::string_view name);

// The device for an output file of that suffix (".ps"; letter case doesn't count) when the user asked for `asked`
// (null: for none). Null, with `why`, when the suffix belongs to another device or to something that isn't made here.
const McPrintDevice* deviceFor(std::string_view suffix, const McPrintDevice* asked, std::string& why);

inline bool deviceIs(const McPrintDevice& device, uint32_t trait) {
    return (device.traits & trait) != 0;
}

// Whether paper of that size, in millimetres, goes through the device.
inline bool fitsDevice(const McPrintDevice& device, double width, double height) {
    return device.longestPaperSide == 0 || std::max(width, height) <= device.longestPaperSide;
}

// Why letters of texts are refused that go to the device. A device that needs to be told to bring more letters is told
// so when the first of them comes, unless the user has told it something.
Input::LetterRefusal letterRefusalOf(const McPrintDevice& device);

}  // namespace app
