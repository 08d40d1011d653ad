// Cell libraries, and the cells in them.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include <mchost/mdl/elmdscr.h>

namespace materials {

struct FreeDescr {
    void operator()(ElementDescr* ed) const { mdlElmdscr_freeAll(&ed); }
};
using Cell = std::unique_ptr<ElementDescr, FreeDescr>;

// The name by which the library's calls find a cell library: a path, or a name that is looked for in the current folder
// and then in those that MC_CELL tells. Nothing after a message.
std::optional<std::string> findableLibrary(const std::string& name);
// The full name of such a library, by which it is found whatever others of its name there are.
std::optional<std::string> fullLibraryName(const std::string& name);
// A cell of the library. Null, after a message that tells what it is for, when it isn't there.
Cell cellOf(const std::string& library, const char* cell, const std::string& purpose);

}  // namespace materials
