// The project and page blocks that all applications share, and what dialogs reach of them. Internal. Start-up makes
// both, zero-filled, with the first application; null before.
#pragma once

#include "mclib/frame/room.h"
#include "mclib/frame/struct_fields.h"
#include "mclib/project/blocks.h"

extern mclibProsjektData* mclibpd;
extern mclibSideData* mclibsd;

namespace mc {

extern const DialogHook projectHooks[];
// A function that is called when the dialog has written the project to the design file; one for the whole library.
void setProjectWritten(void (*function)());

static_assert(sizeof(mclibProsjektData) == 1603 && sizeof(mclibSideData) == 2115);

inline constexpr StructField projectFields[] = {
    MCLIB_FIELD(mclibProsjektData, pron),  MCLIB_FIELD(mclibProsjektData, pros),  MCLIB_FIELD(mclibProsjektData, UNav),
    MCLIB_FIELD(mclibProsjektData, USig),  MCLIB_FIELD(mclibProsjektData, UDat),  MCLIB_FIELD(mclibProsjektData, RNav),
    MCLIB_FIELD(mclibProsjektData, RSig),  MCLIB_FIELD(mclibProsjektData, RDat),  MCLIB_FIELD(mclibProsjektData, SNav),
    MCLIB_FIELD(mclibProsjektData, SSig),  MCLIB_FIELD(mclibProsjektData, SDat),  MCLIB_FIELD(mclibProsjektData, kost0),
    MCLIB_FIELD(mclibProsjektData, kost1), MCLIB_FIELD(mclibProsjektData, kost2), MCLIB_FIELD(mclibProsjektData, kost3),
    MCLIB_FIELD(mclibProsjektData, kost4), MCLIB_FIELD(mclibProsjektData, tegn),  endOfFields,
};

inline constexpr StructField pageFields[] = {
    MCLIB_FIELD(mclibSideData, pageName),       MCLIB_FIELD(mclibSideData, pros),
    MCLIB_FIELD(mclibSideData, wantedPageName), MCLIB_FIELD(mclibSideData, UNav),
    MCLIB_FIELD(mclibSideData, USig),           MCLIB_FIELD(mclibSideData, UDat),
    MCLIB_FIELD(mclibSideData, RNav),           MCLIB_FIELD(mclibSideData, RSig),
    MCLIB_FIELD(mclibSideData, RDat),           MCLIB_FIELD(mclibSideData, SNav),
    MCLIB_FIELD(mclibSideData, SSig),           MCLIB_FIELD(mclibSideData, SDat),
    MCLIB_FIELD(mclibSideData, tegn),           MCLIB_FIELD(mclibSideData, kopo),
    MCLIB_FIELD(mclibSideData, revs),           endOfFields,
};

extern const Room projectRoom;

}  // namespace mc
