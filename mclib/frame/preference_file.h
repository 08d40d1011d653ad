// The user's preference file of the host, for as long as what is given stands.
#pragma once

#include "mchost/mdl/owned.hpp"
#include "mclib/frame/errors.h"
#include "mclib/frame/util.h"

namespace mc {

// False when it can't be opened so (MDL_RSC_READ or MDL_RSC_WRITE).
inline mdl::ResourceFile userPreferenceFile(int mode) {
    RscHandle handle = 0;
    const bool open = mclibUtil_openUserPrefFile(&handle, mode) == MCLIB_SUCCESS;
    return mdl::ResourceFile(open ? handle : 0);
}

}  // namespace mc
