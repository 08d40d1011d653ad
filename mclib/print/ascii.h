/* The ASCII driver: turns the horizontal texts of a page back into lines and columns of a plain text file, so that a
 * list that was laid out for paper becomes a table.
 *
 * Lengths are millimetres on the paper, x right, y up; a line is 2 mm high and a column 1.2 mm wide. The file is
 * written when the job ends, all of it as one sheet: a job should have one page. Texts that share lines and columns are
 * never cut; the next starts right behind the one before. A gap of more than 100,000 lines or columns is cut to that,
 * which a line on the console tells. One job at a time; what is drawn without an open job does nothing. No application
 * is needed. */
#ifndef MCLIB_PRINT_ASCII_H
#define MCLIB_PRINT_ASCII_H

#include "mclib/frame/export.h"

/* Opens the file. 1, or 0 with a line on the console. A job that was left open ends first. */
MCLIB_EXPORT int mclibAscii_fopen(const char *fileName);
/* Does nothing on this device. */
MCLIB_EXPORT void mclibAscii_newPage(void);
/* Lays out the texts and closes the file; a line on the console names a file that couldn't be stored. */
MCLIB_EXPORT void mclibAscii_fclose(void);
/* MCLIB_ERROR when the last job's file couldn't be opened, or something couldn't be written to it so far; after
 * mclibAscii_fclose the word on the whole file. MCLIB_SUCCESS otherwise, and before the first job. A text that was left
 * out for want of memory doesn't count. */
MCLIB_EXPORT int mclibAscii_jobStatus(void);

/* Adds a copy of the text. shape: the five points of its box, turned level; the first one is its place. angle: degrees
 * from the page's direction of reading; a text that is turned by more than 1 degree, or has no finite place, is left
 * out, and so is one that memory doesn't suffice for (with a message). The height, the size and the alignment have no
 * effect. */
MCLIB_EXPORT void mclibAscii_drawText(const Point3d *shape, const char *text, double height, double size, double angle,
                                      int just);

#endif
