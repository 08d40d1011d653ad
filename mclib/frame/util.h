/* Small services: text pieces, units and angles, date and time, progress, levels, the host's edition, web and help. */
#ifndef MCLIB_UTIL_H
#define MCLIB_UTIL_H

#include "mclib/frame/export.h"

/* ---- text ---- */

/* The tokens of `text` between runs of `delimiters`, as an array of copies that mclibString_freeTokenList gives back;
 * their number in *count. `text` is cut in place. Null and 0 when there is no token. */
MCLIB_EXPORT char **mclibString_tokenize(int *count, char *text, const char *delimiters);
/* The same on a copy: `text` stays. */
MCLIB_EXPORT char **mclibString_tokenize2(int *count, const char *text, const char *delimiters);
/* count 0: nothing. Below 0: frees the array alone. Above 0: frees the tokens and the array. */
MCLIB_EXPORT void mclibString_freeTokenList(char **list, int count);
/* Removes all spaces and tabs in place; gives `text`. */
MCLIB_EXPORT char *mclibUtil_removeSpaces(char *text);
/* Cuts `text` at its first line break: a line feed, or \n or \N written out. 1 when text followed it, which is then in
 * `rest`; else 0, and `rest` is left alone. */
MCLIB_EXPORT int mclibUtil_splitText(char *text, char *rest);
/* Windows-1252 to wide text and back, at most 511 characters, each in a buffer that the next call overwrites. */
MCLIB_EXPORT wchar_t *mclibUtil_convertToUnicodeText(const char *text);
MCLIB_EXPORT char *mclibUtil_convertToMultibyteText(const wchar_t *text);

/* ---- angles and units ---- */

/* 1 for an angle (radians) whose text would stand upside down: 90 degrees is 0, 270 degrees is 1. */
MCLIB_EXPORT int mclibUtil_angleIn2Or3Quadrant(double angle);
/* Master units to UOR of the active model and back, in a value of the current application that the next call
 * overwrites. */
MCLIB_EXPORT double *mclibUtil_masterToUORP(double value);
MCLIB_EXPORT double *mclibUtil_UORToMasterP(double value);
/* Decimals of the coordinate readout; `fallback` for the long forms when it isn't negative. */
MCLIB_EXPORT int32_t mclibUtil_getCoordinateReadoutAccuracy(int fallback);
/* Brings the decimals of a text item's format ("...%2f") in line with the coordinate readout. */
MCLIB_EXPORT void mclibUtil_setActiveDecimalNumberInTextItem(MdlItem *item);

/* ---- time and progress ---- */

/* Local date and time; every pointer may be null. Month and day count from 1, the week from Sunday, 0. Both names lie
 * in the one buffer of mclibUtil_getLanguageText, so ask for one of them at a time. */
MCLIB_EXPORT void mclibUtil_getDateAndTime(int *year, int *month, int *day, int *hour, int *minute, int *second,
                                           int *weekDay, char **weekDayName, char **monthName);
/* A turning mark in the status field: init once, update as often as wanted; it moves at most every 31 ticks. */
MCLIB_EXPORT void mclibUtil_initHourGlass(void);
MCLIB_EXPORT void mclibUtil_updateHourGlass(void);

/* ---- host edition, work mode, levels, preferences ---- */

/* 1, with a notice, in the edition that defines _MSDRAFT. */
MCLIB_EXPORT int mclibUtil_runningPowerDraft(void);
/* 1 in editions without external programs (_MSDRAFT, _MSPOWERSCOPE or _PRJREVIEW defined). */
MCLIB_EXPORT int mclibUtil_mdlExternalNotAvailable(void);
/* Brings the variable in line with the host's work mode ("DGN", "DWG", "V7"). 1 when it was redefined; 0 when it was
 * right already or isn't defined. */
MCLIB_EXPORT int mclibUtil_setWorkmode(const char *variableName);
/* Id of the level of that name, which is made when neither the active model nor the level library has it; 0 on failure.
 * While no design file is open the session's own levels take the model's place. */
MCLIB_EXPORT LevelId mclibUtil_levelIdFromName(const wchar_t *name);
/* rewriteTable: store a new level at once. setSymbology: give a new level symbology: word1 colour, word2 weight, word3
 * line style. */
MCLIB_EXPORT LevelId mclibUtil_levelIdFromNameExtended(const wchar_t *name, int rewriteTable, int setSymbology,
                                                       uint32_t word1, uint32_t word2, uint32_t word3);
/* The active graphic group, which is raised by one. */
MCLIB_EXPORT int32_t mclibUtil_newGraphicGroup(void);
/* Opens the host's user preference file (mode 0 reading, 1 writing); its resource handle in *handleP. */
MCLIB_EXPORT int mclibUtil_openUserPrefFile(int32_t *handleP, int mode);

/* ---- web and help ---- */

/* Shows a file or an address in the browser; a failed browser shows a message. MCLIB_SUCCESS or MCLIB_ERROR. */
MCLIB_EXPORT int mclibWeb_openFile(const char *path);
MCLIB_EXPORT int mclibWeb_openUrl(const char *url);
/* The application's manual in the language in use, below MC_LOCAL or MC_DIR; MCLIB_ERROR, and nothing happens, when it
 * isn't there. */
MCLIB_EXPORT int mclibWeb_openApplHelp(void);
MCLIB_EXPORT int mclibWeb_openApplChmHelp(void);

#endif
