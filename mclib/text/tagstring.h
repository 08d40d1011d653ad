/* Tag strings: a small text expression that builds one text from named values.
 *
 * Elements, joined with + : "text" (the byte 0xA7 stands for a double quote), the name of a tag, and the functions
 *   substr(expression, from, to)              characters from position `from` up to but not including `to`
 *   strupr(expression)                        upper case
 *   extstr(expression, width, 'c', start|end) brought to a width; with "end" the fill characters come last
 * Positions count from 0 and are whole numbers of 32 bits with + - * / and brackets (* and / from right to left), and
 *   strlen(expression)   strchr(expression, 'c', n)   strrchr(expression, 'c', n)
 * the last two with the position of the n-th such character from the start or from the end. White space doesn't count
 * where a position stands, not even between quotes. */
#ifndef MCLIB_TAGSTRING_H
#define MCLIB_TAGSTRING_H

#include "mclib/frame/export.h"

/* One named value. A name or value that fills its array needs no NUL. */
typedef struct TagEntry {
    char name[33]; /* letter case doesn't count; upper-cased in place when a name is looked up */
    char value[2001];
} TagEntry;

/* Characters of the text of one expression, within another one or by itself: while it is built, and of its result.
 * What is longer is cut. And levels within each other: an expression, a position, a bracket, a further factor. */
enum { MCLIB_TAG_BUILT_LENGTH = 1023, MCLIB_TAG_RESULT_LENGTH = 511, MCLIB_TAG_NESTING = 400 };

/* The text of `expression` in a new block, to be freed with dlmSystem_mdlFree. An unknown tag is an empty text, and so
 * is a piece that can't be worked out; a position that can't is 0; the console tells, also when the whole text is cut.
 * Null when an element is missing, a bracket or quote isn't closed, expressions are nested too deeply, or memory runs
 * out. A null expression counts as empty. */
MCLIB_EXPORT char *mclibParse_tagString(const char *expression, TagEntry *tags, int tagCount);

#endif
