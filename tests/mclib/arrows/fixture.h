// Arrows in a new design file (10,000 UOR a master unit), and elements told in words.
#pragma once

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "mchost/command/command.h"
#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/state.h"
#include "mchost/mdl/system.h"
#include "mchost/mdl/text.h"
#include "mclib/arrows/arrows.h"
#include "mclib/geometry/textsize.h"
#include "tests/support/library_fixture.h"

namespace arrowtest {

constexpr double uor = 10000;
constexpr int textAttr = 1, lineAttr = 2, headAttr = 3, plainTextAttr = 4, unknownAttr = 99;

inline Point3d at(double x, double y) {
    return {x * uor, y * uor, 0};
}

using Words = std::vector<std::string>;

// Master units with at most four decimals.
inline std::string number(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.6g", std::round(value * 1e4) / 1e4 + 0.0);
    return text;
}
inline std::string pointText(const Point3d& p) {
    return number(p.x / uor) + "," + number(p.y / uor);
}

inline std::string linearText(const char* name, const MSElementBuffer* element) {
    std::vector<Point3d> points(MDL_MAX_POINTS);
    int32_t count = 0;
    mdlLinear_extract(points.data(), &count, element, MDL_MAX_POINTS);
    std::string text = name;
    for (int32_t i = 0; i < count; ++i) text += " " + pointText(points[static_cast<size_t>(i)]);
    return mdlElement_isFilled(element) ? text + " filled" : text;
}

inline std::string arcText(const char* name, const MSElementBuffer* element) {
    Point3d center;
    double axis = 0, start = 0, sweep = 0;
    RotMatrix rotation;
    mdlArc_extract(&center, &axis, nullptr, &rotation, &start, &sweep, element);
    const double turn = std::atan2(rotation.form[1][0], rotation.form[0][0]);
    const std::string text = std::string(name) + " " + pointText(center) + " r" + number(axis / uor);
    if (mdlElement_getType(element) == MDL_ELLIPSE) return mdlElement_isFilled(element) ? text + " filled" : text;
    return text + " from" + number(std::remainder(start + turn, 2 * M_PI) / M_PI) + " by" + number(sweep / M_PI);
}

inline std::string textText(const MSElementBuffer* element) {
    Point3d origin;
    char text[MDL_TEXT_CHARACTERS + 1];
    int32_t just = 0;
    mdlText_extract(nullptr, &origin, nullptr, nullptr, text, nullptr, nullptr, &just, nullptr, nullptr, element);
    return std::string("text '") + text + "' " + pointText(origin) + " j" + std::to_string(just);
}

// What the element is: "line 0,0 2,1", "shape ... filled", "circle 1,2 r3", "arc ...", "text 'a' 1,2 j1", "cell".
inline std::string wordsOf(const MSElementBuffer* element) {
    switch (mdlElement_getType(element)) {
        case MDL_CELL_HEADER: return "cell";
        case MDL_LINE: return linearText("line", element);
        case MDL_LINE_STRING: return linearText("leader", element);
        case MDL_SHAPE: return linearText("shape", element);
        case MDL_ELLIPSE: return arcText("circle", element);
        case MDL_ARC: return arcText("arc", element);
        case MDL_TEXT: return textText(element);
        default: return "type " + std::to_string(mdlElement_getType(element));
    }
}

inline Words wordsOf(const ElementDescr* first) {
    Words words;
    for (; first; first = first->next) {
        words.push_back(wordsOf(first->element));
        for (const std::string& part : wordsOf(first->firstChild)) words.push_back(part);
    }
    return words;
}

// How wide a text of the text attribute is, in master units at scale 1.
inline double widthOf(const char* text) {
    const mdl::CurrTransScope master(mdl::CurrTransScope::Begin::masterUnits);
    double width = 0;
    mclibUtil_extractTextSize(text, 1, textAttr, 0, &width, nullptr, nullptr, nullptr);
    return width;
}

// The bytes of the elements of a chain, each followed by its components.
inline std::string bytesOf(const ElementDescr* first) {
    std::string bytes;
    for (const ElementDescr* node = first; node; node = node->next) {
        bytes.append(reinterpret_cast<const char*>(node->element->bytes), mdlElement_bytes(node->element));
        bytes += bytesOf(node->firstChild);
    }
    return bytes;
}

class ArrowTest : public LibraryTest {
  protected:
    ArrowTest() {
        openDesignFile();
        mclibElmAttr_setGroupeNames(1, "Group", 1, 0);
        ElmAttrData data{};
        data.useFlags = ATTR_USE_COLOR | ATTR_USE_SIZE;
        data.textHeight = data.textWidth = 2;
        data.textLineSpacing = 1;  // the gap between text and frame is 1 at scale 1
        data.textJust = 2;
        add(textAttr, ATTR_KIND_TEXT, data);
        add(lineAttr, ATTR_KIND_SYMBOLOGY, data);
        add(headAttr, ATTR_KIND_SYMBOLOGY, data);
        data.useFlags = ATTR_USE_COLOR;
        add(plainTextAttr, ATTR_KIND_TEXT, data);
    }

    // The elements of an attribute have its number as their colour.
    static void add(int attrId, int kind, ElmAttrData data) {
        data.color = attrId;
        mclibElmAttr_addAttribute(attrId, "attribute", 1, kind, 0, nullptr, 0, &data);
    }

    // The arrow at a position, its cell first.
    static mdl::DescrPtr arrowAt(FilePos position) { return mdl::readDescr(position, mdlModelRef_getActive()); }
    static Words wordsAt(FilePos position) { return wordsOf(arrowAt(position).get()); }
    static Words latest() { return wordsAt(mclibArrow_getLatestFilePos()); }

    // A data point of the user, in view 0.
    static void point(double x, double y) { host::giveDataPoint(at(x, y), 0); }
    // What the dynamics of the command show with the cursor there.
    static Words shown(double x, double y) {
        host::moveCursor(at(x, y), 0);
        Words words;
        for (const mdl::DescrPtr& ed : host::dynamicElements())
            for (const std::string& part : wordsOf(ed.get())) words.push_back(part);
        return words;
    }

    int messageBoxes() { return front().dialogs; }
};

}  // namespace arrowtest
