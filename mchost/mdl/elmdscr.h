/* Element descriptors: trees of elements in memory. A descriptor is the first of a chain of nodes; a header (a cell, a
 * complex shape) has its components as children. Each node owns its element. A descriptor is freed as a whole. */
#ifndef HOST_MDL_ELMDSCR_H
#define HOST_MDL_ELMDSCR_H

#include "element.h"

struct ElementDescr {
    ElementDescr *next, *previous; /* chain of the same level */
    ElementDescr *parent;          /* the header that this is a component of, or null */
    ElementDescr *firstChild, *lastChild;
    ModelRef *model;               /* where it was read from or belongs; may be null */
    FilePos filePos;               /* where it was read from; 0 none */
    MSElementBuffer *element;      /* mdlElement_bytes(element) bytes; the node's own */
};

/* A new descriptor with a copy of the element in edPP. `model` null is the active one. */
MDL_EXPORT MDL_CHECKED int mdlElmdscr_new(ElementDescr **edPP, ModelRef *model,
                                          const MSElementBuffer *element) MDL_NOEXCEPT;
/* Appends a copy of the element: as the last component when ed is a header that takes components (cell, text node,
 * complex shape), else at the end of ed's chain. */
MDL_EXPORT MDL_CHECKED int mdlElmdscr_appendElement(ElementDescr *ed, const MSElementBuffer *element) MDL_NOEXCEPT;
/* Appends a descriptor, which then belongs to ed, in the same way. MDL_ERROR, with both as they were, when it stands in
 * a chain or header already, or ed is a part of it. */
MDL_EXPORT MDL_CHECKED int mdlElmdscr_appendDscr(ElementDescr *ed, ElementDescr *part) MDL_NOEXCEPT;
/* With chain and children */
MDL_EXPORT MDL_CHECKED int mdlElmdscr_duplicate(ElementDescr **edPP, const ElementDescr *ed) MDL_NOEXCEPT;
MDL_EXPORT void mdlElmdscr_freeAll(ElementDescr **edPP) MDL_NOEXCEPT; /* frees chain and children; *edPP becomes null */
/* Takes a node out of the header or chain that it stands in and frees it with its components. Whoever holds a chain by
 * its first node and has that removed goes on with what was behind it. MDL_ERROR for null. */
MDL_EXPORT int mdlElmdscr_removeElement(ElementDescr *node) MDL_NOEXCEPT;
/* Sets level and graphic group of every element of chain and children; null leaves the one or the other. MDL_ERROR for
 * a null descriptor. */
MDL_EXPORT int mdlElmdscr_setProperties(ElementDescr *ed, const LevelId *level,
                                        const uint32_t *graphicGroup) MDL_NOEXCEPT;

/* Reads the element at a position, its components with it. The number of elements read; 0 when it can't be read. */
MDL_EXPORT uint32_t mdlElmdscr_read(ElementDescr **edPP, FilePos position, ModelRef *model) MDL_NOEXCEPT;
/* The same, in the coordinates of the active model. */
MDL_EXPORT uint32_t mdlElmdscr_readToMaster(ElementDescr **edPP, FilePos position, ModelRef *model) MDL_NOEXCEPT;
/* Writes the descriptor over the one at `position` of the active model; gives the position, which stays, 0 on failure.
 * What follows ed in its chain is added. */
MDL_EXPORT FilePos mdlElmdscr_rewrite(ElementDescr *ed, FilePos position) MDL_NOEXCEPT;
/* Adds every descriptor of the chain to its model, which is the active one; the position of the first, or 0 on failure,
 * and none is added then. */
MDL_EXPORT MDL_CHECKED FilePos mdlElmdscr_add(ElementDescr *ed) MDL_NOEXCEPT;
MDL_EXPORT int mdlElmdscr_display(ElementDescr *ed, ModelRef *model, int32_t drawMode) MDL_NOEXCEPT;

/* Brings the range of the cell headers in chain and children in line with their components. MDL_ERROR when one of them
 * has nothing with an extent of its own; its range stays, and the others are set. `model` may be null. */
MDL_EXPORT int mdlCell_setRange(ElementDescr *ed, ModelRef *model) MDL_NOEXCEPT;
/* Brings headers in line with their components. */
MDL_EXPORT int mdlElmdscr_validate(ElementDescr *ed, ModelRef *model) MDL_NOEXCEPT;
/* The range of chain and children in UOR, whatever the current transform; transformed first when `transform` isn't
 * null. MDL_ERROR, with low and high untouched, when nothing in it has an extent of its own. */
MDL_EXPORT int mdlElmdscr_computeRange(Point3d *low, Point3d *high, const ElementDescr *ed,
                                       const Transform *transform) MDL_NOEXCEPT;
/* Transforms every element, in UOR. MDL_ERROR, with all as it was, when a coordinate would leave the finite numbers. */
MDL_EXPORT MDL_CHECKED int mdlElmdscr_transform(ElementDescr *ed, const Transform *transform) MDL_NOEXCEPT;
/* As mdlElement_stroke for a whole descriptor: the components of a complex shape, which follow each other, in one run
 * that ends on its first point. Chain members behind ed
 * aren't looked at. */
MDL_EXPORT int mdlElmdscr_stroke(Point3d **pointsP, int32_t *countP, const ElementDescr *ed,
                                 double tolerance) MDL_NOEXCEPT;

/* Calls f for each element of the chain and its children: headers before their components. Stops at a non-zero result,
 * which is the call's result. `order` says for which, as a sum of MDL_DESCR_...; f gets the one that it is called for,
 * and how many headers it lies in as `offset`. */
enum {
    MDL_DESCR_ELEMENTS = 1,       /* elements that aren't headers */
    MDL_DESCR_HEADERS = 2,        /* headers in the chain itself */
    MDL_DESCR_INNER_HEADERS = 8,  /* headers within headers */
    MDL_DESCR_ALL = 11
};
typedef int (*MdlDescrFunction)(MSElementBuffer *element, void *userArg, int32_t order, int32_t offset,
                                ElementDescr *node);
MDL_EXPORT int mdlElmdscr_operation(ElementDescr *ed, MdlDescrFunction f, void *userArg, int32_t order) MDL_NOEXCEPT;

/* ---- elements in the active design file ---- */

/* Reads an element without its components, or a component by the position that it has while its element is the located
 * one (locate.h). The number of bytes; 0 when there is none. */
MDL_EXPORT uint32_t mdlElement_read(MSElementBuffer *out, ModelRef *model, FilePos position) MDL_NOEXCEPT;
/* Adds an element to the active model; its position, 0 on failure. */
MDL_EXPORT MDL_CHECKED FilePos mdlElement_add(const MSElementBuffer *element) MDL_NOEXCEPT;
/* Writes the element over the one at `position`, whose components stay; the position, 0 on failure. */
MDL_EXPORT FilePos mdlElement_rewrite(const MSElementBuffer *element, FilePos position) MDL_NOEXCEPT;
/* Shows an element in all views, over what is stored, and never in the design file: until the active model is changed
 * or the command that runs begins anew or ends. MDL_DRAW (seen while a command runs) and MDL_HIGHLIGHT draw it;
 * MDL_ERASE takes away what was drawn just so, and that component of the located element (locate.h) which has the same
 * bytes; a descriptor that was read from a position is erased there. What a command's dynamics (state.h) display in
 * MDL_DYNAMICS is seen until the cursor moves again. MDL_ERROR for a damaged element or an unknown mode. */
enum { MDL_DRAW = 0, MDL_ERASE = 1, MDL_HIGHLIGHT = 2, MDL_DYNAMICS = 4 };
MDL_EXPORT int mdlElement_display(const MSElementBuffer *element, int32_t drawMode) MDL_NOEXCEPT;
/* Deletes what lies at the position in the active model, components included; undo.h brings it back. `element` and
 * `display` have no effect. */
MDL_EXPORT int mdlElement_undoableDelete(const MSElementBuffer *element, FilePos position,
                                         int32_t display) MDL_NOEXCEPT;

#endif
