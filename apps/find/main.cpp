// find: texts in many drawings, by pattern, and other words in their place.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <mchost/mdl/files.h>
#include <mchost/mdl/model.h>
#include <mchost/mdl/system.h>
#include <mclib/mclib.h>
#include <mclib/app/arguments.hpp>
#include <mclib/app/drawings.hpp>
#include <mclib/app/numbers.hpp>
#include <mclib/app/open_drawing.hpp>
#include <mclib/app/outputs.hpp>
#include <mclib/app/system_path.hpp>
#include <mclib/app/tell.hpp>
#include <mclib/app/utf8.hpp>
#include "options.h"
#include "query.h"
#include "replacing.h"
#include "report.h"
#include "window.h"

namespace find {
namespace {

namespace fs = std::filesystem;

enum ExitStatus { found = 0, nothingFound = 1, failed = 2 };

// ---- one drawing ----

// What a whole run has come to.
struct Run {
    const Options& options;
    size_t pages;  // drawings that were given
    bool whole;    // nothing has failed
    std::vector<Row> rows = {};
    size_t drawings = 0, page = 0;
    bool knowsLevels = false;
};

std::string shownName(const std::string& name) {
    char shown[4096] = "";
    return mdlFile_getSystemName(shown, sizeof shown, name.c_str()) == MDL_SUCCESS ? shown : name;
}

// False after a message.
bool keepBackup(const std::string& name) {
    std::error_code error;
    std::string backup = name + ".bak";
    for (int number = 2; fs::exists(mcapp::systemPath(backup), error); ++number)
        backup = name + ".bak" + std::to_string(number);
    const std::string why = mcapp::copyDrawing(backup, name);
    return why.empty() || mcapp::fail(name + ": " + why + "; nothing is changed");
}

// False after a message.
bool store(std::vector<Change>& changes, const std::string& name, const Options& options) {
    if (options.backup && !keepBackup(name)) return false;
    mcapp::OpenDrawing drawing(name, mcapp::OpenDrawing::Use::write);
    if (!drawing.model()) return false;
    replaceTexts(changes, Query(options, drawing.model()), drawing.model());
    return drawing.close();
}

// What is changed in the drawing, or would be with --dry-run.
void replaceIn(const std::string& name, std::vector<Hit>&& hits, Run& run) {
    const std::string replacement = replacementFor(*run.options.replacement, run.page, run.pages);
    std::vector<Change> changes;
    for (Hit& hit : hits) {
        NewText after = newText(run.options, replacement, hit);
        changes.push_back({std::move(hit), std::move(after)});
    }
    if (!run.options.dryRun && std::ranges::any_of(changes, &Change::isOne) && !store(changes, name, run.options)) {
        run.whole = false;
        return;
    }
    for (Change& change : changes) {
        if (change.after.why.empty()) {
            run.rows.push_back({shownName(name), std::move(change.hit), std::move(change.after.text)});
            continue;
        }
        run.whole = mcapp::fail(name + ", element " + std::to_string(change.hit.position) + ": \"" + change.hit.text +
                                "\" stays as it is: " + change.after.why);
    }
}

void searchDrawing(const std::string& name, Run& run) {
    ++run.page;
    std::vector<Hit> hits;
    {
        const mcapp::OpenDrawing drawing(name, mcapp::OpenDrawing::Use::look);
        if (!drawing.model()) {
            run.whole = false;
            return;
        }
        ++run.drawings;
        const Query query(run.options, drawing.model());
        run.knowsLevels = run.knowsLevels || query.hasLevels();
        if (query.hasLevels() && !query.run([&](const Hit& hit) { hits.push_back(hit); }))
            run.whole = mcapp::fail(name + ": not all elements of the drawing can be read");
    }
    if (run.options.replacement) {
        if (!hits.empty()) replaceIn(name, std::move(hits), run);
        return;
    }
    for (Hit& hit : hits) run.rows.push_back({shownName(name), std::move(hit), ""});
}

// ---- many ----

bool write(const std::string& text, const Options& options) {
    if (options.out.empty()) {
        toolSubsystem_printf("%s", text.c_str());
        return true;
    }
    mcapp::Outputs outputs(options.out, {""});
    if (!outputs.prepare("", options.overwrite)) return false;
    std::ofstream file(mcapp::systemPath(outputs.temporary("")), std::ios::binary);
    file << mcapp::utf8From(text);
    file.close();
    if (!file) return mcapp::failOutput(options.out, "the list can't be written; is the disk full?");
    return outputs.finish();
}

std::string summary(const Run& run) {
    const char* const did = !run.options.replacement ? " in " : run.options.dryRun ? " to change in " : " changed in ";
    std::vector<std::string> files;
    for (const Row& row : run.rows)
        if (files.empty() || files.back() != row.file) files.push_back(row.file);
    return mcapp::counted(run.rows.size(), "text") + did + std::to_string(files.size()) + " of " +
           mcapp::counted(run.drawings, "drawing") + "\n";
}

ExitStatus searchAll(const std::vector<std::string>& names, bool listed, const Options& options) {
    Run run = {options, names.size(), listed};
    for (const std::string& name : names) searchDrawing(name, run);
    if (!run.knowsLevels && run.drawings > 0) mcapp::warn("no drawing has a level of that name or number");
    if (run.drawings == 0) return failed;
    std::string text = report(run.rows, options);
    if (options.format == Format::table) text += summary(run);
    if (!write(text, options) || !run.whole) return failed;
    return run.rows.empty() ? nothingFound : found;
}

// Whether the replacement can be filled by the pattern. False after a message.
bool isWhole(const Options& options) {
    return !options.replacement || canFill(options.pattern, *options.replacement) ||
           mcapp::failCall("--replace has more * or ? than the pattern has wildcards to fill them; |* is a star itself",
                           usage);
}

ExitStatus work(const Options& options) {
    const bool namesDrawings = !options.drawings.empty() || !options.lists.empty();
    if (mdlModelRef_getActive() && !namesDrawings) return isWhole(options) && openWindow(options) ? found : failed;
    if (options.pattern.empty()) return mcapp::failCall("the pattern is missing", usage), failed;
    if (!namesDrawings) return mcapp::failCall("the drawings are missing", usage), failed;
    if (!isWhole(options)) return failed;
    mcapp::Drawings drawings;
    const bool listed = drawings.addAll(options.drawings, options.lists);
    return searchAll(drawings.names(), listed, options);
}

}  // namespace
}  // namespace find

MDL_DESCRIPTION("texts in many drawings, by pattern");

extern "C" __attribute__((visibility("default"))) int main(int argc, char** argv) {
    using namespace find;
    return mcapp::runApplication("FIND", argc, argv, usage, optionsFrom, work);
}
