#include "amounts.h"

#include <algorithm>

#include <mclib/app/numbers.hpp>

namespace materials {

namespace {

std::string withThousands(std::string text, const std::string& divider) {
    constexpr size_t group = 3;
    if (divider.empty()) return text;
    for (size_t at = std::min(text.find('.'), text.size()); at > group; at -= group) text.insert(at - group, divider);
    return text;
}

std::string asNeeded(double value, size_t least, int ofLarge) {
    constexpr double small = 0.1, large = 1000;
    const int ofOthers = value < small ? 6 : 3;
    std::string text = mcapp::shown(value, value < large ? ofOthers : ofLarge);
    const size_t point = text.find('.');
    const size_t needed = text.find_last_not_of('0') + 1;
    text.resize(std::max(needed, point + 1 + least));
    if (text.back() == '.') text.pop_back();
    return text;
}

}  // namespace

std::string numberText(double number, const NumberStyle& style) {
    return withThousands(asNeeded(number, 0, 3), style.thousands);
}

std::string massText(double mass, const NumberStyle& style) {
    return withThousands(style.decimals ? mcapp::shown(mass, *style.decimals) : asNeeded(mass, 1, 1), style.thousands);
}

std::string decimalsOf(const std::string& number) {
    const size_t point = number.find('.');
    return point == number.npos ? "" : number.substr(point);
}

}  // namespace materials
