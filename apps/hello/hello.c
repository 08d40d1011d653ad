/* hello: a frame and a text, drawn by named attributes and printed on an A4 sheet. */
#include <string.h>

#include <mclib/mclib.h>
#include <mchost/mdl/elmdscr.h>
#include <mchost/mdl/system.h>

MDL_DESCRIPTION("a frame and a text on an A4 sheet");

enum { DRAWING = 1, FRAME = 10, TITLE = 11 };

int main(int argc, char **argv)
{
    if (mclibMain_initMcLib("hello", argc, argv) != MCLIB_SUCCESS) return 1;
    const char *file = argc > 2 ? argv[2] : "hello.ps";
    if (file[0] == '-') {
        toolSubsystem_printf("usage: mchost hello [FILE.ps]\n");
        return strcmp(file, "--help") == 0 ? 0 : 2;
    }

    /* How things look is said once, by number; the user may change it later. */
    ElmAttrData frame = { .color = 0, .weight = 4, .useFlags = ATTR_USE_COLOR | ATTR_USE_WEIGHT };
    ElmAttrData title = { .useFlags = ATTR_USE_SIZE | ATTR_USE_JUST, .textWidth = 9, .textHeight = 9, .textJust = 7 };
    mclibElmAttr_setGroupeNames(1, "Drawing", DRAWING, 0);
    mclibElmAttr_addAttribute(FRAME, "Frame", DRAWING, ATTR_KIND_SYMBOLOGY, 0, NULL, 0, &frame);
    mclibElmAttr_addAttribute(TITLE, "Title", DRAWING, ATTR_KIND_TEXT, 0, NULL, 0, &title);

    /* The first element starts a descriptor, the others are hung on it. */
    Point3d corners[5] = { { 0, 0, 0 }, { 170, 0, 0 }, { 170, 120, 0 }, { 0, 120, 0 }, { 0, 0, 0 } };
    Point3d centre = { 85, 60, 0 };
    ElementDescr *page = NULL;
    if (mclibElement_createShape(corners, 5, 0, FRAME, NULL) != MCLIB_SUCCESS) return 1;
    if (mdlElmdscr_new(&page, NULL, dgnBufP) != MDL_SUCCESS) return 1;
    int made = mclibElement_createText(&centre, "Hello, paper", 1.0, NULL, TITLE, page) == MCLIB_SUCCESS;

    /* 170 x 120 mm, 20 mm from the left and 150 mm from the lower edge of the sheet. */
    int opened = made && mclibPrint_fopen(file, 0);
    if (opened) {
        mclibPrint_printElementDescr(page, 20, 150, 170, 120);
        mclibPrint_fclose();
    }
    mdlElmdscr_freeAll(&page);
    return opened && mclibPrint_jobStatus() == MCLIB_SUCCESS ? 0 : 1;
}
