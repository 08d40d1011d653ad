// The place that a text takes.
#pragma once

#include "host/element/layout.h"

namespace host {

// The box of a text as its lower left corner and two sides, in the system of the text's own vectors.
struct TextBox {
    Point3d lowerLeft, along, up;
};
TextBox textBox(const TextView& text);

unsigned char textCharacter(const TextView& text, uint32_t i);  // in Windows-1252

}  // namespace host
