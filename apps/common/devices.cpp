#include "apps/common/devices.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

#include <mchost/mdl/system.h>
#include "apps/common/names.h"

namespace app {

namespace {

constexpr const char* encodingVariable = "MC_PSENCODING";
constexpr const char* allLetters = "1252";

std::string noSuchLetter(char letter, const char* device, const char* instead) {
    char code[8];
    std::snprintf(code, sizeof code, "%02X", static_cast<unsigned char>(letter));
    return std::string("the letter \"") + letter + "\" (" + code + " of Windows-1252) isn't among those of " + device +
           "; " + instead;
}

// The letters beyond ASCII that every PostScript file has. The others need an encoding, which is asked for when the
// first of them comes, unless the user has chosen one.
constexpr std::string_view postscriptLetters =
    "\xC4\xE4\xD6\xF6\xDC\xFC\xDF\xE6\xC6\xF8\xD8\xE5\xC5\xA9\xA1\xA2\xA3\xA5\xA7\xAB\xB6\xBB\xBF";

std::string postscriptRefusal(char letter) {
    constexpr int userLevel = 4;
    if (static_cast<unsigned char>(letter) < 0x80 || postscriptLetters.find(letter) != postscriptLetters.npos)
        return {};
    char encoding[16] = "";
    if (mdlSystem_getCfgVar(encoding, encodingVariable, sizeof encoding) != MDL_SUCCESS) {
        mdlSystem_defineCfgVar(encodingVariable, allLetters, userLevel);
        return {};
    }
    if (encoding == std::string_view(allLetters)) return {};
    return noSuchLetter(letter, "PostScript files", "define MC_PSENCODING=1252, or write it with others");
}

// A plotter has six letters beyond ASCII, in the places of these signs.
std::string hpglRefusal(char letter) {
    constexpr std::string_view letters = "\xE6\xF8\xE5\xC6\xD8\xC5", signs = "{|}[\\]";
    const bool plain = static_cast<unsigned char>(letter) < 0x80 && signs.find(letter) == signs.npos;
    if (plain || letters.find(letter) != letters.npos) return {};
    return noSuchLetter(letter, "HP-GL plotters", "write it with others, or take another device");
}

// PCL printers have the letters of ISO 8859-1, which leaves these codes to control characters.
std::string pclRefusal(char letter) {
    const auto code = static_cast<unsigned char>(letter);
    if (code < 0x80 || code > 0x9F) return {};
    return noSuchLetter(letter, "PCL printers", "write it with others, or take another device");
}

// clang-format off
constexpr Device devices[] = {
    {"postscript", PRINT_POSTSCRIPT, ".ps",   postscriptRefusal},
    {"hpgl",       PRINT_HPGL,       ".hpgl", hpglRefusal},
    {"pcl",        PRINT_PCL,        ".pcl",  pclRefusal},
    {"ascii",      PRINT_ASCII,      ".txt",  nullptr},
};

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

}  // namespace

const Device& usualDevice() {
    return devices[0];
}

const Device* deviceNamed(std::string_view name) {
    const Device* const device = std::ranges::find(devices, name, &Device::name);
    return device == std::end(devices) ? nullptr : device;
}

const Device* deviceFor(std::string_view suffix, const Device* asked, std::string& why) {
    const auto hasSuffix = [&](const auto& row) { return sameName(row.suffix, suffix); };
    const Device* const own = std::ranges::find_if(devices, hasSuffix);
    const Foreign* const foreign = std::ranges::find_if(foreignSuffixes, hasSuffix);
    if (foreign != std::end(foreignSuffixes)) {
        why = "a " + std::string(suffix) + " file can't be made here; " + foreign->instead;
        return nullptr;
    }
    if (own == std::end(devices)) return asked ? asked : &usualDevice();
    if (!asked || asked == own) return own;
    why = std::string(suffix) + " is the suffix of " + std::string(own->name) + " files, and --device asks for " +
          std::string(asked->name) + ", whose suffix is " + asked->suffix;
    return nullptr;
}

}  // namespace app
