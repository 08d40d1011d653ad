/* Runs of an application's function over many design files, each in its turn the open one.
 *
 * The user picks the files, or cancels before anything has happened. A completion bar shows how far a run is. Files
 * that aren't there, or can't be opened, are passed over and told in a list at the end. Then the file that was open
 * before is opened again. `process` is called in the calling application; what it changes is stored as by any command.
 * `id` is the number under which the application's preference file remembers the choice; with 0 it is remembered as
 * long as the application runs. */
#ifndef MCLIB_DESIGN_FILE_LISTS_H
#define MCLIB_DESIGN_FILE_LISTS_H

#include "mclib/frame/export.h"

/* Over a list that the user edits. `listP` may be null, and its list too: the editing begins with it, and the edited
 * one, which the caller owns, takes its place. A list without files calls `process` once, in the file that is open. */
MCLIB_EXPORT void mclibDgnList_selectAndProcessDgnFiles(void (*process)(void *userArg), StringList **listP,
                                                        void *userArg, const char *directory, const char *filter,
                                                        int32_t id);
/* Over the files that a text file names, one to a line; comments, continued lines and includes work in it. */
MCLIB_EXPORT void mclibDgnList_processDgnFilesFromFile(void (*process)(void *userArg), void *userArg,
                                                       const char *filter, const char *directoryVariable, int32_t id);
/* Over the files that the user searches. With `id` 0 directory and filter are those of the last time, at first the
 * folder of the open file and all files. A list without files calls `process` once, in the file that is open. */
MCLIB_EXPORT void mclibDgnList_findAndProcessDgnFiles(void (*process)(void *userArg), void *userArg,
                                                      const char *directory, const char *filter, int32_t id);

#endif
