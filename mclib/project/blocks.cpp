#include "mclib/project/shared.h"

mclibProsjektData* mclibpd = nullptr;
mclibSideData* mclibsd = nullptr;
