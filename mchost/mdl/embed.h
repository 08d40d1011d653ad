/* A session that another program holds: a C program, a script in Python, mchost itself. One at a time in a process, all
 * in one thread; a session knows nothing of the one before it.
 *
 *     McHostSettings settings = { .size = sizeof settings };
 *     if (mchost_begin(&settings) != MDL_SUCCESS) return fail(mchost_lastError());
 *     mchost_newDesignFile("road.mcd", 0);
 *     mchost_start("drawing", drawingMain, "USER", 0, NULL);
 *     mchost_serve();
 *     return mchost_end();
 *
 * All texts are UTF-8 here, names of files are those of the system. */
#ifndef HOST_MDL_EMBED_H
#define HOST_MDL_EMBED_H

#include "types.h"

/* Who answers the questions of dialogs, files and commands at a terminal. */
enum { MCHOST_ASK_NOBODY = 0, MCHOST_ASK_TERMINAL = 1 /* standard input, where that is a terminal */ };

/* What is written: lines of applications on the console; messages, dialogs and questions. */
enum { MCHOST_TEXT_CONSOLE = 0, MCHOST_TEXT_MESSAGE = 1 };

/* How a session begins. What isn't told is 0. */
typedef struct McHostSettings {
    size_t size;         /* sizeof(McHostSettings): a later host may know further fields */
    const char *answers; /* a file with an answer on each line; they are taken first. Null: none */
    int32_t yes;         /* then, not 0: each question is answered with its first button */
    int32_t ask;         /* then: MCHOST_ASK_..., when `answer` is null */
    /* The next answer to what was written last, in the words that mchost takes at a terminal; valid until the next
     * call. Null gives up, and nobody is asked any more. */
    const char *(*answer)(void *data, const char *question);
    /* Takes what is written, in place of standard output (console) and standard error. */
    void (*write)(void *data, int32_t kind, const char *text);
    /* Carries out a key-in to the host, and gives 0 for one that it doesn't know: "% COMMAND" is then handed to the
     * system, "browse url ADDRESS" and "browse file NAME" open what they name, and any other stays undone. */
    int32_t (*keyIn)(void *data, const char *text);
    void *data; /* given to these functions */
} McHostSettings;

/* Begins a session. The configuration is that of the installation: share/mclib/mchost.cfg, or in a build tree
 * bin/mchost.cfg, beside the library. MDL_ERROR, with no session, when one runs already, when the file of answers or
 * the configuration can't be read. Null for `settings`: nobody answers. */
MDL_EXPORT MDL_CHECKED int mchost_begin(const McHostSettings *settings) MDL_NOEXCEPT;
/* Ends the session: all applications, then the design file, then what the session kept. Its exit status: 0 when all
 * went well, else the first that an application left, or 1 (mdlSystem_exit, mdlSystem_noteFailure). Key-ins that nobody
 * carried out, and memory that ran out, are told on the way. MDL_ERROR when there is none. */
MDL_EXPORT int mchost_end(void) MDL_NOEXCEPT;

/* Defines a configuration variable on a level (0 system, 1 application, 2 site, 3 project, 4 user: the highest counts)
 * with $(MCHOST_DIR), $(MCHOST_DATA) and $(MCHOST_USER) replaced as in mchost.cfg. */
MDL_EXPORT int mchost_define(const char *name, const char *value, int level) MDL_NOEXCEPT;
/* Defines the variables of a file, line by line as in mchost.cfg; MDL_ERROR at the first line that can't be read. */
MDL_EXPORT int mchost_configure(const char *file, int level) MDL_NOEXCEPT;

/* Opens a design file; mchost_newDesignFile makes it first. MDL_ERROR when it can't be done, which has been told. */
MDL_EXPORT int mchost_openDesignFile(const char *file) MDL_NOEXCEPT;
MDL_EXPORT int mchost_newDesignFile(const char *file, int is3d) MDL_NOEXCEPT;

/* Starts an application: runs `start` with `arguments` behind argv[0] = `taskName` and argv[1] = `listName`
 * ("USER" when null). It stays until it or the session ends. What `start` gives is the application's status, which goes
 * into that of the session. MDL_ERROR without a session. */
MDL_EXPORT int mchost_start(const char *taskName, int (*start)(int argc, char **argv), const char *listName, int count,
                            const char *const *arguments) MDL_NOEXCEPT;
/* Loads an application, by the path of its module or by its name along MS_MDL and in the folders lib of the
 * installation, and starts its main function. MDL_ERROR when there is none that can be loaded, which has been told. */
MDL_EXPORT int mchost_load(const char *application, const char *listName, int count,
                           const char *const *arguments) MDL_NOEXCEPT;
/* Loads the applications that a configuration variable lists (MS_INITAPPS, MS_DGNAPPS), with its name as the list name.
 * The number of them, or -1 when one can't be loaded. */
MDL_EXPORT int mchost_loadListed(const char *variable) MDL_NOEXCEPT;
/* Calls `found` for each application that can be loaded by its name, in order of the names. `description` may be empty.
 */
MDL_EXPORT int mchost_listApplications(void (*found)(void *data, const char *name, const char *description),
                                       void *data) MDL_NOEXCEPT;

/* Serves the user until nothing is left to do: commands that wait for points, then dialogs that stay open, which may
 * start commands again. MDL_ERROR when nobody gives a command its points. */
MDL_EXPORT int mchost_serve(void) MDL_NOEXCEPT;

/* What went wrong last, in a sentence; empty when nothing has. Valid until the next call of the host. */
MDL_EXPORT const char *mchost_lastError(void) MDL_NOEXCEPT;
/* Tells a line behind the program's name on standard error, or by `write`; it is what went wrong last then. Also
 * without a session. */
MDL_EXPORT void mchost_tell(const char *line) MDL_NOEXCEPT;

/* For programs that hold a session for all of their life. Before anything else: unfinished files are removed when a
 * signal ends the process, and what is thrown and caught by nobody ends it with a line and the status 1. */
MDL_EXPORT void mchost_startProgram(void) MDL_NOEXCEPT;
/* Inside a catch of C++: tells what was thrown in a line that begins with the program's name. */
MDL_EXPORT void mchost_tellThrown(const char *program) MDL_NOEXCEPT;

#endif
