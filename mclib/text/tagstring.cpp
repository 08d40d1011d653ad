// Two levels that call each other: texts, and the positions within them. Both walk over pieces of one working copy,
// which changes only where a position's white space is taken out.
#include "mclib/text/tagstring.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <optional>
#include <span>
#include <string_view>

#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/system.h"
#include "mclib/frame/errors.h"
#include "mclib/frame/letters.h"

namespace mc {

namespace {

// Written in a string where a double quote is meant.
constexpr char quoteMark = '\xA7';

// A piece of the working copy, or of a text.
using View = std::string_view;

#define VIEW_ARGS(view) static_cast<int>((view).size()), (view).data()

// ---- characters ----

constexpr bool isWhite(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

View afterSkipping(View text, View skipped) {
    return text.substr(std::min(text.find_first_not_of(skipped), text.size()));
}

// As atoi: white space, a sign, digits; 0 without them. Beyond 32 bits it is the nearest limit.
int32_t leadingNumber(View text) {
    text = afterSkipping(text, " \t\n\v\f\r");
    if (text.starts_with('+') && text.size() > 1 && isDigit(text[1])) text.remove_prefix(1);
    int32_t number = 0;
    if (std::from_chars(text.data(), text.data() + text.size(), number).ec == std::errc::result_out_of_range) {
        return text.starts_with('-') ? INT32_MIN : INT32_MAX;
    }
    return number;
}

// Position of the bracket that closes the one in front; npos when there is none. Quotes don't count.
size_t closingBracket(View text) {
    int open = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '(') ++open;
        if (text[i] == ')' && --open == 0) return i;
    }
    return View::npos;
}

bool bracketsBalance(View text) {
    int open = 0;
    for (const char c : text) {
        if (c == '(') ++open;
        if (c == ')' && --open < 0) return false;
    }
    return open == 0;
}

// What stands between the bracket in front, which must be there, and its closing one; all of it is taken off `rest`.
// Tells and gives nothing when there is no such bracket.
std::optional<View> takeBracket(View& rest) {
    const size_t end = rest.starts_with('(') ? closingBracket(rest) : View::npos;
    if (end == View::npos) {
        toolSubsystem_printf("Missing end bracket in \"%.*s\"!\n", VIEW_ARGS(rest));
        rest = {};
        return {};
    }
    const View inner = rest.substr(1, end - 1);
    rest.remove_prefix(end + 1);
    return inner;
}

// What stands before the next comma, which is taken off `rest` too; nothing when there is no comma.
std::optional<View> takeArgument(View& rest, size_t searchFrom = 0) {
    const size_t comma = rest.find(',', searchFrom);
    if (comma == View::npos) return {};
    const View argument = rest.substr(0, comma);
    rest.remove_prefix(comma + 1);
    return argument;
}

// 32-bit arithmetic that wraps; a division by 0 gives 0.
int32_t add(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}
int32_t multiply(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b));
}
int32_t divide(int32_t a, int32_t b) {
    return b == 0 ? 0 : static_cast<int32_t>(static_cast<int64_t>(a) / b);
}

// ---- texts and tags ----

// A text while it is built.
class Text {
  public:
    void append(View piece) { length += piece.copy(data + length, capacity - length); }
    void append(size_t count, char c) {
        count = std::min(count, capacity - length);
        std::memset(data + length, c, count);
        length += count;
    }
    void cut(size_t longest) { length = std::min(length, longest); }
    std::span<char> characters() { return {data, length}; }
    View view() const { return {data, length}; }

  private:
    static constexpr size_t capacity = MCLIB_TAG_BUILT_LENGTH;
    size_t length = 0;
    char data[capacity];
};

// An array of characters with or without its NUL.
template <size_t Size>
View viewOf(const char (&array)[Size]) {
    return {array, strnlen(array, Size)};
}

// The value of a tag; empty when there is none. The names that are compared are upper-cased in the table.
View tagValue(std::span<TagEntry> tags, View name) {
    const auto same = [](char inTable, char sought) { return inTable == upper(sought); };
    for (TagEntry& tag : tags) {
        const View tagName = viewOf(tag.name);
        std::ranges::transform(tagName, tag.name, upper);
        if (std::ranges::equal(tagName, name, same)) return viewOf(tag.value);
    }
    return {};
}

// Position of the n-th `c`, counted from the end when n is asked for so; 0 when there are too few.
int32_t occurrence(View text, char c, int32_t n, bool fromEnd) {
    if (n < 0) return 0;
    size_t at = fromEnd ? text.rfind(c) : text.find(c);
    for (; n > 1 && at != View::npos; --n) {
        if (fromEnd) {
            at = at == 0 ? View::npos : text.rfind(c, at - 1);
        } else {
            at = text.find(c, at + 1);
        }
    }
    return at == View::npos ? 0 : static_cast<int32_t>(at);
}

// ---- evaluation ----

class Evaluation {
  public:
    // `copy` is changed.
    Evaluation(char* copy, std::span<TagEntry> table) : workingCopy(copy), tags(table) {}
    // Builds the text of an expression, a piece of the working copy; false when it fails.
    bool text(View expression, Text& built);
    bool nestedTooDeeply() const { return tooDeep; }

  private:
    bool element(View& rest, Text& built);
    bool quoted(View& rest, Text& built);
    bool tag(View& rest, Text& built);
    bool substring(View arguments, Text& built);
    bool upperCased(View argument, Text& built);
    bool extended(View arguments, Text& built);

    int32_t position(View argument);
    int32_t sum(View expression);
    int32_t term(View expression, View& rest);
    int32_t factor(View expression, View& rest);
    int32_t length(View argument);
    int32_t search(View arguments, bool fromEnd);

    View withoutWhiteSpace(View piece);
    bool enter();
    void leave() { --depth; }

    struct TextFunction {
        View name;
        bool (Evaluation::*append)(View arguments, Text& built);
    };
    static constexpr TextFunction textFunctions[] = {
        {"substr", &Evaluation::substring}, {"strupr", &Evaluation::upperCased}, {"extstr", &Evaluation::extended}};

    char* const workingCopy;
    const std::span<TagEntry> tags;
    int depth = 0;
    bool tooDeep = false;
};

bool Evaluation::enter() {
    if (depth == MCLIB_TAG_NESTING) {
        if (!tooDeep) toolSubsystem_printf("Too many levels in a tag string, more than %d\n", MCLIB_TAG_NESTING);
        tooDeep = true;
        return false;
    }
    ++depth;
    return true;
}

// ---- the text level ----

bool Evaluation::text(View expression, Text& built) {
    if (!enter()) return false;
    bool good = true;
    for (View rest = expression; good && !rest.empty();) {
        rest = afterSkipping(rest, " +");
        good = element(rest, built);
    }
    leave();
    if (depth == 0 && built.view().size() > MCLIB_TAG_RESULT_LENGTH) {
        toolSubsystem_printf("The text of \"%.*s\" is cut at %d characters!\n", VIEW_ARGS(expression),
                             MCLIB_TAG_RESULT_LENGTH);
    }
    built.cut(MCLIB_TAG_RESULT_LENGTH);
    return good;
}

bool Evaluation::element(View& rest, Text& built) {
    if (rest.starts_with('"')) return quoted(rest, built);
    for (const TextFunction& function : textFunctions) {
        if (!rest.starts_with(function.name)) continue;
        rest.remove_prefix(function.name.size());
        const std::optional<View> arguments = takeBracket(rest);
        return arguments && (this->*function.append)(*arguments, built);
    }
    return tag(rest, built);
}

// A quote mark in a tag's value that stands in front becomes a double quote too.
bool Evaluation::quoted(View& rest, Text& built) {
    const size_t end = rest.find('"', 1);
    if (end == View::npos) {
        toolSubsystem_printf("Missing end quote in \"%.*s\"!\n", VIEW_ARGS(rest));
        return false;
    }
    built.append(rest.substr(1, end - 1));
    std::ranges::replace(built.characters(), quoteMark, '"');
    rest.remove_prefix(end + 1);
    return true;
}

// A name ends at the next + alone; the + goes with it.
bool Evaluation::tag(View& rest, Text& built) {
    const size_t end = std::min(rest.find('+'), rest.size());
    View name = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    name = name.substr(0, name.find_last_not_of(' ') + 1);
    if (name.empty()) return false;
    built.append(tagValue(tags, name));
    return true;
}

bool Evaluation::substring(View arguments, Text& built) {
    View rest = arguments;
    const std::optional<View> expression = takeArgument(rest);
    // A call in `from` may hold commas up to its first closing bracket.
    const size_t bracket = rest.find('(');
    const bool callInFrom = bracket < rest.find(',');
    const std::optional<View> fromArgument =
        expression ? takeArgument(rest, callInFrom ? rest.find(')', bracket) : 0) : std::nullopt;
    if (!fromArgument) {
        toolSubsystem_printf("syntax error in getSubString()\n");
        return true;
    }
    const int32_t to = position(rest);
    const int32_t from = position(*fromArgument);
    Text whole;
    if (!text(*expression, whole)) return false;
    const View view = whole.view();
    if (from >= 0 && from < to && static_cast<size_t>(from) < view.size()) {
        built.append(view.substr(static_cast<size_t>(from), static_cast<size_t>(to - from)));
    }
    return true;
}

bool Evaluation::upperCased(View argument, Text& built) {
    Text inner;
    if (!text(argument, inner)) return false;
    std::ranges::transform(inner.characters(), inner.characters().begin(), upper);
    built.append(inner.view());
    return true;
}

bool Evaluation::extended(View arguments, Text& built) {
    View place = arguments;
    const std::optional<View> expression = takeArgument(place);
    const std::optional<View> widthArgument = takeArgument(place);
    const std::optional<View> fillArgument = takeArgument(place);
    if (!fillArgument) return true;
    Text inner;
    if (!text(*expression, inner)) return false;
    const int32_t width = leadingNumber(afterSkipping(*widthArgument, " +"));
    const View fill = afterSkipping(*fillArgument, " +");
    if (width < 1 || fill.size() < 2) return true;
    inner.cut(static_cast<size_t>(width));
    const size_t missing = static_cast<size_t>(width) - inner.view().size();
    const bool textFirst = afterSkipping(place, " +").starts_with("end");
    if (textFirst) built.append(inner.view());
    built.append(missing, fill[1]);
    if (!textFirst) built.append(inner.view());
    return true;
}

// ---- the level of positions ----

// Closes up a piece of the working copy where it stands. Nobody reads what lies behind it in the old piece.
View Evaluation::withoutWhiteSpace(View piece) {
    char* const first = workingCopy + (piece.data() - workingCopy);
    char* const end = std::remove_if(first, first + piece.size(), isWhite);
    return {first, static_cast<size_t>(end - first)};
}

int32_t Evaluation::position(View argument) {
    const View expression = withoutWhiteSpace(argument);
    if (!bracketsBalance(expression)) {
        toolSubsystem_printf("Unmatched brackets in expression: \"%.*s\"\n", VIEW_ARGS(expression));
        return 0;
    }
    return sum(expression);
}

// A sign in front of the first term is its own; behind it a sign belongs to the number that follows, or is the number
// 0.
int32_t Evaluation::sum(View expression) {
    if (!enter()) return 0;
    View rest = expression;
    const bool negative = rest.starts_with('-');
    if (negative || rest.starts_with('+')) rest.remove_prefix(1);
    int32_t value = term(expression, rest);
    if (negative) value = multiply(value, -1);
    while (!rest.empty()) {
        if (rest[0] != '+' && rest[0] != '-') {
            toolSubsystem_printf("This should not occure: '%c'\n", rest[0]);
            value = 0;
            break;
        }
        value = add(value, term(expression, rest));
    }
    leave();
    return value;
}

// From right to left: 8/4/2 is 8/(4/2).
int32_t Evaluation::term(View expression, View& rest) {
    if (!enter()) {
        rest = {};
        return 0;
    }
    int32_t value = factor(expression, rest);
    if (rest.starts_with('*') || rest.starts_with('/')) {
        const bool product = rest[0] == '*';
        rest.remove_prefix(1);
        const int32_t right = term(expression, rest);
        value = product ? multiply(value, right) : divide(value, right);
    }
    leave();
    return value;
}

int32_t Evaluation::factor(View expression, View& rest) {
    // What follows the name must have room for the least arguments.
    const auto take = [&rest](View name, size_t leastSize) {
        const bool good = rest.size() >= leastSize && rest.starts_with(name) && rest[name.size()] == '(';
        if (good) rest.remove_prefix(name.size());
        return good;
    };
    if (!rest.empty() && (isDigit(rest[0]) || rest[0] == '+' || rest[0] == '-')) {
        const int32_t value = leadingNumber(rest);
        rest.remove_prefix(1);
        rest = afterSkipping(rest, "0123456789");
        return value;
    }
    if (take("strchr", 9)) return search(takeBracket(rest).value_or(View()), false);
    if (take("strrchr", 10)) return search(takeBracket(rest).value_or(View()), true);
    if (take("strlen", 9)) return length(takeBracket(rest).value_or(View()));
    if (rest.starts_with('(')) return sum(takeBracket(rest).value_or(View()));
    toolSubsystem_printf("Invalid expression: \"%.*s\"\n", VIEW_ARGS(expression));
    return 0;
}

int32_t Evaluation::length(View argument) {
    Text inner;
    return text(argument, inner) ? static_cast<int32_t>(inner.view().size()) : 0;
}

int32_t Evaluation::search(View arguments, bool fromEnd) {
    View rest = arguments;
    const std::optional<View> expression = takeArgument(rest);
    const size_t quote = rest.find('\'');
    const bool good = expression && quote != View::npos && quote + 2 < rest.size() && rest[quote + 2] == '\'';
    const size_t comma = good ? rest.find(',', quote + 3) : View::npos;
    const int32_t n = comma == View::npos ? 0 : leadingNumber(rest.substr(comma + 1));
    if (n == 0) {
        toolSubsystem_printf("Invalid arguments in %s()\n", fromEnd ? "strrchr" : "strchr");
        return 0;
    }
    Text inner;
    return text(*expression, inner) ? occurrence(inner.view(), rest[quote + 1], n, fromEnd) : 0;
}

// ---- one call ----

// A copy with its NUL; null when out of memory.
mdl::HostPtr<char> newText(View text) {
    mdl::HostPtr<char> block(
        static_cast<char*>(mclibMem_mallocRscErrorPrintf(text.size() + 1, MCLIB_ERRORS, MCLIB_OUT_OF_MEMORY)));
    if (block) std::memcpy(block.get(), text.data(), text.size());
    return block;
}

}  // namespace

}  // namespace mc

using namespace mc;

char* mclibParse_tagString(const char* expression, TagEntry* tags, int tagCount) {
    const View whole(expression ? expression : "");
    const mdl::HostPtr<char> copy = newText(whole);
    if (!copy) return nullptr;
    Evaluation evaluation(copy.get(), {tags, tags && tagCount > 0 ? static_cast<size_t>(tagCount) : 0});
    Text built;
    const bool good = evaluation.text({copy.get(), whole.size()}, built);
    return good && !evaluation.nestedTooDeeply() ? newText(built.view()).release() : nullptr;
}
