/* An application in plain C: registers, works with what it gets, and prints the library's version. Its exit status
 * counts what went wrong. */
#include <mclib/mclib.h>
#include <string.h>

#include <mchost/mdl/system.h>

static int faults = 0;

static void expect(int holds, const char *what) {
    if (holds) return;
    toolSubsystem_printf("wrong: %s\n", what);
    ++faults;
}

static int deferredCalls = 0;
static void deferred(void) { ++deferredCalls; }

static void expectTokens(void) {
    char text[] = "first, second,,third";
    int count = 0;
    char **tokens = mclibString_tokenize(&count, text, ", ");
    expect(count == 3 && tokens && strcmp(tokens[2], "third") == 0, "three tokens");
    mclibString_freeTokenList(tokens, count);
}

int main(int argc, char **argv) {
    expect(mclibMain_initMcLib("CRegister", argc, argv) == MCLIB_SUCCESS, "registration");
    expect(mclibMain_getGlobalDataP() != NULL, "a block of its own");
    expect(strcmp(mclibMain_getApplicationName(), "CRegister") == 0, "its name");
    expect(strstr(mclibMain_getMclibLocation(), "libmclib") != NULL, "the library's path");

    mclibMain_execFuncOrAddToInitApps(deferred);
    expect(deferredCalls == !mclibMain_currentAppIsInitApp(), "a function that runs at once");
    expectTokens();
    expect(wcscmp(mclibUtil_convertToUnicodeText("\xe6\x80"), L"\u00e6\u20ac") == 0, "wide text");

    toolSubsystem_printf("%s\n", mclibMain_getMclibVersion());
    return faults;
}
