/* An application that does what its first argument says. */
#include <stdlib.h>
#include <string.h>

#include "host/mdl/system.h"

static int printArguments(int argc, char **argv) {
    for (int i = 1; i < argc; ++i) toolSubsystem_printf("[%s]", argv[i]);
    toolSubsystem_printf("\n");
    return 0;
}

static int printVariable(const char *name) {
    char value[512] = "undefined";
    mdlSystem_getCfgVar(value, name, sizeof value);
    toolSubsystem_printf("%s\n", value);
    return 0;
}

int main(int argc, char **argv) {
    const char *what = argc > 2 ? argv[2] : "";
    const char *value = argc > 3 ? argv[3] : "";
    if (strcmp(what, "arguments") == 0) return printArguments(argc, argv);
    if (strcmp(what, "variable") == 0) return printVariable(value);
    if (strcmp(what, "return") == 0) return atoi(value);
    if (strcmp(what, "exit") == 0) mdlSystem_exit(atoi(value), 1);
    if (strcmp(what, "say") == 0) mdlOutput_messageCenter(10, value, "try again", 0);
    return 0;
}
