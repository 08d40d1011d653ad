// The walk over a descriptor: what a pen gets.
#include <cmath>
#include <numbers>
#include <sstream>

#include "mchost/mdl/cell.h"
#include "mchost/mdl/owned.hpp"
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

TEST_F(WalkTest, APenThatCantDrawIsRefused) {
    EXPECT_EQ(mdlElmdscr_walk(group.get(), nullptr), MDL_ERROR);
    pen.tolerance = 0;
    EXPECT_EQ(mdlElmdscr_walk(group.get(), &pen), MDL_ERROR);
    pen.tolerance = NAN;
    EXPECT_EQ(mdlElmdscr_walk(group.get(), &pen), MDL_ERROR);
}
