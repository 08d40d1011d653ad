/* The project dialog, and what title blocks get of project and page.
 *
 * The dialog edits the block that all applications share: what the user types stands in it at once, and goes to the
 * design file with the dialog's button. */
#ifndef MCLIB_PROJECT_DIALOG_H
#define MCLIB_PROJECT_DIALOG_H

#include "mclib/frame/export.h"

struct FormData;

/* Opens the project dialog, which isn't modal. MCLIB_SUCCESS, or MCLIB_ERROR when it can't be opened. */
MCLIB_EXPORT int mclibProject_dialogOpen(void);
/* Reads the project, and the page that is being made, from the design file, and gives their texts to the form
 * (mclib/forms/forms.h), rows from 0: "pron", "pros", "kost", "UNav", "USig", "UDat" and the same of S and R, "tegn",
 * and of the page also "kopo" and "revs". What the page says goes before what the project says; empty texts of the page
 * leave the project's. */
MCLIB_EXPORT void mclibProject_insertProjectData(struct FormData *form);

#endif
