#include "mchost/view/words.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <vector>

#include "mchost/base/charset.h"
#include "mchost/base/number_format.h"
#include "mchost/base/words.h"
#include "mchost/mdl/transform.h"
#include "mchost/space/vector.h"

namespace host {
namespace {

double uorPerMaster() {
    return mdlCnv_masterToUOR(nullptr, 1, nullptr);
}

}  // namespace

void refuse(const std::string& why) {
    throw std::runtime_error(why);
}

std::string quoted(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

std::string_view takeLastWord(std::string_view& text) {
    const size_t blank = text.find_last_of(" \t");
    const std::string_view word = blank == std::string_view::npos ? text : text.substr(blank + 1);
    text = trimmed(text.substr(0, text.size() - word.size()));
    return word;
}

void takeNothingMore(std::string_view rest) {
    if (!rest.empty()) refuse(quoted(rest) + " is more than this key-in takes. Leave it out.");
}

double takeNumber(std::string_view& text, const char* what) {
    const std::string_view word = takeWord(text);
    const auto number = numberOf(word);
    if (!number) refuse(quoted(word) + " isn't " + what + ". Give a number, such as 2 or 0.5.");
    return *number;
}

Point3d takePoint(std::string_view& text) {
    const std::string_view word = takeWord(text);
    std::vector<double> parts;
    for (std::string_view rest = word; !rest.empty() || parts.empty();) {
        const size_t comma = std::min(rest.find(','), rest.size());
        const auto number = numberOf(rest.substr(0, comma));
        if (!number || parts.size() == 3) break;
        parts.push_back(*number);
        rest.remove_prefix(std::min(comma + 1, rest.size()));
    }
    const auto commas = static_cast<size_t>(std::ranges::count(word, ','));
    if (parts.size() < 2 || parts.size() != commas + 1)
        refuse(quoted(word) + " isn't a point. Give x,y or x,y,z in master units, such as 120,80.");
    parts.resize(3);
    return Point3d{parts[0], parts[1], parts[2]} * uorPerMaster();
}

bool onOrOff(std::string_view word) {
    if (!sameName(word, "on") && !sameName(word, "off"))
        refuse(quoted(word) + " isn't \"on\" or \"off\". Give one of them at the end.");
    return sameName(word, "on");
}

std::wstring wideName(std::string_view narrow) {
    std::wstring text;
    for (const char c : narrow) text.push_back(static_cast<wchar_t>(unicodeOf(static_cast<unsigned char>(c))));
    return text;
}

std::string narrowName(std::wstring_view wide) {
    std::string text;
    for (const wchar_t c : wide)
        text.push_back(static_cast<char>(narrowCodeOf(static_cast<char32_t>(c)).value_or('?')));
    return text;
}

std::string inMaster(double uor) {
    const double rounded = std::round(uor * 1000) / 1000 + 0.0;  // without the errors of turning, and no -0
    return formatNumber("%.10g", rounded / uorPerMaster()).value_or("?");
}

std::string pointText(const Point3d& uor) {
    return inMaster(uor.x) + "," + inMaster(uor.y) + (uor.z == 0 ? "" : "," + inMaster(uor.z));
}

}  // namespace host
