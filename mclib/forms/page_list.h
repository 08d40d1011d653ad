// The names of the preview's pages, and which of them a job takes. All of it works on the current application's block.
#pragma once

#include "mclib/frame/global_data.h"

namespace mc::forms {

int32_t pageCount(const GlobalData& data);
// The name of a page; empty for a number outside the list.
const char* pageName(const GlobalData& data, int32_t page);
// Replaces the names by copies. False, with the names as they were and the user told, when out of memory, and when
// different names are the same as far as page records keep them (mclib/project/store.h).
bool setPageNames(GlobalData& data, int32_t count, char* const* names);
void dropPageNames(GlobalData& data);

// The pages that printRange asks for, first and last included, held to those that there are. Empty, with last below
// first, also for the page on show of a preview that was closed in the meantime.
struct PageSpan {
    int32_t first, last;
    int32_t size() const { return last - first + 1; }
};
PageSpan pagesToPrint(const GlobalData& data);

}  // namespace mc::forms
