// A dialog as text, UTF-8. For the files of this room.
#pragma once

#include <string>
#include <vector>

#include "mchost/dialog/dialog.h"

namespace host {

// The items that people use, by their place in the dialog, buttons first: number n on the screen is element n - 1, also
// while some of them are hidden or can't be used.
std::vector<size_t> numberedItems(const Dialog& dialog);
bool isUsable(const Dialog& dialog, size_t item);
// Those that can be used now, in the same order.
std::vector<size_t> usableItems(const Dialog& dialog);
// The choices of an option button that can be made, divided by commas.
std::string choicesOf(const DialogItem& item);

// Title, drawing and items, each line ended; buttons last. Of a longer list `mostRows` rows, from its first one in
// sight on, and a line that tells how many there are.
constexpr int32_t rowsUnattended = 10000;  // for whoever reads a log
std::string textOf(const Dialog& dialog, int32_t mostRows);

}  // namespace host
