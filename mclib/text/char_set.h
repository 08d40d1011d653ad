// A fixed set of 8-bit characters, made while compiling.
#pragma once

#include <string_view>

namespace mc {

class CharSet {
  public:
    constexpr explicit CharSet(std::string_view characters) {
        for (char c : characters) member[static_cast<unsigned char>(c)] = true;
    }
    constexpr bool has(char c) const { return member[static_cast<unsigned char>(c)]; }

    // The first character at or after p that isn't in the set; the set mustn't hold the NUL that ends the text.
    const char* past(const char* p) const {
        while (has(*p)) ++p;
        return p;
    }
    char* past(char* p) const { return p + (past(static_cast<const char*>(p)) - p); }

  private:
    bool member[256] = {};
};

}  // namespace mc
