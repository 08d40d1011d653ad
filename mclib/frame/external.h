/* Programs outside the host, and command lines.
 *
 * `status` has two uses. On entry -1 means that the caller doesn't wait; with any other value the call waits for the
 * program's end, and its exit status goes there. It may be null, which waits without telling the status. A program is
 * found whatever the case of its name; mchost/mdl/external.h tells how, and how a line of arguments is divided. */
#ifndef MCLIB_EXTERNAL_H
#define MCLIB_EXTERNAL_H

#include "mclib/frame/export.h"

/* Runs a command line. Its first word, upper-cased, decides: a shell word (CD, CHDIR, CHDSK, COPY, DEL, DIR, MKDIR, MD,
 * MOVE, PATH, PRINT, RENAME, REN, XCOPY) or a batch file (a name in front of .BAT or .CMD) goes to the command
 * interpreter, any other to the host as a program. Blanks in front are passed over. */
MCLIB_EXPORT int mclibExternal_executeCommandLine(const char *commandLine, int *status);
/* Runs a program. 0, or MCLIB_ERROR with a line on the console when it can't be started; a program that fails by itself
 * shows in `status` alone. In an edition that runs no programs the user is told so, and the result is 0. */
MCLIB_EXPORT int mclibExternal_executeProgram(const char *program, const char *arguments, int *status);
/* Runs a command of the command interpreter, which the environment variable COMSPEC names: "/C command arguments".
 * `arguments` may be null. */
MCLIB_EXPORT int mclibExternal_executeShellCommand(const char *command, const char *arguments, int *status);
/* The same. */
MCLIB_EXPORT int mclibExternal_executeSystemCommand(const char *command, const char *arguments, int *status);
/* Has the host hand a file to the operating system, which opens it in the program that it goes with. 0. */
MCLIB_EXPORT int mclibExternal_openFile(const char *file);

#endif
