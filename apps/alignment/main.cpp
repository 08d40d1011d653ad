// alignment: from the horizontal alignment of a road in a text file to a drawing on paper.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <mchost/mdl/model.h>
#include <mchost/mdl/system.h>
#include <mchost/mdl/view.h>
#include <mclib/mclib.h>
#include <mclib/app/arguments.hpp>
#include <mclib/app/delivery.hpp>
#include <mclib/app/last_files.hpp>
#include <mclib/app/outputs.hpp>
#include <mclib/app/tell.hpp>
#include <mclib/app/utf8.hpp>
#include <mclib/app/work_file.hpp>
#include "attributes.h"
#include "checks.h"
#include "drawing.h"
#include "listing.h"
#include "options.h"
#include "project.h"
#include "raster.h"
#include "reader.h"
#include "sheet.h"

namespace alignment {

using mcapp::fail;
namespace {

namespace fs = std::filesystem;

constexpr const char* rasterSuffix = ".pbm";

enum ExitStatus { done = 0, failed = 1, wrong = 2 };

// Where the roads are remembered that the user worked with.
constexpr const char* preferenceVariable = "MC_ALIGNMENT_PREF";
constexpr const char* preferenceFile = "alignment.upf";
constexpr int32_t roadFiles = 1;  // the record

// Whether neighbours meet; a line for each that doesn't.
bool meets(const Road& road) {
    const std::vector<Gap> found = gaps(road);
    for (const Gap& gap : found) {
        const auto behind = std::ranges::find(road.elements, gap.station, &Element::start);
        char text[256];
        std::snprintf(text, sizeof text,
                      "gap at station %.3f: the elements lie %.4f m and turn %.4f gon apart; look at the coordinates, "
                      "and at the order and signs of the radii",
                      gap.station, gap.distance, -gap.angle * 200 / M_PI);
        fail(behind->origin + ": " + text);
    }
    return found.empty();
}

fs::path outputBase(const Options& options) {
    return mcapp::outputBase(options.out, fs::path(options.input).stem());
}

// View 1 shows the sheet upright, also to those who label it.
bool turnView(const Sheet& sheet) {
    const double c = std::cos(sheet.angle), s = std::sin(sheet.angle);
    const RotMatrix upright = {{{c, s, 0}, {-s, c, 0}, {0, 0, 1}}};
    return mdlView_setRotation(0, &upright) == MDL_SUCCESS && mdlView_fit(0) == MDL_SUCCESS;
}

bool writeDesignFile(const std::string& name, ElementDescr* page, const Sheet& sheet) {
    return (mdlElmdscr_add(page) != 0 && turnView(sheet) && mdlSystem_saveDesignFile() == MDL_SUCCESS) ||
           mcapp::failOutput(name, "the drawing can't be stored; is the disk full?");
}

// In millimetres on the paper.
struct PaperBox {
    double x, y, width, height;
};

bool printPage(const std::string& name, int device, ElementDescr* page, const PaperBox& box) {
    if (mclibPrint_fopen(name.c_str(), device) == 0) return mcapp::failOutput(name, "the print file can't be opened");
    mclibPrint_printElementDescr(page, box.x, box.y, box.width, box.height);
    mclibPrint_fclose();
    return mclibPrint_jobStatus() == MCLIB_SUCCESS ||
           mcapp::failOutput(name, "the print file can't be written; is the disk full?");
}

// The sheet; the station list on a device that has nothing but texts.
bool print(const std::string& name, ElementDescr* page, const Road& road, const Sheet& sheet, const Options& options) {
    const int device = options.device->code;
    if (!mcapp::deviceIs(*options.device, PRINT_DEVICE_TEXT_ONLY))
        return printPage(name, device, page, {margin, margin, sheet.width(), sheet.height()});
    const ListPage list = stationPage(road, options.step);
    return list.page && printPage(name, device, list.page.get(), {0, 0, list.width, list.height}) &&
           (mcapp::makeUtf8(name) || mcapp::failOutput(name, "the station list can't be written; is the disk full?"));
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
           mcapp::failOutput(name, "the picture can't be written; is the disk full?");
}

bool makeFiles(const Road& road, const Sheet& sheet, const Project& project, const Options& options) {
    const std::string pictureSuffix = "." + options.picture;
    const char* const printSuffix = options.device->suffix;
    std::vector<const char*> suffixes = {".mcd", printSuffix, pictureSuffix.c_str()};
    if (options.raster) suffixes.push_back(rasterSuffix);
    mcapp::Outputs outputs(outputBase(options), suffixes);
    if (!outputs.prepare(options.input, options.overwrite)) return false;
    const std::string designName = outputs.temporary(".mcd");
    mcapp::WorkFile workFile(designName);
    if (!workFile.isOpen()) return mcapp::failOutput(designName, "the design file can't be made");
    const Page page = drawRoad(road, sheet);
    if (!page || !project.write(designName) || !writeDesignFile(designName, page.get(), sheet)) return false;
    if (!turnUpright(page.get(), sheet) || !print(outputs.temporary(printSuffix), page.get(), road, sheet, options))
        return false;
    if (!writePicture(outputs.temporary(pictureSuffix.c_str()), page.get(), sheet)) return false;
    if (options.raster && !writeRaster(outputs.temporary(rasterSuffix), page.get(), sheet, *options.raster))
        return false;
    if (!workFile.close()) return mcapp::failOutput(designName, "the design file can't be stored; is the disk full?");
    if (!outputs.finish()) return false;
    for (const fs::path& name : outputs.names()) toolSubsystem_printf("alignment: made %s\n", name.c_str());
    const std::string printFile = outputBase(options).string() + printSuffix;
    return options.printer.empty() || mcapp::sendToPrinter(printFile, printFile, options.printer, 1);
}

// The road and the looks that it is drawn with, from the files that the user named.
std::optional<Road> readAll(const Options& options, const Project& project, Attributes& attributes) {
    Road begun;
    project.tell(begun);
    if (!attributes.begin(options.own)) return {};
    std::optional<Road> road =
        readRoad(options.input, mcapp::letterRefusalOf(*options.device), std::move(begun), attributes);
    if (!road) return {};
    if (options.scale > 0) road->scale = options.scale;
    if (!attributes.canKeep(options.saveAttributes, options.overwrite)) return {};
    if (!options.attributes.empty() && !attributes.readLooks(options.attributes)) return {};
    return road;
}

bool draw(const Road& road, Project& project, const Options& options) {
    const std::optional<Sheet> sheet = layOut(road, *paperSize(options.paper, options.portrait));
    if (!sheet) return false;
    project.take(road);
    return makeFiles(road, *sheet, project, options);
}

bool work(const Options& options, mcapp::LastFiles& lastFiles) {
    Project project = Project::ofOpenDrawing();
    Attributes attributes;
    const std::optional<Road> road = readAll(options, project, attributes);
    if (!road) return false;
    lastFiles.remember(roadFiles, options.input);
    const bool whole = meets(*road);
    if (options.list) printStations(*road, options.step);
    const bool drawing = !options.list || !options.out.empty();
    if (drawing && !draw(*road, project, options)) return false;
    return attributes.saveOwn() && (options.saveAttributes.empty() || attributes.saveLooks(options.saveAttributes)) &&
           whole;
}

ExitStatus run(const std::vector<std::string>& arguments) {
    if (mcapp::helped(arguments, usage)) return done;
    std::optional<Options> options = optionsFrom(arguments);
    if (!options) return wrong;
    mcapp::LastFiles lastFiles(preferenceVariable, preferenceFile);
    if (options->input.empty()) {
        const std::optional<std::string> road =
            options->last ? lastFiles.last(roadFiles) : lastFiles.ask(roadFiles, "*.txt", "The road to draw");
        if (!road && options->last) return failed;
        if (!road) {
            mcapp::failCall("the name of the input file is missing", usage);
            return wrong;
        }
        options->input = *road;
    }
    return work(*options, lastFiles) ? done : failed;
}

}  // namespace
}  // namespace alignment

MDL_DESCRIPTION("roads of lines, arcs and clothoids on a sheet");

extern "C" __attribute__((visibility("default"))) int main(int argc, char** argv) {
    using namespace alignment;
    if (mclibMain_initMcLib("ALIGNMENT", argc, argv) != MCLIB_SUCCESS) return failed;
    const ExitStatus status = run({argv + std::min(argc, 2), argv + argc});
    mclibElmAttr_freeAllAttribute();
    mclibElmAttr_freeGroupeNames();
    return status;
}
