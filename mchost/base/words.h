// Words of text files and of answers: blanks, letters without their case, numbers, copies that cut.
#pragma once

#include <algorithm>
#include <charconv>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// ---- letters A to Z; all others stay ----

constexpr char lowerLetter(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c;
}
constexpr char upperLetter(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c & ~0x20) : c;
}
inline std::string lowerCase(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), lowerLetter);
    return lower;
}
inline std::string upperCase(std::string_view text) {
    std::string upper(text);
    std::ranges::transform(upper, upper.begin(), upperLetter);
    return upper;
}
inline bool sameName(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, {}, lowerLetter, lowerLetter);
}

// Without the blanks at both ends.
constexpr std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r";
    const size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// Takes the first word out of the text, which is what stands behind it then, without the blanks around it.
constexpr std::string_view takeWord(std::string_view& text) {
    text = trimmed(text);
    const std::string_view word = text.substr(0, std::min(text.find_first_of(" \t"), text.size()));
    text = trimmed(text.substr(word.size()));
    return word;
}

// The number that the text is from its first to its last character, "." being the decimal sign; of whole numbers the
// base may follow.
template <class Number, class... Base>
std::optional<Number> numberIn(std::string_view text, Base... base) {
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base...);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(value) : std::nullopt;
}

// As much of the text as fits `size` bytes with its NUL; the length that was copied, 0 without a buffer.
inline size_t copyCut(char* buffer, size_t size, std::string_view text) {
    if (!buffer || size == 0) return 0;
    const size_t length = text.copy(buffer, size - 1);
    buffer[length] = '\0';
    return length;
}
template <size_t size>
void copyCut(char (&to)[size], std::string_view text) {
    copyCut(to, size, text);
}

// What a new process takes as its arguments or its environment: null behind the last.
inline std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

}  // namespace host
