// Cell headers beyond what applications see of them.
#pragma once

#include "mchost/mdl/element.h"

namespace host {

// Copies a cell header as one of the other kind or the same, its axes longer by a factor. `out` isn't `in`. False when
// `in` isn't a whole cell header or the result would be too large.
bool convertCellHeader(MSElementBuffer* out, const MSElementBuffer* in, bool is3d, double axisFactor);

}  // namespace host
