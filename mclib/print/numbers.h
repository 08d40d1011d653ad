// Numbers as the printf formats "%d", "%.1f" and "%.2f" write them.
#pragma once

#include <array>
#include <bit>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <limits>

namespace mc {

// The most characters that one of these numbers takes: sign, 309 digits, point, two decimals.
constexpr size_t numberRoom = 320;

}  // namespace mc

namespace mc::numbers {

constexpr auto digitPairs = [] {
    std::array<char, 200> pairs{};
    for (size_t i = 0; i < 100; ++i) {
        pairs[2 * i] = static_cast<char>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return pairs;
}();

inline char* putPair(char* p, uint64_t n) {
    std::memcpy(p, &digitPairs[2 * n], 2);
    return p + 2;
}

inline uint32_t pair(uint64_t n) {
    uint16_t digits;
    std::memcpy(&digits, &digitPairs[2 * n], 2);
    return digits;
}

// Four digits are put together and the leading zeros pushed out, so that numbers of mixed lengths cost no branch.
inline char* putWhole(char* p, uint64_t n) {
    if (n >= 10000) {
        p = putWhole(p, n / 10000);
        return putPair(putPair(p, n / 100 % 100), n % 100);
    }
    const int zeros = (n < 1000) + (n < 100) + (n < 10);
    constexpr bool lowFirst = std::endian::native == std::endian::little;
    const uint32_t high = pair(n / 100), low = pair(n % 100);
    const uint32_t digits = lowFirst ? (high | low << 16) >> 8 * zeros : (high << 16 | low) << 8 * zeros;
    std::memcpy(p, &digits, 4);
    return p + 4 - zeros;
}

// Writes v with that many decimals, 1 or 2.
template <int decimals>
inline char* putFixed(char* p, double v) {
    const auto bits = std::bit_cast<uint64_t>(v);
    const auto exponent = static_cast<int>(bits >> 52 & 0x7FF);
    constexpr int whole = 1075;  // from this exponent on there are no binary places, or no number
    if (exponent >= whole) return std::to_chars(p, p + numberRoom, v, std::chars_format::fixed, decimals).ptr;
    *p = '-';
    p += bits >> 63;
    // |v| is mantissa / 2^places, and the mantissa times 100 stays below 2^60.
    const uint64_t mantissa = (bits & 0xFFFFFFFFFFFFF) | (exponent ? uint64_t{1} << 52 : 0);
    const int places = whole - (exponent ? exponent : 1);
    constexpr uint64_t unit = decimals == 1 ? 10 : 100;
    uint64_t n = 0;
    if (places <= 60) {
        const uint64_t scaled = mantissa * unit, half = uint64_t{1} << (places - 1);
        const uint64_t rest = scaled & (2 * half - 1);
        n = scaled >> places;
        n += rest > half || (rest == half && (n & 1));
    }
    p = putWhole(p, n / unit);
    *p++ = '.';
    if constexpr (decimals == 2) return putPair(p, n % unit);
    *p++ = static_cast<char>('0' + n % unit);
    return p;
}

}  // namespace mc::numbers

namespace mc {

// Writes v with two decimals: the exact binary value rounded, halves to the even digit, "-0.00" for what is below 0 and
// rounds to it, nan and inf by name. Needs numberRoom characters at p; gives the end of what it wrote.
inline char* putHundredths(char* p, double v) {
    return numbers::putFixed<2>(p, v);
}

// The same with one decimal.
inline char* putTenths(char* p, double v) {
    return numbers::putFixed<1>(p, v);
}

// Writes a whole number; needs 11 characters at p.
inline char* putInteger(char* p, int32_t v) {
    *p = '-';
    p += v < 0;
    const int64_t wide = v;
    return numbers::putWhole(p, static_cast<uint64_t>(wide < 0 ? -wide : wide));
}

// The whole number of v towards 0; the nearest 32-bit limit where it doesn't fit, 0 where v is no number.
constexpr int32_t truncated(double v) {
    constexpr auto most = std::numeric_limits<int32_t>::max(), least = std::numeric_limits<int32_t>::min();
    if (!(v > least)) return v <= least ? least : 0;
    return v < most ? static_cast<int32_t>(v) : most;
}

}  // namespace mc
