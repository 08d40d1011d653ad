// The walk over a descriptor: what a pen gets.
#include <cmath>
#include <numbers>
#include <sstream>

#include "mchost/mdl/cell.h"
#include "mchost/mdl/compound.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/tag.h"
#include "mchost/mdl/text.h"
#include "mchost/mdl/walk.h"
#include "tests/mchost/model/model_fixture.h"

namespace {

// What it gets, a line each: the type of the element, its colour, and points or characters.
class WalkTest : public DesignFileTest {
  public:
    WalkTest() {
        pen.userArg = this;
        pen.tolerance = 0.1;
        pen.line = [](void* test, const MSElementBuffer* element, const MdlLook* look, const Point3d* points,
                      int32_t count) {
            auto& out = static_cast<WalkTest*>(test)->drawn;
            out << mdlElement_getType(element) << (look->filled ? " fill " : " line ") << look->color;
            for (int32_t i = 0; i < count; ++i)
                out << ' ' << std::lround(points[i].x) << ',' << std::lround(points[i].y);
            out << '\n';
        };
        pen.text = [](void* test, const MSElementBuffer* element, const MdlLook* look) {
            char text[256] = "";
            mdlText_extract(nullptr, nullptr, nullptr, nullptr, text, nullptr, nullptr, nullptr, nullptr, nullptr,
                            element);
            static_cast<WalkTest*>(test)->drawn << "text " << look->color << ' ' << text << '\n';
        };
        mdlCell_create(&element, L"GROUP", nullptr, 0);
        EXPECT_EQ(mdlElmdscr_new(group.out(), nullptr, &element), MDL_SUCCESS);
        append(line(0, 0, 10, 0), 1);
        mdlCell_create(&element, L"outline", nullptr, 0);
        element.head.type = MDL_COMPLEX_SHAPE;
        ElementDescr* outline = nullptr;
        EXPECT_EQ(mdlElmdscr_new(&outline, nullptr, &element), MDL_SUCCESS);
        outline->element->head.color = 2;
        outline->element->head.properties |= MDL_PROP_FILLED;
        EXPECT_EQ(mdlElmdscr_appendElement(outline, line(20, 0, 30, 0)), MDL_SUCCESS);
        EXPECT_EQ(mdlElmdscr_appendElement(outline, line(30, 0, 30, 10)), MDL_SUCCESS);
        EXPECT_EQ(mdlElmdscr_appendDscr(group.get(), outline), MDL_SUCCESS);
        const Point3d at = {40, 0, 0};
        const TextSize size = {1, 5, 5, 1};
        EXPECT_EQ(mdlText_createWide(&element, nullptr, L"A1", &at, nullptr, &size, nullptr, 0), MDL_SUCCESS);
        append(&element, 3);
    }

    void append(MSElementBuffer* part, int32_t color) {
        part->head.color = color;
        EXPECT_EQ(mdlElmdscr_appendElement(group.get(), part), MDL_SUCCESS);
    }
    std::string walk() {
        drawn.str("");
        EXPECT_EQ(mdlElmdscr_walk(group.get(), &pen), MDL_SUCCESS);
        return drawn.str();
    }

    MSElementBuffer element;
    mdl::Descr group;
    MdlPen pen = {};
    std::ostringstream drawn;
};

}  // namespace

TEST_F(WalkTest, LinesOutlinesAndTextsComeInOrderWithTheirLooks) {
    EXPECT_EQ(walk(), "3 line 1 0,0 10,0\n14 fill 2 20,0 30,0 30,10 20,0\ntext 3 A1\n");
    pen.line = nullptr;
    EXPECT_EQ(walk(), "text 3 A1\n");
    pen.text = nullptr;
    EXPECT_EQ(walk(), "");
}

TEST_F(WalkTest, AllIsTransformedButTheDescriptor) {
    Transform quarter;
    mdlTMatrix_rotateByAngles(&quarter, nullptr, 0, 0, std::numbers::pi / 2);
    const std::string before = walk();
    pen.transform = &quarter;
    EXPECT_EQ(walk(), "3 line 1 0,0 0,10\n14 fill 2 0,20 0,30 -10,30 0,20\ntext 3 A1\n");
    {
        const mdl::CurrTransScope halves;
        mdlCurrTrans_scale(2, 2, 2);
        EXPECT_EQ(walk(), "3 line 1 0,0 0,5\n14 fill 2 0,10 0,15 -5,15 0,10\ntext 3 A1\n");
    }
    pen.transform = nullptr;
    EXPECT_EQ(walk(), before);
}

TEST_F(WalkTest, WhatLiesOutsideOrIsSkippedIsLeftOut) {
    const Range3d range = {{-5, -5, 0}, {5, 5, 0}};
    pen.range = &range;
    EXPECT_EQ(walk(), "3 line 1 0,0 10,0\n14 fill 2 20,0 30,0 30,10 20,0\n");  // a header has no extent of its own
    pen.range = nullptr;
    pen.skip = [](void* test, const ElementDescr* node) -> int {
        static_cast<WalkTest*>(test)->drawn << '?' << mdlElement_getType(node->element) << ' ';
        return mdlElement_getType(node->element) != MDL_LINE;
    };
    EXPECT_EQ(walk(), "?2 ?3 3 line 1 0,0 10,0\n?14 ?17 ");
}

TEST_F(WalkTest, TagsAndCompoundsAreDrawnAsWhatShowsThem) {
    MdlTagValue value = {};
    value.type = MDL_TAG_LONG;
    value.longValue = 42;
    const TextSize size = {1, 5, 5, 1};
    ASSERT_EQ(mdlTag_create(&element, nullptr, &value, nullptr, nullptr, &size, nullptr, 1), MDL_SUCCESS);
    append(&element, 4);
    mdl::Descr parts;
    ASSERT_EQ(mdlElmdscr_new(parts.out(), nullptr, line(50, 0, 60, 0)), MDL_SUCCESS);
    ASSERT_EQ(mdlElmdscr_appendElement(parts.get(), line(60, 0, 60, 10)), MDL_SUCCESS);
    ASSERT_EQ(mdlCompound_create(&element, nullptr, parts.get()), MDL_SUCCESS);
    element.head.type = MDL_MULTILINE;
    append(&element, 5);
    const Range3d range = {{-5, -5, 0}, {70, 5, 0}};
    const Transform doubled = {{{2, 0, 0, 0}, {0, 2, 0, 0}, {0, 0, 2, 0}}};
    pen.range = &range;
    pen.transform = &doubled;
    pen.skip = [](void* test, const ElementDescr* node) -> int {
        const bool shows = node->parent && mdlElement_getType(node->parent->element) == MDL_MULTILINE;
        if (shows) static_cast<WalkTest*>(test)->drawn << "? ";
        return mdlElement_getType(node->element) == MDL_COMPLEX_SHAPE;
    };
    EXPECT_EQ(walk(), "3 line 1 0,0 20,0\ntext 4 42\n");
    pen.range = nullptr;
    EXPECT_EQ(walk(), "3 line 1 0,0 20,0\ntext 3 A1\ntext 4 42\n? 3 line 5 100,0 120,0\n? 3 line 5 120,0 120,20\n");
}

TEST_F(WalkTest, APenThatCantDrawIsRefused) {
    EXPECT_EQ(mdlElmdscr_walk(group.get(), nullptr), MDL_ERROR);
    pen.tolerance = 0;
    EXPECT_EQ(mdlElmdscr_walk(group.get(), &pen), MDL_ERROR);
    pen.tolerance = NAN;
    EXPECT_EQ(mdlElmdscr_walk(group.get(), &pen), MDL_ERROR);
}
