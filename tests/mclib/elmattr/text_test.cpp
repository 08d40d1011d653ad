// Attributes as text: rows of the list, option buttons, and text elements made by attribute.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "mchost/mdl/element.h"
#include "mchost/mdl/lists.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/system.h"
#include "mchost/mdl/text.h"
#include "mchost/mdl/transform.h"
#include "mclib/elmattr/table.h"
#include "mclib/frame/global_data.h"
#include "tests/support/library_fixture.h"

using namespace mc;

namespace {

using testing::ElementsAre;

constexpr int group = 1;
constexpr unsigned char threeDecimals = 4, twoDecimals = 3;  // of the coordinate readout

class AttributeText : public LibraryTest {
  protected:
    AttributeText() {
        mclibElmAttr_setGroupeNames(1, "Group", group, 0);
        data.useFlags = 0;
        openDesignFile();
        tcbP->readoutFlags = 0;
        tcbP->readoutFormat = twoDecimals;
    }
    GlobalData& gd() { return *mclibMain_getGlobalDataP(); }

    // The cells of the only attribute, of that kind, as a row.
    std::vector<std::string> row(int kind) {
        mclibElmAttr_freeAllAttribute();
        // The arguments of every kind begin with a count or a length of 0 and a caption.
        if (kind == ATTR_KIND_LABELLED_TEXT || kind == ATTR_KIND_LABELLED_SYMBOL) {
            mclibElmAttr_addAttribute(1, "label", group, kind, 0, nullptr, 0, &data, 80, "Caption", 0);
        } else if (kind == ATTR_KIND_OPTION_TEXT) {
            mclibElmAttr_addAttribute(1, "label", group, kind, 0, nullptr, 0, &data, "Caption", 0);
        } else {
            mclibElmAttr_addAttribute(1, "label", group, kind, 0, nullptr, 0, &data, 0);
        }
        StringList* list = elmattr::createRows(gd(), group);
        std::vector<std::string> cells;
        for (int i = 0; i < mdlStringList_size(list); ++i) {
            const char* text = nullptr;
            mdlStringList_getMember(&text, nullptr, list, i);
            cells.emplace_back(text);
        }
        mdlStringList_destroy(list);
        return cells;
    }
    std::string values(int kind) { return row(kind).back(); }

    ElmAttrData data{};
};

TEST_F(AttributeText, ARowHasACellForEachFlaggedValue) {
    data.color = data.weight = data.style = -1;
    data.elementClass = 2;
    std::wcscpy(data.levelName, L"Sj\u00f8kant");
    EXPECT_THAT(row(ATTR_KIND_SYMBOLOGY), ElementsAre("label", "", "", "", "", "", ""));
    data.useFlags = 0x1F;
    EXPECT_THAT(row(ATTR_KIND_SYMBOLOGY), ElementsAre("label", "BL", "UD", "BL", "Sj\xf8kant", "C", ""));
    data.style = ATTR_STYLE_BY_LEVEL;
    data.color = 12;
    data.elementClass = 0;
    EXPECT_THAT(row(ATTR_KIND_SYMBOLOGY), ElementsAre("label", "12", "BL", "BL", "Sj\xf8kant", "P", ""));
}

TEST_F(AttributeText, TheValuesCellHoldsTheValuesOfTheKind) {
    struct Case {
        const char* values;
        int kind;
        std::function<void(ElmAttrData&)> set;
    };
    const auto text = [](uint32_t flags) {
        return [flags](ElmAttrData& d) {
            d.useFlags = flags;
            d.textFont = 3;
            d.textHeight = 2.5;
            d.textWidth = 2;
            d.textLineSpacing = 1.5;
            d.textJust = 2;
            d.textSlant = 12.346;
        };
    };
    const std::vector<Case> cases = {
        {"SY=4", ATTR_KIND_SYMBOL, [](ElmAttrData& d) { d.symbolNumber = 4; }},
        {"SY=4,SI=1.50", ATTR_KIND_SIZED_SYMBOL, [](ElmAttrData& d) { d.symbolNumber = 4, d.symbolSize = 1.5; }},
        {"SY=4,SI=1.50,\"ab\"", ATTR_KIND_LABELLED_SYMBOL,
         [](ElmAttrData& d) { d.symbolNumber = 4, d.symbolSize = 1.5, std::strcpy(d.symbolText, "ab"); }},
        {"", ATTR_KIND_TEXT, text(0)},
        {"FO=3", ATTR_KIND_TEXT, text(ATTR_USE_FONT)},
        {"SI=2.50/2.00/1.50,JU=LB,SL=12.35", ATTR_KIND_TEXT, text(ATTR_USE_SIZE | ATTR_USE_JUST | ATTR_USE_SLANT)},
        {"TS=Road,FO=3", ATTR_KIND_TEXT,
         [&](ElmAttrData& d) {
             text(ATTR_USE_TEXT_STYLE | ATTR_USE_FONT)(d);
             std::wcscpy(d.textStyleName, L"Road");
         }},
        {"JU=LB,\"x\"", ATTR_KIND_LABELLED_TEXT,
         [&](ElmAttrData& d) {
             text(ATTR_USE_JUST | ATTR_USE_SLANT)(d);
             std::strcpy(d.optionText, "x");
         }},
        {"JU=9", ATTR_KIND_TEXT, [](ElmAttrData& d) { d.useFlags = ATTR_USE_JUST, d.textJust = 9; }},
        {"", ATTR_KIND_SYMBOLOGY, text(0xFFFF)},
        {"", ATTR_KIND_OPTION_TEXT, text(0xFFFF)},
    };
    for (const Case& c : cases) {
        data = {};
        c.set(data);
        EXPECT_EQ(values(c.kind), c.values);
    }
}

TEST_F(AttributeText, DecimalsFollowTheCoordinateReadout) {
    tcbP->readoutFormat = threeDecimals;
    data.useFlags = ATTR_USE_SIZE | ATTR_USE_FONT | ATTR_USE_JUST;
    data.textHeight = 2.5;
    data.textWidth = 2;
    data.textLineSpacing = 1.5;
    data.textFont = 1;
    data.textJust = 7;
    EXPECT_EQ(values(ATTR_KIND_TEXT), "FO=1,SI=2.500/2.000/1.500,JU=CC");
}

TEST_F(AttributeText, CellsAreCutAtTheirLengths) {
    std::fill_n(data.levelName, 300, L'x');
    data.useFlags = ATTR_USE_LEVEL | ATTR_USE_SIZE;
    data.textHeight = 1e200;
    data.textWidth = 1e200;
    const std::vector<std::string> cells = row(ATTR_KIND_TEXT);
    EXPECT_EQ(cells[4].size(), 83u);
    EXPECT_EQ(cells[6].size(), 255u);
}

TEST_F(AttributeText, FillingTheListRaisesTheNextIdAboveAllGroups) {
    mclibElmAttr_addAttribute(70, "elsewhere", 2, ATTR_KIND_SYMBOLOGY, 0, nullptr, 0, &data);
    mclibElmAttr_addAttribute(7, "here", group, ATTR_KIND_SYMBOLOGY, 0, nullptr, 0, &data);
    StringList* list = elmattr::createRows(gd(), group);
    EXPECT_EQ(mdlStringList_size(list), attributeRowCells);
    int32_t id = 0;
    mdlStringList_getInfoField(&id, list, 0, 1);
    EXPECT_EQ(id, 7);
    EXPECT_EQ(gd().nextAttributeId, 71);
    mdlStringList_destroy(list);
    mclibElmAttr_freeAllAttribute();
    mdlStringList_destroy(elmattr::createRows(gd(), group));
    EXPECT_EQ(gd().nextAttributeId, 71);
}

// ---- text elements ----

// What a text element was made with.
struct Made {
    std::string text;
    TextParams params{};
    double height = 0, width = 0;
};

class CreateText : public AttributeText {
  protected:
    void attribute() {
        mclibElmAttr_freeAllAttribute();
        mclibElmAttr_addAttribute(1, "text", group, ATTR_KIND_TEXT, 0, nullptr, 0, &data);
    }
    Made create(const char* text, double scale = 1) {
        attribute();
        Made made;
        char words[256] = "";
        EXPECT_EQ(mclibElmAttr_createText(dgnBufP, nullptr, text, nullptr, nullptr, 0, 1, scale, nullptr),
                  MCLIB_SUCCESS);
        mdlText_extract(nullptr, nullptr, nullptr, nullptr, words, nullptr, &made.params, nullptr, &made.height,
                        &made.width, dgnBufP);
        made.text = words;
        return made;
    }
    static void defineStyle(double width, double height) {
        const TextParams params = {4, 13, 1, 0, 0, 0, 0};
        const TextSize size = {1, width, height, 1};
        ASSERT_EQ(mdlTextStyle_define(mdlModelRef_getActive(), L"Road", &params, &size), MDL_SUCCESS);
    }
    void useStyle(uint32_t furtherFlags = 0) {
        data.useFlags = ATTR_USE_TEXT_STYLE | furtherFlags;
        std::wcscpy(data.textStyleName, L"Road");
    }
};

TEST_F(CreateText, SizesAreDividedByTheScale) {
    data.useFlags = ATTR_USE_SIZE;
    data.textHeight = 3;
    data.textWidth = 2;
    data.textLineSpacing = 0.5;
    EXPECT_NEAR(create("x").height, 3, 1e-9);
    const Made half = create("x", 2);
    EXPECT_NEAR(half.height, 1.5, 1e-9);
    EXPECT_NEAR(half.width, 1, 1e-9);
    EXPECT_NEAR(half.params.lineSpacing, 0.75, 1e-9);
}

TEST_F(CreateText, WithoutFlagsTheActiveSettingsCount) {
    const int32_t font = 6;
    const double size = 1250;
    mdlParams_setActive(&font, MDL_PARAM_FONT);
    mdlParams_setActive(&size, MDL_PARAM_TEXT_SIZE);
    tcbP->activeSlant = 15;
    const Made made = create("Gr\xf8nt");
    tcbP->activeSlant = 0;
    EXPECT_EQ(made.text, "Gr\xf8nt");
    EXPECT_EQ(made.params.font, 6);
    EXPECT_EQ(made.params.textStyle, -1);
    EXPECT_NEAR(made.params.slant, 15 * M_PI / 180, 1e-9);
    EXPECT_NEAR(made.height, 1250, 1e-6);
}

TEST_F(CreateText, AStyleGivesWhatTheAttributeLeavesOpen) {
    defineStyle(40000, 50000);  // 4 and 5 master units
    useStyle();
    Made made = create("x", 2);
    EXPECT_EQ(made.params.font, 4);
    EXPECT_EQ(made.params.just, 13);
    EXPECT_NEAR(made.height, 2.5, 1e-9);
    useStyle(ATTR_USE_SIZE | ATTR_USE_JUST | ATTR_USE_FONT);
    data.textHeight = data.textWidth = 7;
    data.textFont = 9;
    data.textJust = 1;
    made = create("x", 2);
    EXPECT_NEAR(made.height, 3.5, 1e-9);
    EXPECT_EQ(made.params.font, 9);
    EXPECT_EQ(made.params.just, 1);
}

TEST_F(CreateText, AStyleWithoutSizeTakesTheActiveOne) {
    const double size = 800;
    mdlParams_setActive(&size, MDL_PARAM_TEXT_SIZE);
    defineStyle(0, 0);
    useStyle();
    const Made made = create("x", 4);
    EXPECT_NEAR(made.height, 200, 1e-9);
    EXPECT_NEAR(made.width, 200, 1e-9);
    mdlCurrTrans_begin();
    mdlCurrTrans_masterUnitsIdentity();
    EXPECT_NEAR(create("x", 4).height * mdlModelRef_getUorPerMaster(mdlModelRef_getActive()), 200, 1e-9);
    mdlCurrTrans_end();
}

// A text value lies where the slant of other kinds does.
TEST_F(CreateText, AKindWithATextValueHasNoSlant) {
    data.useFlags = ATTR_USE_SIZE | ATTR_USE_SLANT;
    data.textHeight = data.textWidth = 1;
    std::strcpy(data.optionText, "abcdef\xf8\x7f");
    mclibElmAttr_addAttribute(6, "text", group, ATTR_KIND_LABELLED_TEXT, 0, nullptr, 0, &data, 80, "Caption", 0);
    mclibElmAttr_addAttribute(7, "text", group, ATTR_KIND_OPTION_TEXT, 0, nullptr, 0, &data, "Caption", 0);
    for (const int id : {6, 7}) {
        TextParams params{};
        ASSERT_EQ(mclibElmAttr_createText(dgnBufP, nullptr, "x", nullptr, nullptr, 0, id, 1, nullptr), MCLIB_SUCCESS);
        mdlText_extract(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &params, nullptr, nullptr, nullptr,
                        dgnBufP);
        EXPECT_EQ(params.slant, 0);
    }
}

TEST_F(CreateText, AnUnknownStyleIsAsNone) {
    useStyle();
    EXPECT_EQ(create("x").params.textStyle, -1);
}

TEST_F(CreateText, WhatTheHostRefusesLeavesTheElementAlone) {
    attribute();
    const std::string longest(255, 'x'), tooLong(256, 'x');
    const auto make = [](const char* text, int id) {
        return mclibElmAttr_createText(dgnBufP, nullptr, text, nullptr, nullptr, 0, id, 1, nullptr);
    };
    EXPECT_EQ(make(longest.c_str(), 1), MCLIB_SUCCESS);
    const uint32_t bytes = mdlElement_bytes(dgnBufP);
    EXPECT_EQ(make(tooLong.c_str(), 1), MCLIB_ERROR);
    EXPECT_EQ(make("x", 2), MCLIB_ERROR);
    EXPECT_EQ(mdlElement_bytes(dgnBufP), bytes);
    EXPECT_EQ(make(nullptr, 1), MCLIB_SUCCESS);
}

}  // namespace
