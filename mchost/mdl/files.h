/* Files and paths.
 *
 * A path may be written with `\` or `/`. A drive letter ("c:\temp") stands for the folder that the configuration
 * variable MC_DRIVE_C names, by default drive_c below the user's data folder (XDG_DATA_HOME or ~/.local/share, folder
 * mchost). A path that begins with `/`, or with ":/", is a path of the system. */
#ifndef HOST_MDL_FILES_H
#define HOST_MDL_FILES_H

#include "types.h"

/* ---- streams: as fopen and fclose, on a host path ---- */
MDL_EXPORT FILE *dlmSystem_mdlFopen(const char *name, const char *mode) MDL_NOEXCEPT;
MDL_EXPORT int dlmSystem_mdlFclose(FILE *stream) MDL_NOEXCEPT;

/* ---- text files ---- */
typedef struct MdlTextFile MdlTextFile;
enum { MDL_TEXT_READ = 0, MDL_TEXT_WRITE = 1, MDL_TEXT_APPEND = 2 };
/* Opens a text file; null when it can't be opened. A folder can't be. A UTF-8 byte order mark at its start isn't
 * read. */
MDL_EXPORT MdlTextFile *mdlTextFile_open(const char *name, int mode) MDL_NOEXCEPT;
/* Closes and frees. 0, or the system's error number when what was written couldn't be stored. */
MDL_EXPORT int mdlTextFile_close(MdlTextFile *file) MDL_NOEXCEPT;
/* The next line into `buffer` (`size` bytes, its NUL included), or null at the end of the file or on an error. With
 * `keepNewline` non-zero the line ends in one "\n" whatever ended it in the file (LF, CR LF or the end of the file).
 * A line that is longer than the buffer comes in pieces; only the last piece ends in "\n". A NUL in the file ends the
 * text of its line. */
MDL_EXPORT char *mdlTextFile_getString(char *buffer, int size, MdlTextFile *file, int keepNewline) MDL_NOEXCEPT;
/* Length of the text that the last mdlTextFile_getString gave, its line end included. */
MDL_EXPORT int mdlTextFile_lastLength(const MdlTextFile *file) MDL_NOEXCEPT;
/* Writes the text and, with addNewline non-zero, a line end. 0 or MDL_ERROR. */
MDL_EXPORT int mdlTextFile_putString(const char *text, MdlTextFile *file, int addNewline) MDL_NOEXCEPT;
MDL_EXPORT void mdlTextFile_rewind(MdlTextFile *file) MDL_NOEXCEPT;
/* 1 when both are open on the same file of the system, whatever its name was. */
MDL_EXPORT int mdlTextFile_isSame(const MdlTextFile *file, const MdlTextFile *other) MDL_NOEXCEPT;
MDL_EXPORT int mdlTextFile_eof(const MdlTextFile *file) MDL_NOEXCEPT;   /* 1 when a read has met the end */
/* The system's error number of a failed read, else 0 */
MDL_EXPORT int mdlTextFile_error(const MdlTextFile *file) MDL_NOEXCEPT;

/* ---- names ---- */
/* Finds a file in the folders of the configuration variable `searchVariable` (divided by `;`), then in the current one;
 * a name with a folder in it ("./a.cel") is first tried as it stands. Each place is also tried with `defaultExtension`
 * when the name has none. Both may be null. Letter case doesn't count where no file has the name as it stands. A null
 * name is the first of what the variable names that is a file itself. The full name of a file that was found goes to
 * `result` (256 bytes, may be null). 0 for a file found. */
MDL_EXPORT int mdlFile_find(char *result, const char *name, const char *searchVariable,
                            const char *defaultExtension) MDL_NOEXCEPT;
/* Takes a name apart: device ("c:" or empty), directory (with its last separator), name, extension (without its dot).
 * Each part may be null; each buffer holds 256 bytes. */
MDL_EXPORT int mdlFile_parseName(const char *path, char *device, char *directory, char *name,
                                 char *extension) MDL_NOEXCEPT;
/* Puts a name together from the four parts; null or empty parts are left out. `path` holds 256 bytes; MDL_ERROR and an
 * empty path when the result is longer. */
MDL_EXPORT int mdlFile_buildName(char *path, const char *device, const char *directory, const char *name,
                                 const char *extension) MDL_NOEXCEPT;
/* Shortens a name in place until it fits in `size` bytes, its NUL included: folders in its middle become "...", so that
 * its device and the name itself stay ("c:\...\plots\sheet.ps"). A name that is too long even so keeps its end. A name
 * that fits isn't touched. */
MDL_EXPORT int mdlFile_abbreviateName(char *name, int size) MDL_NOEXCEPT;
/* The path of the system (UTF-8) that a name stands for, for calls other than the host's. MDL_ERROR, and an empty path,
 * when it doesn't fit in `size` bytes. */
MDL_EXPORT int mdlFile_getSystemPath(char *path, int size, const char *name) MDL_NOEXCEPT;
/* The same to be shown to people: in Windows-1252 when that has all its characters. */
MDL_EXPORT int mdlFile_getSystemName(char *shown, int size, const char *name) MDL_NOEXCEPT;

/* ---- folders ---- */
enum { MDL_ATTRIBUTE_READ_ONLY = 1, MDL_ATTRIBUTE_DIRECTORY = 128 };
/* What is known of a file or folder, as bits. 0, or MDL_ERROR when there is nothing of that name. */
MDL_EXPORT int mdlFile_getFileAttributes(int32_t *attributesP, const char *name) MDL_NOEXCEPT;
/* The entries that match `pattern` (a path whose last part may have * and ?, and be several patterns divided by `;`) as
 * a new string list, in order of name.
 * With MDL_ATTRIBUTE_DIRECTORY only folders, else only files. 0, or MDL_ERROR with no list when the folder can't be
 * read. An entry that is named without a wildcard gives a list of one, or an empty one. */
MDL_EXPORT int mdlFileList_get(StringList **listP, const char *pattern, int attributes) MDL_NOEXCEPT;

/* ---- files that aren't whole yet ---- */
/* A folder of this process alone, for files on their way to a place beside it, which they get when they are whole. What
 * is left in it goes with it, also when a signal ends the process; what a killed process left is cleared away when the
 * next one is made in the same place. */
typedef struct MdlWorkFolder MdlWorkFolder;
/* Makes one in the folder where the file `beside` is to be. 0, or the system's error number. The caller removes it. */
MDL_EXPORT int mdlWorkFolder_make(MdlWorkFolder **folderP, const char *beside) MDL_NOEXCEPT;
/* Its name, valid as long as the folder. */
MDL_EXPORT const char *mdlWorkFolder_name(const MdlWorkFolder *folder) MDL_NOEXCEPT;
/* Gives the files of `names` their places: each is the file of the folder with its last part, and takes the place and
 * the permissions of what has the name. 0 when all of them are in place; else the system's error number, with the index
 * of the one that can't be in *failedP and none of them in place (on a file system without links, those before it). */
MDL_EXPORT int mdlWorkFolder_place(MdlWorkFolder *folder, const char *const *names, int32_t count,
                                   int32_t *failedP) MDL_NOEXCEPT;
MDL_EXPORT void mdlWorkFolder_remove(MdlWorkFolder *folder) MDL_NOEXCEPT; /* null does nothing */

/* ---- copies ---- */
/* Copies a file. A file of the destination's name is replaced as a whole or not at all, and keeps its permissions; a
 * device file is written to. A folder is no destination.
 *
 * The destination may be a port, "LPT1" to "LPT9" (letter case doesn't count, and a ":" may follow), or a printer,
 * "\\server\printer". The copy is then a print job:
 *  - The configuration variable MC_SPOOL names a spool folder. When it has a folder "LPT1", or "server/printer" (letter
 *    case doesn't count), the copy is put there, under the source's name or with a number behind it: "sheet-2.ps".
 *  - Else the copy goes to a queue of the print system, with the programs lpstat and lp. For a port that is the queue
 *    that the configuration variable MC_LPT1 (to MC_LPT9) names, or a queue called LPT1. For a printer it is the queue
 *    of that name, or with that name on its server, whose device lies on that server.
 * 0, or the system's error number: ENXIO when there is no such printer, EIO when the print system refuses the job,
 * EEXIST when both are the same file, EISDIR for a folder, ENOENT when there is no such file or folder, nor any other
 * place on a server. */
MDL_EXPORT int mdlFile_copy(const char *destination, const char *source) MDL_NOEXCEPT;

/* ---- work files: a design file opened beside the active one ---- */
/* Opens a design file to look at it: as it is now in this session when that is writing to it, else as it was stored.
 * The model in modelP. 0 or MDL_ERROR. Each opening is closed by itself. */
MDL_EXPORT int mdlWorkDgn_openFile(ModelRef **modelP, const char *name) MDL_NOEXCEPT;
/* The same to change it too: what is added to its model or rewritten there (mdlElmdscr_add, mdlElmdscr_rewrite of its
 * descriptors) is stored when the running command is finished, and when the file is closed. MDL_ERROR, with a line in
 * the message centre, also when it can't be written or is open to write already, here or in another session. */
MDL_EXPORT int mdlWorkDgn_openFileToWrite(ModelRef **modelP, const char *name) MDL_NOEXCEPT;
/* MDL_ERROR for a model that isn't open or, with a line in the message centre, when what was changed can't be stored;
 * it is closed in any case. Closing the active file in this way leaves it open. */
MDL_EXPORT int mdlWorkDgn_closeFile(ModelRef *model) MDL_NOEXCEPT;
/* The same for a cell library: its model holds the cells, each a header with its components, in the library's own units
 * and on its own levels. Closed in the same way. */
MDL_EXPORT int mdlWorkDgn_openCellLibrary(ModelRef **modelP, const char *name) MDL_NOEXCEPT;

/* ---- kinds of files ---- */
enum { MDL_FILE_OTHER = 0, MDL_FILE_DESIGN = 1, MDL_FILE_CELL_LIBRARY = 2, MDL_FILE_RESOURCE = 3 };
/* What kind of file it is, by its first bytes and not by its suffix; a damaged file, or one of a newer make, has its
 * kind too. 0; MDL_ERROR, with a line in the message centre, when there is no file of that name or it can't be read. */
MDL_EXPORT int mdlFile_getKind(int32_t *kindP, const char *name) MDL_NOEXCEPT;

/* The user's preference file of the host, which MS_USERPREF names (when it isn't defined: user.rsc in the user's folder
 * for data): a resource file that is made, with its folder, when it isn't there. Mode 0 reading, 1 writing. */
MDL_EXPORT int mdlDialog_userPrefFileOpen(RscHandle *handleP, int mode) MDL_NOEXCEPT;

#endif
