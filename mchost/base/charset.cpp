#include "mchost/base/charset.h"

#include <algorithm>
#include <array>

namespace host {

namespace {

// Codes 0x80 to 0x9f of Windows-1252; all others are the Unicode character of the same number.
constexpr auto upperControls = std::to_array<char32_t>({
    0x20ac, 0x0081, 0x201a, 0x0192, 0x201e, 0x2026, 0x2020, 0x2021, 0x02c6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008d, 0x017d, 0x008f, 0x0090, 0x2018, 0x2019, 0x201c, 0x201d, 0x2022,
    0x2013, 0x2014, 0x02dc, 0x2122, 0x0161, 0x203a, 0x0153, 0x009d, 0x017e, 0x0178,
});
static_assert(upperControls.size() == 0x20);

// Length of a sequence by its first byte, and the smallest character that needs that length; 0 for no first byte.
struct Sequence {
    size_t length;
    char32_t least;
    unsigned char mask;
};
constexpr Sequence sequenceOf(unsigned char first) {
    if (first < 0x80) return {1, 0, 0x7f};
    if (first >= 0xc0 && first < 0xe0) return {2, 0x80, 0x1f};
    if (first >= 0xe0 && first < 0xf0) return {3, 0x800, 0x0f};
    if (first >= 0xf0 && first < 0xf8) return {4, 0x10000, 0x07};
    return {0, 0, 0};
}

bool isCharacter(char32_t c) {
    return c <= 0x10ffff && !(c >= 0xd800 && c < 0xe000);
}

}  // namespace

char32_t unicodeOf(unsigned char code) {
    return code >= 0x80 && code < 0xa0 ? upperControls[code - 0x80u] : code;
}

std::optional<unsigned char> narrowCodeOf(char32_t character) {
    if (character < 0x80 || (character >= 0xa0 && character < 0x100)) return static_cast<unsigned char>(character);
    const auto found = std::ranges::find(upperControls, character);
    if (found == upperControls.end()) return std::nullopt;
    return static_cast<unsigned char>(0x80 + (found - upperControls.begin()));
}

void appendUtf8(std::string& utf8, char32_t c) {
    const auto push = [&](char32_t byte) { utf8.push_back(static_cast<char>(byte)); };
    if (c < 0x80) return push(c);
    if (c < 0x800) {
        push(0xc0 | (c >> 6));
    } else {
        if (c < 0x10000) {
            push(0xe0 | (c >> 12));
        } else {
            push(0xf0 | (c >> 18));
            push(0x80 | ((c >> 12) & 0x3f));
        }
        push(0x80 | ((c >> 6) & 0x3f));
    }
    push(0x80 | (c & 0x3f));
}

std::optional<char32_t> nextUtf8(std::string_view utf8, size_t& position) {
    const auto first = static_cast<unsigned char>(utf8[position]);
    const Sequence sequence = sequenceOf(first);
    const std::string_view rest = utf8.substr(position++);
    if (sequence.length == 0 || sequence.length > rest.size()) return std::nullopt;
    char32_t character = first & sequence.mask;
    for (const char byte : rest.substr(1, sequence.length - 1)) {
        const auto next = static_cast<unsigned char>(byte);
        if ((next & 0xc0) != 0x80) return std::nullopt;
        character = (character << 6) | (next & 0x3f);
    }
    if (character < sequence.least || !isCharacter(character)) return std::nullopt;
    position += sequence.length - 1;
    return character;
}

std::string utf8FromNarrow(std::string_view narrow) {
    std::string utf8;
    utf8.reserve(narrow.size() + narrow.size() / 8);
    for (const char c : narrow) appendUtf8(utf8, unicodeOf(static_cast<unsigned char>(c)));
    return utf8;
}

NarrowText narrowFromUtf8(std::string_view utf8, char substitute) {
    NarrowText result;
    result.text.reserve(utf8.size());
    for (size_t position = 0; position < utf8.size();) {
        const size_t start = position;
        const std::optional<char32_t> character = nextUtf8(utf8, position);
        const std::optional<unsigned char> code = character ? narrowCodeOf(*character) : std::nullopt;
        if (!code && !result.badPosition) result.badPosition = start;
        result.text.push_back(code ? static_cast<char>(*code) : substitute);
    }
    return result;
}

}  // namespace host
