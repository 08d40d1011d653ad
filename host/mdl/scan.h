/* Scans: positions of the elements of a model that pass all tests that were added. Within one kind of test any value
 * will do. A scan sees the elements that the model held when its first portion was asked for, less those deleted since.
 * Components of complex elements aren't found by themselves. */
#ifndef HOST_MDL_SCAN_H
#define HOST_MDL_SCAN_H

#include "types.h"

typedef struct ScanCriteria ScanCriteria;
enum { MDL_SCAN_MORE = 11 }; /* the buffer is full and more follow */

MDL_EXPORT ScanCriteria *mdlScanCriteria_create(void); /* null when out of memory */
MDL_EXPORT void mdlScanCriteria_free(ScanCriteria **criteriaP);
MDL_EXPORT int mdlScanCriteria_setModel(ScanCriteria *criteria, ModelRef *model); /* without it: the active model */
MDL_EXPORT int mdlScanCriteria_addSingleElementTypeTest(ScanCriteria *criteria, int32_t type);
MDL_EXPORT int mdlScanCriteria_addSingleLevelTest(ScanCriteria *criteria, LevelId level);
/* Classes as a mask: bit number class. 0 is all. */
MDL_EXPORT int mdlScanCriteria_setClassTest(ScanCriteria *criteria, uint32_t classMask);
/* Elements whose range meets the box (UOR), edges included; those without a range aren't found. Null clears the test. */
MDL_EXPORT int mdlScanCriteria_setRangeTest(ScanCriteria *criteria, const Range3d *range);
/* What a scan gives: 1 positions, the only type so far. With `oneElement` 1 each call gives the next position alone, with
 * MDL_SCAN_MORE, and none with 0 when there is no further one. `nested` has no effect. */
MDL_EXPORT int mdlScanCriteria_setReturnType(ScanCriteria *criteria, int32_t type, int32_t oneElement, int32_t nested);
/* Fills `buffer` with positions in order of the file. *sizeP: room in 16-bit words (2 for a position) on entry, words
 * filled on return. *startP: position to begin behind, 0 for a new scan from the first; updated. With startP null each
 * call goes on where the last one ended, and after the end anew. MDL_SCAN_MORE when the buffer is full and more follow,
 * 0 when the scan is at its end, MDL_ERROR when it can't be done: the model was closed, or the buffer has no room. */
MDL_EXPORT int mdlScanCriteria_scan(ScanCriteria *criteria, FilePos *buffer, int32_t *sizeP, FilePos *startP);

#endif
