// Frames and heads by the names that people give them.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace labels {

struct Kind {
    const char* name;
    int number;
};

// ARROW_FRAME_..., and all heads from 0 to ARROW_HEAD_LAST; each number once, in turn.
std::span<const Kind> frameKinds();
std::span<const Kind> headKinds();

// The number of the kind with that name, in any letter case, or of that number. Nothing when there is none.
std::optional<int> kindNamed(std::span<const Kind> kinds, std::string_view name);

// Whether the frame holds its text in the middle of what surrounds it.
bool surroundsText(int frame);
// Whether the size of the frame can be told.
bool hasRadius(int frame);

}  // namespace labels
