// Reads symbols from a text file; README.md tells its lines.
#pragma once

#include <optional>
#include <string>

#include "symbol.h"

namespace symbols {

// A line that fails is told with file, line and caret, and the next ones are read all the same. Nothing when one
// failed, and for a file without symbols.
std::optional<SymbolFile> readSymbols(const std::string& fileName);

}  // namespace symbols
