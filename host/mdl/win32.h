/* The few calls of the operating system that the library uses by name. */
#ifndef HOST_MDL_WIN32_H
#define HOST_MDL_WIN32_H

#include "types.h"

/* Deletes a file; 1, or 0 when it can't be deleted. */
MDL_EXPORT int DeleteFileA(const char *name);
/* The short form of a path; here the path itself, with host path rules applied. The length without its NUL, or 0 when
 * there is no such file, or the size needed when `size` is too small. */
MDL_EXPORT uint32_t GetShortPathNameA(const char *path, char *buffer, uint32_t size);
/* The loaded module of that file name ("MCLib.dll" finds libmclib.so), or null. */
MDL_EXPORT void *GetModuleHandleA(const char *name);
/* Full path of a loaded module into `buffer`, cut at size - 1 characters; the length, 0 on failure. */
MDL_EXPORT uint32_t GetModuleFileNameA(void *module, char *buffer, uint32_t size);

#endif
