// Streams on host names. For the files of this room alone.
#pragma once

#include <cstdio>

namespace host {

// Null when the file can't be opened; a folder can't be.
FILE* openStream(const char* name, const char* mode);

// 0, or the system's error number when something that was written couldn't be stored.
int closeStream(FILE* stream);

}  // namespace host
