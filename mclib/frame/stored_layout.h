// Blocks of bytes as they are stored: the one codec for records in resource files and data in design files.
//
// Numbers are little-endian, floats IEEE 754; narrow text is Windows-1252 and ends in a NUL; wide text is in 16-bit
// units (UTF-16) and ends in a zero unit. A layout is told once, field by field with its offset, as a function template
// that both StoreFields and LoadFields go through:
//
//     template <class Fields, class Person>
//     void personFields(Fields& fields, Person& person) {
//         fields.number(0, person.id);
//         fields.text(4, 20, person.name);
//     }
//     personFields(StoreFields(bytes), person);  personFields(LoadFields(bytes), person);
//
// Nothing is read or written outside the block: a field that doesn't lie in it as a whole is left out.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>
#include <type_traits>

namespace mc {

template <size_t Size>
using BitsOf =
    std::conditional_t<Size == 1, uint8_t,
                       std::conditional_t<Size == 2, uint16_t, std::conditional_t<Size == 4, uint32_t, uint64_t>>>;

template <class Number>
requires std::is_arithmetic_v<Number>
inline void storeNumber(uint8_t* at, Number value) {
    const auto bits = std::bit_cast<BitsOf<sizeof(Number)>>(value);
    for (size_t i = 0; i < sizeof bits; ++i) at[i] = static_cast<uint8_t>(bits >> 8 * i);
}

template <class Number>
requires std::is_arithmetic_v<Number>
inline Number loadNumber(const uint8_t* at) {
    BitsOf<sizeof(Number)> bits = 0;
    for (size_t i = 0; i < sizeof bits; ++i) bits |= static_cast<decltype(bits)>(decltype(bits){at[i]} << 8 * i);
    return std::bit_cast<Number>(bits);
}

// The text that begins at `at`: up to its NUL, or all that there is without one.
inline std::string_view textAt(std::span<const uint8_t> bytes) {
    const auto* text = reinterpret_cast<const char*>(bytes.data());
    return {text, strnlen(text, bytes.size())};
}

// Copies as much of `from` as fits with a NUL, and clears the rest.
inline void fillText(std::span<char> to, std::string_view from) {
    if (to.empty()) return;
    const size_t length = std::min(from.size(), to.size() - 1);
    std::memcpy(to.data(), from.data(), length);
    std::memset(to.data() + length, 0, to.size() - length);
}

// Wide text to `units` 16-bit units, the last one 0; the rest is cleared, and what doesn't fit is cut.
inline void storeWide(uint8_t* to, size_t units, std::span<const wchar_t> text) {
    size_t used = 0;
    const auto put = [&](uint32_t unit) { storeNumber(to + 2 * used++, static_cast<uint16_t>(unit)); };
    for (const wchar_t c : text) {
        const auto code = static_cast<uint32_t>(c);
        const size_t needed = code > 0xFFFF ? 2 : 1;
        if (code == 0 || used + needed >= units) break;
        if (needed == 1) {
            put(code);
        } else if (code > 0x10FFFF) {
            put(0xFFFD);  // no character
        } else {
            put(0xD800 + ((code - 0x10000) >> 10));
            put(0xDC00 + ((code - 0x10000) & 0x3FF));
        }
    }
    std::memset(to + 2 * used, 0, 2 * (units - used));
}

// The way back: at most `units` units, up to the first 0. `text` is ended, and cleared behind its end.
inline void loadWide(std::span<wchar_t> text, const uint8_t* from, size_t units) {
    size_t length = 0;
    for (size_t i = 0; i < units && length + 1 < text.size(); ++i) {
        uint32_t code = loadNumber<uint16_t>(from + 2 * i);
        if (code == 0) break;
        const uint32_t low = i + 1 < units ? loadNumber<uint16_t>(from + 2 * (i + 1)) : 0;
        if (code >> 10 == 0xD800 >> 10 && low >> 10 == 0xDC00 >> 10) {
            code = 0x10000 + ((code & 0x3FF) << 10 | (low & 0x3FF));
            ++i;
        }
        text[length++] = static_cast<wchar_t>(code);
    }
    std::fill(text.begin() + static_cast<std::ptrdiff_t>(length), text.end(), L'\0');
}

class StoreFields {
  public:
    explicit StoreFields(std::span<uint8_t> block) : block_(block) {}

    template <class Number>
    void number(size_t offset, const Number& value) {
        if (holds(offset, sizeof value)) storeNumber(&block_[offset], value);
    }
    // A text in `size` bytes of the block.
    template <size_t Size>
    void text(size_t offset, size_t size, const char (&value)[Size]) {
        if (!holds(offset, size)) return;
        fillText({reinterpret_cast<char*>(&block_[offset]), size}, {value, strnlen(value, Size)});
    }
    // A wide text in `units` 16-bit units of the block.
    template <size_t Size>
    void wide(size_t offset, size_t units, const wchar_t (&value)[Size]) {
        if (holds(offset, 2 * units)) storeWide(&block_[offset], units, value);
    }

  private:
    bool holds(size_t offset, size_t size) const { return offset <= block_.size() && size <= block_.size() - offset; }
    std::span<uint8_t> block_;
};

class LoadFields {
  public:
    explicit LoadFields(std::span<const uint8_t> block) : block_(block) {}

    template <class Number>
    void number(size_t offset, Number& value) {
        if (holds(offset, sizeof value)) value = loadNumber<Number>(&block_[offset]);
    }
    template <size_t Size>
    void text(size_t offset, size_t size, char (&value)[Size]) {
        if (holds(offset, size)) fillText(value, textAt(block_.subspan(offset, size)));
    }
    template <size_t Size>
    void wide(size_t offset, size_t units, wchar_t (&value)[Size]) {
        if (holds(offset, 2 * units)) loadWide(value, &block_[offset], units);
    }

  private:
    bool holds(size_t offset, size_t size) const { return offset <= block_.size() && size <= block_.size() - offset; }
    std::span<const uint8_t> block_;
};

}  // namespace mc
