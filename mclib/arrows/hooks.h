// Calls into the application whose hooks they are.
#pragma once

#include "mchost/mdl/system.h"

namespace mc::arrows {

// The signature has a letter for each argument, as dlmSystem_callAnyFunction takes it. 0 without a hook.
template <class Hook, class... Arguments>
int32_t callHook(const char* signature, Hook* hook, Arguments... arguments) {
    if (!hook) return 0;
    return dlmSystem_callAnyFunction(signature, mdlSystem_getCurrMdlDesc(), reinterpret_cast<void*>(hook),
                                     arguments...);
}

}  // namespace mc::arrows
