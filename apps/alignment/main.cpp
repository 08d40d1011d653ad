// alignment: from the horizontal alignment of a road in a text file to a drawing on paper.
#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "apps/common/delivery.h"
#include "apps/common/outputs.h"
#include "apps/common/tell.h"
#include "checks.h"
#include "drawing.h"
#include "host/mdl/model.h"
#include "host/mdl/view.h"
#include "listing.h"
#include "mclib.h"
#include "raster.h"
#include "reader.h"
#include "sheet.h"

namespace alignment {

using app::fail;
using app::warn;
namespace {

namespace fs = std::filesystem;

constexpr const char* rasterSuffix = ".pbm";

enum ExitStatus { done = 0, failed = 1, wrongCall = 2 };

// clang-format off
constexpr const char* usage =
    "usage: mchost alignment ROAD.txt [options]\n"
    "  --out NAME       where to make the files: a folder, or a path without suffix (default: the input's name in the\n"
    "                   current folder)\n"
    "  --paper A3       A0 to A5, lying; --portrait for standing\n"
    "  --scale 5000     instead of the SCALE of the input\n"
    "  --device postscript   of the print file: postscript, hpgl, pcl, or ascii for the station list as a text file\n"
    "  --print PRINTER  send the print file to a port (LPT1), a network printer (\\\\server\\printer), what $(VARIABLE) tells, or\n"
    "                   by a command: \"lp -d office %s\"\n"
    "  --picture png    png or svg\n"
    "  --raster 1600x1130    a PBM picture of so many pixels as well: black lines on white\n"
    "  --overwrite      replace files that are there\n"
    "  --list           print the station list, and make no files unless --out is given\n"
    "  --step 20        metres between the rows of the list\n";

struct Device {
    std::string_view name;
    int number;
    const char* suffix;  // of the print file
};
constexpr auto devices = std::to_array<Device>({
    {"postscript", PRINT_POSTSCRIPT, ".ps"},
    {"hpgl",       PRINT_HPGL,       ".hpgl"},
    {"pcl",        PRINT_PCL,        ".pcl"},
    {"ascii",      PRINT_ASCII,      ".txt"},
});
// clang-format on

struct Options {
    std::string input, out, printer, paper = "A3", picture = "png";
    const Device* device = &devices[0];
    std::optional<RasterSize> raster;
    double scale = 0, step = 20;
    bool portrait = false, overwrite = false, list = false;
};

// ---- arguments ----

std::optional<double> positiveNumber(std::string_view text) {
    double value = 0;
    const auto [end, error] = std::from_chars(text.begin(), text.end(), value);
    if (error != std::errc() || end != text.end() || !(value > 0)) return {};
    return value;
}

bool wrong(const std::string& what) {
    fail(what);
    toolSubsystem_printf("%s", usage);
    return false;
}

// Such as "1600x1130".
std::optional<RasterSize> rasterSize(std::string_view text) {
    const auto side = [](std::string_view digits) {
        int value = 0;
        const auto [end, error] = std::from_chars(digits.begin(), digits.end(), value);
        const bool good = error == std::errc() && end == digits.end() && value >= 1 && value <= largestRasterSide;
        return good ? value : 0;
    };
    const size_t cross = text.find('x');
    if (cross == text.npos) return {};
    const RasterSize size = {side(text.substr(0, cross)), side(text.substr(cross + 1))};
    if (size.width == 0 || size.height == 0) return {};
    return size;
}

bool setDevice(Options& options, std::string_view name) {
    const auto device = std::ranges::find(devices, name, &Device::name);
    if (device == devices.end())
        return wrong("--device takes postscript, hpgl, pcl or ascii, not \"" + std::string(name) + "\"");
    options.device = &*device;
    return true;
}

bool setRaster(Options& options, const std::string& value) {
    options.raster = rasterSize(value);
    return options.raster.has_value() || wrong("--raster takes WIDTHxHEIGHT, each 1 to " +
                                               std::to_string(largestRasterSide) + " pixels, not \"" + value + "\"");
}

bool setOption(Options& options, std::string_view name, const std::string& value) {
    const auto number = [&](double& into) {
        const std::optional<double> read = positiveNumber(value);
        if (!read) return wrong(std::string(name) + " takes a number above 0, not \"" + value + "\"");
        into = *read;
        return true;
    };
    if (name == "--scale") return number(options.scale);
    if (name == "--step") return number(options.step);
    if (name == "--device") return setDevice(options, value);
    if (name == "--raster") return setRaster(options, value);
    if (name == "--print" && value.empty()) return wrong("--print takes the name of a printer or a command");
    if (name == "--print") options.printer = value;
    if (name == "--out") options.out = value;
    if (name == "--paper") options.paper = value;
    if (name == "--picture") options.picture = value;
    if (!paperSize(options.paper, false)) return wrong("--paper takes A0 to A5, not \"" + value + "\"");
    if (options.picture != "png" && options.picture != "svg") {
        return wrong("--picture takes png or svg, not \"" + value + "\"");
    }
    return true;
}

std::optional<Options> optionsFrom(const std::vector<std::string>& arguments) {
    static constexpr std::string_view withValue[] = {"--scale",  "--step",    "--out",    "--paper",
                                                     "--device", "--picture", "--raster", "--print"};
    Options options;
    for (size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (std::ranges::find(withValue, argument) != std::end(withValue)) {
            if (i + 1 == arguments.size()) return wrong(argument + " needs a value"), std::nullopt;
            if (!setOption(options, argument, arguments[++i])) return {};
        } else if (argument == "--portrait") {
            options.portrait = true;
        } else if (argument == "--overwrite") {
            options.overwrite = true;
        } else if (argument == "--list") {
            options.list = true;
        } else if (argument.starts_with("-") || !options.input.empty()) {
            return wrong("don't know what to do with \"" + argument + "\""), std::nullopt;
        } else {
            options.input = argument;
        }
    }
    if (options.input.empty()) return wrong("the name of the input file is missing"), std::nullopt;
    return options;
}

// ---- work ----

void reportGaps(const Road& road) {
    for (const Gap& gap : gaps(road)) {
        char text[256];
        std::snprintf(text, sizeof text, "gap at station %.3f: the elements lie %.4f m and turn %.4f gon apart",
                      gap.station, gap.distance, -gap.angle * 200 / M_PI);
        warn(text);
    }
}

fs::path outputBase(const Options& options) {
    const fs::path name = fs::path(options.input).stem();
    if (options.out.empty()) return name;
    const fs::path out = options.out;
    return out.filename().empty() || fs::is_directory(out) ? out / name : out;
}

bool writeDesignFile(const std::string& name, ElementDescr* page) {
    return (mdlElmdscr_add(page) != 0 && mdlSystem_saveDesignFile() == MDL_SUCCESS) ||
           fail(name + ": the drawing can't be stored");
}

// In millimetres on the paper.
struct PaperBox {
    double x, y, width, height;
};

bool printPage(const std::string& name, int device, ElementDescr* page, const PaperBox& box) {
    if (mclibPrint_fopen(name.c_str(), device) == 0) return fail(name + ": the print file can't be opened");
    mclibPrint_printElementDescr(page, box.x, box.y, box.width, box.height);
    mclibPrint_fclose();
    return mclibPrint_jobStatus() == MCLIB_SUCCESS ||
           fail(name + ": the print file can't be written; is the disk full?");
}

constexpr double longestPclSide = 297;  // A4, whatever the sheet is

// The sheet; the station list on a device that has nothing but texts.
bool print(const std::string& name, ElementDescr* page, const Road& road, const Sheet& sheet, const Options& options) {
    const int device = options.device->number;
    if (device == PRINT_PCL && std::max(sheet.paper.width, sheet.paper.height) > longestPclSide)
        warn("PCL files are for A4 paper, and " + sheet.paper.name + " is cut there; use --paper A4");
    if (device != PRINT_ASCII) return printPage(name, device, page, {margin, margin, sheet.width(), sheet.height()});
    const ListPage list = stationPage(road, options.step);
    return list.page && printPage(name, device, list.page.get(), {0, 0, list.width, list.height});
}

bool writePicture(const std::string& name, ElementDescr* page, const Sheet& sheet) {
    constexpr double dpi = 150;
    Range3d range = uprightFrame(sheet);
    const double edge = sheet.metres(margin) * mdlModelRef_getUorPerMaster(mdlModelRef_getActive());
    range.low.x -= edge;
    range.low.y -= edge;
    range.high.x += edge;
    range.high.y += edge;
    return mdlPicture_write(name.c_str(), page, &range, sheet.paper.width, dpi) == MDL_SUCCESS ||
           fail(name + ": the picture can't be written");
}

// Closes the design file that the work was done in, however the work ends.
class WorkFile {
  public:
    explicit WorkFile(const std::string& name) {
        open_ = mdlSystem_createDesignFile(name.c_str(), 0) == MDL_SUCCESS &&
                mdlSystem_newDesignFile(name.c_str(), 0) == MDL_SUCCESS;
    }
    ~WorkFile() { close(); }
    WorkFile(const WorkFile&) = delete;
    WorkFile& operator=(const WorkFile&) = delete;
    bool isOpen() const { return open_; }
    bool close() {
        const bool wasOpen = open_;
        open_ = false;
        return !wasOpen || mdlSystem_closeDesignFile() == MDL_SUCCESS;
    }

  private:
    bool open_ = false;
};

bool makeFiles(const Road& road, const Sheet& sheet, const Options& options) {
    const std::string pictureSuffix = "." + options.picture;
    const char* const printSuffix = options.device->suffix;
    std::vector<const char*> suffixes = {".mcd", printSuffix, pictureSuffix.c_str()};
    if (options.raster) suffixes.push_back(rasterSuffix);
    app::Outputs outputs(outputBase(options), suffixes);
    if (!outputs.prepare(options.input, options.overwrite)) return false;
    const std::string designName = outputs.temporary(".mcd");
    WorkFile workFile(designName);
    if (!workFile.isOpen()) return fail(designName + ": the design file can't be made");
    const Page page = drawRoad(road, sheet);
    if (!page || !writeDesignFile(designName, page.get())) return false;
    turnUpright(page.get(), sheet);
    if (!print(outputs.temporary(printSuffix), page.get(), road, sheet, options)) return false;
    if (!writePicture(outputs.temporary(pictureSuffix.c_str()), page.get(), sheet)) return false;
    if (options.raster && !writeRaster(outputs.temporary(rasterSuffix), page.get(), sheet, *options.raster))
        return false;
    if (!workFile.close()) return fail(designName + ": the design file can't be stored");
    if (!outputs.finish()) return false;
    for (const fs::path& name : outputs.names()) toolSubsystem_printf("alignment: made %s\n", name.c_str());
    return options.printer.empty() ||
           app::sendToPrinter(outputBase(options).string() + printSuffix, options.printer, 1);
}

bool work(const Options& options) {
    std::optional<Road> road = readRoad(options.input);
    if (!road) return false;
    if (options.scale > 0) road->scale = options.scale;
    reportGaps(*road);
    if (options.list) printStations(*road, options.step);
    if (options.list && options.out.empty()) return true;
    const std::optional<Sheet> sheet = layOut(*road, *paperSize(options.paper, options.portrait));
    return sheet && makeFiles(*road, *sheet, options);
}

}  // namespace
}  // namespace alignment

extern "C" __attribute__((visibility("default"))) int main(int argc, char** argv) {
    using namespace alignment;
    if (mclibMain_initMcLib("ALIGNMENT", argc, argv) != MCLIB_SUCCESS) return failed;
    const std::optional<Options> options = optionsFrom({argv + std::min(argc, 2), argv + argc});
    if (!options) return wrongCall;
    const bool good = work(*options);
    mclibElmAttr_freeAllAttribute();
    mclibElmAttr_freeGroupeNames();
    return good ? done : failed;
}
