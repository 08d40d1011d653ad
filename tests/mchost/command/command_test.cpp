#include "mchost/command/command.h"

#include <gmock/gmock.h>

#include "mchost/command/input.h"
#include "mchost/mdl/fence.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/state.h"
#include "mchost/mdl/system.h"
#include "mchost/mdl/transform.h"
#include "mchost/mdl/view.h"
#include "mchost/session/keyin.h"
#include "tests/support/session_fixture.h"

namespace {

using testing::ElementsAre;

// What the functions of the command under test were given.
struct Given {
    std::vector<double> points;  // x of each data point
    std::vector<MdlDesc*> applications;
    int resets = 0, restarts = 0;
    bool endsAtPoint = false;
};
Given given;

void takePoint(Point3d* point, int32_t) {
    given.points.push_back(point->x);
    given.applications.push_back(mdlSystem_getCurrMdlDesc());
    if (given.endsAtPoint) mdlState_startDefaultCommand();
}

void takeReset() {
    ++given.resets;
}

void restart() {
    ++given.restarts;
    mdlState_startPrimitive(takePoint, restart, 0, 0);
}

// A line from the origin to the cursor.
void showLine(Point3d* point, int32_t, int32_t drawMode) {
    const Point3d ends[] = {{0, 0, 0}, *point};
    mdlLine_create(dgnBufP, nullptr, ends);
    mdlElement_display(dgnBufP, drawMode);
    mdlElement_display(dgnBufP, MDL_DRAW);
}

class CommandTest : public SessionTest {
  protected:
    CommandTest() { given = {}; }

    void start(const char* name = "first") {
        asApplication(name, [] { return mdlState_startPrimitive(takePoint, restart, 0, 0); });
    }
    void openFile(const char* name) {
        ASSERT_EQ(mdlSystem_createDesignFile(path(name).c_str(), 0), MDL_SUCCESS);
        ASSERT_EQ(mdlSystem_newDesignFile(path(name).c_str(), 0), MDL_SUCCESS);
    }
};

TEST_F(CommandTest, PointsGoToTheApplicationThatStartedTheCommand) {
    start();
    application("second");
    EXPECT_TRUE(host::giveDataPoint({7, 8, 0}, 3));
    EXPECT_THAT(given.points, ElementsAre(7));
    EXPECT_THAT(given.applications, ElementsAre(application("first")));
    EXPECT_EQ(statedataP->point.x, 7);
    EXPECT_EQ(statedataP->view, 3);
}

TEST_F(CommandTest, NothingIsTakenOutsideOfACommand) {
    EXPECT_FALSE(host::giveDataPoint({1, 1, 0}, 0));
    EXPECT_FALSE(host::giveReset());
    EXPECT_EQ(mdlState_setFunction(MDL_STATE_RESET, takeReset), MDL_ERROR);
    start();
    EXPECT_FALSE(host::giveDataPoint({1, 1, 0}, 8));
    EXPECT_FALSE(host::giveDataPoint({1, 1, 0}, -1));
    EXPECT_EQ(mdlState_setFunction(3, takeReset), MDL_ERROR);
    EXPECT_TRUE(given.points.empty());
}

TEST_F(CommandTest, AnotherCommandTakesThePlaceOfTheOneThatRuns) {
    start();
    mdlState_setFunction(MDL_STATE_RESET, takeReset);
    const uint64_t first = host::commandSerial();
    start("second");
    EXPECT_NE(host::commandSerial(), first);
    EXPECT_TRUE(host::giveReset()) << "which ends it: it has no reset function of its own";
    EXPECT_EQ(given.resets, 0);
    EXPECT_FALSE(host::commandRuns());
}

TEST_F(CommandTest, ARestartCallsItsFunctionAndEndsACommandThatHasNone) {
    start();
    EXPECT_EQ(mdlState_restartCurrentCommand(), MDL_SUCCESS);
    EXPECT_EQ(given.restarts, 1);
    EXPECT_TRUE(host::commandRuns());
    mdlState_startPrimitive(takePoint, nullptr, 0, 0);
    mdlState_restartCurrentCommand();
    EXPECT_FALSE(host::commandRuns());
}

TEST_F(CommandTest, DynamicsAreSeenUntilTheCursorMovesAgain) {
    start();
    mdlState_setFunction(MDL_STATE_DYNAMICS, reinterpret_cast<MdlStateFunction>(showLine));
    for (const double x : {5.0, 9.0}) {
        host::moveCursor({x, 0, 0}, 0);
        ASSERT_EQ(host::dynamicElements().size(), 1u) << "what is drawn in another mode isn't dynamics";
        Range3d range;
        mdlElmdscr_computeRange(&range.low, &range.high, host::dynamicElements()[0].get(), nullptr);
        EXPECT_EQ(range.high.x, x);
    }
    host::giveDataPoint({1, 0, 0}, 0);
    EXPECT_TRUE(host::dynamicElements().empty());
    host::moveCursor({3, 0, 0}, 0);
    mdlState_setFunction(MDL_STATE_DYNAMICS, nullptr);
    host::moveCursor({4, 0, 0}, 0);
    EXPECT_TRUE(host::dynamicElements().empty());
}

TEST_F(CommandTest, TheCommandEndsWithItsApplicationAndWithItsDesignFile) {
    start();
    mdlOutput_prompt("Point");
    session().endApplication(application("first"));
    EXPECT_FALSE(host::commandRuns());
    EXPECT_EQ(front().field(2), "");
    openFile("a.mcd");
    start("second");
    EXPECT_TRUE(host::commandRuns());
    openFile("b.mcd");
    EXPECT_FALSE(host::commandRuns());
}

TEST(CommandInput, LinesAreReadAsPointsAndResets) {
    using Kind = host::CommandInput::Kind;
    const struct {
        const char* line;
        std::optional<Kind> kind;
        Point3d point;
        int32_t view;
    } cases[] = {
        {"10,20", Kind::point, {10, 20, 0}, 0},
        {" -1.5 , 2e3 , 7  3 ", Kind::point, {-1.5, 2000, 7}, 2},
        {"1,2 8", Kind::point, {1, 2, 0}, 7},
        {"", Kind::reset, {}, 0},
        {"r", Kind::reset, {}, 0},
        {"reset\r", Kind::reset, {}, 0},
        {"end", Kind::end, {}, 0},
        {"1", {}, {}, 0},
        {"1,2,", {}, {}, 0},
        {"1,2 9", {}, {}, 0},
        {"1,2 0", {}, {}, 0},
        {"1,2 3 4", {}, {}, 0},
        {"1,inf", {}, {}, 0},
        {"x,y", {}, {}, 0},
    };
    for (const auto& c : cases) {
        const auto input = host::commandInputIn(c.line);
        ASSERT_EQ(input.has_value(), c.kind.has_value()) << c.line;
        if (!input) continue;
        EXPECT_EQ(input->kind, *c.kind) << c.line;
        EXPECT_EQ(input->point.x, c.point.x) << c.line;
        EXPECT_EQ(input->point.z, c.point.z) << c.line;
        EXPECT_EQ(input->view, c.view) << c.line;
    }
}

class ServedCommand : public CommandTest {
  protected:
    ServedCommand() {
        mdlState_startPrimitive(takePoint, restart, 0, 0);
        mdlOutput_prompt("Gi punkt \xe5");
    }
};

TEST_F(ServedCommand, KeyInsComeBeforeTheEventsOfTheUser) {
    mdlInput_sendKeyin("xy=3,4", 0, -1, nullptr);
    mdlInput_sendKeyin("fit view", 0, -1, nullptr);
    front().events = {host::DataPoint{{5, 6, 0}, 0}, host::DataPoint{{6, 6, 0}, 8}, host::KeyIn{"xy=7,8", false, ""},
                      host::Reset{}, host::Reset{}};
    EXPECT_TRUE(host::serveCommands()) << "the reset ended it";
    EXPECT_THAT(given.points, ElementsAre(3, 5, 7)) << "there is no design file, so a master unit is one UOR";
    EXPECT_THAT(front().seen, ElementsAre("refused")) << "there is no view 9";
    EXPECT_EQ(front().events.size(), 1u);
    EXPECT_EQ(front().prompts[0], "Gi punkt \xc3\xa5");
    ASSERT_EQ(host::keyInQueue().size(), 1u);
    EXPECT_EQ(host::keyInQueue()[0].text, "fit view");
}

TEST_F(ServedCommand, ACommandThatNobodyAnswersIsResetAndEnded) {
    mdlState_setFunction(MDL_STATE_RESET, takeReset);
    front().events = {host::DataPoint{{1, 1, 0}, 0}};
    EXPECT_FALSE(host::serveCommands());
    EXPECT_EQ(given.resets, 1);
    EXPECT_FALSE(host::commandRuns());
}

TEST_F(ServedCommand, ItIsOverWhenThePointEndsTheCommand) {
    given.endsAtPoint = true;
    front().events = {host::DataPoint{{1, 1, 0}, 0}, host::DataPoint{{2, 2, 0}, 0}};
    EXPECT_TRUE(host::serveCommands());
    EXPECT_THAT(given.points, ElementsAre(1));
}

TEST_F(ServedCommand, TheUserMayLeaveAtAnyTime) {
    front().events = {host::Quit{}};
    EXPECT_TRUE(host::serve());
    EXPECT_FALSE(host::commandRuns());
}

class FenceTest : public CommandTest {
  protected:
    int fenceFrom(int32_t width) {
        const Point3d corners[] = {{0, 0, 0}, {double(width), 0, 0}, {double(width), 10, 0}, {0, 10, 0}};
        mdlShape_create(dgnBufP, nullptr, corners, 4, 0);
        return mdlFence_fromShape(dgnBufP);
    }
};

TEST_F(FenceTest, ThereIsOneInAnOpenDesignFileAndItGoesWithIt) {
    EXPECT_EQ(fenceFrom(10), MDL_ERROR);
    openFile("a.mcd");
    EXPECT_EQ(fenceFrom(10), MDL_SUCCESS);
    EXPECT_EQ(mdlFence_isActive(), 1);
    const Point3d ends[] = {{0, 0, 0}, {1, 1, 0}};
    mdlLine_create(dgnBufP, nullptr, ends);
    EXPECT_EQ(mdlFence_fromShape(dgnBufP), MDL_ERROR) << "a line is no shape";
    EXPECT_EQ(mdlFence_isActive(), 1) << "the fence before is still there";
    openFile("b.mcd");
    EXPECT_EQ(mdlFence_isActive(), 0);
    EXPECT_EQ(mdlFence_clear(0), MDL_ERROR);
    EXPECT_EQ(fenceFrom(10), MDL_SUCCESS);
    EXPECT_EQ(mdlFence_clear(0), MDL_SUCCESS);
    EXPECT_EQ(mdlFence_isActive(), 0);
    EXPECT_EQ(mdlFence_setView(8), MDL_ERROR);
}

TEST_F(CommandTest, ASystemTurnedToAViewHasItsAxes) {
    RotMatrix quarter;
    mdlRMatrix_fromAngle(&quarter, *fc_piover2P);
    ASSERT_EQ(mdlView_setRotation(2, &quarter), MDL_SUCCESS);
    mdlCurrTrans_begin();
    EXPECT_EQ(mdlCurrTrans_rotateByView(2), MDL_SUCCESS);
    Point3d right{1, 0, 0};
    mdlCurrTrans_transformPointArray(&right, &right, 1);
    EXPECT_NEAR(right.x, 0, 1e-12);
    EXPECT_NEAR(right.y, -1, 1e-12) << "the view sees the model's y to its left";
    mdlCurrTrans_invtransPointArray(&right, &right, 1);
    EXPECT_NEAR(right.x, 1, 1e-12);
    EXPECT_EQ(mdlCurrTrans_rotateByView(9), MDL_ERROR);
    mdlCurrTrans_end();
}

}  // namespace
