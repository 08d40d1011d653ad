// Putting a new element together: a head from a template or the active settings, a body, and the modifiers of its
// style.
#pragma once

#include "mchost/element/layout.h"
#include "mchost/space/current.h"

namespace host {

// An element in the making. Nothing is written to `out` before body(), and nothing can fail behind it, so that a failed
// builder leaves the element as it was and the template may be `out` itself.
class NewElement {
  public:
    NewElement(MSElementBuffer* out, const MSElementBuffer* templateP, int type);

    void setFilled(bool filled);

    // Writes head and style modifiers around a body of that many bytes (rounded up to a multiple of 8, the end of it
    // zeroed) and gives the body's place. Null when the element would be too large.
    uint8_t* body(size_t bytes);

  private:
    MSElementBuffer* out_;
    ElementHead head_{};
    LineStyleLinkage style_{};
};

// A body of fixed size.
template <class Body>
int finish(NewElement&& made, const Body& body) {
    uint8_t* at = made.body(sizeof body);
    if (!at) return MDL_ERROR;
    std::memcpy(at, &body, sizeof body);
    return MDL_SUCCESS;
}

}  // namespace host
