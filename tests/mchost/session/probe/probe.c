/* An application that does what its first argument says. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "mchost/mdl/element.h"
#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/system.h"

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

/* Adds a line, and tells how many elements there are. */
static int draw(void) {
    static MSElementBuffer line;
    const Point3d ends[2] = {{0.0, 0.0, 0.0}, {100.0, 50.0, 0.0}};
    if (mdlLine_create(&line, NULL, ends) != 0 || mdlElement_add(&line) == 0) return 1;
    toolSubsystem_printf("%u\n", mdlModelRef_getElementCount(mdlModelRef_getActive()));
    return 0;
}

static void heard(char *name, int state) {
    const char *last = strrchr(name, '/');
    toolSubsystem_printf("%s %d\n", last != NULL ? last + 1 : name, state);
}

static int watch(void) {
    toolSubsystem_printf("open: %d\n", mdlModelRef_getActive() != NULL);
    return mdlSystem_setFunction(MDL_FUNCTION_NEW_DESIGN_FILE, (void *)heard);
}

/* Does what the name of a file says, and notes that it was there. */
static int likeName(const char *name, const char *notes) {
    FILE *file = fopen(notes, "a");
    if (file == NULL || fprintf(file, "%s\n", name) < 0 || fclose(file) != 0) return 1;
    if (strstr(name, "crash") != NULL) abort();
    while (strstr(name, "hang") != NULL) sleep(1);
    toolSubsystem_printf("looked at %s\n", name);
    return strstr(name, "bad") != NULL ? 1 : 0;
}

MDL_DESCRIPTION("does what its first argument says");

int main(int argc, char **argv) {
    const char *what = argc > 2 ? argv[2] : "";
    const char *value = argc > 3 ? argv[3] : "";
    if (argc == 2 && strcmp(argv[1], "USER") != 0) return printArguments(argc, argv);
    if (strcmp(what, "arguments") == 0) return printArguments(argc, argv);
    if (strcmp(what, "variable") == 0) return printVariable(value);
    if (strcmp(what, "draw") == 0) return draw();
    if (strcmp(what, "watch") == 0) return watch();
    if (strcmp(what, "like") == 0) return likeName(value, argc > 4 ? argv[4] : "notes.txt");
    if (strcmp(what, "return") == 0) return atoi(value);
    if (strcmp(what, "exit") == 0) mdlSystem_exit(atoi(value), 1);
    if (strcmp(what, "fail") == 0) mdlSystem_noteFailure();
    if (strcmp(what, "task") == 0 && mdlSystem_findMdlDesc(value) != NULL) toolSubsystem_printf("there\n");
    if (strcmp(what, "leak") == 0) dlmSystem_mdlMalloc(1000);
    if (strcmp(what, "key") == 0) mdlInput_sendKeyin(value, 0, -1, NULL);
    if (strcmp(what, "say") == 0) mdlOutput_messageCenter(10, value, "try again", 0);
    return 0;
}
