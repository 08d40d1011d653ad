// What the user asks for on the command line.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace find {

enum class Format { table, csv, json };

// A rectangle, in master units.
struct Area {
    double left, bottom, right, top;
};

struct Options {
    std::string pattern;
    std::vector<std::string> drawings, lists;

    int near = 0;  // most errors
    bool caseSensitive = false;
    std::vector<std::string> levels;  // names or codes; none: all
    std::optional<int> colour, weight, style;
    double minHeight = -1, maxHeight = -1;  // master units; below 0: no limit
    std::optional<Area> area;

    std::optional<std::string> replacement;
    bool dryRun = false, backup = false;

    Format format = Format::table;
    std::string out;  // a file; empty: the console
    bool overwrite = false;
};

extern const char* const usage;

// Nothing after a message and the usage.
std::optional<Options> optionsFrom(const std::vector<std::string>& arguments);

}  // namespace find
