#include "apps/common/devices.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <vector>

#include <mchost/mdl/system.h>
#include "apps/common/names.h"

namespace app {

namespace {

// Those that make files.
std::vector<const McPrintDevice*> fileDevices() {
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
constexpr const char* fromPostscript = "make a .ps file and convert it, as ps2pdf does, or plot from a drawing";
constexpr const char* fromText = "make a .txt file, which holds the pages as a plain table";
constexpr const char* fromDesign = "open a drawing with --new and place the pages there from the preview";
constexpr Foreign foreignSuffixes[] = {
    {".pdf",  fromPostscript}, {".png",  fromPostscript}, {".jpg", fromPostscript}, {".svg", fromPostscript},
    {".tif",  fromPostscript}, {".csv",  fromText},       {".xls", fromText},       {".xlsx", fromText},
    {".ods",  fromText},       {".doc",  fromText},       {".docx", fromText},      {".odt", fromText},
    {".mcd",  fromDesign},     {".dxf",  fromDesign},     {".dwg", fromDesign},
};
// clang-format on

bool bringsMoreLetters(const McPrintDevice& device) {
    constexpr int userLevel = 4;
    char value[16] = "";
    return device.lettersVariable && mdlSystem_getCfgVar(value, device.lettersVariable, sizeof value) != MDL_SUCCESS &&
           mdlSystem_defineCfgVar(device.lettersVariable, device.lettersValue, userLevel) == MDL_SUCCESS;
}

std::string refusalOf(const McPrintDevice& device, char letter) {
    if (mclibPrint_showsLetter(device.code, letter) || bringsMoreLetters(device)) return {};
    char code[8];
    std::snprintf(code, sizeof code, "%02X", static_cast<unsigned char>(letter));
    const std::string isnt = std::string("the letter \"") + letter + "\" (" + code +
                             " of Windows-1252) isn't among those of " + device.name + " files; ";
    if (!device.lettersVariable) return isnt + "write it with others, or take another device";
    return isnt + "define " + device.lettersVariable + "=" + device.lettersValue + ", or write it with others";
}

}  // namespace

const McPrintDevice& usualDevice() {
    return *mclibPrint_getDeviceP(0);
}

std::string deviceNames() {
    std::string names;
    const std::vector<const McPrintDevice*> devices = fileDevices();
    for (const McPrintDevice* device : devices)
        names += std::string(names.empty() ? "" : device == devices.back() ? " or " : ", ") + device->key;
    return names;
}

const McPrintDevice* deviceNamed(std::string_view name) {
    for (const McPrintDevice* device : fileDevices())
        if (name == device->key) return device;
    return nullptr;
}

const McPrintDevice* deviceFor(std::string_view suffix, const McPrintDevice* asked, std::string& why) {
    const McPrintDevice* own = nullptr;
    for (const McPrintDevice* device : fileDevices())
        if (sameName(device->suffix, suffix)) own = device;
    const auto foreign =
        std::ranges::find_if(foreignSuffixes, [&](const Foreign& row) { return sameName(row.suffix, suffix); });
    if (foreign != std::end(foreignSuffixes)) {
        why = "a " + std::string(suffix) + " file can't be made here; " + foreign->instead;
        return nullptr;
    }
    if (!own) return asked ? asked : &usualDevice();
    if (!asked || asked == own) return own;
    why = std::string(suffix) + " is the suffix of " + own->key + " files, and --device asks for " + asked->key +
          ", whose suffix is " + asked->suffix;
    return nullptr;
}

Input::LetterRefusal letterRefusalOf(const McPrintDevice& device) {
    return [&device](char letter) { return refusalOf(device, letter); };
}

}  // namespace app
