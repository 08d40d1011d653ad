// Which characters of Windows-1252 a device shows as such.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace mc {

using ShownLetters = std::array<bool, 256>;

// All of ASCII, and the characters above it that are told by their codes.
constexpr ShownLetters asciiAnd(std::string_view above) {
    ShownLetters shown{};
    for (size_t c = 0; c < 128; ++c) shown[c] = true;
    for (const char c : above) shown[static_cast<unsigned char>(c)] = true;
    return shown;
}

}  // namespace mc
