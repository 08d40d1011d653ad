// One run of a program with a fault in it, in a folder of its own.
#pragma once

#include <filesystem>
#include <map>
#include <string>

#include "tests/faults/cases.h"

struct Fault {
    std::string kind;  // empty: none
    long at = 0;
    std::string mode;  // once, on, term
    std::string text() const { return kind + ":" + mode + ":" + std::to_string(at); }
};

struct Result {
    int status = 0;        // 128 and a signal's number; -1 for a run that didn't end
    std::string messages;  // standard error
};

using Counts = std::map<std::string, long>;

// Where the programs lie, and what is preloaded.
struct Place {
    std::filesystem::path build, project, faults;
};

// Makes the folder of a case as it is before each run.
void prepare(const Case& run, const Place& place, const std::filesystem::path& folder);
// Runs the case's command in that folder. The counts of its calls go to `counts` when that isn't null.
Result runWith(const Case& run, const Place& place, const std::filesystem::path& folder, const Fault& fault,
               Counts* counts = nullptr);
