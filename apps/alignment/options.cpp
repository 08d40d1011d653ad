#include "options.h"

#include <algorithm>
#include <array>
#include <filesystem>

#include <mclib/mclib.h>
#include <mclib/app/arguments.hpp>
#include <mclib/app/delivery.hpp>
#include <mclib/app/names.hpp>
#include <mclib/app/numbers.hpp>
#include <mclib/app/tell.hpp>
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
    "  --print PRINTER  send the print file to a port (LPT1), a network printer (\\\\server\\printer), what\n"
    "                   $(VARIABLE) tells, or by a command: \"lp -d office %s\"\n"
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
    return mcapp::failCall(what, usage);
}

// ---- values; a setter gives what is wrong ----

std::string setPaper(Options& options, std::string_view, const std::string& value) {
    options.paper = value;
    return paperSize(value, false) ? "" : "--paper takes A0 to A5, not \"" + value + "\"";
}

std::string setPicture(Options& options, std::string_view, const std::string& value) {
    options.picture = value;
    return value == "png" || value == "svg" ? "" : "--picture takes png or svg, not \"" + value + "\"";
}

std::string setDevice(Options& options, std::string_view, const std::string& value) {
    options.device = mcapp::deviceNamed(value);
    return options.device ? "" : "--device takes " + mcapp::deviceNames() + ", not \"" + value + "\"";
}

// Such as "1600x1130".
std::optional<RasterSize> rasterSize(std::string_view text) {
    const auto side = [](std::string_view digits) {
        const int value = mcapp::numberIn<int>(digits).value_or(0);
        return value >= 1 && value <= largestRasterSide ? value : 0;
    };
    const size_t cross = text.find('x');
    if (cross == text.npos) return {};
    const RasterSize size = {side(text.substr(0, cross)), side(text.substr(cross + 1))};
    if (size.width == 0 || size.height == 0) return {};
    return size;
}

std::string setRaster(Options& options, std::string_view, const std::string& value) {
    options.raster = rasterSize(value);
    if (options.raster) return {};
    return "--raster takes WIDTHxHEIGHT, each 1 to " + std::to_string(largestRasterSide) + " pixels, not \"" + value +
           "\"";
}

std::string setPrinter(Options& options, std::string_view, const std::string& value) {
    options.printer = value;
    return mcapp::printerRefusal(value);
}

// The device by the suffix of `out`, which goes then. A name with another suffix keeps it.
bool chooseDevice(Options& options) {
    if (options.out == "-") return wrong("--out takes a folder or a path; standard output isn't written");
    std::string why;
    const std::filesystem::path out = options.out;
    const McPrintDevice* const device = mcapp::deviceFor(out.extension().string(), options.device, why);
    const auto isMade = [&](const char* suffix) { return mcapp::sameName(out.extension().string(), suffix); };
    constexpr const char* made = "--out takes a path without suffix, for the drawing, the print file and the picture";
    if (std::ranges::any_of(std::array{".mcd", ".png", ".svg", ".pbm"}, isMade))
        return wrong(options.out + ": " + made);
    if (!device) return wrong(options.out + ": " + why);
    const Paper paper = *paperSize(options.paper, options.portrait);
    if (!mcapp::fitsDevice(*device, paper.width, paper.height))
        return wrong(std::string(device->name) + " files are for A4 paper, which " + paper.name +
                     " is cut to; take --paper A4 or another device");
    options.device = device;
    if (isMade(device->suffix)) options.out = (out.parent_path() / out.stem()).string();
    return true;
}

// ---- the options ----

constexpr mcapp::ValueOption<Options> valueOptions[] = {
    {"--out", mcapp::setText<&Options::out>},
    {"--paper", setPaper},
    {"--scale", mcapp::setPositive<&Options::scale>},
    {"--device", setDevice},
    {"--print", setPrinter},
    {"--picture", setPicture},
    {"--raster", setRaster},
    {"--step", mcapp::setPositive<&Options::step>},
    {"--attributes", mcapp::setText<&Options::attributes>},
    {"--save-attributes", mcapp::setText<&Options::saveAttributes>},
    {"--own", mcapp::setText<&Options::own>},
};

constexpr mcapp::Flag<Options> flags[] = {
    {"--portrait", &Options::portrait},
    {"--overwrite", &Options::overwrite},
    {"--list", &Options::list},
    {"--last", &Options::last},
};

}  // namespace

std::optional<Options> optionsFrom(const std::vector<std::string>& arguments) {
    Options options;
    if (!mcapp::takeArguments(options, arguments, {usage, valueOptions, flags, &Options::input})) return {};
    if (options.last && !options.input.empty()) {
        wrong("--last takes the road of the last time, so there can't be \"" + options.input + "\" as well");
        return {};
    }
    if (!chooseDevice(options)) return {};
    return options;
}

}  // namespace alignment
