// A TOML source of a compiler. A fault is one line on standard error, with the program, the file and the line.
#pragma once

#include <toml++/toml.h>

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

inline std::string inQuotes(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

class TomlSource {
  public:
    explicit TomlSource(std::string program) : program_(std::move(program)) {}
    // What is told from now on is told of this file, and nothing in particular in it.
    void begin(std::string path);
    // What in it; empty: nothing in particular.
    void setSubject(std::string subject) { subject_ = std::move(subject); }
    int faults() const { return faults_; }

    void fault(const toml::node& where, const std::string& what);
    void fault(const std::string& what);  // without a place
    // Begins a file and reads it; nothing, and a fault told, for one that can't be read or isn't TOML.
    std::optional<toml::table> read(const std::string& path);
    // A misspelt key would otherwise be lost without a word.
    void requireKeys(const toml::table& table, std::initializer_list<std::string_view> known);
    // A text in Windows-1252: what has no code there couldn't be printed. Nothing, and a fault told of `what`, for
    // anything else.
    std::optional<std::string> narrow(const toml::node& node, const std::string& what);

    // Each table of a list such as [[cell]]; none without the key, and a fault told for what is no table.
    template <class Work>
    void eachTable(const toml::table& table, std::string_view key, Work work) {
        const toml::node* node = table.get(key);
        if (!node) return;
        const std::string what = inQuotes(key) + " must be a list of tables, such as [[" + std::string(key) + "]]";
        const toml::array* list = node->as_array();
        if (!list) return fault(*node, what);
        for (const toml::node& element : *list) {
            if (const toml::table* inner = element.as_table())
                work(*inner);
            else
                fault(element, what);
        }
    }

  private:
    std::string program_, path_, subject_;
    int faults_ = 0;
};
