/* Calls that reach the operating system: commands, stored settings, network names. */
#ifndef MCLIB_WIN32_H
#define MCLIB_WIN32_H

#include "mclib/frame/export.h"

/* Gives the command, a space and the arguments (which may be null) to the standard function system, and gives its
 * result. */
MCLIB_EXPORT int mclibWin32_execCommand(const char *command, const char *arguments);
/* Runs the command line as a program of the lowest priority, with its window shown or hidden, and waits for its end.
 * Non-zero, whatever its exit status; 0 when it can't be started. */
MCLIB_EXPORT int mclibWin32_execCommandAndWait(const char *command, const char *arguments, int showWindow);
/* Reads a stored setting: the user's, or the machine's when the user has none (mchost/mdl/win32.h tells where they
 * lie). The number of bytes that were read into `data`, a text's NUL counted; 0, with `data` untouched, when there is
 * none or it is longer than `size` bytes. The kind of value goes to *type, which may be null: 1 text, 3 bytes, 4
 * number. */
MCLIB_EXPORT uint32_t mclibWin32_getRegistryValue(const char *key, const char *value, uint32_t *type, void *data,
                                                  uint32_t size);
/* The network name of a file that lies on a network drive, at most 251 characters. 1, or 0, with `universalName`
 * untouched, for a local path or a longer name. */
MCLIB_EXPORT int mclibWin32_getGetUniversalFileName(const char *path, char *universalName);

#endif
