// materials: from a list of materials in a text file to filled forms, in the preview or on paper.
#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <mchost/mdl/dialog.h>
#include <mchost/mdl/system.h>
#include <mclib/mclib.h>
#include <mclib/app/arguments.hpp>
#include <mclib/app/delivery.hpp>
#include <mclib/app/numbers.hpp>
#include <mclib/app/outputs.hpp>
#include <mclib/app/system_path.hpp>
#include <mclib/app/tell.hpp>
#include <mclib/app/utf8.hpp>
#include "form.h"
#include "library.h"
#include "list.h"
#include "options.h"
#include "pages.h"
#include "reader.h"

namespace materials {
namespace {

namespace fs = std::filesystem;
using mcapp::fail;

enum ExitStatus { done = 0, failed = 1, badCall = 2 };

// ---- work ----

// The list and its pages, which stay while the preview is open.
struct Job {
    List list;
    std::optional<Form> form;
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
        fail((count == 1 ? "there is 1 page" : "there are " + std::to_string(count) + " pages") +
             ", so --pages can't take " + std::to_string(options.pages->last));
        return {};
    }
    return PageRange{options.pages->first - 1, options.pages->last - 1};
}

// The printer set-up is one for all applications; they reach it by its published name.
void setSetup(const std::string& field, double value) {
    mdlDialog_setAccessValue(("mclibpsd->" + field).c_str(), mcapp::shown(value, mcapp::asNeeded).c_str());
}

void setUp(const FormKind& form) {
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

// The file to make: its name without suffix, and the suffix.
std::pair<fs::path, std::string> target(const Options& options) {
    const fs::path out = options.out, name = fs::path(options.input).stem();
    if (!out.has_filename() || fs::is_directory(mcapp::systemPath(out))) return {out / name, options.device->suffix};
    if (!out.has_extension()) return {out, options.device->suffix};
    return {out.parent_path() / out.stem(), out.extension().string()};
}

// Makes the file under a name of its own for the time being. False after a message.
bool make(const std::string& file, const Options& options, PageRange range) {
    setUp(*options.form);
    job().unattended = true;
    if (!printPages(file, options.device->code, range))
        return fail("not all pages could be made, so nothing is printed");
    return !mcapp::deviceIs(*options.device, PRINT_DEVICE_TEXT_ONLY) || mcapp::makeUtf8(file) ||
           fail("the text file can't be written; is the disk full?");
}

bool send(const std::string& file, const std::string& shown, const Options& options) {
    return mcapp::sendToPrinter(file, shown, options.printer, options.copies.value_or(1));
}

std::string whatIsIn(PageRange range) {
    return counted(job().list.items.size(), "item") + ", " + counted(range.last - range.first + 1, "page");
}

// To a file, which is sent to a printer when there is one.
ExitStatus printToFile(const Options& options, PageRange range) {
    const auto [base, suffix] = target(options);
    mcapp::Outputs outputs(base, {suffix.c_str()});
    if (!outputs.prepare(options.input, options.overwrite)) return failed;
    if (!make(outputs.temporary(suffix.c_str()), options, range) || !outputs.finish()) return failed;
    const std::string file = outputs.names().front().string();
    toolSubsystem_printf("materials: made %s: %s\n", file.c_str(), whatIsIn(range).c_str());
    return options.printer.empty() || send(file, file, options) ? done : failed;
}

// To a printer alone: the file lies in a folder that is removed.
ExitStatus printAway(const Options& options, PageRange range) {
    std::string folder = (fs::temp_directory_path() / "materialsXXXXXX").string();
    if (!mkdtemp(folder.data())) {
        fail(folder + ": a folder for the print file can't be made: " + std::strerror(errno));
        return failed;
    }
    const std::string name = fs::path(options.input).stem().string() + options.device->suffix;
    const std::string file = folder + "/" + name;
    const bool good = make(file, options, range) && send(file, name + " (" + whatIsIn(range) + ")", options);
    std::error_code ignored;
    fs::remove_all(folder, ignored);
    return good ? done : failed;
}

ExitStatus print(const Options& options) {
    const std::optional<PageRange> range = pagesOf(options, job().pages->count());
    if (!range) return badCall;
    return options.out.empty() ? printAway(options, *range) : printToFile(options, *range);
}

// What the user should know of the list and its form.
void warn(const List& list, const Options& options) {
    if (list.items.empty()) mcapp::warn(options.input + ": there is no ITEM in it, so the form is empty");
    constexpr size_t mostTold = 20;
    size_t doubles = 0;
    std::unordered_map<std::string_view, const Item*> marks;
    for (const Item& item : list.items) {
        const auto [first, isNew] = marks.emplace(item.mark, &item);
        if (isNew || item.mark.empty() || ++doubles > mostTold) continue;
        mcapp::warn(list.placeOf(item.origin) + ": another item has the mark " + item.mark + ", that of " +
                    list.placeOf(first->second->origin));
    }
    if (doubles > mostTold) mcapp::warn("and " + std::to_string(doubles - mostTold) + " more marks are there twice");
    const std::string unshown = job().pages->unshown();
    if (unshown.empty()) return;
    mcapp::warn(std::string(options.form->name) + " has no place for " + unshown + ": use " +
                (options.form == &formKinds()[0] ? "--form A3" : "a form of your own, with --library"));
}

// The cell to be shown as the logo. Nothing after a message.
std::optional<CellName> logoOf(const Options& options) {
    constexpr const char* cell = "LOGO";
    if (options.logo.empty()) return CellName{cell, ""};
    const std::optional<std::string> library = fullLibraryName(options.logo);
    if (!library || !cellOf(*library, cell, "is shown as the logo")) return {};
    return CellName{cell, *library};
}

// The pages of the list. False after a message.
bool prepare(const Options& options) {
    const std::optional<std::string> library = findableLibrary(options.library);
    if (!library) return false;
    const std::optional<CellName> logo = logoOf(options);
    if (!logo) return false;
    job().form = Form::read(*options.form, *library);
    if (!job().form) return false;
    if (!readList(options.input, mcapp::letterRefusalOf(*options.device), job().list)) return false;
    arrange(job().list);
    job().pages.emplace(job().list, *job().form, *library, *logo);
    warn(job().list, options);
    return job().pages->fit();
}

ExitStatus work(const Options& options) {
    if (!prepare(options)) return failed;
    job().names = job().pages->names();
    for (std::string& name : job().names) job().pointers.push_back(name.data());
    return options.out.empty() && options.printer.empty() ? openPreview() : print(options);
}

}  // namespace
}  // namespace materials

MDL_DESCRIPTION("material lists on the forms of an office");

extern "C" __attribute__((visibility("default"))) int main(int argc, char** argv) {
    using namespace materials;
    return mcapp::runApplication("MATERIALS", argc, argv, usage, optionsFrom, work);
}
