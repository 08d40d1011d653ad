#include "mclib/forms/page_list.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/system.h"
#include "mclib/frame/errors.h"
#include "mclib/frame/named_messages.hpp"
#include "mclib/project/store.h"
#include "resources/ids.h"

namespace mc::forms {

namespace {

void freeNames(char** names) {
    for (char** name = names; name && *name; ++name) dlmSystem_mdlFree(*name);
    dlmSystem_mdlFree(names);
}

// An array for `count` names and the null behind them.
char** nameArray(int32_t count) {
    const size_t size = (static_cast<size_t>(count) + 1) * sizeof(char*);
    return static_cast<char**>(mclibMem_mallocRscErrorPrintf(size, MCLIB_ERRORS, MCLIB_OUT_OF_MEMORY));
}

char* copyOf(std::string_view name) {
    void* copy = mclibMem_mallocRscErrorPrintf(name.size() + 1, MCLIB_ERRORS, MCLIB_OUT_OF_MEMORY);
    if (copy) std::memcpy(copy, name.data(), name.size());
    return static_cast<char*>(copy);
}

// The names and a null behind them; null when out of memory.
char** copiesOf(char* const* names, int32_t count) {
    char** const copies = nameArray(count);
    for (int32_t i = 0; copies && i < count; ++i) {
        copies[i] = copyOf(names && names[i] ? names[i] : "");
        if (copies[i]) continue;
        freeNames(copies);
        return nullptr;
    }
    return copies;
}

// ---- names that records can't tell apart ----

bool isLong(std::string_view name) {
    return name.size() >= PAGE_NAME_LETTERS;
}

std::string_view asRecorded(std::string_view name) {
    return name.substr(0, PAGE_NAME_LETTERS);
}

// Whether the design file can keep what each page's title block says. Tells when not. Pages of one name share it, as
// the user sees.
bool canBeRecorded(char* const* names, int32_t count) {
    const mdl::HostPtr<char*[]> sorted(nameArray(count));
    if (!sorted) return false;
    char** const end = std::copy_if(names, names + count, sorted.get(), isLong);
    std::sort(sorted.get(), end, [](std::string_view a, std::string_view b) { return a < b; });
    const auto twins = [](std::string_view a, std::string_view b) { return a != b && asRecorded(a) == asRecorded(b); };
    char** const found = std::adjacent_find(sorted.get(), end, twins);
    if (found == end) return true;
    const std::string shared(asRecorded(*found));
    mc::showNotice(ids::errors::namesTooAlike, shared.c_str());
    mdlSystem_noteFailure();
    return false;
}

}  // namespace

int32_t pageCount(const GlobalData& data) {
    return data.pageNameCount;
}

const char* pageName(const GlobalData& data, int32_t page) {
    return 0 <= page && page < pageCount(data) ? data.pageNames[page] : "";
}

bool setPageNames(GlobalData& data, int32_t count, char* const* names) {
    count = std::max(count, 0);
    char** const copies = copiesOf(names, count);
    if (!copies) return false;
    if (!canBeRecorded(copies, count)) {
        freeNames(copies);
        return false;
    }
    dropPageNames(data);
    data.pageNames = copies;
    data.pageNameCount = count;
    return true;
}

void dropPageNames(GlobalData& data) {
    freeNames(data.pageNames);
    data.pageNames = nullptr;
    data.pageNameCount = 0;
}

PageSpan pagesToPrint(const GlobalData& data) {
    const FileDialogBlock& choice = *data.fileDialogP;
    const int32_t last = pageCount(data) - 1;
    switch (choice.printRange) {
        case printAllPages: return {0, last};
        case printPagesFromTo: return {std::max(choice.firstPage, 0), std::min(choice.lastPage, last)};
        default: return {std::max(data.previewPage, 0), std::min(data.previewPage, last)};
    }
}

}  // namespace mc::forms
