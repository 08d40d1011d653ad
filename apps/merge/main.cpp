// merge: drawings that need no other files: what is attached to them becomes part of them.
#include <cstring>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include <mchost/mdl/files.h>
#include <mchost/mdl/model.h>
#include <mchost/mdl/system.h>
#include <mchost/mdl/undo.h>
#include <mclib/mclib.h>
#include <mchost/mdl/owned.hpp>
#include <mclib/app/arguments.hpp>
#include <mclib/app/drawings.hpp>
#include <mclib/app/open_drawing.hpp>
#include <mclib/app/outputs.hpp>
#include <mclib/app/system_path.hpp>
#include <mclib/app/tell.hpp>
#include "options.h"
#include "references.h"

namespace merge {
namespace {

namespace fs = std::filesystem;

enum ExitStatus { done = 0, failed = 1, wrongCall = 2 };

constexpr const char* suffix = ".mcd";

// What isn't found is left out, or the drawing refused. False after a message.
bool takesWhatIsMissing(const std::string& name, ModelRef* model, bool leaveOut) {
    const std::vector<std::string> missing = missingFrom(model);
    for (const std::string& file : missing) {
        const std::string text = name + ": \"" + file + "\", which is attached, isn't found";
        if (leaveOut)
            mcapp::warn(text + "; it is left out");
        else
            mcapp::fail(text);
    }
    return missing.empty() || leaveOut ||
           mcapp::fail(name +
                       ": it isn't merged; bring the files back, name their folders in MC_REFERENCES, or "
                       "leave them out with --leave-out");
}

std::string counted(size_t count, const char* what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

// Of the active drawing, in one step; tells what has become of `name`. False after a message.
bool mergeActive(const std::string& name, int view) {
    const size_t references = attachedTo(nullptr, true).size();
    const uint32_t before = mdlModelRef_getElementCount(nullptr);
    mclibMerge_refFiles(view);
    if (!attachedTo(nullptr, false).empty()) return mcapp::fail(name + ": what is attached to it can't be detached");
    const size_t elements = mdlModelRef_getElementCount(nullptr) - before;
    toolSubsystem_printf("%s: %s of %s merged\n", name.c_str(), counted(elements, "element").c_str(),
                         counted(references, "reference").c_str());
    return true;
}

// ---- copies ----

// While it stands attached files are looked for in that folder too: a copy lies elsewhere than the drawing.
class SearchFolder {
  public:
    explicit SearchFolder(const std::string& folder) : before_(mdlSystem_getExpandedCfgVar(variable)) {
        define(folder + (before_ ? std::string(";") + before_.get() : ""));
    }
    ~SearchFolder() { define(before_ ? before_.get() : ""); }
    SearchFolder(const SearchFolder&) = delete;
    SearchFolder& operator=(const SearchFolder&) = delete;

  private:
    static constexpr const char* variable = "MC_REFERENCES";
    static void define(const std::string& folders) {
        constexpr int userLevel = 4;
        mdlSystem_defineCfgVar(variable, folders.c_str(), userLevel);
    }
    mdl::HostPtr<char> before_;
};

// The drawing is open beside the active one, so that it is the one that was looked at when it is copied.
bool copyAndMerge(const std::string& name, const std::vector<std::string>& files, const std::string& copy,
                  const std::string& target, int view) {
    if (const int error = mdlFile_copy(copy.c_str(), name.c_str()))
        return mcapp::failOutput(target, std::string("the copy can't be made (") + std::strerror(error) + ")");
    if (mdlSystem_newDesignFile(copy.c_str(), 0) != MDL_SUCCESS) return false;
    const bool merged = attachSameFiles(files) && mergeActive(target, view);
    return mdlSystem_closeDesignFile() == MDL_SUCCESS && merged;
}

bool mergeInto(const std::string& target, const std::string& name, const Options& options) {
    std::error_code error;
    if (fs::exists(mcapp::systemPath(name + "-wal"), error))
        return mcapp::fail(name + ": another session has it open; close it there first");
    mcapp::OpenDrawing drawing(name, mcapp::OpenDrawing::Use::look);
    if (!drawing.model() || !takesWhatIsMissing(name, drawing.model(), options.leaveOut)) return false;
    const std::vector<std::string> files = filesOf(drawing.model());
    mcapp::Outputs outputs(target.substr(0, target.size() - std::strlen(suffix)), {suffix});
    if (!outputs.prepare(name, options.overwrite)) return false;
    const SearchFolder beside(fs::absolute(mcapp::systemPath(name), error).parent_path().string());
    return copyAndMerge(name, files, outputs.temporary(suffix), target, options.view) && outputs.finish();
}

bool mergeAll(const std::vector<std::string>& names, const Options& options) {
    std::error_code error;
    fs::create_directories(mcapp::systemPath(options.out), error);
    if (error) return mcapp::fail(options.out + ": the folder can't be made (" + error.message() + ")");
    std::set<std::string> targets;
    bool whole = true;
    for (const std::string& name : names) {
        const std::string target = (fs::path(options.out) / fs::path(name).stem()).string() + suffix;
        const bool isFirst = targets.insert(target).second;
        if (!isFirst) mcapp::fail(name + ": " + target + " is that of another drawing; merge it into another folder");
        whole = isFirst && mergeInto(target, name, options) && whole;
    }
    return whole;
}

ExitStatus mergeDrawings(const Options& options) {
    if (options.out.empty()) {
        mcapp::failCall("--out is missing: the folder where the new drawings go", usage);
        return wrongCall;
    }
    mcapp::Drawings drawings;
    bool listed = true;
    for (const std::string& name : options.drawings) listed = drawings.add(name) && listed;
    return mergeAll(drawings.names(), options) && listed ? done : failed;
}

// ---- the open drawing ----

ExitStatus mergeOpen(const Options& options) {
    const std::string name = tcbP->designFileName;
    if (!takesWhatIsMissing(name, nullptr, options.leaveOut)) return failed;
    mdlUndo_mark("merge references");
    return mergeActive(name, options.view) ? done : failed;
}

ExitStatus work(const Options& options) {
    if (!options.drawings.empty()) return mergeDrawings(options);
    if (mdlModelRef_getActive()) return mergeOpen(options);
    mcapp::failCall("the drawings are missing", usage);
    return wrongCall;
}

}  // namespace
}  // namespace merge

MDL_DESCRIPTION("drawings that need no other files: what is attached becomes part of them");

extern "C" __attribute__((visibility("default"))) int main(int argc, char** argv) {
    using namespace merge;
    return mcapp::runApplication("MERGE", argc, argv, usage, optionsFrom, work);
}
