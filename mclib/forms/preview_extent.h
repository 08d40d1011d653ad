// The size of the preview's window as the user's preference file holds it.
#pragma once

#include "mclib/frame/stored_layout.h"

namespace mc {

// The preview's extent in pixels.
struct PreviewExtent {
    int32_t width, height;
};

}  // namespace mc

namespace mc::forms {

constexpr int32_t extentType = 0x466F4461, extentId = 20001;
constexpr size_t storedExtentSize = 8;

// `Fields` is StoreFields or LoadFields.
template <class Fields, class Extent>
void extentFields(Fields fields, Extent& extent) {
    fields.number(0, extent.width);
    fields.number(4, extent.height);
}

}  // namespace mc::forms
