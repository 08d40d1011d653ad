#include "mchost/mdl/level.h"
#include "mchost/mdl/model.h"
#include "tests/mchost/element/fixture.h"
#include "tests/support/session_fixture.h"

namespace {

const Point3d ends[] = {{0, 0, 0}, {1, 1, 0}};

class StyledElements : public SessionTest {
  protected:
    void SetUp() override {
        ASSERT_EQ(mdlSystem_createDesignFile(path("styles.mcd").c_str(), 0), MDL_SUCCESS);
        ASSERT_EQ(mdlSystem_newDesignFile(path("styles.mcd").c_str(), 0), MDL_SUCCESS);
        const double pattern[] = {2, 1};
        ASSERT_EQ(mdlLineStyle_define(&number, mdlModelRef_getActive(), "fence", pattern, 2), MDL_SUCCESS);
        mdlLine_create(e, nullptr, ends);
    }
    int32_t style() const { return e.get()->head.style; }

    TestElement e;
    int32_t number = 0;
    const LineStyleParams wide{LINE_STYLE_SCALE | LINE_STYLE_START_WIDTH, 2.5, 0.1, 0.2, 1, 1};
};

TEST_F(StyledElements, ModifiersStayWithTheNamedStyle) {
    LineStyleParams back{};
    ASSERT_EQ(mdlElement_setLineStyle(e, "fence", &wide), MDL_SUCCESS);
    EXPECT_EQ(style(), number);
    ASSERT_EQ(mdlElement_getLineStyleParams(&back, e), MDL_SUCCESS);
    EXPECT_EQ(back.modifiers, wide.modifiers);
    EXPECT_EQ(back.endWidth, 0.2);
    ASSERT_EQ(mdlElement_setLineStyle(e, "fence", &wide), MDL_SUCCESS);
    EXPECT_EQ(mdlElement_bytes(e), 32u + 48u + 32u) << "set again they stand once";

    ASSERT_EQ(mdlLineString_create(e, e, ends, 2), MDL_SUCCESS);
    EXPECT_EQ(mdlElement_getLineStyleParams(&back, e), MDL_SUCCESS) << "a template gives them on";
    ASSERT_EQ(mdlElement_setSymbology(e, nullptr, nullptr, &number), MDL_SUCCESS);
    EXPECT_EQ(mdlElement_getLineStyleParams(&back, e), MDL_SUCCESS) << "the style is the same";
    const int32_t dashed = 2;
    mdlElement_setSymbology(e, nullptr, nullptr, &dashed);
    EXPECT_EQ(mdlElement_getLineStyleParams(&back, e), MDL_ERROR);
}

TEST_F(StyledElements, ScalesOfDashesAndGapsFallBackOnThatOfThePattern) {
    LineStyleParams told{};
    int32_t style = 0;
    EXPECT_EQ(mdlElement_getLineStyle(&style, &told, e), MDL_ERROR) << "a built-in one";
    EXPECT_EQ(mdlElement_setLineStyle(e, nullptr, &wide), MDL_ERROR);
    ASSERT_EQ(mdlElement_setLineStyle(e, "fence", nullptr), MDL_SUCCESS);
    ASSERT_EQ(mdlElement_getLineStyle(&style, &told, e), MDL_SUCCESS);
    EXPECT_EQ(std::tuple(style, told.modifiers, told.scale, told.dashScale, told.gapScale),
              std::tuple(number, 0u, 1.0, 1.0, 1.0));
    LineStyleParams params = wide;
    params.modifiers |= LINE_STYLE_GAP_SCALE;
    params.gapScale = 7;
    ASSERT_EQ(mdlElement_setLineStyle(e, nullptr, &params), MDL_SUCCESS);
    EXPECT_EQ(mdlElement_bytes(e), 32u + 48u + 48u);
    ASSERT_EQ(mdlLineString_create(e, e, ends, 2), MDL_SUCCESS);
    ASSERT_EQ(mdlElement_getLineStyle(&style, &told, e), MDL_SUCCESS);
    EXPECT_EQ(std::tuple(style, told.modifiers, told.scale, told.dashScale, told.gapScale, told.endWidth),
              std::tuple(number, 0x0Fu, 2.5, 2.5, 7.0, 0.2));
}

TEST_F(StyledElements, UnknownStyleLeavesTheElement) {
    const int32_t before = style();
    EXPECT_EQ(mdlElement_setLineStyle(e, "hedge", &wide), MDL_ERROR);
    EXPECT_EQ(style(), before);
    EXPECT_EQ(mdlElement_bytes(e), 32u + 48u);
}

TEST_F(StyledElements, NewElementsTakeTheActiveSettings) {
    const int32_t color = 5, weight = 4, active = 3, level = 9;
    mdlParams_setActive(&color, MDL_PARAM_COLOR);
    mdlParams_setActive(&weight, MDL_PARAM_WEIGHT);
    mdlParams_setActive(&active, MDL_PARAM_STYLE);
    mdlParams_setActive(&level, MDL_PARAM_LEVEL);
    ASSERT_EQ(mdlLine_create(e, nullptr, ends), MDL_SUCCESS);
    EXPECT_EQ(e.get()->head.color, color);
    EXPECT_EQ(e.get()->head.weight, weight);
    EXPECT_EQ(style(), active);
    EXPECT_EQ(e.get()->head.level, 9u);
}

TEST_F(StyledElements, SystemsLeftOpenEndWithTheirApplication) {
    MdlDesc* careless = application("careless");
    asApplication("careless", [] {
        mdlCurrTrans_begin();
        mdlCurrTrans_masterUnitsIdentity();
        const Transform* toWorld;
        mdlCurrTrans_getAddresses(&toWorld, nullptr);
        EXPECT_EQ(toWorld->form[0][0], mdlModelRef_getUorPerMaster(nullptr));
    });
    session().endApplication(careless);
    EXPECT_EQ(mdlCurrTrans_end(), MDL_ERROR);
}

}  // namespace
