// Symbols in the drawing that is open.
#pragma once

#include <string>
#include <vector>

#include "fields.h"
#include "symbol.h"

namespace symbols {

struct Symbol {
    const Kind* kind;
    Values values;      // what its texts are; Windows-1252
    int errors;         // in all; 0 for one without doubt
    Point3d place;      // the middle of its base element, in master units
    double textHeight;  // of its first text
};

struct Recognised {
    std::vector<Symbol> certain, doubtful;  // in order of the kinds and of the file
};

// A base element belongs to the first kind that it fits without errors, or else to the one that it fits with the least.
Recognised recognise(const std::vector<Kind>& kinds);

// The levels that kinds ask for, each once.
std::vector<std::string> levelsOf(const std::vector<Kind>& kinds);
// Whether the open drawing has that level.
bool hasLevel(const std::string& name);

}  // namespace symbols
