// A set of 8-bit characters, cheap enough to be made for each token.
#pragma once

#include <cstdint>
#include <string_view>

class CharSet {
  public:
    constexpr explicit CharSet(std::string_view characters) {
        for (char c : characters) add(c);
    }
    constexpr void add(char c) { bits[index(c) >> 6] |= bit(c); }
    constexpr bool has(char c) const { return bits[index(c) >> 6] & bit(c); }

    // The first character at or after p that isn't in the set; the set mustn't hold the NUL that ends the text.
    template <typename Char>
    Char* past(Char* p) const {
        while (has(*p)) ++p;
        return p;
    }

  private:
    static constexpr unsigned index(char c) { return static_cast<unsigned char>(c); }
    static constexpr uint64_t bit(char c) { return uint64_t{1} << (index(c) & 63); }

    uint64_t bits[4] = {};
};
