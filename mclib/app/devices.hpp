// The print devices by the names and suffixes that users give them, and the letters that they have.
#pragma once

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include <mchost/mdl/system.h>
#include <mclib/mclib.h>
#include <mclib/app/input.hpp>
#include <mclib/app/names.hpp>

namespace mcapp {

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

namespace detail {

// Those that make files.
inline std::vector<const McPrintDevice*> fileDevices() {
    std::vector<const McPrintDevice*> devices;
    for (int row = 0; const McPrintDevice* device = mclibPrint_getDeviceP(row); ++row)
        if (device->suffix) devices.push_back(device);
    return devices;
}

// clang-format off
// Suffixes of files that aren't print files, and what to do for one.
struct Foreign {
    std::string_view suffix;
    const char* instead;
};
inline constexpr const char* fromPostscript = "make a .ps file and convert it, as ps2pdf does, or plot from a drawing";
inline constexpr const char* fromText = "make a .txt file, which holds the pages as a plain table";
inline constexpr const char* fromDesign = "open a drawing with --new and place the pages there from the preview";
inline constexpr Foreign foreignSuffixes[] = {
    {".pdf",  fromPostscript}, {".png",  fromPostscript}, {".jpg", fromPostscript}, {".svg", fromPostscript},
    {".tif",  fromPostscript}, {".csv",  fromText},       {".xls", fromText},       {".xlsx", fromText},
    {".ods",  fromText},       {".doc",  fromText},       {".docx", fromText},      {".odt", fromText},
    {".mcd",  fromDesign},     {".dxf",  fromDesign},     {".dwg", fromDesign},
};
// clang-format on

inline bool bringsMoreLetters(const McPrintDevice& device) {
    constexpr int userLevel = 4;
    char value[16] = "";
    return device.lettersVariable && mdlSystem_getCfgVar(value, device.lettersVariable, sizeof value) != MDL_SUCCESS &&
           mdlSystem_defineCfgVar(device.lettersVariable, device.lettersValue, userLevel) == MDL_SUCCESS;
}

inline std::string refusalOf(const McPrintDevice& device, char letter) {
    if (mclibPrint_showsLetter(device.code, letter) || bringsMoreLetters(device)) return {};
    char code[8];
    std::snprintf(code, sizeof code, "%02X", static_cast<unsigned char>(letter));
    const std::string isnt = std::string("the letter \"") + letter + "\" (" + code +
                             " of Windows-1252) isn't among those of " + device.name + " files; ";
    if (!device.lettersVariable) return isnt + "write it with others, or take another device";
    return isnt + "define " + device.lettersVariable + "=" + device.lettersValue + ", or write it with others";
}

}  // namespace detail

inline const McPrintDevice& usualDevice() {
    return *mclibPrint_getDeviceP(0);
}

inline std::string deviceNames() {
    std::string names;
    const std::vector<const McPrintDevice*> devices = detail::fileDevices();
    for (const McPrintDevice* device : devices)
        names += std::string(names.empty() ? "" : device == devices.back() ? " or " : ", ") + device->key;
    return names;
}

inline const McPrintDevice* deviceNamed(std::string_view name) {
    for (const McPrintDevice* device : detail::fileDevices())
        if (name == device->key) return device;
    return nullptr;
}

inline const McPrintDevice* deviceFor(std::string_view suffix, const McPrintDevice* asked, std::string& why) {
    const McPrintDevice* own = nullptr;
    for (const McPrintDevice* device : detail::fileDevices())
        if (sameName(device->suffix, suffix)) own = device;
    const auto foreign = std::ranges::find_if(detail::foreignSuffixes,
                                              [&](const detail::Foreign& row) { return sameName(row.suffix, suffix); });
    if (foreign != std::end(detail::foreignSuffixes)) {
        why = "a " + std::string(suffix) + " file can't be made here; " + foreign->instead;
        return nullptr;
    }
    if (!own) return asked ? asked : &usualDevice();
    if (!asked || asked == own) return own;
    why = std::string(suffix) + " is the suffix of " + own->key + " files, and --device asks for " + asked->key +
          ", whose suffix is " + asked->suffix;
    return nullptr;
}

inline Input::LetterRefusal letterRefusalOf(const McPrintDevice& device) {
    return [&device](char letter) { return detail::refusalOf(device, letter); };
}

}  // namespace mcapp
