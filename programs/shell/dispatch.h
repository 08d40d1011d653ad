// One command among all that there are: words of the shell, batch files, programs.
#pragma once

#include <vector>

#include "programs/shell/words.h"

namespace host::shell {

// Runs the command that the words make, with its output where they send it. `place` stands in front of an error ("" or
// "build.bat:3: ").
int runWords(std::vector<Word> words, const std::string& place);

}  // namespace host::shell
