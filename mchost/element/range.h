// What an element occupies.
#pragma once

#include "mchost/mdl/element.h"

namespace host {

// The range of one element's own data in UOR, without its components. False when it has none (headers, application
// data, damaged data). Never looks beyond the element's size.
bool elementRange(const MSElementBuffer* element, Range3d& range);

// Whether a block of `available` bytes begins with a whole element: head, size and attribute offset fit each other.
bool elementIsSound(const void* bytes, size_t available);

}  // namespace host
