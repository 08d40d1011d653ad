// What closed elements are filled with.
#pragma once

#include <optional>

#include "mchost/element/layout.h"

namespace host {

// The fill colour that the element has of its own.
std::optional<int32_t> fillColorOf(const MSElementBuffer* element);

}  // namespace host
