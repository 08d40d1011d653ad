// A dialog as text, UTF-8. For the files of this room.
#pragma once

#include <string>
#include <vector>

#include "host/dialog/dialog.h"

namespace host {

// The items that can be used, by their place in the dialog, buttons first: number n on the screen is element n - 1.
std::vector<size_t> usableItems(const Dialog& dialog);

// Title, drawing and items, each line ended; buttons last.
std::string textOf(const Dialog& dialog);

}  // namespace host
