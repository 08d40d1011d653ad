/* Measuring text as an attribute would make it. */
#ifndef MCLIB_TEXTSIZE_H
#define MCLIB_TEXTSIZE_H

#include "mclib/frame/export.h"

/* Builds a text of one or more lines (divided as mclibUtil_splitText does; 512 characters at most, what is longer is
 * cut) line by line in *dgnBufP, and gives in units of the current transform the greatest width, the height of the last
 * line, and the height of all: (lines - 1) * lineSpacing + lines * height, given only together with lineHeightP. justP
 * gets the justification of the last line. Each pointer may be null. A line that can't be built, as with an unknown
 * attribute, counts with width and height 0. */
MCLIB_EXPORT void mclibUtil_extractTextSize(const char *text, double scale, int attrId, double lineSpacing,
                                            double *widthP, double *lineHeightP, double *totalHeightP, void *justP);

#endif
