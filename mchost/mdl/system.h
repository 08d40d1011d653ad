/* The running system: applications and calls into them, memory, configuration variables, console and messages, ticks
 * and timers, active parameters.
 *
 * All of it works without a session too (a process that only loads the library): there is then no application, memory
 * is plain memory, configuration variables are the process environment and what was defined, and console lines go to
 * standard error. What such calls leave behind (variables, parameters, open resource files) lasts until a session
 * begins or the process ends; a session begins with nothing of it, nor of the session before. */
#ifndef HOST_MDL_SYSTEM_H
#define HOST_MDL_SYSTEM_H

#include <stdarg.h>

#include "types.h"

/* ---- applications ---- */

/* The number of the running session, above 0 and never given twice in a process; 0 when there is none. What a module
 * kept of a session with another number is of no use any more. */
MDL_EXPORT int32_t mdlSystem_getSessionNumber(void) MDL_NOEXCEPT;
/* The application on whose behalf the code runs; null when there is none. */
MDL_EXPORT MdlDesc *mdlSystem_getCurrMdlDesc(void) MDL_NOEXCEPT;
/* The process number of an application, above 0 and never given twice in a session; 0 for null. */
MDL_EXPORT int32_t mdlSystem_getProcessNumberFromMdlDesc(MdlDesc *desc) MDL_NOEXCEPT;
/* The application with that process number, or null once it has ended. */
MDL_EXPORT MdlDesc *mdlSystem_getMdlDescFromProcessNumber(int32_t processNumber) MDL_NOEXCEPT;
/* The running application of that name (letter case doesn't count), or null. */
MDL_EXPORT MdlDesc *mdlSystem_findMdlDesc(const char *taskName) MDL_NOEXCEPT;
/* Loads the program `program` (found along MS_MDL) as the task `taskName` and runs its main function with
 * argv[1] = `argument`, or "USER" when that is null. 0, or MDL_ERROR when it can't be found or loaded. */
MDL_EXPORT int mdlSystem_loadMdlProgram(const char *program, const char *taskName, const char *argument) MDL_NOEXCEPT;
/* What an application is for, in one line of UTF-8 that `mchost` lists beside its name. At file level:
 * MDL_DESCRIPTION("lists of what a job needs") */
#define MDL_DESCRIPTION(text)                      \
    MDL_EXPORT const char mdlDescription[];        \
    const char mdlDescription[] = text
/* Ends the current application when control is back in the host. The first `errorCode` that isn't 0 is the exit status
 * of the session, as is that of a main function: mchost ends with 2 (a wrong call) for 2, and with 1 for any other.
 * `unload` non-zero removes it from memory. Returns to the caller. */
MDL_EXPORT void mdlSystem_exit(int errorCode, int unload) MDL_NOEXCEPT;
/* Notes that something that was asked for wasn't done, which has been told: a job that no printer took, an answer that
 * can't be followed. A run that nobody attends then ends with the exit status 1, unless it ends with another one that
 * isn't 0; where somebody sits at the terminal, who sees what is told and may do it again, it has no effect. */
MDL_EXPORT void mdlSystem_noteFailure(void) MDL_NOEXCEPT;
/* 1 when a failure has been noted: files that are still on their way to their names aren't whole then. Else 0. */
MDL_EXPORT int mdlSystem_failureNoted(void) MDL_NOEXCEPT;

/* ---- calls into an application ---- */

/* Calls `function` in the context of the application `desc`: desc is the current application during the call, and the
 * one before is current again afterwards. `signature` has a letter for each argument that follows: P pointer, I 32-bit
 * integer, D double; empty for none, at most 16. Gives the function's 32-bit result, which means nothing for a function
 * without one, or MDL_ERROR for a bad signature, a null function or an application that has ended. A null desc keeps
 * the current application. */
MDL_EXPORT int32_t dlmSystem_callAnyFunction(const char *signature, MdlDesc *desc, void *function, ...) MDL_NOEXCEPT;
/* The same, for a function that is known to lie in the application itself. */
MDL_EXPORT int32_t dlmSystem_callMdlFunction(const char *signature, MdlDesc *desc, void *function, ...) MDL_NOEXCEPT;

/* Registers a function of the current application for a kind of event; null takes it back. One function for each
 * application and kind. Kind 1: new design file, void f(char *fileName, int state), called with state 0 before the
 * open file is closed and with state 1 when the new one is open. Kind 2: the application ends, void f(void), while it
 * is still the current one. */
enum { MDL_FUNCTION_NEW_DESIGN_FILE = 1, MDL_FUNCTION_END = 2 };
MDL_EXPORT int mdlSystem_setFunction(int kind, void *function) MDL_NOEXCEPT;
/* Calls `function` (void f(int32_t id)) in the context of the current application once, after `ticks` ticks.
 * Gives the timer's id in idP. MDL_ERROR without a current application. Less than one tick counts as one. */
MDL_EXPORT int mdlSystem_setTimerFunction(int32_t *idP, int32_t ticks, void *function) MDL_NOEXCEPT;
MDL_EXPORT int mdlSystem_cancelTimer(int32_t id) MDL_NOEXCEPT;
/* Ticks since the session began: 60 a second. */
MDL_EXPORT int32_t mdlSystem_getTicks(void) MDL_NOEXCEPT;

/* ---- memory: blocks come uncleared, null on failure; size 0 is granted ---- */

MDL_EXPORT void *dlmSystem_mdlMalloc(size_t size) MDL_NOEXCEPT;
MDL_EXPORT void *dlmSystem_mdlRealloc(void *block, size_t size) MDL_NOEXCEPT;
MDL_EXPORT void dlmSystem_mdlFree(void *block) MDL_NOEXCEPT;
/* How often the session has lacked memory for something: what was made meanwhile may not be whole. With any, its exit
 * status is 1. */
MDL_EXPORT int mdlSystem_memoryFailures(void) MDL_NOEXCEPT;

/* ---- configuration variables: session definitions over the environment ---- */

/* Copies the value into `buffer` (at most size - 1 characters), which may be null for a test. 0 when defined. */
MDL_EXPORT int mdlSystem_getenv(char *buffer, const char *name, int size) MDL_NOEXCEPT;
/* The same with the value fully expanded. */
MDL_EXPORT int mdlSystem_getCfgVar(char *buffer, const char *name, int size) MDL_NOEXCEPT;
/* Defines a variable. Levels: 0 system, 1 application, 2 site, 3 project, 4 user. A higher level hides a lower one. */
MDL_EXPORT int mdlSystem_defineCfgVar(const char *name, const char *value, int level) MDL_NOEXCEPT;
/* Removes a variable on all levels; one of the environment is hidden. MDL_ERROR when it wasn't defined. */
MDL_EXPORT int mdlSystem_deleteCfgVar(const char *name) MDL_NOEXCEPT;
/* The text with each $(NAME) and ${NAME} replaced by the variable's expanded value (nothing when undefined, and for a
 * variable within its own value), at most 65,536 characters, in a new block that the caller frees with
 * dlmSystem_mdlFree; null when out of memory. */
MDL_EXPORT char *mdlSystem_expandCfgVar(const char *text) MDL_NOEXCEPT;
/* The expanded value of the variable in a new block that the caller frees, or null when it is undefined. */
MDL_EXPORT char *mdlSystem_getExpandedCfgVar(const char *name) MDL_NOEXCEPT;

/* ---- console and messages ---- */

/* As vsnprintf, with "." as the decimal sign in every locale; so do all calls below. */
MDL_EXPORT int mdlOutput_formatText(char *to, size_t size, const char *format, va_list values) MDL_NOEXCEPT;

/* A text on the host's console. */
MDL_EXPORT int toolSubsystem_printf(const char *format, ...) MDL_NOEXCEPT __attribute__((format(printf, 1, 2)));
/* A text on a stream that dlmSystem_mdlFopen gave; the number of bytes written, negative on failure. */
MDL_EXPORT int toolSubsystem_fprintf(FILE *stream, const char *format, ...) MDL_NOEXCEPT __attribute__((format(printf,
                                     2, 3)));
/* Message fields. */
enum {
    MDL_FIELD_MESSAGE = 0,
    MDL_FIELD_STATUS = 1,
    MDL_FIELD_PROMPT = 2,
    MDL_FIELD_ERROR = 3,
    MDL_FIELD_COMMAND = 4
};
/* A text in a message field. */
MDL_EXPORT int mdlOutput_printf(int field, const char *format, ...) MDL_NOEXCEPT __attribute__((format(printf, 2, 3)));
/* The same with the string `messageId` of the string list `listId` in `rscFile` (0: any open resource file) as the
 * format. MDL_ERROR, with the field as it was, when there is no such string. */
MDL_EXPORT int mdlOutput_rscPrintf(int field, RscHandle rscFile, int32_t listId, int32_t messageId, ...) MDL_NOEXCEPT;
/* Priorities of messages. */
enum { MDL_PRIORITY_ERROR = 10, MDL_PRIORITY_WARNING = 11, MDL_PRIORITY_INFORMATION = 12 };
/* A message for the message centre. `openAlert` non-zero also waits until the user has taken note of it, where somebody
 * is there. */
MDL_EXPORT int mdlOutput_messageCenter(int priority, const char *brief, const char *details,
                                       int openAlert) MDL_NOEXCEPT;
/* Formats the string `messageId` of the string list `listId` in `rscFile` (0: any open resource file) with the further
 * values into `buffer` (512 bytes). 0, or MDL_ERROR with the buffer untouched when there is no such string. */
MDL_EXPORT int mdlOutput_rscsPrintf(char *buffer, RscHandle rscFile, int32_t listId, int32_t messageId,
                                    ...) MDL_NOEXCEPT;
/* A text typed in on the user's behalf. `position` -1 puts it at the end of the input queue; `task` null sends it to
 * the host. */
MDL_EXPORT int mdlInput_sendKeyin(const char *text, int literal, int position, const char *task) MDL_NOEXCEPT;
/* Makes room for graphics when the host was showing text. */
MDL_EXPORT void mdlSystem_enterGraphics(void) MDL_NOEXCEPT;

/* ---- settings ---- */

/* The work mode: 0 "DGN", 1 "DWG", 2 "V7". */
MDL_EXPORT int mdlSystem_getWorkmode(void) MDL_NOEXCEPT;
/* Raises the active graphic group by one. */
MDL_EXPORT void mdlSystem_updateGraphicGroup(void) MDL_NOEXCEPT;

/* Active parameters by number. The value is the type that the number's row tells. */
enum {
    MDL_PARAM_STYLE = 3,          /* int32_t: line style */
    MDL_PARAM_FONT = 7,           /* int32_t: font number */
    MDL_PARAM_TEXT_SIZE = 11,     /* double: text height and width in UOR */
    MDL_PARAM_TEXT_HEIGHT = 17,   /* double: text height in UOR, the same value as 11 */
    MDL_PARAM_LEVEL = 20,         /* int32_t: level id */
    MDL_PARAM_COLOR = 21,         /* int32_t: colour index */
    MDL_PARAM_WEIGHT = 22,        /* int32_t: line weight */
    MDL_PARAM_LINE_STYLE_NAME = 44, /* char[64]: line style by name; setting it sets parameter 3 too */
    MDL_PARAM_GRAPHIC_GROUP = 59  /* int32_t: active graphic group */
};
MDL_EXPORT int mdlParams_getActive(void *valueP, int parameter) MDL_NOEXCEPT;
MDL_EXPORT int mdlParams_setActive(const void *valueP, int parameter) MDL_NOEXCEPT;

/* The active settings and the name of the open design file. */
typedef struct MdlTcb {
    char designFileName[256];    /* full name of the open design file; empty when none is open */
    unsigned char readoutFormat; /* low three bits: decimals + 1 of a decimal readout; bits 3 to 7: fraction or long
                                  * forms */
    unsigned char readoutFlags;  /* bit 2: the long forms are in use */
    double activeSlant;          /* degrees */
    int32_t workmode;            /* as mdlSystem_getWorkmode */
    char cellLibraryName[256];   /* full name of the attached cell library; empty when none is attached */
} MdlTcb;
MDL_EXPORT MdlTcb *tcbP;

#endif
