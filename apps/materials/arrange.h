// From the items of a list to the rows of its pages.
#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "list.h"

namespace materials {

struct Row {
    enum Kind { heading, item, groupSum, sum, blank };
    Kind kind;
    size_t index = 0;  // of the item, or of the group of a heading or its sum
    size_t line = 0;   // of the item
    double mass = 0;   // of a sum
};

// Merges and sorts the items as the list tells. Texts are compared with their numbers taken as numbers, so that P2
// stands in front of P10, and without letter case.
void arrange(List& list);

// The rows of all pages in turn, as many a page as told (4 or more), the last page filled up with blanks. An item takes
// as many rows as linesOf tells, at most a page, and stays on one page; a heading stays with the item below it. A list
// without items has one page.
std::vector<Row> rowsOf(const List& list, size_t rowsPerPage, const std::function<size_t(const Item&)>& linesOf);

}  // namespace materials
