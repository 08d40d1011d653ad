// The blocks of dlmSystem_mdlMalloc: how many are in use, who took them, and failures on order for tests.
//
// With the environment variable MCHOST_TRACE_MEMORY set, each block is kept with the place in the code that took it,
// and the end of the process lists those that were never freed on standard error.
#pragma once

#include <cstddef>

namespace host {

struct MemoryUse {
    size_t blocks;
    size_t bytes;  // as granted by the system, which may be more than was asked for
};
MemoryUse memoryUse();

// Has calls that take memory fail from the `call`th from now on (1 is the next); 0 ends the failing.
void failMemoryFrom(int call);

}  // namespace host
