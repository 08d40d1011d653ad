// What the user asks for on the command line.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace labels {

struct Options {
    std::string input, out, picture = "png";
    double scale = 0;  // 0: that of the input
    double dpi = 150;
    std::string start;  // a command
    bool overwrite = false, commands = false;
};

extern const char* const usage;

// Nothing after a message and the usage.
std::optional<Options> optionsFrom(const std::vector<std::string>& arguments);

}  // namespace labels
