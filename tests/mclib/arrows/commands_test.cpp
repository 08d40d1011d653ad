// What holds for all commands that change arrows: nothing is written before it is accepted, what is written can be
// taken back, and nothing that is no arrow is touched.
#include <cstdlib>
#include <cstring>
#include <map>
#include <numbers>
#include <optional>
#include <random>

#include "mchost/mdl/locate.h"
#include "mchost/mdl/scan.h"
#include "mchost/mdl/selection.h"
#include "mchost/mdl/undo.h"
#include "mchost/mdl/view.h"
#include "mclib/geometry/builders.h"
#include "tests/mclib/arrows/editing_fixture.h"

using namespace arrowtest;

namespace {

// A hook that makes something else than a cell.
int noCell(ElementDescr** made, ElementDescr* old, Point3d*, double, int) {
    EXPECT_EQ(mdlElmdscr_new(made, nullptr, old->firstChild->element), MDL_SUCCESS);
    return 0;
}

class Commands : public Editing {
  protected:
    // A command on the arrow that drawUsual draws: what it is pointed at by, and the points that follow.
    struct Case {
        const char* name;
        std::function<void()> start;
        Point3d click;
        std::vector<Point3d> points;
        bool endsWithReset = false;

        void pointAt() const {
            start();
            host::giveDataPoint(click, 0);
        }
        void finish() const {
            for (const Point3d& p : points) host::giveDataPoint(p, 0);
            if (endsWithReset) host::giveReset();
        }
    };
    const Point3d onLeader = at(-30, 0), onFrame = at(side, 1), onText = at(-w / 2, 0);
    const std::vector<Case> all = {
        {"insert", [&] { insert(); }, onLeader, {at(-30, 8)}},
        {"delete", [&] { remove(); }, onLeader, {at(70, 70)}},
        {"tip", [&] { moveHead(); }, onLeader, {at(-40, 9)}},
        {"text and symbol", [&] { moveAll(); }, onFrame, {at(side + 5, 9)}},
        {"text", [&] { moveText(); }, onText, {at(5, 9)}},
        {"change", [&] { change(); }, onFrame, {at(70, 70)}},
        {"add", [&] { addLeader(); }, onFrame, {at(30, 30)}, true},
        {"remove", [&] { deleteLeader(); }, onLeader, {at(70, 70)}},
        {"head", [&] { replaceHead(); }, onLeader, {at(70, 70)}},
    };
    Commands() { calls.headType = 3; }

    void drawUsual() { draw({at(-40, 0), at(-20, 0), at(0, 0)}, ARROW_FRAME_BOX_SIDE, 1); }

    // Makes an arrow of elements by hand.
    template <class... Elements>
    void make(Elements... elements) {
        mdl::Descr cell;
        mdlCell_create(dgnBufP, L"", nullptr, 0);
        ASSERT_EQ(mdlElmdscr_new(cell.out(), nullptr, dgnBufP), MDL_SUCCESS);
        (elements(cell.get()), ...);
        mdlCell_setRange(cell.get(), nullptr);
        arrow = mdlElmdscr_add(cell.get());
        ASSERT_NE(arrow, 0u);
    }
    static auto line(double x1, double y1, double x2, double y2) {
        return [=](ElementDescr* cell) {
            const Point3d ends[] = {at(x1, y1), at(x2, y2)};
            EXPECT_EQ(mclibElement_createLine(ends, lineAttr, cell), MCLIB_SUCCESS);
        };
    }
    static auto leader(std::vector<Point3d> points) {
        return [=](ElementDescr* cell) {
            EXPECT_EQ(mclibElement_createLineString(points.data(), static_cast<int>(points.size()), lineAttr, cell),
                      MCLIB_SUCCESS);
        };
    }
    static auto text(double x, double y) {
        return [=](ElementDescr* cell) {
            const mdl::CurrTransScope master(mdl::CurrTransScope::Begin::masterUnits);
            const Point3d origin = {x, y, 0};
            EXPECT_EQ(mclibElement_createText(&origin, "abc", 1, nullptr, textAttr, cell), MCLIB_SUCCESS);
        };
    }
};

TEST_F(Commands, EachIsUndoneToTheBytesOfBeforeAndRedone) {
    for (const Case& c : all) {
        drawUsual();
        const std::string before = bytes();
        c.pointAt();
        EXPECT_EQ(bytes(), before) << c.name << ": written before it is accepted";
        c.finish();
        const std::string after = bytes();
        EXPECT_NE(after, before) << c.name;
        EXPECT_EQ(mdlUndo_undo(), MDL_SUCCESS) << c.name;
        EXPECT_EQ(bytes(), before) << c.name;
        EXPECT_EQ(mdlUndo_redo(), MDL_SUCCESS) << c.name;
        EXPECT_EQ(bytes(), after) << c.name;
        mdlElement_undoableDelete(nullptr, arrow, 0);
    }
}

TEST_F(Commands, AResetLeavesTheArrowAndTheCommandGoesOn) {
    for (const Case& c : all) {
        drawUsual();
        const std::string before = bytes();
        calls.resets = 0;
        c.pointAt();
        shown(-33, 7);
        host::giveReset();
        EXPECT_EQ(calls.resets, 1) << c.name;
        EXPECT_EQ(bytes(), before) << c.name;
        host::giveDataPoint(c.click, 0);
        c.finish();
        EXPECT_NE(bytes(), before) << c.name;
        mdlElement_undoableDelete(nullptr, arrow, 0);
    }
}

TEST_F(Commands, WhatIsNoArrowIsLeftAloneAndTold) {
    const Point3d ends[] = {at(-60, 50), at(60, 50)};
    mdlLineString_create(dgnBufP, nullptr, ends, 2);
    const FilePos lineString = mdlElement_add(dgnBufP);
    for (const Case& c : all) {
        drawUsual();
        const std::string before = bytes();
        const auto refusedAt = [&](const Point3d& p) {
            front().fields.clear();
            host::giveDataPoint(p, 0);
            EXPECT_FALSE(told().empty()) << c.name;
            host::giveDataPoint(at(70, 70), 0);
            EXPECT_EQ(bytes(), before) << c.name;
        };
        c.start();
        refusedAt(at(70, -70));                                                         // nothing there
        refusedAt(at(30, 50));                                                          // no cell
        if (!c.endsWithReset) refusedAt(c.click.x == onLeader.x ? onFrame : onLeader);  // another part
        calls.filterResult = 0;
        refusedAt(c.click);
        calls.filterResult = 2;
        mdlElement_undoableDelete(nullptr, arrow, 0);
    }
    EXPECT_EQ(wordsAt(lineString), Words{"leader -60,50 60,50"});
    EXPECT_EQ(calls.writes, 0);
}

TEST_F(Commands, ALockedArrowIsNotChanged) {
    drawUsual();
    const mdl::DescrPtr locked = arrowAt(arrow);
    locked->element->head.properties |= MDL_PROP_LOCKED;
    ASSERT_EQ(mdlElmdscr_rewrite(locked.get(), arrow), arrow);
    const std::string before = bytes();
    for (const Case& c : all) {
        c.pointAt();
        EXPECT_NE(told().find("locked"), std::string::npos) << c.name;
        host::giveDataPoint(at(70, 70), 0);
        EXPECT_EQ(bytes(), before) << c.name;
    }
}

TEST_F(Commands, TheApplicationMayReplaceWhatIsReadAndWritten) {
    ElementDescr* line = nullptr;
    const std::function<void(ElementDescr**, ElementDescr**)> spoils[] = {
        [](ElementDescr** cell, ElementDescr**) { mdlElmdscr_freeAll(cell); },
        [](ElementDescr** cell, ElementDescr**) {  // no cell
            mdlElmdscr_freeAll(cell);
            const Point3d ends[] = {at(0, 0), at(1, 0)};
            mdlLineString_create(dgnBufP, nullptr, ends, 2);
            EXPECT_EQ(mdlElmdscr_new(cell, nullptr, dgnBufP), MDL_SUCCESS);
        },
        [](ElementDescr** cell, ElementDescr**) {  // a cell without leaders; the component is gone
            ElementDescr* bare = nullptr;
            EXPECT_EQ(mdlElmdscr_new(&bare, nullptr, (*cell)->element), MDL_SUCCESS);
            mdlElmdscr_freeAll(cell);
            *cell = bare;
        },
    };
    for (const Case& c : all)
        for (const auto& spoil : spoils) {
            drawUsual();
            const std::string before = bytes();
            calls.onRead = spoil;
            c.pointAt();
            host::giveDataPoint(c.click, 0);
            EXPECT_EQ(bytes(), before) << c.name;
            calls.onRead = nullptr;
            mdlState_startDefaultCommand();
            mdlElement_undoableDelete(nullptr, arrow, 0);
        }
    mdlElmdscr_freeAll(&line);
    drawUsual();
    calls.onRead = [](ElementDescr** cell, ElementDescr** component) {  // another leader in another cell
        const Point3d ends[] = {at(-40, 0), at(0, 30)};
        ElementDescr* other = nullptr;
        EXPECT_EQ(mdlElmdscr_new(&other, nullptr, (*cell)->element), MDL_SUCCESS);
        mdlLineString_create(dgnBufP, (*component)->element, ends, 2);
        EXPECT_EQ(mdlElmdscr_appendElement(other, dgnBufP), MDL_SUCCESS);
        mdlElmdscr_freeAll(cell);
        *cell = other;
        *component = other->firstChild;
    };
    all[0].pointAt();
    all[0].finish();
    EXPECT_EQ(words(), (Words{"cell", "leader -40,0 -30,8 0,30"}));

    calls.onRead = nullptr;
    calls.onWrite = [](ElementDescr** cell) { mdlElmdscr_freeAll(cell); };
    drawUsual();
    const std::string before = bytes();
    const int boxes = messageBoxes();
    all[1].pointAt();
    all[1].finish();
    EXPECT_EQ(bytes(), before);
    EXPECT_EQ(messageBoxes(), boxes + 1) << "nothing to write is told";
}

TEST_F(Commands, OnlyComponentsOfTheCellItselfAreLeaders) {
    const auto symbol = [](ElementDescr* cell) {
        const Point3d zigzag[] = {at(10, 10), at(12, 12), at(14, 10)};
        ElementDescr* inner = nullptr;
        mdlCell_create(dgnBufP, L"SYMBOL", nullptr, 0);
        EXPECT_EQ(mdlElmdscr_new(&inner, nullptr, dgnBufP), MDL_SUCCESS);
        EXPECT_EQ(mclibElement_createLineString(zigzag, 3, lineAttr, inner), MCLIB_SUCCESS);
        text(12, 8)(inner);
        EXPECT_EQ(mdlElmdscr_appendDscr(cell, inner), MDL_SUCCESS);
    };
    make(text(0, 0), symbol, leader({at(-40, 0), at(0, 0)}));
    deleteLeader();
    point(11, 11);
    EXPECT_NE(told().find("there is no leader"), std::string::npos) << told();
    moveAll();
    host::giveDataPoint(at(0, 0), 0);
    host::giveDataPoint(at(0, 5), 0);
    EXPECT_EQ(words(), (Words{"cell", "text 'abc' 0,5 j2", "cell", "leader 10,15 12,17 14,15", "text 'abc' 12,13 j2",
                              "leader -40,0 0,5"}));
    moveText();
    host::giveDataPoint(at(0, 5), 0);
    host::giveDataPoint(at(0, 0), 0);
    EXPECT_EQ(words()[4], "text 'abc' 12,13 j2") << "a symbol stays with all that is in it";
}

TEST_F(Commands, WithTwoLinesInFrontTheEndMovesAsTheTextDoes) {
    make(text(0, 0), line(0, 5, 5, 5), line(0, 6, 5, 6), leader({at(-40, 0), at(0, 0)}));
    moveAll();
    point(0, 0);
    point(7, -9);
    EXPECT_EQ(words(),
              (Words{"cell", "text 'abc' 7,-9 j2", "line 7,-4 12,-4", "line 7,-3 12,-3", "leader -40,0 7,-9"}));
    moveHead();
    point(-40, 0);
    point(70, 0);
    EXPECT_EQ(legs(), Words{"leader 70,0 7,-9"}) << "the end doesn't slide";
    moveText();
    point(7, -9);
    point(0, 0);
    EXPECT_EQ(words(), (Words{"cell", "text 'abc' 0,0 j2", "line 0,5 5,5", "line 7,-3 12,-3", "leader 70,0 0,0"}))
        << "the line right behind the text goes with it";
}

TEST_F(Commands, LeadersUpTo5000VerticesAreChangedAndNoneBeyond) {
    std::vector<Point3d> points(MDL_MAX_POINTS);
    for (size_t i = 0; i < points.size(); ++i) points[i] = at(static_cast<double>(i) * 0.01, 0);
    make(leader(points));
    const std::string before = bytes();
    insert();
    point(20, 0);
    EXPECT_NE(told().find("5000"), std::string::npos) << told();
    EXPECT_EQ(bytes(), before);
    remove();
    point(20, 0);
    point(70, 70);
    EXPECT_EQ(bytes().size(), before.size() - sizeof(Point3d));
}

TEST_F(Commands, TheSelectedArrowIsChangedAtOnce) {
    const auto changeSelected = [](McArrowChangeTextHook hook = changeText) {
        return mclibArrow_modifyTextAndSymbolSelected(filter, readHook, writeHook, hook, resetHook);
    };
    drawUsual();
    const std::string before = bytes();
    EXPECT_EQ(changeSelected(), MCLIB_ERROR);
    EXPECT_NE(told().find("is selected"), std::string::npos) << told();
    ASSERT_EQ(mdlSelect_addElement(arrow, nullptr), MDL_SUCCESS);
    calls.changeResult = 1;
    EXPECT_EQ(changeSelected(), MCLIB_ERROR);
    EXPECT_EQ(changeSelected(nullptr), MCLIB_ERROR);
    calls.changeResult = 0;
    EXPECT_EQ(changeSelected(noCell), MCLIB_ERROR);
    EXPECT_EQ(bytes(), before);
    EXPECT_EQ(changeSelected(), MCLIB_SUCCESS);
    EXPECT_EQ(words()[1], "text 'new' " + left + ",0 j2");
    const mdl::DescrPtr locked = arrowAt(arrow);
    locked->element->head.properties |= MDL_PROP_LOCKED;
    mdlElmdscr_rewrite(locked.get(), arrow);
    EXPECT_EQ(changeSelected(), MCLIB_ERROR);
    EXPECT_NE(told().find("locked"), std::string::npos) << told();
    mdlSelect_freeAll();
    const Point3d ends[] = {at(0, 0), at(1, 0)};
    mdlLineString_create(dgnBufP, nullptr, ends, 2);
    mdlSelect_addElement(mdlElement_add(dgnBufP), nullptr);
    EXPECT_EQ(changeSelected(), MCLIB_ERROR) << "no cell";
    EXPECT_EQ(calls.writes, 1);
}

TEST_F(Commands, TheHookIsToldWhichWayTheUnderlineGoes) {
    make(line(0, 0, -10, 0), text(-9, 1), leader({at(40, 0), at(0, 0)}));
    change();
    point(-5, 0);
    point(70, 70);
    EXPECT_EQ(calls.direction, -1.0);
}

TEST_F(Commands, LeadersOfDimensionsDontCount) {
    const auto ofDimension = [](ElementDescr* cell) {
        const Point3d ends[] = {at(0, 30), at(0, 2)};
        const int32_t dimension = 2;
        mdlLineString_create(dgnBufP, nullptr, ends, 2);
        mdlElement_setProperties(dgnBufP, nullptr, nullptr, &dimension, nullptr, nullptr, nullptr, nullptr, nullptr);
        EXPECT_EQ(mdlElmdscr_appendElement(cell, dgnBufP), MDL_SUCCESS);
    };
    make(line(0, 0, 10, 0), text(1, 1), leader({at(-40, 0), at(0, 0)}), ofDimension);
    moveHead();
    point(-20, 0);
    point(40, -10);
    EXPECT_EQ(legs(), (Words{"leader 0,30 0,2", "leader 40,-10 10,0"})) << "the end slides along the underline";
}

// ---- a day's work ----

TEST_F(Commands, ThirtyPointsThroughAllCommands) {
    draw({at(-40, 0), at(-20, 0), at(0, 0)}, ARROW_FRAME_BOX_SIDE, 1);
    insert();
    point(-30, 0);
    point(-30, 10);  // -40,0 -30,10 -20,0 -S,0; the head at 45 degrees
    point(-25, 5);
    point(-20, 10);  // -40,0 -30,10 -20,10 -20,0 -S,0
    remove();
    point(-20, 0);
    point(70, 70);  // -40,0 -30,10 -20,10 -S,0
    moveHead();
    point(-30, 10);
    point(-30, 30);  // straight down from the tip: the head too
    const Words first = {"leader -30,30 -30,10 -20,10 " + left + ",0", "line -30,30 -29,28", "line -30,30 -31,28"};
    EXPECT_EQ(legs(), first);
    addLeader();
    point(side, 1);
    point(20, -20);
    host::giveReset();
    moveAll();
    point(side, 1);
    point(side + 10, 1);
    const std::string l = number(10 - side);
    EXPECT_EQ(legs()[0], "leader -30,30 -30,10 -20,10 " + l + ",0");
    EXPECT_EQ(legs()[3], "leader 20,-20 " + l + ",0") << "all leaders end at the one point";
    calls.headType = 12;
    replaceHead();
    point(-30, 20);
    point(70, 70);
    EXPECT_EQ(legs()[2], "leader -30,30 -30,10 -20,10 " + l + ",0") << "behind the other one";
    EXPECT_EQ(legs()[3], "line -31,29 -29,31");
    moveText();
    host::giveDataPoint(at(10 - w / 2, 0), 0);
    host::giveDataPoint(at(10 - w / 2, -0.5), 0);
    insert();
    point(-30, 20);
    point(-40, 20);
    insert();
    point(-25, 10);
    point(-25, 15);
    remove();
    point(-25, 15);
    point(70, 70);
    deleteLeader();
    point(20, -20);
    point(70, 70);
    // Moving the text fitted both leaders to where the first of them ends best: at the lower side. The slash turned
    // with its first segment, by 45 degrees to the right.
    const std::string r = number(10 + side), m = number(10 - w / 2), q = number(30 - std::numbers::sqrt2);
    EXPECT_EQ(words(), (Words{"cell", "shape " + l + ",-2 " + r + ",-2 " + r + ",2 " + l + ",2 " + l + ",-2",
                              "text 'abc' " + m + ",-0.5 j1", "leader -30,30 -40,20 -30,10 -20,10 10,-2",
                              "line -" + number(30 + std::numbers::sqrt2) + ",30 -" + q + ",30"}));
    change();
    host::giveDataPoint(at(10 + side, 1), 0);
    point(70, 70);
    EXPECT_EQ(words().size(), 4u);
    EXPECT_EQ(words()[1], "text 'new' 10,-2 j2");
}

// Every element of the file with its bytes.
std::map<FilePos, std::string> fileContent() {
    std::map<FilePos, std::string> content;
    const mdl::Scan scan(mdlModelRef_getActive());
    mdlScanCriteria_setReturnType(scan.criteria(), MDL_SCAN_POSITIONS, 0, 0);
    for (const FilePos position : scan)
        content[position] = bytesOf(mdl::readDescr(position, mdlModelRef_getActive()).get());
    return content;
}

// A point of one of the components; none of a circle.
std::optional<Point3d> pointOn(const ElementDescr* cell, std::mt19937& random) {
    std::vector<const ElementDescr*> parts;
    for (const ElementDescr* node = cell ? cell->firstChild : nullptr; node; node = node->next) parts.push_back(node);
    if (parts.empty()) return std::nullopt;
    const MSElementBuffer* part = parts[random() % parts.size()]->element;
    std::vector<Point3d> points(MDL_MAX_POINTS);
    int32_t count = 5;
    if (mdlText_extractShape(points.data(), nullptr, part, 0, 0) != MDL_SUCCESS &&
        mdlLinear_extract(points.data(), &count, part, MDL_MAX_POINTS) != MDL_SUCCESS)
        return std::nullopt;
    const size_t first = random() % static_cast<size_t>(count - 1);
    const Point3d &a = points[first], &b = points[first + 1];
    const double along = static_cast<double>(random() % 5) / 4;
    return Point3d{a.x + along * (b.x - a.x), a.y + along * (b.y - a.y), 0};
}

void startPlacing() {
    mdlState_startPrimitive(nullptr, startPlacing, 0, 0);
    mclibArrow_drawTextAndArrow(1, 1, textAttr, lineAttr, headAttr, 1, nullptr, nullptr, "placed", nullptr, nullptr,
                                nullptr, nullptr, nullptr, nullptr, nullptr, looks, resetHook);
}

// ARROW_SCRIPTS says how many scripts are run; the usual number takes a few seconds.
TEST_F(Commands, RandomScriptsNeverCrashAndAreUndoneToTheFileOfBefore) {
    const char* wanted = std::getenv("ARROW_SCRIPTS");
    const int scripts = wanted ? std::atoi(wanted) : 1000;
    std::mt19937 random(20004);
    const auto upTo = [&](int most) { return std::uniform_int_distribution<int>(0, most)(random); };
    RotMatrix turned;
    mdlRMatrix_fromAngle(&turned, 0.7);
    mdlView_setRotation(5, &turned);
    mdlUndo_mark("arrows");
    for (int kind = 0; kind < 8; ++kind) {
        const double y = 15.0 * (kind - 4);
        draw({at(-40, y), at(-20, y + 5), at(0, y)}, kind, 1 + kind % 6, "abc\\nd", kind % 3 ? 0 : 0.5);
    }
    mdlUndo_mark(nullptr);
    const auto undo = [] {  // as far as the arrows were drawn
        char name[16] = "";
        return mdlUndo_getUndoName(name, sizeof name) == MDL_SUCCESS && std::strcmp(name, "arrows") != 0 &&
               mdlUndo_undo() == MDL_SUCCESS;
    };
    const auto before = fileContent();
    const auto anyPoint = [&] {
        const Point3d free = at(upTo(100) - 50, upTo(120) - 60);
        const auto arrow = std::next(before.begin(), upTo(static_cast<int>(before.size()) - 1));
        return upTo(3) == 0 ? free : pointOn(arrowAt(arrow->first).get(), random).value_or(free);
    };
    const auto act = [&](int action) {
        if (action < 3) {
            calls.headType = upTo(20);
            calls.leaderMode = upTo(4) == 0 ? upTo(3) : 0;
            calls.changeResult = upTo(3) == 0;
            const auto command = static_cast<size_t>(upTo(static_cast<int>(all.size())));
            command < all.size() ? all[command].start() : startPlacing();
        } else if (action < 13) {
            host::giveDataPoint(anyPoint(), upTo(7));
        } else if (action < 16) {
            host::moveCursor(anyPoint(), upTo(7));
        } else if (action < 18) {
            host::giveReset();
        } else {
            action == 18 ? undo() : mdlUndo_redo() == MDL_SUCCESS;
        }
    };
    int changed = 0;
    for (int script = 0; script < scripts; ++script) {
        calls.writes = 0;
        for (int i = 0; i < 40; ++i) act(upTo(19));
        changed += calls.writes != 0;
        mdlState_startDefaultCommand();
        EXPECT_EQ(mdlCurrTrans_end(), MDL_ERROR) << "a transform stays open";
        while (undo()) {
        }
        ASSERT_EQ(fileContent(), before) << "script " << script;
    }
    EXPECT_GT(changed, scripts / 2);
}

}  // namespace
