#include "mclib/forms/value.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace mc::forms {
namespace {

constexpr char letters[] = {'\0', 'f', 'd', 's', 'c'};  // by the type of the field

// What a printf format says between its "%" and its letter.
struct Conversion {
    bool left = false, zeros = false, plus = false, blank = false, point = false;
    size_t width = 0;
    int precision = -1;  // -1 none
};

template <class Number>
void appendDigit(Number& number, char digit) {
    number = std::min<Number>(number * 10 + static_cast<Number>(digit - '0'), static_cast<Number>(longestValue));
}

void takeFormatLetter(Conversion& to, char c) {
    const bool digit = c >= '0' && c <= '9';
    if (digit && to.precision >= 0) return appendDigit(to.precision, c);
    if (digit && (c != '0' || to.width > 0)) return appendDigit(to.width, c);
    switch (c) {
        case '-': to.left = true; break;
        case '0': to.zeros = true; break;
        case '+': to.plus = true; break;
        case ' ': to.blank = true; break;
        case '#': to.point = true; break;
        case '.': to.precision = 0; break;
        default: break;
    }
}

// A value before it is padded: sign, zeros, digits or text.
struct Parts {
    std::string_view sign;
    size_t zeros = 0;
    std::string_view body;
    size_t size() const { return sign.size() + zeros + body.size(); }
};

std::string_view signOf(bool negative, const Conversion& how) {
    if (negative) return "-";
    if (how.plus) return "+";
    return how.blank ? " " : "";
}

void putPadded(BoundedText& to, const Conversion& how, Parts parts, bool zerosMayPad) {
    const size_t padding = how.width > parts.size() ? how.width - parts.size() : 0;
    const bool zeros = how.zeros && zerosMayPad && !how.left;
    if (zeros) parts.zeros += padding;
    if (!zeros && !how.left) to.fill(' ', padding);
    to.put(parts.sign);
    to.fill('0', parts.zeros);
    to.put(parts.body);
    if (how.left) to.fill(' ', padding);
}

void putInteger(BoundedText& to, const Conversion& how, int32_t value) {
    char digits[12];
    const int64_t magnitude = std::abs(int64_t{value});
    const char* end = std::to_chars(digits, std::end(digits), magnitude).ptr;
    if (value == 0 && how.precision == 0) end = digits;
    Parts parts{signOf(value < 0, how), 0, {digits, end}};
    const auto least = static_cast<size_t>(std::max(how.precision, 0));
    if (least > parts.body.size()) parts.zeros = least - parts.body.size();
    putPadded(to, how, parts, how.precision < 0);
}

void putFloat(BoundedText& to, const Conversion& how, double value) {
    constexpr size_t mostDigits = 309;  // before the point
    char digits[mostDigits + 1 + longestValue + 1];
    const bool finite = std::isfinite(value);
    const int precision = how.precision < 0 ? 6 : how.precision;
    char* end = std::to_chars(digits, std::end(digits), std::fabs(value), std::chars_format::fixed, precision).ptr;
    if (finite && precision == 0 && how.point) *end++ = '.';
    putPadded(to, how, {signOf(std::signbit(value), how), 0, {digits, end}}, finite);
}

void putText(BoundedText& to, const Conversion& how, const char* text) {
    if (!text) text = "";
    const size_t length = how.precision < 0 ? std::strlen(text) : strnlen(text, static_cast<size_t>(how.precision));
    putPadded(to, how, {{}, 0, {text, length}}, false);
}

// A NUL ends the text that it stands in, so what would follow it is left out.
void putCharacter(BoundedText& to, const Conversion& how, char c) {
    if (c != '\0') return putPadded(to, how, {{}, 0, {&c, 1}}, false);
    if (!how.left && how.width > 1) to.fill(' ', how.width - 1);
}

void putConverted(BoundedText& to, const Conversion& how, const FormData& field, int32_t row) {
    const FormValue& value = field.values[row];
    switch (field.type) {
        case MCLIB_FORM_FLOAT: return putFloat(to, how, value.floating);
        case MCLIB_FORM_INTEGER: return putInteger(to, how, value.integer);
        case MCLIB_FORM_TEXT: return putText(to, how, value.text);
        case MCLIB_FORM_CHAR: return putCharacter(to, how, value.character);
        default: return;
    }
}

// Goes through the prefix as printf does. A "%" that a further "%" follows is a percent sign.
void putFormatted(BoundedText& to, std::string_view prefix, const FormData& field, int32_t row) {
    for (size_t i = 0; i < prefix.size(); ++i) {
        if (prefix[i] != '%') {
            to.put(prefix[i]);
            continue;
        }
        Conversion how;
        for (++i; i < prefix.size() && prefix[i] != '%'; ++i) takeFormatLetter(how, prefix[i]);
        if (i == prefix.size()) return putConverted(to, how, field, row);
        to.put('%');
    }
    to.put(letters[field.type]);
}

}  // namespace

void putValue(BoundedText& to, std::string_view prefix, const FormData& field, int32_t row) {
    if (field.type < MCLIB_FORM_FLOAT || field.type > MCLIB_FORM_CHAR) return;
    char value[longestValue + 1];
    BoundedText work(value);
    putFormatted(work, prefix.substr(0, longestPrefix), field, row);
    to.put(work.view());
}

}  // namespace mc::forms
