/* Forms: values by name and row, the field codes that show them, and the pages that are made of a form and its values.
 *
 * A form is a cell whose texts hold field codes such as "%03%.2MASS". An application puts its values in a form data
 * array; a page is the cell with every code replaced by its value. docs/forms.md tells what a field code looks like. */
#ifndef MCLIB_FORMS_H
#define MCLIB_FORMS_H

#include "mclib/frame/export.h"
#include "mchost/mdl/bitmask.h"

/* Kinds of value. */
enum {
    MCLIB_FORM_FLOAT = 1,    /* value argument: double */
    MCLIB_FORM_INTEGER = 2,  /* int32_t */
    MCLIB_FORM_TEXT = 3,     /* char *: a copy is kept */
    MCLIB_FORM_CHAR = 4,     /* char *: its first byte is kept */
    MCLIB_FORM_CALLBACK = 5, /* FormCallback, int32_t userArg, int32_t direct */
    MCLIB_FORM_HEAD = 255    /* the head of an array; no value */
};

/* A callback field's function. It may put a new descriptor into *newDescr, which then stands in the place of the text;
 * width and height are those of the text, in UOR. `row` counts from 0. What it returns isn't used. */
typedef int (*FormCallback)(int row, char *name, ElementDescr **newDescr, int userArg, double textWidth,
                            double textHeight);

/* One row's value, by the type of its node. */
typedef union FormValue {
    double floating;
    int32_t integer;
    char *text; /* owned by the node; may be null */
    char character;
    struct {
        FormCallback function;
        int32_t userArg;
        int32_t direct; /* 1: a native function of this library; 0: a function of an application */
    } callback;
    struct {
        int32_t rowCount, nameLength;
    } head; /* of the first node */
} FormValue;

/* A node of a form data array: the head, which describes the array, or a field. */
typedef struct FormData {
    char *name;        /* room for nameLength + 1 bytes; null in the head */
    int32_t type;      /* MCLIB_FORM_... */
    int32_t *isSet;    /* for each row: 1 when it has a value */
    FormValue *values; /* one for each row; one in the head */
    struct FormData *next;
} FormData;

/* ---- the array ---- */

/* A new array of rowCount rows (0 or more), for names of nameLength characters (1 or more), to be given back with
 * mclibMatList_destroyFormDataArray. Null for numbers below that, with a line on the console, or when out of memory. */
MCLIB_EXPORT FormData *mclibMatList_createFormDataArray(int nameLength, int rowCount);
/* Frees the array with the texts in it; null is allowed. */
MCLIB_EXPORT void mclibMatList_destroyFormDataArray(FormData *form);

/* Stores the value that follows `row` in the field of that name. A name is told by its first nameLength characters. The
 * first insertion makes the field and gives it its type, for good: later on the value is what that type wants, whatever
 * `type` says, but for floats. A float for an integer field is cut to it, and what isn't one becomes a float for a
 * float field; a float can't become a text or a callback. A text keeps at most 1,023 characters; null counts as empty.
 * Results: 0; 1 when form or name is null; 2 when row isn't 0 to rowCount - 1; 3 when the field's type isn't 1 to 5,
 * when the value can't be converted (the row keeps what it has), or when out of memory. */
MCLIB_EXPORT int mclibMatList_insertValue(FormData *form, const char *name, int type, int row, ...);
/* Takes a file name apart: row 0 of the field `name` its device with ":", row 1 its directory with every "%" doubled,
 * row 2 its name without extension, row 3 its extension with ".", row 4 its name with extension. Rows that the array
 * hasn't are left out. */
MCLIB_EXPORT void mclibMatList_insertFileName(const char *path, const char *name, FormData *form);
/* The fields "file" (of the open design file), "date" and "time" (now): 8 rows hold all of them. In `date`: day "%d",
 * day "%02d", weekday, month's name, month "%d", month "%02d", year, year "%02d"; in `time`: hour, minute and second,
 * each "%d" and then "%02d". Names of days and months are in the application's language. */
MCLIB_EXPORT void mclibMatList_insertSystemData(FormData *form);
/* The field "LOGO", row 0: cell "LOGO" of library "logo.cel". As mclibMatList_insertValue. */
MCLIB_EXPORT int mclibMatList_insertLogo(FormData *form);
/* The same with another cell and library (at most 255 characters each), which then hold for every application. */
MCLIB_EXPORT int mclibMatList_insertLogoExt(FormData *form, const char *cellName, const char *library);

/* ---- the formatter ---- */

/* Results of mclibMatList_generateFormatedText besides 1 to 4, the type of the last field whose name matched (set or
 * not). MCLIB_FORM_TEXT (3) also when no field matched and when form is null. */
enum {
    MCLIB_FORM_BAD_ROW = 0,    /* a code named a row beyond the array; the user has seen a message */
    MCLIB_FORM_CALLED = 5      /* a callback field was met with its row set, which ends the text there; or its row
                                  wasn't set and it was the last to match */
};
/* Writes `format` with its field codes replaced by their values to `out`: at most 511 characters and a NUL. With
 * useRows 1 a code is "%NN%format NAME" without the blank, NN counted from 1; with 0 it is "%format NAME", and the row
 * is the first. newDescr gets what a callback field makes, else null; when it is null itself no callback is called.
 * textWidth and textHeight go to the callback. */
MCLIB_EXPORT int mclibMatList_generateFormatedText(const char *format, FormData *form, char *out,
                                                   ElementDescr **newDescr, double textWidth, double textHeight,
                                                   int useRows);

/* ---- pages ---- */

/* Results of mclibMatList_generatePageElementDescr. */
enum { MCLIB_FORM_NO_LIBRARY = -2, MCLIB_FORM_NO_CELL = -1 };
/* Makes one page: a new descriptor of the cell in *page, to be freed, with every text of it filled, and the page's
 * scale computed (see mclibMatList_getCurrentPageScaleP). cellOption goes to mdlCell_getElmDscr. 0;
 * MCLIB_FORM_NO_LIBRARY when the library can't be loaded; MCLIB_FORM_NO_CELL when it hasn't the cell; *page is null
 * then. While export is switched on the values are exported instead, and the export's result is given: MCLIB_ERROR when
 * there is nothing to export, or nothing to export to. */
MCLIB_EXPORT int mclibMatList_generatePageElementDescr(const char *cellName, const char *library, ElementDescr **page,
                                                       FormData *form, int cellOption);
/* Fills the texts of a model itself, those in cells and text nodes too, on the levels of the mask (null: on all).
 * `model` null is the active one. 0; MCLIB_ERROR when no scan could be made. */
MCLIB_EXPORT int mclibMatList_changeTextInMasterFile(FormData *form, const MdlBitMask *levelMask, ModelRef *model);
/* The scale of the last page: what it must be multiplied by to fill the printable area of the printer set-up. 1 before
 * the first page, and for a page without an extent or a set-up without an area. Null for an application that isn't
 * registered. */
MCLIB_EXPORT double *mclibMatList_getCurrentPageScaleP(void);
/* Other than 0: mclibMatList_generatePageElementDescr exports instead of making a page. */
MCLIB_EXPORT void mclibMatList_setExportToExcel(int flag);

#endif
