/* Copying elements from one drawing into another. */
#ifndef HOST_MDL_COPY_H
#define HOST_MDL_COPY_H

#include "elmdscr.h"

/* Adds copies of the chain, in UOR of the active model, to that. They look as they did in the models that the nodes
 * tell (null: the active one): levels and named line styles go by their names, and come along where the active model
 * hasn't them; what is by level becomes the element's own where the level of that name gives something else. A style of
 * that name keeps the pattern that it has. Cell headers become of the active model's kind, 2D or 3D. The position of
 * the first; 0, with none added and a line in the message centre, when one of them can't be stored. */
MDL_EXPORT MDL_CHECKED FilePos mdlElmdscr_copy(const ElementDescr *ed) MDL_NOEXCEPT;

#endif
