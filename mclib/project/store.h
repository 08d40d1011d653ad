/* The project record and the page records of a design file: what its title blocks say.
 *
 * The active model holds one record for the project and one for each named page, as application data
 * (mclib/project/application_data.h): texts that each end in a NUL, in a fixed order. Names of pages are compared with
 * case, and in the first PAGE_NAME_LETTERS letters, which is what a record keeps of them. A record of a form that this
 * version doesn't know is told of in a message and passed over. What was read or written is told in the status field.
 * Without an open design file there is nothing to read, and nothing can be written. */
#ifndef MCLIB_PROJECT_STORE_H
#define MCLIB_PROJECT_STORE_H

#include "mclib/frame/export.h"
#include "mclib/project/blocks.h"

enum { PAGE_NAME_LETTERS = 80 };

/* Clears the block and fills it from the file; where it holds several records, the last one counts. The number of
 * records. */
MCLIB_EXPORT int mclibProject_readProjectInfoFromDesignFile(mclibProsjektData *project);
/* Puts one record in the place of all that were there. A failure is told in a message; undo then brings back the
 * records from before. */
MCLIB_EXPORT void mclibProject_writeProjectInfoToDesignFile(const mclibProsjektData *project);
/* Clears the block and fills it from the record of that page, and wantedPageName is empty. When there is none, pageName
 * stays empty and wantedPageName holds the name that was asked for. `pageName` may lie in the block. */
MCLIB_EXPORT void mclibProject_readPageInfoFromDesignFile(mclibSideData *page, const char *pageName);
/* Puts a record in the place of the one for page->pageName, if there is one. A failure is told as above. */
MCLIB_EXPORT void mclibProject_writePageInfoToDesignFile(const mclibSideData *page);
/* Deletes page records, so that undo brings them back: with keepNames (ended by a null pointer) those of pages that
 * aren't in it; else those of pageName; with both null all. A record of an unknown form counts as one without a name.
 * The number of page records that were there. */
MCLIB_EXPORT int mclibProject_deletePageInfoFromDesignFile(const char *pageName, const char *const *keepNames);

#endif
