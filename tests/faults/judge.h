// What a run with a fault has left, against what was there before and what a good run leaves.
#pragma once

#include <filesystem>
#include <map>
#include <string>

#include "tests/faults/run.h"

using Files = std::map<std::string, std::string>;  // contents by path in the folder

Files filesIn(const std::filesystem::path& folder);

// Empty for a run that ended as it must: status 0 with all that a good run makes; or a message, the status of a
// failure, the files of before or whole new ones, and nothing left over.
std::string faultIn(const Case& run, const Result& result, const Fault& fault, const Files& before, const Files& good,
                    const Files& left);
