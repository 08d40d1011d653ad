// Symbols as a text file tells them.
#pragma once

#include <string>
#include <vector>

#include <mclib/mclib.h>

namespace symbols {

struct WantedText {
    SearchTextSpec spec;  // without its levels
    std::string level;    // empty: any
};

// A kind of symbol.
struct Kind {
    std::string name, group;
    SearchElementSpec spec;  // without what the pointers lead to
    std::string level;       // of the base element; empty: any
    std::vector<Point3d> low, high;
    std::vector<WantedText> texts;
    std::vector<std::string> item;  // fields, with places for what was found
    std::string origin;             // the line that tells it, such as "symbols.txt, line 5"
};

struct SymbolFile {
    std::vector<std::string> head;  // lines that the list begins with
    std::vector<Kind> kinds;
};

}  // namespace symbols
