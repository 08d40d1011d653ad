/* The HP-GL driver: lines and texts for a pen plotter, all with one pen.
 *
 * Lengths are millimetres on the paper, x right, y up, from the sheet's lower left corner; angles are degrees, counter-
 * clockwise. ASCII and six Norwegian letters are shown, those in the places of [ \ ] { | }; a line on the console at
 * the end of the job names others. The print front end turns its picture by a quarter turn for this device. One job at
 * a time; what is drawn without an open job does nothing. No application is needed. */
#ifndef MCLIB_PRINT_HPGL_H
#define MCLIB_PRINT_HPGL_H

#include "mclib/frame/export.h"

/* Opens the file and writes the set-up. 1, or 0 with a line on the console. A job that was left open ends first. */
MCLIB_EXPORT int mclibHpgl_fopen(const char *fileName);
MCLIB_EXPORT void mclibHpgl_newPage(void);
/* Ends the last page and closes the file; a line on the console names a file that couldn't be stored. */
MCLIB_EXPORT void mclibHpgl_fclose(void);
/* MCLIB_ERROR when the last job's file couldn't be opened, or something couldn't be written to it so far; after
 * mclibHpgl_fclose the word on the whole file. MCLIB_SUCCESS otherwise, and before the first job. */
MCLIB_EXPORT int mclibHpgl_jobStatus(void);

/* A line through the points (count at least 1; x and y count). Width and grey have no effect. */
MCLIB_EXPORT void mclibHpgl_drawPolyline(const Point3d *points, int count, double width, double gray);
/* A text on its base line. just: 0 centred, 1 right-aligned, else left-aligned; either counts characters, all of one
 * width. The letters of the Norwegian alphabet beyond z become, in the caller's text too, the bytes that stand for them
 * in the plotter's character set. Other characters go to the file as they are. */
MCLIB_EXPORT void mclibHpgl_drawText(double x, double y, char *text, double height, double angle, int just);

/* These do nothing on this device. */
MCLIB_EXPORT void mclibHpgl_drawLine(float x1, float y1, float x2, float y2, float width);
MCLIB_EXPORT void mclibHpgl_drawArc(double x, double y, double radius, double startAngle, double endAngle,
                                    double width);
MCLIB_EXPORT void mclibHpgl_fillCirc(double x, double y, double radius, double startAngle, double endAngle,
                                     double gray);

#endif
