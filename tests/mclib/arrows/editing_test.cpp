// Arrows in the drawing, changed by commands: what each of them makes of the cell, component by component.
#include <algorithm>
#include <cwchar>
#include <functional>
#include <numbers>

#include "mchost/mdl/model.h"
#include "mchost/mdl/transform.h"
#include "mchost/mdl/view.h"
#include "tests/mclib/arrows/editing_fixture.h"

using namespace arrowtest;

namespace {

// ---- vertices ----

TEST_F(Editing, AVertexGoesIntoTheFirstSegmentAndTheHeadTurns) {
    draw({at(-40, 0), at(-20, 0), at(0, 0)}, ARROW_FRAME_BOX_SIDE, 1);
    insert();
    point(-22, 0);  // nearer to the second end
    const Words expected = {"leader -40,0 -40,10 -20,0 " + left + ",0", "line -40,0 -41,2", "line -40,0 -39,2"};
    EXPECT_EQ(shown(-30, 5)[0], "leader -40,0 -30,5 -20,0 " + left + ",0");
    EXPECT_EQ(shown(-40, 10), expected) << "turns don't add up";
    point(-40, 10);
    EXPECT_EQ(legs(), expected);
    EXPECT_EQ(calls.reads, 1);
    EXPECT_EQ(calls.writes, 1);
    EXPECT_EQ(calls.componentType, MDL_LINE_STRING);
    point(-20, 0);
    EXPECT_EQ(shown(-20, 5)[0], "leader -40,0 -40,10 -20,5 -20,0 " + left + ",0") << "the next one can be changed";
}

TEST_F(Editing, AVertexOfALaterSegmentLeavesTheHeadAndTheEndFollowsTheFrame) {
    draw({at(-40, 0), at(-20, 0), at(0, 0)}, ARROW_FRAME_BOX_SIDE, 1);
    insert();
    point(-15, 0);
    const Words expected = {"leader -40,0 -20,0 0,10 0,2", "line -40,0 -38,1", "line -40,0 -38,-1"};
    EXPECT_EQ(shown(0, 10), expected);
    point(0, 10);
    EXPECT_EQ(legs(), expected);
}

TEST_F(Editing, TheEndStaysWhenTheFrameHasAnotherLeader) {
    draw({at(-40, 0), at(-20, 0), at(0, 0)}, ARROW_FRAME_BOX_SIDE, 0);
    giveLeader({at(30, 30)}, -w / 2, -1);
    ASSERT_EQ(legs(), (Words{"leader -40,0 -20,0 " + left + ",0", "leader 30,30 " + left + ",0",
                             "line 30,30 " + legs()[2].substr(legs()[2].rfind(' ') + 1),
                             "line 30,30 " + legs()[3].substr(legs()[3].rfind(' ') + 1)}));
    insert();
    point(-15, 0);
    EXPECT_EQ(shown(0, 10)[0], "leader -40,0 -20,0 0,10 " + left + ",0");
    point(0, 10);
    EXPECT_EQ(legs()[0].substr(0, 12), "leader 30,30") << "the changed leader stands last";
    EXPECT_EQ(legs()[3], "leader -40,0 -20,0 0,10 " + left + ",0");
}

TEST_F(Editing, TheVertexNextToThePointIsDeletedButNoEnd) {
    struct Case {
        Point3d click;
        std::string leader;
        const char* what;
    };
    const Words start = {"leader -40,0 -30,10 -20,0 " + left + ",0"};
    const Case cases[] = {
        {at(-39, 1), "leader -40,0 -20,0 " + left + ",0", "next to the tip"},
        {at(-31, 9), "leader -40,0 -20,0 " + left + ",0", "next to the second"},
        {at(-21, 1), "leader -40,0 -30,10 " + left + ",0", "next to the third"},
        {at(-side - 1, 0), "leader -40,0 -30,10 " + left + ",0", "next to the end"},
    };
    for (const Case& c : cases) {
        draw({at(-40, 0), at(-30, 10), at(-20, 0), at(0, 0)}, ARROW_FRAME_BOX_SIDE, 0);
        remove();
        front().seen.clear();
        host::giveDataPoint(c.click, 0);
        EXPECT_EQ(front().seen.back(), "mode 2") << "the shortened leader is shown";
        host::giveDataPoint(at(70, 70), 0);
        EXPECT_EQ(legs(), Words{c.leader}) << c.what;
        mdlElement_undoableDelete(nullptr, arrow, 0);
    }
}

TEST_F(Editing, ADeletedVertexTurnsTheHeadAndLetsTheEndSlide) {
    draw({at(-40, 0), at(-30, 10), at(-20, 0), at(0, 0)}, ARROW_FRAME_BOX_SIDE, 1);
    remove();
    point(-29, 9);  // behind it, so in the second segment
    point(70, 70);
    EXPECT_EQ(legs(), (Words{"leader -40,0 -20,0 " + left + ",0", "line -40,0 -38,1", "line -40,0 -38,-1"}));
    draw({at(0, 60), at(-10, 40), at(-30, 30), at(0, 20)}, ARROW_FRAME_BOX_SIDE, 0);
    ASSERT_EQ(legs(), Words{"leader 0,60 -10,40 -30,30 " + left + ",20"});
    remove();
    point(-30, 30);
    point(70, 70);
    EXPECT_EQ(legs(), Words{"leader 0,60 -10,40 0,22"});
}

TEST_F(Editing, OfALeaderOfTwoVerticesNoneIsDeleted) {
    draw({at(-40, 0), at(0, 0)}, ARROW_FRAME_BOX_SIDE);
    const std::string before = bytes();
    remove();
    point(-30, 0);
    EXPECT_NE(told().find("no vertex between its ends"), std::string::npos) << told();
    EXPECT_EQ(bytes(), before);
    draw({at(-40, 30), at(-20, 30), at(0, 30)}, ARROW_FRAME_BOX_SIDE, 0);
    point(-30, 30);  // the command goes on
    point(-30, 30);
    EXPECT_EQ(legs(), Words{"leader -40,30 " + left + ",30"});
}

// ---- the tip ----

TEST_F(Editing, ALoneLeaderOfTwoVerticesSlidesAlongEachFrame) {
    const double r = std::hypot(w, 2) / 2 + 1, d = r * std::numbers::sqrt2, h = w / 2 + 1 + 2 / std::sqrt(3);
    const std::string e = number(r / std::numbers::sqrt2);
    const std::pair<int, std::string> ends[] = {
        {ARROW_FRAME_NONE, number(w + 3) + ",0"}, {ARROW_FRAME_UNDERLINE_FIRST, number(w + 2) + ",0"},
        {ARROW_FRAME_BOX_SIDE, right + ",0"},     {ARROW_FRAME_BOX_CORNER, right + ",-2"},
        {ARROW_FRAME_CIRCLE, e + ",-" + e},       {ARROW_FRAME_UNDERLINE_LAST, number(w + 2) + ",0"},
        {ARROW_FRAME_DIAMOND, "0,-" + number(d)}, {ARROW_FRAME_HEXAGON, number(h) + ",0"},
    };
    for (const auto& [kind, end] : ends) {
        draw({at(-40, 0), at(0, 0)}, kind, 0);
        moveHead();
        point(-20, legs()[0].ends_with(",2") ? 1 : 0);
        point(40, -40);
        EXPECT_EQ(legs(), Words{"leader 40,-40 " + end}) << kind;
        mdlElement_undoableDelete(nullptr, arrow, 0);
    }
}

TEST_F(Editing, TheEndSlidesPastTheWidestLineAndToTheRightOfAHexagonOnATie) {
    draw({at(-40, 0), at(0, 0)}, ARROW_FRAME_NONE, 0, "i\nabcdef\nii");
    moveHead();
    point(-20, 0);
    point(40, 0);
    EXPECT_EQ(legs(), Words{"leader 40,0 " + number(widthOf("abcdef") + 3) + ",0"});
    draw({at(-40, 60), at(0, 60)}, ARROW_FRAME_HEXAGON, 0);
    point(-20, 60);
    point(0, 90);
    EXPECT_EQ(legs(), Words{"leader 0,90 " + number(w / 2 + 1 + 2 / std::sqrt(3)) + ",60"});
}

TEST_F(Editing, TheHeadGoesWithTheTipAndStaysAlongItsLeader) {
    draw({at(-40, 0), at(0, 0)}, ARROW_FRAME_BOX_SIDE, 1);
    moveHead();
    point(-20, 0);
    const Words expected = {"leader 0,40 0,2", "line 0,40 1,38", "line 0,40 -1,38"};
    shown(13, 14);
    EXPECT_EQ(shown(0, 40), expected);
    point(0, 40);
    EXPECT_EQ(legs(), expected);
    // A further vertex holds the leader where it is.
    draw({at(-40, 60), at(-20, 60), at(0, 60)}, ARROW_FRAME_BOX_SIDE, 1);
    moveHead();
    point(-10, 60);
    point(-20, 90);
    EXPECT_EQ(legs(), (Words{"leader -20,90 -20,60 " + left + ",60", "line -20,90 -19,88", "line -20,90 -21,88"}));
}

TEST_F(Editing, AHeadTurnsAlikeInAllViews) {
    RotMatrix turned;
    mdlRMatrix_fromAngle(&turned, 0.7);
    mdlView_setRotation(2, &turned);
    std::vector<Words> results;
    for (const int view : {0, 2}) {
        draw({at(-40, 0), at(0, 0)}, ARROW_FRAME_BOX_CORNER, 1);
        moveHead();
        host::giveDataPoint(at(-40, 0), view);
        host::giveDataPoint(at(0, 40), view);
        results.push_back(words());
        mdlElement_undoableDelete(nullptr, arrow, 0);
    }
    EXPECT_EQ(results[0], results[1]);
}

// ---- text ----

TEST_F(Editing, TextFrameAndSymbolMoveAndAllLeadersEndAtOnePoint) {
    draw({at(-40, 0), at(0, 0)}, ARROW_FRAME_BOX_SIDE, 1);
    giveLeader({at(-60, -30), at(-60, 0)}, side, 0.5);
    moveAll();
    point(side, 0.5);
    const auto moved = shown(side - 40, 50.5);
    point(side - 40, 50.5);
    const std::string l = number(-40 - side), r = number(-40 + side);
    EXPECT_EQ(words(),
              (Words{"cell", "shape " + l + ",48 " + r + ",48 " + r + ",52 " + l + ",52 " + l + ",48",
                     "text 'abc' " + number(-40 - w / 2) + ",50 j1", "leader -40,0 -40,48", "line -40,0 -41,2",
                     "line -40,0 -39,2", "leader -60,0 -60,-30 -40,48", "line -60,0 -59,-2", "line -60,0 -61,-2"}));
    EXPECT_EQ(moved, words()) << "the dynamics show what is written";
}

TEST_F(Editing, ATextMovesAloneAndWhatBelongsToItGoesAlong) {
    const std::string text = "text 'abc' ";
    const std::string box = "shape " + left + ",-2 " + right + ",-2 " + right + ",2 " + left + ",2 " + left + ",-2";
    struct Case {
        int kind;
        Point3d text;  // where it is pointed at
        Words expected;
    };
    const Case cases[] = {
        {ARROW_FRAME_NONE, at(1.5, -1), {text + "11.5,29 j2", "leader -40,0 10,30"}},
        {ARROW_FRAME_UNDERLINE_FIRST,
         at(1, 1),
         {"line 10,30 " + number(12 + w) + ",30", text + "11,31 j2", "leader -40,0 10,30"}},
        {ARROW_FRAME_BOX_SIDE,
         at(-w / 2, 0),
         {box, text + number(10 - w / 2) + ",30 j1", "leader -40,0 " + left + ",0"}},
    };
    for (const Case& c : cases) {
        draw({at(-40, 0), at(0, 0)}, c.kind, 0);
        moveText();
        host::giveDataPoint(c.text, 0);
        host::giveDataPoint({c.text.x + 10 * uor, c.text.y + 30 * uor, 0}, 0);
        Words expected = c.expected;
        expected.insert(expected.begin(), "cell");
        EXPECT_EQ(words(), expected) << c.kind;
        mdlElement_undoableDelete(nullptr, arrow, 0);
    }
}

TEST_F(Editing, ACornerStaysACornerWhenTheArrowMovesInATurnedView) {
    RotMatrix turned;
    mdlRMatrix_fromAngle(&turned, 0.7);
    mdlView_setRotation(2, &turned);
    draw({at(-40, 0.3), at(0.1, 0.7)}, ARROW_FRAME_BOX_CORNER, 0);
    for (int i = 0; i < 20; ++i) {
        moveAll();
        const mdl::DescrPtr before = arrowAt(arrow);
        Point3d corners[5];
        mdlLinear_extract(corners, nullptr, before->firstChild->element, 5);
        host::giveDataPoint(corners[1], 2);
        host::giveDataPoint({corners[1].x + 12345.678 * i, corners[1].y - 23456.789, 0}, 2);
        const mdl::DescrPtr after = arrowAt(arrow);
        Point3d end[2];
        mdlLinear_extract(corners, nullptr, after->firstChild->element, 5);
        mdlLinear_extract(end, nullptr, after->lastChild->element, 2);
        EXPECT_TRUE(std::any_of(corners, corners + 4, [&](const Point3d& p) {
            return p.x == end[1].x && p.y == end[1].y;
        })) << i;
    }
}

TEST_F(Editing, TextAndSymbolAreReplacedByWhatTheApplicationMakes) {
    draw({at(-40, 0), at(0, 0)}, ARROW_FRAME_UNDERLINE_FIRST, 1);
    change();
    point(1, 0);
    point(70, 70);
    EXPECT_EQ(words(),
              (Words{"cell", "text 'new' 0,0 j2", "leader -40,0 0,0", "line -40,0 -38,1", "line -40,0 -38,-1"}));
    EXPECT_EQ(calls.direction, 1.0);
    EXPECT_EQ(calls.anchor.x, 0);
    const std::string before = bytes();
    calls.changeResult = 1;
    point(0, 0.5);
    point(70, 70);
    EXPECT_EQ(bytes(), before) << "the hook refuses";
    change(nullptr);
    point(0, 0.5);
    point(70, 70);
    EXPECT_EQ(bytes(), before) << "there is no hook";
    EXPECT_EQ(calls.writes, 1);
}

// ---- leaders and heads ----

TEST_F(Editing, ALeaderIsAddedBehindTheOthersFromItsTip) {
    calls.width = 4;
    draw({at(-40, 0), at(0, 0)}, ARROW_FRAME_BOX_SIDE, 12);
    addLeader();
    point(side, 0);
    EXPECT_EQ(shown(-side, 30)[1], "leader " + left + ",0 " + left + ",30");
    point(-side, 30);
    point(-side - 20, 30);
    host::giveReset();
    EXPECT_EQ(legs(), (Words{"leader -40,0 " + left + ",0", "line -41,-1 -39,1",
                             "leader " + number(-side - 20) + ",30 " + left + ",30 " + left + ",0",
                             "line " + number(-side - 20) + ",30 " + number(-side - 18) + ",31",
                             "line " + number(-side - 20) + ",30 " + number(-side - 18) + ",29"}))
        << "no tail is drawn, whatever the width";
    EXPECT_EQ(calls.writes, 1);
}

TEST_F(Editing, TheNewLeaderLiesOnTheArrowsLevel) {
    ElmAttrData data;
    mclibElmAttr_extractData(headAttr, &data);
    data.useFlags |= ATTR_USE_LEVEL;
    std::wcscpy(data.levelName, L"Heads");
    mclibElmAttr_editAttribute(headAttr, 0, &data);
    draw({at(-40, 0), at(0, 0)}, ARROW_FRAME_BOX_SIDE, 12);
    data.useFlags &= ~static_cast<uint32_t>(ATTR_USE_LEVEL);
    mclibElmAttr_editAttribute(headAttr, 0, &data);
    giveLeader({at(20, 20)}, side, 0);
    const mdl::DescrPtr ed = arrowAt(arrow);
    const uint32_t level = ed->firstChild->next->next->next->element->head.level;  // of the first head
    EXPECT_NE(level, ed->firstChild->element->head.level);
    EXPECT_EQ(ed->lastChild->element->head.level, level);
    mclibElmAttr_extractData(lineAttr, &data);
    EXPECT_STREQ(data.levelName, L"Heads");
}

TEST_F(Editing, ALeaderGoesWithItsHeadAndTheLastOneToo) {
    draw({at(-40, 0), at(0, 0)}, ARROW_FRAME_BOX_SIDE, 12);
    giveLeader({at(-side, 30)}, side, 0);
    giveLeader({at(-side, -30)}, side, 0);
    deleteLeader();
    point(-side, 20);
    point(70, 70);
    EXPECT_EQ(legs(),
              (Words{"leader -40,0 " + left + ",0", "line -41,-1 -39,1", "leader " + left + ",-30 " + left + ",0",
                     "line " + left + ",-30 " + number(-side - 1) + ",-28",
                     "line " + left + ",-30 " + number(-side + 1) + ",-28"}));
    point(-20, 0);
    point(70, 70);
    point(-side, -20);
    point(70, 70);
    EXPECT_EQ(words().size(), 3u) << "cell, frame and text";
    const std::string before = bytes();
    calls.writes = 0;
    const std::function<void()> commands[] = {[&] { addLeader(); }, [&] { moveAll(); }, [&] { change(); }};
    for (const auto& start : commands) {
        start();
        front().fields.clear();
        point(side, 1);
        point(side, 1);
        EXPECT_NE(told().find("there is no leader"), std::string::npos) << told();
    }
    EXPECT_EQ(bytes(), before);
    EXPECT_EQ(calls.writes, 0);
}

TEST_F(Editing, AHeadIsReplacedWhereThereIsOne) {
    struct Case {
        int before, after;
        Words head;
    };
    const Case cases[] = {
        {1, 3, {"shape -40,0 -38,-1 -38,1 -40,0 filled"}},
        {3, 8, {"shape -40,0 -38,-5 -38,5 -40,0"}},  // as wide as the hook says
        {16, 12, {"line -41,-1 -39,1"}},
        {1, 0, {}},
        {1, 20, {}},
        {0, 3, {}},
    };
    calls.width = 5;
    for (const Case& c : cases) {
        draw({at(-40, 0), at(0, 0)}, ARROW_FRAME_BOX_SIDE, c.before);
        calls.headType = c.after;
        replaceHead();
        point(-20, 0);
        point(70, 70);
        Words expected = c.head;
        expected.insert(expected.begin(), "leader -40,0 " + left + ",0");
        EXPECT_EQ(legs(), expected) << c.before << " to " << c.after;
        mdlElement_undoableDelete(nullptr, arrow, 0);
    }
}

TEST_F(Editing, WithoutTheHookNoHeadIsReplaced) {
    draw({at(-40, 0), at(0, 0)}, ARROW_FRAME_BOX_SIDE, 1);
    const std::string before = bytes();
    replaceHead(nullptr);
    EXPECT_EQ(messageBoxes(), 1);
    point(-20, 0);
    point(70, 70);
    EXPECT_EQ(bytes(), before);
}

}  // namespace
