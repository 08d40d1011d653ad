// Numbers as applications read and show them, with "." in every locale.
#pragma once

#include <charconv>
#include <optional>
#include <string>
#include <string_view>

namespace app {

constexpr int mostDecimals = 12;
constexpr int asNeeded = -1;

// With so many decimals; asNeeded stands for as many as the number needs, 12 digits at most.
std::string shown(double value, int decimals);

// The number that a text is as a whole.
template <class Number>
std::optional<Number> numberIn(std::string_view text) {
    Number value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) return {};
    return value;
}

// What a message about such a text adds where it is a number with a comma; else empty.
inline const char* commaHint(std::string_view text) {
    const bool comma =
        !text.empty() && text.find_first_not_of("0123456789+-,") == text.npos && text.find(',') != text.npos;
    return comma ? "; a point divides its decimals" : "";
}

}  // namespace app
