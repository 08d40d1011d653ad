// Arrows that are placed by points, and the hooks of the application.
#include <algorithm>
#include <cstring>

#include "mchost/mdl/level.h"
#include "mchost/mdl/model.h"
#include "tests/mclib/arrows/fixture.h"

using namespace arrowtest;

namespace {

struct Hooks {
    int headType = 0, leaderMode = 0, frameKind = 0;
    double headSize = 2, scale = 1, angle = 0, width = 0;
    std::vector<std::string> calls;
    MdlDesc* application = nullptr;
    ElementDescr* taken = nullptr;
} hooks;

void called(const char* name) {
    if (hooks.calls.empty() || hooks.calls.back() != name) hooks.calls.emplace_back(name);
    hooks.application = mdlSystem_getCurrMdlDesc();
}

void looks(int* headType, double* headSize, double* scale, int* leaderMode, int* frameKind, double* angle,
           double* width) {
    *headType = hooks.headType;
    *headSize = hooks.headSize;
    *scale = hooks.scale;
    *leaderMode = hooks.leaderMode;
    *frameKind = hooks.frameKind;
    *angle = hooks.angle;
    *width = hooks.width;
    called("looks");
}
void resetHook() {
    called("reset");
}
void snapToX5(Point3d* point) {
    point->x = 5 * uor;
    called("snap");
}
void snapToY0(Point3d* point) {
    point->y = 0;
}
void countText(char* text, const Point3d* vertices, int view) {
    std::snprintf(text, 100, "%g in %d", vertices[0].x / uor, view);
    called("text");
}
void symbol(ElementDescr** made, Point3d* end, double direction, double scale, int view, int drawMode) {
    const double radius = scale * (1 + view);
    if (drawMode == MDL_DRAW)
        hooks.calls.push_back(number(end->x) + "," + number(end->y) + (direction > 0 ? " right" : " left"));
    mdlEllipse_create(dgnBufP, nullptr, end, radius, radius, nullptr, 0);
    EXPECT_EQ(mdlElmdscr_new(made, nullptr, dgnBufP), MDL_SUCCESS);
}
void describe(MSElementBuffer* cell, const char* text) {
    wchar_t words[100];
    std::swprintf(words, 100, L"%s", text);
    mdlCell_setDescription(cell, words);
    called("cell");
}
void takeArrow(ElementDescr* arrow) {
    mdlElmdscr_freeAll(&hooks.taken);
    hooks.taken = arrow;
    called("finish");
}

// What the application starts placing with.
struct Given {
    int withText = 0, withArrow = 1, headAtStart = 1;
    const char *firstPrompt = nullptr, *nextPrompt = nullptr, *text = nullptr;
    const Point3d* startPoint = nullptr;
    McArrowSnapHook snap = nullptr;
    McArrowTextHook textHook = nullptr;
    McArrowSymbolHook symbolHook = nullptr;
    McArrowCellHook cell = nullptr;
    McArrowFinishHook finish = nullptr;
    McArrowAttributesHook attributes = looks;
    McArrowResetHook reset = resetHook;
} given;

class Placing : public ArrowTest {
  protected:
    Placing() { hooks = {}; }
    ~Placing() override { mdlElmdscr_freeAll(&hooks.taken); }

    // The command of the application.
    static void startCommand() {
        mdlState_startPrimitive(nullptr, startCommand, 0, 0);
        mclibArrow_drawTextAndArrow(given.withText, given.withArrow, textAttr, lineAttr, headAttr, given.headAtStart,
                                    given.firstPrompt, given.nextPrompt, given.text, nullptr, given.startPoint,
                                    given.snap, given.textHook, given.symbolHook, given.cell, given.finish,
                                    given.attributes, given.reset);
    }
    void start(const Given& asked) {
        given = asked;
        startCommand();
        mclibArrow_initFilePos();
        hooks.calls.clear();
    }

    bool written() const { return mclibArrow_getLatestFilePos() != 0; }
    std::string prompt() { return host::commandPrompt(); }
};

TEST_F(Placing, AFreeLeaderGrowsPointByPointAndEndsWithAReset) {
    start({});
    EXPECT_EQ(prompt(), "Give the point that the arrow points at");
    EXPECT_EQ(shown(5, 5), Words{});
    point(0, 0);
    EXPECT_EQ(prompt(), "Give the next point of the leader, or reset to end it");
    EXPECT_EQ(shown(5, 5), (Words{"cell", "leader 0,0 5,5"}));
    point(10, 0);
    EXPECT_EQ(shown(10, 7), (Words{"cell", "leader 0,0 10,0 10,7"}));
    point(10, 10);
    EXPECT_FALSE(written());
    EXPECT_EQ(shown(30, 30), (Words{"cell", "leader 0,0 10,0 10,10 30,30"}));
    host::giveReset();
    EXPECT_EQ(latest(), (Words{"cell", "leader 0,0 10,0 10,10"}));
    EXPECT_EQ(prompt(), "Give the point that the arrow points at") << "the command begins again";
    EXPECT_EQ(shown(5, 5), Words{});
}

TEST_F(Placing, VerticesStayWhereTheyWereGivenThoughEachLookedLikeTheLast) {
    hooks.frameKind = ARROW_FRAME_BOX_SIDE;
    start({.withText = 1, .text = "abc"});
    point(0, 0);
    point(20, 0);  // shown as the end at the frame
    point(20, 30);
    host::giveReset();
    EXPECT_EQ(latest()[3], "leader 0,0 20,0 20,28");
}

TEST_F(Placing, WhatWasPlacedStaysHighlightedAsItStands) {
    start({});
    point(0, 0);
    const auto modes = [&](double x, double y) {
        front().seen.clear();
        point(x, y);
        std::erase_if(front().seen, [](const std::string& told) { return told == "mode 4" || told[0] == 'v'; });
        return front().seen;
    };
    EXPECT_EQ(modes(10, 0), (Words{"mode 2"}));
    EXPECT_EQ(modes(10, 10), (Words{"mode 1", "mode 2"}));
}

TEST_F(Placing, AFixedFirstLegIsWrittenWithItsSecondPoint) {
    hooks.leaderMode = ARROW_LEG_HORIZONTAL;
    start({});
    point(0, 0);
    EXPECT_EQ(shown(10, 4), (Words{"cell", "leader 0,0 10,0"}));
    point(10, 4);
    EXPECT_EQ(latest(), (Words{"cell", "leader 0,0 10,0"}));
    hooks.leaderMode = ARROW_LEG_VERTICAL;
    point(0, 0);
    point(1, 8);
    EXPECT_EQ(latest(), (Words{"cell", "leader 0,0 0,8"}));
}

TEST_F(Placing, AHeadOnTheLastVertexLiesThereAsTheRuleMovedIt) {
    hooks.leaderMode = ARROW_LEG_HORIZONTAL;
    hooks.headType = 1;
    start({.headAtStart = 0});
    point(0, 0);
    point(10, 4);
    EXPECT_EQ(latest(), (Words{"cell", "leader 0,0 10,0", "line 10,0 8,-1", "line 10,0 8,1"}));
}

TEST_F(Placing, AResetWithNothingPlacedIsTheApplications) {
    start({});
    host::giveReset();
    EXPECT_EQ(hooks.calls, Words{"reset"});
    hooks.calls.clear();
    point(0, 0);
    host::giveReset();
    EXPECT_EQ(hooks.calls.back(), "reset");
    EXPECT_EQ(hooks.application, application("tester"));
    EXPECT_FALSE(written());
    start({.reset = nullptr});
    point(0, 0);
    host::giveReset();
    EXPECT_FALSE(host::commandRuns()) << "without a hook the command ends";
}

TEST_F(Placing, ATextWithoutLeaderIsNoCell) {
    start({.withText = 1, .withArrow = 0, .text = "one\\ntwo"});
    EXPECT_EQ(prompt(), "Give the place of the text");
    EXPECT_EQ(shown(3, 4).size(), 2u);
    point(10, 10);
    EXPECT_EQ(latest(), Words{"text 'one' 10,12 j2"}) << "an element for each line";
    // A vertical leg from an earlier placing doesn't pull it.
    hooks.leaderMode = ARROW_LEG_VERTICAL;
    start({.withText = 1, .withArrow = 0, .text = "one"});
    point(30, 10);
    EXPECT_EQ(latest(), Words{"text 'one' " + number(30 - widthOf("one") - 2) + ",10 j2"});
}

TEST_F(Placing, AStartPointIsTheTip) {
    const Point3d tip = at(1, 2);
    hooks.width = 4;
    start({.startPoint = &tip});
    EXPECT_EQ(prompt(), "Give the next point of the leader, or reset to end it");
    EXPECT_EQ(shown(-9, 2), (Words{"cell", "line -9,2 -13,2", "leader 1,2 -9,2"})) << "the tail points on";
    point(9, 2);
    host::giveReset();
    EXPECT_EQ(latest(), (Words{"cell", "line 9,2 13,2", "leader 1,2 9,2"}));
}

TEST_F(Placing, ATipIsSnappedByTheEndOfTheUnderlineThatIsNearest) {
    hooks.frameKind = ARROW_FRAME_UNDERLINE_FIRST;
    const double length = widthOf("abc") + 2;
    start({.withText = 1, .text = "abc", .snap = snapToX5});
    shown(0, 10);  // the ends of the underline are known from now on
    // The start of the underline, at the cursor, is 3 away; the end, to its right, further.
    EXPECT_EQ(shown(8, 10)[3], "leader 5,10 8,10");
    // The cursor is 7 away, the end of the underline less.
    EXPECT_EQ(shown(-2, 10)[3], "leader 5,10 " + number(-2 + length) + ",10") << length;
    point(-2, 10);
    hooks.calls.clear();
    shown(-20, 20);
    EXPECT_EQ(std::count(hooks.calls.begin(), hooks.calls.end(), "snap"), 0) << "for the first point alone";
    host::giveReset();
    EXPECT_EQ(latest()[3], "leader 5,10 " + number(-2 + length) + ",10");
}

TEST_F(Placing, OfTwoEndsThatAreAsNearTheSecondFindsTheTip) {
    hooks.frameKind = ARROW_FRAME_UNDERLINE_FIRST;
    start({.withText = 1, .text = "abc", .snap = snapToY0});
    shown(0, 10);
    const std::string x = number(8 + widthOf("abc") + 2);
    EXPECT_EQ(shown(8, 10)[3], "leader " + x + ",0 " + x + ",10");
}

TEST_F(Placing, HooksChangeTextSymbolAndCell) {
    start({.withText = 1, .text = "abc", .textHook = countText, .symbolHook = symbol, .cell = describe});
    point(40, 0);
    const double end = 10 + widthOf("40 in 0") + 3;
    const Words first = shown(10, 0);
    EXPECT_EQ(first[1], "text '40 in 0' 11.5,-1 j2");
    EXPECT_EQ(first[3], "leader 40,0 " + number(end) + ",0") << "as wide as the changed text";
    point(10, 0);
    EXPECT_EQ(std::count(hooks.calls.begin(), hooks.calls.end(), "cell"), 0) << "not before the arrow is written";
    hooks.calls.clear();
    host::giveReset();
    EXPECT_EQ(latest(), (Words{"cell", "text '40 in 0' 11.5,-1 j2", "circle " + number(end) + ",0 r1",
                               "leader 40,0 " + number(end) + ",0"}));
    EXPECT_EQ(hooks.calls, (Words{"looks", "text", "cell", number(end - 10) + ",0 left"}));
    wchar_t description[100];
    mdlCell_extractDescription(description, 100, arrowAt(mclibArrow_getLatestFilePos())->element);
    EXPECT_STREQ(description, L"40 in 0");
}

TEST_F(Placing, AFinishHookTakesTheArrow) {
    const int32_t group = 12;
    mdlParams_setActive(&group, MDL_PARAM_GRAPHIC_GROUP);
    ElmAttrData data;
    mclibElmAttr_extractData(lineAttr, &data);
    std::wcscpy(data.levelName, L"Labels");
    mclibElmAttr_editAttribute(lineAttr, 0, &data);
    start({.finish = takeArrow});
    point(0, 0);
    point(10, 0);
    host::giveReset();
    EXPECT_EQ(wordsOf(hooks.taken), (Words{"cell", "leader 0,0 10,0"}));
    EXPECT_FALSE(written());
    LevelId level = 0;
    EXPECT_EQ(mdlLevel_getIdFromName(&level, mdlModelRef_getActive(), 0, L"Labels"), MDL_SUCCESS);
    EXPECT_EQ(hooks.taken->firstChild->element->head.level, level);
    EXPECT_EQ(hooks.taken->firstChild->element->head.graphicGroup, 12u);
}

TEST_F(Placing, AMissingAttributeHookIsToldAndTheLooksOfBeforeHold) {
    hooks.headType = 12;
    start({});
    point(0, 0);
    point(10, 0);
    host::giveReset();
    ASSERT_EQ(messageBoxes(), 0);
    start({.attributes = nullptr});
    EXPECT_EQ(messageBoxes(), 1);
    point(0, 0);
    point(10, 0);
    host::giveReset();
    EXPECT_EQ(latest(), (Words{"cell", "leader 0,0 10,0", "line -1,-1 1,1"}));
}

TEST_F(Placing, PromptsAreTheApplicationsWhereItGivesThem) {
    start({.firstPrompt = "First", .nextPrompt = "Next"});
    EXPECT_EQ(prompt(), "First");
    point(0, 0);
    EXPECT_EQ(prompt(), "Next");
}

TEST_F(Placing, TheThousandthVertexEndsTheLeader) {
    start({});
    for (int i = 0; i < 1000; ++i) point(i, 0);
    ASSERT_TRUE(written());
    const std::string leader = latest()[1];
    EXPECT_EQ(leader.substr(leader.rfind(' ')), " 999,0");
    EXPECT_EQ(std::count(leader.begin(), leader.end(), ' '), 1000);
}

TEST_F(Placing, WithoutACommandThereIsNothingToPlaceIn) {
    mdlState_startDefaultCommand();
    EXPECT_EQ(mclibArrow_drawTextAndArrow(0, 1, textAttr, lineAttr, headAttr, 1, nullptr, nullptr, nullptr, nullptr,
                                          nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, looks, resetHook),
              MCLIB_ERROR);
}

}  // namespace
