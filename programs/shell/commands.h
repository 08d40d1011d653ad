// The words of the shell that work on files and folders.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace host::shell {

// A command with what stands behind it.
struct CommandLine {
    std::string command;  // in capitals
    std::vector<std::string> names;
    std::map<char, std::string> switches;  // "/N:3" is N with 3; letters are capitals

    bool has(char letter) const { return switches.contains(letter); }
};

// One line on standard error, with the command in front; gives the status.
int fail(const CommandLine& line, const std::string& what);
int wrong(const CommandLine& line, const std::string& what);

struct Command {
    std::string_view name;
    std::string_view switches;  // letters that it takes behind "/", capitals
    size_t leastNames, mostNames;
    const char* usage;  // what stands behind the name
    int (*run)(const CommandLine& line);
};

// The command of that name in capitals, or null.
const Command* findCommand(std::string_view name);

// Changes to the folder that stands for a drive ("c:").
int changeDrive(const CommandLine& line);

}  // namespace host::shell
