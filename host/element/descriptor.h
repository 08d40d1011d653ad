// What lies behind the nodes of a descriptor.
#pragma once

#include "host/mdl/elmdscr.h"

namespace host {

// Puts other bytes in the place of a node's element; they may be longer. False, with the node as it was, when the
// element isn't sound or memory is out.
bool setNodeElement(ElementDescr* node, const MSElementBuffer* element);

// Takes a node, with its children, out of the chain and the header that it stands in.
void unlinkNode(ElementDescr* node);

}  // namespace host
