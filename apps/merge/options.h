// What the user asks for on the command line.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace merge {

struct Options {
    std::vector<std::string> drawings;
    int view = 1;     // from 1
    std::string out;  // the folder of the drawings that are made
    bool leaveOut = false, overwrite = false;
};

extern const char* const usage;

// Nothing after a message and the usage.
std::optional<Options> optionsFrom(const std::vector<std::string>& arguments);

}  // namespace merge
