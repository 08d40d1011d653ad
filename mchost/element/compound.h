// Elements that hold the elements which show them.
#pragma once

#include <vector>

#include "mchost/element/layout.h"

namespace host {

// A part of a compound as it is shown: on the level of the compound and, but for type 35, with its symbology.
void copyShownPart(MSElementBuffer* out, const MSElementBuffer* compound, const MSElementBuffer* part);
// The text that a tag shows as a text element. `text` is its shown text.
void copyShownText(MSElementBuffer* out, const MSElementBuffer* tag, const TextView& text);

// Calls visit(const MSElementBuffer*) with each element that shows a tag or a compound, made in `scratch`; false for an
// element of another type, which shows itself. A hidden tag and a damaged element are shown by none.
template <class Visit>
bool forEachShown(const MSElementBuffer* element, MSElementBuffer* scratch, Visit visit) {
    const int type = headOf(element).type;
    if (type == MDL_TAG) {
        if (const auto text = shownTextOf(element)) {
            copyShownText(scratch, element, *text);
            visit(scratch);
        }
        return true;
    }
    if (!isCompoundType(type)) return false;
    const auto parts = partsOf(element);
    if (!parts) return true;
    for (const MSElementBuffer* part : *parts) {
        copyShownPart(scratch, element, part);
        visit(scratch);
    }
    return true;
}

// The parts of a compound in the making.
class NewParts {
  public:
    // False for an element that a compound can't hold. Throws when memory is out.
    bool add(const MSElementBuffer* part);
    // The element; MDL_ERROR without a part, and when there are more than it can hold. `templateP` may be `out`.
    int store(MSElementBuffer* out, const MSElementBuffer* templateP, int type) const;

  private:
    uint32_t count_ = 0;
    std::vector<uint8_t> bytes_;
};

}  // namespace host
