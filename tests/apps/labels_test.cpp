// The application labels, run by mchost as a user would: labels from a text file in drawings, and input that is wrong.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <string>
#include <vector>

#include "tests/apps/label_drawing.h"
#include "tests/support/application_test.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

const std::string examples = PROJECT_SOURCE_DIR "/apps/labels/examples/";

class Labels : public ApplicationTest {
  protected:
    Labels() : ApplicationTest("labels") {}
    // Makes labels.mcd of the lines.
    void make(const std::string& lines, const std::string& arguments = "") const {
        write("labels.txt", lines);
        const Outcome outcome = run("labels.txt --overwrite " + arguments);
        ASSERT_EQ(outcome.status, 0) << outcome.output;
    }
};

// ---- what is drawn ----

TEST_F(Labels, EachFrameAndEachHeadIsDrawnInTheOrderOfAnArrow) {
    const char* const frames[] = {"17 4",    "3 17 17 4", "6 17 17 4", "6 17 17 4",
                                  "15 17 4", "3 17 17 4", "6 17 4",    "6 17 4"};
    const char* const heads[] = {"",    " 3 3", " 6", " 6", " 3 3", " 6",  " 6",     " 3 3", " 6", " 6",
                                 " 15", " 3 3", " 3", " 6", " 6",   " 15", " 16 16", " 3 3", " 6", " 6"};
    std::string lines = "HEAD none\n";
    for (size_t frame = 0; frame < std::size(frames); ++frame) {
        const bool two = std::string(frames[frame]).find("17 17") != std::string::npos;
        lines += "FRAME " + std::to_string(frame) + "\nLABEL \"DN 250\"" + (two ? " \"PE\" " : " ") + "0 " +
                 std::to_string(frame) + "0 30 " + std::to_string(frame) + "5\n";
    }
    lines += "FRAME none\n";
    for (size_t head = 0; head < std::size(heads); ++head)
        lines += "HEAD " + std::to_string(head) + "\nLABEL \"1\" 100 " + std::to_string(head) + "0 130 " +
                 std::to_string(head) + "5\n";
    make(lines);
    const Drawing drawing(folder_ / "labels.mcd");
    ASSERT_EQ(drawing.count(), std::size(frames) + std::size(heads));
    for (size_t frame = 0; frame < std::size(frames); ++frame) EXPECT_EQ(drawing.types(frame), frames[frame]) << frame;
    for (size_t head = 0; head < std::size(heads); ++head)
        EXPECT_EQ(drawing.types(std::size(frames) + head), std::string("17 4") + heads[head]) << head;
}

TEST_F(Labels, NamesStandForTheNumbersOfFramesAndHeads) {
    ASSERT_EQ(run(examples + "heads.txt --out named").status, 0);
    shell("awk -v n=0 '$1 == \"HEAD\" { $2 = n++ } { print }' " + examples + "heads.txt > heads.txt");
    ASSERT_EQ(run("heads.txt --out numbered").status, 0);
    EXPECT_EQ(read("named.png"), read("numbered.png"));
    const std::string line = "\nLABEL \"A\" 0 0 40 9\n";
    const char* const frames[] = {"none",   "underline-first", "box-side", "box-corner",
                                  "circle", "underline-last",  "diamond",  "Hexagon"};
    for (size_t frame = 0; frame < std::size(frames); ++frame) {
        make("FRAME " + std::to_string(frame) + line);
        const std::string numbered = read("labels.png");
        make(std::string("FRAME ") + frames[frame] + line);
        EXPECT_EQ(read("labels.png"), numbered) << frame;
    }
}

TEST_F(Labels, SizesAreMillimetresOnPaper) {
    make(
        "SCALE 5000\nATTRIBUTE 7 \"T\" 0 0 0 \"L\" 3 3\nUSE TEXT 7\nHEAD closed 4\n"
        "FRAME none\nLABEL \"H\" 0 0 0 100\nFRAME circle\nRADIUS 6\nLABEL \"1\" 500 0 500 100\n");
    {
        const Drawing drawing(folder_ / "labels.mcd");
        const auto [low, high] = drawing.extent(0, 0);
        EXPECT_NEAR(high.y - low.y, 15, 0.01);
        EXPECT_NEAR(drawing.points(0, 2)[1].y, 20, 1e-4);  // the base of the head
        const auto circle = drawing.extent(1, 0);
        EXPECT_NEAR(circle.high.x - circle.low.x, 60, 1e-3);
    }
    // --scale stands for SCALE, and a drawing in millimetres has them as they are told.
    make("UNIT mm\nHEAD closed 4\nFRAME none\nLABEL \"H\" 0 0 0 100\n", "--scale 1");
    EXPECT_NEAR(Drawing(folder_ / "labels.mcd").points(0, 2)[1].y, 4, 1e-4);
}

TEST_F(Labels, ATextGoesOnTheWayThatItsLeaderComes) {
    make(
        "SCALE 100\nFRAME none\nHEAD none\nLABEL \"right\" 0 0 10 0\nLABEL \"left\" 0 0 -10 0\nANGLE 180\n"
        "LABEL \"turned\" 0 5 10 5\n");
    const Drawing drawing(folder_ / "labels.mcd");
    EXPECT_GT(drawing.extent(0, 0).low.x, 10);
    EXPECT_LT(drawing.extent(1, 0).high.x, -10);
    EXPECT_GT(drawing.extent(2, 0).low.x, 10);
}

TEST_F(Labels, AllLeadersEndWhereTheFirstOneEnds) {
    make("SCALE 100\nFRAME box-side\nHEAD filled 3\nLABEL \"A\" 0 0 10 10\nLEADER 20 0\nLEADER 0 20 5 15\n");
    const Drawing drawing(folder_ / "labels.mcd");
    ASSERT_EQ(drawing.types(0), "6 17 4 6 4 6 4 6");
    const Point3d end = drawing.points(0, 2).back();
    EXPECT_NEAR(drawing.points(0, 2)[0].x, 0, 1e-9);
    for (const size_t leader : {4, 6}) {
        EXPECT_NEAR(drawing.points(0, leader).back().x, end.x, 1e-4) << leader;
        EXPECT_NEAR(drawing.points(0, leader).back().y, end.y, 1e-4) << leader;
        // The head's tip lies on that of the leader, and its middle on the leader's line.
        const std::vector<Point3d> line = drawing.points(0, leader), head = drawing.points(0, leader + 1);
        EXPECT_NEAR(head[0].x, line[0].x, 1e-4);
        const double x = (head[1].x + head[2].x) / 2 - line[0].x, y = (head[1].y + head[2].y) / 2 - line[0].y;
        EXPECT_NEAR(x * (line[1].y - line[0].y), y * (line[1].x - line[0].x), 0.01) << leader;
        EXPECT_GT(x * (line[1].x - line[0].x) + y * (line[1].y - line[0].y), 0) << leader;
    }
}

// ---- drawings that are there ----

TEST_F(Labels, GoIntoTheOpenDrawing) {
    make("LABEL \"1\" 0 0 30 5\n");
    write("more.txt", "LABEL \"2\" 0 50 30 55\nLABEL \"3\" 0 90 30 95\n");
    const Outcome outcome = run("more.txt --out sheet --picture svg", "--open labels.mcd");
    EXPECT_EQ(outcome.status, 0) << outcome.output;
    EXPECT_THAT(outcome.output, HasSubstr("put 2 labels into"));
    EXPECT_EQ(files(), (std::vector<std::string>{"labels.mcd", "labels.png", "labels.txt", "more.txt", "sheet.svg"}));
    EXPECT_EQ(Drawing(folder_ / "labels.mcd").count(), 3u);
}

TEST_F(Labels, NothingIsDrawnWhenALineIsWrong) {
    make("LABEL \"1\" 0 0 30 5\n");
    const std::string before = read("labels.mcd");
    write("more.txt", "LABEL \"2\" 0 50 30 55\nLABEL \"3\" 0 90\n");
    EXPECT_EQ(run("more.txt", "--open labels.mcd").status, 1);
    EXPECT_EQ(Drawing(folder_ / "labels.mcd").count(), 1u);
    EXPECT_EQ(run("more.txt").status, 1);
    EXPECT_FALSE(fs::exists(folder_ / "more.mcd"));
}

// ---- input that is wrong ----

TEST_F(Labels, EachFaultIsToldWithItsPlace) {
    const std::string longest(255, 'x');
    const std::string good = "LABEL \"A\" 0 0 10 10\n";
    struct Fault {
        std::string lines, told;
    };
    const Fault faults[] = {
        {"FRAM box\n", "line 1, column 1: a line begins with a keyword, one of SCALE, UNIT"},
        {"FRAME cloud\n", "line 1, column 7: \"cloud\" isn't a frame; there are none, underline-first"},
        {"FRAME 8\n", "column 7: \"8\" isn't a frame"},
        {"HEAD 20\n", "column 6: \"20\" isn't a head; there are none, open"},
        {"HEAD -1\n", "column 6: \"-1\" isn't a head"},
        {"HEAD open 0\n", "column 11: the head's size must be above 0"},
        {"HEAD open 0.001\n", "column 11: the head's size must be at least 0.01 mm"},
        {"HEAD open 3 3\n", "column 13: nothing more is expected here"},
        {"RADIUS 2000\n", "column 8: the radius must be at most 1000 mm"},
        {"ANGLE left\n", "column 7: the angle must be a number"},
        {"SCALE 0\n", "column 7: the scale must be above 0"},
        {"SCALE 100\nSCALE 200\n", "line 2, column 1: SCALE comes once"},
        {good + "SCALE 200\n", "line 2, column 1: SCALE comes once, before the first LABEL"},
        {"UNIT km\n", "column 6: the drawing's unit is one of m, cm, mm, not km"},
        {"CELL \"\"\n", "column 6: the cell's name is empty"},
        {"USE ARROW 1\n", "column 5: USE what? One of LINE, TEXT, HEAD"},
        {"USE LINE 5\n", "column 10: there is no attribute 5"},
        {"ATTRIBUTE 5 \"A\" 0 0 0 \"L\"\nUSE TEXT 5\n", "line 2, column 10: attribute 5 has no text size"},
        {"ATTRIBUTE 5 \"A\" 0 0 0 \"L\"\nATTRIBUTE 5 \"B\" 0 0 0 \"L\"\n",
         "line 2, column 11: there is an attribute 5"},
        {"ATTRIBUTE 5 \"A\" 0 0 9 \"L\"\n", "column 21: the line style must be 0 to 7"},
        {"ATTRIBUTE 5 \"A\" 0 0 0 \"L\" 3 3 256\n", "column 31: the font must be 0 to 255"},
        {"LABEL 0 0 10 10\n", "column 7: the label's text is missing: a text in double quotes"},
        {"LABEL \"\" 0 0 10 10\n", "column 7: the text is empty"},
        {"LABEL \"  \" \" \" 0 0 10 10\n", "column 7: the text is empty"},
        {"LABEL \"A 0 0 10 10\n", "column 7: the text has no closing quote"},
        {"LABEL \"" + longest + "\" \"" + longest + "\" \"3\" 0 0 10 10\n",
         "column 7: the text has 513 characters; 512"},
        {"LABEL \"A\"\n", "column 10: x is missing"},
        {"LABEL \"A\" 0 0\n", "column 14: a label has two points at least"},
        {"LABEL \"A\" 0 0 10\n", "column 17: y is missing"},
        {"LABEL \"A\" 0 0 1,5 10\n", "column 15: x must be a number; a point divides its decimals"},
        {"LABEL \"A\" 0 0 1e300 10\n", "column 15: x lies too far away"},
        {"LABEL \"A\" 0 0 5 5 5 5\n", "column 19: this point lies where the one before it lies"},
        {good + "LABEL \"B\" 5 5 10 10\n", "line 2, column 7: the label of labels.txt, line 1 ends at the same point"},
        {"LEADER 0 0\n", "column 1: a LEADER comes behind the LABEL"},
        {good + "LEADER 0 5 10 10\n", "line 2, column 17: the leader ends where the label's first one ends"},
        {good + "LEADER\n", "line 2, column 7: x is missing"},
        {"LABEL \"\xE2\x88\x85 5\" 0 0 10 10\n", "the letter U+2205"},
        {"", "labels.txt: there is no LABEL in it"},
    };
    for (const Fault& fault : faults) {
        write("labels.txt", fault.lines);
        const Outcome outcome = run("labels.txt");
        EXPECT_EQ(outcome.status, 1) << fault.lines;
        EXPECT_THAT(outcome.output, HasSubstr(fault.told)) << fault.lines;
        EXPECT_EQ(files(), std::vector<std::string>{"labels.txt"}) << fault.lines;
    }
}

TEST_F(Labels, AllFaultsOfAFileAreToldAndALeaderOfABadLabelIsNoFault) {
    write("labels.txt", "LABEL \"A\" 0 0\nLEADER 5 5\nFRAME x\n");
    const std::string output = run("labels.txt").output;
    EXPECT_THAT(output, HasSubstr("line 1, column 14"));
    EXPECT_THAT(output, HasSubstr("line 3, column 7"));
    EXPECT_THAT(output, testing::Not(HasSubstr("line 2")));
}

TEST_F(Labels, WrongCallsAreRefused) {
    write("labels.txt", "LABEL \"A\" 0 0 10 10\n");
    const std::pair<const char*, const char*> calls[] = {
        {"", "the name of the labels' file is missing"},
        {"labels.txt --picture gif", "--picture takes png, svg or pdf"},
        {"labels.txt --scale 0", "--scale takes a number above 0"},
        {"labels.txt --out l.mcd", "--out takes a path without suffix"},
        {"labels.txt more.txt", "don't know what to do with \"more.txt\""},
    };
    for (const auto& [arguments, told] : calls) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.status, 2) << arguments;
        EXPECT_THAT(outcome.output, HasSubstr(told)) << arguments;
    }
    EXPECT_EQ(run("missing.txt").status, 1);
    write("labels.png", "mine");
    EXPECT_THAT(run("labels.txt").output, HasSubstr("labels.png: the file is there already"));
    EXPECT_EQ(read("labels.png"), "mine");
}

}  // namespace
