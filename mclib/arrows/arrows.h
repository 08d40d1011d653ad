/* Annotation arrows: a text, with or without a frame round it, tied by leaders to what it points at, each leader ending
 * in a head.
 *
 * An arrow in the design file is one cell and nothing more: frame, texts, tail, symbol, then each leader, from its tip
 * to the frame, with its head behind it. Its kinds and sizes aren't stored; they are read back from its geometry.
 *
 * Units: points are UOR of the active model. An arrow is built in master units, x to the right of the view, about the
 * point given last. headSize, width and the text sizes of attributes are master units at scale 1 and are divided by
 * `scale`; the half width of heads 7 to 9 isn't. Angles are radians. Attributes are numbers of the calling application
 * (mclib/elmattr/attributes.h).
 *
 * What is being placed and what is being edited stands once for all applications: one arrow command runs at a time.
 * Hooks are called as the application on whose behalf the code runs; each may be null. */
#ifndef MCLIB_ARROWS_H
#define MCLIB_ARROWS_H

#include "mclib/frame/export.h"

enum { ARROW_TEXT_LENGTH = 512, ARROW_MOST_VERTICES = 1000 };

/* Frames. With any other number an arrow has neither frame nor text. */
enum {
    ARROW_FRAME_NONE = 0,            /* the leader ends at the side of the text */
    ARROW_FRAME_UNDERLINE_FIRST = 1, /* a line under the first line of text */
    ARROW_FRAME_BOX_SIDE = 2,        /* a rectangle, the leader ends at the middle of a side */
    ARROW_FRAME_BOX_CORNER = 3,      /* a rectangle, the leader ends at a corner */
    ARROW_FRAME_CIRCLE = 4,
    ARROW_FRAME_UNDERLINE_LAST = 5,  /* a line under the last line of text */
    ARROW_FRAME_DIAMOND = 6,
    ARROW_FRAME_HEXAGON = 7
};
/* Heads are numbers from 0, none, to 19; with any other number nothing is drawn. 1 open, 2 closed and 3 filled arrow,
 * half as wide as long to each side; 4 to 6 the same, a quarter; 7 to 9 the same, `width` as it stands; 17 to 19 the
 * same, as wide as long; 10 circle, 11 cross, 12 slash, 13 square, 14 triangle, 15 filled circle, none of which turns
 * with the leader; 16 two arcs. */
enum { ARROW_HEAD_NONE = 0, ARROW_HEAD_LAST = 19 };
/* leaderMode: where the second vertex lies to the first when a leader has no more than these two. */
enum { ARROW_LEG_FREE = 0, ARROW_LEG_VERTICAL = 1, ARROW_LEG_HORIZONTAL = 2, ARROW_LEG_VERTICAL_2 = 3 };

/* ---- what an application hooks in ---- */

/* Fills in the looks of the arrow; what it leaves stays. Called before each data point and each drawing, so that a
 * dialog of the application can change them meanwhile. width: length of the tail of an arrow without text, and half
 * width of heads 7 to 9. */
typedef void (*McArrowAttributesHook)(int *headType, double *headSize, double *scale, int *leaderMode, int *frameKind,
                                      double *angle, double *width);
/* Moves the point (UOR) to where the tip must lie. Called for the first data point alone, and while it is awaited. */
typedef void (*McArrowSnapHook)(Point3d *point);
/* May change the text, ARROW_TEXT_LENGTH letters and a NUL, while the arrow is placed. vertices: UOR, the tip first. */
typedef void (*McArrowTextHook)(char *text, const Point3d *vertices, int view);
/* Makes a symbol in *symbol, which then belongs to the arrow, or leaves it null. `end` is the leader's end, in the
 * current transform, which the builders count in; direction is -1.0 when the leader comes from the right, else 1.0. */
typedef void (*McArrowSymbolHook)(ElementDescr **symbol, Point3d *end, double direction, double scale, int view,
                                  int drawMode);
/* May add to the cell header of an arrow that is about to be written. */
typedef void (*McArrowCellHook)(MSElementBuffer *cell, const char *text);
/* Takes over the finished arrow, which isn't written then, and frees it. */
typedef void (*McArrowFinishHook)(ElementDescr *arrow);
/* A reset: of placing with no more than the tip given, and of each editing command. */
typedef void (*McArrowResetHook)(void);

/* Of the editing commands. Says whether an arrow is taken: 2 (MDL_LOCATE_ACCEPT) takes it. `arrow` is its cell header,
 * `component` what was pointed at in it; the attribute numbers of a command that has them can be changed. */
typedef int (*McArrowLocateFilter)(MSElementBuffer *arrow, MSElementBuffer *component, int *lineAttrId,
                                   int *headAttrId);
/* May look at the cell that was read and, in it, at the leader that was located (null in commands that work on none),
 * or replace them. */
typedef void (*McArrowReadHook)(ElementDescr **cell, ElementDescr **component);
/* The last change before the cell is written in the place of the one before. */
typedef void (*McArrowBeforeWriteHook)(ElementDescr **cell);
/* Makes in *newCell, a cell, what takes the place of frame, text and symbol. oldCell holds these and stays the
 * library's; `anchor` (UOR) is where its first leader ends; direction is -1.0 when its underline goes to the left, else
 * 1.0. Other than 0 leaves the arrow as it is. */
typedef int (*McArrowChangeTextHook)(ElementDescr **newCell, ElementDescr *oldCell, Point3d *anchor, double direction,
                                     int view);

/* ---- placing ---- */

/* Starts placing in the command that runs (mdlState_startPrimitive), which is restarted when the arrow is written. The
 * user gives the tip, unless it is startPoint or arrowSnapHook finds it, then vertices; a reset ends the leader and
 * writes the arrow, as does the second point of a leader with a fixed first leg (leaderMode). Without a leader
 * (withArrow 0) one point places the text. headAtStart: the head is on the first vertex, 0: on the last. firstPrompt
 * and nextPrompt null: the library's own. text has lines divided as mclibUtil_splitText does; what is beyond
 * ARROW_TEXT_LENGTH is cut. A null userArrow_changeArrowAttributes is told in a message, and the looks of the arrow
 * before hold. All texts are copied. Gives the result of mdlOutput_prompt; MCLIB_ERROR when no command runs. */
MCLIB_EXPORT int mclibArrow_drawTextAndArrow(int withText, int withArrow, int textAttrId, int lineAttrId,
                                             int headAttrId, int headAtStart, const char *firstPrompt,
                                             const char *nextPrompt, const char *text, const char *cellName,
                                             const Point3d *startPoint, McArrowSnapHook arrowSnapHook,
                                             McArrowTextHook arrowTextHook, McArrowSymbolHook arrowSymbolHook,
                                             McArrowCellHook arrowCellHook, McArrowFinishHook arrowFinishHook,
                                             McArrowAttributesHook userArrow_changeArrowAttributes,
                                             McArrowResetHook arrowResetHook);
/* Builds and writes an arrow at once, the head on the first of its vertices; `view` is the one that it lies square to.
 * A text above ARROW_TEXT_LENGTH is cut, which the console is told. MCLIB_ERROR, which the user is told, with nothing
 * written, for fewer than 2 or more than ARROW_MOST_VERTICES vertices, for a scale that isn't above 0, and when the
 * design file doesn't take the arrow. What couldn't be built, such as a text without its attribute, is told, and the
 * arrow lacks it. */
MCLIB_EXPORT int mclibArrow_drawTextArrow(const Point3d *vertices, int nVertices, int textAttrId, int lineAttrId,
                                          int headAttrId, double scale, double angle, const char *text,
                                          const char *cellName, int headType, int headSize, int frameKind, int view);
/* With `use`, circle and diamond frames get the radius `size`, in master units and not divided by scale, whatever the
 * size of their text; without, they fit the text. Holds for all arrows from now on. */
MCLIB_EXPORT void mclibArrow_setCircleSize(double size, int use);

/* The place of the last arrow that the library itself added to the file; 0 when there is none since
 * mclibArrow_initFilePos, or it wasn't taken. */
MCLIB_EXPORT FilePos mclibArrow_getLatestFilePos(void);
MCLIB_EXPORT void mclibArrow_initFilePos(void);

/* ---- heads ---- */

/* A new descriptor of a head with its tip on the point (UOR), `size` / `scale` master units long, pointing against
 * `angle`: the leader goes that way in the view. Heads 7 to 9 have the width of the arrow placed last. Null, for a type
 * that draws nothing, for a length that isn't finite, and when it can't be made; the caller's own. */
MCLIB_EXPORT void mclibArrow_createArrowHead(ElementDescr **head, const Point3d *point, int view, double angle,
                                             int type, double scale, int attrId, double size);

/* ---- changing: commands on arrows in the drawing ----
 *
 * Each starts a modify command (mdlState_startModifyCommand), which locates an arrow, shows what becomes of it, and
 * with the accepting data point writes it in its place; then the next one can be pointed at. Until then the design
 * file is as it was. cmdMsg and promptMsg are members of the application's string lists of command messages and
 * prompts. A reset calls arrowResetHook. What can't be done with the cell that was pointed at (it has no leader, or one
 * of more than 5000 vertices) is told in the error field, and nothing is written. They give MCLIB_SUCCESS, or
 * MCLIB_ERROR when the command couldn't be started. */

/* The new vertex goes into the segment that was pointed at. */
MCLIB_EXPORT int mclibArrow_insertVertex(int cmdMsg, int promptMsg, McArrowLocateFilter arrowLocateFilter,
                                         McArrowReadHook arrowReadHook, McArrowBeforeWriteHook arrowBeforeWriteHook,
                                         McArrowResetHook arrowResetHook);
/* The vertex next to the point goes, but neither tip nor end; of a leader of two vertices none, which is told. */
MCLIB_EXPORT int mclibArrow_deleteVertex(int cmdMsg, int promptMsg, McArrowLocateFilter arrowLocateFilter,
                                         McArrowReadHook arrowReadHook, McArrowBeforeWriteHook arrowBeforeWriteHook,
                                         McArrowResetHook arrowResetHook);
/* The tip follows with its head, and a leader of two vertices slides along the frame when it is the only one. */
MCLIB_EXPORT int mclibArrow_moveArrowHead(int cmdMsg, int promptMsg, McArrowLocateFilter arrowLocateFilter,
                                          McArrowReadHook arrowReadHook, McArrowBeforeWriteHook arrowBeforeWriteHook,
                                          McArrowResetHook arrowResetHook);
/* Frame, text and symbol move, and all leaders end at the point of the frame that fits the first of them. moveText: the
 * text alone moves, with its underline; other frames and the symbol stay. */
MCLIB_EXPORT int mclibArrow_moveTextAndSymbol(int cmdMsg, int promptMsg, McArrowLocateFilter arrowLocateFilter,
                                              McArrowReadHook arrowReadHook,
                                              McArrowBeforeWriteHook arrowBeforeWriteHook,
                                              McArrowResetHook arrowResetHook);
MCLIB_EXPORT int mclibArrow_moveText(int cmdMsg, int promptMsg, McArrowLocateFilter arrowLocateFilter,
                                     McArrowReadHook arrowReadHook, McArrowBeforeWriteHook arrowBeforeWriteHook,
                                     McArrowResetHook arrowResetHook);
/* Frame, text and symbol are replaced by what arrowChangeTextHook makes. */
MCLIB_EXPORT int mclibArrow_modifyTextAndSymbol(int cmdMsg, int promptMsg, McArrowLocateFilter arrowLocateFilter,
                                                McArrowReadHook arrowReadHook,
                                                McArrowBeforeWriteHook arrowBeforeWriteHook,
                                                McArrowChangeTextHook arrowChangeTextHook,
                                                McArrowResetHook arrowResetHook);
/* The same at once, with view 0, for the first element of the selection set; the command that runs is restarted behind
 * it. The filter isn't asked. MCLIB_ERROR, with nothing written, when nothing is selected, it is no arrow of the active
 * model, it is locked, or the hook refuses. */
MCLIB_EXPORT int mclibArrow_modifyTextAndSymbolSelected(McArrowLocateFilter arrowLocateFilter,
                                                        McArrowReadHook arrowReadHook,
                                                        McArrowBeforeWriteHook arrowBeforeWriteHook,
                                                        McArrowChangeTextHook arrowChangeTextHook,
                                                        McArrowResetHook arrowResetHook);
/* A further leader, placed from where the first one ends to its tip as mclibArrow_drawTextAndArrow does, on the level
 * of the arrow, which becomes that of the line attribute. */
MCLIB_EXPORT int mclibArrow_addArrow(int cmdMsg, int promptMsg, int lineAttrId, int headAttrId,
                                     McArrowLocateFilter arrowLocateFilter, McArrowReadHook arrowReadHook,
                                     McArrowBeforeWriteHook arrowBeforeWriteHook,
                                     McArrowAttributesHook userArrow_changeArrowAttributes,
                                     McArrowResetHook arrowResetHook);
/* The leader that was pointed at goes, with its head. */
MCLIB_EXPORT int mclibArrow_deleteArrow(int cmdMsg, int promptMsg, McArrowLocateFilter arrowLocateFilter,
                                        McArrowReadHook arrowReadHook, McArrowBeforeWriteHook arrowBeforeWriteHook,
                                        McArrowResetHook arrowResetHook);
/* The head of the leader that was pointed at becomes what the attribute hook says: none for a type that draws nothing.
 * A leader without a head stays without one. Without the hook, which is told, no head is changed. */
MCLIB_EXPORT int mclibArrow_modifyArrowHead(int cmdMsg, int promptMsg, int lineAttrId, int headAttrId,
                                            McArrowLocateFilter arrowLocateFilter, McArrowReadHook arrowReadHook,
                                            McArrowBeforeWriteHook arrowBeforeWriteHook,
                                            McArrowAttributesHook userArrow_changeArrowAttributes,
                                            McArrowResetHook arrowResetHook);

#endif
