/* Searching the texts of a drawing by pattern.
 *
 * A text is held against a pattern by count of errors: 0 fits, a small number lies near. A pattern is a sequence of
 * elements:
 *   ?              any one character
 *   #              one digit
 *   @              one letter
 *   &              one letter or digit
 *   _              one blank, and only a blank
 *   section sign   (byte 0xA7) one double quote
 *   currency sign  (byte 0xA4) one character of code 0x80 and above
 *   [abc]          one of these characters; no ranges. An empty set matches nothing, nor does one that isn't closed,
 *                  which reaches to the end of the pattern
 *   *              any run of at most 200 characters
 *   *:n            any run of at most n characters, n of one to three digits. Without a digit the colon stands for
 *                  itself
 *   |x             the character x, whatever it is; a bar at the end of the pattern stands for itself
 * Any other character stands for itself. Letters and digits are those of Windows-1252. An error is a character of the
 * text that the pattern doesn't have, or an element that is missing at the end of the text; one that is skipped further
 * in front costs nothing. A star that has been passed is tried again further along only while the pattern hasn't come
 * to its end: "*A" lies 1 from "AA". */
#ifndef MCLIB_TEXT_SEARCH_H
#define MCLIB_TEXT_SEARCH_H

#include "mchost/mdl/bitmask.h"
#include "mclib/frame/export.h"

enum {
    MCLIB_SEARCH_TEXT_SIZE = 2000,   /* bytes of a buffer for a text, with its NUL */
    MCLIB_SPEC_PATTERN_SIZE = 200    /* of one in a search description; without a NUL when it fills its array */
};

/* Bits of `flags` */
enum {
    SEARCH_CASE_SENSITIVE = 1, /* letters compare exactly; otherwise case doesn't count */
    SEARCH_USE_RANGE = 2,      /* only in the box from `low` to `high` */
    SEARCH_SCALE_REGIONS = 4,  /* no effect on a search of texts */
    SEARCH_IGNORE_BLANKS = 8   /* blanks of a text don't count, those of the pattern do; a text of more than 1,000
                                  characters is told on the console and doesn't fit */
};

/* The texts to be found. Negative values of weight, style and colour take any; a negative height is no limit. */
typedef struct SearchTextSpec {
    char pattern[MCLIB_SPEC_PATTERN_SIZE];
    uint32_t flags;
    int32_t weight;
    int32_t style;
    int32_t color;
    double minHeight;            /* master units */
    double maxHeight;
    const MdlBitMask *levelMask; /* bit `level - 1` for each level; null takes all levels */
    int32_t maxErrors;           /* of a near hit; 0 means exact hits only */
    Point3d low;                 /* opposite corners, in master units, in any order; z doesn't count. A text is found
                                    when its range meets the box, whose corners are cut to whole UOR */
    Point3d high;
} SearchTextSpec;

/* Called for a hit. *stop is 0; a value other than 0 ends the search. `element` lasts as long as the call; `errors` is
 * 0 for the exact function; `spec` and `arg` are those given to the search. The current transform is that of master
 * units. It may delete and change elements; those that it adds aren't found. Changes of *spec have no effect on the
 * search that runs. */
typedef void (*MclibSearchTextHit)(int *stop, MSElementBuffer *element, FilePos position, int32_t errors,
                                   SearchTextSpec *spec, void *arg);

/* The errors of a text against a pattern, 0 for a match and 1 or more else; case doesn't count, blanks do. `text` is a
 * buffer of MCLIB_SEARCH_TEXT_SIZE bytes, in which a longer text is cut. Null is an empty text or pattern. Needs no
 * session. */
MCLIB_EXPORT int mclibSearch_checkString(char *text, const char *pattern);

/* The errors of a text against a pattern, up to `maxErrors`, and more than that for one that doesn't fit. Of `flags`
 * SEARCH_CASE_SENSITIVE and SEARCH_IGNORE_BLANKS count. `text` isn't changed; of a longer one
 * MCLIB_SEARCH_TEXT_SIZE - 1 characters are looked at. Null is an empty text or pattern. Needs no session. */
MCLIB_EXPORT int mclibSearch_compareString(const char *text, const char *pattern, uint32_t flags, int32_t maxErrors);

/* Results of mclibSearch_replaceString. */
enum {
    MCLIB_REPLACE_NO_FIT = 1,   /* the text doesn't fit the pattern */
    MCLIB_REPLACE_BAD_FORM = 2, /* the replacement has more stars or question marks than the pattern can fill */
    MCLIB_REPLACE_TOO_LONG = 3  /* what comes of it doesn't fit in `out`, or the pattern has 2,000 characters or more */
};
/* Puts other words in place of a text that fits a pattern without an error. In the replacement
 *   *   stands for what the next star of the pattern took
 *   ?   stands for what the next element of it took that fits several characters: ? # @ & currency sign [abc]
 *   |x  is the character x
 * and each other character is itself: "ROAD-###*" and "STREET ???*" make "STREET 017 B" of "Road-017 B". The new text
 * goes to `out` (`size` bytes, its NUL included). Of `flags` SEARCH_CASE_SENSITIVE counts. Without a text the
 * replacement alone is looked at: MCLIB_SUCCESS or MCLIB_REPLACE_BAD_FORM. `out` is empty behind another result than
 * MCLIB_SUCCESS. Needs no session. */
MCLIB_EXPORT int mclibSearch_replaceString(char *out, int32_t size, const char *text, const char *pattern,
                                           const char *replacement, uint32_t flags);

/* Scans the text elements of the active model, in order of the file, and calls `exactFunction` for each one that fits,
 * and `nearFunction` for each one with 1 to `maxErrors` errors; either may be null. Elements that can't be read as
 * texts are told on the console and skipped. Lines of text nodes, which are no elements by themselves, aren't found. 0,
 * also when nothing could be searched, which the console tells. */
MCLIB_EXPORT int mclibSearch_Tekst(SearchTextSpec *spec, MclibSearchTextHit exactFunction, void *exactArg,
                                   MclibSearchTextHit nearFunction, void *nearArg);

#endif
