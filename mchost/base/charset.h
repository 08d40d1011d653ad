// Narrow text of the host interface (Windows-1252) against Unicode, by table and whatever the locale is.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace host {

// The five codes that Windows-1252 leaves open stand for the control characters of the same number, as in Windows.
char32_t unicodeOf(unsigned char code);
std::optional<unsigned char> narrowCodeOf(char32_t character);

std::string utf8FromNarrow(std::string_view narrow);

struct NarrowText {
    std::string text;                   // each character without a code became `substitute`
    std::optional<size_t> badPosition;  // byte in the UTF-8 text of the first one without a code, or of broken UTF-8
};
NarrowText narrowFromUtf8(std::string_view utf8, char substitute = '?');

// Reads the character at `position` and moves behind it; nothing, one byte on, where the text isn't UTF-8.
std::optional<char32_t> nextUtf8(std::string_view utf8, size_t& position);
void appendUtf8(std::string& utf8, char32_t character);

}  // namespace host
