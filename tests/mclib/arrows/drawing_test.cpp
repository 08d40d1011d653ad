// Arrows that a program draws at once.
#include <algorithm>
#include <numbers>

#include "mchost/mdl/model.h"
#include "mchost/mdl/view.h"
#include "tests/mclib/arrows/fixture.h"

using namespace arrowtest;

namespace {

struct Asked {
    std::vector<Point3d> vertices;
    const char* text = "abc";
    int frameKind = ARROW_FRAME_NONE;
    int headType = 12;  // a slash
    double scale = 1, angle = 0;
    int view = 0, headSize = 2;
    int textAttribute = textAttr;
};

int draw(const Asked& asked) {
    return mclibArrow_drawTextArrow(asked.vertices.data(), static_cast<int>(asked.vertices.size()), asked.textAttribute,
                                    lineAttr, headAttr, asked.scale, asked.angle, asked.text, "ARROW", asked.headType,
                                    asked.headSize, asked.frameKind, asked.view);
}

class Drawing : public ArrowTest {
  protected:
    // Texts of one line are 2 high, the gap is 1.
    const double w = widthOf("abc");
    std::string n(double value) const { return number(value); }
};

TEST_F(Drawing, AnArrowIsACellOfFrameTextLeaderAndHead) {
    EXPECT_EQ(draw({.vertices = {at(0, 0), at(20, 10)}, .frameKind = ARROW_FRAME_BOX_SIDE, .headType = 3}), 0);
    const std::string l = n(20 - w / 2 - 1), r = n(20 + w / 2 + 1);
    const double a = std::atan2(10, 20 - w / 2 - 1), c = 2 * std::cos(a), s = 2 * std::sin(a);
    EXPECT_EQ(latest(), (Words{"cell", "shape " + l + ",8 " + r + ",8 " + r + ",12 " + l + ",12 " + l + ",8",
                               "text 'abc' " + n(20 - w / 2) + ",10 j1", "leader 0,0 " + l + ",10",
                               "shape 0,0 " + n(c + s / 2) + "," + n(s - c / 2) + " " + n(c - s / 2) + "," +
                                   n(s + c / 2) + " 0,0 filled"}));
    const mdl::DescrPtr arrow = arrowAt(mclibArrow_getLatestFilePos());
    wchar_t name[32];
    mdlCell_extractName(name, 32, arrow->element);
    EXPECT_STREQ(name, L"ARROW");
    const int colors[] = {lineAttr, textAttr, lineAttr, headAttr};
    const ElementDescr* part = arrow->firstChild;
    for (const int color : colors) {
        EXPECT_EQ(part->element->head.color, color);
        part = part->next;
    }
}

TEST_F(Drawing, EachFrameHasItsTextAndLeader) {
    const std::string half = n(w / 2), gap = n(w / 2 + 1);
    const double r = std::hypot(w, 2) / 2 + 1, d = r * std::numbers::sqrt2, h = w / 2 + 1 + 2 / std::sqrt(3);
    const std::string box = "shape -" + gap + ",-2 " + gap + ",-2 " + gap + ",2 -" + gap + ",2 -" + gap + ",-2";
    struct Case {
        int kind;
        Words parts;
    };
    const std::string text = "text 'abc' ";
    const Case cases[] = {
        {0, {text + "1.5,-1 j2", "leader -30,-30 0,0"}},
        {1, {"line 0,0 " + n(w + 2) + ",0", text + "1,1 j2", "leader -30,-30 0,0"}},
        {2, {box, text + "-" + half + ",0 j1", "leader -30,-30 -" + gap + ",0"}},
        {3, {box, text + "-" + half + ",0 j1", "leader -30,-30 -" + gap + ",-2"}},
        {4,
         {"circle 0,0 r" + n(r), text + "0,0 j7",
          "leader -30,-30 -" + n(r / std::sqrt(2)) + ",-" + n(r / std::sqrt(2))}},
        {5, {"line 0,0 " + n(w + 2) + ",0", text + "1,1 j2", "leader -30,-30 0,0"}},
        {6,
         {"shape -" + n(d) + ",0 0,-" + n(d) + " " + n(d) + ",0 0," + n(d) + " -" + n(d) + ",0", text + "0,0 j7",
          "leader -30,-30 -" + n(d) + ",0"}},
        {7,
         {"shape -" + n(h) + ",0 -" + gap + ",-2 " + gap + ",-2 " + n(h) + ",0 " + gap + ",2 -" + gap + ",2 -" + n(h) +
              ",0",
          text + "-" + half + ",0 j1", "leader -30,-30 -" + n(h) + ",0"}},
        {8, {"leader -30,-30 0,0"}},
        {-1, {"leader -30,-30 0,0"}},
    };
    for (const Case& c : cases) {
        Words expected = c.parts;
        expected.insert(expected.begin(), "cell");
        EXPECT_EQ(draw({.vertices = {at(-30, -30), at(0, 0)}, .frameKind = c.kind, .headType = 0}), 0) << c.kind;
        EXPECT_EQ(latest(), expected) << c.kind;
    }
}

// Lines are 4 apart: their height and two gaps.
TEST_F(Drawing, LinesOfTextStandRoundTheirFrame) {
    struct Case {
        int kind;
        double first;  // y of the first line
    };
    for (const Case& c : {Case{0, 3}, {1, 1}, {2, 4}, {4, 4}, {5, 9}, {7, 4}}) {
        draw({.vertices = {at(-30, -30), at(0, 0)}, .text = "a\\nb\nc", .frameKind = c.kind, .headType = 0});
        std::vector<double> heights;
        const mdl::DescrPtr arrow = arrowAt(mclibArrow_getLatestFilePos());
        for (const ElementDescr* part = arrow->firstChild; part; part = part->next) {
            Point3d origin;
            if (mdlText_extract(nullptr, &origin, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                nullptr, part->element) == MDL_SUCCESS)
                heights.push_back(std::round(origin.y) / uor);
        }
        EXPECT_EQ(heights, (std::vector<double>{c.first, c.first - 4, c.first - 8})) << c.kind;
    }
}

TEST_F(Drawing, ScaleDividesTextGapAndHeadButNotAFixedCircle) {
    draw({.vertices = {at(-30, 0), at(0, 0)}, .frameKind = 2, .scale = 2});
    const std::string x = n(w / 4 + 0.5);
    EXPECT_EQ(latest()[1], "shape -" + x + ",-1 " + x + ",-1 " + x + ",1 -" + x + ",1 -" + x + ",-1");
    EXPECT_EQ(latest()[4], "line -30.5,-0.5 -29.5,0.5");
    mclibArrow_setCircleSize(7, 1);
    draw({.vertices = {at(-30, 0), at(0, 0)}, .frameKind = 4, .scale = 2});
    EXPECT_EQ(latest()[1], "circle 0,0 r7");
    mclibArrow_setCircleSize(7, 0);
    draw({.vertices = {at(-30, 0), at(0, 0)}, .frameKind = 4, .scale = 2});
    EXPECT_EQ(latest()[1], "circle 0,0 r" + n(std::hypot(w, 2) / 4 + 0.5));
}

TEST_F(Drawing, TheGapComesFromTheTextsOwnOrTheActiveHeight) {
    // Half of the active text height, whatever the scale.
    const double height = 3 * uor;
    mdlParams_setActive(&height, MDL_PARAM_TEXT_HEIGHT);
    draw({.vertices = {at(-30, 0), at(0, 0)}, .text = "", .frameKind = 2, .scale = 2, .textAttribute = plainTextAttr});
    EXPECT_EQ(latest(), (Words{"cell", "leader -30,0 0,0", "line -30.5,-0.5 -29.5,0.5"})) << "an empty text";
    draw({.vertices = {at(-30, 0), at(0, 0)}, .text = " ", .frameKind = 3, .scale = 2, .textAttribute = plainTextAttr});
    EXPECT_EQ(latest()[1].find(",-3 "), latest()[1].find(',')) << latest()[1];
    // Without line spacing, or without the attribute, it is 1 at scale 1.
    EXPECT_EQ(draw({.vertices = {at(-30, 0), at(0, 0)}, .frameKind = 2, .scale = 2, .textAttribute = unknownAttr}), 0);
    EXPECT_EQ(latest(), (Words{"cell", "shape -0.5,-0.5 0.5,-0.5 0.5,0.5 -0.5,0.5 -0.5,-0.5", "leader -30,0 -0.5,0",
                               "line -30.5,-0.5 -29.5,0.5"}));
    EXPECT_EQ(messageBoxes(), 1) << "the text that is lacking is told";
}

TEST_F(Drawing, AnAngleTurnsTextAndFrameAndTheHeadStaysAlongItsLeader) {
    draw({.vertices = {at(0, -30), at(0, 0)}, .frameKind = 2, .headType = 1, .angle = M_PI / 2});
    const std::string y = n(w / 2 + 1);
    EXPECT_EQ(latest()[1], "shape 2,-" + y + " 2," + y + " -2," + y + " -2,-" + y + " 2,-" + y);
    EXPECT_EQ(latest()[3], "leader 0,-30 0,-" + y);
    EXPECT_EQ(latest()[4], "line 0,-30 -1,-28");
    EXPECT_EQ(latest()[5], "line 0,-30 1,-28");
}

TEST_F(Drawing, AnArrowLiesSquareToItsView) {
    RotMatrix turned;
    mdlRMatrix_fromAngle(&turned, M_PI / 2);  // x of the view is -y of the file
    mdlView_setRotation(3, &turned);
    draw({.vertices = {at(0, 30), at(0, 0)}, .frameKind = 0, .view = 3});
    EXPECT_EQ(latest(), (Words{"cell", "text 'abc' -1,-1.5 j2", "leader 0,30 0,0", "line -1,31 1,29"}));
}

TEST_F(Drawing, BadCallsAreToldAndWriteNothing) {
    const std::vector<Point3d> three = {at(0, 0), at(1, 0), at(2, 0)};
    std::vector<Point3d> tooMany(ARROW_MOST_VERTICES + 1);
    for (size_t i = 0; i < tooMany.size(); ++i) tooMany[i] = at(static_cast<double>(i), 0);
    mclibArrow_initFilePos();
    const Asked cases[] = {{.vertices = {}},
                           {.vertices = {at(0, 0)}},
                           {.vertices = tooMany},
                           {.vertices = three, .scale = 0},
                           {.vertices = three, .scale = -1},
                           {.vertices = three, .scale = std::nan("")},
                           {.vertices = three, .view = 8},
                           {.vertices = three, .view = -1}};
    int told = 0;
    for (const Asked& asked : cases) {
        EXPECT_EQ(draw(asked), MCLIB_ERROR) << told;
        EXPECT_EQ(messageBoxes(), ++told);
        EXPECT_EQ(mclibArrow_getLatestFilePos(), 0u);
        EXPECT_EQ(mdlCurrTrans_end(), MDL_ERROR) << "a transform stays open";
    }
    tooMany.pop_back();
    EXPECT_EQ(draw({.vertices = tooMany}), 0);
    EXPECT_NE(mclibArrow_getLatestFilePos(), 0u);
    EXPECT_EQ(messageBoxes(), told);
}

TEST_F(Drawing, ALongTextIsCutAtTheConsoleAndALongLineIsTold) {
    std::string lines;
    for (int i = 0; i < 60; ++i) lines += "123456789\n";
    draw({.vertices = {at(0, 0), at(10, 0)}, .text = lines.c_str()});
    EXPECT_EQ(front().consoleText, "Error: Max length (512) of ArrowText exceeded\n");
    EXPECT_EQ(latest()[1 + 51].substr(0, 9), "text '12'");  // 51 lines of ten and two letters
    EXPECT_EQ(messageBoxes(), 0);
    const std::string line(300, 'x');
    EXPECT_EQ(draw({.vertices = {at(0, 0), at(10, 0)}, .text = line.c_str()}), 0);
    EXPECT_EQ(latest().size(), 3u);  // cell, leader, head
    EXPECT_EQ(messageBoxes(), 1);
}

TEST_F(Drawing, AnArrowGetsTheActiveGraphicGroupAndIsUndone) {
    const int32_t group = 77;
    mdlParams_setActive(&group, MDL_PARAM_GRAPHIC_GROUP);
    draw({.vertices = {at(0, 0), at(10, 0)}, .frameKind = 4, .headType = 1});
    const mdl::DescrPtr arrow = arrowAt(mclibArrow_getLatestFilePos());
    EXPECT_EQ(arrow->element->head.graphicGroup, 77u);
    for (const ElementDescr* part = arrow->firstChild; part; part = part->next)
        EXPECT_EQ(part->element->head.graphicGroup, 77u);
}

}  // namespace
