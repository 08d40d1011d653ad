// Values of a cell source, each checked.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "programs/toml_source.h"

struct Point {
    double x = 0, y = 0;
};
struct Box {
    double left, bottom, right, top;
};

// Reads what stands under a key, which is there unless a call tells otherwise. Nothing, and a fault told, for a value
// that can't be used. Lengths are at most 1,000,000.
class SourceValues : public TomlSource {
  public:
    using TomlSource::TomlSource;

    std::optional<double> number(const toml::node& node, const std::string& what);
    std::optional<double> number(const toml::table& table, std::string_view key, double fallback);
    std::optional<double> length(const toml::table& table, std::string_view key);  // above 0
    std::optional<std::vector<double>> numbers(const toml::table& table, std::string_view key, size_t count);
    std::optional<std::vector<Point>> points(const toml::table& table, std::string_view key, size_t least);
    std::optional<Point> point(const toml::table& table, std::string_view key);
    std::optional<Box> box(const toml::table& table, std::string_view key);
    // In one line, of 1 to `longest` characters of Windows-1252.
    std::optional<std::string> text(const toml::table& table, std::string_view key, size_t longest);
    bool flag(const toml::table& table, std::string_view key);  // false without the key
    // Leaves the value alone without the key.
    void takeWhole(const toml::table& table, std::string_view key, int32_t low, int32_t high, int32_t& value);
};
