#include "apps/common/numbers.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace app {

namespace {

constexpr double largestInDecimals = 1e15;  // beyond it a double has hardly any

}  // namespace

std::string shown(double value, int decimals) {
    char text[64];  // 15 digits, a point, 12 decimals and a sign at most
    if (decimals >= 0 && std::abs(value) < largestInDecimals) {
        std::snprintf(text, sizeof text, "%.*f", std::min(decimals, mostDecimals), value);
    } else {
        std::snprintf(text, sizeof text, "%.12g", value);
    }
    const std::string all = text;
    const bool minusZero = all.starts_with('-') && all.find_first_not_of("-0.") == all.npos;
    return minusZero ? all.substr(1) : all;
}

}  // namespace app
