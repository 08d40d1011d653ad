// materials: from a list of materials in a text file to filled forms, in the preview or on paper.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "apps/common/delivery.h"
#include "apps/common/numbers.h"
#include "apps/common/outputs.h"
#include "apps/common/system_path.h"
#include "apps/common/tell.h"
#include "form.h"
#include "host/mdl/dialog.h"
#include "host/mdl/system.h"
#include "list.h"
#include "mclib.h"
#include "options.h"
#include "pages.h"
#include "reader.h"

namespace materials {
namespace {

namespace fs = std::filesystem;
using app::fail;

enum ExitStatus { done = 0, failed = 1, badCall = 2 };

// ---- work ----

// The list and its pages, which stay while the preview is open.
struct Job {
    List list;
    std::optional<Pages> pages;
    std::vector<std::string> names;  // of the pages
    std::vector<char*> pointers;     // to them
    size_t firstPage = 0;            // of the names that the library has
    bool unattended = false, broken = false;
};
Job& job() {
    static Job job;
    return job;
}

// Behind a page that can't be made, which has been told, nobody waits for the others of a print.
void makePage(int page, char*, ElementDescr** result, int) {
    if (!result || (job().unattended && job().broken)) return;
    *result = job().pages->make(job().firstPage + static_cast<size_t>(page));
    job().broken = !*result;
}

// The pages that were asked for, from 0. Nothing after a message.
std::optional<PageRange> pagesOf(const Options& options, size_t count) {
    if (!options.pages) return PageRange{0, count - 1};
    if (options.pages->last > count) {
        fail("there are " + std::to_string(count) + " pages, so --pages can't take " +
             std::to_string(options.pages->last));
        return {};
    }
    return PageRange{options.pages->first - 1, options.pages->last - 1};
}

// The printer set-up is one for all applications; they reach it by its published name.
void setSetup(const std::string& field, double value) {
    mdlDialog_setAccessValue(("mclibpsd->" + field).c_str(), app::shown(value, app::asNeeded).c_str());
}

void setUp(const Form& form) {
    double width = 0, height = 0;
    mclibPrint_getPageSize(&width, &height, form.pageSize);
    if (form.lying == (width < height)) std::swap(width, height);
    setSetup("pageSize", form.pageSize);
    setSetup("pageWidth", width);
    setSetup("pageHeight", height);
    setSetup("marginLeft", form.margins.left);
    setSetup("marginRight", form.margins.right);
    setSetup("marginTop", form.margins.top);
    setSetup("marginBottom", form.margins.bottom);
}

ExitStatus openPreview() {
    if (!mclibPreview_dialogOpen(static_cast<int>(job().pointers.size()), job().pointers.data(), makePage, nullptr)) {
        fail("the preview can't be opened");
        return failed;
    }
    return done;
}

std::string counted(size_t count, const char* what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

bool printPages(const std::string& file, int device, PageRange range) {
    job().firstPage = range.first;
    const auto count = static_cast<int>(range.last - range.first + 1);
    return mclibPreview_printPages(count, job().pointers.data() + range.first, makePage, file.c_str(), device, 0,
                                   count - 1) == MCLIB_SUCCESS;
}

// The device for plain text lays out one page a file, so its files are put behind each other.
bool printTo(const std::string& file, int device, PageRange range) {
    if (device != PRINT_ASCII) return printPages(file, device, range);
    const std::string part = file + ".page";
    std::ofstream all(app::systemPath(file), std::ios::binary);
    bool good = all.is_open();
    for (size_t page = range.first; good && page <= range.last; ++page) {
        good = printPages(part, device, {page, page});
        if (page > range.first) all << '\f';
        all << std::ifstream(app::systemPath(part), std::ios::binary).rdbuf();
    }
    std::error_code ignored;
    fs::remove(app::systemPath(part), ignored);
    all.close();
    return good && all.good();
}

// The file to make: its name without suffix, and the suffix.
std::pair<fs::path, std::string> target(const Options& options) {
    const fs::path out = options.out, name = fs::path(options.input).stem();
    if (out.empty()) return {name, options.device->suffix};
    if (!out.has_filename() || fs::is_directory(app::systemPath(out))) return {out / name, options.device->suffix};
    if (!out.has_extension()) return {out, options.device->suffix};
    return {out.parent_path() / out.stem(), out.extension().string()};
}

ExitStatus print(const Options& options) {
    const std::optional<PageRange> range = pagesOf(options, job().pages->count());
    if (!range) return badCall;
    const auto [base, suffix] = target(options);
    app::Outputs outputs(base, {suffix.c_str()});
    if (!outputs.prepare(options.input, options.overwrite)) return failed;
    setUp(*options.form);
    job().unattended = true;
    if (!printTo(outputs.temporary(suffix.c_str()), options.device->number, *range)) {
        fail("not all pages could be made, so nothing is printed");
        return failed;
    }
    if (!outputs.finish()) return failed;
    const std::string file = outputs.names().front().string();
    toolSubsystem_printf("materials: made %s: %s, %s\n", file.c_str(), counted(job().list.items.size(), "item").c_str(),
                         counted(range->last - range->first + 1, "page").c_str());
    if (options.printer.empty()) return done;
    return app::sendToPrinter(file, options.printer, options.copies) ? done : failed;
}

// The name of the library without its folder, which is looked in before all others.
std::string findable(const std::string& library) {
    const size_t separator = library.find_last_of("/\\");
    if (separator == library.npos) return library;
    constexpr int userLevel = 4;
    char others[1024] = "$(MC_DIR)cell/";
    mdlSystem_getCfgVar(others, "MC_CELL", sizeof others);
    mdlSystem_defineCfgVar("MC_CELL", (library.substr(0, separator + 1) + ";" + others).c_str(), userLevel);
    return library.substr(separator + 1);
}

ExitStatus work(const Options& options) {
    if (!readList(options.input, job().list)) return failed;
    arrange(job().list);
    job().pages.emplace(job().list, *options.form, findable(options.library));
    job().names = job().pages->names();
    for (std::string& name : job().names) job().pointers.push_back(name.data());
    return options.out.empty() && options.printer.empty() ? openPreview() : print(options);
}

}  // namespace
}  // namespace materials

MDL_DESCRIPTION("material lists on the forms of an office");

extern "C" __attribute__((visibility("default"))) int main(int argc, char** argv) {
    using namespace materials;
    if (mclibMain_initMcLib("MATERIALS", argc, argv) != MCLIB_SUCCESS) return failed;
    const std::optional<Options> options = optionsFrom({argv + std::min(argc, 2), argv + argc});
    return options ? work(*options) : badCall;
}
