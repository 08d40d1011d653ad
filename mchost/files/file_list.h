// Patterns of file names.
#pragma once

#include <string_view>

namespace host {

// Whether a file name matches a pattern with * and ?, letter case aside. "*.*" matches names without an extension too;
// a name that begins with a dot is matched only by a pattern that does so.
bool matchesPattern(std::string_view pattern, std::string_view name);

}  // namespace host
