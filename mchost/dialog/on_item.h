// Calls on an item by its handle. For the files of this room.
#pragma once

#include "mchost/base/guard.h"
#include "mchost/dialog/registry.h"

namespace host {

// The item when it is of that kind.
inline ItemRef itemOfKind(const MdlItem* handle, int32_t kind) {
    ItemRef item = itemOf(handle);
    return item && item->kind == kind ? item : ItemRef{};
}

// Runs `body` on an item that is there and, unless kind is 0, of that kind; MDL_ERROR otherwise and when it throws.
template <class Body>
int onItem(const MdlItem* handle, int32_t kind, Body body) {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        const ItemRef item = kind == 0 ? itemOf(handle) : itemOfKind(handle, kind);
        return item ? body(item) : MDL_ERROR;
    });
}

}  // namespace host
