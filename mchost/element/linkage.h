// Linkages of an element, for the host's own.
#pragma once

#include <cstdint>

#include "mchost/element/layout.h"

namespace host {

// The modifiers of the element's line style; false, with nothing stored, when it has none.
bool readLineStyleLinkage(const MSElementBuffer* element, LineStyleLinkage& style);
// Its length, by the modifiers that count.
void setWordsOf(LineStyleLinkage& style);

}  // namespace host
