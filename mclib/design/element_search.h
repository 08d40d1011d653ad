/* Recognising drawn symbols: a base element of given size and look, with texts in boxes beside it.
 *
 * A symbol stands in the drawing as plain geometry. Its base element is a line, a circle, a rectangle or a text; each
 * of its texts must lie in one of the boxes, which are told relative to the base element. Patterns and errors are those
 * of text_search.h.
 *
 *   group      size A         size B           reported: size      origin
 *   line       length         -                extent along x      middle of the line
 *   circle     primary axis   secondary axis   primary axis        centre
 *   rectangle  width          height           width               corner of least x and y, with z of the first vertex
 *   text       text height    -                text height         the text's origin
 *
 * A circle may be drawn as one ellipse or as arcs that go round once, one behind the other: at most 64 of the arcs that
 * meet the box around it are looked at. Arcs that were looked at for one circle aren't tried for another one, whether
 * they belong to the first or not. The sides of a rectangle lie along the axes, to within 1% of its size. A compound
 * element counts by the first of its parts that fits; arcs in it are a circle together, wherever they stand in it. Tags
 * in a box count by the texts that they show. */
#ifndef MCLIB_ELEMENT_SEARCH_H
#define MCLIB_ELEMENT_SEARCH_H

#include "mchost/mdl/elmdscr.h"
#include "mclib/design/text_search.h"

/* Base elements: `group` */
enum { SEARCH_GROUP_LINE = 1, SEARCH_GROUP_CIRCLE = 2, SEARCH_GROUP_RECTANGLE = 3, SEARCH_GROUP_TEXT = 4 };

/* The symbols to be found. Lengths are master units; negative sizes are no limits, and negative values of weight, style
 * and colour take any. What the pointers lead to must stay as it is while the search runs. */
typedef struct SearchElementSpec {
    int32_t group;
    uint32_t flags;                        /* SEARCH_... of text_search.h. The box of SEARCH_USE_RANGE is the first one
                                              of the regions, read as a place in the drawing. With SEARCH_SCALE_REGIONS
                                              the corners of all regions are multiplied by the reported size */
    char pattern[MCLIB_SPEC_PATTERN_SIZE]; /* of a base element that is a text */
    double minSizeA;
    double maxSizeA;
    double minSizeB;
    double maxSizeB;
    int32_t weight;
    int32_t style;
    int32_t color;
    const MdlBitMask *levelMask;           /* of the base element: bit `level - 1`; null takes all levels */
    const Point3d *regionLow;              /* opposite corners of each box, from the reported origin, in any order; z
                                              doesn't count */
    const Point3d *regionHigh;
    int32_t regionCount;                   /* 1 or more */
    const SearchTextSpec *textSpecs;       /* the texts of a symbol, each of which must be found. Pattern, flags of case
                                              and blanks, look, heights and errors count; the area doesn't */
    int32_t textSpecCount;                 /* 1 or more */
} SearchElementSpec;

/* Called for a symbol. *status is 0; another value keeps the base element off the list of those that are done. `base`
 * is the element as it was found or, of a circle, the full ellipse that was made of it; its filePos is the position of
 * the element, of the first arc for a circle of arcs. `texts` and `errors` are one element and one count of errors for
 * each of `textSpecs`, in their order. All last as long as the call. `spec` and `arg` are those given to the search.
 * The current transform is that of master units. The function may change the drawing; elements that it adds aren't
 * found as base elements. */
typedef void (*MclibSearchElementHit)(int *status, ElementDescr *base, MSElementBuffer *texts, int32_t *errors,
                                      SearchElementSpec *spec, void *arg);

/* Empties the list of base elements that are done, and uses it from now on: what was reported with status 0, exactly or
 * near, isn't reported again by the searches that follow in this session. Before the first call nothing is skipped.
 * The list knows elements by their positions: begin anew with another design file. Gives 0. */
MCLIB_EXPORT int mclibSearch_InitElement(void);

/* Looks for the symbols in the active model, in order of the file. Of each box the first 64 texts, text nodes, cells
 * and tags in it are looked at; more are told on the console. A text counts in a box when a corner of its own box lies
 * inside. The first text that has no more errors than it may have is the one that is taken.
 * Calls `exactFunction` when no text has errors, or `nearFunction` is null, and `nearFunction` otherwise;
 * `exactFunction` may be null. With `deleteTexts` the texts of a symbol are deleted before `exactFunction` is called:
 * elements as a whole, and out of cells and text nodes those without errors; what is left of these gets a new position.
 * What can't be deleted is told on the console. 0, also when nothing could be searched, which the console tells. */
MCLIB_EXPORT int mclibSearch_Element(SearchElementSpec *spec, MclibSearchElementHit exactFunction, void *exactArg,
                                     MclibSearchElementHit nearFunction, void *nearArg, int deleteTexts);

#endif
