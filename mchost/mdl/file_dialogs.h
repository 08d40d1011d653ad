/* Dialogs that ask for files, and the files that they remember.
 *
 * Directories are host paths (files.h), and a configuration variable may stand for one: then its first folder counts. A
 * filter is one or more patterns divided by `;` ("*.txt;*.dat"). Answers are full names where the directory is one. A
 * name without an extension also stands for the one with the filter's extension. A dialog that opens asks again when
 * the file isn't there; one that creates asks before it gives the name of a file that is. */
#ifndef HOST_MDL_FILE_DIALOGS_H
#define HOST_MDL_FILE_DIALOGS_H

#include "types.h"

/* ---- remembered files ---- */

enum { MDL_HISTORY_MOST = 10, MDL_USER_FILE_MARKER = 0xFF, MDL_USER_FILE_VERSION = 5 };

/* What a dialog remembers: one record for each id, stored in 11,032 bytes at the offsets that stand here, numbers
 * little-endian, texts Windows-1252 and ended by NUL. The lists hold the latest first, and count when marker and
 * version are the ones above. */
typedef struct UserFileRecord {
    uint8_t marker;                  /*    0 */
    int32_t version;                 /*    4 */
    char fileName[256];              /*    8: the last file */
    char filter[256];                /*  264: the last filter, such as "*.txt" */
    char directory[256];             /*  520: the last directory */
    int32_t fileCount;               /*  776 */
    char fileHistory[10][256];       /*  780 */
    int32_t filterCount;             /* 3340 */
    char filterHistory[10][256];     /* 3344 */
    uint8_t reserved[2564];          /* 5904: kept as it is */
    int32_t directoryCount;          /* 8468 */
    char directoryHistory[10][256];  /* 8472 */
} UserFileRecord;

/* Reads the record `id` of a resource file; `handle` 0 means the one that was saved with 0 in this session, for the
 * current application. MDL_ERROR, with the record as it was, when there is none. A stored record that is cut short is
 * read as far as it holds; counts of a record with the right marker and version lie within 0 and 10. */
MDL_EXPORT int mdlUserPrefs_getFileName(UserFileRecord *record, RscHandle handle, int32_t id) MDL_NOEXCEPT;
/* Stores the record, new or in place of an old one; a status of resource.h. A file that was opened for reading gets
 * MDL_RSC_READ_ONLY and no line in the message centre. `handle` 0 keeps it for the session, as the state
 * that the dialog of that id starts from. */
MDL_EXPORT int mdlUserPrefs_saveFileName(const UserFileRecord *record, RscHandle handle, int32_t id) MDL_NOEXCEPT;

/* ---- one file ---- */

enum { MDL_DIALOG_CANCELLED = 1 }; /* the user gave no file */

/* Ask for a file to read, and for one to make. The full name goes to `result` (256 bytes), which is left alone on
 * failure. `rscFile` and `dialogId` are 0: the host's own dialog. `suggestedName`, `filter`, `directory` and
 * `title` may be null. 0, MDL_DIALOG_CANCELLED (also when nobody answers), or MDL_ERROR without a session. */
MDL_EXPORT int mdlDialog_fileOpen(char *result, RscHandle rscFile, int32_t dialogId, const char *suggestedName,
                                  const char *filter, const char *directory, const char *title) MDL_NOEXCEPT;
MDL_EXPORT int mdlDialog_fileCreate(char *result, RscHandle rscFile, int32_t dialogId, const char *suggestedName,
                                    const char *filter, const char *directory, const char *title) MDL_NOEXCEPT;

/* The same with a record of remembered files, `id` of the resource file `handle` (0: of this session): its directory
 * and filter are used in place of those given, its files are offered, and what the user chose is stored in it. A record
 * that can't be stored changes nothing in the result. */
MDL_EXPORT int mdlDialog_defFileOpen(char *result, RscHandle rscFile, int32_t dialogId, const char *suggestedName,
                                     const char *filter, const char *directory, const char *title, int32_t id,
                                     RscHandle handle) MDL_NOEXCEPT;
MDL_EXPORT int mdlDialog_defFileCreate(char *result, RscHandle rscFile, int32_t dialogId, const char *suggestedName,
                                       const char *filter, const char *directory, const char *title, int32_t id,
                                       RscHandle handle) MDL_NOEXCEPT;

/* ---- lists of files ---- */

enum { MDL_FILES_OK = 3, MDL_FILES_CANCEL = 4 };

/* What a dialog gives back, and where the next one of its kind starts. */
typedef struct FileDialogResult {
    int32_t reply;       /* MDL_FILES_OK or MDL_FILES_CANCEL */
    char directory[256];
    char filter[256];
} FileDialogResult;

/* Options of mdlFileList_edit; all other bits may be given and have no effect here. */
enum {
    MDL_FILE_LIST_DIRECTORY = 0x80, /* asks for one directory; the list then holds it alone, without a last separator */
    MDL_FILE_LIST_SEVERAL = 0x100   /* the list may hold more than one file */
};

/* Has the user edit a list of files: adding, removing, none at all. Gives the edited list, which the caller owns, or
 * null when the dialog was cancelled; `list` (may be null) stays as it was. `result` gets the reply, and the directory
 * and filter that were in use; when its filter isn't empty, it goes before `filter`. `listTitle` stands above the
 * list. */
MDL_EXPORT StringList *mdlFileList_edit(FileDialogResult *result, const StringList *list, int32_t options,
                                        const char *title, const char *listTitle, const char *filter,
                                        const char *directory) MDL_NOEXCEPT;

#endif
