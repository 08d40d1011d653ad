/* Changing elements through a function: those of a descriptor in memory, or one in a design file. The function looks at
 * each element in turn and says what becomes of it. */
#ifndef HOST_MDL_MODIFY_H
#define HOST_MDL_MODIFY_H

#include "elmdscr.h"

/* What the function answers; any other answer leaves the element. */
enum {
    MDL_MODIFY_NONE = 0,             /* the element stays */
    MDL_MODIFY_CHANGED = 1,          /* *element was changed in place and takes the place of the old one */
    MDL_MODIFY_REMOVE = 2,           /* the element is removed */
    MDL_MODIFY_REPLACE_DESCR = 16    /* the new descriptor *newDescrPP, which goes to the host, takes its place */
};
/* Which elements the function is asked for. */
enum {
    MDL_MODIFY_NO_HEADERS = 1, /* all but headers; the components of a header are asked for one by one */
    MDL_MODIFY_ALL = 2         /* headers too, each before its components unless it was removed or replaced */
};

/* `element` is a copy of the node's element with room for MDL_ELEMENT_BYTES. `node` is what it was copied from: its
 * parent is the header that the element lies in. *newDescrPP is null on entry; a descriptor that is left in it with
 * another answer than MDL_MODIFY_REPLACE_DESCR stays the function's own. */
typedef int (*MdlModifyFunction)(MSElementBuffer *element, void *userArg, ModelRef *model, ElementDescr *node,
                                 ElementDescr **newDescrPP);

/* Asks for the elements of the chain and their components. Works in memory; *edPP may change. `model` goes to the
 * function. `componentOffset` 0 asks for all that `request` tells; the position of a component less that of its element
 * (locate.h), for a descriptor as it was read, asks for that component alone, header or not. A header stays when all of
 * its components are removed; *edPP is null when nothing is left. The number of changes; 0 too when nothing could be
 * asked. */
MDL_EXPORT int mdlModify_elementDescr2(ElementDescr **edPP, ModelRef *model, int32_t request, MdlModifyFunction f,
                                       void *userArg, int32_t componentOffset) MDL_NOEXCEPT;
/* Asks for the element at `position` of the model (null: the active one), or for its components when it is a header,
 * and writes what came of it to the model. The element keeps its position; what a replacement has more than one
 * element is added behind; when nothing is left the element is deleted. The number of changes; 0, with the model as it
 * was, when there is no element, the model can't be written, or memory is out. Both `reserved` are 0. */
MDL_EXPORT int mdlModify_elementSingle(ModelRef *model, FilePos position, int32_t request, int32_t reserved1,
                                       MdlModifyFunction f, void *userArg, int32_t reserved2) MDL_NOEXCEPT;

#endif
