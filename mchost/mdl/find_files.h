/* Folders gone through: what lies in them, the drives that are mapped, and whether two names are the same. */
#ifndef HOST_MDL_FIND_FILES_H
#define HOST_MDL_FIND_FILES_H

#include "files.h"

/* More attributes of mdlFileList_get: files, as 0; the drives that are mapped, whatever the pattern is, in the order of
 * their letters and written "[-c:-]". */
enum { MDL_ATTRIBUTE_FILES = 0x100, MDL_ATTRIBUTE_DRIVE = 0x40 };

/* The files (attribute MDL_FIND_FILES) or folders that match `pattern`, as mdlFileList_get gives them. */
enum { MDL_FIND_FILES = 0, MDL_FIND_FOLDERS = 2 };
MDL_EXPORT int mdlFile_findFiles(StringList **listP, const char *pattern, int attribute) MDL_NOEXCEPT;

/* What is the same for all names of one file or folder, links followed, and differs from that of any other. MDL_ERROR
 * when there is nothing of that name, or it can't be looked at. */
typedef struct MdlFileIdentity {
    uint64_t device, number;
} MdlFileIdentity;
MDL_EXPORT int mdlFile_getIdentity(MdlFileIdentity *identity, const char *name) MDL_NOEXCEPT;

#endif
