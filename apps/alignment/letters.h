// Letters made of lines, for devices without any.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace alignment {

// A letter's cell is 4 wide and 6 high, from the lower left corner; the next letter's cell begins 6 further on.
constexpr int letterHeight = 6, letterAdvance = 6, letterGap = 2;

using LetterLine = std::vector<std::pair<int, int>>;
// The lines of a Windows-1252 character; small letters look like large ones. None for one that isn't known.
std::vector<LetterLine> letterLines(char c);

}  // namespace alignment
