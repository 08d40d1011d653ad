// A job: a file with parameters, formulas, texts and tag strings, worked out line by line.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "table.h"

namespace formula {

// The value of a parameter in place of the one that the file tells.
using GivenNumber = std::pair<std::string, double>;

// Works out a file from top to bottom; `decimals` holds until the file tells others. A line that fails is told, and the
// next ones are worked out all the same. False when one failed or the file can't be read; `table` has what succeeded.
bool workOut(const std::string& fileName, const std::vector<GivenNumber>& given, int decimals, Table& table);

}  // namespace formula
