// materials: from a list of materials in a text file to filled forms, in the preview or on paper.
#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "apps/common/numbers.h"
#include "apps/common/tell.h"
#include "form.h"
#include "host/mdl/model.h"
#include "list.h"
#include "mclib.h"
#include "pages.h"
#include "reader.h"

namespace materials {
namespace {

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
};
constexpr Device devices[] = {
    {"postscript", PRINT_POSTSCRIPT},
    {"pcl",        PRINT_PCL},
    {"hpgl",       PRINT_HPGL},
    {"ascii",      PRINT_ASCII},
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
    static constexpr std::string_view withValue[] = {"--out",    "--print", "--copies", "--device",
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

}  // namespace
}  // namespace materials

extern "C" __attribute__((visibility("default"))) int main(int argc, char** argv) {
    using namespace materials;
    if (mclibMain_initMcLib("MATERIALS", argc, argv) != MCLIB_SUCCESS) return failed;
    const std::optional<Options> options = optionsFrom({argv + std::min(argc, 2), argv + argc});
    if (!options) return wrongCall;
    static List list;
    if (!readList(options->input, list)) return failed;
    arrange(list);
    static Pages pages(list, *options->form, options->library);
    toolSubsystem_printf("%zu items, %zu pages\n", list.items.size(), pages.count());
    for (size_t i = 0; i < pages.count(); ++i) {
        ElementDescr* page = pages.make(i);
        if (!page) return failed;
        mdlElmdscr_freeAll(&page);
    }
    return done;
}
