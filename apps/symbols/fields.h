// Items of a list: their fields, and what stands in them for what was found.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace symbols {

constexpr size_t mostFields = 8;

// The fields of an item, divided by semicolons outside of double quotes.
std::vector<std::string> fieldsOf(std::string_view item);

// What an item is filled with.
struct Values {
    std::vector<std::string> texts;  // <1>, <2>, ...
    std::vector<std::string> stars;  // <1*>, ...: what the first star of the text's pattern took
    size_t count = 0;                // <count>
};

// What is wrong with the places in the fields, one of which must be <count>; `stars` tells of each text whether its
// pattern has a star. Empty when nothing is.
std::string refusalOf(const std::vector<std::string>& fields, const std::vector<bool>& stars);

// The item with the values in place. A field whose values have signs that mean something in a list is quoted. Nothing
// where such a value would stand in a field that is worked out, behind "=".
std::optional<std::string> filled(const std::vector<std::string>& fields, const Values& values);

}  // namespace symbols
