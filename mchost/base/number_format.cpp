#include "mchost/base/number_format.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdarg>

#include "mchost/base/words.h"
#include "mchost/mdl/system.h"

namespace host {

namespace {

constexpr std::string_view wholeConversions = "diuxX";
constexpr std::string_view realConversions = "eEfFgG";
constexpr std::string_view digits = "0123456789";

// The conversion letter of a value format, '%' left out; 0 for anything else.
char conversionOf(std::string_view format) {
    char letter = 0;
    for (size_t i = 0; i < format.size(); ++i) {
        if (format[i] != '%') continue;
        if (i + 1 < format.size() && format[i + 1] == '%') {
            ++i;
            continue;
        }
        if (letter != 0) return 0;
        const auto skip = [&](std::string_view set, size_t most) {
            for (size_t n = 0; i + 1 < format.size() && set.find(format[i + 1]) != std::string_view::npos; ++n, ++i)
                if (n == most) return false;
            return true;
        };
        if (!skip("-+ #0", 5) || !skip(digits, 2)) return 0;
        if (i + 1 < format.size() && format[i + 1] == '.') {
            ++i;
            if (!skip(digits, 2)) return 0;
        }
        if (++i >= format.size()) return 0;
        letter = format[i];
        const bool known = letter == 's' || wholeConversions.find(letter) != std::string_view::npos ||
                           realConversions.find(letter) != std::string_view::npos;
        if (!known) return 0;
    }
    return letter;
}

template <class Number>
std::optional<Number> parsed(std::string_view text) {
    text = trimmed(text);
    if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

std::string print(const char* format, ...) {
    std::array<char, 512> buffer;
    va_list values;
    va_start(values, format);
    mdlOutput_formatText(buffer.data(), buffer.size(), format, values);
    va_end(values);
    return buffer.data();
}

}  // namespace

bool isValueFormat(std::string_view format) {
    return conversionOf(format) != 0;
}

std::optional<std::string> formatNumber(const std::string& format, double value) {
    const char letter = conversionOf(format);
    if (realConversions.find(letter) != std::string_view::npos) return print(format.c_str(), value);
    if (wholeConversions.find(letter) == std::string_view::npos || !(std::abs(value) <= 4294967296.0))
        return std::nullopt;
    // Whole conversions take an int or an unsigned of the same 32 bits.
    return print(format.c_str(), static_cast<unsigned>(static_cast<long long>(value)));
}

std::string shortestNumber(double value) {
    const bool plain = value == 0 || (std::abs(value) >= 1e-5 && std::abs(value) < 1e15);
    std::array<char, 32> buffer;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                   plain ? std::chars_format::fixed : std::chars_format::scientific)
                         .ptr;
    return std::string(buffer.data(), end);
}

std::optional<double> numberOf(std::string_view text) {
    const std::optional<double> value = parsed<double>(text);
    return value && std::isfinite(*value) ? value : std::nullopt;
}

std::optional<long long> wholeNumberOf(std::string_view text) {
    return parsed<long long>(text);
}

std::string notANumber(std::string_view text) {
    std::string withPoint(text);
    std::ranges::replace(withPoint, ',', '.');
    const bool comma = withPoint != text && numberOf(withPoint);
    return comma ? "isn't a number: the decimal sign is \".\"" : "isn't a number";
}

}  // namespace host

int mdlOutput_formatText(char* to, size_t size, const char* format, va_list values) noexcept {
    static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
    const locale_t before = uselocale(plain);
    const int length = std::vsnprintf(to, size, format, values);
    uselocale(before);
    return length;
}
