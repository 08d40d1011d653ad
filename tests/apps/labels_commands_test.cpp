// The commands of labels, given as lines of the terminal: what they make of a drawing, and that undo brings it back.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "mchost/mdl/element.h"
#include "mclib/geometry/userdata.h"
#include "tests/apps/label_drawing.h"
#include "tests/support/application_test.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

// Sizes are millimetres on paper, and a millimetre is a master unit.
constexpr const char* usual =
    "SCALE 1000\nHEAD closed 4\nFRAME box-side\nRADIUS 4\n"
    "LABEL \"Pipe\" 0 0 40 0\nLEADER 20 -20\n"
    "LABEL \"Wall\" 0 30 20 40 50 30\n"
    "FRAME underline-first\nLABEL \"Under\" 0 60 40 60\n"
    "FRAME circle\nLABEL \"5\" 0 90 45 90\n"
    "LABEL \"6\" 0 90 40 120\n";
enum Cell { pipe, wall, under, five, six };

class LabelCommands : public ApplicationTest {
  protected:
    LabelCommands() : ApplicationTest("labels") {
        write("usual.txt", usual);
        EXPECT_EQ(run("usual.txt --out before").status, 0);
        addPipe();
    }
    // A line with data, from (100, 50) to (200, 50), and a text above it.
    void addPipe() const {
        const host::Session session;
        const Point3d ends[] = {{1e6, 5e5, 0}, {2e6, 5e5, 0}};
        ASSERT_EQ(mdlSystem_newDesignFile((folder_ / "before.mcd").c_str(), 0), MDL_SUCCESS);
        ASSERT_EQ(mdlLine_create(dgnBufP, nullptr, ends), MDL_SUCCESS);
        ASSERT_EQ(mclibAttrib_appendElementUserData(7, 0, dgnBufP, "PE 250", 7), MDL_SUCCESS);
        ASSERT_NE(mdlElement_add(dgnBufP), 0u);
        const Point3d note = {1.4e6, 6.8e5, 0};
        ASSERT_EQ(mdlText_create(dgnBufP, nullptr, "note", &note, nullptr, nullptr, nullptr, 0), MDL_SUCCESS);
        ASSERT_NE(mdlElement_add(dgnBufP), 0u);
        ASSERT_EQ(mdlSystem_closeDesignFile(), MDL_SUCCESS);
    }
    // Carries the lines out in a copy of the drawing, which is NAME.mcd then; all of them must be taken.
    std::string carryOut(const std::string& name, const std::string& lines, int status = 0) const {
        fs::copy_file(folder_ / "before.mcd", folder_ / (name + ".mcd"), fs::copy_options::overwrite_existing);
        write("lines.txt", lines + "close\n");
        const Outcome outcome = run("usual2.txt --commands", "--open " + name + ".mcd --answers lines.txt");
        EXPECT_EQ(outcome.status, status) << lines << outcome.output;
        return outcome.output;
    }
    std::string shown(const std::string& name) const {
        return shell("'" BUILD_DIR "/bin/mchost' show --full " + name + ".mcd | sed 1d").output;
    }
    // The same with what undo leaves of it: nothing, in one step of that name.
    Drawing after(const std::string& command, const std::string& lines) const {
        const std::string output = carryOut("undone", lines + "end\nundo\n");
        EXPECT_THAT(output, HasSubstr("Taken back: " + command));
        EXPECT_EQ(shown("undone"), shown("before")) << command;
        carryOut("after", lines + "end\n");
        EXPECT_NE(shown("after"), shown("before")) << command;
        return Drawing(folder_ / "after.mcd");
    }
    void SetUp() override { write("usual2.txt", "SCALE 1000\nHEAD closed 4\nRADIUS 4\n"); }
};

TEST_F(LabelCommands, ALabelIsPlacedAsTheDialogTells) {
    const Drawing drawing =
        after("Place label", "text=New\\nline\nframe=Hexagon\nhead=Circle\nplace\n100,0\n120,10\n140,10\nreset\n");
    ASSERT_EQ(drawing.count(), 6u);
    EXPECT_EQ(drawing.types(5), "6 17 17 4 15");
    EXPECT_EQ(drawing.text(5, 2), "line");
    EXPECT_EQ(drawing.points(5, 3).size(), 3u);
}

TEST_F(LabelCommands, APlacedLabelWithAFixedLegEndsWithItsSecondPoint) {
    const Drawing drawing = after("Place label", "text=Leg\nleader=First leg horizontal\nplace\n100,0\n140,10\n");
    ASSERT_EQ(drawing.count(), 6u);
    EXPECT_NEAR(drawing.points(5, 2).back().y, 0, 1e-4);
}

TEST_F(LabelCommands, TheTipLiesOnTheNearestElementAndTheTextTellsOfIt) {
    const Drawing drawing = after("Place label",
                                  "text=DATA+\", L = \"+LENGTH+\" m, \"+TYPE\ntext is=1\ntip on=1\nframe=None\n"
                                  "place\n140,70\nreset\n");
    ASSERT_EQ(drawing.count(), 6u);
    EXPECT_EQ(drawing.text(5, 0), "PE 250, L = 100.00 m, line");
    const Point3d tip = drawing.points(5, 1).front();
    EXPECT_NEAR(tip.y, 50, 1e-4);
    EXPECT_GE(tip.x, 140 - 1e-4);
}

TEST_F(LabelCommands, NumbersGoOnByThemselves) {
    const Drawing drawing = after("Place label", "next=41\nposition=1\nplace\n100,0\n140,0\nreset\n");
    ASSERT_EQ(drawing.count(), 6u);
    EXPECT_EQ(drawing.types(5), "15 17 4 6");
    EXPECT_EQ(drawing.text(5, 1), "41");
    EXPECT_NEAR(drawing.extent(5, 0).low.x, 140, 1e-3);
    EXPECT_THAT(carryOut("twice", "next=41\nposition=1\nplace\n100,0\n140,0\nreset\n100,50\n140,50\nreset\nend\n"),
                HasSubstr("Next number: 43"));
}

TEST_F(LabelCommands, LeadersAreChanged) {
    {
        const Drawing drawing = after("Insert vertex", "insert\n20,0\n20,10\n");
        EXPECT_EQ(drawing.types(pipe), "6 17 4 6 4 6");
        EXPECT_NEAR(drawing.points(pipe, 4).at(1).y, 10, 1e-4);  // what was changed stands last
    }
    {
        const Drawing drawing = after("Delete vertex", "delete\n20,40\n20,40\n");
        EXPECT_EQ(drawing.points(wall, 2).size(), 2u);
    }
    {
        const Drawing drawing = after("Move tip", "move tip\n10,0\n-10,5\n");
        EXPECT_NEAR(drawing.points(pipe, 4).front().x, -10, 1e-4);
        EXPECT_NEAR(drawing.points(pipe, 5).front().y, 5, 1e-4);
    }
    {
        const Drawing drawing = after("Add leader", "add\n20,0\n60,20\nreset\n");
        EXPECT_EQ(drawing.types(pipe), "6 17 4 6 4 6 4 6");
        EXPECT_NEAR(drawing.points(pipe, 6).front().x, 60, 1e-4);
    }
    {
        const Drawing drawing = after("Erase leader", "erase\n10,0\n10,0\n");
        EXPECT_EQ(drawing.types(pipe), "6 17 4 6");
        EXPECT_NEAR(drawing.points(pipe, 2).front().y, -20, 1e-4);
    }
    const Drawing drawing = after("Replace head", "head=Cross\nreplace\n10,0\n10,0\n");
    EXPECT_EQ(drawing.types(pipe), "6 17 4 6 4 3 3");
}

TEST_F(LabelCommands, TextsAreMovedWithTheirFrames) {
    const Drawing drawing = after("Move text and symbol", "move text and\n45,90\n60,110\n");
    const auto circle = drawing.extent(five, 0);
    EXPECT_NEAR(circle.high.x - circle.low.x, 8, 1e-3);
    EXPECT_GT(circle.low.y, 95);
    EXPECT_NEAR(drawing.points(five, 2).front().x, 0, 1e-4);
}

TEST_F(LabelCommands, ATextIsChangedAtItsPlace) {
    struct Case {
        Cell cell;
        const char* point;
        const char* types;
        size_t leader;  // the first one, before
    };
    for (const Case& c : {Case{pipe, "40,1.87", "6 17 17 4 6 4 6", 2}, Case{wall, "50,31.87", "6 17 17 4 6", 2},
                          Case{under, "42,60", "3 17 17 4 6", 2}, Case{five, "45,90", "15 17 17 4 6", 2}}) {
        const Point3d end = Drawing(folder_ / "before.mcd").points(c.cell, c.leader).back();
        const std::string point = c.point;
        const Drawing drawing = after("Change text", "text=Water\\nmain\nchange\n" + point + "\n" + point + "\n");
        EXPECT_EQ(drawing.types(c.cell), c.types);
        EXPECT_EQ(drawing.text(c.cell, 1), "Water");
        EXPECT_NEAR(drawing.points(c.cell, 3).back().x, end.x, 1e-4) << point;
        EXPECT_NEAR(drawing.points(c.cell, 3).back().y, end.y, 1e-4) << point;
        // The leader still ends on the frame, beside the text.
        const auto frame = drawing.extent(c.cell, 0);
        EXPECT_GE(end.x, frame.low.x - 1e-3) << point;
        EXPECT_LE(end.x, frame.high.x + 1e-3) << point;
        EXPECT_LT(end.x, drawing.extent(c.cell, 1).low.x) << point;
    }
}

TEST_F(LabelCommands, AChangedTextTellsOfTheElementUnderItsTip) {
    const std::string place = "text=A\nplace\n120,50\n140,70\nreset\nend\n";
    carryOut("after", place + "text=TYPE+\" \"+DATA\ntext is=1\nchange\n140,70\n140,70\nend\n");
    EXPECT_EQ(Drawing(folder_ / "after.mcd").text(5, 1), "line PE 250");
}

// ---- several labels ----

TEST_F(LabelCommands, LabelsAreAligned) {
    {
        const Drawing drawing = after("Align left edges", "align left\n45,90\n40,120\nreset\n");
        EXPECT_NEAR(drawing.extent(six, 0).low.x, drawing.extent(five, 0).low.x, 1e-3);
        EXPECT_NEAR(drawing.points(six, 2).back().x, drawing.extent(six, 0).low.x, 5);
        EXPECT_NEAR(drawing.points(six, 2).front().x, 0, 1e-4);
        EXPECT_NEAR(drawing.points(six, 3).front().x, 0, 1e-4);
    }
    const Drawing drawing = after("Align in a row", "align in\n50,30\n40,0\nreset\n");
    EXPECT_NEAR(drawing.extent(pipe, 0).low.y, drawing.extent(wall, 0).low.y, 1e-3);
    // The head has turned with its leader: its base lies square to it.
    const std::vector<Point3d> leader = drawing.points(pipe, 2), head = drawing.points(pipe, 3);
    const double x = leader[1].x - leader[0].x, y = leader[1].y - leader[0].y;
    EXPECT_NEAR((head[2].x - head[1].x) * x + (head[2].y - head[1].y) * y, 0, 0.01);
}

TEST_F(LabelCommands, LeadersWithOneTipBecomeOne) {
    const Drawing drawing = after("Collect leaders", "collect\n45,90\n40,120\n40,0\nreset\n");
    ASSERT_EQ(drawing.count(), 3u);
    const size_t whole = 2;
    EXPECT_EQ(drawing.types(whole), "15 17 15 17 6 17 4 6 4 6 4 6");
    EXPECT_LT(drawing.extent(whole, 2).high.y, drawing.extent(whole, 0).low.y);
    EXPECT_LT(drawing.extent(whole, 4).high.y, drawing.extent(whole, 2).low.y);
    for (const size_t leader : {8, 10}) {
        EXPECT_NEAR(drawing.points(whole, leader).back().x, drawing.points(whole, 6).back().x, 1e-3);
        EXPECT_NEAR(drawing.points(whole, leader).back().y, drawing.points(whole, 6).back().y, 1e-3);
    }
}

TEST_F(LabelCommands, OfACollectedLabelTheFirstTextIsChanged) {
    carryOut("after", "collect\n45,90\n40,120\nreset\nend\ntext=55\nchange\n45,90\n45,90\nend\n");
    const Drawing drawing(folder_ / "after.mcd");
    const size_t whole = 3;
    ASSERT_EQ(drawing.types(whole), "15 17 15 17 4 6");
    EXPECT_EQ(drawing.text(whole, 1), "55");
    EXPECT_EQ(drawing.text(whole, 3), "6");
    EXPECT_NEAR(drawing.extent(whole, 0).low.x, drawing.points(whole, 4).back().x, 1e-3);
}

TEST_F(LabelCommands, NumbersAreGivenAnew) {
    const Drawing drawing = after("Renumber", "next=11\nrenumber\n40,120\n45,90\nreset\n");
    EXPECT_EQ(drawing.text(six, 1), "11");
    EXPECT_EQ(drawing.text(five, 1), "12");
}

// ---- what can't be done ----

TEST_F(LabelCommands, WhatCantBeDoneIsToldAndLeavesTheDrawing) {
    struct Case {
        const char *lines, *told;
    };
    for (const Case& c :
         {Case{"place\n", "Write the text of the label first."},
          Case{"text=  \nplace\n", "Write the text of the label first."},
          Case{"text=\nchange\n40,1.87\n40,1.87\nend\n", "Write the text of the label first."},
          Case{"text=DEPTH+\ntext is=1\nplace\n", "The text is no tag string: there is no text \"DEPTH\""},
          Case{"renumber\n300,300\nend\n", "There is no label at this point."},
          Case{"renumber\n150,50\nend\n", "There is no label at this point."},
          Case{"renumber\n45,90\n45,91\n", "This label has been pointed at already."},
          Case{"renumber\n40,0\nreset\nend\n", "This label has no number."},
          Case{"scale=0\ntext=A\nplace\n", "The scale must be a number above 0."}}) {
        const std::string output = carryOut("same", c.lines, 1);
        EXPECT_THAT(output, HasSubstr(c.told)) << c.lines;
        EXPECT_EQ(shown("same"), shown("before")) << c.lines;
    }
}

TEST_F(LabelCommands, TheScaleIsThePlotScale) {
    const std::string output = carryOut("same", "plot scale=1:500\nscale=2000\nscale=333\n");
    EXPECT_THAT(output, HasSubstr("Scale, 1 to: 500\n"));
    EXPECT_THAT(output, HasSubstr("Plot scale: 1:2000 ("));
    EXPECT_THAT(output, HasSubstr("Scale, 1 to: 333\n"));
    EXPECT_EQ(shown("same"), shown("before"));
}

TEST_F(LabelCommands, ALockedLabelIsRefused) {
    {
        const host::Session session;
        ASSERT_EQ(mdlSystem_newDesignFile((folder_ / "before.mcd").c_str(), 0), MDL_SUCCESS);
        const mdl::Scan cells(mdlModelRef_getActive());
        mdlScanCriteria_addSingleElementTypeTest(cells.criteria(), MDL_CELL_HEADER);
        const int32_t locked = 1;
        for (const FilePos position : cells) {
            ASSERT_NE(mdlElement_read(dgnBufP, nullptr, position), 0u);
            mdlElement_setProperties(dgnBufP, nullptr, nullptr, nullptr, &locked, nullptr, nullptr, nullptr, nullptr);
            ASSERT_NE(mdlElement_rewrite(dgnBufP, position), 0u);
        }
        ASSERT_EQ(mdlSystem_closeDesignFile(), MDL_SUCCESS);
    }
    for (const char* lines : {"renumber\n45,90\nreset\n", "insert\n20,0\n"}) {
        EXPECT_THAT(carryOut("locked", lines, 1), HasSubstr("locked")) << lines;
        EXPECT_EQ(shown("locked"), shown("before")) << lines;
    }
}

TEST_F(LabelCommands, ADialogMayEndWhileItsCommandRuns) {
    for (const char* lines : {"text=A\nplace\n0,0\n", "insert\n20,0\n", "align left\n45,90\n", "collect\n"}) {
        carryOut("left", lines);
        EXPECT_EQ(shown("left"), shown("before")) << lines;
    }
    // And the lines may end before it.
    write("lines.txt", "text=A\nplace\n0,0\n");
    EXPECT_EQ(run("--commands --scale 1000", "--open left.mcd --answers lines.txt").status, 1);
    EXPECT_EQ(shown("left"), shown("before"));
}

TEST_F(LabelCommands, CallsForTheDialogAreChecked) {
    const Outcome outcome = run("--commands");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output, HasSubstr("there is no drawing to place labels in"));
    EXPECT_EQ(run("--start fly", "--open before.mcd").status, 2);
    write("lines.txt", "45,90\n40,120\nreset\nclose\n");
    write("usual2.txt", "SCALE 1000\nFRAME circle\n");
    EXPECT_EQ(run("usual2.txt --start collect", "--open before.mcd --answers lines.txt").status, 0);
}

}  // namespace
