// Blocks of the host's memory with an owner.
#pragma once

#include <memory>

#include "mchost/mdl/system.h"

struct HostFree {
    void operator()(void* block) const { dlmSystem_mdlFree(block); }
};

// Owns a block that came from the host's memory or from the checked allocators.
template <class T>
using HostPtr = std::unique_ptr<T, HostFree>;
