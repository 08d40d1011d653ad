// mcshell: the command interpreter that COMSPEC names.
#include <strings.h>

#include <cstdio>
#include <string>

#include <vector>

#include "mchost/session/program.h"
#include "programs/shell/shell.h"

namespace {

MCHOST_FIRST const host::ProgramStart programStart;

constexpr const char* usage =
    "usage: mcshell /C COMMAND [arguments]\n"
    "       mcshell /C \"COMMAND [arguments] [> FILE]\"\n"
    "  Carries out one command on host paths (c:\\temp\\a.ps) or paths of the system: CD, CHDIR, CHDSK, COPY, DEL, "
    "DIR,\n"
    "  MKDIR, MD, MOVE, PATH, PRINT, RENAME, REN, XCOPY, ECHO, a batch file (.BAT, .CMD) or a program.\n";

bool isFor(const char* argument, const char* text) {
    return strcasecmp(argument, text) == 0;
}

int runWith(int argc, char** argv) {
    if (argc == 2 && (isFor(argv[1], "--help") || isFor(argv[1], "/?"))) return std::fputs(usage, stdout) < 0;
    if (argc == 2 && isFor(argv[1], "--version")) return std::puts("mcshell " MCHOST_VERSION) < 0;
    if (argc < 3 || !isFor(argv[1], "/C")) {
        if (argc > 1 && !isFor(argv[1], "/C")) std::fprintf(stderr, "mcshell: don't know \"%s\"\n", argv[1]);
        std::fputs(usage, stderr);
        return host::shell::wrongUse;
    }
    const int status = host::shell::run({argv + 2, argv + argc});
    if (std::fflush(stdout) == 0) return status;
    std::fprintf(stderr, "mcshell: what was printed couldn't be written in full; is the disk full?\n");
    return host::shell::failed;
}

}  // namespace

int main(int argc, char** argv) {
    return host::runProgram("mcshell", [&] { return runWith(argc, argv); });
}
