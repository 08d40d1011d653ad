// Parts of elements: components of the element that was located last, which have positions while it is, and references
// to elements.
#pragma once

#include "mchost/model/model.h"

namespace host {

// An element of a model, or with `number` a component of it in depth-first order from 1.
struct ElementPart {
    uint64_t model = 0;  // serial; 0 none
    FilePos position = 0;
    uint32_t number = 0;

    bool operator==(const ElementPart&) const = default;
};

// What was located last; from now on its components have positions, and no others.
void setLocated(const ElementPart& part);
// Nothing when its element or model is gone.
ElementPart located();

// What lies at a position of a model, which may be that of a component; null for nothing.
const MSElementBuffer* partAt(const Model& model, FilePos position);

// The part of a record: its element for 0, else that component; null when it has fewer.
const MSElementBuffer* nodeOf(const RecordHead* record, uint32_t number);

}  // namespace host
