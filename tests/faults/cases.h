// The runs that faults are put into.
#pragma once

#include <string>
#include <vector>

struct Case {
    std::string name;
    std::vector<std::string> inputs;                         // files of the project, copied beside the case's own
    std::vector<std::pair<std::string, std::string>> files;  // the case's own, with their texts
    std::vector<std::string> before;                         // commands that prepare its folder
    std::string command;     // words divided at blanks; the first one is a program of ours
    bool emptyHome = false;  // the user has never started one
    int failed = 1;          // the exit status that tells of a failure; 1, which the host gives, does so too
};

const std::vector<Case>& cases();
