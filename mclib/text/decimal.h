// Decimal numbers of texts: strtol and strtod without locale, hexadecimal, infinite and undefined values.
#pragma once

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <string_view>

#include "mclib/text/char_set.h"

namespace mc::decimal {

constexpr CharSet blanks(" \t\n\v\f\r");

// The exact powers of ten: a whole number of up to 15 digits times or divided by one of them is rounded once, as a
// reader of decimal numbers must (W. D. Clinger, "How to read floating point numbers accurately").
constexpr int exactDigits = 15;
constexpr std::array powersOfTen{1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

struct Digits {
    const char *begin, *end;  // begin: after blanks and a plus sign
};

// Where from_chars can start; nothing when no number does.
inline std::optional<Digits> digitsOf(std::string_view text) {
    const char *p = text.data(), *end = p + text.size();
    while (p != end && blanks.has(*p)) ++p;
    if (p != end && *p == '+') {
        ++p;
        if (p != end && *p == '-') return {};
    }
    const char* first = p != end && *p == '-' ? p + 1 : p;
    if (first == end || !(('0' <= *first && *first <= '9') || *first == '.')) return {};
    return Digits{p, end};
}

// A number at the start of a text, and how it ended.
template <typename T>
struct Parsed {
    T value = 0;
    const char* end = nullptr;  // null: no number
    bool inRange = true;
};

template <typename T>
Parsed<T> parseNumber(std::string_view text) {
    Parsed<T> parsed;
    const std::optional<Digits> digits = digitsOf(text);
    if (!digits) return parsed;
    const auto [end, error] = std::from_chars(digits->begin, digits->end, parsed.value);
    if (error == std::errc::invalid_argument) return parsed;
    parsed.end = end;
    parsed.inRange = error == std::errc();
    return parsed;
}

// The run of digits at p, at most 8 of them, read in one step; 8 bytes must be readable. Each step of the sum brings
// together two neighbours, the first of which stands in the lower bits.
struct DigitRun {
    uint64_t value;
    int count;
};

inline DigitRun digitRun(const char* p) {
    uint64_t v;
    std::memcpy(&v, p, sizeof v);
    if constexpr (std::endian::native == std::endian::big) v = __builtin_bswap64(v);
    v ^= 0x3030303030303030;  // digits become 0 to 9
    const uint64_t others = ((v + 0x7676767676767676) | v) & 0x8080808080808080;
    const int count = others ? std::countr_zero(others) / 8 : 8;
    if (count == 0) return {0, 0};
    v <<= 64 - 8 * count;
    v = (v * 10 + (v >> 8)) & 0x00FF00FF00FF00FF;
    v = (v * 100 + (v >> 16)) & 0x0000FFFF0000FFFF;
    v = (v * 10000 + (v >> 32)) & 0xFFFFFFFF;
    return {v, count};
}

constexpr uint64_t wholePowersOfTen[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000};
constexpr double signs[] = {1.0, -1.0};

// A plain decimal: a sign, up to 15 digits, at most 8 of them behind a point. Digits and power of ten are exact doubles
// then, so that one division rounds the value as strtod does.
struct Decimal {
    int64_t digits = 0;
    int places = 0;
    bool negative = false, point = false;
    bool plain = false;  // nothing else stands in the text

    // The text lies in a reader's line.
    explicit Decimal(std::string_view text) {
        const char *p = text.data(), *end = p + text.size();
        if (text.size() > 17) return;
        const bool sign = *p == '-' || *p == '+';
        negative = *p == '-';
        p += sign;
        DigitRun run = digitRun(p);
        p += run.count;
        uint64_t value = run.value;
        if (run.count == 8) {
            run = digitRun(p);
            p += run.count;
            value = value * wholePowersOfTen[run.count] + run.value;
        }
        if (*p == '.') {
            point = true;
            run = digitRun(p + 1);
            p += 1 + run.count;
            value = value * wholePowersOfTen[run.count] + run.value;
            places = run.count;
        }
        const auto count = p - text.data() - point - sign;
        plain = p == end && count > 0 && count <= exactDigits;
        digits = static_cast<int64_t>(value);
    }
};

// The value of a token that is a number entirely; 0 for an empty one.
inline std::optional<int32_t> wholeNumber(std::string_view token) {
    if (token.empty()) return 0;
    const Decimal decimal(token);
    if (decimal.plain && !decimal.point && decimal.digits <= std::numeric_limits<int32_t>::max())
        return static_cast<int32_t>(decimal.negative ? -decimal.digits : decimal.digits);
    const Parsed<int32_t> parsed = parseNumber<int32_t>(token);
    if (parsed.end != token.data() + token.size() || !parsed.inRange) return {};
    return parsed.value;
}

inline std::optional<double> number(std::string_view token) {
    if (token.empty()) return 0.0;
    const Decimal decimal(token);
    if (decimal.plain) {
        const double value = static_cast<double>(decimal.digits) / powersOfTen[static_cast<size_t>(decimal.places)];
        return std::copysign(value, signs[decimal.negative]);
    }
    const Parsed<double> parsed = parseNumber<double>(token);
    if (parsed.end != token.data() + token.size() || std::isinf(parsed.value)) return {};
    if (parsed.inRange) return parsed.value;
    const size_t exponent = token.find_first_of("eE");
    const bool tooSmall = exponent != token.npos && token[exponent + 1] == '-';
    if (!tooSmall) return {};
    return std::copysign(0.0, token.find('-') < token.find_first_of("0123456789.") ? -1.0 : 1.0);
}

}  // namespace mc::decimal
