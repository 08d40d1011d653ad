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
#include "apps/common/tell.h"
#include "form.h"
#include "host/mdl/dialog.h"
#include "list.h"
#include "mclib.h"
#include "pages.h"
#include "reader.h"

namespace materials {
namespace {

namespace fs = std::filesystem;
using app::fail;

enum ExitStatus { done = 0, failed = 1, wrongCall = 2 };

// clang-format off
constexpr const char* usage =
    "usage: mchost materials LIST.txt [options]\n"
    "  without --out and --print     the preview opens; its buttons print, plot and place the pages\n"
    "  --out FILE            print to a file without the preview\n"
    "  --print PRINTER       and send it there: a port, a network printer, or a command with %s for the file\n"
    "  --copies 1            so many times\n"
    "  --device postscript   of the file: postscript, pcl, hpgl or ascii\n"
    "  --pages 2-4           these pages alone; also 3\n"
    "  --form A4             A4 or A3\n"
    "  --library forms.cel   the cell library with the form, found through MC_CELL\n"
    "  --overwrite           replace a file that is there\n";

struct Device {
    std::string_view name;
    int number;
    const char* suffix;  // of the file
};
constexpr Device devices[] = {
    {"postscript", PRINT_POSTSCRIPT, ".ps"},
    {"pcl",        PRINT_PCL,        ".pcl"},
    {"hpgl",       PRINT_HPGL,       ".hpgl"},
    {"ascii",      PRINT_ASCII,      ".txt"},
};
// clang-format on

struct PageRange {
    size_t first, last;  // from 1
};

struct Options {
    std::string input, out, printer, library = "forms.cel";
    const Device* device = &devices[0];
    const Form* form = &forms()[0];
    std::optional<PageRange> pages;
    int copies = 1;
    bool overwrite = false;
};

// ---- arguments ----

bool wrong(const std::string& what) {
    fail(what);
    toolSubsystem_printf("%s", usage);
    return false;
}

std::optional<PageRange> rangeIn(std::string_view text) {
    const size_t dash = text.find('-');
    const auto first = app::numberIn<size_t>(text.substr(0, dash));
    const auto last = dash == text.npos ? first : app::numberIn<size_t>(text.substr(dash + 1));
    if (!first || !last || *first < 1 || *last < *first) return {};
    return PageRange{*first, *last};
}

bool setOption(Options& options, std::string_view name, const std::string& value) {
    if (name == "--out") options.out = value;
    if (name == "--print") options.printer = value;
    if (name == "--library") options.library = value;
    if (name == "--device") {
        options.device = std::ranges::find(devices, value, &Device::name);
        if (options.device == std::end(devices))
            return wrong("--device takes postscript, pcl, hpgl or ascii, not \"" + value + "\"");
    }
    if (name == "--form") {
        const auto form = std::ranges::find_if(forms(), [&](const Form& f) { return value == f.name; });
        if (form == forms().end()) return wrong("--form takes A4 or A3, not \"" + value + "\"");
        options.form = &*form;
    }
    if (name == "--pages") {
        options.pages = rangeIn(value);
        if (!options.pages) return wrong("--pages takes a page or a range such as 2-4, not \"" + value + "\"");
    }
    if (name == "--copies") {
        const auto copies = app::numberIn<int>(value);
        if (!copies || *copies < 1) return wrong("--copies takes a number from 1, not \"" + value + "\"");
        options.copies = *copies;
    }
    return true;
}

std::optional<Options> optionsFrom(const std::vector<std::string>& arguments) {
    static constexpr std::string_view withValue[] = {"--out",   "--print", "--copies", "--device",
                                                     "--pages", "--form",  "--library"};
    Options options;
    for (size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (std::ranges::find(withValue, argument) != std::end(withValue)) {
            if (i + 1 == arguments.size()) return wrong(argument + " needs a value"), std::nullopt;
            if (!setOption(options, argument, arguments[++i])) return {};
        } else if (argument == "--overwrite") {
            options.overwrite = true;
        } else if (argument.starts_with("-") || !options.input.empty()) {
            return wrong("don't know what to do with \"" + argument + "\""), std::nullopt;
        } else {
            options.input = argument;
        }
    }
    if (options.input.empty()) return wrong("the name of the list is missing"), std::nullopt;
    return options;
}

// ---- work ----

// The list and its pages, which stay while the preview is open.
struct Job {
    List list;
    std::optional<Pages> pages;
};
Job& job() {
    static Job job;
    return job;
}

void makePage(int page, char*, ElementDescr** result, int) {
    if (result) *result = job().pages->make(static_cast<size_t>(page));
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

std::vector<char*> pointersTo(std::vector<std::string>& names) {
    std::vector<char*> pointers;
    for (std::string& name : names) pointers.push_back(name.data());
    return pointers;
}

ExitStatus openPreview() {
    std::vector<std::string> names = job().pages->names();
    const std::vector<char*> pointers = pointersTo(names);
    if (!mclibPreview_dialogOpen(static_cast<int>(names.size()), pointers.data(), makePage, nullptr)) {
        fail("the preview can't be opened");
        return failed;
    }
    return done;
}

bool printPages(const std::string& file, int device, PageRange range) {
    std::vector<std::string> names = job().pages->names();
    const std::vector<char*> pointers = pointersTo(names);
    return mclibPreview_printPages(static_cast<int>(names.size()), pointers.data(), makePage, file.c_str(), device,
                                   static_cast<int>(range.first), static_cast<int>(range.last)) == MCLIB_SUCCESS;
}

// The device for plain text lays out one page a file, so its files are put behind each other.
bool printTo(const std::string& file, int device, PageRange range) {
    if (device != PRINT_ASCII) return printPages(file, device, range);
    const std::string part = file + ".page";
    std::ofstream all(file, std::ios::binary);
    bool good = all.is_open();
    for (size_t page = range.first; good && page <= range.last; ++page) {
        good = printPages(part, device, {page, page});
        if (page > range.first) all << '\f';
        all << std::ifstream(part, std::ios::binary).rdbuf();
    }
    std::error_code ignored;
    fs::remove(part, ignored);
    all.close();
    return good && all.good();
}

ExitStatus print(const Options& options) {
    const std::optional<PageRange> range = pagesOf(options, job().pages->count());
    if (!range) return wrongCall;
    fs::path out = options.out.empty() ? fs::path(options.input).stem() : fs::path(options.out);
    const std::string suffix = out.has_extension() ? out.extension().string() : options.device->suffix;
    app::Outputs outputs(out.replace_extension(), {suffix.c_str()});
    if (!outputs.prepare(options.input, options.overwrite)) return failed;
    setUp(*options.form);
    if (!printTo(outputs.temporary(suffix.c_str()), options.device->number, *range)) {
        fail("not all pages could be made, so nothing is printed");
        return failed;
    }
    if (!outputs.finish()) return failed;
    const std::string file = outputs.names().front().string();
    toolSubsystem_printf("materials: made %s: %zu items, %zu pages\n", file.c_str(), job().list.items.size(),
                         range->last - range->first + 1);
    if (options.printer.empty()) return done;
    return app::sendToPrinter(file, options.printer, options.copies) ? done : failed;
}

ExitStatus work(const Options& options) {
    if (!readList(options.input, job().list)) return failed;
    arrange(job().list);
    job().pages.emplace(job().list, *options.form, options.library);
    return options.out.empty() && options.printer.empty() ? openPreview() : print(options);
}

}  // namespace
}  // namespace materials

extern "C" __attribute__((visibility("default"))) int main(int argc, char** argv) {
    using namespace materials;
    if (mclibMain_initMcLib("MATERIALS", argc, argv) != MCLIB_SUCCESS) return failed;
    const std::optional<Options> options = optionsFrom({argv + std::min(argc, 2), argv + argc});
    return options ? work(*options) : wrongCall;
}
