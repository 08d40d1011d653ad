/* Dialogs: boxes made from layouts of a resource file, their items, the messages that hooks get, and drawing.
 *
 * A layout gives a dialog its id, title, size and hook, and each item its kind, id, label, size, access string and
 * hook. An access string such as "mgdP->printDevice" names a value of a published structure; the manager moves values
 * between it and the item. The manager calls hooks in the context of the application that opened the dialog; a hook
 * gets one DialogMessage, sets `handled` to 1 when it takes it and else to 0. Opening sends DIALOG_CREATE (the items
 * can be found already), ITEM_CREATE to each item, takes the items' values from their access strings (each item gets
 * ITEM_FILL just before), and sends DIALOG_INIT; items are drawn when the dialog is shown, and again when they were
 * moved or the window's extent changed. Pressing a button sends one ITEM_BUTTON with state 1 and ITEM_ACTIVATED; a
 * release isn't sent. A change by the user sends ITEM_STATE_CHANGED, a double click or Enter ITEM_ACTIVATED. A click in
 * a list box sends ITEM_BUTTON in front of these, with state 1 and its click count. A window
 * that its user has drawn to another size sends DIALOG_RESIZE. Closing sends ITEM_DESTROY to each item and
 * DIALOG_DESTROY. The dialogs of an application that ends are closed in this way. A handle of a dialog or item that is
 * gone is harmless: calls on it fail, or give 0 or null. Drawing calls of hooks are kept as the window's display list,
 * which a front end shows. */
#ifndef HOST_MDL_DIALOG_H
#define HOST_MDL_DIALOG_H

#include "types.h"

/* Message types. */
enum {
    DIALOG_CREATE = 0,
    DIALOG_INIT = 1,
    DIALOG_DESTROY = 2,
    DIALOG_RESIZE = 4,      /* of a dialog with DIALOG_SIZABLE: its user has let go of the window's edge */
    DIALOG_BUTTON = 25,     /* the second mouse button, on an item: the time to offer a menu */
    ITEM_CREATE = 50,
    ITEM_DESTROY = 51,
    ITEM_DRAW = 52,
    ITEM_BUTTON = 54,
    ITEM_CELL_EDITED = 60,  /* of a list box: the text of a cell has been edited, and stands in its list model */
    ITEM_FILL = 69,         /* once, before the item first takes its value: the time to give it its rows */
    ITEM_ACTIVATED = 70,
    ITEM_STATE_CHANGED = 71,
    ITEM_SIGNAL = 72        /* sent by a program: mdlDialog_itemSignal */
};

/* Attribute bits of a dialog, which the hook sets on DIALOG_CREATE. */
enum { DIALOG_SIZABLE = 0x40 }; /* its user may draw the window to another size */

/* Kinds of items; the value is the item's four-character type. */
enum {
    ITEM_PUSH_BUTTON = 0x6450424e,   /* dPBn */
    ITEM_TEXT = 0x64547874,          /* dTxt */
    ITEM_LABEL = 0x644c626c,         /* dLbl */
    ITEM_LIST_BOX = 0x644c4278,      /* dLBx */
    ITEM_GENERIC = 0x6447656e,       /* dGen */
    ITEM_TOGGLE = 0x6454426e,        /* dTBn */
    ITEM_OPTION_BUTTON = 0x644f426e, /* dOBn */
    ITEM_GROUP_BOX = 0x64474278,     /* dGBx */
    ITEM_COMBO_BOX = 0x64434278      /* dCBx */
};
enum { MDL_DIALOG_BOX = 0x64426f78 }; /* dBox: the type of a dialog box resource */
/* Ids of the push buttons that end a modal dialog, and the replies that they give it. */
enum { MDL_BUTTON_FIRST = -3, MDL_BUTTON_SECOND = -4 };
enum { MDL_REPLY_FIRST = 3, MDL_REPLY_SECOND = 4 };
enum { MDL_DOUBLE_CLICK = 0x200, MDL_SECOND_BUTTON = 2, MDL_BUTTON_DOWN = 515 };
/* Bits of DialogMessage::itemFlags: the item takes the focus; it is the one that Enter presses. */
enum { ITEM_TAKES_FOCUS = 1, ITEM_IS_DEFAULT = 2 };

typedef struct DialogMessage {
    int32_t handled;        /* set by the hook */
    int32_t type;           /* one of the types above */
    MdlDialog *dialog;
    MdlItem *item;          /* null in a message to the dialog */
    int32_t hookId;
    int32_t itemFlags;      /* ITEM_CREATE: ITEM_TAKES_FOCUS, ITEM_IS_DEFAULT; a hook may clear them */
    int32_t state;          /* ITEM_BUTTON: 1, pressed; others: the item's value as a number, 0 for other texts */
    int32_t changed;        /* ITEM_STATE_CHANGED: 1 when the value isn't the one before */
    int32_t attributes;     /* DIALOG_CREATE: attribute bits of the dialog, which the hook may add to; ITEM_BUTTON:
                             * MDL_DOUBLE_CLICK or 0; DIALOG_BUTTON: MDL_SECOND_BUTTON */
    int32_t clickCount;     /* ITEM_BUTTON: 1, or 2 for a double click; DIALOG_BUTTON: MDL_BUTTON_DOWN */
    int32_t row, column;    /* ITEM_BUTTON of a list box, ITEM_CELL_EDITED: the cell; -1 for none */
    int32_t value;          /* ITEM_BUTTON of a menu's entry: the entry's value */
    int32_t reply;          /* DIALOG_DESTROY: the button that ended it, 0 when closed otherwise */
    int32_t resized;        /* DIALOG_RESIZE: 1 when the size isn't the one before */
    int32_t signal;         /* ITEM_SIGNAL: the two numbers that were sent */
    int32_t signalValue;
} DialogMessage;

typedef void (*DialogHookFunction)(DialogMessage *message);

/* A row of a hook table. */
typedef struct DialogHook {
    int32_t id;
    DialogHookFunction function;
} DialogHook;

/* Publishes hooks of the current application under their ids; an id that it has published already is replaced. A dialog
 * looks for a hook in its own application first, then in the others. */
MDL_EXPORT int mdlDialog_hookPublish(int32_t count, const DialogHook *hooks) MDL_NOEXCEPT;

/* ---- published data ---- */

typedef struct SymbolSet SymbolSet;
/* A set of names for access strings. Null when out of memory. */
MDL_EXPORT SymbolSet *mdlCExpression_initializeSet(int32_t kinds, int32_t reserved1, int32_t reserved2) MDL_NOEXCEPT;

/* A field of a published structure. */
typedef enum FieldType {
    FIELD_INT32, FIELD_UINT32, FIELD_BYTE, FIELD_DOUBLE, FIELD_CHARS, FIELD_WCHARS, FIELD_STRUCT, FIELD_POINTER
} FieldType;
typedef struct StructField {
    const char *name;       /* null ends a table */
    FieldType type;
    uint32_t offset;
    uint32_t size;          /* bytes of one element */
    uint32_t count;         /* elements of an array, else 1; text arrays count as one element */
    const char *structName; /* FIELD_STRUCT and FIELD_POINTER: the structure it is or points to */
} StructField;
/* Tells the fields of a structure. The table must stay; a structure that is told again takes the new table. */
MDL_EXPORT int mdlDialog_publishStructure(SymbolSet *set, const char *structName,
                                          const StructField *fields) MDL_NOEXCEPT;
/* Publishes the pointer variable at `address` to a structure as `name`: "name->field" then reads what the pointer holds
 * at that moment. */
MDL_EXPORT int mdlDialog_publishComplexPtr(SymbolSet *set, const char *structName, const char *name,
                                           void *address) MDL_NOEXCEPT;

/* The value of an access string as text (512 bytes), and back. MDL_ERROR for an unknown name or a null pointer. */
MDL_EXPORT int mdlDialog_getAccessValue(char *text, int32_t size, const char *accessString) MDL_NOEXCEPT;
MDL_EXPORT int mdlDialog_setAccessValue(const char *accessString, const char *text) MDL_NOEXCEPT;

/* ---- dialogs ---- */

/* Opens a dialog from its layout in `rscFile` (0: any open one), for the current application; null when there is no
 * such layout. A dialog that the application has open already is brought to the front. */
MDL_EXPORT MdlDialog *mdlDialog_open(RscHandle rscFile, int32_t dialogId) MDL_NOEXCEPT;
/* Opens it, runs it until one of the two buttons or a close ends it, and closes it. The reply of the button goes to
 * replyP; MDL_REPLY_SECOND also when the dialog was closed without one. With that reply: MDL_ERROR when nobody answers,
 * MDL_DIALOG_NOT_SHOWN when there is no such layout or nowhere to show it. */
enum { MDL_DIALOG_NOT_SHOWN = 0x8001 };
MDL_EXPORT int mdlDialog_openModal(int32_t *replyP, RscHandle rscFile, int32_t dialogId) MDL_NOEXCEPT;
/* An open dialog of that id, of the given application (null: any). */
MDL_EXPORT MdlDialog *mdlDialog_find(int32_t dialogId, MdlDesc *desc) MDL_NOEXCEPT;
/* The same by resource type, MDL_DIALOG_BOX. */
MDL_EXPORT MdlDialog *mdlDialog_findByTypeAndId(int32_t type, int32_t dialogId, MdlDesc *desc) MDL_NOEXCEPT;
/* Closes at once. The two arguments are 0 and 1. */
MDL_EXPORT int mdlWindow_close(MdlDialog *dialog, int32_t reserved, int32_t force) MDL_NOEXCEPT;
/* Closes when control is back in the host. */
MDL_EXPORT int mdlDialog_closeCommandQueue(MdlDialog *dialog) MDL_NOEXCEPT;
MDL_EXPORT int32_t mdlDialog_getId(const MdlDialog *dialog) MDL_NOEXCEPT;
MDL_EXPORT void mdlWindow_titleSet(MdlDialog *dialog, const char *title) MDL_NOEXCEPT;
/* Sets the size of the content area. No DIALOG_RESIZE is sent. What hooks drew is dropped, and is drawn anew. */
MDL_EXPORT void mdlWindow_extentSet(MdlDialog *dialog, int32_t width, int32_t height) MDL_NOEXCEPT;
/* Draws the dialog as it stands, items included, into a new picture; the name must end in .png. MDL_ERROR when it can't
 * be written. */
MDL_EXPORT int mdlWindow_savePicture(MdlDialog *dialog, const char *fileName) MDL_NOEXCEPT;
/* Moves the focus to an item (null: away from all). A running edit of a text item ends: its text is taken as if the
 * user had entered it, or, when the item can't take it, dropped. MDL_ERROR for an item that can't have the focus. */
MDL_EXPORT int mdlDialog_setFocus(MdlDialog *dialog, MdlItem *item) MDL_NOEXCEPT;
MDL_EXPORT void mdlWindow_contentRectGet(DialogRect *rect, const MdlDialog *dialog) MDL_NOEXCEPT; /* from (0, 0) */

/* ---- items: numbered from 0 in order of the layout ---- */

MDL_EXPORT int32_t mdlDialog_itemCount(const MdlDialog *dialog) MDL_NOEXCEPT;
MDL_EXPORT MdlItem *mdlDialog_itemGetByIndex(MdlDialog *dialog, int32_t index) MDL_NOEXCEPT;
/* The item `steps` places behind this one in the layout (below 0: in front of it); null where there is none. */
MDL_EXPORT MdlItem *mdlDialog_itemNeighbour(const MdlItem *item, int32_t steps) MDL_NOEXCEPT;
MDL_EXPORT int32_t mdlDialog_itemIndex(const MdlItem *item) MDL_NOEXCEPT; /* -1 for none */
MDL_EXPORT MdlItem *mdlDialog_itemGetByTypeAndId(MdlDialog *dialog, int32_t type, int32_t id) MDL_NOEXCEPT;
MDL_EXPORT int32_t mdlDialog_itemType(const MdlItem *item) MDL_NOEXCEPT;
MDL_EXPORT int32_t mdlDialog_itemId(const MdlItem *item) MDL_NOEXCEPT;
MDL_EXPORT void mdlDialog_itemRect(DialogRect *rect, const MdlItem *item) MDL_NOEXCEPT;
/* Places on the offset scale: a pixel counts 1, and a negative offset means the same place as the positive one. */
MDL_EXPORT void mdlDialog_itemMove(MdlItem *item, int32_t left, int32_t top) MDL_NOEXCEPT;
MDL_EXPORT void mdlDialog_itemSetExtent(MdlItem *item, int32_t width, int32_t height) MDL_NOEXCEPT;
MDL_EXPORT void mdlDialog_itemSetLabel(MdlItem *item, const char *label) MDL_NOEXCEPT;
MDL_EXPORT const char *mdlDialog_itemGetLabel(const MdlItem *item) MDL_NOEXCEPT;
/* A group box shows and hides its members with it; one that is hidden by itself stays so. */
MDL_EXPORT void mdlDialog_itemShow(MdlItem *item, int32_t show) MDL_NOEXCEPT;
/* 1 or 0: neither it nor its group box is hidden */
MDL_EXPORT int mdlDialog_itemIsShown(const MdlItem *item) MDL_NOEXCEPT;
/* An item that isn't enabled shows its value, and its user can't change it. */
MDL_EXPORT void mdlDialog_itemEnable(MdlItem *item, int32_t enable) MDL_NOEXCEPT;
MDL_EXPORT int mdlDialog_itemIsEnabled(const MdlItem *item) MDL_NOEXCEPT; /* 1 or 0 */
/* Takes the value from the access string, and shows it. */
MDL_EXPORT int mdlDialog_itemSynch(MdlItem *item) MDL_NOEXCEPT;
MDL_EXPORT int mdlDialog_itemsSynch(MdlDialog *dialog) MDL_NOEXCEPT;
MDL_EXPORT const char *mdlDialog_itemGetValue(const MdlItem *item) MDL_NOEXCEPT;
/* Sets the value as a user would: access string and hooks with ITEM_STATE_CHANGED. */
MDL_EXPORT int mdlDialog_itemSetValue(MdlItem *item, const char *value) MDL_NOEXCEPT;
/* Has the item's hook draw it again. */
MDL_EXPORT void mdlDialog_itemDraw(MdlItem *item) MDL_NOEXCEPT;
/* Sends the item's hook ITEM_SIGNAL with two numbers that the two agree on. */
MDL_EXPORT int mdlDialog_itemSignal(MdlItem *item, int32_t signal, int32_t value) MDL_NOEXCEPT;

/* Format of a text item that shows a number, such as "%8.3f": 32 bytes, empty when it has none. MDL_ERROR for another
 * kind of item, and for a format to be set that is longer or hasn't exactly one conversion; an empty one takes it
 * away. */
MDL_EXPORT int mdlDialog_textGetInfo(char *format, const MdlItem *item) MDL_NOEXCEPT;
MDL_EXPORT int mdlDialog_textSetInfo(MdlItem *item, const char *format) MDL_NOEXCEPT;

/* The string list of a list box, shown in `columns` columns (member row * columns + column; 0: as many as before); the
 * list stays its owner's. More about list boxes: dialog_items.h. */
MDL_EXPORT int mdlDialog_listBoxSetStrListP(MdlItem *item, StringList *list, int32_t columns) MDL_NOEXCEPT;
MDL_EXPORT StringList *mdlDialog_listBoxGetStrListP(const MdlItem *item) MDL_NOEXCEPT;
MDL_EXPORT int mdlDialog_listBoxSelectRow(MdlItem *item, int32_t row) MDL_NOEXCEPT; /* -1: none */
MDL_EXPORT int32_t mdlDialog_listBoxGetSelectedRow(const MdlItem *item) MDL_NOEXCEPT;

/* Combo boxes: rows of `stringsPerRow` members of a string list (member row * stringsPerRow + column), of which the
 * first is on show when the box is closed; the list stays its owner's. The item's value is the number of the chosen
 * row, -1 for none, also where an access string keeps it. */
MDL_EXPORT int mdlDialog_comboBoxSetStrListP(MdlItem *item, StringList *list, int32_t stringsPerRow) MDL_NOEXCEPT;
MDL_EXPORT StringList *mdlDialog_comboBoxGetStrListP(const MdlItem *item) MDL_NOEXCEPT;
/* -1: none; the access string keeps it too */
MDL_EXPORT int mdlDialog_comboBoxSelectRow(MdlItem *item, int32_t row) MDL_NOEXCEPT;
MDL_EXPORT int32_t mdlDialog_comboBoxGetSelectedRow(const MdlItem *item) MDL_NOEXCEPT;

/* Option buttons: rows of a label and a value; the item's value is that of the chosen row. A row that isn't enabled
 * can't be chosen by the user. */
MDL_EXPORT int mdlDialog_optionButtonDeleteAll(MdlItem *item) MDL_NOEXCEPT;
MDL_EXPORT int mdlDialog_optionButtonInsert(MdlItem *item, const char *label, int32_t value) MDL_NOEXCEPT;
MDL_EXPORT int32_t mdlDialog_optionButtonCount(const MdlItem *item) MDL_NOEXCEPT;
MDL_EXPORT int mdlDialog_optionButtonGet(const MdlItem *item, int32_t row, const char **labelP,
                                         int32_t *valueP) MDL_NOEXCEPT;
MDL_EXPORT int mdlDialog_optionButtonEnableRow(MdlItem *item, int32_t row, int32_t enable) MDL_NOEXCEPT;
MDL_EXPORT int mdlDialog_optionButtonRowIsEnabled(const MdlItem *item, int32_t row) MDL_NOEXCEPT; /* 1 or 0 */

/* ---- drawing into a window's display list; coordinates in pixels of the content area ---- */

/* Fonts by index. Heights in pixels: 16 and 14. */
enum { MDL_FONT_DIALOG = 2, MDL_FONT_FIXED = 4 };
MDL_EXPORT int32_t mdlDialog_fontHeight(int32_t fontIndex) MDL_NOEXCEPT;
MDL_EXPORT int32_t mdlDialog_stringWidth(const char *text, int32_t fontIndex) MDL_NOEXCEPT;
MDL_EXPORT void mdlDialog_setFontIndex(MdlDialog *dialog, int32_t fontIndex) MDL_NOEXCEPT;
MDL_EXPORT int32_t mdlDialog_getFontIndex(const MdlDialog *dialog) MDL_NOEXCEPT;
MDL_EXPORT int mdlDialog_textDrawCD(MdlDialog *dialog, int32_t x, int32_t y, const char *text) MDL_NOEXCEPT;
/* A line through `count` points (2 or more), x and y of each in turn; `color` is an element's colour index. */
MDL_EXPORT int mdlWindow_polylineDraw(MdlDialog *dialog, const int32_t *points, int32_t count,
                                      int32_t color) MDL_NOEXCEPT;
/* Takes all that was drawn out of the display list, of the dialog and of its items. */
MDL_EXPORT int mdlWindow_clear(MdlDialog *dialog) MDL_NOEXCEPT;
/* Fixed colours are numbers from 0, the ground that drawings stand on, to 15; 7 is for lines on the ground. The
 * colour's index for this window's calls; MDL_ERROR for another number. */
MDL_EXPORT int32_t mdlWindow_fixedColorIndexGet(const MdlDialog *dialog, int32_t fixedColor) MDL_NOEXCEPT;
/* How mdlWindow_lineDraw draws from now on: line style 0 to 7, a colour's index, mode (0; others aren't known) and
 * width in pixels (1 or more). A new window has style 0, colour 7 and width 1. MDL_ERROR, with nothing changed, for
 * other values. */
MDL_EXPORT int mdlWindow_lineStyleSet(MdlDialog *dialog, int32_t style, int32_t colorIndex, int32_t mode,
                                      int32_t width) MDL_NOEXCEPT;
MDL_EXPORT int mdlWindow_lineDraw(MdlDialog *dialog, int32_t x0, int32_t y0, int32_t x1, int32_t y1) MDL_NOEXCEPT;
/* A rectangle with the frame of a button, raised or sunken; `filled` also covers what lies inside with the face of a
 * dialog. */
MDL_EXPORT int mdlDialog_rectDrawBeveled(MdlDialog *dialog, const DialogRect *rect, int32_t sunken,
                                         int32_t filled) MDL_NOEXCEPT;
/* Covers the rectangle with a fixed colour; its right and bottom edges are outside. */
MDL_EXPORT int mdlDialog_rectFill(MdlDialog *dialog, const DialogRect *rect, int32_t fixedColor) MDL_NOEXCEPT;
MDL_EXPORT int mdlDialog_rectDrawEdge(MdlDialog *dialog, const DialogRect *rect, int32_t sunken) MDL_NOEXCEPT;
MDL_EXPORT void mdlDialog_rectInset(DialogRect *rect, int32_t dx, int32_t dy) MDL_NOEXCEPT;
/* Draws the icon `iconId` in a fixed colour. MDL_ERROR when no open resource file has it. */
MDL_EXPORT int mdlWindow_iconDraw(MdlDialog *dialog, RscHandle rscFile, int32_t iconId, int32_t x, int32_t y,
                                  int32_t colorIndex) MDL_NOEXCEPT;

#endif
