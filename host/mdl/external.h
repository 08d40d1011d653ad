/* Programs outside the host. */
#ifndef HOST_MDL_EXTERNAL_H
#define HOST_MDL_EXTERNAL_H

#include "types.h"

/* Starts a program with its arguments, and doesn't wait for it. 0, or MDL_ERROR when it can't be started. */
MDL_EXPORT int mdlExternal_extStartProgram(const char *program, int argumentCount, const char *const *arguments);

#endif
