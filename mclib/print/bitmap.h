// A bitmap of the rasteriser, drawn as runs of neighbouring bits. Internal.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace mc::raster {

// Bit numbers and pixels need more than 32 bits, their products more than 64.
__extension__ using Wide = __int128;

struct Pixel {
    int64_t x, y;
};

// ---- slopes ----

// Columns a row of a line with dx up to dy: 0 or 1, and a fraction of 2^64, rounded up. A line begins half way between
// columns, so where it is lies at 1 / (2 * dy) or more from the next column, or exactly on it. What the rounding adds
// up to over dy rows stays below that while 2 * dy * dy is below 2^64.
struct Slope {
    static constexpr int64_t longest = (int64_t{1} << 31) - 1;
    Slope(int64_t dx, int64_t dy)
        : whole(dx == dy), fraction(whole ? 0 : static_cast<uint64_t>(((Wide(dx) << 64) + dy - 1) / dy)) {}
    const int64_t whole;
    const uint64_t fraction;
};

// The bits of a pixel, and behind them those of a pixel and the next one, for each place in a byte; two bytes in a row.
constexpr auto pairMasks = [] {
    std::array<uint16_t, 16> masks{};
    for (size_t place = 0; place < 8; ++place) {
        for (size_t more = 0; more < 2; ++more) {
            const unsigned bits = (more ? 0xC000U : 0x8000U) >> place;
            masks[more * 8 + place] = std::bit_cast<uint16_t>(
                std::array{static_cast<unsigned char>(bits >> 8), static_cast<unsigned char>(bits & 0xFF)});
        }
    }
    return masks;
}();

// ---- the bitmap ----

class Bitmap {
  public:
    Bitmap(unsigned char* bytes, int byteCount, const int* size, int mode)
        : width(size[0]),
          height(size[1]),
          bytes(bytes),
          byteCount(width > 0 ? std::max(byteCount, 0) : 0),
          ink(mode == 1 ? ~0ULL : 0) {}

    int64_t bitCount() const { return byteCount * 8; }
    Wide bitOf(int64_t x, int64_t y) const { return Wide(width) * y + x; }

    // Whether all pixels of the box lie in the bitmap, and the word from each of them on.
    bool holds(Pixel low, Pixel high) const {
        return width > 0 && bitOf(low.x, low.y) >= 0 && bitOf(high.x, high.y) + wordBits <= bitCount();
    }

    // Draws the bits from `first` to `last`, both included, as far as the bitmap has them.
    void run(int64_t first, int64_t last) {
        first = std::max<int64_t>(first, 0);
        last = std::min(last, bitCount() - 1);
        if (first > last) return;
        if (first + wordBits <= bitCount()) {
            runInside(first, last);
        } else {
            runOfBytes(first, last);
        }
    }
    // The same where the bitmap is known to hold the bits and the word from the first one on.
    void runInside(int64_t first, int64_t last) {
        const int64_t offset = first & 7, length = last - first + 1;
        if (offset + length > wordBits) return runOfBytes(first, last);
        apply(first, (~uint64_t{0} << (wordBits - length)) >> offset);
    }
    // Downwards from `bit` over `rows` further rows, all known to be held: in each row the bit that the line comes from
    // and, where it goes over to the next column, the one there.
    void slopeInside(int64_t bit, Slope slope, int sideways, int64_t rows) {
        runInside(bit, bit);
        if (ink) {
            sideways > 0 ? slopeRows<true, true>(bit, slope, rows) : slopeRows<true, false>(bit, slope, rows);
        } else {
            sideways > 0 ? slopeRows<false, true>(bit, slope, rows) : slopeRows<false, false>(bit, slope, rows);
        }
    }

    const int64_t width, height;

  private:
    static constexpr int64_t wordBits = 64;

    // Draws the bits of a mask whose highest bit is that of the byte of `first`.
    template <class Mask>
    void apply(int64_t first, Mask mask) {
        if constexpr (std::endian::native == std::endian::little) mask = swapBytes(mask);
        unsigned char* const at = bytes + (first >> 3);
        Mask value;
        std::memcpy(&value, at, sizeof value);
        value = static_cast<Mask>((value & ~mask) | (static_cast<Mask>(ink) & mask));
        std::memcpy(at, &value, sizeof value);
    }
    static uint8_t swapBytes(uint8_t value) { return value; }
    static uint64_t swapBytes(uint64_t value) { return __builtin_bswap64(value); }

    template <bool set, bool toTheRight>
    void slopeRows(int64_t bit, Slope slope, int64_t rows) const {
        unsigned char* const start = bytes;
        const int64_t nextRow = width;
        uint64_t along = uint64_t{1} << 63;  // how far the line is from one column to the next
        for (; rows > 0; --rows) {
            const int64_t stepped = slope.whole + __builtin_add_overflow(along, slope.fraction, &along);
            bit += toTheRight ? nextRow : nextRow - stepped;
            unsigned char* const at = start + (bit >> 3);
            const uint16_t mask = pairMasks[static_cast<size_t>(stepped * 8 + (bit & 7))];
            uint16_t value;
            std::memcpy(&value, at, sizeof value);
            value = static_cast<uint16_t>(set ? value | mask : value & ~mask);
            std::memcpy(at, &value, sizeof value);
            if (toTheRight) bit += stepped;
        }
    }

    void runOfBytes(int64_t first, int64_t last) {
        const int64_t byte = first >> 3, lastByte = last >> 3;
        const auto head = static_cast<uint8_t>(0xFF >> (first & 7)),
                   tail = static_cast<uint8_t>(0xFF << (7 - (last & 7)));
        if (byte == lastByte) return apply(first, static_cast<uint8_t>(head & tail));
        apply(first, head);
        std::memset(bytes + byte + 1, static_cast<int>(ink & 0xFF), static_cast<size_t>(lastByte - byte - 1));
        apply(last, tail);
    }

    unsigned char* const bytes;
    const int64_t byteCount;
    const uint64_t ink;
};

// ---- points ----

// The caller's points as pixels of a bitmap: y downwards from the top row.
class Outline {
  public:
    Outline(const int* points, const int* origin, const Bitmap& bitmap)
        : points(points), left(origin[0]), top(bitmap.height - 1 + origin[1]) {}
    Pixel operator[](size_t i) const { return {points[2 * i] - left, top - points[2 * i + 1]}; }

  private:
    const int* const points;
    const int64_t left, top;
};

}  // namespace mc::raster
