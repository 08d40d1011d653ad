// What lies behind the nodes of a descriptor.
#pragma once

#include <vector>

#include "mchost/mdl/elmdscr.h"

namespace host {

// Puts other bytes in the place of a node's element; they may be longer. False, with the node as it was, when the
// element isn't sound or memory is out.
bool setNodeElement(ElementDescr* node, const MSElementBuffer* element);

// Takes a node, with its children, out of the chain and the header that it stands in.
void unlinkNode(ElementDescr* node);

// As strokeElement for a node: the components of a complex shape in one run that ends where it began.
bool strokeNode(std::vector<Point3d>& points, const ElementDescr* node, double tolerance, const Transform& transform);

}  // namespace host
