// The selection set, for those who show it.
#pragma once

#include <vector>

#include "mchost/mdl/selection.h"

namespace host {

bool isSelected(FilePos position);  // of the active model
// In order of the file, those that are there.
std::vector<FilePos> selectedElements();
// How often it was changed so far.
uint64_t selectionChanges();

}  // namespace host
