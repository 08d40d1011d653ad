// Named values: numbers that formulas use, and texts that tag strings use. Letter case of a name doesn't count.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <mchost/mdl/system.h>
#include <mclib/mclib.h>
#include <mclib/text/formula.h>
#include <mclib/text/tagstring.h>
#include <mchost/mdl/owned.hpp>
#include <mclib/app/names.hpp>
#include <mclib/app/quiet.hpp>

namespace mcapp {

// What a formula or a tag string came to.
template <class Value>
struct OutcomeOf {
    std::optional<Value> value;
    std::string why = {};  // without a value: the reason, as a message tells it
    int column = 1;        // and where it showed, from 1
};
using Outcome = OutcomeOf<double>;
using TextOutcome = OutcomeOf<std::string>;

class Values {
  public:
    // Why a name can't be given to a number, or to a text; empty when it can.
    std::string numberNameRefusal(const std::string& name) const;
    std::string textNameRefusal(const std::string& name) const;

    // For names that aren't refused. A number is known to tag strings too, as the text that it is shown with.
    void addNumber(const std::string& name, double value, const std::string& shown);
    void addText(const std::string& name, const std::string& text);
    // Another value for a name that was added; as the same kind.
    void setNumber(const std::string& name, double value, const std::string& shown);
    void setText(const std::string& name, const std::string& text);

    // A finite number.
    Outcome evaluate(const std::string& formula);
    TextOutcome expand(const std::string& tagString);

  private:
    bool hasText(std::string_view name) const;
    TextOutcome unknownName(std::string_view tagString) const;

    using FormulaName = std::array<char, MCLIB_FORMULA_NAME_SIZE>;
    std::vector<FormulaName> names_;
    std::vector<double> numbers_;
    std::vector<TagEntry> tags_;
};

constexpr size_t longestTagText = sizeof TagEntry{}.value - 1;

namespace detail {

inline constexpr size_t longestFormulaName = MCLIB_FORMULA_NAME_SIZE - 1;
inline constexpr size_t longestTagName = sizeof TagEntry{}.name - 1;

inline bool isLetter(char c) {
    return ('a' <= c && c <= 'z') || ('A' <= c && c <= 'Z');
}
inline bool isDigit(char c) {
    return '0' <= c && c <= '9';
}

inline bool isFormulaName(const std::string& name) {
    return !name.empty() && name.size() <= longestFormulaName && isLetter(name[0]) &&
           std::ranges::all_of(name, [](char c) { return isLetter(c) || isDigit(c); });
}

inline void store(std::span<char> out, const std::string& text) {
    out[text.copy(out.data(), out.size() - 1)] = '\0';
}

// The evaluator knows the names that it keeps for itself: with such a one as parameter the formula isn't that value.
inline bool isTaken(const std::string& name) {
    const QuietConsole quiet;
    constexpr double probe = -1.5;
    char slot[MCLIB_FORMULA_NAME_SIZE] = "";
    store(slot, name);
    int error = 0;
    const double value = *mclibParse_parseFormulaP(name.c_str(), &error, 1, slot, &probe);
    return error != 0 || value != probe;
}

inline std::string reasonFor(int error, bool atEnd) {
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

// ---- tag strings ----

inline constexpr std::string_view textFunctions[] = {"substr", "strupr", "extstr"};

// A piece of a tag string between the characters that divide it, without blanks at its ends.
struct Piece {
    std::string_view text;
    char end;  // what divides it from the next one; NUL at the end
};

// A tag string's pieces outside quotes, and what is wrong with its quotes and brackets.
struct Pieces {
    std::vector<Piece> pieces;
    std::string_view fault = {};
    size_t faultAt = 0;
};

inline Pieces piecesOf(std::string_view text) {
    Pieces out;
    size_t from = 0, open = 0, at = 0;
    const auto withFault = [&](std::string_view what) {
        out.fault = what;
        out.faultAt = at;
        return out;
    };
    const auto end = [&](char divider) {
        std::string_view piece = text.substr(from, at - from);
        piece.remove_prefix(std::min(piece.find_first_not_of(' '), piece.size()));
        piece = piece.substr(0, piece.find_last_not_of(' ') + 1);
        out.pieces.push_back({piece, divider});
        from = at + 1;
    };
    for (; at < text.size(); ++at) {
        const char c = text[at];
        if (c == '\'' && at + 2 < text.size() && text[at + 2] == '\'') at += 2;
        if (c == '"') {
            const size_t closing = text.find('"', at + 1);
            if (closing == text.npos) return withFault("the quote isn't closed");
            at = closing;
        }
        if (c == '(') ++open;
        if (c == ')' && open-- == 0) return withFault("there is no bracket that this one closes");
        if (c == '+' || c == '(' || c == ')' || c == ',') end(c);
    }
    end('\0');
    return open > 0 ? withFault("a bracket isn't closed") : out;
}

// Whether a piece can be the name of a text: no quoted one, no position, no function, no side of extstr.
inline bool canBeName(const Piece& piece) {
    return piece.end != '(' && !piece.text.empty() && piece.text.find_first_of("\"'") == piece.text.npos &&
           piece.text.find_first_not_of("0123456789+-*/ ") != piece.text.npos && piece.text != "start" &&
           piece.text != "end";
}

}  // namespace detail

inline std::string Values::numberNameRefusal(const std::string& name) const {
    if (!detail::isFormulaName(name)) {
        return "the name of a number has 1 to " + std::to_string(detail::longestFormulaName) +
               " letters and digits, a letter first, unlike \"" + name + "\"";
    }
    if (detail::isTaken(name)) return "\"" + name + "\" means something in every formula; give another name";
    if (names_.size() == MCLIB_FORMULA_PARAMETERS) {
        return "there are " + std::to_string(MCLIB_FORMULA_PARAMETERS) + " numbers already, which is the most";
    }
    return textNameRefusal(name);
}

inline std::string Values::textNameRefusal(const std::string& name) const {
    if (name.empty() || name.size() > detail::longestTagName || name.find_first_of("+\"(),") != name.npos ||
        name.front() == ' ' || name.back() == ' ') {
        return "the name of a text has 1 to " + std::to_string(detail::longestTagName) +
               " characters without + \" ( ) , and without blanks at its ends, unlike \"" + name + "\"";
    }
    if (std::ranges::any_of(detail::textFunctions, [&](std::string_view f) { return name.starts_with(f); }))
        return "\"" + name + "\" begins as a function of tag strings does; give another name";
    return hasText(name) ? "there is a value \"" + name + "\" already" : "";
}

inline bool Values::hasText(std::string_view name) const {
    return std::ranges::any_of(tags_, [&](const TagEntry& tag) { return sameName(tag.name, name); });
}

inline void Values::addNumber(const std::string& name, double value, const std::string& shown) {
    detail::store(names_.emplace_back(), name);
    numbers_.push_back(value);
    addText(name, shown);
}

inline void Values::addText(const std::string& name, const std::string& text) {
    TagEntry& tag = tags_.emplace_back();
    detail::store(tag.name, name);
    detail::store(tag.value, text);
}

inline void Values::setNumber(const std::string& name, double value, const std::string& shown) {
    const auto at = std::ranges::find_if(names_, [&](const FormulaName& n) { return sameName(n.data(), name); });
    numbers_[static_cast<size_t>(at - names_.begin())] = value;
    setText(name, shown);
}

inline void Values::setText(const std::string& name, const std::string& text) {
    const auto at = std::ranges::find_if(tags_, [&](const TagEntry& tag) { return sameName(tag.name, name); });
    detail::store(at->value, text);
}

inline Outcome Values::evaluate(const std::string& formula) {
    const QuietConsole quiet;
    int error = 0;
    char* const names = names_.empty() ? nullptr : names_.front().data();
    const double* const value =
        mclibParse_parseFormulaP(formula.c_str(), &error, static_cast<int>(names_.size()), names, numbers_.data());
    if (error == 0 && std::isfinite(*value)) return {*value};
    if (error == 0) return {{}, "the value is no finite number"};
    Outcome outcome;
    const int reason = mclibParse_getFormulaError(&outcome.column);
    outcome.why = detail::reasonFor(reason, outcome.column > static_cast<int>(formula.size()));
    return outcome;
}

// Only where the library looked for a name that isn't there: which one, and which there are.
inline TextOutcome Values::unknownName(std::string_view tagString) const {
    constexpr size_t mostNames = 20;
    const std::vector<detail::Piece> pieces = detail::piecesOf(tagString).pieces;
    const auto unknown =
        std::ranges::find_if(pieces, [&](const detail::Piece& p) { return detail::canBeName(p) && !hasText(p.text); });
    std::string names;
    for (size_t i = 0; i < std::min(tags_.size(), mostNames); ++i)
        names += (i > 0 ? ", " : "") + std::string(tags_[i].name);
    if (tags_.size() > mostNames) names += ", ...";
    const std::string thereAre = tags_.empty() ? "there are none" : "there are " + names;
    if (unknown == pieces.end()) return {{}, "a name in it isn't that of a text; " + thereAre};
    return {{},
            "there is no text \"" + std::string(unknown->text) + "\"; " + thereAre,
            static_cast<int>(unknown->text.data() - tagString.data()) + 1};
}

inline TextOutcome Values::expand(const std::string& tagString) {
    const detail::Pieces pieces = detail::piecesOf(tagString);
    if (!pieces.fault.empty()) return {{}, std::string(pieces.fault), static_cast<int>(pieces.faultAt) + 1};
    // The library takes an unknown name for an empty text. It upper-cases the names that it compares, so this one,
    // which none can be equal to, tells whether it went through the whole table in vain.
    constexpr char unmet = 'a', met = 'A';
    TagEntry& last = tags_.emplace_back();
    last.name[0] = unmet;
    last.name[1] = '+';
    mdl::HostPtr<char> text;
    {
        const QuietConsole quiet;
        text.reset(mclibParse_tagString(tagString.c_str(), tags_.data(), static_cast<int>(tags_.size())));
    }
    const bool isUnknown = tags_.back().name[0] == met;
    tags_.pop_back();
    if (isUnknown) return unknownName(tagString);
    if (!text) return {{}, "an element of the tag string is missing, or there are too many brackets in each other"};
    return {std::string(text.get())};
}

}  // namespace mcapp
