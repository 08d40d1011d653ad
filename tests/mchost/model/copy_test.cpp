// Elements of another drawing copied into the active one.
#include "mchost/mdl/copy.h"

#include <memory>

#include "mchost/mdl/level.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/reference.h"
#include "tests/mchost/model/model_fixture.h"

namespace {

constexpr int32_t byLevel = -1, styleByLevel = 0x7FFFFFFF;

class CopyTest : public OpenModelTest {
  protected:
    // A drawing whose levels have other numbers, with a dashed style, attached to the active one.
    CopyTest() {
        const std::string other = path("other.mcd");
        EXPECT_EQ(mdlSystem_createDesignFile(other.c_str(), 1), MDL_SUCCESS);
        EXPECT_EQ(mdlSystem_newDesignFile(other.c_str(), 0), MDL_SUCCESS);
        const double dashes[] = {1, 2, 3};
        mdlLineStyle_define(nullptr, nullptr, "unused", dashes, 2);
        mdlLineStyle_define(&style, nullptr, "hedge", dashes, 3);
        const uint32_t color = 4, weight = 6;
        const int32_t byLevelStyle = style;
        for (LevelId* id : {&pipes, &pumps}) {
            mdlLevel_create(id, nullptr, id == &pipes ? L"Pipes" : L"Pumps");
            mdlLevel_setElementSymbology(nullptr, *id, &color, &byLevelStyle, nullptr, &weight, nullptr);
        }
        mdlLevelTable_rewrite(nullptr);
        EXPECT_EQ(mdlSystem_newDesignFile(file.c_str(), 0), MDL_SUCCESS);
        const uint32_t plain = 0;
        const int32_t solid = 0;
        mdlLevel_create(&ownPumps, nullptr, L"Pumps");
        mdlLevel_setElementSymbology(nullptr, ownPumps, &plain, &solid, nullptr, &plain, nullptr);
        EXPECT_EQ(mdlRefFile_attach(&reference, nullptr, other.c_str(), nullptr, nullptr, 0), MDL_SUCCESS);
    }
    MSElementBuffer* copied(const MSElementBuffer* element) {
        mdl::Descr made;
        EXPECT_EQ(mdlElmdscr_new(made.out(), reference, element), MDL_SUCCESS);
        const FilePos position = mdlElmdscr_copy(made.get());
        EXPECT_NE(position, 0u);
        EXPECT_NE(mdlElement_read(&out, nullptr, position), 0u);
        return &out;
    }

    MSElementBuffer out;
    ModelRef* reference = nullptr;
    LevelId pipes = 0, pumps = 0, ownPumps = 0;
    int32_t style = 0;
};

TEST_F(CopyTest, LevelsAndStylesComeByTheirNames) {
    MSElementBuffer* e = line(0, 0, 1, 1);
    e->head.level = pipes;
    e->head.style = style;
    const ElementHead found = copied(e)->head;
    wchar_t level[32] = L"";
    char name[64] = "";
    EXPECT_EQ(mdlLevel_getName(level, 32, nullptr, found.level), MDL_SUCCESS);
    EXPECT_STREQ(level, L"Pipes");
    EXPECT_EQ(mdlLineStyle_nameFromNumber(name, found.style, nullptr), MDL_SUCCESS);
    EXPECT_STREQ(name, "hedge");
    double dashes[32] = {};
    int32_t count = 0;
    EXPECT_EQ(mdlLineStyle_getPattern(dashes, &count, found.style, nullptr), MDL_SUCCESS);
    EXPECT_EQ(std::tuple(count, dashes[2]), std::tuple(3, 3.0));
    e = line(0, 0, 1, 1);
    e->head.style = style;
    EXPECT_EQ(copied(e)->head.style, found.style) << "one style";
}

TEST_F(CopyTest, WhatItsLevelGivesStaysAsItLooked) {
    for (const auto& [level, own] : {std::pair(pipes, false), std::pair(pumps, true)}) {
        MSElementBuffer* e = line(0, 0, 1, 1);
        e->head.level = level;
        e->head.color = byLevel;
        e->head.weight = byLevel;
        e->head.style = styleByLevel;
        const ElementHead found = copied(e)->head;
        EXPECT_EQ(std::tuple(found.color == 4, found.weight == 6, found.style < 0), std::tuple(own, own, own));
        int32_t color = 0, weight = 0, seen = 0;
        mdlElement_getEffectiveSymbology(&color, &weight, &seen, nullptr, nullptr, &out, nullptr);
        char name[64] = "";
        mdlLineStyle_nameFromNumber(name, seen, nullptr);
        EXPECT_EQ(std::tuple(color, weight, std::string(name)), std::tuple(4, 6, "hedge"));
    }
}

TEST_F(CopyTest, CellsBecomeOfTheKindOfTheDrawing) {
    MSElementBuffer header;
    const Point3d origin = {7, 8, 9};
    ASSERT_EQ(mdlCell_create(&header, L"PUMP", &origin, 1), MDL_SUCCESS);
    mdl::Descr cell;
    ASSERT_EQ(mdlElmdscr_new(cell.out(), reference, &header), MDL_SUCCESS);
    MSElementBuffer* part = line(0, 0, 1, 1);
    part->head.level = pipes;
    ASSERT_EQ(mdlElmdscr_appendElement(cell.get(), part), MDL_SUCCESS);
    const FilePos position = mdlElmdscr_copy(cell.get());
    ASSERT_NE(position, 0u);
    ASSERT_NE(mdlElement_read(&out, nullptr, position), 0u);
    Point3d found;
    ASSERT_EQ(mdlCell_extract(&found, nullptr, &out), MDL_SUCCESS);
    EXPECT_EQ(std::tuple(found.x, found.y, found.z), std::tuple(7, 8, 0));
    EXPECT_EQ(cell.get()->firstChild->element->head.level, pipes) << "what is copied stays";
}

TEST_F(CopyTest, NothingGoesIntoADrawingThatCantBeWritten) {
    mdl::Descr made;
    ASSERT_EQ(mdlElmdscr_new(made.out(), nullptr, line(0, 0, 1, 1)), MDL_SUCCESS);
    ASSERT_EQ(mdlSystem_newDesignFile(file.c_str(), 1), MDL_SUCCESS);
    const uint32_t before = mdlModelRef_getElementCount(nullptr);
    EXPECT_EQ(mdlElmdscr_copy(made.get()), 0u);
    EXPECT_EQ(mdlElmdscr_copy(nullptr), 0u);
    EXPECT_EQ(mdlModelRef_getElementCount(nullptr), before);
}

}  // namespace
