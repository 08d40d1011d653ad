#include "fields.h"

#include <mclib/app/numbers.hpp>

namespace symbols {

namespace {

constexpr std::string_view signsOfLists = ";\"\\";

// What stands between "<" and ">".
struct Place {
    size_t end;   // behind it
    size_t text;  // from 1; 0 for the number of symbols
    bool isStar;
};

std::optional<Place> placeAt(std::string_view field, size_t at) {
    const size_t end = field.find('>', at);
    if (field[at] != '<' || end == field.npos) return {};
    std::string_view name = field.substr(at + 1, end - at - 1);
    if (name == "count") return Place{end + 1, 0, false};
    const bool isStar = name.ends_with('*');
    if (isStar) name.remove_suffix(1);
    const std::optional<size_t> text = mcapp::numberIn<size_t>(name);
    return text && *text > 0 ? std::optional(Place{end + 1, *text, isStar}) : std::nullopt;
}

// The places of a field in turn, and the letters between them: `letter` and `place` are called for each.
template <class Letter, class Visit>
void forEachPart(std::string_view field, Letter letter, Visit visit) {
    for (size_t at = 0; at < field.size();) {
        if (const std::optional<Place> place = placeAt(field, at)) {
            visit(*place);
            at = place->end;
        } else {
            letter(field[at++]);
        }
    }
}

std::string trimmed(std::string_view field) {
    const size_t first = field.find_first_not_of(" \t");
    return first == field.npos ? "" : std::string(field.substr(first, field.find_last_not_of(" \t") - first + 1));
}

bool isFormula(const std::string& field) {
    return field.starts_with('=');
}

bool isQuoted(const std::string& field) {
    return field.size() > 1 && field.starts_with('"') && field.ends_with('"');
}

std::string withDoubledQuotes(const std::string& text) {
    std::string out;
    for (const char c : text) out += c == '"' ? std::string("\"\"") : std::string(1, c);
    return out;
}

std::string valueOf(const Place& place, const Values& values) {
    if (place.text == 0) return std::to_string(values.count);
    return (place.isStar ? values.stars : values.texts)[place.text - 1];
}

std::optional<std::string> filledField(const std::string& field, const Values& values) {
    std::string out;
    bool hasSigns = false;
    forEachPart(
        field, [&](char letter) { out += letter; },
        [&](const Place& place) {
            const std::string value = valueOf(place, values);
            hasSigns = hasSigns || value.find_first_of(signsOfLists) != value.npos;
            out += isQuoted(field) ? withDoubledQuotes(value) : value;
        });
    if (isFormula(field)) return hasSigns ? std::nullopt : std::optional(out);
    return isQuoted(field) || (!hasSigns && !isFormula(out)) ? out : '"' + withDoubledQuotes(out) + '"';
}

}  // namespace

std::vector<std::string> fieldsOf(std::string_view item) {
    std::vector<std::string> fields;
    bool quoted = false;
    size_t start = 0;
    for (size_t at = 0; at <= item.size(); ++at) {
        if (at < item.size() && item[at] == '"') quoted = !quoted;
        if (at < item.size() && (quoted || item[at] != ';')) continue;
        fields.push_back(trimmed(item.substr(start, at - start)));
        start = at + 1;
    }
    return fields;
}

std::string refusalOf(const std::vector<std::string>& fields, const std::vector<bool>& stars) {
    bool counts = false;
    std::string wrong;
    const auto check = [&](const Place& place) {
        counts = counts || place.text == 0;
        const std::string name = "<" + std::to_string(place.text) + (place.isStar ? "*>" : ">");
        if (place.text > stars.size())
            wrong = "has an item with " + name + ", and " + std::to_string(stars.size()) + " TEXT";
        else if (place.isStar && !stars[place.text - 1])
            wrong = "has an item with " + name + ", and no star in the pattern of that TEXT";
    };
    for (const std::string& field : fields)
        forEachPart(
            field, [](char) {}, check);
    if (wrong.empty() && !counts) wrong = "has an item without <count>, so nobody would see how many there are";
    return wrong;
}

std::optional<std::string> filled(const std::vector<std::string>& fields, const Values& values) {
    std::string item;
    for (size_t i = 0; i < fields.size(); ++i) {
        const std::optional<std::string> field = filledField(fields[i], values);
        if (!field) return {};
        item += (i == 0 ? "" : "; ") + *field;
    }
    return item;
}

}  // namespace symbols
