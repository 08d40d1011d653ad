// Files that are made whole under a name of their own, and then get the one that they are known by.
#pragma once

#include <string>

namespace host {

// A name beside `path` that no other process takes.
std::string temporaryName(const std::string& path);

// Gives the file at `temporary` the name `path` when it is safely on the disk. Throws std::system_error, with the
// temporary file removed, when that fails; file_exists when the name has been taken in the meantime.
void publishFile(const std::string& temporary, const std::string& path);

// The same in place of any file that has the name.
void replaceFile(const std::string& temporary, const std::string& path);

}  // namespace host
