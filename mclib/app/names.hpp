// Names in a user's file or call: letter case doesn't count.
#pragma once

#include <algorithm>
#include <string_view>

namespace mcapp {

inline bool sameName(std::string_view a, std::string_view b) {
    const auto upper = [](char c) { return 'a' <= c && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; };
    return std::ranges::equal(a, b, {}, upper, upper);
}

}  // namespace mcapp
