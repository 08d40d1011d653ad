// Snapping, the selection set, the fence, undo and redo, as the user asks for them.
#include <gmock/gmock.h>

#include <cstdlib>

#include "mchost/command/overlay.h"
#include "mchost/command/running.h"
#include "mchost/command/selection.h"
#include "mchost/mdl/compound.h"
#include "mchost/mdl/describe.h"
#include "mchost/mdl/fence.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/reference.h"
#include "mchost/mdl/snap.h"
#include "mchost/mdl/tag.h"
#include "mchost/mdl/text.h"
#include "mchost/mdl/transform.h"
#include "mchost/mdl/undo.h"
#include "tests/mchost/command/modify_fixture.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Words : public ModifyCommand {
  protected:
    // A master unit is a reach.
    static constexpr double uor = 10000;
    Words() {
        const Point3d origin{}, extent{80 * uor, 60 * uor, 0};
        EXPECT_EQ(mdlView_setArea(0, &origin, &extent), MDL_SUCCESS);
        EXPECT_DOUBLE_EQ(host::aimAt({}, 0).reach, uor);
    }

    static FilePos add(std::initializer_list<std::pair<double, double>> points, double z = 0) {
        std::vector<Point3d> scaled;
        for (const auto& [x, y] : points) scaled.push_back({x * uor, y * uor, z * uor});
        EXPECT_EQ(mdlLineString_create(dgnBufP, nullptr, scaled.data(), static_cast<int32_t>(scaled.size())),
                  MDL_SUCCESS);
        return mdlElement_add(dgnBufP);
    }
    // What the user is told about the line; it is carried out as the loop does.
    std::string key(const std::string& line) {
        front().messages.clear();
        const host::ApplicationScope control(nullptr);
        EXPECT_TRUE(host::carryOutHostWord(line)) << line;
        return front().messages.empty() ? "" : front().messages.back().brief;
    }
    void startPoints() {
        asApplication("points", [] { return mdlState_startPrimitive(accept, nullptr, 0, 0); });
    }
    Point3d lastPoint() { return {statedataP->point.x / uor, statedataP->point.y / uor, statedataP->point.z / uor}; }
};

TEST_F(Words, SnapGivesThePointOfTheNearestElement) {
    add({{0, 0}, {10, 0}, {10, 6}}, 3);
    add({{4, -5}, {4, 5}});
    const Point3d centre{30 * uor, 0, 0};
    mdlArc_create(dgnBufP, nullptr, &centre, 5 * uor, 5 * uor, nullptr, 0, *fc_piP);
    ASSERT_NE(mdlElement_add(dgnBufP), 0u);
    startPoints();
    const struct {
        const char* line;
        double x, y;
    } cases[] = {
        {"snap vertex 7,0.2", 10, 0},  {"snap 2 9.5,2", 10, 6},
        {"snap end 4,0.2", 4, 5},      {"snap 3 7,0", 5, 0},
        {"snap middle 10,5", 10, 3},   {"snap middle 35,0", 30, 5},
        {"snap centre 34.9,1", 30, 0}, {"snap intersection 3.5,0.5", 4, 0},
        {"snap nearest 7,0.5", 7, 0},  {"snap 6 10.5,6.5", 10, 6},
    };
    for (const auto& [line, x, y] : cases) {
        calls.seen.clear();
        EXPECT_EQ(key(line), "") << line;
        EXPECT_NEAR(lastPoint().x, x, 1e-9) << line;
        EXPECT_NEAR(lastPoint().y, y, 1e-9) << line;
        EXPECT_EQ(calls.seen.size(), 1u) << "the command gets the point";
    }
    host::moveCursor({2 * uor, 0, 0}, 0);
    key("snap end");
    EXPECT_EQ(lastPoint().x, 0) << "from where the cursor is, on the element as it lies in space";
    EXPECT_EQ(lastPoint().z, 3);
    EXPECT_THAT(key("snap centre 7,0"), HasSubstr("No element within reach"));
    EXPECT_THAT(key("snap end 50,50"), HasSubstr("No element within reach"));
    EXPECT_THAT(key("snap corner 7,0"), HasSubstr("\"corner\" is nothing to snap to"));
    EXPECT_THAT(key("snap end here"), HasSubstr("\"here\" isn't a point"));
    mdlState_startDefaultCommand();
    EXPECT_THAT(key("snap end 7,0"), HasSubstr("No command"));
}

// A line from 0,0 to 10,0, one across it at 8.4, a text and a vertical line that begin at 2,4, all attached, with a
// clip that leaves x from 3 to 8 of them.
TEST_F(Words, WhatClipsTakeAwayIsNeitherSnappedToNorFound) {
    add({{0, 0}, {10, 0}});
    add({{2, 4}, {2, 9}});
    add({{7.9, -0.5}, {8.9, 0.5}});
    const Point3d origin{2 * uor, 4 * uor, 0};
    const TextSize size{0, 2 * uor, 2 * uor, 0};
    ASSERT_EQ(mdlText_create(dgnBufP, nullptr, "texts", &origin, nullptr, &size, nullptr, 0), MDL_SUCCESS);
    ASSERT_NE(mdlElement_add(dgnBufP), 0u);
    close();
    const Point3d corners[] = {
        {3 * uor, -5 * uor, 0}, {8 * uor, -5 * uor, 0}, {8 * uor, 9 * uor, 0}, {3 * uor, 9 * uor, 0}};
    ModelRef* place = nullptr;
    ASSERT_EQ(mdlRefFile_attach(&place, nullptr, file.c_str(), nullptr, corners, 4), MDL_SUCCESS);
    const Point3d area{80 * uor, 60 * uor, 0}, zero{};
    ASSERT_EQ(mdlView_setArea(0, &zero, &area), MDL_SUCCESS);
    startPoints();
    EXPECT_EQ(key("snap nearest 8.5,0.2"), "");
    EXPECT_NEAR(lastPoint().x, 8, 1e-9) << "its visible end";
    EXPECT_EQ(key("snap middle 7,0.2"), "");
    EXPECT_NEAR(lastPoint().x, 5, 1e-9);
    for (const char* line : {"snap end 7,0", "snap vertex 4,0", "snap nearest 9.5,0", "snap nearest 2,7",
                             "snap vertex 5,5", "snap intersection 7.95,-0.1"})
        EXPECT_THAT(key(line), HasSubstr("No element within reach")) << line;
    ASSERT_EQ(mdlRefFile_setClip(nullptr, 0, place), MDL_SUCCESS);
    EXPECT_EQ(key("snap end 7,0"), "");
    EXPECT_NEAR(lastPoint().x, 10, 1e-9);
    EXPECT_EQ(key("snap vertex 5,5"), "");
    EXPECT_EQ(key("snap intersection 7.95,-0.1"), "");
    EXPECT_NEAR(lastPoint().x, 8.4, 1e-9);
}

TEST_F(Words, ModesThatAreOnSnapPointsAndDynamics) {
    add({{0, 0}, {10, 0}});
    startPoints();
    mdlState_setFunction(MDL_STATE_DYNAMICS, reinterpret_cast<MdlStateFunction>(dynamics));
    key("snapping end middle");
    host::moveCursor({6 * uor, 0.5 * uor, 0}, 0);
    EXPECT_EQ(lastPoint().x, 5);
    ASSERT_EQ(host::dynamicElements().size(), 1u);
    Range3d range;
    mdlElmdscr_computeRange(&range.low, &range.high, host::dynamicElements()[0].get(), nullptr);
    EXPECT_EQ(range.high.x, 5 * uor);
    host::giveDataPoint({9 * uor, 0, 0}, 0);
    EXPECT_EQ(calls.seen.back(), "accept 100000 0");
    host::giveDataPoint({9 * uor, 3 * uor, 0}, 0);
    EXPECT_EQ(calls.seen.back(), "accept 90000 0") << "nothing is near";
    EXPECT_THAT(key("snapping end corner"), HasSubstr("corner"));
    EXPECT_EQ(mdlSnap_getModes(), 1u << MDL_SNAP_END | 1u << MDL_SNAP_MIDDLE) << "as it was";
    start();
    host::giveDataPoint({9 * uor, 0, 0}, 0);
    EXPECT_EQ(lastPoint().x, 9) << "a point that locates stays where it is";
    host::giveReset();
    mdlAccuSnap_enableLocate(1);
    host::giveDataPoint({9 * uor, 0, 0}, 0);
    EXPECT_EQ(lastPoint().x, 10);
    key("snapping off");
    host::moveCursor({9 * uor, 0, 0}, 0);
    EXPECT_EQ(lastPoint().x, 9);
    Point3d point{9 * uor, 0, 0};
    EXPECT_EQ(mdlSnap_toElement(&point, 0, MDL_SNAP_END), MDL_SUCCESS);
    EXPECT_EQ(point.x, 10 * uor);
    EXPECT_EQ(mdlSnap_toElement(&point, 0, 7), MDL_ERROR);
    EXPECT_EQ(mdlSnap_toElement(&point, 8, MDL_SNAP_END), MDL_ERROR);
    EXPECT_EQ(mdlSnap_setModes(1), MDL_ERROR);
}

TEST_F(Words, ElementsAreSelectedByPointsByTheFenceAndAllAtOnce) {
    EXPECT_EQ(key("select none"), "Nothing is selected.");
    const FilePos inside = add({{1, 1}, {4, 4}}), across = add({{1, 2}, {20, 2}}), around = add({{0, 6}, {9, 6}});
    EXPECT_EQ(key("select 1.2,1"), "1 element is selected.");
    EXPECT_TRUE(host::isHighlighted(inside));
    EXPECT_THAT(key("select 30,30"), HasSubstr("no element within reach"));
    EXPECT_EQ(key("select all"), "3 elements are selected.");
    EXPECT_EQ(key("select 1.2,1"), "2 elements are selected.") << "one that is selected is taken out";
    EXPECT_EQ(key("select none"), "Nothing is selected.");
    EXPECT_EQ(mdlSelect_isActive(), 0);
    EXPECT_THAT(key("select fence"), HasSubstr("no fence"));
    key("fence 0,0 10,5");
    EXPECT_EQ(key("select fence"), "1 element is selected.");
    EXPECT_THAT(host::selectedElements(), ElementsAre(inside));
    key("select none");
    // A fence with a bay, which the line through y = 6 crosses.
    key("fence 0,5 10,5 10,7 6,7 6,5.5 5,5.5 5,7 -1,7");
    key("select fence");
    EXPECT_THAT(host::selectedElements(), IsEmpty());
    key("fence -1,5 10,5 10,7 -1,7");
    key("select fence");
    EXPECT_THAT(host::selectedElements(), ElementsAre(around));
    EXPECT_THAT(key("fence 3,3"), HasSubstr("two corners"));
    mdlElement_undoableDelete(nullptr, around, 0);
    mdlSelect_addElement(across, nullptr);
    FilePos* positions = nullptr;
    ModelRef** models = nullptr;
    int32_t count = 0;
    ASSERT_EQ(mdlSelect_returnPositions(&positions, &models, &count), MDL_SUCCESS);
    ASSERT_EQ(count, 1) << "without the one that was deleted";
    EXPECT_EQ(positions[0], across);
    EXPECT_EQ(models[0], mdlModelRef_getActive());
    std::free(positions);
    std::free(models);
    EXPECT_EQ(mdlSelect_addElement(around, nullptr), MDL_ERROR);
    close();
    EXPECT_EQ(mdlSelect_isActive(), 0) << "another file has no selection";
    EXPECT_EQ(mdlSelect_returnPositions(&positions, &models, &count), MDL_SUCCESS);
    EXPECT_EQ(positions, nullptr);
}

TEST_F(Words, TagsDimensionsAndMultilinesArePlaced) {
    const auto placed = [&](const std::string& line) -> std::string {
        const uint32_t before = mdlModelRef_getElementCount(nullptr);
        EXPECT_EQ(key(line), "") << line;
        EXPECT_EQ(mdlModelRef_getElementCount(nullptr), before + 1) << line;
        EXPECT_NE(mdlElement_read(dgnBufP, nullptr, before + 1), 0u);
        Point3d origin{};
        MdlTagValue value{};
        if (mdlTag_extract(&origin, nullptr, nullptr, nullptr, nullptr, &value, dgnBufP, nullptr) != MDL_SUCCESS)
            return mdlElement_typeName(mdlElement_getType(dgnBufP));
        EXPECT_EQ(std::tuple(origin.x, origin.y), std::tuple(3 * uor, 4 * uor));
        return std::to_string(value.type) + " " + std::to_string(value.longValue) + " " +
               std::to_string(value.doubleValue) + " " + value.string;
    };
    EXPECT_EQ(placed("place tag 3,4 P-101 left"), "1 0 0.000000 P-101 left");
    EXPECT_EQ(placed("place tag 3,4 -17"), "3 -17 0.000000 ");
    EXPECT_EQ(placed("place tag 3,4 2.5"), "4 0 2.500000 ");
    EXPECT_EQ(placed("place tag 3,4 \"12\""), "1 0 0.000000 12");
    EXPECT_EQ(placed("place dimension 0,0 10,0 0,3"), "dimension");
    mdl::Descr parts;
    ASSERT_EQ(mdlElmdscr_fromCompoundElement(parts.out(), dgnBufP, nullptr), MDL_SUCCESS);
    const ElementDescr* last = parts.get();
    while (last->next) last = last->next;
    char text[256] = "";
    mdlText_extractString(text, last->element);
    EXPECT_STREQ(text, "10");
    EXPECT_EQ(placed("place multiline 0,-0.5,0.5 0,0 10,0 10,8"), "multiline");
    EXPECT_EQ(mdlUndo_undo(), MDL_SUCCESS);
    const uint32_t count = mdlModelRef_getElementCount(nullptr);
    for (const char* line :
         {"place tag", "place tag 3,4", "place tag 3,4 \"\"", "place tag 3,4 1e300", "place dimension 0,0 0,0 0,3",
          "place dimension 0,0 10,0", "place dimension 0,0 10,0 0,3 4", "place multiline 1 0,0",
          "place multiline x 0,0 1,1", "place multiline 1 0,0 0,0"})
        EXPECT_NE(key(line), "") << line;
    EXPECT_EQ(mdlModelRef_getElementCount(nullptr), count);
}

TEST_F(Words, UndoAndRedoTellWhatAndBeginTheCommandAnew) {
    const FilePos line = add({{0, 0}, {10, 0}});
    mdlUndo_mark(nullptr);
    start();
    host::runningCommand().name = "Delete element";
    calls.inAccept = [&] {
        mdlElement_undoableDelete(nullptr, line, 0);
        mdlState_restartCurrentCommand();
    };
    host::giveDataPoint({}, 0);
    host::giveDataPoint({}, 0);
    EXPECT_EQ(mdlElement_read(dgnBufP, nullptr, line), 0u);
    EXPECT_EQ(key("undo"), "Taken back: Delete element.");
    host::giveDataPoint({}, 0);
    ASSERT_EQ(locatedElement(), line);
    mdlElement_read(dgnBufP, nullptr, line);
    mdlElement_display(dgnBufP, MDL_ERASE);
    EXPECT_TRUE(host::overlay().isErased(line));
    EXPECT_EQ(key("redo"), "Done again: Delete element.");
    EXPECT_EQ(locatedElement(), 0u);
    EXPECT_FALSE(host::overlay().isErased(line));
    EXPECT_TRUE(host::commandRuns());
    EXPECT_EQ(key("redo"), "There is nothing to do again.");
    key("undo");
    EXPECT_EQ(key("undo"), "Taken back: the last change.");
    EXPECT_EQ(key("undo"), "There is nothing to take back.");
    EXPECT_THAT(key("undo 3"), HasSubstr("\"3\" is more"));
    open();
    EXPECT_EQ(mdlModelRef_getElementCount(nullptr), 0u) << "what was taken back is so in the file";
}

TEST_F(Words, TheFrontEndShowsItsViewsAnewWhenSomethingElseIsSeen) {
    add({{0, 0}, {10, 0}});
    start();
    front().events = {host::CursorMove{{}, 0}};
    host::serveCommands();
    front().seen.clear();
    start();
    front().events = {host::DataPoint{{}, 0}, host::CursorMove{{}, 0}, host::KeyIn{"select all", false, ""}};
    host::serveCommands();
    EXPECT_THAT(front().seen, ElementsAre("view 0", "view 0"));
}

}  // namespace
