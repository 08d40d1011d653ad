// Batch files.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace host::shell {

// The batch file that the word names: with .bat or .cmd or without, as a path, in the current folder or along PATH,
// letter case aside. Empty when there is none.
std::string findBatchFile(std::string_view word);

// Runs a batch file; the status of the last command, or what EXIT gave.
int runBatchFile(const std::string& path, const std::vector<std::string>& arguments);

}  // namespace host::shell
