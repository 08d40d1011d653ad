/* The PCL driver: escape sequences set up a page of a laser printer, which HP-GL/2 then draws.
 *
 * Lengths are millimetres on the paper, x right, y up, from the sheet's lower left corner; angles are degrees, counter-
 * clockwise. Texts go to the file as they are, byte for byte, and are shown in ISO 8859-1; a line on the console at the
 * end of the job names letters that aren't there. The page is always an A4 one, whatever its page code. One job at
 * a time; what is drawn without an open job does nothing. No application is needed. */
#ifndef MCLIB_PRINT_PCL_H
#define MCLIB_PRINT_PCL_H

#include "mclib/frame/export.h"

/* Opens the file and writes the page head: landscape for the page codes 10 and 12, else portrait. 1, or 0 with a line
 * on the console. A job that was left open ends first. */
MCLIB_EXPORT int mclibPcl_fopen(const char *fileName, int pageCode);
MCLIB_EXPORT void mclibPcl_newPage(void);
/* Ends the last page and closes the file; a line on the console names a file that couldn't be stored. */
MCLIB_EXPORT void mclibPcl_fclose(void);
/* MCLIB_ERROR when the last job's file couldn't be opened, or something couldn't be written to it so far; after
 * mclibPcl_fclose the word on the whole file. MCLIB_SUCCESS otherwise, and before the first job. */
MCLIB_EXPORT int mclibPcl_jobStatus(void);

/* A line through the points (count at least 1; x and y count). With gray from 0 (black) to 1 (white) its outline is
 * closed and filled, and not drawn. */
MCLIB_EXPORT void mclibPcl_drawPolyline(const Point3d *points, int count, double width, double gray);
/* The same with a line type of HP-GL/2 and the length of its pattern; 0 is a solid line. */
MCLIB_EXPORT void mclibPcl_drawPolylineExtended(const Point3d *points, int count, double width, int lineType,
                                                double patternLength, double gray);
/* A text on its base line. just: 0 centred, 1 right-aligned, else left-aligned. */
MCLIB_EXPORT void mclibPcl_drawText(double x, double y, const char *text, double height, double angle, int just);

/* These do nothing on this device. */
MCLIB_EXPORT void mclibPcl_drawLine(float x1, float y1, float x2, float y2, float width);
MCLIB_EXPORT void mclibPcl_drawArc(double x, double y, double radius, double startAngle, double endAngle, double width);
MCLIB_EXPORT void mclibPcl_fillCirc(double x, double y, double radius, double startAngle, double endAngle, double gray);

#endif
