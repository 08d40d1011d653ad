#include <cstring>
#include <string>

#include "tests/mchost/element/fixture.h"

namespace {

constexpr TextSize tenHigh{1, 10, 10, 1};

TextParams justified(int32_t just) {
    TextParams params{};
    params.just = just;
    params.textStyle = params.styleFields = -1;
    return params;
}

TEST(Texts, BoxLiesWhereTheJustificationPutsIt) {
    // "000" at a width of 10: 3 * 556 / 1000 * 1.3 * 10
    constexpr double width = 3 * 0.556 * 1.3 * 10;
    struct Case {
        int32_t just;
        double left, bottom;
    };
    for (const Case& c : {Case{0, 0, -10}, Case{1, 0, -5}, Case{2, 0, 0}, Case{5, 0, 0}, Case{6, -width / 2, -10},
                          Case{7, -width / 2, -5}, Case{8, -width / 2, 0}, Case{9, -width, -10}, Case{11, -width, 0},
                          Case{13, -width, -5}, Case{14, -width, 0}, Case{-1, 0, 0}}) {
        SCOPED_TRACE(c.just);
        TestElement e;
        const TextParams params = justified(c.just);
        const Point3d origin{100, 200, 0};
        ASSERT_EQ(mdlText_createWide(e, nullptr, L"000", &origin, nullptr, &tenHigh, &params, 0), MDL_SUCCESS);
        Point3d shape[5];
        ASSERT_EQ(mdlText_extractShape(shape, nullptr, e, 0, 0), MDL_SUCCESS);
        expectNear(shape[0], {100 + c.left, 200 + c.bottom, 0}, 1e-9);
        expectNear(shape[2], {100 + c.left + width, 200 + c.bottom + 10, 0}, 1e-9);
        expectNear(shape[4], shape[0], 0);
    }
}

TEST(Texts, ValuesComeBackInEverySystem) {
    for (int kind = 0; kind < TestSystem::kinds; ++kind) {
        SCOPED_TRACE(kind);
        TestSystem system(kind);
        TestElement e;
        const TextSize size{1, 3, 2.5, 1};
        TextParams params = justified(7);
        params.font = 4, params.flags = TEXT_FLAG_SLANT, params.slant = 0.25, params.lineSpacing = 1.5;
        const Point3d origin{5, 6, 0};
        RotMatrix turned;
        mdlRMatrix_fromAngle(&turned, 0.4);
        ASSERT_EQ(mdlText_createWide(e, nullptr, L"Km 1 \u00d8\u20ac", &origin, &turned, &size, &params, 0),
                  MDL_SUCCESS);
        Point3d lowerLeft, found;
        double width, height, textHeight, charWidth;
        char text[256];
        RotMatrix rotation;
        TextParams back;
        int32_t just;
        ASSERT_EQ(mdlText_extract(&lowerLeft, &found, &width, &height, text, &rotation, &back, &just, &textHeight,
                                  &charWidth, e),
                  MDL_SUCCESS);
        expectNear(found, origin, 1e-9);
        EXPECT_STREQ(text, "Km 1 \xd8\x80");
        EXPECT_NEAR(textHeight, 2.5, 1e-9);
        EXPECT_NEAR(charWidth, 3, 1e-9);
        EXPECT_NEAR(rotation.form[1][0], std::sin(0.4), 1e-9);
        EXPECT_EQ(just, 7);
        EXPECT_EQ(back.font, 4);
        EXPECT_NEAR(back.slant, 0.25, 0);
        EXPECT_NEAR(back.lineSpacing, 1.5, 1e-9);
        Point3d shape[5];
        mdlText_extractShape(shape, nullptr, e, 0, 0);
        EXPECT_NEAR(mdlVec_distance(&shape[0], &shape[1]), width, 1e-9);
        EXPECT_NEAR(mdlVec_distance(&shape[1], &shape[2]), height, 1e-9);
    }
}

TEST(Texts, WithoutASizeTheActiveOneInUorCounts) {
    double uor = 0;
    ASSERT_EQ(mdlParams_getActive(&uor, MDL_PARAM_TEXT_SIZE), MDL_SUCCESS);
    TestSystem system(1);
    TestElement e;
    ASSERT_EQ(mdlText_createWide(e, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 0), MDL_SUCCESS);
    double height = 0;
    char text[256] = "x";
    mdlText_extract(nullptr, nullptr, nullptr, nullptr, text, nullptr, nullptr, nullptr, &height, nullptr, e);
    EXPECT_NEAR(height, uor / 25, 1e-9);
    EXPECT_STREQ(text, "");
}

TEST(Texts, RefuseTooManyCharactersAndBadSizes) {
    TestElement e;
    const std::wstring full(255, L'x'), over(256, L'x');
    EXPECT_EQ(mdlText_createWide(e, nullptr, over.c_str(), nullptr, nullptr, &tenHigh, nullptr, 0), MDL_ERROR);
    for (const TextSize& size : {TextSize{1, 0, 1, 1}, TextSize{1, 1, -1, 1}, TextSize{1, NAN, 1, 1}})
        EXPECT_EQ(mdlText_createWide(e, nullptr, L"a", nullptr, nullptr, &size, nullptr, 0), MDL_ERROR);
    EXPECT_EQ(mdlElement_bytes(e), 0u);
    ASSERT_EQ(mdlText_createWide(e, nullptr, full.c_str(), nullptr, nullptr, &tenHigh, nullptr, 0), MDL_SUCCESS);
    char text[256];
    mdlText_extract(nullptr, nullptr, nullptr, nullptr, text, nullptr, nullptr, nullptr, nullptr, nullptr, e);
    EXPECT_EQ(std::strlen(text), 255u);
}

TEST(CodePage, CutTextsSaySoAndStayWithinTheBuffer) {
    wchar_t wide[4];
    EXPECT_EQ(mdlCnv_convertMultibyteToUnicode("\x80"
                                               "bc",
                                               -1, wide, 4),
              MDL_SUCCESS);
    EXPECT_EQ(std::wstring(wide),
              L"\u20ac"
              L"bc");
    EXPECT_EQ(mdlCnv_convertMultibyteToUnicode("abcd", -1, wide, 4), MDL_ERROR);
    EXPECT_EQ(std::wstring(wide), L"abc");
    EXPECT_EQ(mdlCnv_convertMultibyteToUnicode("abcd", 2, wide, 4), MDL_SUCCESS);
    char text[8];
    EXPECT_EQ(mdlCnv_convertUnicodeToMultibyte(L"\u0416\u00e6\u2013", -1, text, 8), MDL_SUCCESS);
    EXPECT_STREQ(text, "?\xe6\x96");
    EXPECT_EQ(mdlCnv_convertUnicodeToMultibyte(L"a", -1, text, 0), MDL_ERROR);
}

}  // namespace
