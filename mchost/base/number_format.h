// Printf formats that come from layouts and hooks, for one value each. Nothing is formatted with a format that asks for
// more than the value there is.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace host {

// A format that has exactly one conversion, of a whole number (d i u x X), a number (e f g, also in capitals) or a
// text (s), without length letter or "*", width and precision below 100.
bool isValueFormat(std::string_view format);

// The number in that format; nothing when the format isn't one of a number.
std::optional<std::string> formatNumber(const std::string& format, double value);
// The shortest text that reads back as the same number; with an exponent only below 1e-5 and from 1e15.
std::string shortestNumber(double value);

// All of `text`, blanks around it apart, as a number; "." is the decimal sign.
std::optional<double> numberOf(std::string_view text);
std::optional<long long> wholeNumberOf(std::string_view text);
// What is wrong with a text that isn't a number: "isn't a number", and why where that can be told.
std::string notANumber(std::string_view text);

}  // namespace host
