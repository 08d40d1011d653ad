// Other words in place of a text that fits a pattern.
#include <array>
#include <cstring>
#include <string_view>

#include "mclib/design/pattern.h"
#include "mclib/design/text_search.h"
#include "mclib/frame/errors.h"

using namespace mc;
using design::Pattern;

namespace {

constexpr const char* signs = "*?|";

// A replacement, piece by piece: plain characters, or one sign.
class Replacement {
  public:
    explicit Replacement(const char* text) : rest_(text) {}

    bool atEnd() const { return *rest_ == '\0'; }
    // '*' or '?', or 0 for the plain characters in `plain`.
    char next(std::string_view& plain) {
        const char sign = *rest_;
        if (sign == '*' || sign == '?') {
            ++rest_;
            return sign;
        }
        const bool isBar = sign == '|' && rest_[1] != '\0';
        const size_t length = sign == '|' ? 1 : std::strcspn(rest_, signs);
        plain = {rest_ + (isBar ? 1 : 0), length};
        rest_ = plain.data() + length;
        return 0;
    }

  private:
    const char* rest_;
};

bool canFill(const Pattern& pattern, const char* replacement) {
    Pattern::Wildcards wanted = {0, 0};
    std::string_view plain;
    for (Replacement rest(replacement); !rest.atEnd();) {
        const char sign = rest.next(plain);
        wanted.stars += sign == '*';
        wanted.characters += sign == '?';
    }
    const Pattern::Wildcards given = pattern.wildcards();
    return wanted.stars <= given.stars && wanted.characters <= given.characters;
}

class Writer {
  public:
    Writer(char* out, int32_t size) : out_(out), room_(size > 0 ? static_cast<size_t>(size) - 1 : 0) {}

    bool add(std::string_view text) {
        if (text.size() > room_) return false;
        std::memcpy(out_, text.data(), text.size());
        out_ += text.size();
        room_ -= text.size();
        *out_ = '\0';
        return true;
    }

  private:
    char* out_;
    size_t room_;
};

}  // namespace

int mclibSearch_compareString(const char* text, const char* pattern, uint32_t flags, int32_t maxErrors) {
    char copy[MCLIB_SEARCH_TEXT_SIZE] = "";
    std::strncpy(copy, text ? text : "", sizeof copy - 1);
    const Pattern prepared(pattern ? pattern : "", (flags & SEARCH_CASE_SENSITIVE) != 0);
    return design::errorsOfText(copy, prepared, (flags & SEARCH_IGNORE_BLANKS) != 0, maxErrors);
}

int mclibSearch_replaceString(char* out, int32_t size, const char* text, const char* pattern, const char* replacement,
                              uint32_t flags) {
    if (out && size > 0) *out = '\0';
    if (!pattern) pattern = "";
    if (!replacement) replacement = "";
    const Pattern prepared(pattern, (flags & SEARCH_CASE_SENSITIVE) != 0);
    if (!canFill(prepared, replacement)) return MCLIB_REPLACE_BAD_FORM;
    if (!text) return MCLIB_SUCCESS;
    std::array<std::string_view, MCLIB_SEARCH_TEXT_SIZE> runs;
    std::array<char, MCLIB_SEARCH_TEXT_SIZE> characters;
    if (!out || size < 1 || std::strlen(pattern) >= runs.size()) return MCLIB_REPLACE_TOO_LONG;
    if (!prepared.take(text, {runs, characters})) return MCLIB_REPLACE_NO_FIT;
    Writer writer(out, size);
    size_t star = 0, character = 0;
    std::string_view piece;
    for (Replacement rest(replacement); !rest.atEnd();) {
        const char sign = rest.next(piece);
        if (sign == '*') piece = runs[star++];
        if (sign == '?') piece = {&characters[character++], 1};
        if (writer.add(piece)) continue;
        *out = '\0';
        return MCLIB_REPLACE_TOO_LONG;
    }
    return MCLIB_SUCCESS;
}
