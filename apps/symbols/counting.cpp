#include "counting.h"

#include <algorithm>
#include <optional>
#include <set>

#include <mclib/app/numbers.hpp>
#include <mclib/app/tell.hpp>
#include "fields.h"

namespace symbols {

namespace {

std::string quotedTexts(const Symbol& symbol) {
    std::string all;
    for (const std::string& text : symbol.values.texts) all += (all.empty() ? "\"" : ", \"") + text + "\"";
    return all;
}

}  // namespace

std::string toldErrors(const Symbol& symbol) {
    return symbol.kind->name + " " + quotedTexts(symbol) + ", " + std::to_string(symbol.errors) +
           (symbol.errors == 1 ? " error" : " errors");
}

std::string toldDoubt(const Doubt& doubt) {
    const Point3d& place = doubt.symbol.place;
    return doubt.drawing + " at " + mcapp::shown(place.x, 1) + ", " + mcapp::shown(place.y, 1) + ": " +
           toldErrors(doubt.symbol);
}

bool MaterialList::add(const Recognised& found, const std::string& drawing) {
    bool whole = true;
    for (const Symbol& symbol : found.certain) {
        const std::optional<std::string> item = filled(symbol.kind->item, symbol.values);
        if (!item) {
            whole = mcapp::fail(drawing + ": the text " + quotedTexts(symbol) + " of a symbol \"" + symbol.kind->name +
                                "\" has a sign that can't stand in a field behind \"=\"; " + symbol.kind->origin +
                                " tells the item");
            continue;
        }
        ++lines_.try_emplace({symbol.kind->group, *item}, Line{symbol, 0}).first->second.count;
        ++count_;
    }
    for (const Symbol& symbol : found.doubtful) doubts_.push_back({drawing, symbol});
    return whole;
}

std::string MaterialList::Line::item() const {
    Values values = symbol.values;
    values.count = count;
    return filled(symbol.kind->item, values).value_or("");
}

// In order of the kinds.
std::vector<const MaterialList::Line*> MaterialList::linesOf(const std::string& group) const {
    std::vector<const Line*> lines;
    for (const auto& [key, line] : lines_)
        if (key.first == group) lines.push_back(&line);
    std::ranges::stable_sort(lines, {}, [](const Line* line) { return line->symbol.kind; });
    return lines;
}

std::string MaterialList::text() const {
    std::string text;
    for (const std::string& line : file_.head) text += line + "\n";
    std::set<std::string> told;
    for (const Kind& kind : file_.kinds) {
        const std::vector<const Line*> lines = linesOf(kind.group);
        if (lines.empty() || !told.insert(kind.group).second) continue;
        text += kind.group.empty() ? "\n" : "\nGROUP \"" + kind.group + "\"\n";
        for (const Line* line : lines) text += "ITEM " + line->item() + "\n";
    }
    if (!doubts_.empty()) text += "\n# In doubt, and not counted above:\n";
    for (const Doubt& doubt : doubts_) text += "#   " + toldDoubt(doubt) + "\n";
    return text;
}

}  // namespace symbols
