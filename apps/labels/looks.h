// What labels look like: sizes on paper, and the attributes that tell colours, weights, levels and lettering.
#pragma once

#include <string>

#include <mclib/mclib.h>
#include <mclib/app/attribute_line.hpp>

namespace labels {

// Heads have whole numbers for sizes, so sizes are told to the library in hundredths of a millimetre on paper.
constexpr double sizesPerMm = 100;

// How the drawing stands on paper.
struct Paper {
    double scale = 1000;              // 1 : scale
    double millimetresOfUnit = 1000;  // of the drawing's master unit, on the ground

    // What the library divides sizes by to get master units.
    double divisor() const { return sizesPerMm * millimetresOfUnit / scale; }
    // Master units that are a millimetre on paper.
    double unitsPerMm() const { return scale / millimetresOfUnit; }
};

// The attributes that labels have when no others are told.
enum { USUAL_LINE = 10001, USUAL_TEXT = 10002, USUAL_HEAD = 10003 };

// What holds for a label. Sizes are millimetres on paper.
struct Style {
    int frame = ARROW_FRAME_BOX_SIDE;
    int head = 6;  // slim and filled
    double headSize = 3.5;
    double radius = 0;  // of circles and diamonds; 0: as the text needs it
    double angle = 0;   // radians
    std::string cell = "LABEL";
    int lineAttribute = USUAL_LINE, textAttribute = USUAL_TEXT, headAttribute = USUAL_HEAD;
};

// Fills the table of attributes with the usual ones alone. False after a message.
bool beginAttributes();
// Adds an attribute. Why it can't be; empty when it was added.
std::string addAttribute(const mcapp::ToldAttribute& attribute);
inline bool isAttribute(int id) {
    return mclibElmAttr_extractData(id, nullptr) == MCLIB_SUCCESS;
}

// Texts of that attribute begin (1), or end (-1), where their leader ends.
void setTextSide(int attribute, int direction);

}  // namespace labels
