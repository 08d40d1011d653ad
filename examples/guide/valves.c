/* Looks through the open drawing: for texts that are numbers of valves, and for the valves beside which they stand.
 * Called with "draw" it puts some valves there first. */
#include <string.h>

#include <mchost/mdl/elmdscr.h>
#include <mchost/mdl/system.h>
#include <mchost/mdl/text.h>
#include <mchost/mdl/transform.h>
#include <mclib/mclib.h>

/* ---- something to look for ---- */

static void drawText(double x, double y, const char *words)
{
    const Point3d origin = {x, y, 0};
    const TextSize size = {1, 2.5, 2.5, 1};
    mdlText_create(dgnBufP, NULL, words, &origin, NULL, &size, NULL, 0);
    if (mdlElement_add(dgnBufP) == 0) mdlSystem_noteFailure();
}

/* A box of 8 by 5 with a number above it. */
static void drawValve(double x, double y, const char *number)
{
    const Point3d corners[] = {{x, y, 0}, {x + 8, y, 0}, {x + 8, y + 5, 0}, {x, y + 5, 0}};
    mdlShape_create(dgnBufP, NULL, corners, 4, 0);
    if (mdlElement_add(dgnBufP) == 0) mdlSystem_noteFailure();
    drawText(x, y + 7, number);
}

static void draw(void)
{
    mdlCurrTrans_begin();
    mdlCurrTrans_masterUnitsIdentity();
    drawValve(0, 0, "V-101");
    drawValve(40, 0, "V-102 ?");
    drawValve(80, 0, "V-103");
    drawText(0, 40, "V-999");
    mdlCurrTrans_end();
}

/* ---- texts ---- */

static SearchTextSpec numberOfValve(void)
{
    SearchTextSpec spec;
    memset(&spec, 0, sizeof spec);
    strcpy(spec.pattern, "V-###");
    spec.weight = spec.style = spec.color = -1;
    spec.minHeight = spec.maxHeight = -1;
    spec.maxErrors = 2;
    return spec;
}

/* Called for each text that fits, and for each one that lies near. */
static void tellText(int *stop, MSElementBuffer *element, FilePos position, int32_t errors, SearchTextSpec *spec,
                     void *arg)
{
    char text[MDL_TEXT_CHARACTERS + 1] = "";
    (void)stop, (void)position, (void)spec, (void)arg;
    mdlText_extractString(text, element);
    toolSubsystem_printf("text %s: %d errors\n", text, errors);
}

static void findTexts(void)
{
    SearchTextSpec spec = numberOfValve();
    mclibSearch_Tekst(&spec, tellText, NULL, tellText, NULL);
}

/* ---- symbols ---- */

/* Called for each valve; `counter` is that of those without errors, or with them. */
static void countValve(int *status, ElementDescr *base, MSElementBuffer *texts, int32_t *errors,
                       SearchElementSpec *spec, void *counter)
{
    char number[MDL_TEXT_CHARACTERS + 1] = "";
    (void)status, (void)base, (void)spec;
    mdlText_extractString(number, &texts[0]);
    toolSubsystem_printf("valve %s: %d errors\n", number, errors[0]);
    ++*(int *)counter;
}

static void findValves(void)
{
    const Point3d low = {-1, 5, 0}, high = {12, 12, 0}; /* from the lower left corner of the valve */
    SearchTextSpec number = numberOfValve();
    SearchElementSpec valve;
    int certain = 0, doubtful = 0;
    memset(&valve, 0, sizeof valve);
    valve.group = SEARCH_GROUP_RECTANGLE;
    valve.minSizeA = 7.9;
    valve.maxSizeA = 8.1;
    valve.minSizeB = 4.9;
    valve.maxSizeB = 5.1;
    valve.weight = valve.style = valve.color = -1;
    valve.regionLow = &low;
    valve.regionHigh = &high;
    valve.regionCount = 1;
    valve.textSpecs = &number;
    valve.textSpecCount = 1;
    mclibSearch_InitElement();
    mclibSearch_Element(&valve, countValve, &certain, countValve, &doubtful, 0);
    toolSubsystem_printf("%d valves, and %d in doubt\n", certain, doubtful);
}

int main(int argc, char **argv)
{
    if (mclibMain_initMcLib("valves", argc, argv) != MCLIB_SUCCESS) return 1;
    if (argc > 2 && strcmp(argv[2], "draw") == 0) draw();
    findTexts();
    findValves();
    return 0;
}
