/* The print front end: a page, held as a descriptor in design coordinates, becomes a file in the language of a print
 * device.
 *
 * A job is mclibPrint_fopen, for each page the drawing calls, mclibPrint_newPage between pages (n - 1 of them for n
 * pages), and mclibPrint_fclose, which ends the last page. These calls have one job at a time in the whole library.
 * Which device a job has is kept for each application, so they need a registered one: without it they do nothing.
 * Lengths are millimetres on the paper, x right, y up, from the sheet's lower left corner. */
#ifndef MCLIB_PRINT_H
#define MCLIB_PRINT_H

#include "mclib/frame/export.h"
#include "mchost/mdl/elmdscr.h"

/* Print devices. One without a driver takes a whole job and makes nothing of it. */
enum {
    PRINT_POSTSCRIPT = 0,
    PRINT_HPGL = 1,
    PRINT_ASCII = 4,
    PRINT_PCL = 5,
    PRINT_HOST_PLOTTER = 6
};
/* Page codes: a size that the user types; 1 to 12 are A0 to A5, portrait and landscape in turn. */
enum { PRINT_PAGE_TYPED = 0, PRINT_PAGE_A4 = 9 };

/* What holds for a print device. */
enum {
    PRINT_DEVICE_TO_PRINTER = 1,  /* its files can be sent to a printer */
    PRINT_DEVICE_BY_HOST = 2,     /* it makes no files: the host plots from the drawing */
    PRINT_DEVICE_TEXT_ONLY = 4,   /* its files are plain text in Windows-1252, and show texts alone */
    PRINT_DEVICE_ONE_PAGE = 8,    /* a job is one page: mclibPrint_newPage does nothing */
    PRINT_DEVICE_QUARTER_TURN = 16 /* pictures are turned by a quarter, counter-clockwise */
};

/* A print device, as users and applications know it. The texts stay for good. */
typedef struct McPrintDevice {
    int32_t code;            /* PRINT_... */
    const char *key;         /* how users ask for it, such as "postscript" */
    const char *name;        /* in messages, such as "PostScript" */
    const char *suffix;      /* of its files, with the dot; null: it makes none */
    uint32_t traits;         /* PRINT_DEVICE_..., added up */
    double longestPaperSide; /* millimetres; 0: any */
    /* The configuration variable and its value that let its files show more letters; null: none does. */
    const char *lettersVariable, *lettersValue;
} McPrintDevice;

/* The print devices, in the order in which they are offered: row 0 is the usual one. Null for a row that isn't
 * there. */
MCLIB_EXPORT const McPrintDevice *mclibPrint_getDeviceP(int row);
/* The device with this number; null when there is none. */
MCLIB_EXPORT const McPrintDevice *mclibPrint_findDeviceP(int device);
/* 1 when a file of the device that is opened now shows the letter (Windows-1252) as such, else 0; also for a number
 * that is no device. */
MCLIB_EXPORT int mclibPrint_showsLetter(int device, char letter);

/* Opens the print file on a device, which then is the application's. 1, or 0 when the file can't be opened (with a line
 * on the console) or no application is registered; nothing is drawn then until the next open. A job that is still open,
 * on whatever device, is closed first, and so is one whose application ends. A number that is no device has a line on
 * the console, and its job status is MCLIB_ERROR. */
MCLIB_EXPORT int mclibPrint_fopen(const char *fileName, int device);
MCLIB_EXPORT void mclibPrint_newPage(void);
/* Ends the last page and closes the file. mclibPrint_jobStatus tells whether all of it is stored. Letters of the job
 * that the device can't show have a line on the console: which letters it shows is told with each driver. */
MCLIB_EXPORT void mclibPrint_fclose(void);
/* MCLIB_ERROR when the file of the current device's job couldn't be opened, written or closed (a full disk); it stays
 * so until the next open. So it is for a number that is no device. MCLIB_SUCCESS otherwise. */
MCLIB_EXPORT int mclibPrint_jobStatus(void);
/* The size of a page code. A code without one leaves width and height alone. The code is kept as the application's page
 * code in any case. */
MCLIB_EXPORT void mclibPrint_getPageSize(double *width, double *height, int pageCode);
/* Prints the page into the box at (x, y): scaled evenly to fit, in the middle of it. What lies on the level with code
 * 63 is drawn first; there the colours 100 to 200 fill closed shapes with grey, from white to black. A page without
 * extent prints nothing, and an element that can't be stroked is left out. */
MCLIB_EXPORT void mclibPrint_printElementDescr(ElementDescr *page, double x, double y, double width, double height);

#endif
