/* The few calls of the operating system that the library uses by name. */
#ifndef HOST_MDL_WIN32_H
#define HOST_MDL_WIN32_H

#include "types.h"

/* The calls are linked under names of their own, so that a program may hold the system's beside them. */
#define CloseHandle           mcWin32_CloseHandle
#define CreateProcessA        mcWin32_CreateProcessA
#define DeleteFileA           mcWin32_DeleteFileA
#define EnumPrintersA         mcWin32_EnumPrintersA
#define GetModuleFileNameA    mcWin32_GetModuleFileNameA
#define GetModuleHandleA      mcWin32_GetModuleHandleA
#define GetShortPathNameA     mcWin32_GetShortPathNameA
#define GetStartupInfoA       mcWin32_GetStartupInfoA
#define RegCloseKey           mcWin32_RegCloseKey
#define RegOpenKeyExA         mcWin32_RegOpenKeyExA
#define RegQueryValueExA      mcWin32_RegQueryValueExA
#define WNetGetUniversalNameA mcWin32_WNetGetUniversalNameA
#define WaitForSingleObject   mcWin32_WaitForSingleObject

/* ---- files and modules ---- */

/* Deletes a file; 1, or 0 when it can't be deleted. */
MDL_EXPORT int DeleteFileA(const char *name) MDL_NOEXCEPT;
/* The short form of a path; here the path itself, with host path rules applied. The length without its NUL, or 0 when
 * there is no such file, or the size needed when `size` is too small. */
MDL_EXPORT uint32_t GetShortPathNameA(const char *path, char *buffer, uint32_t size) MDL_NOEXCEPT;
/* The loaded module of that file name ("MCLib.dll" finds libmclib.so), or null. */
MDL_EXPORT void *GetModuleHandleA(const char *name) MDL_NOEXCEPT;
/* Full path of a loaded module into `buffer`, cut at size - 1 characters; the length, 0 on failure. */
MDL_EXPORT uint32_t GetModuleFileNameA(void *module, char *buffer, uint32_t size) MDL_NOEXCEPT;

/* Results of the calls below that give a status. */
enum {
    WIN32_SUCCESS = 0,
    WIN32_FILE_NOT_FOUND = 2,  /* no such key or value */
    WIN32_INVALID_HANDLE = 6,
    WIN32_BAD_PARAMETER = 87,
    WIN32_MORE_DATA = 234,     /* the buffer is too small */
    WIN32_NOT_CONNECTED = 2250 /* the path lies on no network drive */
};

/* ---- programs: found and started as external.h tells ---- */

enum {
    WIN32_IDLE_PRIORITY = 64, /* creation flag: runs when nothing else wants to */
    WIN32_USE_SHOW_WINDOW = 1 /* start-up flag: showWindow counts */
};
typedef struct Win32StartupInfo {
    uint32_t size; /* of this structure */
    uint32_t flags;
    uint16_t showWindow; /* 0 hidden, 5 shown. A program here opens its windows by itself, so it makes no difference. */
} Win32StartupInfo;
typedef struct Win32ProcessInfo {
    void *process; /* to be closed with CloseHandle */
    void *thread;  /* null: closing it does nothing */
    uint32_t processId, threadId;
} Win32ProcessInfo;

MDL_EXPORT void GetStartupInfoA(Win32StartupInfo *info) MDL_NOEXCEPT;
/* Starts the program that the first word of `commandLine` names (or `application`, when it isn't null). 1, or 0 when it
 * can't be started. Process and thread attributes, inheritance and environment aren't used; `directory` is the folder
 * that it starts in, null for the current one. */
MDL_EXPORT int CreateProcessA(const char *application, char *commandLine, void *processAttributes,
                              void *threadAttributes, int inheritHandles, uint32_t creationFlags, void *environment,
                              const char *directory, const Win32StartupInfo *startupInfo,
                              Win32ProcessInfo *processInfo) MDL_NOEXCEPT;
#define WIN32_INFINITE 0xFFFFFFFFu
/* Waits for the end of a process, at most so many milliseconds. 0 when it has ended, 258 when the time is over first,
 * 0xFFFFFFFF on failure. */
MDL_EXPORT uint32_t WaitForSingleObject(void *handle, uint32_t milliseconds) MDL_NOEXCEPT;
/* Gives a process handle back; a process that still runs goes on. 1, or 0 for what is no handle; null is granted. */
MDL_EXPORT int CloseHandle(void *handle) MDL_NOEXCEPT;

/* ---- settings, in place of a registry: two text files, of the user and of the machine ----
 *
 * The user's file is settings.txt in the user's data folder (XDG_DATA_HOME or ~/.local/share, folder mchost), or what
 * the configuration variable MC_USER_SETTINGS names; the machine's is /etc/mchost/settings.txt, or MC_MACHINE_SETTINGS.
 * Both are UTF-8 or Windows-1252, and are read anew whenever a key is opened:
 *
 *     # a comment
 *     [Software\Maker\Program]          a key; its values follow
 *     Folder = c:\jobs                  a text: the rest of the line
 *     Title  = " between quotes "       a text with its blanks
 *     Count  = number:12                a 32-bit number, decimal or 0x...
 *     Mark   = bytes:0a 1f ff           bytes, two hex digits each
 *     @      = text                     the key's own value, asked for with a null or empty name
 *
 * Letter case of keys and names doesn't count. A later line counts more than an earlier one. A line that is none of
 * these is passed over, with a warning in the message centre that names file and line. */

#define WIN32_CURRENT_USER ((void *)(uintptr_t)0x80000001u)
#define WIN32_LOCAL_MACHINE ((void *)(uintptr_t)0x80000002u)
enum { WIN32_VALUE_TEXT = 1, WIN32_VALUE_BYTES = 3, WIN32_VALUE_NUMBER = 4 };

/* Opens a key of one of the two roots for reading. */
MDL_EXPORT int32_t RegOpenKeyExA(void *root, const char *key, uint32_t options, uint32_t access,
                                 void **handleP) MDL_NOEXCEPT;
/* Kind and bytes of a value; a text has its NUL. `sizeP` holds the size of `data` on entry and that of the value
 * afterwards. Type, data and size may be null; without data the size is told. With a buffer that is too small nothing
 * is copied. `reserved` isn't used. */
MDL_EXPORT int32_t RegQueryValueExA(void *handle, const char *name, uint32_t *reserved, uint32_t *typeP, void *data,
                                    uint32_t *sizeP) MDL_NOEXCEPT;
MDL_EXPORT int32_t RegCloseKey(void *handle) MDL_NOEXCEPT;

/* ---- network names ---- */

typedef struct Win32UniversalName {
    char *name; /* within the buffer, behind this structure */
} Win32UniversalName;
/* The network name ("\\server\share\folder\file") of a path that lies on a mounted network drive (SMB or NFS), by the
 * table of mounts: /proc/mounts, or the file that the configuration variable MC_MOUNTS names. `infoLevel` is 1. The
 * buffer gets a Win32UniversalName and the text. `sizeP` holds the buffer's size; the size needed goes there with
 * WIN32_MORE_DATA. */
MDL_EXPORT uint32_t WNetGetUniversalNameA(const char *path, uint32_t infoLevel, void *buffer,
                                          uint32_t *sizeP) MDL_NOEXCEPT;

/* ---- printers ---- */

/* What is known of a printer: texts within the buffer; one that isn't known is null. */
typedef struct Win32PrinterInfo {
    char *serverName;  /* "\\server", or null for a local printer */
    char *printerName; /* the name that it goes by */
    char *shareName;   /* its name on the server */
    char *portName;    /* the port or device that it hangs on */
} Win32PrinterInfo;
enum { WIN32_PRINTERS_LOCAL_AND_CONNECTED = 6 };
/* The printers of this machine, in order of name: those that the spool folder has (files.h, mdlFile_copy), then the
 * queues of the print system, asked for with the program lpstat, where it is installed. `flags` is 6, `name` empty or
 * null, `level` 2. The buffer gets a Win32PrinterInfo for each, and their texts behind. 1, or 0 when the buffer is too
 * small or an argument is another one. The size needed is always told; it is 0 when there is no printer. */
MDL_EXPORT int EnumPrintersA(uint32_t flags, const char *name, uint32_t level, void *buffer, uint32_t size,
                             uint32_t *neededP, uint32_t *countP) MDL_NOEXCEPT;

#endif
