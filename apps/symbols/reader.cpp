#include "reader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <utility>

#include <mclib/app/input.hpp>
#include <mclib/app/numbers.hpp>
#include <mclib/app/tell.hpp>
#include "fields.h"

namespace symbols {

namespace {

constexpr double tolerance = 0.01;  // of a size that is told as one number

struct BaseKind {
    const char* name;
    int32_t group;
    int sizes;
    bool hasPattern;
};
constexpr BaseKind bases[] = {{"line", SEARCH_GROUP_LINE, 1, false},
                              {"circle", SEARCH_GROUP_CIRCLE, 2, false},
                              {"rectangle", SEARCH_GROUP_RECTANGLE, 2, false},
                              {"text", SEARCH_GROUP_TEXT, 1, true}};

struct Range {
    double least, most;  // -1: no limit
};

// "4..6", "4..", "..6", "4" and "*".
std::optional<Range> rangeIn(std::string_view text) {
    const auto limit = [](std::string_view one) -> std::optional<double> {
        if (one.empty()) return -1;
        const std::optional<double> value = mcapp::numberIn<double>(one);
        return value && std::isfinite(*value) && *value >= 0 ? value : std::nullopt;
    };
    if (text == "*") return Range{-1, -1};
    const size_t dots = text.find("..");
    const std::optional<double> least = limit(text.substr(0, dots));
    if (dots == text.npos) {
        if (text.empty() || !least) return {};
        return Range{*least * (1 - tolerance), *least * (1 + tolerance)};
    }
    const std::optional<double> most = limit(text.substr(dots + 2));
    if (!least || !most || (*most >= 0 && *most < *least)) return {};
    return Range{*least, *most};
}

// The place of a set that isn't closed; npos when all are.
size_t openSet(std::string_view pattern) {
    for (size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] == '|') ++i;
        if (i >= pattern.size() || pattern[i] != '[' || (i > 0 && pattern[i - 1] == '|')) continue;
        const size_t end = pattern.find(']', i);
        if (end == pattern.npos) return i;
        i = end;
    }
    return pattern.npos;
}

bool setFlag(uint32_t& flags, uint32_t flag) {
    flags |= flag;
    return true;
}

class Reader {
  public:
    bool read(const std::string& fileName);
    SymbolFile take() { return std::move(file_); }

  private:
    struct Keyword {
        const char* name;
        bool (Reader::*read)();
    };
    static const std::array<Keyword, 8> keywords;
    // What may follow a base element or a text.
    struct Modifiers {
        uint32_t& flags;
        int32_t &weight, &style, &color;
        std::string& level;
        SearchTextSpec* text;  // null for a base element
    };

    bool line();
    // Keywords.
    bool group();
    bool list();
    bool symbol();
    bool base();
    bool box();
    bool scaled();
    bool text();
    bool item();

    bool size(double& least, double& most, const char* what);
    bool pattern(char (&into)[MCLIB_SPEC_PATTERN_SIZE], const char* what);
    bool modifiers(const Modifiers& of);
    bool modifier(const Modifiers& of);
    bool number(int32_t& value, const char* what);
    bool isWhole(const Kind& kind);
    bool fail(const Kind& kind, const std::string& what);

    mcapp::Input in_;
    SymbolFile file_;
    std::string group_;
    Kind* kind_ = nullptr;  // that the lines belong to
    bool failed_ = false;
};

constexpr std::array<Reader::Keyword, 8> Reader::keywords = {{
    {"GROUP", &Reader::group},
    {"LIST", &Reader::list},
    {"SYMBOL", &Reader::symbol},
    {"BASE", &Reader::base},
    {"BOX", &Reader::box},
    {"SCALED", &Reader::scaled},
    {"TEXT", &Reader::text},
    {"ITEM", &Reader::item},
}};

// ---- tokens ----

bool Reader::size(double& least, double& most, const char* what) {
    in_.atEnd();
    char* const position = in_.position();
    std::string word;
    if (!in_.word(word, what)) return false;
    const std::optional<Range> range = rangeIn(word);
    if (!range)
        return in_.failAt(position, std::string(what) +
                                        " must be a number, a range such as 4..6, 4.. or ..6, or * for "
                                        "any" +
                                        mcapp::commaHint(word));
    least = range->least;
    most = range->most;
    return true;
}

bool Reader::pattern(char (&into)[MCLIB_SPEC_PATTERN_SIZE], const char* what) {
    in_.atEnd();
    char* const position = in_.position();
    std::string text;
    if (!in_.text(text, what)) return false;
    if (text.size() >= sizeof into)
        return in_.failAt(position, "a pattern has at most " + std::to_string(sizeof into - 1) + " characters");
    const size_t open = openSet(text);
    if (open != text.npos)
        return in_.failAt(position + 1 + open, "no text fits, as this [ has no ]; |[ is a bracket itself");
    std::strcpy(into, text.c_str());
    return true;
}

bool Reader::number(int32_t& value, const char* what) {
    in_.atEnd();
    char* const position = in_.position();
    return in_.wholeNumber(value, what) &&
           (value >= 0 || in_.failAt(position, std::string(what) + " must be 0 or more"));
}

bool Reader::modifier(const Modifiers& of) {
    if (in_.isKeyword("weight")) return number(of.weight, "the weight");
    if (in_.isKeyword("style")) return number(of.style, "the style");
    if (in_.isKeyword("colour")) return number(of.color, "the colour");
    if (in_.isKeyword("level")) return in_.text(of.level, "the level");
    if (in_.isKeyword("case")) return setFlag(of.flags, SEARCH_CASE_SENSITIVE);
    if (in_.isKeyword("without-blanks")) return setFlag(of.flags, SEARCH_IGNORE_BLANKS);
    if (of.text && in_.isKeyword("near")) return number(of.text->maxErrors, "the number of errors");
    if (of.text && in_.isKeyword("height")) return size(of.text->minHeight, of.text->maxHeight, "the height");
    return in_.failHere(std::string("this must be one of weight, style, colour, level, case, without-blanks") +
                        (of.text ? ", near, height" : ""));
}

bool Reader::modifiers(const Modifiers& of) {
    while (!in_.atEnd())
        if (!modifier(of)) return false;
    return true;
}

// ---- lines ----

bool Reader::group() {
    return in_.text(group_, "the title of the group") && in_.endOfLine();
}

bool Reader::list() {
    std::string line;
    if (!in_.rest(line, "the line of the list")) return false;
    file_.head.push_back(line);
    return true;
}

bool Reader::symbol() {
    Kind kind = {};
    kind.spec.minSizeA = kind.spec.maxSizeA = kind.spec.minSizeB = kind.spec.maxSizeB = -1;
    kind.spec.weight = kind.spec.style = kind.spec.color = -1;
    kind.group = group_;
    kind.origin = in_.fileName() + ", line " + std::to_string(in_.lineNumber());
    const bool named = in_.text(kind.name, "the name of the symbol") && in_.endOfLine();
    file_.kinds.push_back(std::move(kind));
    kind_ = &file_.kinds.back();
    return named;
}

bool Reader::base() {
    SearchElementSpec& spec = kind_->spec;
    in_.atEnd();
    char* const position = in_.position();
    const auto* const base = std::ranges::find_if(bases, [&](const BaseKind& b) { return in_.isKeyword(b.name); });
    if (base == std::end(bases)) return in_.failHere("a base element is one of " + mcapp::namesOf(bases));
    if (spec.group != 0) return in_.failAt(position, "the symbol has a base element already");
    spec.group = base->group;
    if (base->hasPattern && !pattern(spec.pattern, "the pattern of the base text")) return false;
    if (!size(spec.minSizeA, spec.maxSizeA, "the size")) return false;
    const bool hasSecond = base->sizes > 1 && !in_.atEnd() && std::strchr("0123456789.*", *in_.position());
    if (hasSecond && !size(spec.minSizeB, spec.maxSizeB, "the second size")) return false;
    return modifiers({spec.flags, spec.weight, spec.style, spec.color, kind_->level, nullptr});
}

bool Reader::box() {
    Point3d low = {}, high = {};
    if (!in_.number(low.x, "the left side of the box") || !in_.number(low.y, "its lower side") ||
        !in_.number(high.x, "its right side") || !in_.number(high.y, "its upper side"))
        return false;
    kind_->low.push_back(low);
    kind_->high.push_back(high);
    return in_.endOfLine();
}

bool Reader::scaled() {
    kind_->spec.flags |= SEARCH_SCALE_REGIONS;
    return in_.endOfLine();
}

bool Reader::text() {
    WantedText text = {};
    text.spec.weight = text.spec.style = text.spec.color = -1;
    text.spec.minHeight = text.spec.maxHeight = -1;
    if (!pattern(text.spec.pattern, "the pattern")) return false;
    const bool good =
        modifiers({text.spec.flags, text.spec.weight, text.spec.style, text.spec.color, text.level, &text.spec});
    kind_->texts.push_back(std::move(text));
    return good;
}

bool Reader::item() {
    std::string line;
    if (!in_.rest(line, "the fields of the item")) return false;
    char* const position = in_.position();
    if (!kind_->item.empty()) return in_.failAt(position, "the symbol has an item already");
    kind_->item = fieldsOf(line);
    return kind_->item.size() <= mostFields ||
           in_.failAt(position, "an item has at most " + std::to_string(mostFields) + " fields");
}

bool Reader::line() {
    const Keyword* const keyword = in_.keywordOf(keywords);
    if (!keyword) return false;
    const bool isGeneral =
        keyword->read == &Reader::group || keyword->read == &Reader::list || keyword->read == &Reader::symbol;
    if (!isGeneral && !kind_) return in_.failHere(std::string(keyword->name) + " belongs to a symbol: SYMBOL first");
    return (this->*keyword->read)();
}

// ---- the whole ----

bool Reader::fail(const Kind& kind, const std::string& what) {
    failed_ = true;
    return mcapp::fail(kind.origin + ": the symbol \"" + kind.name + "\" " + what);
}

bool Reader::isWhole(const Kind& kind) {
    if (kind.spec.group == 0) return fail(kind, "has no base element: BASE is missing");
    if (kind.low.empty()) return fail(kind, "has no box for its texts: BOX is missing");
    if (kind.texts.empty()) return fail(kind, "has no text: TEXT is missing; TEXT \"*\" takes any");
    if (kind.item.empty()) return fail(kind, "has no item: ITEM is missing");
    std::vector<bool> stars;
    for (const WantedText& text : kind.texts) {
        const bool ignoresBlanks = (text.spec.flags & SEARCH_IGNORE_BLANKS) != 0;
        stars.push_back(!ignoresBlanks &&
                        mclibSearch_replaceString(nullptr, 0, nullptr, text.spec.pattern, "*", 0) == MCLIB_SUCCESS);
    }
    const std::string wrong = refusalOf(kind.item, stars);
    return wrong.empty() || fail(kind, wrong);
}

bool Reader::read(const std::string& fileName) {
    if (!in_.open(fileName)) return false;
    while (in_.nextLine()) line();
    if (in_.failed()) return false;
    if (file_.kinds.empty()) return mcapp::fail(fileName + ": there are no symbols in this file");
    for (const Kind& kind : file_.kinds) isWhole(kind);
    return !failed_;
}

}  // namespace

std::optional<SymbolFile> readSymbols(const std::string& fileName) {
    Reader reader;
    if (!reader.read(fileName)) return {};
    return reader.take();
}

}  // namespace symbols
