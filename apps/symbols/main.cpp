// symbols: drawn symbols of many drawings, recognised and counted into a list of materials.
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include <mchost/mdl/files.h>
#include <mchost/mdl/model.h>
#include <mchost/mdl/system.h>
#include <mclib/mclib.h>
#include <mclib/app/arguments.hpp>
#include <mclib/app/drawings.hpp>
#include <mclib/app/numbers.hpp>
#include <mclib/app/outputs.hpp>
#include <mclib/app/system_path.hpp>
#include <mclib/app/tell.hpp>
#include <mclib/app/utf8.hpp>
#include "counting.h"
#include "marking.h"
#include "options.h"
#include "reader.h"

namespace symbols {
namespace {

namespace fs = std::filesystem;

enum ExitStatus { done = 0, failed = 1 };

constexpr const char* listSuffix = ".txt";

std::string outputBase(const Options& options) {
    const std::string name = fs::path(options.input).stem().string() + "-list";
    fs::path out = mcapp::outputBase(options.out, name);
    if (out.extension() == listSuffix) out.replace_extension();
    return out.string();
}

// Reads and counts; false after a message.
bool recogniseAll(const std::vector<std::string>& drawings, const SymbolFile& file, MaterialList& list) {
    std::vector<std::string> missing = levelsOf(file.kinds);
    bool whole = true;
    for (const std::string& drawing : drawings) {
        if (mdlSystem_newDesignFile(drawing.c_str(), 1) != MDL_SUCCESS) {
            whole = false;
            continue;
        }
        std::erase_if(missing, hasLevel);
        whole = list.add(recognise(file.kinds), drawing) && whole;
        mdlSystem_closeDesignFile();
    }
    for (const std::string& level : missing)
        if (whole) mcapp::warn("no drawing has the level \"" + level + "\"");
    return whole;
}

void tell(const MaterialList& list, size_t drawings, const std::string& name) {
    toolSubsystem_printf("symbols: made %s: %s in %s\n", name.c_str(), mcapp::counted(list.count(), "symbol").c_str(),
                         mcapp::counted(drawings, "drawing").c_str());
    for (const Doubt& doubt : list.doubts()) mcapp::warn(toldDoubt(doubt) + "; it isn't counted");
}

bool write(const MaterialList& list, const mcapp::Outputs& outputs) {
    const std::string name = outputs.temporary(listSuffix);
    std::ofstream file(mcapp::systemPath(name), std::ios::binary);
    file << mcapp::utf8From(list.text());
    file.close();
    return file || mcapp::failOutput(name, "the list can't be written; is the disk full?");
}

bool makeList(const SymbolFile& file, const std::vector<std::string>& drawings, const Options& options) {
    mcapp::Outputs outputs(outputBase(options), {listSuffix});
    if (!outputs.prepare(options.input, options.overwrite)) return false;
    MaterialList list(file);
    if (!recogniseAll(drawings, file, list))
        return mcapp::fail("not all drawings could be counted, so no list is made");
    if (list.count() == 0 && list.doubts().empty())
        return mcapp::fail("there is no such symbol in " + mcapp::counted(drawings.size(), "drawing") +
                           ", so no list is made");
    if (!options.mark.empty() && !markDoubts(list.doubts(), options.mark, options.overwrite)) return false;
    if (!write(list, outputs) || !outputs.finish()) return false;
    tell(list, drawings.size(), outputs.names().front().string());
    return true;
}

ExitStatus work(const Options& options) {
    if (mdlModelRef_getActive()) {
        mcapp::fail("a drawing is open; symbols opens those that it is called for by itself");
        return failed;
    }
    const std::optional<SymbolFile> file = readSymbols(options.input);
    mcapp::Drawings drawings;
    return drawings.addAll(options.drawings, options.lists) && file && makeList(*file, drawings.names(), options)
               ? done
               : failed;
}

}  // namespace
}  // namespace symbols

MDL_DESCRIPTION("drawn symbols of many drawings, counted into a list of materials");

extern "C" __attribute__((visibility("default"))) int main(int argc, char** argv) {
    using namespace symbols;
    return mcapp::runApplication("SYMBOLS", argc, argv, usage, optionsFrom, work);
}
