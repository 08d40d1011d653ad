// What the user asks for on the command line.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace symbols {

struct Options {
    std::string input;
    std::vector<std::string> drawings, lists;
    std::string out;   // the list that is made, or a folder for it; empty: the current one
    std::string mark;  // the folder for drawings with marks; empty: there are none
    bool overwrite = false;
};

extern const char* const usage;

// Nothing after a message and the usage.
std::optional<Options> optionsFrom(const std::vector<std::string>& arguments);

}  // namespace symbols
