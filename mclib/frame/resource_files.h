/* Resource files with the user's messages for what goes wrong, and the application's user preference file with the
 * files that its dialogs remember.
 *
 * Every failure is told to the user before the call comes back with MCLIB_ERROR: message 1 (open or make) or 16 (open
 * for reading), 10 (the file can't be written to), 9 (any other failure of writing) of list 20005, with the file's
 * name. */
#ifndef MCLIB_RESOURCE_FILES_H
#define MCLIB_RESOURCE_FILES_H

#include "mclib/frame/export.h"
#include "mchost/mdl/types.h"

/* An open resource file. */
typedef struct McHandle {
    int32_t handle; /* the host's; 0 when none is open */
    char name[256];
} McHandle;

/* ---- resource files ---- */

/* Opens `name`, which is kept in h, for reading (mode 0) or writing; for writing, a file that can't be opened is made.
 * No file that is there loses its content by that. A name of more than 255 characters is refused. */
MCLIB_EXPORT int mclibResource_openFile(McHandle *h, const char *name, int mode);
MCLIB_EXPORT int mclibResource_closeFile(McHandle *h);
/* Stores `size` bytes under type and id. A resource that is there already keeps its size and its further bytes; when it
 * is smaller than `size`, nothing is written, and message 9 tells so. */
MCLIB_EXPORT int mclibResource_add(McHandle *h, int32_t type, int32_t id, const void *data, int size,
                                   int32_t attributes);
/* Copies the first `size` bytes of the resource to `dest`. MCLIB_ERROR, without a message, when there is none; and,
 * with a line in the message centre, when it is smaller than `size`. `dest` is left alone then. */
MCLIB_EXPORT int mclibResource_load(McHandle *h, int32_t type, int32_t id, void *dest, int size);
/* Stores a string list, in place of any with that id. The list stays the caller's. */
MCLIB_EXPORT int mclibResource_addStringList(McHandle *h, int32_t id, StringList *list);
/* A new list, which the caller destroys with mdlStringList_destroy; null when there is none. */
MCLIB_EXPORT StringList *mclibResource_loadStringList(McHandle *h, int32_t id);

/* ---- the application's user preference file, one for each application ---- */

/* No file is open yet: for an application that starts. */
MCLIB_EXPORT int mclibUpf_initialize(GlobalData *data);
/* Opens the file that the variable `variable` names, or `defaultName`, in the folder of MS_USERPREF; it is made when it
 * isn't there. One that can't be written is opened for reading. The handle goes to *out, when it was opened and `out`
 * isn't null. */
MCLIB_EXPORT void mclibUpf_open(McHandle *out, const char *variable, const char *defaultName);
/* The same with a full path. */
MCLIB_EXPORT int mclibUpf_openWithPath(McHandle *out, const char *path);
MCLIB_EXPORT void mclibUpf_close(void);
/* mclibResource_load and mclibResource_add on the file; a line on the console and MCLIB_ERROR when none is open. Saving
 * to a file that was opened for reading writes nothing, and gives MCLIB_SUCCESS. */
MCLIB_EXPORT int mclibUpf_load(int32_t type, int32_t id, void *dest, int size);
MCLIB_EXPORT int mclibUpf_save(int32_t type, int32_t id, const void *data, int size);
/* Handle and name of the file; 0 and null while none is open. The pointers hold for as long as it is. */
MCLIB_EXPORT int32_t mclibUpf_getHandle(void);
MCLIB_EXPORT McHandle *mclibUpf_getMcHandle(void);
MCLIB_EXPORT char *mclibUpf_getUpfFileName(void);

/* ---- file dialogs that start where the user left them; `id` is the number of their record ---- */

/* Puts a file in front of the remembered ones of the record `id` in the resource file `handle`; the host's status. */
MCLIB_EXPORT int mclibUpf_saveFileName(const char *fileName, int32_t handle, int32_t id);
/* Ask for a file to read, and for one to make; the full name goes to `result` (256 bytes). `directoryVariable` and
 * `defaultName` count as long as the record is empty. The status of mdlDialog_defFileOpen or
 * mdlDialog_defFileCreate. */
MCLIB_EXPORT int mclibUpf_defFileOpen(char *result, const char *defaultName, const char *filter,
                                      const char *directoryVariable, const char *title, int32_t id);
MCLIB_EXPORT int mclibUpf_defFileCreate(char *result, const char *defaultName, const char *filter,
                                        const char *directoryVariable, const char *title, int32_t id);
/* Has the user edit a list of files as mdlFileList_edit does, with its options, titles and filter. The edited list,
 * which the caller owns beside the old one, when *reply is 3; else `list`. */
MCLIB_EXPORT StringList *mclibUpf_defFileListEdit(int *reply, StringList *list, int32_t options, const char *title,
                                                  const char *listTitle, const char *filter,
                                                  const char *defaultDirectory, int32_t id);

#endif
