/* Application data: blocks of bytes that an application keeps in the design file, where they travel with the drawing.
 *
 * One block is one element of type 66 on level 20. It carries the number of the application that it belongs to, a
 * second number that tells the form of its bytes, and at most 8,152 bytes of payload. Several blocks of an application
 * are several elements; nothing replaces one but the application itself. Blocks follow the design file: stored with it,
 * and brought back by undo.
 *
 * Element, all little-endian: 32 bytes head (type word 0x0042, size and attribute offset both words + 19, level 20,
 * else zeros), 157 as 16 bits, the application id and the sub id with 16 bits each, then the payload, filled up with a
 * zero to an even number of bytes (words times 2). */
#ifndef MCLIB_APPLICATION_DATA_H
#define MCLIB_APPLICATION_DATA_H

#include "mclib/frame/export.h"

enum { MCLIB_APPLICATION_DATA_BYTES = 8152 };   /* the largest payload */
enum { MCLIB_ELEMENT_NOT_ADDED = -100 };        /* the host refused the element */

/* Application ids that the library uses. Both ids are stored as signed 16-bit numbers; what is larger is cut. */
enum { MCLIB_PROJECT_DATA = 101, MCLIB_PAGE_DATA = 110 };

/* Codes of values in a payload. A payload is a run of values without tags: who reads must know the order. */
enum {
    MCLIB_VALUE_DOUBLE = 1, /* 8 bytes, IEEE 754 */
    MCLIB_VALUE_STRING = 3, /* the characters and a NUL */
    MCLIB_VALUE_BYTE = 4,
    MCLIB_VALUE_SHORT = 6,  /* 2 bytes */
    MCLIB_VALUE_BYTES = 8,
    MCLIB_VALUE_LONG = 9    /* 4 bytes */
};

/* Called for each block of a scan; a result other than 0 ends it. `element` and `data`, the payload inside it, last as
 * long as the call; `index` counts from 0 within the portion (64 positions at most) that the host gave. It may delete
 * the element that it is shown. */
typedef int (*MclibApplicationDataVisit)(void *userData, int32_t subId, MSElementBuffer *element, FilePos position,
                                         int32_t index, void *data, int32_t size);

/* Makes the element in `element`, a buffer of at least length + 40 bytes, which are all written. Nothing goes to the
 * design file. 0; MCLIB_ERROR, with the buffer as it was, when `length` is negative or above
 * MCLIB_APPLICATION_DATA_BYTES. */
MCLIB_EXPORT int mclib66Elem_saveData(MSElementBuffer *element, int applicationId, int subId, const void *data,
                                      int length);
/* Makes the element and adds it to the design file; its position, 0 for none, in *position (may be null). Warns where
 * the host's work mode loses such data. 0; MCLIB_ERROR, with *position as it was, for a length as above;
 * MCLIB_ELEMENT_NOT_ADDED. */
MCLIB_EXPORT int mclib66Elem_saveDataToFile(int applicationId, int subId, const void *data, int length,
                                            FilePos *position);
/* Where the payload lies in the element, its size (an even number) and the sub id; each pointer may be null. 0;
 * MCLIB_ERROR, with *data null and the others as they were, when it isn't a block of that application. */
MCLIB_EXPORT int mclib66Elem_getData(MSElementBuffer *element, int applicationId, int *subId, void **data, int *size);
/* Visits the blocks of an application in the model, in order of the file. The number of blocks; when the visit ended
 * the scan, its index + 1. `visit` lies in the application that calls; Extended: with isNative other than 0 it may lie
 * anywhere and is called directly. */
MCLIB_EXPORT int mclib66Elem_scanDataFromFile(void *userData, int applicationId, ModelRef *model,
                                              MclibApplicationDataVisit visit);
MCLIB_EXPORT int mclib66Elem_scanDataFromFileExtended(void *userData, int applicationId, ModelRef *model,
                                                      MclibApplicationDataVisit visit, int isNative);

/* Appends a value at *offset of the buffer, which the caller made large enough, and moves *offset behind it. What
 * follows the code: a double; const char *; const unsigned char *; const int16_t *; const void * and an int, the size;
 * an int32_t. 0; 1, with nothing done, for another code or a negative size. */
MCLIB_EXPORT int mclib66Elem_convertToFileFormat(void *buffer, int *offset, int code, ...);
/* Takes the value at *offset. What follows the code: double *; char * (large enough for the text with its NUL);
 * unsigned char *; int16_t *; void * and an int, the size; int32_t *. Results as above. */
MCLIB_EXPORT int mclib66Elem_convertFromFileFormat(const void *buffer, int *offset, int code, ...);

#endif
