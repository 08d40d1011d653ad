#include "form.h"

#include <algorithm>

namespace materials {

namespace {

enum { PAPER_A3 = 7, PAPER_A4 = 9 };

// clang-format off
constexpr TextColumn columnsA4[] = {
    {"MARK", &Item::mark,         6},
    {"DESC", &Item::description, 35},
    {"DIME", &Item::dimension,   16},
    {"UNIT", &Item::unit,         5},
};
constexpr TextColumn columnsA3[] = {
    {"MARK", &Item::mark,         7},
    {"DESC", &Item::description, 52},
    {"DIME", &Item::dimension,   25},
    {"MATL", &Item::material,    28},
    {"UNIT", &Item::unit,         7},
    {"NOTE", &Item::note,        54},
};
constexpr Margins margins = {20, 10, 10, 10};
constexpr Form allForms[] = {
    {"A4", "MATLIST-A4", PAPER_A4, false, margins, 28, columnsA4},
    {"A3", "MATLIST-A3", PAPER_A3, true,  margins, 28, columnsA3},
};
// clang-format on

}  // namespace

std::span<const Form> forms() {
    return allForms;
}

std::vector<std::string> wrapped(const std::string& text, size_t letters) {
    std::vector<std::string> lines;
    size_t from = 0;
    while (text.size() - from > letters) {
        const size_t blank = text.rfind(' ', from + letters);
        const bool atBlank = blank != text.npos && blank > from;
        const size_t to = atBlank ? blank : from + letters;
        lines.push_back(text.substr(from, to - from));
        from = to + (atBlank ? 1 : 0);
    }
    lines.push_back(text.substr(from));
    return lines;
}

size_t linesOf(const Item& item, const Form& form) {
    size_t lines = 1;
    for (const TextColumn& column : form.columns) {
        const std::string& text = item.*column.text;
        if (text.size() > column.letters) lines = std::max(lines, wrapped(text, column.letters).size());
    }
    return lines;
}

}  // namespace materials
