// An arrow in the drawing, the commands that change it, and hooks that note what they are called with.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "mchost/mdl/model.h"
#include "tests/mclib/arrows/fixture.h"

namespace arrowtest {

struct Calls {
    int resets = 0, reads = 0, writes = 0;
    int headType = 1, leaderMode = 0;
    double width = 0;
    int filterResult = 2;
    int componentType = 0;
    int changeResult = 0;
    double direction = 0;
    Point3d anchor{};
    std::function<void(ElementDescr**, ElementDescr**)> onRead;
    std::function<void(ElementDescr**)> onWrite;
};
inline Calls calls;

inline void resetHook() {
    ++calls.resets;
}
inline int filter(MSElementBuffer* arrow, MSElementBuffer* component, int* lineAttrId, int* headAttrId) {
    EXPECT_EQ(mdlElement_getType(arrow), MDL_CELL_HEADER);
    calls.componentType = mdlElement_getType(component);
    EXPECT_TRUE(lineAttrId && headAttrId);
    return calls.filterResult;
}
inline void readHook(ElementDescr** cell, ElementDescr** component) {
    EXPECT_EQ(mdlElement_getType((*cell)->element), MDL_CELL_HEADER);
    calls.componentType = *component ? mdlElement_getType((*component)->element) : 0;
    ++calls.reads;
    if (calls.onRead) calls.onRead(cell, component);
}
inline void writeHook(ElementDescr** cell) {
    EXPECT_TRUE(*cell);
    ++calls.writes;
    if (calls.onWrite) calls.onWrite(cell);
}
inline void looks(int* headType, double* headSize, double* scale, int* leaderMode, int* frameKind, double* angle,
                  double* width) {
    *headType = calls.headType;
    *headSize = 2;
    *scale = 1;
    *leaderMode = calls.leaderMode;
    *frameKind = 0;
    *angle = 0;
    *width = calls.width;
}
inline int changeText(ElementDescr** made, ElementDescr* old, Point3d* anchor, double direction, int) {
    calls.direction = direction;
    calls.anchor = *anchor;
    MSElementBuffer* header = old->element;
    EXPECT_EQ(mdlElmdscr_new(made, nullptr, header), MDL_SUCCESS);
    const TextSize size = {1, 2 * uor, 2 * uor, 1};
    mdlText_create(dgnBufP, nullptr, "new", anchor, nullptr, &size, nullptr, 0);
    EXPECT_EQ(mdlElmdscr_appendElement(*made, dgnBufP), MDL_SUCCESS);
    return calls.changeResult;
}

class Editing : public ArrowTest {
  protected:
    Editing() { calls = {}; }

    // Draws an arrow and remembers it.
    void draw(std::vector<Point3d> vertices, int frameKind, int headType = 12, const char* text = "abc",
              double angle = 0) {
        ASSERT_EQ(mclibArrow_drawTextArrow(vertices.data(), static_cast<int>(vertices.size()), textAttr, lineAttr,
                                           headAttr, 1, angle, text, nullptr, headType, 2, frameKind, 0),
                  MCLIB_SUCCESS);
        arrow = mclibArrow_getLatestFilePos();
    }
    Words words() const { return wordsAt(arrow); }
    // The components from the first leader on.
    Words legs() const {
        Words all = words();
        size_t first = 0;
        while (first < all.size() && all[first].rfind("leader", 0) != 0) ++first;
        return {all.begin() + static_cast<std::ptrdiff_t>(first), all.end()};
    }
    // Its bytes, with all components.
    std::string bytes() const { return bytesOf(arrowAt(arrow).get()); }

    std::string told() const { return front().field(MDL_FIELD_ERROR); }
    RecordingFrontEnd& front() const { return const_cast<Editing*>(this)->ArrowTest::front(); }

    void insert() { mclibArrow_insertVertex(0, 0, filter, readHook, writeHook, resetHook); }
    void remove() { mclibArrow_deleteVertex(0, 0, filter, readHook, writeHook, resetHook); }
    void moveHead() { mclibArrow_moveArrowHead(0, 0, filter, readHook, writeHook, resetHook); }
    void moveAll() { mclibArrow_moveTextAndSymbol(0, 0, filter, readHook, writeHook, resetHook); }
    void moveText() { mclibArrow_moveText(0, 0, filter, readHook, writeHook, resetHook); }
    void change(McArrowChangeTextHook hook = changeText) {
        mclibArrow_modifyTextAndSymbol(0, 0, filter, readHook, writeHook, hook, resetHook);
    }
    void addLeader() { mclibArrow_addArrow(0, 0, lineAttr, headAttr, filter, readHook, writeHook, looks, resetHook); }
    void deleteLeader() { mclibArrow_deleteArrow(0, 0, filter, readHook, writeHook, resetHook); }
    void replaceHead(McArrowAttributesHook hook = looks) {
        mclibArrow_modifyArrowHead(0, 0, lineAttr, headAttr, filter, readHook, writeHook, hook, resetHook);
    }
    // Adds a leader with these vertices behind the frame.
    void giveLeader(std::vector<Point3d> vertices, double x, double y) {
        addLeader();
        point(x, y);
        for (const Point3d& p : vertices) host::giveDataPoint(p, 0);
        host::giveReset();
    }

    FilePos arrow = 0;
    const double w = widthOf("abc"), side = w / 2 + 1;  // half of a box
    const std::string left = number(-w / 2 - 1), right = number(w / 2 + 1);
};

}  // namespace arrowtest
