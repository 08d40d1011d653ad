#include "kinds.h"

#include <algorithm>

#include <mclib/mclib.h>
#include <mclib/app/names.hpp>
#include <mclib/app/numbers.hpp>

namespace labels {

namespace {

// clang-format off
constexpr Kind frames[] = {
    {"none",            ARROW_FRAME_NONE},
    {"underline-first", ARROW_FRAME_UNDERLINE_FIRST},
    {"box-side",        ARROW_FRAME_BOX_SIDE},
    {"box-corner",      ARROW_FRAME_BOX_CORNER},
    {"circle",          ARROW_FRAME_CIRCLE},
    {"underline-last",  ARROW_FRAME_UNDERLINE_LAST},
    {"diamond",         ARROW_FRAME_DIAMOND},
    {"hexagon",         ARROW_FRAME_HEXAGON},
};
// An arrow is half as wide as long to each side; a slim one a quarter, a wide one as wide as long, a fixed one as wide
// as is told.
constexpr Kind heads[] = {
    {"none",         ARROW_HEAD_NONE},
    {"open",         1},
    {"closed",       2},
    {"filled",       3},
    {"open-slim",    4},
    {"closed-slim",  5},
    {"filled-slim",  6},
    {"open-fixed",   7},
    {"closed-fixed", 8},
    {"filled-fixed", 9},
    {"circle",       10},
    {"cross",        11},
    {"slash",        12},
    {"square",       13},
    {"triangle",     14},
    {"dot",          15},
    {"arcs",         16},
    {"open-wide",    17},
    {"closed-wide",  18},
    {"filled-wide",  19},
};
// clang-format on
static_assert(std::size(heads) == ARROW_HEAD_LAST + 1);

}  // namespace

std::span<const Kind> frameKinds() {
    return frames;
}

std::span<const Kind> headKinds() {
    return heads;
}

std::optional<int> kindNamed(std::span<const Kind> kinds, std::string_view name) {
    const std::optional<int> number = mcapp::numberIn<int>(name);
    const auto kind = std::ranges::find_if(
        kinds, [&](const Kind& k) { return number ? k.number == *number : mcapp::sameName(k.name, name); });
    if (kind == kinds.end()) return {};
    return kind->number;
}

bool surroundsText(int frame) {
    return frame != ARROW_FRAME_NONE && frame != ARROW_FRAME_UNDERLINE_FIRST && frame != ARROW_FRAME_UNDERLINE_LAST;
}

bool hasRadius(int frame) {
    return frame == ARROW_FRAME_CIRCLE || frame == ARROW_FRAME_DIAMOND;
}

}  // namespace labels
