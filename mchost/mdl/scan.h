/* Scans: positions of the elements of a model that pass all tests that were added. Within one kind of test any value
 * will do. A scan sees the elements that the model held when its first portion was asked for, less those deleted since.
 * Components of complex elements aren't found by themselves (but see `nested`). */
#ifndef HOST_MDL_SCAN_H
#define HOST_MDL_SCAN_H

#include "bitmask.h"
#include "elmdscr.h"

typedef struct ScanCriteria ScanCriteria;
enum { MDL_SCAN_MORE = 11 }; /* the buffer is full and more follow */

MDL_EXPORT ScanCriteria *mdlScanCriteria_create(void) MDL_NOEXCEPT; /* null when out of memory */
MDL_EXPORT void mdlScanCriteria_free(ScanCriteria **criteriaP) MDL_NOEXCEPT;
/* Without it: the active model */
MDL_EXPORT int mdlScanCriteria_setModel(ScanCriteria *criteria, ModelRef *model) MDL_NOEXCEPT;
MDL_EXPORT int mdlScanCriteria_addSingleElementTypeTest(ScanCriteria *criteria, int32_t type) MDL_NOEXCEPT;
MDL_EXPORT int mdlScanCriteria_addSingleLevelTest(ScanCriteria *criteria, LevelId level) MDL_NOEXCEPT;
/* All levels of the mask (bit `level - 1`), which is copied; null takes an earlier mask back. The library gives 1 and 0
 * for the two last ones. */
MDL_EXPORT int mdlScanCriteria_setLevelTest(ScanCriteria *criteria, const MdlBitMask *levels, int32_t reserved1,
                                            int32_t reserved2) MDL_NOEXCEPT;
/* Classes as a mask: bit number class. 0 is all. */
MDL_EXPORT int mdlScanCriteria_setClassTest(ScanCriteria *criteria, uint32_t classMask) MDL_NOEXCEPT;
/* Elements whose range meets the box (UOR), edges included; those without a range aren't found. Null clears the
 * test. */
MDL_EXPORT int mdlScanCriteria_setRangeTest(ScanCriteria *criteria, const Range3d *range) MDL_NOEXCEPT;
/* Elements that are drawn: not those that hold data of applications alone. */
MDL_EXPORT int mdlScanCriteria_setDrawnElements(ScanCriteria *criteria) MDL_NOEXCEPT;
/* Elements before that position (mdlModelRef_getEof: those that are there now); 0 takes it back. */
MDL_EXPORT int mdlScanCriteria_setStopPosition(ScanCriteria *criteria, FilePos end) MDL_NOEXCEPT;
/* What a scan gives: MDL_SCAN_POSITIONS, the initial one, or MDL_SCAN_DESCRIPTORS. With `oneElement` 1 each call for
 * positions gives the next one alone, with MDL_SCAN_MORE, and none with 0 when there is no further one. With `nested` 1
 * a scan for descriptors also finds elements that have a component, at any depth, which passes the tests of type, level
 * and class; it has no effect on positions. */
enum { MDL_SCAN_POSITIONS = 1, MDL_SCAN_DESCRIPTORS = 5 };
MDL_EXPORT int mdlScanCriteria_setReturnType(ScanCriteria *criteria, int32_t type, int32_t oneElement,
                                             int32_t nested) MDL_NOEXCEPT;
/* What a scan for descriptors calls for each element found, with its position in ed->filePos. The descriptor is freed
 * behind the call. A result other than 0 ends the scan. The function may change the model, and may not free the
 * criteria. */
typedef int (*MdlScanDescrFunction)(ElementDescr *ed, void *userArg, ScanCriteria *criteria);
MDL_EXPORT int mdlScanCriteria_setElmDscrCallback(ScanCriteria *criteria, MdlScanDescrFunction f,
                                                  void *userArg) MDL_NOEXCEPT;
/* Fills `buffer` with positions in order of the file. *sizeP: room in 16-bit words (2 for a position) on entry, words
 * filled on return. *startP: position to begin behind, 0 for a new scan from the first; updated. With startP null each
 * call goes on where the last one ended, and after the end anew. MDL_SCAN_MORE when the buffer is full and more follow,
 * 0 when the scan is at its end, MDL_ERROR when it can't be done: the model was closed, or the buffer has no room. A
 * scan for descriptors takes null for all three: it runs to its end in one call, and gives 0 or the function's result;
 * MDL_ERROR without a function. */
MDL_EXPORT int mdlScanCriteria_scan(ScanCriteria *criteria, FilePos *buffer, int32_t *sizeP,
                                    FilePos *startP) MDL_NOEXCEPT;

#endif
