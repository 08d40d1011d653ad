#include "mchost/base/variables.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "mchost/base/state_owner.h"

namespace host {

namespace {

// One expansion: what it has written, which variables it is inside of, and how many it has looked up. A few definitions
// that name each other twice would otherwise grow without end.
class Expansion {
  public:
    explicit Expansion(const Variables& variables) : variables_(variables) {}

    void add(std::string_view text) {
        while (!text.empty() && result.size() < Variables::longestExpansion) {
            const size_t start = text.find('$');
            append(text.substr(0, start));
            if (start == std::string_view::npos) return;
            text.remove_prefix(start);
            text.remove_prefix(addReference(text));
        }
    }

    void addVariable(std::string_view name) {
        if (std::ranges::find(open_, name) != open_.end() || ++lookUps_ > mostLookUps) return;
        const std::optional<std::string> value = variables_.value(name);
        if (!value) return;
        open_.push_back(name);
        add(*value);
        open_.pop_back();
    }

    std::string result;

  private:
    // Takes the text at a "$"; the number of characters that were used up.
    size_t addReference(std::string_view text) {
        const char close = text.size() < 2 ? '\0' : text[1] == '(' ? ')' : text[1] == '{' ? '}' : '\0';
        const size_t end = close == '\0' ? std::string_view::npos : text.find(close, 2);
        if (end == std::string_view::npos) {
            append("$");
            return 1;
        }
        addVariable(text.substr(2, end - 2));
        return end + 1;
    }

    void append(std::string_view text) { result.append(text.substr(0, Variables::longestExpansion - result.size())); }

    static constexpr int mostLookUps = 10000;
    const Variables& variables_;
    std::vector<std::string_view> open_;
    int lookUps_ = 0;
};

const char* environment(std::string_view name) {
    if (name.empty() || name.find('\0') != std::string_view::npos) return nullptr;
    return std::getenv(std::string(name).c_str());
}

}  // namespace

std::optional<std::string> Variables::value(std::string_view name) const {
    const auto entry = entries_.find(name);
    if (entry != entries_.end()) {
        const auto& levels = entry->second.levels;
        const auto highest = std::find_if(levels.rbegin(), levels.rend(), [](const auto& v) { return v.has_value(); });
        if (highest != levels.rend()) return *highest;
        if (entry->second.hidesEnvironment) return std::nullopt;
    }
    const char* value = environment(name);
    return !value ? std::nullopt : std::optional<std::string>(value);
}

bool Variables::define(std::string_view name, std::string_view value, int level) {
    if (level < 0 || level >= levelCount || name.empty() || name.find('=') != std::string_view::npos) return false;
    entries_[std::string(name)].levels[static_cast<size_t>(level)] = value;
    return true;
}

bool Variables::remove(std::string_view name) {
    if (!value(name)) return false;
    entries_[std::string(name)] = {.levels = {}, .hidesEnvironment = true};
    return true;
}

std::string Variables::expand(std::string_view text) const {
    Expansion expansion(*this);
    expansion.add(text);
    return std::move(expansion.result);
}

std::optional<std::string> Variables::expandedValue(std::string_view name) const {
    if (!value(name)) return std::nullopt;
    Expansion expansion(*this);
    expansion.addVariable(name);
    return std::move(expansion.result);
}

std::map<std::string, std::string> Variables::expandedValues(std::string_view nameBegins) const {
    std::map<std::string, std::string> values;
    for (auto entry = entries_.lower_bound(nameBegins); entry != entries_.end(); ++entry) {
        if (!entry->first.starts_with(nameBegins)) break;
        if (auto value = expandedValue(entry->first)) values.emplace(entry->first, std::move(*value));
    }
    return values;
}

Variables& variables() {
    return sessionState<Variables>();
}

std::vector<std::string> variableEntries(const char* variable) {
    std::vector<std::string> entries;
    const std::string value = variable ? variables().expandedValue(variable).value_or("") : "";
    for (std::string_view left = value; !left.empty();) {
        const std::string_view entry = left.substr(0, left.find(';'));
        if (!entry.empty()) entries.emplace_back(entry);
        left.remove_prefix(std::min(left.size(), entry.size() + 1));
    }
    return entries;
}

}  // namespace host
