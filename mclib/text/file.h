/* The file layer: text files read line by line, with comments, continued lines and includes.
 *
 * A line whose first character is the comment character is a comment; a line whose last visible character is the
 * continuation character goes on with the next one. `%include NAME` at the start of a line reads another file in its
 * place, `%if exist include NAME` does so when it is there. A name may hold configuration variables, loses its blanks,
 * and is looked for as it stands and then beside the file that includes it. A file that is open in the chain of
 * includes counts as one that can't be opened, so none includes itself. A UTF-8 byte order mark at the start of a file
 * is no text. The caller owns a McFile until mclibFile_close. Failures show a message from the error list. */
#ifndef MCLIB_TEXT_FILE_H
#define MCLIB_TEXT_FILE_H

#include "mclib/frame/export.h"
#include "mchost/mdl/files.h"

typedef struct McFile {
    MdlTextFile *stream;
    int32_t isInclude;     /* 1: opened by an include line, 0: by the caller */
    char continuationChar; /* default '\\' */
    char commentChar;      /* default '#' */
    int32_t bufferSize;    /* bytes of `buffer`; default 512 */
    char *buffer;          /* the line in hand; the top file's, shared by the files that it includes */
    char name[256];        /* as opened */
    struct McFile *child;  /* the include that is being read, or null */
    struct McFile *parent; /* the file with the include line, or null */
    int32_t inLine;        /* 1: the piece that was read last didn't end its line */
    int32_t lineNumber;    /* physical lines begun in this file itself */
    int32_t lostInclude;   /* top file: its line at which an include, there or below, couldn't be opened first; or 0 */
    struct McFile *last;   /* top file: the end of the chain, which is read; itself without an include */
} McFile;

/* Opens a file with the default characters and buffer. mode is exactly "w", "a" or "r". Null, with a message, for
 * another mode (null too) or a file that can't be opened. */
MCLIB_EXPORT McFile *mclibFile_open(const char *name, const char *mode);
/* The first characters of `continuation` and `comment` count; an empty string or null stands for none. The buffer
 * bounds what mclibFile_fgets gives in one piece; it must hold at least 2 bytes. */
MCLIB_EXPORT McFile *mclibFile_openExtended(const char *name, const char *mode, const char *continuation,
                                            const char *comment, int bufferSize);
/* The same as mclibFile_open. */
MCLIB_EXPORT McFile *mclibFile_openHWSpesific(const char *name, const char *mode);
/* Closes the file and the includes that are open below it, and frees all of them. 0, or the host's status with a
 * message when something couldn't be stored. */
MCLIB_EXPORT int mclibFile_close(McFile *f);
/* Back to the first line of f itself. */
MCLIB_EXPORT void mclibFile_rewind(McFile *f);

/* The next physical line with its line end, includes followed: f's own buffer, valid until the next read. `buf` and
 * `size` aren't used. A line longer than the buffer comes in pieces. Null at the end of the top file or on an error. An
 * include line that can't be followed is given as a comment. */
MCLIB_EXPORT char *mclibFile_fgets(char *buf, int size, McFile *f);
/* The next logical line in `dest` (maxLength bytes): comments and blank lines skipped, continued lines joined by a
 * space, trailing blanks removed. The number of physical lines that it took, skipped ones counted; 0 at the end of the
 * file; -1 with a message when a read fails or the line doesn't fit, and the next call then goes on with the next line.
 * A line of blanks with a tab among them is an empty logical line. At the end of the file `dest` holds what a continued
 * last line left. */
MCLIB_EXPORT int mclibFile_read(char *dest, McFile *f, int maxLength);
/* The same, each physical line cut at its first `;`. `comment` (bufferSize bytes) gets what followed the `;` of the
 * last physical line; it is empty when there was none, or when the line began with it. */
MCLIB_EXPORT int mclibFile_read2(char *dest, char *comment, McFile *f, int maxLength);

MCLIB_EXPORT int mclibFile_directoryExists(const char *path); /* 1 or 0 */
/* The host's read-only flag of a design file; 0 when it can't be opened. */
MCLIB_EXPORT int mclibFile_isReadOnly(const char *name);
MCLIB_EXPORT int mclibFile_delete(const char *name); /* 1, or 0 when it can't be deleted */
/* The short form of a path; empty when there is no such file. The next call overwrites it. */
MCLIB_EXPORT char *mclibFile_GetShortPathName(const char *name);

#endif
