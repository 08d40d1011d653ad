/* The Fii reader: tokens from a text file, one logical line at a time.
 *
 * The caller owns the McFii; mclibFii_open fills it, mclibFii_close frees its line. The reader sits on the file layer,
 * so comments, continued lines and includes are dealt with before a token is read. What a token is, is decided by the
 * call that reads it: `delimiters` is a string of the characters that end a token, and a token is taken with the whole
 * run of delimiters behind it. Separators are the reader's own characters between tokens; calls skip them first, unless
 * pack mode is on or their comment says otherwise. A copy of a token holds at most 255 characters; what is longer is
 * passed all the same. A number or line that can't be read leaves its code in `error`. Numbers have "." in every
 * locale; hexadecimal, infinite and undefined values are no numbers. */
#ifndef MCLIB_TEXT_FII_H
#define MCLIB_TEXT_FII_H

#include "mclib/frame/export.h"
#include "mclib/text/file.h"

enum {
    FII_NONE = 0,
    FII_END_OF_FILE = -1,
    FII_NOT_WHOLE = 11,   /* the token isn't a whole number of 32 bits */
    FII_NOT_NUMBER = 12,  /* the token isn't a number */
    FII_NOT_LETTER = 13,  /* the character isn't a letter */
    FII_READ_FAILED = 14  /* the file layer reported an error */
};

typedef struct McFii {
    McFile *file;
    int32_t lineSize;      /* most characters of a logical line + 1; default 1024 */
    char *line;            /* lineSize + 1 bytes */
    char *position;        /* where in `line` the next token is read */
    char separators[27];   /* at most 26; default space, line feed, tab */
    int32_t pack;          /* 1: blanks outside double quotes are removed from a line when it is read */
    int32_t caseSensitive; /* 1: keyword tests look at letter case */
    int32_t longValue;     /* the last whole number */
    double doubleValue;    /* the last number */
    int32_t error;         /* FII_... */
    int32_t lineNumber;    /* physical lines read so far */
    char word[256];        /* the token in hand */
} McFii;

/* ---- the reader ---- */

/* Continuation `\`, comment `#`, file buffer 512, line size 1024 and the default separators. */
MCLIB_EXPORT int mclibFii_open(McFii *f, const char *name, const char *mode);
/* As mclibFile_openExtended, with the reader's own line size and separators (null: the default). MCLIB_ERROR when the
 * file can't be opened, for more than 26 separators, or without memory; f may then be closed, but needn't be. */
MCLIB_EXPORT int mclibFii_openExtended(McFii *f, const char *name, const char *mode, const char *continuation,
                                       const char *comment, int fileBufferSize, int lineSize, const char *separators);
/* Closes the file and frees the line; tokens read afterwards see an empty line. */
MCLIB_EXPORT void mclibFii_close(McFii *f);
/* Back to the start of the file. The line, values, error and line number are cleared; a line must be read before tokens
 * are. */
MCLIB_EXPORT void mclibFii_rewind(McFii *f);
/* Pack mode. Which calls skip separators changes at once; blanks are removed from the lines read from now on. */
MCLIB_EXPORT void mclibFii_packOn(McFii *f);
MCLIB_EXPORT void mclibFii_packOff(McFii *f);
MCLIB_EXPORT void mclibFii_caseSensitiveOn(McFii *f);
MCLIB_EXPORT void mclibFii_caseSensitiveOff(McFii *f);
/* Reads the next logical line and clears `error`. MCLIB_ERROR at the end of the file and on an error, which `error`
 * tells apart; the line is then empty. */
MCLIB_EXPORT int mclibFii_readNewLine(McFii *f);
/* 1 at the end of the line, skipped separators counting as nothing. */
MCLIB_EXPORT int mclibFii_eol(McFii *f);
MCLIB_EXPORT int mclibFii_eof(const McFii *f); /* 1 once a line couldn't be read because the file had ended */

/* ---- numbers: separators aren't skipped, but leading blanks belong to a number ---- */

/* Takes the token when all of it is a number, and stores its value. An empty token is 0. MCLIB_ERROR otherwise: `error`
 * tells, and the position stays. */
MCLIB_EXPORT int mclibFii_isLong(McFii *f, const char *delimiters);
MCLIB_EXPORT int mclibFii_isDouble(McFii *f, const char *delimiters);
MCLIB_EXPORT int32_t mclibFii_getLong(const McFii *f);
MCLIB_EXPORT double *mclibFii_getDoubleP(McFii *f); /* of f itself: valid until its next number */
/* The whole number at the position. 0 too when the token isn't one: `error` is then 11, and the position stays. */
MCLIB_EXPORT int32_t mclibFii_readLong(McFii *f, const char *delimiters);
/* The number at the position, valid until f's next number; a 0.0 of the library when the token isn't one. */
MCLIB_EXPORT double *mclibFii_readDoubleP(McFii *f, const char *delimiters);
/* Reads arrays from the position: groups of int count, int type and pointers, ended by a negative count. Type 1 is one
 * double *, type 2 one int *, type 3 two double * that get values in turn. Each number is passed by the run of
 * characters that a number may have (0123456789-+, for doubles also . e E) and nothing else is skipped, so what
 * stands between numbers must be passed by other calls. A place without a number gives 0, a whole number beyond 32 bits
 * the nearest limit. MCLIB_ERROR for an unknown type, with a line on the console. */
MCLIB_EXPORT int mclibFii_readNumeric(McFii *f, int32_t reserved, ...);

/* ---- texts: dest holds 256 bytes ---- */

/* The next character, which is passed. A space, and no move, at the end of the line. `error` becomes 13 for what isn't
 * a letter of Windows-1252. */
MCLIB_EXPORT char mclibFii_readChar(McFii *f);
/* The token up to the next separator. */
MCLIB_EXPORT char *mclibFii_readText(McFii *f, char *dest);
/* A text enclosed by `quote`, such as "\"". Null with an empty dest when `quote` doesn't stand at the position. */
MCLIB_EXPORT char *mclibFii_readString(McFii *f, const char *quote, char *dest);
/* The token up to the next delimiter; separators behind the delimiters are skipped in any mode. */
MCLIB_EXPORT char *mclibFii_readSubString(McFii *f, const char *delimiters, char *dest);
/* The rest of the line in `dest` (lineSize bytes), behind skipped separators. The position isn't moved over it. */
MCLIB_EXPORT int mclibFii_getLine(McFii *f, char *dest);

/* ---- keywords ---- */

/* MCLIB_SUCCESS when `text` stands at the position. Separators before it are skipped in any mode, once at each place,
 * and stay skipped. With case mode off the letters of Windows-1252 are compared without case; `text` must then be
 * shorter than 256 characters. `error` isn't touched. */
MCLIB_EXPORT int mclibFii_seekText(McFii *f, const char *text);
/* The same; moves past `text`. */
MCLIB_EXPORT int mclibFii_isText(McFii *f, const char *text);

/* ---- error reports ---- */

/* Tells an error and clears it: its code, the line number, the column from 1, and the first 255 characters of the line
 * (text: 256 bytes). MCLIB_ERROR, and nothing touched, when there is none. Each pointer may be null. */
MCLIB_EXPORT int mclibFii_reportErr(McFii *f, int *code, int *lineNumber, int *column, char *text);
/* The code, and mclibFii_makeErr's text; the error stays. MCLIB_ERROR when there is none. */
MCLIB_EXPORT int mclibFii_formatErr(const McFii *f, int *code, char *text);
/* "(line number) line" in `text` (lineSize + 15 bytes). */
MCLIB_EXPORT char *mclibFii_makeErr(const McFii *f, char *text);
/* The line and, below it, a caret under the position. Null with an empty text when it doesn't fit textSize bytes. */
MCLIB_EXPORT char *mclibFii_makeErr2(const McFii *f, char *text, int textSize);

/* Without a function: prints a line on the console and gives its second argument. */
MCLIB_EXPORT char *mclibFii_shrinkString(char *text, char *result);

#endif
