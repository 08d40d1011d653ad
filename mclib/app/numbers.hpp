// Numbers as applications read and show them, with "." in every locale.
#pragma once

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

namespace mcapp {

constexpr int mostDecimals = 12;
constexpr int asNeeded = -1;

// With so many decimals; asNeeded stands for as many as the number needs, 12 digits at most.
std::string shown(double value, int decimals);

// "1 drawing", "2 drawings".
inline std::string counted(size_t count, const char* what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

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

namespace detail {

inline constexpr double largestInDecimals = 1e15;  // beyond it a double has hardly any

}  // namespace detail

inline std::string shown(double value, int decimals) {
    char text[64];  // 15 digits, a point, 12 decimals and a sign at most
    if (decimals >= 0 && std::abs(value) < detail::largestInDecimals) {
        std::snprintf(text, sizeof text, "%.*f", std::min(decimals, mostDecimals), value);
    } else {
        std::snprintf(text, sizeof text, "%.12g", value);
    }
    const std::string all = text;
    const bool minusZero = all.starts_with('-') && all.find_first_not_of("-0.") == all.npos;
    return minusZero ? all.substr(1) : all;
}

}  // namespace mcapp
