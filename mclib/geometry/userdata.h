/* User data: a block of an application's bytes kept on an element, in a linkage of the library's own.
 *
 * The linkage has the primary id 0x4F33. Behind its two header words stand key1 and key2 (16 bits each), then the data,
 * then zero bytes up to a multiple of 8; all little-endian. */
#ifndef MCLIB_USERDATA_H
#define MCLIB_USERDATA_H

#include "mclib/frame/export.h"

enum { MCLIB_USER_DATA_ID = 0x4F33, MCLIB_MAX_USER_DATA = 8188 };

/* Appends a block. key1 tells one kind of block from another, key2 is the caller's. The host's result; MCLIB_ERROR,
 * with a line on the console and the element as it was, when size is above MCLIB_MAX_USER_DATA. */
MCLIB_EXPORT int mclibAttrib_appendElementUserData(short key1, short key2, MSElementBuffer *element, const void *data,
                                                   unsigned size);
/* The element's first block, if its key1 is the one asked for: *sizeP bytes to `data`, which has room for 8192. The
 * size counts the zero bytes behind the data, up to 7 more than were written. MCLIB_ERROR, with all outputs as they
 * were, when the element has no block or its first one has another key1. Pointers may be null. */
MCLIB_EXPORT int mclibAttrib_extractElementUserData(const MSElementBuffer *element, int key1, int *key2P, void *data,
                                                    int *sizeP);

#endif
