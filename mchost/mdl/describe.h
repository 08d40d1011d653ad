/* What people call what lies in a drawing. */
#ifndef HOST_MDL_DESCRIBE_H
#define HOST_MDL_DESCRIBE_H

#include "element.h"

/* Elements of a type (MDL_CELL_HEADER and its like), such as "line string"; null for one that the host has no word
 * for. */
MDL_EXPORT const char *mdlElement_typeName(int32_t type) MDL_NOEXCEPT;

#endif
