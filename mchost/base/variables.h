// Configuration variables: definitions on levels over the environment.
#pragma once

#include <array>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

class Variables {
  public:
    static constexpr int levelCount = 5;  // 0 system, 1 application, 2 site, 3 project, 4 user; the highest counts
    static constexpr size_t longestExpansion = 65536;

    // The value as it was defined. A variable without a definition is looked up in the environment.
    std::optional<std::string> value(std::string_view name) const;
    // False for a bad level or a name that is empty or has "=" in it.
    bool define(std::string_view name, std::string_view value, int level);
    // The value with all references in it replaced, as by `expand`.
    std::optional<std::string> expandedValue(std::string_view name) const;
    // The variables that are defined here, the environment aside, and whose names begin so: each with its value as by
    // `expandedValue`.
    std::map<std::string, std::string> expandedValues(std::string_view nameBegins) const;
    // Removes the definitions of all levels; one of the environment is hidden. False when it wasn't defined.
    bool remove(std::string_view name);
    // The text with $(NAME) and ${NAME} replaced. A variable within its own value gives nothing, and a result is cut at
    // longestExpansion characters.
    std::string expand(std::string_view text) const;

  private:
    struct Entry {
        std::array<std::optional<std::string>, levelCount> levels;
        bool hidesEnvironment = false;
    };
    std::map<std::string, Entry, std::less<>> entries_;
};

// The variables of the session.
Variables& variables();
// The entries of one that lists folders or files, which are divided by semicolons; none for a null name.
std::vector<std::string> variableEntries(const char* variable);

}  // namespace host
