#include "apps/common/values.h"

#include <algorithm>
#include <memory>
#include <span>

#include "host/mdl/system.h"

namespace app {

namespace {

constexpr size_t longestFormulaName = MCLIB_FORMULA_NAME_SIZE - 1;
constexpr size_t longestTagName = sizeof TagEntry{}.name - 1;

bool isLetter(char c) {
    return ('a' <= c && c <= 'z') || ('A' <= c && c <= 'Z');
}
bool isDigit(char c) {
    return '0' <= c && c <= '9';
}
char upper(char c) {
    return 'a' <= c && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool isFormulaName(const std::string& name) {
    return !name.empty() && name.size() <= longestFormulaName && isLetter(name[0]) &&
           std::ranges::all_of(name, [](char c) { return isLetter(c) || isDigit(c); });
}

void store(std::span<char> out, const std::string& text) {
    out[text.copy(out.data(), out.size() - 1)] = '\0';
}

// The evaluator knows the names that it keeps for itself: with such a one as parameter the formula isn't that value.
bool isTaken(const std::string& name) {
    constexpr double probe = -1.5;
    char slot[MCLIB_FORMULA_NAME_SIZE] = "";
    store(slot, name);
    int error = 0;
    const double value = *mclibParse_parseFormulaP(name.c_str(), &error, 1, slot, &probe);
    return error != 0 || value != probe;
}

std::string reasonFor(int error, bool atEnd) {
    switch (error) {
        case MCLIB_FORMULA_UNKNOWN_NAME: return "no parameter and no function has this name";
        case MCLIB_FORMULA_DIVISION: return "a division by 0, worked out in front of here";
        case MCLIB_FORMULA_RANGE: return "a function of a value that it doesn't take, in front of here";
        case MCLIB_FORMULA_LIMIT:
            return "too long or too deep: " + std::to_string(MCLIB_FORMULA_LENGTH) + " characters, " +
                   std::to_string(MCLIB_FORMULA_NUMBER_LENGTH) + " of them in a number, and " +
                   std::to_string(MCLIB_FORMULA_NESTING) + " open brackets, functions and operators are the most";
        default: return atEnd ? "something is missing: a value or a bracket" : "this can't stand here";
    }
}

struct HostFree {
    void operator()(char* text) const { dlmSystem_mdlFree(text); }
};

}  // namespace

bool sameName(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, {}, upper, upper);
}

std::string Values::numberNameRefusal(const std::string& name) const {
    if (!isFormulaName(name)) {
        return "the name of a number has 1 to " + std::to_string(longestFormulaName) +
               " letters and digits, a letter first, unlike \"" + name + "\"";
    }
    if (isTaken(name)) return "\"" + name + "\" means something in every formula; give another name";
    if (names_.size() == MCLIB_FORMULA_PARAMETERS) {
        return "there are " + std::to_string(MCLIB_FORMULA_PARAMETERS) + " numbers already, which is the most";
    }
    return textNameRefusal(name);
}

std::string Values::textNameRefusal(const std::string& name) const {
    static constexpr std::string_view functions[] = {"substr", "strupr", "extstr"};
    if (name.empty() || name.size() > longestTagName || name.find_first_of("+\"(),") != name.npos ||
        name.front() == ' ' || name.back() == ' ') {
        return "the name of a text has 1 to " + std::to_string(longestTagName) +
               " characters without + \" ( ) , and without blanks at its ends, unlike \"" + name + "\"";
    }
    if (std::ranges::any_of(functions, [&](std::string_view f) { return name.starts_with(f); }))
        return "\"" + name + "\" begins as a function of tag strings does; give another name";
    if (std::ranges::any_of(tags_, [&](const TagEntry& tag) { return sameName(tag.name, name); }))
        return "there is a value \"" + name + "\" already";
    return {};
}

void Values::addNumber(const std::string& name, double value, const std::string& shown) {
    store(names_.emplace_back(), name);
    numbers_.push_back(value);
    addText(name, shown);
}

void Values::addText(const std::string& name, const std::string& text) {
    TagEntry& tag = tags_.emplace_back();
    store(tag.name, name);
    store(tag.value, text);
}

void Values::setNumber(const std::string& name, double value, const std::string& shown) {
    const auto at = std::ranges::find_if(names_, [&](const FormulaName& n) { return sameName(n.data(), name); });
    numbers_[static_cast<size_t>(at - names_.begin())] = value;
    setText(name, shown);
}

void Values::setText(const std::string& name, const std::string& text) {
    const auto at = std::ranges::find_if(tags_, [&](const TagEntry& tag) { return sameName(tag.name, name); });
    store(at->value, text);
}

Outcome Values::evaluate(const std::string& formula) {
    int error = 0;
    char* const names = names_.empty() ? nullptr : names_.front().data();
    const double* const value =
        mclibParse_parseFormulaP(formula.c_str(), &error, static_cast<int>(names_.size()), names, numbers_.data());
    Outcome outcome;
    if (error == 0) {
        outcome.value = *value;
        return outcome;
    }
    const int reason = mclibParse_getFormulaError(&outcome.column);
    outcome.why = reasonFor(reason, outcome.column > static_cast<int>(formula.size()));
    return outcome;
}

std::optional<std::string> Values::expand(const std::string& tagString) {
    const std::unique_ptr<char, HostFree> text(
        mclibParse_tagString(tagString.c_str(), tags_.data(), static_cast<int>(tags_.size())));
    if (!text) return {};
    return text.get();
}

}  // namespace app
