/* The PostScript driver: a page description as a plain text file that goes to a printer unchanged.
 *
 * Lengths are millimetres on the paper, x right, y up, from the sheet's lower left corner; angles are degrees, counter-
 * clockwise. Numbers are written with two decimals. Text is Windows-1252. The head of the file
 * brings the letters of the Norwegian alphabet and its neighbours; other codes have what stands there in the font's own
 * encoding, unless the configuration variable MC_PSENCODING is 1252 when the job begins: a page with other letters then
 * sets the font up for all of Windows-1252 in front of its first text that needs it. One job at a time; what is drawn
 * without an open job does nothing. No application is needed. */
#ifndef MCLIB_PRINT_PS_H
#define MCLIB_PRINT_PS_H

#include "mclib/frame/export.h"

/* Opens the file and writes the prolog. 1, or 0 with a line on the console. A job that was left open ends first. */
MCLIB_EXPORT int mclibPs_fopen(const char *fileName);
MCLIB_EXPORT void mclibPs_newPage(void);
/* Ends the last page and closes the file; a line on the console names a file that couldn't be stored, another one
 * letters of the job that aren't shown as they are. */
MCLIB_EXPORT void mclibPs_fclose(void);
/* MCLIB_ERROR when the last job's file couldn't be opened, or something couldn't be written to it so far; after
 * mclibPs_fclose the word on the whole file. MCLIB_SUCCESS otherwise, and before the first job. */
MCLIB_EXPORT int mclibPs_jobStatus(void);

MCLIB_EXPORT void mclibPs_drawLine(float x1, float y1, float x2, float y2, float width);
/* A line through the points (count at least 1; x and y count). With gray from 0 (black) to 1 (white) its outline is
 * closed and filled, and not drawn. The dash pattern is the one that was set last. */
MCLIB_EXPORT void mclibPs_drawPolyline(const Point3d *points, int count, double width, double gray);
/* The same with a dash pattern: lengths in points, divided by blanks; empty for a solid line. It stays in force. */
MCLIB_EXPORT void mclibPs_drawPolylineExtended(const Point3d *points, int count, double width, const char *dash,
                                               double gray);
/* A text on its base line. just: 0 centred, 1 right-aligned, else left-aligned. Backslashes, and parentheses without a
 * partner, are written with a backslash; the text is cut at 255 characters of this form. */
MCLIB_EXPORT void mclibPs_drawText(double x, double y, const char *text, double height, double angle, int just);
MCLIB_EXPORT void mclibPs_drawArc(double x, double y, double radius, double startAngle, double endAngle,
                                  double width);
/* A filled sector about (x, y). gray: 0 black to 1 white. */
MCLIB_EXPORT void mclibPs_fillCirc(double x, double y, double radius, double startAngle, double endAngle, double gray);
/* Copies an EPS file into the page: moved to (x, y), scaled, then turned. 1, or 0 when there is no job or the file
 * can't be read (with a line on the console): nothing is written then, unless reading fails further on. */
MCLIB_EXPORT int mclibPs_includeEPSFile(const char *fileName, double scaleX, double scaleY, double x, double y,
                                        double rotation);

#endif
