// The geometry of frames, against numbers worked out by hand.
#include "mclib/arrows/frames.h"

#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include "mclib/arrows/arrows.h"

using namespace mc::arrows;

namespace {

// A text of two lines, 8 wide, lines 2 high, 6 high as a block; the gap is 1: half a box is 5 by 4.
constexpr TextBlock block = {.width = 8, .lineHeight = 2, .height = 6, .just = 1, .lines = 2};

FrameRequest request(int kind, Point3d previous, int leaderMode = 0) {
    const Point3d anchor = {0, 0, 0};
    return {.frameKind = kind,
            .leaderMode = leaderMode,
            .withArrow = true,
            .anchor = anchor,
            .previous = previous,
            .cursor = {},
            .legAngle = std::atan2(anchor.y - previous.y, anchor.x - previous.x),
            .gap = 1,
            .text = block,
            .fixedSize = false,
            .radius = 3};
}

void expectPoint(const Point3d& found, double x, double y, const std::string& what) {
    EXPECT_NEAR(found.x, x, 1e-12) << what;
    EXPECT_NEAR(found.y, y, 1e-12) << what;
}

TEST(Frames, LeadersEndWhereEachFrameSays) {
    const double r = 6;                                           // half of 10, the block's diagonal, and the gap
    const double s = r * std::sqrt(2), t = 5 + 4 / std::sqrt(3);  // corners of diamond and hexagon
    struct Case {
        int kind;
        Point3d previous;
        int leaderMode;
        Point3d end;
        const char* what;
    };
    const Case cases[] = {
        {ARROW_FRAME_BOX_SIDE, {0, -20, 0}, 0, {0, -4, 0}, "side below"},
        {ARROW_FRAME_BOX_SIDE, {20, 1, 0}, 0, {5, 0, 0}, "side to the right"},
        {ARROW_FRAME_BOX_SIDE, {1, 20, 0}, 0, {0, 4, 0}, "side above"},
        {ARROW_FRAME_BOX_SIDE, {-20, -1, 0}, 0, {-5, 0, 0}, "side to the left"},
        {ARROW_FRAME_BOX_SIDE, {0, 0, 0}, 0, {0, -4, 0}, "below, before above, when both are as near"},
        {ARROW_FRAME_BOX_CORNER, {-9, -9, 0}, 0, {-5, -4, 0}, "lower left corner"},
        {ARROW_FRAME_BOX_CORNER, {0, 20, 0}, 0, {5, 4, 0}, "right corner from straight above"},
        {ARROW_FRAME_BOX_CORNER, {-20, 0, 0}, 0, {-5, 4, 0}, "upper corner from straight to the left"},
        {ARROW_FRAME_DIAMOND, {0, 20, 0}, 0, {0, s, 0}, "diamond, above"},
        {ARROW_FRAME_DIAMOND, {20, 19, 0}, 0, {s, 0, 0}, "diamond, right"},
        {ARROW_FRAME_DIAMOND, {-9, -9, 0}, 0, {-s, 0, 0}, "diamond, left before below"},
        {ARROW_FRAME_HEXAGON, {-20, 3, 0}, 0, {-t, 0, 0}, "hexagon, left"},
        {ARROW_FRAME_HEXAGON, {0, 20, 0}, 0, {t, 0, 0}, "hexagon, right on a tie"},
        {ARROW_FRAME_CIRCLE, {-30, -40, 0}, 0, {-3.6, -4.8, 0}, "circle, along the leg"},
        {ARROW_FRAME_CIRCLE, {-30, -40, 0}, ARROW_LEG_HORIZONTAL, {-r, 0, 0}, "circle, horizontal leg from the left"},
        {ARROW_FRAME_CIRCLE, {30, 0, 0}, ARROW_LEG_HORIZONTAL, {r, 0, 0}, "circle, horizontal leg from the right"},
        {ARROW_FRAME_CIRCLE, {0, -40, 0}, ARROW_LEG_VERTICAL, {0, -r, 0}, "circle, vertical leg from below"},
        {ARROW_FRAME_CIRCLE, {0, 40, 0}, ARROW_LEG_VERTICAL_2, {0, r, 0}, "circle, vertical leg from above"},
        {8, {9, 9, 0}, 0, {0, 0, 0}, "a kind that there isn't"},
        {-1, {9, 9, 0}, 0, {0, 0, 0}, "nor this"},
    };
    for (const Case& c : cases)
        expectPoint(makeFrame(request(c.kind, c.previous, c.leaderMode)).end, c.end.x, c.end.y, c.what);
}

TEST(Frames, OutlinesStandRoundTheText) {
    const double s = 6 * std::sqrt(2), t = 5 + 4 / std::sqrt(3);
    struct Case {
        int kind;
        Outline outline;
        std::vector<Point3d> points;
        Point3d origin;
        int just;
    };
    const std::vector<Point3d> box = {{-5, -4, 0}, {5, -4, 0}, {5, 4, 0}, {-5, 4, 0}, {-5, -4, 0}};
    const Case cases[] = {
        {ARROW_FRAME_BOX_SIDE, Outline::shape, box, {-4, 0, 0}, 1},
        {ARROW_FRAME_BOX_CORNER, Outline::shape, box, {-4, 0, 0}, 1},
        {ARROW_FRAME_DIAMOND, Outline::shape, {{-s, 0, 0}, {0, -s, 0}, {s, 0, 0}, {0, s, 0}, {-s, 0, 0}}, {0, 0, 0}, 7},
        {ARROW_FRAME_HEXAGON,
         Outline::shape,
         {{-t, 0, 0}, {-5, -4, 0}, {5, -4, 0}, {t, 0, 0}, {5, 4, 0}, {-5, 4, 0}, {-t, 0, 0}},
         {-4, 0, 0},
         1},
        {ARROW_FRAME_CIRCLE, Outline::circle, {{0, 0, 0}}, {0, 0, 0}, 7},
    };
    for (const Case& c : cases) {
        const std::string what = "kind " + std::to_string(c.kind);
        const Frame frame = makeFrame(request(c.kind, {20, 20, 0}));
        EXPECT_EQ(frame.outline, c.outline) << what;
        ASSERT_EQ(static_cast<size_t>(frame.count), c.points.size()) << what;
        for (size_t i = 0; i < c.points.size(); ++i)
            expectPoint(frame.points[i], c.points[i].x, c.points[i].y, what + ", point " + std::to_string(i));
        expectPoint(frame.textOrigin, c.origin.x, c.origin.y, what + ", text");
        EXPECT_EQ(frame.just, c.just) << what;
        EXPECT_TRUE(frame.hasText) << what;
    }
    EXPECT_FALSE(makeFrame(request(8, {9, 9, 0})).hasText);
    EXPECT_FALSE(makeFrame(request(-1, {9, 9, 0})).hasText);
}

TEST(Frames, AFixedSizeHoldsForCircleAndDiamondAlone) {
    FrameRequest asked = request(ARROW_FRAME_CIRCLE, {20, 0, 0}, ARROW_LEG_HORIZONTAL);
    asked.fixedSize = true;
    expectPoint(makeFrame(asked).end, 3, 0, "circle");
    asked.frameKind = ARROW_FRAME_DIAMOND;
    expectPoint(makeFrame(asked).end, 3 * std::sqrt(2), 0, "diamond");
    asked.frameKind = ARROW_FRAME_BOX_SIDE;
    expectPoint(makeFrame(asked).end, 5, 0, "box");
}

// Text of one line, 8 by 2, gap 1. Without a frame half a gap more is left at both ends of the line.
TEST(Frames, TextStandsBesideTheLeaderAsItIsJustified) {
    struct Case {
        int kind, just, leaderMode;
        double previousX;
        double start, finish;  // of the underline
        Point3d origin;
        double endX;
        int textJust;
        const char* what;
    };
    const Case cases[] = {
        {1, 2, 0, -20, 0, 10, {1, 1, 0}, 0, 2, "left, base, from the left"},
        {1, 2, 0, 20, 0, 10, {1, 1, 0}, 10, 2, "left, base, from the right"},
        {1, 1, 0, -20, 0, 10, {1, 2, 0}, 0, 1, "left, centre"},
        {1, 0, 0, -20, 0, 10, {1, 3, 0}, 0, 0, "left, top"},
        {1, 3, 0, -20, 0, 10, {1, 3, 0}, 0, 3, "left margin"},
        {5, 8, 0, 20, -5, 5, {0, 1, 0}, 5, 8, "centred, from the right"},
        {5, 7, 0, 0, -5, 5, {0, 2, 0}, -5, 7, "centred, the start on a tie"},
        {1, 14, 0, 20, -10, 0, {-1, 1, 0}, 0, 14, "right, from the right"},
        {1, 12, 0, -20, -10, 0, {-1, 3, 0}, -10, 12, "right, top, from the left"},
        {1, 9, 0, -20, -10, 0, {-1, 3, 0}, -10, 9, "right margin"},
        {0, 2, 0, -20, 0, 11, {1.5, -1, 0}, 0, 2, "no frame: the line's middle at the leader's end"},
        {0, 1, 0, -20, 0, 11, {1.5, 0, 0}, 0, 1, "no frame, centre"},
        {0, 0, 0, 20, 0, 11, {1.5, 1, 0}, 11, 0, "no frame, top"},
        {0, 14, 0, 20, -11, 0, {-1.5, -1, 0}, 0, 14, "no frame, right"},
        {1, 8, 1, 0, 0, -10, {-9, 2, 0}, 0, 1, "vertical leg, cursor not beyond it: to the left"},
        {1, 8, 2, 0, -5, 5, {0, 1, 0}, -5, 8, "horizontal leg: as justified"},
    };
    for (const Case& c : cases) {
        FrameRequest asked = request(c.kind, {c.previousX, 0, 0}, c.leaderMode);
        asked.text = {.width = 8, .lineHeight = 2, .height = 2, .just = c.just, .lines = 1};
        const Frame frame = makeFrame(asked);
        ASSERT_TRUE(frame.hasUnderline) << c.what;
        EXPECT_EQ(frame.outline, c.kind == 0 ? Outline::none : Outline::line) << c.what;
        EXPECT_NEAR(frame.underlineX[0], c.start, 1e-12) << c.what;
        EXPECT_NEAR(frame.underlineX[1], c.finish, 1e-12) << c.what;
        expectPoint(frame.textOrigin, c.origin.x, c.origin.y, c.what);
        expectPoint(frame.end, c.endX, 0, c.what);
        EXPECT_EQ(frame.just, c.textJust) << c.what;
    }
}

TEST(Frames, WithAVerticalLegTheTextGoesToTheCursorsSide) {
    FrameRequest asked = request(ARROW_FRAME_UNDERLINE_FIRST, {-3, -20, 0}, ARROW_LEG_VERTICAL);
    asked.anchor = {-3, 0, 0};  // over the tip; the cursor is to the right of it
    const Frame right = makeFrame(asked);
    EXPECT_EQ(right.underlineX[1], 7);
    expectPoint(right.textOrigin, -2, 2, "right");
    asked.anchor = asked.previous = {3, 0, 0};
    const Frame left = makeFrame(asked);
    EXPECT_EQ(left.underlineX[1], -7);
    expectPoint(left.textOrigin, -6, 2, "left");
}

TEST(Frames, ATextWithoutLeaderStandsWhereItsPointIs) {
    for (const int kind : {ARROW_FRAME_NONE, ARROW_FRAME_UNDERLINE_FIRST, ARROW_FRAME_UNDERLINE_LAST}) {
        FrameRequest asked = request(kind, {20, 0, 0});
        asked.withArrow = false;
        asked.text.just = 14;
        expectPoint(makeFrame(asked).textOrigin, 0, 0, "free");
        EXPECT_EQ(makeFrame(asked).just, 14);
        EXPECT_EQ(makeFrame(asked).outline, Outline::none);
        asked.leaderMode = ARROW_LEG_VERTICAL;
        expectPoint(makeFrame(asked).textOrigin, -10, 0, "vertical");
    }
}

TEST(Frames, TheFirstLegIsStraightOrLeadsBesideACornerFrame) {
    struct Case {
        int leaderMode, kind;
        Point3d second, fitted;
    };
    const Case cases[] = {
        {0, 2, {3, 4, 0}, {3, 4, 0}},   {1, 2, {3, 4, 0}, {0, 4, 0}}, {3, 2, {3, 4, 0}, {0, 4, 0}},
        {2, 2, {3, 4, 0}, {3, 0, 0}},   {4, 2, {3, 4, 0}, {3, 4, 0}}, {1, 3, {3, 4, 0}, {5, 4, 0}},
        {3, 3, {-3, 4, 0}, {-5, 4, 0}}, {1, 3, {0, 4, 0}, {0, 4, 0}}, {2, 3, {3, 4, 0}, {3, 4, 0}},
        {2, 3, {3, -1, 0}, {3, -4, 0}}, {2, 3, {3, 0, 0}, {3, 0, 0}},
    };
    for (const Case& c : cases)
        expectPoint(fittedFirstLeg({0, 0, 0}, c.second, c.leaderMode, c.kind, 1, block), c.fitted.x, c.fitted.y,
                    "mode " + std::to_string(c.leaderMode) + ", kind " + std::to_string(c.kind));
}

TEST(Frames, LinesStandAroundOrUnderOrOverTheirOrigin) {
    EXPECT_EQ(riseOfFirstLine(ARROW_FRAME_UNDERLINE_FIRST, 3, 4), 0);
    EXPECT_EQ(riseOfFirstLine(ARROW_FRAME_UNDERLINE_LAST, 3, 4), 8);
    for (const int kind : {0, 2, 3, 4, 6, 7}) EXPECT_EQ(riseOfFirstLine(kind, 3, 4), 4) << kind;
    EXPECT_EQ(riseOfFirstLine(ARROW_FRAME_CIRCLE, 1, 4), 0);
}

}  // namespace
