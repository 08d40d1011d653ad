/* The printer set-up: paper, margins, device and target of all print output, one block for all applications, which
 * dialogs reach as mclibpsd. Its layout is the stored one. Lengths are millimetres.
 *
 * The block is read from the user's preference file when an application starts and whenever a dialog that shows it is
 * opened; only OK in the set-up dialog writes it there. Without one stored the page is A4 upright with margins of 20 mm
 * on the left and 10 mm elsewhere, for a PostScript printer. */
#ifndef MCLIB_PRINT_SETUP_H
#define MCLIB_PRINT_SETUP_H

#include <stdint.h>

#include "mclib/frame/export.h"

typedef struct mclibPrinterSetupData {
    int32_t pageSize; /* page code of the print front end; 0: the user types the size */
    double pageWidth, pageHeight;
    double marginLeft, marginRight, marginTop, marginBottom;
    int32_t orientation; /* 0 every page turned by 90 degrees, 1 never, 2 by the page's shape */
    int32_t deviceType;  /* a print device */
    int32_t copies;
    char printerName[255]; /* printer string; for plots the target's name */
    char fileName[257];    /* the print file; for plots the paper size's name */
    int32_t fileOnly;      /* other than 0: keep the file and send nothing */
    char plotterFile[256]; /* plot driver file */
} mclibPrinterSetupData;

/* Has the user edit the set-up in a modal dialog. The reply: 3 (OK, and the set-up is stored) or 4; what was changed
 * before a 4 stays until the set-up is read again. A preference file that can't be used is told. */
MCLIB_EXPORT int mclibPrintSet_dialogOpen(void);

#endif
