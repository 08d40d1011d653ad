#include "options.h"

#include <algorithm>
#include <array>
#include <string_view>

#include <mclib/app/arguments.hpp>
#include <mclib/app/names.hpp>
#include <mclib/app/numbers.hpp>

namespace find {

// clang-format off
const char* const usage =
    "usage: mchost find PATTERN DRAWING... [options]\n"
    "       mchost --open DRAWING.mcd find [PATTERN] [options]\n"
    "  lists the texts of drawings that fit a pattern, those in cells and text nodes too. A drawing is a file, a\n"
    "  pattern of files such as \"sheet-*.mcd\", or a folder with all below it. With mchost --open the hits stand in\n"
    "  a dialog, which shows them in the drawing\n"
    "  PATTERN is all of a text: * stands for any run of characters, *:3 for one of at most 3, ? for any character,\n"
    "  # for a digit, @ for a letter, & for either, _ for a blank, [AB] for one of these, |* for a star itself\n"
    "  --list FILE      also the drawings that the lines of a text file name\n"
    "  --near 1         also texts with so many errors\n"
    "  --case           case of letters counts\n"
    "  --level NAME     on this level; may be given again\n"
    "  --colour 3       of this colour index; --weight 2 and --style 1 likewise\n"
    "  --height 2.5..5  of this height, in master units; 2.5.. and ..5 have one limit\n"
    "  --area 0,0,9,5   in the rectangle between two corners (x,y,x,y in master units), at least in part\n"
    "  --replace TEXT   put TEXT in place of each text that fits: a * or ? in it stands for what the next * or\n"
    "                   single character wildcard of PATTERN took, |* for a star itself; <page> and <pages> for the\n"
    "                   number of the drawing and of all, <date> or <date:%d.%m.%Y> for today\n"
    "  --dry-run        show what --replace would do, and change nothing\n"
    "  --backup         keep each drawing that is changed as NAME.mcd.bak\n"
    "  --format table   table, csv or json\n"
    "  --out FILE       where to write the list, instead of to the console\n"
    "  --overwrite      replace a FILE that is there\n"
    "  --help           print this\n"
    "  The exit status is 0 when something was found, 1 when nothing was, 2 for a wrong call and when a drawing\n"
    "  couldn't be read or changed; the others are still searched.\n";
// clang-format on

namespace {

constexpr std::string_view formats[] = {"table", "csv", "json"};

std::string setFormat(Options& options, std::string_view, const std::string& value) {
    const auto* format = std::ranges::find(formats, value);
    if (format == std::end(formats)) return "--format takes table, csv or json, not \"" + value + "\"";
    options.format = static_cast<Format>(format - formats);
    return {};
}

std::string addLevel(Options& options, std::string_view, const std::string& value) {
    options.levels.push_back(value);
    return value.empty() ? "--level needs a name" : "";
}

std::string addList(Options& options, std::string_view, const std::string& value) {
    options.lists.push_back(value);
    return value.empty() ? "--list needs the name of a file" : "";
}

std::string setNear(Options& options, std::string_view, const std::string& value) {
    const auto errors = mcapp::numberIn<int>(value);
    options.near = errors.value_or(0);
    return errors && *errors >= 0 ? "" : "--near takes a whole number from 0 on, not \"" + value + "\"";
}

template <std::optional<int> Options::*Number>
std::string setNumber(Options& options, std::string_view name, const std::string& value) {
    options.*Number = mcapp::numberIn<int>(value);
    if (options.*Number && *(options.*Number) >= 0) return {};
    return std::string(name) + " takes a whole number from 0 on, not \"" + value + "\"";
}

// A limit that isn't given is -1.
std::optional<double> limitIn(std::string_view text) {
    if (text.empty()) return -1;
    const auto limit = mcapp::numberIn<double>(text);
    return limit && *limit >= 0 ? limit : std::nullopt;
}

std::string setHeight(Options& options, std::string_view, const std::string& value) {
    const size_t dots = value.find("..");
    const bool isRange = dots != value.npos;
    const auto low = limitIn(std::string_view(value).substr(0, dots));
    const auto high = isRange ? limitIn(std::string_view(value).substr(dots + 2)) : low;
    if (value.empty() || !low || !high || (*high >= 0 && *high < *low))
        return "--height takes one height or a range such as 2.5..5, not \"" + value + "\"" + mcapp::commaHint(value);
    options.minHeight = *low;
    options.maxHeight = *high;
    return {};
}

std::string setArea(Options& options, std::string_view, const std::string& value) {
    std::array<double, 4> corners{};
    std::string_view rest = value;
    bool whole = std::ranges::count(value, ',') == 3;
    for (double& number : corners) {
        const auto read = mcapp::numberIn<double>(rest.substr(0, rest.find(',')));
        whole = whole && read;
        number = read.value_or(0);
        rest.remove_prefix(std::min(rest.find(','), rest.size() - 1) + (rest.empty() ? 0 : 1));
    }
    if (!whole) return "--area takes four numbers, x,y,x,y, not \"" + value + "\"";
    const auto [left, right] = std::minmax(corners[0], corners[2]);
    const auto [bottom, top] = std::minmax(corners[1], corners[3]);
    options.area = {left, bottom, right, top};
    return {};
}

std::string setReplacement(Options& options, std::string_view, const std::string& value) {
    options.replacement = value;
    return value.empty() ? "--replace needs a text; one that is empty couldn't be seen" : "";
}

constexpr mcapp::ValueOption<Options> valueOptions[] = {
    {"--list", addList},
    {"--near", setNear},
    {"--level", addLevel},
    {"--colour", setNumber<&Options::colour>},
    {"--weight", setNumber<&Options::weight>},
    {"--style", setNumber<&Options::style>},
    {"--height", setHeight},
    {"--area", setArea},
    {"--replace", setReplacement},
    {"--format", setFormat},
    {"--out", mcapp::setText<&Options::out>},
};
constexpr mcapp::Flag<Options> flags[] = {
    {"--case", &Options::caseSensitive},
    {"--dry-run", &Options::dryRun},
    {"--backup", &Options::backup},
    {"--overwrite", &Options::overwrite},
};

const char* contradiction(const Options& options) {
    if (!options.replacement && options.dryRun) return "--dry-run shows what --replace would do; --replace is missing";
    if (!options.replacement && options.backup) return "--backup goes with --replace, which is missing";
    if (options.replacement && options.near > 0) return "--replace takes texts that fit alone; leave --near out";
    return nullptr;
}

}  // namespace

std::optional<Options> optionsFrom(const std::vector<std::string>& arguments) {
    Options options;
    const mcapp::CallForm<Options> form = {usage, valueOptions, flags, &Options::pattern, nullptr, &Options::drawings};
    if (!mcapp::takeArguments(options, arguments, form)) return {};
    if (const char* const why = contradiction(options)) {
        mcapp::failCall(why, usage);
        return {};
    }
    return options;
}

}  // namespace find
