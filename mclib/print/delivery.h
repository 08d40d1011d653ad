/* Print files on their way to the printer. The file stays where it is; the calls return when it has been handed
 * over. */
#ifndef MCLIB_DELIVERY_H
#define MCLIB_DELIVERY_H

#include "mclib/frame/export.h"
#include "mchost/mdl/lists.h"

/* Sends a print file to `printer`, a text of one of four forms, tried in this order:
 *  - a port, exactly "LPT1" to "LPT9": copied there, `copies` times;
 *  - a text that begins with "$": configuration variables in it are expanded, and the file is copied there;
 *  - a text that begins with "\", such as "\\server\printer": copied there;
 *  - any other text: commands, divided by ";", run in order (mclibExternal_executeCommandLine). "%s" in their words is
 *    the file's name, whatever letters it has, and "%d" the number of copies; without a "%d" all of them are run
 *    `copies` times. A command that can't be started or ends with another status than 0 is told on the console, and the
 *    next one is run. Without a "%s" nothing is run, and the console tells why.
 * 0, or the status of the copy or of the first command that failed; MCLIB_ERROR for commands without a "%s". */
MCLIB_EXPORT int mclibPrint_sendFileToPrinter(const char *fileName, const char *printer, int copies);
/* Copies the file `copies` times to `port` (mchost/mdl/files.h, mdlFile_copy, tells what that may be), after
 * configuration variables in it are expanded. 0, or the status of the copy that failed: none is made behind it. */
MCLIB_EXPORT int mclibPrint_sendFileToPrinterPort(const char *fileName, const char *port, int copies);

/* The network printers in a new list, which the caller destroys: two strings for each, its name and its path
 * ("\\server\printer"). Info field 1 of the path is 1 for the printer that the host's printer plot driver file names.
 * Null when there is no printer of any kind. */
MCLIB_EXPORT StringList *mclibWin32_findWindowsPrinterNames(void);

#endif
