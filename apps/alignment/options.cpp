#include "options.h"

#include <algorithm>
#include <array>
#include <filesystem>

#include <mclib/mclib.h>
#include "apps/common/delivery.h"
#include "apps/common/names.h"
#include "apps/common/numbers.h"
#include "apps/common/tell.h"
#include "sheet.h"

namespace alignment {

// clang-format off
const char* const usage =
    "usage: mchost alignment ROAD.txt [options]\n"
    "  --last           the road of the last time, instead of ROAD.txt\n"
    "  --out NAME       where to make the files: a folder, or a path without suffix (default: the input's name in the\n"
    "                   current folder)\n"
    "  --paper A3       A0 to A5, lying; --portrait for standing\n"
    "  --scale 5000     instead of the SCALE of the input\n"
    "  --device postscript   of the print file: postscript, hpgl, pcl, or ascii for the station list as a text file;\n"
    "                   --out NAME.ps, .hpgl, .pcl or .txt tells it too\n"
    "  --print PRINTER  send the print file to a port (LPT1), a network printer (\\\\server\\printer), what $(VARIABLE) tells, or\n"
    "                   by a command: \"lp -d office %s\"\n"
    "  --picture png    png or svg\n"
    "  --raster 1600x1130    a PBM picture of so many pixels as well: black lines on white\n"
    "  --overwrite      replace files that are there\n"
    "  --list           print the station list, and make no files unless --out is given\n"
    "  --step 20        metres between the rows of the list\n"
    "  --attributes FILE.rsc       take the looks of attributes from that file, over what the input tells\n"
    "  --save-attributes FILE.rsc  keep the looks in that file\n"
    "  --own FILE.rsc   your own attributes: those of the file can be used, and the input's OWN lines are kept there\n"
    "  --help           print this\n";
// clang-format on

namespace {

bool wrong(const std::string& what) {
    wrongCall(what);
    return false;
}

// ---- values; `name` is the option's ----

template <std::string Options::*text>
bool setText(Options& options, std::string_view name, const std::string& value) {
    if (value.empty()) return wrong(std::string(name) + " needs a value that isn't empty");
    options.*text = value;
    return true;
}

template <double Options::*number>
bool setNumber(Options& options, std::string_view name, const std::string& value) {
    const auto read = app::numberIn<double>(value);
    if (!read || !(*read > 0)) return wrong(std::string(name) + " takes a number above 0, not \"" + value + "\"");
    options.*number = *read;
    return true;
}

bool setPaper(Options& options, std::string_view, const std::string& value) {
    options.paper = value;
    return paperSize(value, false) || wrong("--paper takes A0 to A5, not \"" + value + "\"");
}

bool setPicture(Options& options, std::string_view, const std::string& value) {
    options.picture = value;
    return value == "png" || value == "svg" || wrong("--picture takes png or svg, not \"" + value + "\"");
}

bool setDevice(Options& options, std::string_view, const std::string& value) {
    if (const McPrintDevice* device = app::deviceNamed(value)) options.device = device;
    return app::deviceNamed(value) || wrong("--device takes " + app::deviceNames() + ", not \"" + value + "\"");
}

// Such as "1600x1130".
std::optional<RasterSize> rasterSize(std::string_view text) {
    const auto side = [](std::string_view digits) {
        const int value = app::numberIn<int>(digits).value_or(0);
        return value >= 1 && value <= largestRasterSide ? value : 0;
    };
    const size_t cross = text.find('x');
    if (cross == text.npos) return {};
    const RasterSize size = {side(text.substr(0, cross)), side(text.substr(cross + 1))};
    if (size.width == 0 || size.height == 0) return {};
    return size;
}

bool setRaster(Options& options, std::string_view, const std::string& value) {
    options.raster = rasterSize(value);
    return options.raster || wrong("--raster takes WIDTHxHEIGHT, each 1 to " + std::to_string(largestRasterSide) +
                                   " pixels, not \"" + value + "\"");
}

bool setPrinter(Options& options, std::string_view, const std::string& value) {
    options.printer = value;
    const std::string refusal = app::printerRefusal(value);
    return refusal.empty() || wrong(refusal);
}

// The device by the suffix of `out`, which goes then. A name with another suffix keeps it.
bool chooseDevice(Options& options) {
    if (options.out == "-") return wrong("--out takes a folder or a path; standard output isn't written");
    std::string why;
    const std::filesystem::path out = options.out;
    const McPrintDevice* const device = app::deviceFor(out.extension().string(), options.device, why);
    const auto isMade = [&](const char* suffix) { return app::sameName(out.extension().string(), suffix); };
    constexpr const char* made = "--out takes a path without suffix, for the drawing, the print file and the picture";
    if (std::ranges::any_of(std::array{".mcd", ".png", ".svg", ".pbm"}, isMade))
        return wrong(options.out + ": " + made);
    if (!device) return wrong(options.out + ": " + why);
    const Paper paper = *paperSize(options.paper, options.portrait);
    if (!app::fitsDevice(*device, paper.width, paper.height))
        return wrong(std::string(device->name) + " files are for A4 paper, which " + paper.name +
                     " is cut to; take --paper A4 or another device");
    options.device = device;
    if (isMade(device->suffix)) options.out = (out.parent_path() / out.stem()).string();
    return true;
}

// ---- the options ----

struct ValueOption {
    std::string_view name;
    bool (*set)(Options& options, std::string_view name, const std::string& value);
};
constexpr ValueOption valueOptions[] = {
    {"--out", setText<&Options::out>},
    {"--paper", setPaper},
    {"--scale", setNumber<&Options::scale>},
    {"--device", setDevice},
    {"--print", setPrinter},
    {"--picture", setPicture},
    {"--raster", setRaster},
    {"--step", setNumber<&Options::step>},
    {"--attributes", setText<&Options::attributes>},
    {"--save-attributes", setText<&Options::saveAttributes>},
    {"--own", setText<&Options::own>},
};

struct Flag {
    std::string_view name;
    bool Options::*set;
};
constexpr Flag flags[] = {
    {"--portrait", &Options::portrait},
    {"--overwrite", &Options::overwrite},
    {"--list", &Options::list},
    {"--last", &Options::last},
};

}  // namespace

void wrongCall(const std::string& what) {
    app::fail(what);
    toolSubsystem_printf("%s", usage);
}

std::optional<Options> optionsFrom(const std::vector<std::string>& arguments) {
    Options options;
    for (size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        const auto option = std::ranges::find(valueOptions, argument, &ValueOption::name);
        const auto flag = std::ranges::find(flags, argument, &Flag::name);
        if (option != std::end(valueOptions)) {
            if (i + 1 == arguments.size()) return wrong(argument + " needs a value"), std::nullopt;
            if (!option->set(options, argument, arguments[++i])) return {};
        } else if (flag != std::end(flags)) {
            options.*flag->set = true;
        } else if ((argument.starts_with("-") && argument != "-") || !options.input.empty()) {
            return wrong("don't know what to do with \"" + argument + "\""), std::nullopt;
        } else {
            options.input = argument;
        }
    }
    if (options.last && !options.input.empty())
        return wrong("--last takes the road of the last time, so there can't be \"" + options.input + "\" as well"),
               std::nullopt;
    if (!chooseDevice(options)) return {};
    return options;
}

}  // namespace alignment
