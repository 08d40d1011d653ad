/* faults.so: preloaded into a program, it counts the calls of a kind and fails one of them, or all from one on.
 *
 * MCFAULT_COUNTS=FILE   at the end of the process each kind with its number of calls goes to that file
 * MCFAULT_KIND=KIND     the calls that are meant, a row of `kinds`
 * MCFAULT_AT=N          the call that fails, from 1
 * MCFAULT_MODE=once     that call alone; "on": it and all later ones; "term": the process gets SIGTERM in that call
 * MCFAULT_TRAP=1        the call stops in a debugger first
 *
 * Programs that the process starts are left alone. The clock stands still, so that two runs make the same calls and the
 * same files. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <execinfo.h>
#include <fcntl.h>
#include <link.h>
#include <signal.h>
#include <stdarg.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <time.h>
#include <unistd.h>

#define EXPORT __attribute__((visibility("default")))

enum Kind { ALLOC, OPEN, READ, WRITE, SHORT, SYNC, CLOSE, RENAME, RESIZE, MAP, FOLDER, KINDS };
static const char *const kinds[KINDS] = { "alloc", "open", "read", "write", "short", "sync",
                                          "close", "rename", "resize", "map", "folder" };
enum Mode { ONCE, ON, TERM };

static long counts[KINDS];
static int kind = -1;
static long at;
static enum Mode mode;
static int traps;
static int ready;          /* calls before the start of the program itself aren't counted */
static __thread int inside; /* in this library's own work */
static char countsFile[1024];

/* ---- the libraries whose faults aren't ours ---- */

/* Fonts and pictures: fontconfig ends by SIGSEGV when some of its allocations fail, and what cairo draws then has other
 * letters. What they or what they call ask for is always granted. */
static const char *const foreign[] = { "libfontconfig", "libcairo", "libpixman", "libfreetype", "libexpat", "libpng",
                                       "libX", "libxcb" };
static struct { uintptr_t from, to; } ranges[32];
static int rangeCount;

static int noteRange(struct dl_phdr_info *info, size_t size, void *unused)
{
    (void)size, (void)unused;
    const char *base = strrchr(info->dlpi_name, '/');
    for (size_t i = 0; base && i < sizeof foreign / sizeof *foreign; ++i) {
        if (strncmp(base + 1, foreign[i], strlen(foreign[i])) != 0) continue;
        for (int p = 0; p < info->dlpi_phnum && rangeCount < 32; ++p) {
            const ElfW(Phdr) *ph = &info->dlpi_phdr[p];
            if (ph->p_type != PT_LOAD || !(ph->p_flags & PF_X)) continue;
            ranges[rangeCount].from = info->dlpi_addr + ph->p_vaddr;
            ranges[rangeCount++].to = info->dlpi_addr + ph->p_vaddr + ph->p_memsz;
        }
    }
    return 0;
}

static int isForeign(void)
{
    void *frames[64];
    const int depth = backtrace(frames, 64);
    for (int f = 0; f < depth; ++f)
        for (int r = 0; r < rangeCount; ++r)
            if ((uintptr_t)frames[f] >= ranges[r].from && (uintptr_t)frames[f] < ranges[r].to) return 1;
    return 0;
}

/* ---- counting ---- */

/* Whether this call fails. */
static int fails(enum Kind called)
{
    if (!ready || inside) return 0;
    const long n = __atomic_add_fetch(&counts[called], 1, __ATOMIC_RELAXED);
    if ((int)called != kind || (mode == ON ? n < at : n != at)) return 0;
    const int before = errno;
    ++inside;
    const int isOurs = !isForeign();
    if (isOurs && traps) raise(SIGTRAP);
    if (isOurs && mode == TERM) raise(SIGTERM);
    --inside;
    errno = before;
    return isOurs && mode != TERM;
}

static void *next(const char *name)
{
    ++inside;
    void *function = dlsym(RTLD_NEXT, name);
    --inside;
    return function;
}
/* REAL(open) is the function that would be called without this library. */
#define REAL(name) ({ static __typeof__(&name) real; if (!real) real = (__typeof__(&name))next(#name); real; })

__attribute__((constructor)) static void begin(void)
{
    ++inside;
    void *frame[1];
    backtrace(frame, 1); /* it loads a library at its first call */
    const char *name = getenv("MCFAULT_KIND"), *number = getenv("MCFAULT_AT"), *how = getenv("MCFAULT_MODE");
    const char *file = getenv("MCFAULT_COUNTS");
    if (file) snprintf(countsFile, sizeof countsFile, "%s", file);
    for (int k = 0; name && k < KINDS; ++k)
        if (strcmp(name, kinds[k]) == 0) kind = k;
    at = number ? atol(number) : 0;
    traps = getenv("MCFAULT_TRAP") != NULL;
    mode = how && strcmp(how, "on") == 0 ? ON : how && strcmp(how, "term") == 0 ? TERM : ONCE;
    dl_iterate_phdr(noteRange, NULL);
    unsetenv("LD_PRELOAD");
    --inside;
    ready = 1;
}

__attribute__((destructor)) static void end(void)
{
    ready = 0;
    FILE *file = countsFile[0] ? fopen(countsFile, "w") : NULL;
    for (int k = 0; file && k < KINDS; ++k) fprintf(file, "%s %ld\n", kinds[k], counts[k]);
    if (file) fclose(file);
}

/* ---- memory ---- */

extern void *__libc_malloc(size_t);
extern void *__libc_calloc(size_t, size_t);
extern void *__libc_realloc(void *, size_t);
extern void *__libc_memalign(size_t, size_t);

static void *none(void)
{
    errno = ENOMEM;
    return NULL;
}

EXPORT void *malloc(size_t size) { return fails(ALLOC) ? none() : __libc_malloc(size); }
EXPORT void *calloc(size_t count, size_t size) { return fails(ALLOC) ? none() : __libc_calloc(count, size); }
EXPORT void *realloc(void *block, size_t size) { return fails(ALLOC) ? none() : __libc_realloc(block, size); }
EXPORT void *aligned_alloc(size_t alignment, size_t size)
{
    return fails(ALLOC) ? none() : __libc_memalign(alignment, size);
}
EXPORT int posix_memalign(void **block, size_t alignment, size_t size)
{
    if (fails(ALLOC)) return ENOMEM;
    *block = __libc_memalign(alignment, size);
    return *block ? 0 : ENOMEM;
}

/* ---- files ---- */

#define FAIL(what, error) if (fails(what)) { errno = (error); return -1; }

static mode_t modeOf(int flags, va_list arguments) {
    return flags & (O_CREAT | O_TMPFILE) ? va_arg(arguments, mode_t) : 0;
}
#define OPENING(name) \
    EXPORT int name(const char *path, int flags, ...) \
    { \
        va_list arguments; \
        va_start(arguments, flags); \
        const mode_t permissions = modeOf(flags, arguments); \
        va_end(arguments); \
        FAIL(OPEN, flags & O_CREAT ? ENOSPC : EMFILE) \
        return REAL(name)(path, flags, permissions); \
    }
OPENING(open)
OPENING(open64)
EXPORT FILE *fopen(const char *path, const char *how)
{
    if (!fails(OPEN)) return REAL(fopen)(path, how);
    errno = EMFILE;
    return NULL;
}
EXPORT FILE *fopen64(const char *path, const char *how)
{
    if (!fails(OPEN)) return REAL(fopen64)(path, how);
    errno = EMFILE;
    return NULL;
}
EXPORT int mkostemp(char *name, int flags) { FAIL(OPEN, ENOSPC) return REAL(mkostemp)(name, flags); }
EXPORT int mkostemps(char *name, int length, int flags) { FAIL(OPEN, ENOSPC) return REAL(mkostemps)(name, length,
                     flags); }
EXPORT char *mkdtemp(char *name)
{
    if (!fails(FOLDER)) return REAL(mkdtemp)(name);
    errno = ENOSPC;
    return NULL;
}
EXPORT int mkdir(const char *path, mode_t permissions) { FAIL(FOLDER, ENOSPC) return REAL(mkdir)(path, permissions); }

EXPORT ssize_t read(int fd, void *to, size_t size)
{
    FAIL(READ, EIO)
    return REAL(read)(fd, to, fails(SHORT) && size > 1 ? size / 2 : size);
}
EXPORT ssize_t pread(int fd, void *to, size_t size, off_t from) { FAIL(READ, EIO) return REAL(pread)(fd, to, size,
                     from); }
EXPORT ssize_t pread64(int fd, void *to, size_t size, off64_t from)
{
    FAIL(READ, EIO)
    return REAL(pread64)(fd, to, size, from);
}

/* What goes to standard error is how a failure is told. */
#define WRITING(fd) if ((fd) != STDERR_FILENO) FAIL(WRITE, ENOSPC)
#define PART(fd, size) ((fd) != STDERR_FILENO && fails(SHORT) && (size) > 1 ? (size) / 2 : (size))
EXPORT ssize_t write(int fd, const void *from, size_t size)
{
    WRITING(fd)
    return REAL(write)(fd, from, PART(fd, size));
}
EXPORT ssize_t writev(int fd, const struct iovec *parts, int count)
{
    WRITING(fd)
    return REAL(writev)(fd, parts, PART(fd, count));
}
EXPORT ssize_t pwrite(int fd, const void *from, size_t size, off_t to)
{
    WRITING(fd)
    return REAL(pwrite)(fd, from, PART(fd, size), to);
}
EXPORT ssize_t pwrite64(int fd, const void *from, size_t size, off64_t to)
{
    WRITING(fd)
    return REAL(pwrite64)(fd, from, PART(fd, size), to);
}

/* Streams write by calls that can't be taken the place of: while such a call fails, the stream's file is a full one. */
static int full(FILE *stream, int *kept)
{
    if (!stream || stream == stderr || !fails(WRITE)) return 0;
    const int device = REAL(open)("/dev/full", O_WRONLY);
    *kept = dup(fileno(stream));
    dup2(device, fileno(stream));
    REAL(close)(device);
    return 1;
}
static void asBefore(FILE *stream, int kept)
{
    const int before = errno;
    dup2(kept, fileno(stream));
    REAL(close)(kept);
    errno = before;
}
EXPORT size_t fwrite(const void *from, size_t size, size_t count, FILE *stream)
{
    int kept;
    if (!full(stream, &kept)) return REAL(fwrite)(from, size, count, stream);
    const size_t written = REAL(fwrite)(from, size, count, stream);
    asBefore(stream, kept);
    return written;
}
EXPORT int fflush(FILE *stream)
{
    int kept;
    if (!full(stream, &kept)) return REAL(fflush)(stream);
    const int result = REAL(fflush)(stream);
    asBefore(stream, kept);
    return result;
}
EXPORT int fclose(FILE *stream)
{
    int kept;
    if (full(stream, &kept)) {
        const int flushed = REAL(fflush)(stream);
        const int error = errno;
        asBefore(stream, kept);
        REAL(fclose)(stream);
        errno = error;
        return flushed;
    }
    const int failed = fails(CLOSE), result = REAL(fclose)(stream);
    if (failed) errno = EIO;
    return failed ? EOF : result;
}

EXPORT int close(int fd)
{
    const int failed = fails(CLOSE), result = REAL(close)(fd);
    if (failed) errno = EIO;
    return failed ? -1 : result;
}
EXPORT int fsync(int fd) { FAIL(SYNC, EIO) return REAL(fsync)(fd); }
EXPORT int fdatasync(int fd) { FAIL(SYNC, EIO) return REAL(fdatasync)(fd); }
EXPORT int rename(const char *from, const char *to) { FAIL(RENAME, EACCES) return REAL(rename)(from, to); }
EXPORT int link(const char *from, const char *to) { FAIL(RENAME, EACCES) return REAL(link)(from, to); }
EXPORT int ftruncate(int fd, off_t size) { FAIL(RESIZE, ENOSPC) return REAL(ftruncate)(fd, size); }
EXPORT int ftruncate64(int fd, off64_t size) { FAIL(RESIZE, ENOSPC) return REAL(ftruncate64)(fd, size); }
EXPORT int fchmod(int fd, mode_t permissions) { FAIL(RESIZE, EPERM) return REAL(fchmod)(fd, permissions); }
EXPORT void *mmap(void *where, size_t size, int protection, int flags, int fd, off_t from)
{
    if (fd >= 0 && fails(MAP)) return errno = ENOMEM, MAP_FAILED;
    return REAL(mmap)(where, size, protection, flags, fd, from);
}
EXPORT void *mmap64(void *where, size_t size, int protection, int flags, int fd, off64_t from)
{
    if (fd >= 0 && fails(MAP)) return errno = ENOMEM, MAP_FAILED;
    return REAL(mmap64)(where, size, protection, flags, fd, from);
}

/* ---- the clock ---- */

static const time_t now = 1700000000;
EXPORT time_t time(time_t *to)
{
    if (to) *to = now;
    return now;
}
EXPORT int clock_gettime(clockid_t clock, struct timespec *to)
{
    if (clock != CLOCK_REALTIME) return REAL(clock_gettime)(clock, to);
    *to = (struct timespec){ now, 0 };
    return 0;
}
