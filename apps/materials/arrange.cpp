#include "arrange.h"

#include <algorithm>
#include <compare>
#include <string_view>
#include <unordered_map>

namespace materials {

namespace {

// ---- comparing ----

bool isDigit(char c) {
    return '0' <= c && c <= '9';
}

// Windows-1252 letters in upper case: a-z, and the accented ones that lie 32 above theirs.
unsigned char upper(char c) {
    const auto u = static_cast<unsigned char>(c);
    constexpr unsigned char division = 0xF7, yUmlaut = 0xFF;
    const bool lower = ('a' <= u && u <= 'z') || (u >= 0xE0 && u != division && u != yUmlaut);
    return lower ? static_cast<unsigned char>(u - ('a' - 'A')) : u;
}

std::string_view takeDigits(std::string_view& text) {
    const size_t zeros = std::min(text.find_first_not_of('0'), text.size());
    text.remove_prefix(zeros);
    const size_t length = static_cast<size_t>(std::ranges::find_if_not(text, isDigit) - text.begin());
    const std::string_view digits = text.substr(0, length);
    text.remove_prefix(length);
    return digits;
}

std::strong_ordering compareTexts(std::string_view a, std::string_view b) {
    while (!a.empty() && !b.empty()) {
        if (isDigit(a[0]) && isDigit(b[0])) {
            const std::string_view x = takeDigits(a), y = takeDigits(b);
            if (x.size() != y.size()) return x.size() <=> y.size();
            if (x != y) return x <=> y;
        } else {
            const unsigned char x = upper(a[0]), y = upper(b[0]);
            if (x != y) return x <=> y;
            a.remove_prefix(1);
            b.remove_prefix(1);
        }
    }
    return a.size() <=> b.size();
}

std::weak_ordering compareNumbers(double a, double b) {
    return a < b ? std::weak_ordering::less : a > b ? std::weak_ordering::greater : std::weak_ordering::equivalent;
}

std::weak_ordering compare(const Item& a, const Item& b, Column column) {
    switch (column) {
        case Column::mark: return compareTexts(a.mark, b.mark);
        case Column::description: return compareTexts(a.description, b.description);
        case Column::dimension: return compareTexts(a.dimension, b.dimension);
        case Column::unit: return compareTexts(a.unit, b.unit);
        case Column::number: return compareNumbers(a.number, b.number);
        case Column::mass: return compareNumbers(a.mass, b.mass);
        case Column::total: return compareNumbers(a.total, b.total);
    }
    return std::weak_ordering::equivalent;
}

// ---- merging ----

bool sameButNumber(const Item& a, const Item& b) {
    return a.group == b.group && a.mark == b.mark && a.description == b.description && a.dimension == b.dimension &&
           a.unit == b.unit && a.material == b.material && a.note == b.note && a.hasMass == b.hasMass &&
           a.mass == b.mass && a.hasNumber == b.hasNumber;
}

size_t hashOf(const Item& item) {
    size_t hash = item.group;
    for (const std::string* text : {&item.mark, &item.description, &item.dimension, &item.unit})
        hash = hash * 31 + std::hash<std::string>()(*text);
    return hash;
}

// Each item becomes part of the first one that it agrees with.
void merge(std::vector<Item>& items) {
    std::unordered_multimap<size_t, size_t> firsts;  // by hash: place among the kept ones
    size_t kept = 0;
    for (Item& item : items) {
        const size_t hash = hashOf(item);
        const auto [from, to] = firsts.equal_range(hash);
        const auto first = std::find_if(from, to, [&](const auto& f) { return sameButNumber(items[f.second], item); });
        if (first != to) {
            items[first->second].number += item.number;
            items[first->second].total += item.total;
            continue;
        }
        firsts.emplace(hash, kept);
        if (&items[kept] != &item) items[kept] = std::move(item);
        ++kept;
    }
    items.resize(kept);
}

// ---- rows ----

class Rows {
  public:
    Rows(const List& list, size_t rowsPerPage, const Heights& heights)
        : list_(list), rowsPerPage_(rowsPerPage), heights_(heights) {}

    // A group's items, from the first one. The number of the item behind them.
    size_t addGroup(size_t first);
    void addSum(const Row& sum) {
        if (!atTop() && left() > 1) add({Row::blank});
        add(sum);
    }
    std::vector<Row> take() {
        if (rows_.empty()) add({Row::blank});
        fillPage();
        return std::move(rows_);
    }
    double mass() const { return mass_; }

  private:
    void add(Row row) { rows_.push_back(row); }
    // Rows that are left on the page: all of them on a page that nothing stands on.
    size_t left() const { return rowsPerPage_ - rows_.size() % rowsPerPage_; }
    bool atTop() const { return left() == rowsPerPage_; }
    void fillPage() {
        while (!atTop()) add({Row::blank});
    }
    bool isTitled(size_t group) const { return !list_.groups[group].title.empty(); }
    void addHeading(size_t group, bool continued) {
        const size_t lines = heights_.heading(list_.groups[group], continued);
        for (size_t line = 0; line < lines; ++line) add({Row::heading, group, line, 0, continued});
    }
    // Goes to the next page where there is no room for so many rows of the group.
    void makeRoom(size_t lines, size_t group) {
        if (left() < lines) fillPage();
        if (atTop() && isTitled(group)) addHeading(group, true);
    }

    const List& list_;
    const size_t rowsPerPage_;
    const Heights& heights_;
    std::vector<Row> rows_;
    double mass_ = 0;  // of all groups
};

size_t Rows::addGroup(size_t first) {
    const size_t group = list_.items[first].group;
    if (list_.groups[group].newPage) fillPage();
    if (isTitled(group)) {
        if (!atTop()) add({Row::blank});
        const size_t needed = heights_.heading(list_.groups[group], false) + heights_.item(list_.items[first]);
        if (left() < std::min(needed, rowsPerPage_)) fillPage();
        addHeading(group, false);
    }
    double mass = 0;
    size_t i = first;
    for (; i < list_.items.size() && list_.items[i].group == group; ++i) {
        const size_t lines = heights_.item(list_.items[i]);
        if (i > first || !isTitled(group)) makeRoom(std::min(lines, rowsPerPage_), group);
        for (size_t line = 0; line < lines; ++line) add({Row::item, i, line});
        mass += list_.items[i].total;
    }
    if (list_.sumGroups && isTitled(group)) {
        makeRoom(1, group);
        add({Row::groupSum, group, 0, mass});
    }
    mass_ += mass;
    return i;
}

}  // namespace

void arrange(List& list) {
    if (list.merge) merge(list.items);
    std::ranges::stable_sort(list.items, [&](const Item& a, const Item& b) {
        if (a.group != b.group) return a.group < b.group;
        for (const SortKey& key : list.sort) {
            const std::weak_ordering order = compare(a, b, key.column);
            if (order != 0) return key.falling ? order > 0 : order < 0;
        }
        return false;
    });
}

std::vector<Row> rowsOf(const List& list, size_t rowsPerPage, const Heights& heights) {
    Rows rows(list, rowsPerPage, heights);
    for (size_t i = 0; i < list.items.size();) i = rows.addGroup(i);
    if (list.sumAll) rows.addSum({Row::sum, 0, 0, rows.mass()});
    return rows.take();
}

}  // namespace materials
