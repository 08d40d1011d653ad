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
    size_t index = 0;        // of the item, or of the group of a heading or its sum
    size_t line = 0;         // of the item or heading
    double mass = 0;         // of a sum
    bool continued = false;  // a heading that is told again
};

// How many rows of the form things take.
struct Heights {
    std::function<size_t(const Item&)> item;
    std::function<size_t(const Group&, bool continued)> heading;
};

// Merges and sorts the items as the list tells. Texts are compared with their numbers taken as numbers, so that P2
// stands in front of P10, and without letter case.
void arrange(List& list);

// The rows of all pages in turn, as many a page as told (4 or more), the last page filled up with blanks. An item stays
// on one page (one that is higher than the page goes on at its end), a heading stays with the item below it, and a
// group that goes on at the top of a page has its heading there again. A list without items has one page.
std::vector<Row> rowsOf(const List& list, size_t rowsPerPage, const Heights& heights);

}  // namespace materials
