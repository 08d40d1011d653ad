// Values of a TOML source, each checked; a fault is one line on standard error with the file and the line.
#pragma once

#include <toml++/toml.h>

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct Point {
    double x = 0, y = 0;
};
struct Box {
    double left, bottom, right, top;
};

inline std::string inQuotes(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

// Reads what stands under a key, which is there unless a call tells otherwise. Nothing, and a fault told, for a value
// that can't be used. Lengths are at most 1,000,000.
class SourceValues {
  public:
    void begin(std::string path) { path_ = std::move(path), cell_.clear(); }
    void setCell(std::string name) { cell_ = std::move(name); }  // what faults are told of; empty: none
    int faults() const { return faults_; }

    void fault(const toml::node& where, const std::string& what);
    void parseFault(const toml::parse_error& error);

    // A misspelt key would otherwise be lost without a word.
    void requireKeys(const toml::table& table, std::initializer_list<std::string_view> known);
    std::optional<double> number(const toml::node& node, const std::string& what);
    std::optional<double> number(const toml::table& table, std::string_view key, double fallback);
    std::optional<double> length(const toml::table& table, std::string_view key);  // above 0
    std::optional<std::vector<double>> numbers(const toml::table& table, std::string_view key, size_t count);
    std::optional<std::vector<Point>> points(const toml::table& table, std::string_view key, size_t least);
    std::optional<Point> point(const toml::table& table, std::string_view key);
    std::optional<Box> box(const toml::table& table, std::string_view key);
    // In Windows-1252: what has no code there couldn't be printed.
    std::optional<std::string> text(const toml::table& table, std::string_view key, size_t longest);
    bool flag(const toml::table& table, std::string_view key);  // false without the key
    // Leaves the value alone without the key.
    void takeWhole(const toml::table& table, std::string_view key, int32_t low, int32_t high, int32_t& value);

  private:
    std::string path_, cell_;
    int faults_ = 0;
};
