// What is attached to the drawing, for key-ins and the dialog about it.
#pragma once

#include <string>
#include <vector>

#include "mchost/model/model_ref.h"

namespace host {

// What is attached to the active model itself; none while no design file is open.
std::vector<ModelRef*> attachedPlaces();

// How a reference is: "1: parts/kerb.mcd, on, at 100,200, scale 2, turned by 30, clip of 4 corners; levels off in ..."
std::string lineOf(ModelRef& place);

}  // namespace host
