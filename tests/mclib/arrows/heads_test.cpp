// Heads by type, against numbers worked out by hand.
#include "tests/mclib/arrows/fixture.h"

using namespace arrowtest;

namespace {

class Heads : public ArrowTest {
  protected:
    static Words head(int type, double angle = 0, double scale = 2) {
        constexpr int view = 0;
        const Point3d tip = at(10, 20);
        mdl::Descr made;
        mclibArrow_createArrowHead(made.out(), &tip, view, angle, type, scale, headAttr, 4);
        EXPECT_EQ(mdlCurrTrans_end(), MDL_ERROR) << "a transform stays open";
        return wordsOf(made.get());
    }
};

// Size 4 at scale 2: 2 long.
TEST_F(Heads, EachTypeHasItsShape) {
    const Point3d ends[] = {at(0, 0), at(1, 0)};
    mclibArrow_drawTextArrow(ends, 2, textAttr, lineAttr, headAttr, 1, 0, "", nullptr, 0, 1, 0, 0);  // gives width 1
    const Words cases[] = {
        {},
        {"line 10,20 12,21", "line 10,20 12,19"},
        {"shape 10,20 12,19 12,21 10,20"},
        {"shape 10,20 12,19 12,21 10,20 filled"},
        {"line 10,20 12,20.5", "line 10,20 12,19.5"},
        {"shape 10,20 12,19.5 12,20.5 10,20"},
        {"shape 10,20 12,19.5 12,20.5 10,20 filled"},
        {"line 10,20 12,21", "line 10,20 12,19"},
        {"shape 10,20 12,19 12,21 10,20"},
        {"shape 10,20 12,19 12,21 10,20 filled"},
        {"circle 10,20 r1"},
        {"line 9,19 11,21", "line 9,21 11,19"},
        {"line 9,19 11,21"},
        {"shape 9,19 11,19 11,21 9,21 9,19 filled"},
        {"shape 9,19 11,19 10,21 9,19 filled"},
        {"circle 10,20 r1 filled"},
        {"arc 9.5,20.5 r0.7 from-0.25 by0.5", "arc 10.5,19.5 r0.7 from0.75 by0.5"},
        {"line 10,20 12,22", "line 10,20 12,18"},
        {"shape 10,20 12,18 12,22 10,20"},
        {"shape 10,20 12,18 12,22 10,20 filled"},
        {},
    };
    for (size_t type = 0; type < std::size(cases); ++type) EXPECT_EQ(head(static_cast<int>(type)), cases[type]) << type;
    EXPECT_EQ(head(-1), Words{});
    // The width isn't divided by the scale.
    EXPECT_EQ(head(8, 0, 1), Words{"shape 10,20 14,19 14,21 10,20"});
}

TEST_F(Heads, TheyTurnWithTheLeaderUnlessTheyLieSquare) {
    const double quarter = M_PI / 2;
    EXPECT_EQ(head(1, quarter), (Words{"line 10,20 9,22", "line 10,20 11,22"}));
    EXPECT_EQ(head(16, quarter), (Words{"arc 9.5,19.5 r0.7 from0.25 by0.5", "arc 10.5,20.5 r0.7 from-0.75 by0.5"}));
    for (int type = 10; type <= 15; ++type) EXPECT_EQ(head(type, quarter), head(type)) << type;
}

TEST_F(Heads, ALengthThatIsNoneGivesNone) {
    for (int type = 1; type <= 19; ++type) EXPECT_EQ(head(type, 0, 0), Words{}) << type;
    mclibArrow_createArrowHead(nullptr, nullptr, 0, 0, 1, 1, headAttr, 1);
}

TEST_F(Heads, TheirElementsHaveTheAttribute) {
    const Point3d tip = at(0, 0);
    for (const int type : {1, 3, 11, 16}) {
        mdl::Descr made;
        mclibArrow_createArrowHead(made.out(), &tip, 0, 0, type, 1, headAttr, 1);
        for (const ElementDescr* node = made.get(); node; node = node->next)
            EXPECT_EQ(node->element->head.color, headAttr) << type;
    }
}

}  // namespace
