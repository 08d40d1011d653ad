// The place that a text takes.
#pragma once

#include <string_view>

#include "mchost/element/layout.h"

namespace host {

// The box of a text as its lower left corner and two sides, in the system of the text's own vectors.
struct TextBox {
    Point3d lowerLeft, along, up;
};
TextBox textBox(const TextView& text);

uint16_t textUnit(const TextView& text, uint32_t i);
unsigned char textCharacter(const TextView& text, uint32_t i);  // in Windows-1252

// The text in the current system; nothing when it can't be used there.
std::optional<TextView> inCurrentSystem(TextView text);
// Of a text in the current system: the rotation, the size of its characters, and the parameters it was made with.
RotMatrix rotationOf(const TextBody& body);
TextSize sizeOf(const TextBody& body);
TextParams paramsOf(const TextBody& body);

double activeTextSize();  // UOR

// Stores the characters of a text in Windows-1252, 16 bits each.
void storeCharacters(uint8_t* to, std::string_view text);

// A body of no characters from a builder's arguments, in UOR; nothing when they can't be used.
std::optional<TextBody> newTextBody(const Point3d* origin, const RotMatrix* rotation, const TextSize* size,
                                    const TextParams* params);

}  // namespace host
