/* Element attributes: the named looks of what an application draws.
 *
 * An application registers its attributes once, in groups, and then asks for them by number whenever it makes an
 * element: which colour, line style, weight, level and class it gets, and for texts and symbols which font, size,
 * justification and so on. An attribute applies only the values that its useFlags name; everything else on the element
 * stays as it was. The table belongs to the calling application. Without a registered application every call with a
 * status gives MCLIB_ERROR, and the others do nothing.
 *
 * `refresh` other than 0 brings the attribute dialog up to date where it is open. */
#ifndef MCLIB_ATTRIBUTES_H
#define MCLIB_ATTRIBUTES_H

#include "mclib/frame/export.h"

/* Flags of a group. */
enum { ATTR_GROUP_EDITABLE = 0x10 }; /* the user edits the list; its attributes have no hook */

/* Kinds of attributes: which values mean something beyond colour, style, weight, level and class. */
enum {
    ATTR_KIND_SYMBOLOGY = 1,       /* none */
    ATTR_KIND_SYMBOL = 2,          /* symbolNumber, picked from icons */
    ATTR_KIND_SIZED_SYMBOL = 3,    /* symbolNumber, symbolSize */
    ATTR_KIND_TEXT = 4,            /* text style, font, size, justification, slant */
    ATTR_KIND_LABELLED_SYMBOL = 5, /* symbolNumber, symbolSize, symbolText */
    ATTR_KIND_LABELLED_TEXT = 6,   /* as ATTR_KIND_TEXT without slant, and optionText */
    ATTR_KIND_OPTION_TEXT = 7      /* as ATTR_KIND_TEXT without slant, optionText, optionValue picked from options */
};

/* useFlags: the values that apply. */
enum {
    ATTR_USE_COLOR = 0x0001,
    ATTR_USE_STYLE = 0x0002,
    ATTR_USE_WEIGHT = 0x0004,
    ATTR_USE_LEVEL = 0x0008,
    ATTR_USE_CLASS = 0x0010,
    ATTR_USE_FONT = 0x0020,
    ATTR_USE_SIZE = 0x0040, /* textWidth, textHeight, textLineSpacing */
    ATTR_USE_JUST = 0x0080,
    ATTR_USE_STYLE_WIDTH = 0x0800, /* styleWidth on a named line style */
    ATTR_USE_STYLE_SCALE = 0x1000, /* styleScale on a named line style */
    ATTR_USE_SLANT = 0x2000,
    ATTR_USE_TEXT_STYLE = 0x4000
};

enum { ATTR_BY_LEVEL = -1, ATTR_STYLE_BY_LEVEL = 0x7FFFFFFF };

/* The values of an attribute, read and written as a whole. */
typedef struct ElmAttrData {
    int32_t color;  /* colour index; ATTR_BY_LEVEL */
    int32_t style;  /* line style number; ATTR_STYLE_BY_LEVEL; negative: the named style styleName */
    int32_t weight; /* line weight; ATTR_BY_LEVEL */
    wchar_t levelName[512];
    int32_t elementClass; /* 0 primary, any other value construction */
    uint32_t useFlags;
    int32_t reserved; /* carried along */
    double styleScale; /* of a named line style */
    double styleWidth; /* start and end width of a named line style */
    char styleName[64];
    union {
        __extension__ struct { /* kinds 2, 3, 5 */
            int32_t symbolNumber;
            double symbolSize;
            char symbolText[84]; /* kind 5: the text value */
        };
        wchar_t textStyleName[82]; /* kinds 4, 6, 7 */
    };
    int32_t textFont;
    double textWidth, textHeight; /* master units at scale 1 */
    int32_t textJust;             /* justification code of the host: text.h */
    double textLineSpacing;       /* line spacing as a factor of the text height */
    int32_t reserved2[2];         /* carried along */
    union {
        double textSlant;    /* kind 4: degrees */
        char optionText[84]; /* kinds 6, 7: the text value */
    };
    int32_t optionValue; /* kind 7: the value picked from the options */
} ElmAttrData;

/* Why an attribute hook is called. */
enum { ATTR_HOOK_CHANGED = 1, ATTR_HOOK_SHOWING = 2, ATTR_HOOK_SHOWN = 3, ATTR_HOOK_LEAVING = 4 };

/* What an attribute hook gets: a copy, so a hook can't change the attribute through it. */
typedef struct ElmAttrHookInfo {
    MdlDialog *dialog; /* the attribute dialog */
    int32_t id;
    int32_t reason; /* ATTR_HOOK_... */
    int32_t group;
    char *label;
    int32_t kind;
    ElmAttrData data;
} ElmAttrHookInfo;

/* Called by the dialog when the attribute is selected, left or changed. */
typedef void (*ElmAttrHook)(ElmAttrHookInfo *info);
/* Called after an edit, insert or add in a group. */
typedef void (*ElmAttrGroupChanged)(void);

/* ---- groups ---- */

/* Replaces the group table; what follows is `count` times (const char *name, int id, int flags). All attributes go too,
 * so it is called before attributes are added. */
MCLIB_EXPORT void mclibElmAttr_setGroupeNames(int count, ...);
/* The same with count times (const char *name, int id, int flags, ElmAttrGroupChanged changed), the last may be
 * null. */
MCLIB_EXPORT void mclibElmAttr_setGroupeNamesExtended(int count, ...);
/* Frees the group table; the attributes stay. */
MCLIB_EXPORT void mclibElmAttr_freeGroupeNames(void);

/* ---- the list ---- */

/* Appends an attribute. `label` has at most 79 characters; what is longer is cut. lockMask: the bits of useFlags that
 * the user may not change. A hook is kept only for a group in the table that isn't ATTR_GROUP_EDITABLE. An id that is
 * there already isn't refused: calls by id find the first one. Behind `data` follow, by kind:
 *   2, 3: int count, then count times (int iconId, int value)
 *   5:    int maxLength, const char *textLabel, int count, then count times (int iconId, int value)
 *   6:    int maxLength, const char *textLabel
 *   7:    const char *textLabel, int count, then count times (const char *optionLabel, int value)
 * 0; MCLIB_ERROR, with the list as it was, when there is no application or no memory. */
MCLIB_EXPORT int mclibElmAttr_addAttribute(int id, const char *label, int group, int kind, int lockMask,
                                           ElmAttrHook hook, int refresh, const ElmAttrData *data, ...);
/* Inserts a copy of the attribute `beforeId` in front of it, with an id of its own, the group that the dialog shows,
 * and the given label, lockMask and data. The dialog is always brought up to date. MCLIB_ERROR, with nothing changed,
 * for an unknown id, as from the three calls below, and when there is no memory. */
MCLIB_EXPORT int mclibElmAttr_insertAttribute(int beforeId, const char *label, int lockMask, const ElmAttrData *data);
/* Gives an attribute other values; Extended: and another hook (null: none), whatever its group. */
MCLIB_EXPORT int mclibElmAttr_editAttribute(int id, int refresh, const ElmAttrData *data);
MCLIB_EXPORT int mclibElmAttr_editAttributeExtended(int id, int refresh, const ElmAttrData *data, ElmAttrHook hook);
/* Takes an attribute off the list. The dialog, if asked for, then shows the one that stood before it. */
MCLIB_EXPORT int mclibElmAttr_deleteAttribute(int id, int refresh);
/* Takes all attributes off the list; the groups stay. */
MCLIB_EXPORT void mclibElmAttr_freeAllAttribute(void);

/* ---- looking up ---- */

/* The values of an attribute; `data` null only tests that there is one of that id. */
MCLIB_EXPORT int mclibElmAttr_extractData(int id, ElmAttrData *data);
/* The label of the attribute (of the last one, where several have that id) to `buffer`, at most 80 bytes; the buffer
 * stays as it was when there is none. */
MCLIB_EXPORT void mclibElmAttr_getLabelFromId(int id, char *buffer);
/* The id of the first attribute of the group with exactly that label; 0, which is also a legal id, when there is
 * none. */
MCLIB_EXPORT int mclibElmAttr_findIdForAttributeName(const char *name, int group);

/* ---- using ---- */

/* Applies the attribute to the element: colour, style, weight, level (made where the file hasn't it) and class, each as
 * useFlags say. A line style name that the file doesn't know leaves the style alone. The values go to `data` when it
 * isn't null. */
MCLIB_EXPORT int mclibElmAttr_setSymbologyAndProperties(MSElementBuffer *element, int id, ElmAttrData *data);
/* Makes a text element in `out` as the attribute says, and applies the attribute to it. `text` null is an empty text;
 * text sizes are divided by `scale`; template, origin, rotation and `reserved` (0) go to mdlText_createWide as they
 * are. MCLIB_ERROR, with `out` as it was, for an unknown id and for what the host refuses, such as more than 255
 * characters. */
MCLIB_EXPORT int mclibElmAttr_createText(MSElementBuffer *out, const MSElementBuffer *templateP, const char *text,
                                         const Point3d *origin, const RotMatrix *rotation, int32_t reserved, int32_t id,
                                         double scale, ElmAttrData *data);
/* Names a wide text of the application that the level chooser may write to; index 1 to 10, others are ignored. The text
 * stays the application's and has room for 512 characters. */
MCLIB_EXPORT void mclibElmAttr_setLevelNameVariable(int index, wchar_t *name);
/* Fills an option button with the attributes of a group: labels and ids. *selectedId becomes the first one's id unless
 * it is an id of the group; with no attribute in the group it stays. */
MCLIB_EXPORT void mclibElmAttr_insertOptionButton(MdlDialog *dialog, MdlItem *item, int group, int *selectedId);

#endif
