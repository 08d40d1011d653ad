/* Programs outside the host.
 *
 * A program is a host path, or a name that is looked for in the folders of PATH; letter case doesn't count where no
 * file has the name as it stands, and quotes around it are dropped. It runs without a shell and reads nothing (its
 * standard input is empty); its standard output and error are the host's. A word of its arguments that begins like a
 * path on a drive ("c:\temp\a.ps") is given as the system's path that it stands for, since the system's programs know
 * no drives. Its environment is the host's, together with the configuration variables that begin with MC_, expanded. */
#ifndef HOST_MDL_EXTERNAL_H
#define HOST_MDL_EXTERNAL_H

#include "types.h"

/* A started program: the host's own, valid until mdlExternal_wait or mdlExternal_terminateProgram gives it back. One
 * that nobody waits for may be left; it runs on by itself. */
typedef struct MdlExternalProgram {
    int32_t processId; /* of the running program; 0 when no process belongs to the handle */
} MdlExternalProgram;

/* Starts a program and doesn't wait for it. `arguments` is one line (null: none), divided into words at blanks and
 * tabs; what stands between double quotes is kept together, and the quotes go; two of them in it are one. Null when it
 * can't be started. */
MDL_EXPORT MdlExternalProgram *mdlExternal_startProgram(const char *program, const char *arguments) MDL_NOEXCEPT;
/* Waits for the end of the program and gives the handle back. Its exit status in statusP: 0 to 255, or 128 and the
 * signal's number for a program that a signal ended. 0, or MDL_ERROR when there is nothing to wait for: the status is
 * then -1. */
MDL_EXPORT int mdlExternal_wait(int *statusP, MdlExternalProgram *program) MDL_NOEXCEPT;
/* Gives the handle back, and ends its program (SIGTERM) when it still runs. 0, or MDL_ERROR for what is no handle. */
MDL_EXPORT int mdlExternal_terminateProgram(MdlExternalProgram *program) MDL_NOEXCEPT;

/* Starts a program with arguments that are words already, and doesn't wait for it. 0, or MDL_ERROR when it can't be
 * started. */
MDL_EXPORT int mdlExternal_extStartProgram(const char *program, int argumentCount,
                                           const char *const *arguments) MDL_NOEXCEPT;

/* Runs a line of the system's shell and waits for its end. What begins like a path on a drive, at the beginning of the
 * line, behind a blank or behind a quote, is given as the system's path. What `system` of the C library gives: the
 * status as the system tells it, or -1; -1 too for null. */
MDL_EXPORT int mdlExternal_runShellLine(const char *line) MDL_NOEXCEPT;

#endif
