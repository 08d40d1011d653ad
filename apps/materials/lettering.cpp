#include "lettering.h"

#include <algorithm>
#include <array>
#include <memory>

#include <mclib/mclib.h>

namespace materials {

namespace {

// The library measures a text by an attribute; this one is the application's only.
std::array<double, 256> measured() {
    constexpr int attribute = 1, noGroup = 0;
    const auto data = std::make_unique<ElmAttrData>();
    data->useFlags = ATTR_USE_SIZE;
    data->textWidth = data->textHeight = 1;
    mclibElmAttr_addAttribute(attribute, "Letters", noGroup, ATTR_KIND_TEXT, 0, nullptr, 0, data.get());
    std::array<double, 256> widths{};
    for (size_t code = ' '; code < widths.size(); ++code) {
        const char letter[] = {static_cast<char>(code), '\0'};
        double width = 0, height = 0;
        mclibUtil_extractTextSize(letter, 1, attribute, 0, &width, &height, nullptr, nullptr);
        if (height > 0) widths[code] = width / height;
    }
    return widths;
}

double widthOf(char letter) {
    static const std::array<double, 256> widths = measured();
    return widths[static_cast<unsigned char>(letter)];
}

// How much of the text stands in its first line, and where the next one begins.
struct Division {
    size_t end, next;
};

Division divide(std::string_view text, double width, Breaks breaks) {
    const std::string_view signs = breaks == Breaks::atSigns ? "-/.," : "-/";
    const size_t letters = text.size();
    Division last = {0, 0};
    double used = 0;
    for (size_t i = 0; i < letters; ++i) {
        if (text[i] == ' ' && i > 0) last = {i, i + 1};
        used += widthOf(text[i]);
        const bool wide = used > width && text[i] != ' ';
        if (wide && last.end > 0) return last;
        if (wide && breaks == Breaks::atBlanks && i > 0) return {i, i};
        if (i + 1 < letters && signs.find(text[i]) != signs.npos && text[i + 1] != ' ') last = {i + 1, i + 1};
    }
    return {letters, letters};
}

}  // namespace

double widthOf(std::string_view text) {
    double width = 0;
    for (const char letter : text) width += widthOf(letter);
    return width;
}

std::vector<std::string> wrapped(std::string_view text, double width, Breaks breaks) {
    std::vector<std::string> lines;
    if (breaks == Breaks::none) return {std::string(text)};
    do {
        const Division division = divide(text, width, breaks);
        lines.emplace_back(text.substr(0, division.end));
        text.remove_prefix(division.next);
    } while (!text.empty());
    return lines;
}

}  // namespace materials
