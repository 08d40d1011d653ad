#include "reader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>
#include <string_view>

#include <mchost/mdl/system.h>
#include <mclib/app/input.hpp>
#include <mclib/app/numbers.hpp>
#include <mclib/app/tell.hpp>
#include <mclib/app/values.hpp>

namespace materials {

namespace {

using mcapp::asNeeded;
using mcapp::shown;

// ---- tables ----

// clang-format off
struct NamedColumn {
    const char* name;
    Column column;
};
constexpr NamedColumn columns[] = {
    {"mark",        Column::mark},
    {"description", Column::description},
    {"dimension",   Column::dimension},
    {"number",      Column::number},
    {"unit",        Column::unit},
    {"mass",        Column::mass},
    {"total",       Column::total},
};

// Texts of the title block that a list can bring, under the keys by which forms ask for them. Each line of a name is
// its next row, from the first one told here.
struct NamedProjectText {
    const char* name;
    const char* key;
    int firstRow, lastRow;
};
constexpr const char *titleKey = "tegn", *titleName = "title";
constexpr NamedProjectText projectTexts[] = {
    {"number",        "pron", 0, 0},
    {"client",        "kost", 0, 4},
    {"project",       "pros", 0, 4},
    {"drawing",       titleKey, 1, 9},
    {"revision",      "revs", 0, 0},
    {"copy-to",       "kopo", 0, 19},
    {"drawn-by",      "UNav", 0, 0},
    {"drawn-sign",    "USig", 0, 0},
    {"drawn-date",    "UDat", 0, 0},
    {"checked-by",    "RNav", 0, 0},
    {"checked-sign",  "RSig", 0, 0},
    {"checked-date",  "RDat", 0, 0},
    {"approved-by",   "SNav", 0, 0},
    {"approved-sign", "SSig", 0, 0},
    {"approved-date", "SDat", 0, 0},
};
// clang-format on

// Names by which formulas and tag strings of an item reach its columns.
constexpr const char *numberName = "NUM", *massName = "MASS", *markName = "MARK", *dimensionName = "DIM",
                     *unitName = "UNIT";
constexpr const char* ownNames[] = {numberName, massName, markName, dimensionName, unitName};
constexpr const char* usualTotal = "NUM*MASS";

std::string_view trimmed(std::string_view text) {
    const size_t first = text.find_first_not_of(" \t");
    if (first == text.npos) return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

constexpr char quote = '"';

// The field up to a ";" that stands outside double quotes; the line goes on behind it. `unclosed` is where a quotation
// begins that doesn't end, else npos.
std::string_view takeField(std::string_view& line, size_t& unclosed) {
    unclosed = line.npos;
    size_t end = 0;
    for (; end < line.size() && (unclosed != line.npos || line[end] != ';'); ++end) {
        if (line[end] == quote) unclosed = unclosed == line.npos ? end : line.npos;
    }
    const std::string_view field = trimmed(line.substr(0, end));
    line.remove_prefix(std::min(end + 1, line.size()));
    return field;
}

// A field that is quoted as a whole is what stands between its quotes, in which two of them are one.
std::string unquoted(std::string_view field) {
    if (field.size() < 2 || field.front() != quote || field.back() != quote) return std::string(field);
    const std::string_view inside = field.substr(1, field.size() - 2);
    std::string text;
    for (size_t i = 0; i < inside.size(); ++i) {
        if (inside[i] == quote && (++i == inside.size() || inside[i] != quote)) return std::string(field);
        text += inside[i];
    }
    return text;
}

class Reader {
  public:
    Reader(List& list, mcapp::Input::LetterRefusal letterRefusal);
    bool read(const std::string& fileName);

  private:
    struct Keyword {
        const char* name;
        bool (Reader::*read)();
    };
    static const std::array<Keyword, 13> keywords;

    bool line();
    // Keywords.
    bool title();
    bool project();
    bool number();
    bool text();
    bool total();
    bool decimals();
    bool thousands();
    bool sort();
    bool merge();
    bool sum();
    bool group();
    bool newPage();
    bool item();
    bool fieldsOf(std::span<std::string_view> fields);
    bool numbersOf(Item& item, std::string_view number, std::string_view mass);

    Origin origin();
    // Fields of an item. Each may be empty, and begins with "=" when it is worked out.
    bool amount(std::string_view field, const char* what, double& value, bool& has);
    bool words(std::string_view field, std::string& text);
    bool failAt(std::string_view field, size_t offset, const std::string& what);
    bool name(std::string& name, std::string (mcapp::Values::*refusal)(const std::string&) const);

    List& list_;
    mcapp::Input in_;
    mcapp::Values values_;
    std::string total_ = usualTotal;
    bool newPage_ = false;  // asked for in front of the next group
};

constexpr std::array<Reader::Keyword, 13> Reader::keywords = {{
    {"TITLE", &Reader::title},
    {"PROJECT", &Reader::project},
    {"NUMBER", &Reader::number},
    {"TEXT", &Reader::text},
    {"TOTAL", &Reader::total},
    {"DECIMALS", &Reader::decimals},
    {"THOUSANDS", &Reader::thousands},
    {"SORT", &Reader::sort},
    {"MERGE", &Reader::merge},
    {"SUM", &Reader::sum},
    {"GROUP", &Reader::group},
    {"NEWPAGE", &Reader::newPage},
    {"ITEM", &Reader::item},
}};

Reader::Reader(List& list, mcapp::Input::LetterRefusal letterRefusal) : list_(list) {
    in_.setLetterRefusal(std::move(letterRefusal));
    for (const char* name : {numberName, massName}) values_.addNumber(name, 0, "");
    for (const char* name : {markName, dimensionName, unitName}) values_.addText(name, "");
}

template <class Rows>
auto rowNamed(const Rows& rows, const std::string& name) {
    return std::ranges::find_if(rows, [&](const auto& row) { return mcapp::sameName(row.name, name); });
}

// ---- about the whole list ----

// TITLE "text"
bool Reader::title() {
    std::string text;
    if (!in_.text(text, "the title") || !in_.endOfLine()) return false;
    for (const ProjectText& told : list_.project)
        if (told.name == titleName) return in_.failAt(in_.lineStart(), "there is a TITLE already");
    list_.project.push_back({titleKey, 0, text, titleName, 1, origin()});
    return true;
}

// PROJECT name "text"
bool Reader::project() {
    std::string name, text;
    in_.atEnd();
    char* const start = in_.position();
    if (!in_.word(name, "the name of the text")) return false;
    const auto row = rowNamed(projectTexts, name);
    if (row == std::end(projectTexts)) {
        return in_.failAt(
            start, "\"" + name + "\" isn't a text of the title block; there are " + mcapp::namesOf(projectTexts));
    }
    int next = row->firstRow;
    for (const ProjectText& told : list_.project)
        if (std::string_view(told.key) == row->key && told.row >= next) next = told.row + 1;
    if (next > row->lastRow) {
        const int most = row->lastRow - row->firstRow + 1;
        return in_.failAt(start, (most == 1 ? "there is 1 line" : "there are " + std::to_string(most) + " lines") +
                                     " of \"" + name + "\" already, which is the most");
    }
    if (!in_.text(text, "the text") || !in_.endOfLine()) return false;
    list_.project.push_back({row->key, next, text, row->name, next - row->firstRow + 1, origin()});
    return true;
}

bool Reader::name(std::string& name, std::string (mcapp::Values::*refusal)(const std::string&) const) {
    in_.atEnd();
    char* const start = in_.position();
    if (!in_.word(name, "the name")) return false;
    const auto own = [&](const char* column) { return mcapp::sameName(column, name); };
    if (std::ranges::any_of(ownNames, own))
        return in_.failAt(start, "\"" + name + "\" is a column of each item; give another name");
    const std::string why = (values_.*refusal)(name);
    return why.empty() || in_.failAt(start, why);
}

// NUMBER name value
bool Reader::number() {
    std::string name;
    double value = 0;
    if (!this->name(name, &mcapp::Values::numberNameRefusal) || !in_.number(value, "the value") || !in_.endOfLine())
        return false;
    values_.addNumber(name, value, shown(value, asNeeded));
    return true;
}

// TEXT name "text"
bool Reader::text() {
    std::string name, text;
    if (!this->name(name, &mcapp::Values::textNameRefusal) || !in_.text(text, "the text") || !in_.endOfLine())
        return false;
    values_.addText(name, text);
    return true;
}

// TOTAL formula
bool Reader::total() {
    return in_.rest(total_, "the formula");
}

// DECIMALS number
bool Reader::decimals() {
    constexpr int most = 6;
    int count = 0;
    in_.atEnd();
    char* const start = in_.position();
    if (!in_.wholeNumber(count, "the number of decimals")) return false;
    if (count < 0 || count > most)
        return in_.failAt(start, "the number of decimals must be 0 to " + std::to_string(most));
    list_.numbers.decimals = count;
    return in_.endOfLine();
}

// THOUSANDS "sign"
bool Reader::thousands() {
    in_.atEnd();
    char* const start = in_.position();
    std::string sign;
    if (!in_.text(sign, "the sign between thousands") || !in_.endOfLine()) return false;
    if (sign.size() != 1 || std::string_view("0123456789.-").find(sign[0]) != std::string_view::npos)
        return in_.failAt(start, "between thousands stands one sign that is no part of a number, such as a blank");
    list_.numbers.thousands = sign;
    return true;
}

// SORT column...
bool Reader::sort() {
    std::string word;
    do {
        in_.atEnd();
        char* const start = in_.position();
        if (!in_.word(word, "a column")) return false;
        const bool falling = word.starts_with('-');
        const auto column = rowNamed(columns, word.substr(falling));
        if (column == std::end(columns))
            return in_.failAt(start, "there is no column \"" + word + "\"; there are " + mcapp::namesOf(columns));
        list_.sort.push_back({column->column, falling});
    } while (!in_.atEnd());
    return true;
}

bool Reader::merge() {
    list_.merge = true;
    return in_.endOfLine();
}

// SUM GROUPS or SUM ALL
bool Reader::sum() {
    if (in_.isKeyword("GROUPS")) {
        list_.sumGroups = true;
    } else if (in_.isKeyword("ALL")) {
        list_.sumAll = true;
    } else {
        return in_.failHere("SUM is followed by GROUPS or ALL");
    }
    return in_.endOfLine();
}

// ---- items ----

// GROUP "title"
bool Reader::group() {
    Group group;
    if (!in_.text(group.title, "the title") || !in_.endOfLine()) return false;
    group.newPage = newPage_;
    group.origin = origin();
    newPage_ = false;
    list_.groups.push_back(group);
    return true;
}

// NEWPAGE, of the group that follows
bool Reader::newPage() {
    newPage_ = true;
    return in_.endOfLine();
}

bool Reader::failAt(std::string_view field, size_t offset, const std::string& what) {
    // The field is a part of the line that the reader holds.
    return in_.failAt(in_.lineStart() + (field.data() - in_.lineStart()) + offset, what);
}

Origin Reader::origin() {
    const std::string file = in_.fileName();
    auto found = std::ranges::find(list_.files, file);
    if (found == list_.files.end()) found = list_.files.insert(found, file);
    return {static_cast<size_t>(found - list_.files.begin()), in_.lineNumber()};
}

bool Reader::amount(std::string_view field, const char* what, double& value, bool& has) {
    has = !field.empty();
    if (!has) return true;
    if (!field.starts_with('=')) {
        const auto read = mcapp::numberIn<double>(field);
        if (!read || !std::isfinite(*read)) {
            return failAt(field, 0,
                          std::string(what) + " must be a number, or a formula behind \"=\"" + mcapp::commaHint(field));
        }
        value = *read;
    } else {
        const mcapp::Outcome outcome = values_.evaluate(std::string(field.substr(1)));
        if (!outcome.value) return failAt(field, static_cast<size_t>(outcome.column), outcome.why);
        value = *outcome.value;
    }
    return value >= 0 ||
           failAt(field, 0, std::string(what) + " is " + shown(value, asNeeded) + ", and can't be below 0");
}

bool Reader::words(std::string_view field, std::string& text) {
    if (!field.starts_with('=')) {
        text = unquoted(field);
        return true;
    }
    const mcapp::TextOutcome expanded = values_.expand(std::string(field.substr(1)));
    if (!expanded.value) return failAt(field, static_cast<size_t>(expanded.column), expanded.why);
    text = *expanded.value;
    return true;
}

// The fields of the line's rest, as many as it has.
bool Reader::fieldsOf(std::span<std::string_view> fields) {
    std::string_view line = in_.position();
    for (std::string_view& field : fields) {
        const std::string_view rest = line;
        size_t unclosed = 0;
        field = takeField(line, unclosed);
        if (unclosed != line.npos) {
            return failAt(rest, unclosed,
                          "this quote isn't closed. A field with an inch sign is quoted as a whole, with the sign "
                          "twice: \"3\"\" pipe\"");
        }
    }
    return trimmed(line).empty() || failAt(line, 0,
                                           "nothing more is expected here: an item has mark; description; dimension; "
                                           "number; unit; mass; material; note");
}

// Number, mass and total, which formulas and tag strings of the item know then.
bool Reader::numbersOf(Item& item, std::string_view number, std::string_view mass) {
    bool good = amount(number, "the number", item.number, item.hasNumber);
    values_.setNumber(numberName, item.number, shown(item.number, asNeeded));
    good = good && amount(mass, "the mass", item.mass, item.hasMass);
    values_.setNumber(massName, item.mass, shown(item.mass, asNeeded));
    if (!good || !item.hasMass) return good;
    const mcapp::Outcome outcome = values_.evaluate(total_);
    if (!outcome.value) return failAt(mass, 0, "the total can't be worked out: " + outcome.why);
    item.total = *outcome.value;
    return item.total >= 0 || failAt(mass, 0, "the total is " + shown(item.total, asNeeded) + ", and can't be below 0");
}

// ITEM mark; description; dimension; number; unit; mass; material; note
bool Reader::item() {
    if (in_.atEnd()) return in_.failHere("the mark is missing");
    enum { mark, description, dimension, number, unit, mass, material, note, fieldCount };
    std::array<std::string_view, fieldCount> fields;
    if (!fieldsOf(fields)) return false;

    Item item;
    item.group = list_.groups.size() - 1;
    item.origin = origin();
    if (!numbersOf(item, fields[number], fields[mass])) return false;
    if (!words(fields[mark], item.mark)) return false;
    values_.setText(markName, item.mark);
    if (!words(fields[dimension], item.dimension)) return false;
    values_.setText(dimensionName, item.dimension);
    if (!words(fields[unit], item.unit)) return false;
    values_.setText(unitName, item.unit);
    if (!words(fields[description], item.description) || !words(fields[material], item.material) ||
        !words(fields[note], item.note)) {
        return false;
    }
    list_.items.push_back(std::move(item));
    return true;
}

// ---- lines ----

bool Reader::line() {
    const Keyword* const keyword = in_.keywordOf(keywords);
    return keyword && (this->*keyword->read)();
}

bool Reader::read(const std::string& fileName) {
    constexpr size_t linesBetweenMessages = 5000;
    constexpr int statusField = 1;
    if (!in_.open(fileName)) return false;
    bool good = true;
    for (size_t lines = 1; in_.nextLine(); ++lines) {
        good = line() && good;
        if (lines % linesBetweenMessages == 0) mdlOutput_printf(statusField, "%zu lines read", lines);
    }
    mdlOutput_printf(statusField, "%s", "");
    return good && !in_.failed();
}

}  // namespace

bool readList(const std::string& fileName, mcapp::Input::LetterRefusal letterRefusal, List& list) {
    return Reader(list, std::move(letterRefusal)).read(fileName);
}

}  // namespace materials
