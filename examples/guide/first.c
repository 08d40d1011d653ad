/* The smallest application: it registers, and says so. */
#include <mclib/mclib.h>

int main(int argc, char **argv)
{
    if (mclibMain_initMcLib("first", argc, argv) != MCLIB_SUCCESS) return 1;
    mclibError_msgBoxPrintf(MSGBOX_NOTICE, "I am %s, and this is %s.", mclibMain_getApplicationName(),
                            mclibMain_getMclibVersion());
    return 0;
}
