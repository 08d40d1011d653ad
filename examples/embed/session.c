/* A program that holds the host by itself: a session in which a drawing is made and printed, and a second one, which
 * knows nothing of the first.
 *
 *     cc session.c $(pkg-config --cflags --libs mclib) -o session && ./session
 */
#include <stdio.h>

#include <mclib/mclib.h>
#include <mchost/mdl/elmdscr.h>
#include <mchost/mdl/embed.h>
#include <mchost/mdl/model.h>
#include <mchost/mdl/system.h>

static int faults = 0;

static void expect(int holds, const char *what)
{
    if (holds) return;
    fprintf(stderr, "session: not so: %s\n", what);
    ++faults;
}

/* An application that lies in this program. Its file name is argv[2]. */
static int draw(int argc, char **argv)
{
    if (mclibMain_initMcLib("drawing", argc, argv) != MCLIB_SUCCESS) return 1;
    ElmAttrData look = { .weight = 4, .useFlags = ATTR_USE_WEIGHT };
    mclibElmAttr_setGroupeNames(1, "Drawing", 1, 0);
    mclibElmAttr_addAttribute(10, "Frame", 1, ATTR_KIND_SYMBOLOGY, 0, NULL, 0, &look);

    Point3d corners[5] = { { 0, 0, 0 }, { 170, 0, 0 }, { 170, 120, 0 }, { 0, 120, 0 }, { 0, 0, 0 } };
    ElementDescr *page = NULL;
    if (mclibElement_createShape(corners, 5, 0, 10, NULL) != MCLIB_SUCCESS) return 1;
    if (mdlElmdscr_new(&page, NULL, dgnBufP) != MDL_SUCCESS) return 1;
    int done = mdlElmdscr_add(page) != 0;
    if (done && mclibPrint_fopen(argv[2], 0)) {
        mclibPrint_printElementDescr(page, 20, 150, 170, 120);
        mclibPrint_fclose();
        done = mclibPrint_jobStatus() == MCLIB_SUCCESS;
    } else {
        done = 0;
    }
    mdlElmdscr_freeAll(&page);
    return done ? 0 : 1;
}

static int begin(void)
{
    McHostSettings settings = { .size = sizeof settings, .yes = 1 };
    if (mchost_begin(&settings) == MDL_SUCCESS) return 1;
    fprintf(stderr, "session: %s\n", mchost_lastError());
    return 0;
}

int main(int argc, char **argv)
{
    const char *drawing = argc > 1 ? argv[1] : "session.mcd";
    const char *print = argc > 2 ? argv[2] : "session.ps";

    if (!begin()) return 1;
    mchost_define("JOB", "4711", 4);
    expect(mchost_newDesignFile(drawing, 0) == MDL_SUCCESS, "a new design file");
    expect(mchost_start("drawing", draw, NULL, 1, &print) == MDL_SUCCESS, "an application of this program");
    expect(mchost_serve() == MDL_SUCCESS, "nothing is left to do");
    expect(mchost_end() == 0, "the application did its work");

    if (!begin()) return 1;
    expect(mdlSystem_getCfgVar(NULL, "JOB", 0) != MDL_SUCCESS, "no variable of the first session");
    expect(mdlModelRef_getActive() == NULL && tcbP->designFileName[0] == '\0', "no design file of the first session");
    expect(mdlSystem_findMdlDesc("drawing") == NULL, "no application of the first session");
    expect(mchost_openDesignFile(drawing) == MDL_SUCCESS, "the file that the first one left");
    expect(mchost_end() == 0, "a second session");
    return faults != 0;
}
