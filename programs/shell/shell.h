// The command interpreter: what COMSPEC names. It carries out the words of the old shells on host paths, and batch
// files. docs/commands.md tells what it understands.
#pragma once

#include <string>
#include <vector>

namespace host::shell {

enum Status { done = 0, failed = 1, wrongUse = 2, notFound = 127 };

// Carries out one command, given as a line or as its words (UTF-8): the first one names it. Its output goes to the
// process's standard output, errors in one line each to standard error. The exit status: 0 when it was done, 1 when it
// failed, 2 when it isn't written as it should be, 127 when there is no such command or program; or what a program
// ended with.
int run(const std::vector<std::string>& words);

}  // namespace host::shell
