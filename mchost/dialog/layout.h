// Layouts of the host's own dialogs, which no resource file holds.
#pragma once

#include "mchost/mdl/dialog.h"
#include "mchost/resource/container.h"

namespace host {

inline Texts texts(const char* english, const char* norwegian) {
    Texts both;
    both.set("en", english);
    both.set("no", norwegian);
    return both;
}

struct ItemPlace {
    int32_t x, y, width, height;
};
inline ItemLayout itemAt(int32_t kind, int32_t id, const ItemPlace& place, Texts label = {}, int32_t hook = 0) {
    return {.kind = kind,
            .id = id,
            .x = place.x,
            .y = place.y,
            .width = place.width,
            .height = place.height,
            .hook = hook,
            .label = std::move(label)};
}

}  // namespace host
