/* Types shared by all host calls.
 *
 * Conventions of the host interface: plain C, plain structures; 0 is success and MDL_ERROR (0x8000) failure unless a
 * call says otherwise; narrow text is Windows-1252, one byte a character, wide text is wchar_t; angles are radians,
 * counter-clockwise. A handle is owned by the caller of the function that created it. An out-pointer may be null where
 * its value isn't wanted, unless a call says otherwise. All calls of a process come from one thread. */
#ifndef HOST_MDL_TYPES_H
#define HOST_MDL_TYPES_H

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <wchar.h>

/* No call lets anything out that was thrown inside. */
#ifdef __cplusplus
#define MDL_EXPORT extern "C" __attribute__((visibility("default")))
#define MDL_NOEXCEPT noexcept
#else
#define MDL_EXPORT extern __attribute__((visibility("default")))
#define MDL_NOEXCEPT
#endif

/* A result that mustn't be left unread. The library and the applications are built with MDL_CHECK_RESULTS. */
#ifdef MDL_CHECK_RESULTS
#define MDL_CHECKED __attribute__((warn_unused_result))
#else
#define MDL_CHECKED
#endif

enum { MDL_SUCCESS = 0, MDL_ERROR = 0x8000 };

/* A point or vector. */
typedef struct Point3d { double x, y, z; } Point3d;

/* A range: low corner first. */
typedef struct Range3d { Point3d low, high; } Range3d;

/* A rotation matrix, rows first: form[row][column]. */
typedef struct RotMatrix { double form[3][3]; } RotMatrix;

/* An affine transform, rows first; column 3 is the translation. */
typedef struct Transform { double form[3][4]; } Transform;

/* A rectangle in a dialog's window, in pixels, y downwards; corner is outside the rectangle. */
typedef struct DialogRect { int32_t left, top, right, bottom; } DialogRect;

typedef uint32_t FilePos;  /* place of an element in a model of a design file; 0 is none */
typedef uint32_t LevelId;  /* a level of a model; 0 is none */
typedef int32_t RscHandle; /* an open resource file; 0 is none */

typedef struct MdlDesc MdlDesc;               /* one loaded application */
typedef struct ModelRef ModelRef;             /* a model: the active one or an attached reference */
typedef struct ElementDescr ElementDescr;     /* elements in memory: elmdscr.h */
typedef union MSElementBuffer MSElementBuffer; /* one element: element.h */
typedef struct StringList StringList;         /* strings with info fields: lists.h */
typedef struct ListModel ListModel;           /* rows of cells: lists.h */
typedef struct MdlDialog MdlDialog;           /* an open dialog box: dialog.h */
typedef struct MdlItem MdlItem;               /* an item of an open dialog box: dialog.h */

#endif
