// Letters and digits of narrow text, which is Windows-1252, whatever the locale is.
#pragma once

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace mc {

namespace letters {

struct Case {
    unsigned char capital, small;
};
// Neighbours whose places don't tell one from the other; all others lie 32 apart.
constexpr auto scatteredCases = std::to_array<Case>({{0x8A, 0x9A}, {0x8C, 0x9C}, {0x8E, 0x9E}, {0x9F, 0xFF}});
// Letters without another case, below the codes where accented letters stand side by side.
constexpr std::string_view uncased = "\x83\xAA\xB5\xBA";

struct Tables {
    std::array<char, 256> upper{}, lower{};
    std::array<bool, 256> letter{};

    constexpr void add(unsigned capital, unsigned small) {
        upper[small] = static_cast<char>(capital);
        lower[capital] = static_cast<char>(small);
        letter[capital] = letter[small] = true;
    }
    constexpr Tables() {
        for (unsigned c = 0; c < 256; ++c) upper[c] = lower[c] = static_cast<char>(c);
        for (unsigned c = 'A'; c <= 'Z'; ++c) add(c, c + 32);
        for (unsigned c = 0xC0; c <= 0xDE; ++c)
            if (c != 0xD7) add(c, c + 32);
        for (const Case& c : scatteredCases) add(c.capital, c.small);
        for (const char c : uncased) letter[static_cast<unsigned char>(c)] = true;
        letter[0xDF] = true;
    }
};
constexpr Tables tables;

}  // namespace letters

constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
constexpr bool isLetter(char c) {
    return letters::tables.letter[static_cast<unsigned char>(c)];
}
constexpr char upper(char c) {
    return letters::tables.upper[static_cast<unsigned char>(c)];
}
constexpr char lower(char c) {
    return letters::tables.lower[static_cast<unsigned char>(c)];
}

inline std::string lowered(std::string_view text) {
    std::string result(text);
    std::ranges::transform(result, result.begin(), lower);
    return result;
}
inline std::string uppered(std::string_view text) {
    std::string result(text);
    std::ranges::transform(result, result.begin(), upper);
    return result;
}
inline bool equalIgnoringCase(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, {}, upper, upper);
}

}  // namespace mc
