// Tags as texts.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "mchost/mdl/element.h"
#include "mchost/mdl/tag.h"
#include "mchost/mdl/transform.h"
#include "mclib/design/merge.h"
#include "tests/support/library_fixture.h"

namespace {

class TagText : public LibraryTest {
  protected:
    static MdlTagValue string(const char* text) {
        MdlTagValue value{};
        value.type = MDL_TAG_STRING;
        std::strcpy(value.string, text);
        return value;
    }
    static MdlTagValue number(int32_t type, double of) {
        MdlTagValue value{};
        value.type = type;
        value.shortValue = static_cast<int16_t>(type == MDL_TAG_SHORT ? of : 0);
        value.longValue = static_cast<int32_t>(type == MDL_TAG_LONG ? of : 0);
        value.doubleValue = type == MDL_TAG_DOUBLE ? of : 0;
        return value;
    }
    static void makeTag(MSElementBuffer* tag, const MdlTagValue& value, int32_t display = 1) {
        const Point3d origin = {100, 200, 0};
        const TextSize size = {1, 20, 30, 1};
        TextParams params = {-1, 7, -1, -1, TEXT_FLAG_SLANT, 0.25, 4};
        RotMatrix turned;
        mdlRMatrix_fromAngle(&turned, 0.5);
        ASSERT_EQ(mdlTag_create(tag, nullptr, &value, &origin, &turned, &size, &params, display), MDL_SUCCESS);
        const uint32_t color = 3, weight = 5, level = 9;
        const int32_t style = 2;
        mdlElement_setSymbology(tag, &color, &weight, &style);
        mdlElement_setProperties(tag, &level, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    }

    MSElementBuffer tag{}, text{};
};

TEST_F(TagText, ShowsTheValueByItsType) {
    for (const auto& [value, shown] :
         {std::pair(string("P-101 \xD8"), "P-101 \xD8"), std::pair(string(""), ""),
          std::pair(number(MDL_TAG_SHORT, -32768), "-32768"), std::pair(number(MDL_TAG_LONG, 2147483647), "2147483647"),
          std::pair(number(MDL_TAG_DOUBLE, 2), "2.000"),
          std::pair(number(MDL_TAG_DOUBLE, -12345678.9876), "-12345678.988")}) {
        makeTag(&tag, value);
        ASSERT_EQ(mclibMerge_textFromTag(&text, &tag, 0, nullptr), 0) << shown;
        char words[MDL_TEXT_CHARACTERS + 1];
        ASSERT_EQ(mdlText_extractString(words, &text), MDL_SUCCESS);
        EXPECT_STREQ(words, shown);
    }
}

TEST_F(TagText, LiesAndLooksAsTheTag) {
    makeTag(&tag, string("A"));
    MSElementBuffer& itself = tag;
    ASSERT_EQ(mclibMerge_textFromTag(&itself, &tag, 0, nullptr), 0);
    wchar_t words[MDL_TEXT_CHARACTERS + 1];
    Point3d origin;
    RotMatrix rotation;
    TextSize size;
    TextParams params;
    ASSERT_EQ(mdlText_extractWide(words, &origin, &rotation, &size, &params, &itself), MDL_SUCCESS);
    EXPECT_NEAR(origin.x + 1000 * origin.y, 200100, 1e-6);
    EXPECT_NEAR(rotation.form[1][0], std::sin(0.5), 1e-9);
    EXPECT_NEAR(size.width + 1000 * size.height, 30020, 1e-6);
    EXPECT_EQ(params.just, 7);
    EXPECT_EQ(params.slant, 0.25);
    EXPECT_NEAR(params.lineSpacing, 4, 1e-9);
    const ElementHead& head = itself.head;
    EXPECT_EQ(std::tuple(head.color, head.weight, head.style, head.level), std::tuple(3, 5, 2, 9u));
}

TEST_F(TagText, WhatHasNoTextIsRefusedAndLeavesTheOtherElementAlone) {
    const Point3d ends[] = {{0, 0, 0}, {1, 1, 0}};
    ASSERT_EQ(mdlLine_create(&text, nullptr, ends), MDL_SUCCESS);
    const MSElementBuffer before = text;
    EXPECT_EQ(mclibMerge_textFromTag(&text, &text, 0, nullptr), 0x8000);
    EXPECT_EQ(mclibMerge_textFromTag(&text, nullptr, 0, nullptr), 0x8000);
    makeTag(&tag, string("hidden"), 0);
    EXPECT_EQ(mclibMerge_textFromTag(&text, &tag, 0, nullptr), 0x8000);
    for (const int32_t type : {0, 5, -1}) {
        makeTag(&tag, number(type, 1));
        EXPECT_EQ(mclibMerge_textFromTag(&text, &tag, 0, nullptr), 0x8000) << type;
    }
    EXPECT_EQ(std::memcmp(&text, &before, sizeof text), 0);
}

}  // namespace
