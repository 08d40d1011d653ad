/* The rasteriser: lines and filled outlines in a bitmap of one bit a pixel that the caller owns.
 *
 * Pixel (x, y) is bit number width * y + x of the bitmap, from the highest bit of the first byte on: rows aren't
 * padded, row 0 is the top one, and a pixel left or right of its row is one of a neighbouring row. A pixel outside the
 * `byteCount` bytes is dropped, and a bitmap whose width isn't above 0 has none. `size` is width and height in pixels.
 * Points are x, y pairs with y upwards; `origin` is the point of the bitmap's lower left pixel. Mode 1 sets pixels, any
 * other mode clears the same ones. All arithmetic is on whole numbers, and no coordinate is too large. */
#ifndef MCLIB_RASTER_H
#define MCLIB_RASTER_H

#include "mclib/frame/export.h"

/* Rows from here on down don't exist for a fill. */
enum { MCLIB_RASTER_FILL_ROWS = 100024 };

/* Draws the lines between neighbouring points of `count`; the number of lines drawn. A line with an end beyond twice
 * the width or height, to the right or below, is left out with a message, and every 1000th line gives one. The last
 * pixel of a horizontal or vertical line isn't drawn; a sloping line is connected by the sides of its pixels. A
 * horizontal line of more than 8 pixels begins within its row and is less than a row long. */
MCLIB_EXPORT int mclibRaster_drawPoints(const int *points, const int *origin, int count, int byteCount, const int *size,
                                        unsigned char *bitmap, int mode);

/* Fills one closed outline, whose last point must equal the first, by the even-odd rule. A pixel is inside when its
 * left side lies on or right of a left edge and left of the right edge: outlines that share an edge neither overlap nor
 * leave a gap, but that a pixel in which two edges of an outline cross a row may stay empty. Edges that begin above row
 * 0 don't count, and nothing is filled below the first row that no edge crosses, or when memory runs out. */
MCLIB_EXPORT void mclibRaster_fillShape(const int *points, int count, const int *origin, int byteCount, const int *size,
                                        unsigned char *bitmap, int mode);

#endif
