#include "programs/mccel_values.h"

#include <algorithm>
#include <cmath>

#include "mchost/mdl/element.h"

namespace {

constexpr double mostLength = 1e6;

}  // namespace

std::optional<double> SourceValues::number(const toml::node& node, const std::string& what) {
    const std::optional<double> value = node.is_number() ? node.value<double>() : std::nullopt;
    if (value && std::isfinite(*value) && std::fabs(*value) <= mostLength) return value;
    fault(node, what + " must be a number of at most 1000000");
    return std::nullopt;
}

std::optional<double> SourceValues::number(const toml::table& table, std::string_view key, double fallback) {
    const toml::node* node = table.get(key);
    return node ? number(*node, inQuotes(key)) : fallback;
}

std::optional<double> SourceValues::length(const toml::table& table, std::string_view key) {
    const auto value = number(*table.get(key), inQuotes(key));
    if (value && *value > 0) return value;
    if (value) fault(*table.get(key), inQuotes(key) + " must be above 0");
    return std::nullopt;
}

std::optional<std::vector<double>> SourceValues::numbers(const toml::table& table, std::string_view key, size_t count) {
    const toml::array* array = table.get(key)->as_array();
    if (!array || array->size() != count) {
        fault(*table.get(key), inQuotes(key) + " must be " + std::to_string(count) + " numbers in [ ]");
        return std::nullopt;
    }
    std::vector<double> values;
    for (const toml::node& node : *array) {
        const auto value = number(node, inQuotes(key));
        if (!value) return std::nullopt;
        values.push_back(*value);
    }
    return values;
}

std::optional<Point> SourceValues::point(const toml::table& table, std::string_view key) {
    const auto values = numbers(table, key, 2);
    if (!values) return std::nullopt;
    return Point{(*values)[0], (*values)[1]};
}

std::optional<std::vector<Point>> SourceValues::points(const toml::table& table, std::string_view key, size_t least) {
    const toml::array* array = table.get(key)->as_array();
    const std::string wanted = inQuotes(key) + " must be points such as [10, 20], at least " + std::to_string(least);
    if (!array || array->size() < least || array->size() >= MDL_MAX_POINTS) {
        fault(*table.get(key), wanted + " and fewer than " + std::to_string(MDL_MAX_POINTS));
        return std::nullopt;
    }
    std::vector<Point> result;
    for (const toml::node& node : *array) {
        const toml::array* pair = node.as_array();
        if (!pair || pair->size() != 2) {
            fault(node, wanted);
            return std::nullopt;
        }
        const auto x = number((*pair)[0], inQuotes(key)), y = number((*pair)[1], inQuotes(key));
        if (!x || !y) return std::nullopt;
        result.push_back({*x, *y});
    }
    return result;
}

std::optional<Box> SourceValues::box(const toml::table& table, std::string_view key) {
    const auto v = numbers(table, key, 4);
    if (!v) return std::nullopt;
    const Box result{(*v)[0], (*v)[1], (*v)[2], (*v)[3]};
    if (result.left < result.right && result.bottom < result.top) return result;
    fault(*table.get(key),
          inQuotes(key) + " must be left, bottom, right, top, with left below right and bottom below top");
    return std::nullopt;
}

std::optional<std::string> SourceValues::text(const toml::table& table, std::string_view key, size_t longest) {
    const toml::node& node = *table.get(key);
    std::optional<std::string> text = narrow(node, inQuotes(key));
    if (!text) return std::nullopt;
    const bool printable = std::ranges::all_of(*text, [](unsigned char c) { return c >= ' '; });
    if (printable && !text->empty() && text->size() <= longest) return text;
    fault(node, inQuotes(key) + " must have 1 to " + std::to_string(longest) + " characters, in one line");
    return std::nullopt;
}

bool SourceValues::flag(const toml::table& table, std::string_view key) {
    const toml::node* node = table.get(key);
    if (node && !node->is_boolean()) fault(*node, inQuotes(key) + " must be true or false");
    return node && node->value_or(false);
}

void SourceValues::takeWhole(const toml::table& table, std::string_view key, int32_t low, int32_t high,
                             int32_t& value) {
    const toml::node* node = table.get(key);
    if (!node) return;
    const auto given = node->value_exact<int64_t>();
    if (!given || *given < low || *given > high) {
        const std::string range = std::to_string(low) + " to " + std::to_string(high);
        return fault(*node, inQuotes(key) + " must be a whole number from " + range);
    }
    value = static_cast<int32_t>(*given);
}
