// Copies of drawings in which doubtful symbols are marked.
#pragma once

#include <string>
#include <vector>

#include "counting.h"

namespace symbols {

// Makes copies of the drawings that the doubts lie in, in a folder, with a label at each symbol. False after a message.
// Needs a session without an open drawing, and leaves it so.
bool markDoubts(const std::vector<Doubt>& doubts, const std::string& folder, bool overwrite);

}  // namespace symbols
