/* Bit masks of any length. A mask of levels has bit `level - 1` for each level. */
#ifndef HOST_MDL_BITMASK_H
#define HOST_MDL_BITMASK_H

#include "types.h"

typedef struct MdlBitMask MdlBitMask;

enum { MDL_BITMASK_LIMIT = 16777216 }; /* bits are numbered from 0 to below this */

/* A mask without a bit set; to be freed. Null when out of memory. */
MDL_EXPORT MdlBitMask *mdlBitMask_create(void) MDL_NOEXCEPT;
/* A copy; null for null and when out of memory. */
MDL_EXPORT MdlBitMask *mdlBitMask_clone(const MdlBitMask *mask) MDL_NOEXCEPT;
/* Frees the mask; *maskPP becomes null. */
MDL_EXPORT void mdlBitMask_free(MdlBitMask **maskPP) MDL_NOEXCEPT;
/* Sets or clears a bit. MDL_ERROR for a null mask, a bit out of range, or out of memory. */
MDL_EXPORT int mdlBitMask_setBit(MdlBitMask *mask, uint32_t bit, int32_t on) MDL_NOEXCEPT;
/* 1 when the bit is set; 0 for one that isn't, that is out of range, or of a null mask. */
MDL_EXPORT int mdlBitMask_testBit(const MdlBitMask *mask, uint32_t bit) MDL_NOEXCEPT;

#endif
