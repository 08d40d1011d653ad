// What the dialog holds: how labels are placed and changed while it is open.
#pragma once

#include <cstdint>
#include <string_view>

#include <mclib/mclib.h>
#include "looks.h"

namespace labels {

// Published as labelsp. Sizes are millimetres on paper.
struct Settings {
    char text[ARROW_TEXT_LENGTH + 1];
    int32_t frame, head, leg;
    int32_t snaps;      // the tip lies on the element that is nearest
    int32_t tagString;  // the text is one, over the element at the tip
    int32_t numbered;   // a number in a circle, and no text
    int32_t number;     // of the next one
    double headSize, headWidth;
    double radius;  // of circles and diamonds; 0: as the text needs it
    double scale, angle;
};

Settings& settings();
// Nothing but blanks.
bool isBlank(std::string_view text);
// The style that it began with: attributes, cell.
const Style& startStyle();

// Begins with a style, and publishes the settings.
void beginSettings(const Paper& paper, const Style& style);
// As the scale of the dialog has it.
Paper currentPaper();

// As the library asks for them (McArrowAttributesHook).
void giveLooks(int* headType, double* headSize, double* scale, int* leaderMode, int* frameKind, double* angle,
               double* width);

}  // namespace labels
