/* Resource files: string lists and dialog layouts under a 32-bit id, in the languages that the file brings.
 *
 * A resource file (.rsc) is made by mcrsc from text sources. The language is that of the configuration variable
 * MS_LANGUAGE ("en" when it isn't defined); a string that the file lacks in that language comes in English. */
#ifndef HOST_MDL_RESOURCE_H
#define HOST_MDL_RESOURCE_H

#include "types.h"

enum { MDL_RSC_READ = 0, MDL_RSC_WRITE = 1 };
/* Opens a resource file of the current application. A null name means the application's own: the .rsc file of the same
 * name beside its module, or, when it has none, the file that the configuration variable MS_APPRSC names. That one is
 * also looked in for what an own file lacks.
 * To be written the file must be writable; a name that isn't there makes a new one. A name without an extension is also
 * tried with ".rsc".
 * 0, or MDL_ERROR with the handle 0; a file that isn't a resource file, or is damaged, also gets a line in the message
 * centre, and stays as it is. The same file is kept in memory once, however often it is open. What an application
 * leaves open is closed when it ends. */
MDL_EXPORT int mdlResource_openFile(RscHandle *handleP, const char *name, int mode);
MDL_EXPORT int mdlResource_closeFile(RscHandle handle);
/* The string `messageId` of list `listId` into `buffer` (512 bytes, cut there). `rscFile` 0 looks in the files of the
 * current application, the last opened first, then in all open ones. 0, or MDL_ERROR with the buffer untouched. */
MDL_EXPORT int mdlResource_loadFromStringList(char *buffer, RscHandle rscFile, int32_t listId, int32_t messageId);

#endif
