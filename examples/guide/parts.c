/* parts: a list of parts from a text file, on the pages of a form. docs/guide.md tells how it grows. */
#include <mclib/mclib.h>
#include <stdio.h>

#include <mchost/mdl/resource.h>

enum { ROWS = 16, MOST_PARTS = 320, MOST_PAGES = MOST_PARTS / ROWS, NAME_LENGTH = 4 };
enum { MESSAGES = 1 }; /* our string list, and its strings */
enum { NO_LIST = 1, BAD_LINES, NO_PART, NO_NAME, NO_NUMBER, NO_LENGTH, NO_MASS, TOO_MANY };
enum { LAST_LIST = MDL_RSC_TYPE('P', 'a', 'r', 't') };

typedef struct Part {
    char name[256];
    int number;
    double length, mass; /* m, and kg of all of them */
} Part;

static Part parts[MOST_PARTS];
static int partCount, pageCount;
static char names[MOST_PAGES][32], *pageNames[MOST_PAGES];

/* The value of the formula at the position. Without one the position is where it went wrong. */
static int readFormula(McFii *f, int parameterCount, double length, double *value)
{
    char formula[256], parameter[MCLIB_FORMULA_NAME_SIZE] = "L", *start = f->position;
    int error = 0, column = 1;
    mclibFii_readSubString(f, " \t", formula);
    *value = *mclibParse_parseFormulaP(formula, &error, parameterCount, parameter, &length);
    if (!error) return MCLIB_SUCCESS;
    mclibParse_getFormulaError(&column);
    f->position = start + column - 1;
    return MCLIB_ERROR;
}

/* One line: 0, or the message that tells what is wrong at the position. */
static int readPart(McFii *f)
{
    Part part;
    double massOfOne = 0;
    if (mclibFii_isText(f, "PART ") != MCLIB_SUCCESS) return NO_PART;
    if (!mclibFii_readString(f, "\"", part.name)) return NO_NAME;
    if (mclibFii_isLong(f, " \t") != MCLIB_SUCCESS || mclibFii_getLong(f) < 1) return NO_NUMBER;
    part.number = mclibFii_getLong(f);
    if (readFormula(f, 0, 0, &part.length) != MCLIB_SUCCESS) return NO_LENGTH;
    if (readFormula(f, 1, part.length, &massOfOne) != MCLIB_SUCCESS) return NO_MASS;
    if (partCount == MOST_PARTS) return TOO_MANY;
    part.mass = part.number * massOfOne;
    parts[partCount++] = part;
    return 0;
}

static int readParts(const char *fileName)
{
    McFii f;
    int faults = 0;
    if (mclibFii_open(&f, fileName, "r") != MCLIB_SUCCESS) return MCLIB_ERROR; /* the library has told it */
    while (mclibFii_readNewLine(&f) == MCLIB_SUCCESS) {
        const int fault = readPart(&f);
        if (!fault) continue;
        const int column = (int)(f.position - f.line) + 1;
        mclibError_rscListPrintf(LIST_COLLECT, MESSAGES, fault, f.lineNumber, column, f.line);
        ++faults;
    }
    const int wholeFile = mclibFii_eof(&f);
    mclibFii_close(&f);
    if (faults > 0) mclibError_rscListPrintf(LIST_SHOW, MESSAGES, BAD_LINES, fileName);
    return wholeFile && faults == 0 ? MCLIB_SUCCESS : MCLIB_ERROR;
}

static void namePages(void)
{
    pageCount = partCount > 0 ? (partCount + ROWS - 1) / ROWS : 1;
    for (int i = 0; i < pageCount; ++i) {
        snprintf(names[i], sizeof names[i], "Page %d of %d", i + 1, pageCount);
        pageNames[i] = names[i];
    }
}

/* The page function: the form with the values of one page. */
static void makePage(int page, char *name, ElementDescr **result, int inDrawing)
{
    FormData *form = mclibMatList_createFormDataArray(NAME_LENGTH, ROWS);
    double sum = 0;
    (void)inDrawing;
    mclibMatList_insertSystemData(form);
    mclibMatList_insertLogo(form);
    mclibProject_insertProjectData(form);
    mclibMatList_insertValue(form, "PAGE", MCLIB_FORM_TEXT, 0, name);
    for (int row = 0; row < ROWS && page * ROWS + row < partCount; ++row) {
        const Part *part = &parts[page * ROWS + row];
        mclibMatList_insertValue(form, "NAME", MCLIB_FORM_TEXT, row, part->name);
        mclibMatList_insertValue(form, "NUMB", MCLIB_FORM_INTEGER, row, part->number);
        if (part->length > 0) mclibMatList_insertValue(form, "LENG", MCLIB_FORM_FLOAT, row, part->length);
        mclibMatList_insertValue(form, "MASS", MCLIB_FORM_FLOAT, row, part->mass);
        sum += part->mass;
    }
    mclibMatList_insertValue(form, "SUMM", MCLIB_FORM_FLOAT, 0, sum);
    mclibMatList_generatePageElementDescr("PARTS", "parts.cel", result, form, 1);
    mclibMatList_destroyFormDataArray(form);
}

/* To a file without the preview, and from there to a printer, if one is named. */
static int printList(const char *file, const char *printer)
{
    if (mclibPreview_printPages(pageCount, pageNames, makePage, file, PRINT_POSTSCRIPT, 0, pageCount - 1) !=
        MCLIB_SUCCESS)
        return 1;
    return printer && mclibPrint_sendFileToPrinter(file, printer, 1) != 0;
}

int main(int argc, char **argv)
{
    char list[256] = "";
    if (mclibMain_initMcLib("parts", argc, argv) != MCLIB_SUCCESS) return 1;
    mclibUpf_open(NULL, "PARTS_PREFERENCES", "parts_preferences.rsc");

    /* argv[1] is how we were started; our own arguments begin behind it. */
    if (argc > 2) snprintf(list, sizeof list, "%s", argv[2]);
    else mclibUpf_load(LAST_LIST, 1, list, sizeof list);
    if (list[0] == '\0') {
        mclibError_rscMsgBoxPrintf(MSGBOX_NOTICE, MESSAGES, NO_LIST);
        return 1;
    }
    if (readParts(list) != MCLIB_SUCCESS) return 1;
    mclibUpf_save(LAST_LIST, 1, list, sizeof list);

    namePages();
    if (argc > 3) return printList(argv[3], argc > 4 ? argv[4] : NULL);
    return mclibPreview_dialogOpen(pageCount, pageNames, makePage, NULL) ? 0 : 1;
}
