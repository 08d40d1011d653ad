// labels: texts in frames, tied by leaders to what they point at, from a text file into a drawing.
#include <algorithm>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <mchost/mdl/elmdscr.h>
#include <mchost/mdl/model.h>
#include <mchost/mdl/scan.h>
#include <mchost/mdl/system.h>
#include <mchost/mdl/view.h>
#include <mclib/mclib.h>
#include <mchost/mdl/owned.hpp>
#include <mclib/app/arguments.hpp>
#include <mclib/app/outputs.hpp>
#include <mclib/app/tell.hpp>
#include <mclib/app/work_file.hpp>
#include "commands.h"
#include "drawing.h"
#include "options.h"
#include "reader.h"

namespace labels {
namespace {

namespace fs = std::filesystem;

enum ExitStatus { done = 0, failed = 1 };

constexpr const char* drawingSuffix = ".mcd";

fs::path outputBase(const Options& options) {
    return mcapp::outputBase(options.out, fs::path(options.input).stem());
}

// All that lies in the drawing, turned as view 1 shows it; null after a message.
mdl::DescrPtr upright() {
    mdl::Descr all;
    mdlCell_create(dgnBufP, nullptr, nullptr, 0);
    if (mdlElmdscr_new(all.out(), nullptr, dgnBufP) != MDL_SUCCESS) return nullptr;
    for (const FilePos position : mdl::Scan(mdlModelRef_getActive())) {
        mdl::DescrPtr element = mdl::readDescr(position, mdlModelRef_getActive());
        if (!element || mdlElmdscr_appendDscr(all.get(), element.get()) != MDL_SUCCESS) return nullptr;
        element.release();
    }
    RotMatrix view = {};
    mdlRMatrix_fromView(&view, 0);
    Transform turn = {};
    mdlTMatrix_fromRMatrix(&turn, &view);
    if (mdlElmdscr_transform(all.get(), &turn) != MDL_SUCCESS) return nullptr;
    return mdl::DescrPtr(std::exchange(*all.out(), nullptr));
}

// As view 1 shows the drawing, at its scale; one that is wider than a large sheet is made as wide as that.
bool writePicture(const std::string& name, const Paper& paper, double dpi) {
    constexpr double widest = 1189;
    const mdl::DescrPtr all = upright();
    Point3d low = {}, high = {};
    if (!all || mdlElmdscr_computeRange(&low, &high, all.get(), nullptr) != MDL_SUCCESS)
        return mcapp::failOutput(name, "the drawing can't be read for a picture");
    const double uor = mdlModelRef_getUorPerMaster(mdlModelRef_getActive());
    const double width = (high.x - low.x) / uor / paper.unitsPerMm();
    return mdlPicture_write(name.c_str(), all.get(), nullptr, std::min(width, widest), dpi) == MDL_SUCCESS ||
           mcapp::failOutput(name, "the picture can't be written; is the disk full?");
}

void tellOf(const mcapp::Outputs& outputs) {
    for (const fs::path& name : outputs.names()) toolSubsystem_printf("labels: made %s\n", name.c_str());
}

// Into a drawing of their own.
bool makeDrawing(const LabelFile& file, const Options& options) {
    const std::string pictureSuffix = "." + options.picture;
    mcapp::Outputs outputs(outputBase(options), {drawingSuffix, pictureSuffix.c_str()});
    if (!outputs.prepare(options.input, options.overwrite)) return false;
    const std::string drawing = outputs.temporary(drawingSuffix);
    mcapp::WorkFile workFile(drawing);
    if (!workFile.isOpen()) return mcapp::failOutput(drawing, "the design file can't be made");
    if (!drawLabels(file)) return false;
    if (!writePicture(outputs.temporary(pictureSuffix.c_str()), file.paper, options.dpi)) return false;
    if (!workFile.close()) return mcapp::failOutput(drawing, "the design file can't be stored; is the disk full?");
    if (!outputs.finish()) return false;
    tellOf(outputs);
    return true;
}

// Into the drawing that is open.
bool addToDrawing(const LabelFile& file, const Options& options) {
    const std::string drawing = tcbP->designFileName;
    const std::string pictureSuffix = "." + options.picture;
    mcapp::Outputs outputs(outputBase(options), {pictureSuffix.c_str()});
    if (mdlModelRef_isReadOnly(mdlModelRef_getActive()) != 0)
        return mcapp::fail(drawing + ": the drawing can't be written; nothing is labelled");
    if (!options.out.empty() && !outputs.prepare(options.input, options.overwrite)) return false;
    if (!drawLabels(file)) return false;
    if (mdlSystem_saveDesignFile() != MDL_SUCCESS)
        return mcapp::fail(drawing + ": the drawing can't be stored; is the disk full?");
    toolSubsystem_printf("labels: put %zu labels into %s\n", file.labels.size(), drawing.c_str());
    if (options.out.empty()) return true;
    if (!writePicture(outputs.temporary(pictureSuffix.c_str()), file.paper, options.dpi) || !outputs.finish())
        return false;
    tellOf(outputs);
    return true;
}

// The dialog, which stays. Labels of the file are drawn first.
bool openDialog(const LabelFile& file, const Options& options) {
    if (!file.labels.empty() && !addToDrawing(file, options)) return false;
    if (!openCommands(file.paper, file.style)) return false;
    startNamed(options.start);
    return true;
}

bool run(const LabelFile& file, const Options& options) {
    const bool isOpen = mdlModelRef_getActive() != nullptr;
    if (!options.commands) return isOpen ? addToDrawing(file, options) : makeDrawing(file, options);
    return isOpen ? openDialog(file, options)
                  : mcapp::fail("there is no drawing to place labels in; open one with mchost --open or --new");
}

ExitStatus work(const Options& options) {
    if (!beginAttributes()) return failed;
    LabelFile usual;
    if (const double shared = *mclibPlotScale_getActiveScaleP(); shared != 1) usual.paper.scale = shared;
    if (options.scale > 0) usual.paper.scale = options.scale;
    const std::optional<LabelFile> file =
        options.input.empty() ? usual : readLabels(options.input, options.scale, !options.commands);
    return file && run(*file, options) ? done : failed;
}

}  // namespace
}  // namespace labels

MDL_DESCRIPTION("labels with leaders for what lies in a drawing");

extern "C" __attribute__((visibility("default"))) int main(int argc, char** argv) {
    using namespace labels;
    return mcapp::runApplication("LABELS", argc, argv, usage, optionsFrom, work);
}
