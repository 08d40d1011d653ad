// Cell libraries, and the cells in them.
#pragma once

#include <mchost/mdl/owned.hpp>
#include <memory>
#include <optional>
#include <string>

namespace materials {

using Cell = mdl::DescrPtr;

// The name by which the library's calls find a cell library: a path, or a name that is looked for in the current folder
// and then in those that MC_CELL tells. Nothing after a message.
std::optional<std::string> findableLibrary(const std::string& name);
// The full name of such a library, by which it is found whatever others of its name there are.
std::optional<std::string> fullLibraryName(const std::string& name);
// A cell of the library. Null, after a message that tells what it is for, when it isn't there.
Cell cellOf(const std::string& library, const char* cell, const std::string& purpose);

}  // namespace materials
