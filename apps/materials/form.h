// The forms that a list can be printed on, and how much of a text fits into their columns.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "list.h"

namespace materials {

// A column of texts: a field of the form, and how many letters it has room for, 1 or more.
struct TextColumn {
    const char* field;
    std::string Item::*text;
    size_t letters;
};

struct Margins {
    double left, right, top, bottom;  // millimetres
};

struct Form {
    const char* name;
    const char* cell;
    int pageSize;  // code of the paper
    bool lying;
    Margins margins;
    size_t rows;  // of items
    std::span<const TextColumn> columns;
};

std::span<const Form> forms();

// A text in lines of at most so many letters, broken at blanks where it can be. One line at least.
std::vector<std::string> wrapped(const std::string& text, size_t letters);
// How many rows an item takes.
size_t linesOf(const Item& item, const Form& form);

}  // namespace materials
