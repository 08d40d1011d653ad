// What hooks have drawn in a dialog.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "mchost/dialog/dialog.h"

template <class Drawn>
std::vector<Drawn> drawnIn(const host::Dialog& dialog) {
    std::vector<Drawn> all;
    for (const host::DrawCall& call : dialog.drawing())
        if (const auto* drawn = std::get_if<Drawn>(&call)) all.push_back(*drawn);
    return all;
}

// The texts, each with a line end.
inline std::string textDrawnIn(const host::Dialog& dialog) {
    std::string text;
    for (const host::DrawnText& drawn : drawnIn<host::DrawnText>(dialog)) text += drawn.text + "\n";
    return text;
}
