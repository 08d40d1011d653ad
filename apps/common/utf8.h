// UTF-8 for those who read the text files that are made.
#pragma once

#include <string>
#include <string_view>

namespace app {

// From Windows-1252.
std::string utf8From(std::string_view narrow);
// Rewrites a file of Windows-1252 in UTF-8. False when it can't be read or written.
bool makeUtf8(const std::string& file);

}  // namespace app
