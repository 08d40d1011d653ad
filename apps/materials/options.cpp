#include "options.h"

#include <algorithm>
#include <filesystem>
#include <string_view>

#include <mclib/app/arguments.hpp>
#include <mclib/app/delivery.hpp>
#include <mclib/app/numbers.hpp>
#include <mclib/app/tell.hpp>

namespace materials {

// clang-format off
const char* const usage =
    "usage: mchost materials LIST.txt [options]\n"
    "  without --out and --print     the preview opens; its buttons print, plot and place the pages\n"
    "  --out FILE            print to a file without the preview; .ps, .hpgl, .pcl or .txt tells the device\n"
    "  --print PRINTER       send it to a port, a network printer, or a command with %s for the file\n"
    "  --copies 1            so many times\n"
    "  --device postscript   of the file: postscript, hpgl, pcl or ascii\n"
    "  --pages 2-4           these pages alone; also 3\n"
    "  --form A4             A4 or A3\n"
    "  --library forms.cel   the cell library with the form: a path, or a name that is found here or through MC_CELL\n"
    "  --logo OFFICE.cel     the cell library whose cell LOGO is shown\n"
    "  --overwrite           replace a file that is there\n"
    "  --help                print this\n";
// clang-format on

namespace {

bool wrong(const std::string& what) {
    return mcapp::failCall(what, usage);
}

// ---- values; a setter gives what is wrong, `name` is the option's ----

std::string setOut(Options& options, std::string_view name, const std::string& value) {
    if (value == "-") return "--out takes the name of a file; standard output isn't written";
    return mcapp::setText<&Options::out>(options, name, value);
}

std::string setDevice(Options& options, std::string_view name, const std::string& value) {
    options.ofPrint = name;
    options.device = mcapp::deviceNamed(value);
    return options.device ? "" : "--device takes " + mcapp::deviceNames() + ", not \"" + value + "\"";
}

std::string setForm(Options& options, std::string_view, const std::string& value) {
    const auto form = std::ranges::find_if(formKinds(), [&](const FormKind& f) { return value == f.name; });
    if (form == formKinds().end()) return "--form takes A4 or A3, not \"" + value + "\"";
    options.form = &*form;
    return {};
}

std::optional<PageRange> rangeIn(std::string_view text) {
    const size_t dash = text.find('-');
    const auto first = mcapp::numberIn<size_t>(text.substr(0, dash));
    const auto last = dash == text.npos ? first : mcapp::numberIn<size_t>(text.substr(dash + 1));
    if (!first || !last || *first < 1 || *last < *first) return {};
    return PageRange{*first, *last};
}

std::string setPages(Options& options, std::string_view name, const std::string& value) {
    options.ofPrint = name;
    options.pages = rangeIn(value);
    return options.pages ? "" : "--pages takes a page or a range such as 2-4, not \"" + value + "\"";
}

std::string setCopies(Options& options, std::string_view name, const std::string& value) {
    options.ofPrint = name;
    options.copies = mcapp::numberIn<int>(value).value_or(0);
    return *options.copies >= 1 ? "" : "--copies takes a number from 1, not \"" + value + "\"";
}

std::string setPrinter(Options& options, std::string_view, const std::string& value) {
    options.printer = value;
    return mcapp::printerRefusal(value);
}

// ---- the options ----

constexpr mcapp::ValueOption<Options> valueOptions[] = {
    {"--out", setOut},
    {"--print", setPrinter},
    {"--copies", setCopies},
    {"--device", setDevice},
    {"--pages", setPages},
    {"--form", setForm},
    {"--library", mcapp::setText<&Options::library>},
    {"--logo", mcapp::setText<&Options::logo>},
};
constexpr mcapp::Flag<Options> flags[] = {{"--overwrite", &Options::overwrite}};

// The device that the file is for.
bool chooseDevice(Options& options) {
    std::string why;
    const McPrintDevice* const device =
        mcapp::deviceFor(std::filesystem::path(options.out).extension().string(), options.device, why);
    if (!device) return wrong(options.out + ": " + why);
    options.device = device;
    double width = 0, height = 0;
    mclibPrint_getPageSize(&width, &height, options.form->pageSize);
    if (mcapp::fitsDevice(*device, width, height)) return true;
    return wrong(std::string(device->name) + " files are for A4 paper, which form " + options.form->name +
                 " is cut to; take --form A4 or another device");
}

// Options that go together.
bool complete(Options& options) {
    if (options.ofPrint.empty() && options.overwrite) options.ofPrint = "--overwrite";
    if (!options.ofPrint.empty() && options.out.empty() && options.printer.empty())
        return wrong(std::string(options.ofPrint) + " goes with --out or --print; the preview has buttons for it");
    if (options.copies && options.printer.empty()) return wrong("--copies goes with --print");
    return chooseDevice(options);
}

}  // namespace

std::optional<Options> optionsFrom(const std::vector<std::string>& arguments) {
    Options options;
    const mcapp::CallForm<Options> form = {usage, valueOptions, flags, &Options::input, "the name of the list"};
    if (!mcapp::takeArguments(options, arguments, form) || !complete(options)) return {};
    return options;
}

}  // namespace materials
