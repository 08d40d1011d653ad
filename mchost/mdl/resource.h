/* Resource files (.rsc): string lists and dialog layouts that mcrsc makes from text sources, and typed blocks and
 * string lists that applications keep.
 *
 * What mcrsc made is read in the language of the configuration variable MS_LANGUAGE ("en" when it isn't defined); a
 * string that the file lacks in that language comes in English.
 * Typed blocks lie under a four-character type and a 32-bit id. A write is whole when its call comes back with 0: a
 * process that is killed leaves the old or the new content, and so does a full disk. Several processes may write to one
 * file; each waits some seconds for the other.
 * A status is 0, or one of those below; the reason of a failure also gets a line in the message centre. */
#ifndef HOST_MDL_RESOURCE_H
#define HOST_MDL_RESOURCE_H

#include "types.h"

enum { MDL_RSC_READ = 0, MDL_RSC_WRITE = 1 };
/* Statuses of writing. Every other failure (full disk, damaged file, a resource that is there already or isn't there,
 * bad arguments) is MDL_ERROR. */
enum { MDL_RSC_READ_ONLY = -906 /* the file was opened for reading, or it or its folder can't be written to */ };

/* A type from its four characters, the first one in the most significant byte. */
#define MDL_RSC_TYPE(a, b, c, d) \
    ((int32_t)((uint32_t)(unsigned char)(a) << 24 | (uint32_t)(unsigned char)(b) << 16 | \
               (uint32_t)(unsigned char)(c) << 8 | (uint32_t)(unsigned char)(d)))

/* ---- files ----
 * A file that was removed or replaced since it was opened takes no more: calls that write give MDL_ERROR, with a line
 * in the message centre. */

/* Makes a resource file without content, which then has to be opened. A resource file of that name is emptied, except
 * one that another process makes at the same time: it does for both. A file that is no resource file, is damaged, of a
 * newer make or write-protected is left as it is. `title` (may be null) says what the file holds. `mode` is
 * MDL_RSC_WRITE. A name without an extension is taken as it is. */
MDL_EXPORT int mdlResource_createFile(const char *name, const char *title, int mode) MDL_NOEXCEPT;
/* Opens a resource file of the current application. A null name means the application's own: the .rsc file of the same
 * name beside its module, or, when it has none, the file that the configuration variable MS_APPRSC names. That one is
 * also looked in for what an own file lacks.
 * To be written the file must be writable. A name without an extension is also tried with ".rsc".
 * 0, or MDL_ERROR with the handle 0; a file that isn't a resource file, or is damaged, also gets a line in the message
 * centre (one, however often the application tries), and stays as it is; one that isn't there, or can't be written to,
 * gets none. What an application leaves open is closed when it ends. */
MDL_EXPORT int mdlResource_openFile(RscHandle *handleP, const char *name, int mode) MDL_NOEXCEPT;
/* Closes; blocks that were loaded from the file stay valid, but can't be written any more. MDL_ERROR for one that isn't
 * open or, with a line in the message centre, whose last changes stay in the log beside it (NAME-wal): nothing is lost
 * while the two are kept together. */
MDL_EXPORT int mdlResource_closeFile(RscHandle handle) MDL_NOEXCEPT;

/* ---- what a file holds ---- */

enum {
    MDL_RSC_BLOCK = 1,
    MDL_RSC_STRING_LIST = 2,
    MDL_RSC_MESSAGES = 3,
    MDL_RSC_DIALOG = 4,
    MDL_RSC_ICON = 5,
    MDL_RSC_MENU = 6
};
typedef struct MdlResourceEntry {
    int32_t kind;       /* MDL_RSC_... */
    int32_t type;       /* of a block, else 0 */
    int32_t id;
    int32_t size;       /* block: bytes; string list: members; messages: strings; dialog: items; icon: pixels a side;
                         * menu: entries */
    int32_t attributes; /* of a block, else 0 */
    const char *name;   /* block, string list: the name kept with it; messages: the languages ("en no"); dialog and
                         * menu: its title; icon: its sign. Windows-1252, the host's own, valid during the call */
} MdlResourceEntry;
/* A result other than 0 ends the listing. */
typedef int (*MdlResourceVisit)(void *userArg, const MdlResourceEntry *entry);
/* Calls `visit` for each resource of an open file, in order of kind, type and id. 0 or the visit's result; MDL_ERROR,
 * with a line in the message centre, when the file isn't open or can't be read. */
MDL_EXPORT int mdlResource_list(RscHandle rscFile, MdlResourceVisit visit, void *userArg) MDL_NOEXCEPT;
/* The title that the file was made with, at most size - 1 characters and a NUL; empty when it has none. MDL_ERROR as
 * above, or when it was cut. */
MDL_EXPORT int mdlResource_getTitle(char *title, int32_t size, RscHandle rscFile) MDL_NOEXCEPT;

/* ---- typed blocks ---- */

/* The block as it is stored at this moment; null when there is none, or when it is damaged, which gets a line. The
 * caller gives it back with mdlResource_free, and may change its bytes but not its size. `rscFile` 0 looks in the files
 * of the current application, the last opened first, then in all open ones. */
MDL_EXPORT void *mdlResource_load(RscHandle rscFile, int32_t type, int32_t id) MDL_NOEXCEPT;
/* Size in bytes of a block that was loaded; 0 for null and for anything else. */
MDL_EXPORT int32_t mdlResource_size(const void *block) MDL_NOEXCEPT;
/* Replaces the stored block by the loaded one, which stays loaded. */
MDL_EXPORT int mdlResource_write(const void *block) MDL_NOEXCEPT;
/* Adds a block of `size` bytes (0 to 1,000,000,000). `attributes` and `name` (may be null) are kept with it and mean
 * nothing to the host. A block that is there already isn't replaced: MDL_ERROR. */
MDL_EXPORT int mdlResource_add(RscHandle rscFile, int32_t type, int32_t id, const void *data, int32_t size,
                               int32_t attributes, const char *name) MDL_NOEXCEPT;
/* The same, and a block that is stored there already is replaced, whatever its size. */
MDL_EXPORT int mdlResource_put(RscHandle rscFile, int32_t type, int32_t id, const void *data,
                               int32_t size) MDL_NOEXCEPT;
/* Gives back a block that was loaded. MDL_ERROR for anything else; 0 for null. */
MDL_EXPORT int mdlResource_free(void *block) MDL_NOEXCEPT;

/* ---- string lists that applications keep (lists.h), with their info fields ---- */

/* A new list, which the caller destroys; null when there is none under that id. A list that lacks members is read up to
 * the first one missing, with a line. */
MDL_EXPORT StringList *mdlStringList_loadResource(RscHandle rscFile, int32_t id) MDL_NOEXCEPT;
/* Adds a list; MDL_ERROR when one is there already. */
MDL_EXPORT int mdlStringList_addResource(RscHandle rscFile, int32_t id, const StringList *list,
                                         const char *name) MDL_NOEXCEPT;
/* Replaces a list; MDL_ERROR when none is there. */
MDL_EXPORT int mdlStringList_writeResource(const StringList *list, RscHandle rscFile, int32_t id,
                                           const char *name) MDL_NOEXCEPT;

/* ---- message strings that mcrsc made ---- */

/* The string `messageId` of list `listId` into `buffer` (512 bytes, cut there). `rscFile` 0 looks in the files of the
 * current application, the last opened first, then in all open ones. 0, or MDL_ERROR with the buffer untouched. */
MDL_EXPORT int mdlResource_loadFromStringList(char *buffer, RscHandle rscFile, int32_t listId,
                                              int32_t messageId) MDL_NOEXCEPT;

#endif
