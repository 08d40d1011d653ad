// The attribute table of an application: what is kept, found, moved and applied to elements.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "mchost/mdl/element.h"
#include "mchost/mdl/level.h"
#include "mchost/mdl/system.h"
#include "mclib/elmattr/table.h"
#include "mclib/frame/global_data.h"
#include "tests/support/library_fixture.h"

using namespace mc;

namespace {

using testing::ElementsAre;

enum Group { plain = 1, editable = 2 };

void anyHook(ElmAttrHookInfo*) {}

class AttributeTable : public LibraryTest {
  protected:
    AttributeTable() {
        mclibElmAttr_setGroupeNames(2, "Plain", int{plain}, 0, "Editable", int{editable}, int{ATTR_GROUP_EDITABLE});
    }

    GlobalData& gd() { return *mclibMain_getGlobalDataP(); }
    const ElmAttrRecord& record(int id) { return *elmattr::findRecord(gd(), id); }

    static int add(int id, int group = plain, const char* label = "label", const ElmAttrData& data = {}) {
        return mclibElmAttr_addAttribute(id, label, group, ATTR_KIND_SYMBOLOGY, 0, nullptr, 0, &data);
    }
    std::vector<int> ids() {
        std::vector<int> found;
        for (const ElmAttrRecord* r = gd().attributeList; r != nullptr; r = r->next) found.push_back(r->id);
        return found;
    }
    static ElmAttrData colored(int color) {
        ElmAttrData data{};
        data.color = color;
        return data;
    }
};

TEST_F(AttributeTable, NewGroupsTakeTheOldGroupsAndAllAttributesAway) {
    add(1);
    mclibElmAttr_setGroupeNames(0);
    EXPECT_EQ(gd().attributeList, nullptr);
    EXPECT_EQ(gd().attributeCount, 0);
    EXPECT_EQ(gd().groupCount, 0);
    mclibElmAttr_setGroupeNamesExtended(1, "G", 7, 0, static_cast<ElmAttrGroupChanged>(nullptr));
    EXPECT_STREQ(gd().groups[0].name, "G");
}

TEST_F(AttributeTable, OfTwoAttributesWithOneIdTheFirstHasTheDataAndTheLastTheLabel) {
    add(5, plain, "first", colored(1));
    add(5, plain, "last", colored(2));
    ElmAttrData data{};
    EXPECT_EQ(mclibElmAttr_extractData(5, &data), MCLIB_SUCCESS);
    EXPECT_EQ(data.color, 1);
    char label[80] = "";
    mclibElmAttr_getLabelFromId(5, label);
    EXPECT_STREQ(label, "last");
}

TEST_F(AttributeTable, AHookIsKeptOnlyForAKnownGroupThatUsersDontEdit) {
    struct Case {
        int group;
        ElmAttrHook kept;
    };
    for (const Case& c : {Case{plain, anyHook}, Case{editable, nullptr}, Case{99, nullptr}}) {
        const ElmAttrData data{};
        mclibElmAttr_addAttribute(c.group, "x", c.group, ATTR_KIND_SYMBOLOGY, 0, anyHook, 0, &data);
        EXPECT_EQ(record(c.group).hook, c.kept) << c.group;
    }
}

TEST_F(AttributeTable, ExtraArgumentsFollowTheKindAndAreCopied) {
    const ElmAttrData data{};
    std::string option = "narrow", caption = "Text";
    mclibElmAttr_addAttribute(1, "s", plain, ATTR_KIND_SYMBOL, 0, nullptr, 0, &data, 2, 101, 11, 102, 12);
    mclibElmAttr_addAttribute(2, "ls", plain, ATTR_KIND_LABELLED_SYMBOL, 0, nullptr, 0, &data, 20, caption.c_str(), 1,
                              103, 13);
    mclibElmAttr_addAttribute(3, "lt", plain, ATTR_KIND_LABELLED_TEXT, 0, nullptr, 0, &data, 30, caption.c_str());
    mclibElmAttr_addAttribute(4, "o", plain, ATTR_KIND_OPTION_TEXT, 0, nullptr, 0, &data, caption.c_str(), 2,
                              option.c_str(), 21, "wide", 22);
    option = caption = "gone";

    EXPECT_EQ(record(1).optionCount, 2);
    EXPECT_EQ(record(1).optionIcons[1], 102);
    EXPECT_EQ(record(1).optionValues[1], 12);
    EXPECT_EQ(record(1).textMaxLength, 80);
    EXPECT_EQ(record(1).textLabel, nullptr);
    EXPECT_EQ(record(2).textMaxLength, 20);
    EXPECT_STREQ(record(2).textLabel, "Text");
    EXPECT_EQ(record(2).optionValues[0], 13);
    EXPECT_EQ(record(3).textMaxLength, 30);
    EXPECT_STREQ(record(4).optionLabels[0], "narrow");
    EXPECT_EQ(record(4).optionValues[1], 22);
}

TEST_F(AttributeTable, AnInsertedAttributeIsACopyOfItsOwn) {
    const ElmAttrData data{};
    mclibElmAttr_addAttribute(1, "old", plain, ATTR_KIND_OPTION_TEXT, 0, nullptr, 0, &data, "Caption", 1, "one", 21);
    gd().nextAttributeId = 40;
    gd().activeRecord->group = editable;
    const ElmAttrData red = colored(3);
    ASSERT_EQ(mclibElmAttr_insertAttribute(1, "new", ATTR_USE_COLOR, &red), MCLIB_SUCCESS);
    EXPECT_EQ(mclibElmAttr_deleteAttribute(1, 0), MCLIB_SUCCESS);
    EXPECT_THAT(ids(), ElementsAre(40));
    const ElmAttrRecord& copy = record(40);
    EXPECT_EQ(copy.group, editable);
    EXPECT_EQ(copy.lockMask, uint32_t{ATTR_USE_COLOR});
    EXPECT_EQ(copy.data.color, 3);
    EXPECT_STREQ(copy.label, "new");
    EXPECT_STREQ(copy.textLabel, "Caption");
    EXPECT_STREQ(copy.optionLabels[0], "one");
    EXPECT_EQ(gd().attributeCount, 1);
    EXPECT_EQ(gd().nextAttributeId, 40);
}

TEST_F(AttributeTable, MovesSwapWithTheNeighbourAndStopAtTheEndsOfTheGroup) {
    struct Case {
        int (*move)(GlobalData&, int);
        int id;
        std::vector<int> order;
    };
    const std::vector<Case> cases = {
        {elmattr::moveUp, 11, {11, 21, 12, 22}},    // first of its group
        {elmattr::moveDown, 12, {11, 21, 12, 22}},  // last of its group
        {elmattr::moveUp, 12, {11, 12, 21, 22}},    // past a neighbour of another group
        {elmattr::moveDown, 11, {21, 11, 12, 22}}, {elmattr::moveDown, 21, {11, 12, 21, 22}},
    };
    for (const Case& c : cases) {
        mclibElmAttr_freeAllAttribute();
        for (const int id : {11, 21, 12, 22}) add(id, id / 10);
        EXPECT_EQ(c.move(gd(), c.id), MCLIB_SUCCESS);
        EXPECT_EQ(ids(), c.order) << c.id;
    }
    EXPECT_EQ(elmattr::moveUp(gd(), 99), MCLIB_ERROR);
}

TEST_F(AttributeTable, AMoveSwapsTheRecordItselfWhenAnIdIsThereTwice) {
    for (const int id : {1, 2, 1, 3}) add(id);
    EXPECT_EQ(elmattr::moveUp(gd(), 3), MCLIB_SUCCESS);
    EXPECT_THAT(ids(), ElementsAre(1, 2, 3, 1));
}

TEST_F(AttributeTable, UnknownIdsAreErrorsAndChangeNothing) {
    add(1, plain, "one", colored(1));
    const ElmAttrData red = colored(3);
    EXPECT_EQ(mclibElmAttr_extractData(1, nullptr), MCLIB_SUCCESS);
    EXPECT_EQ(mclibElmAttr_extractData(2, nullptr), MCLIB_ERROR);
    EXPECT_EQ(mclibElmAttr_editAttribute(2, 1, &red), MCLIB_ERROR);
    EXPECT_EQ(mclibElmAttr_editAttributeExtended(2, 1, &red, anyHook), MCLIB_ERROR);
    EXPECT_EQ(mclibElmAttr_insertAttribute(2, "x", 0, &red), MCLIB_ERROR);
    EXPECT_EQ(mclibElmAttr_deleteAttribute(2, 1), MCLIB_ERROR);
    EXPECT_EQ(mclibElmAttr_setSymbologyAndProperties(dgnBufP, 2, nullptr), MCLIB_ERROR);
    char label[80] = "as it was";
    mclibElmAttr_getLabelFromId(2, label);
    EXPECT_STREQ(label, "as it was");
    EXPECT_EQ(mclibElmAttr_findIdForAttributeName("One", plain), 0);
    EXPECT_EQ(mclibElmAttr_findIdForAttributeName("one", editable), 0);
    EXPECT_EQ(mclibElmAttr_findIdForAttributeName("one", plain), 1);
    EXPECT_EQ(record(1).data.color, 1);
}

TEST_F(AttributeTable, TextsThatFillTheirFieldsStayInsideThem) {
    ElmAttrData full{};
    std::fill(std::begin(full.levelName), std::end(full.levelName), L'x');
    std::memset(full.styleName, 'x', sizeof full.styleName);
    std::memset(full.symbolText, 'x', sizeof full.symbolText);
    const std::string label(200, 'y');
    mclibElmAttr_addAttribute(1, label.c_str(), plain, ATTR_KIND_LABELLED_SYMBOL, 0, nullptr, 0, &full, 80, "t", 0);
    EXPECT_EQ(std::wcslen(record(1).data.levelName), 511u);
    EXPECT_EQ(std::strlen(record(1).data.styleName), 63u);
    EXPECT_EQ(std::strlen(record(1).data.symbolText), 83u);
    EXPECT_EQ(std::strlen(record(1).label), 79u);
}

TEST_F(AttributeTable, LevelNameVariablesHaveTenSlots) {
    wchar_t names[4][8] = {};
    mclibElmAttr_setLevelNameVariable(0, names[0]);
    mclibElmAttr_setLevelNameVariable(1, names[1]);
    mclibElmAttr_setLevelNameVariable(10, names[2]);
    mclibElmAttr_setLevelNameVariable(11, names[3]);
    EXPECT_EQ(gd().levelNameVariables[0], nullptr);
    EXPECT_EQ(gd().levelNameVariables[1], names[1]);
    EXPECT_EQ(gd().levelNameVariables[10], names[2]);
}

TEST(AttributesWithoutApplication, EveryCallFailsAndNoneCrashes) {
    const ElmAttrData data{};
    EXPECT_EQ(mclibElmAttr_addAttribute(1, "x", 1, ATTR_KIND_SYMBOLOGY, 0, nullptr, 1, &data), MCLIB_ERROR);
    EXPECT_EQ(mclibElmAttr_insertAttribute(1, "x", 0, &data), MCLIB_ERROR);
    EXPECT_EQ(mclibElmAttr_editAttribute(1, 1, &data), MCLIB_ERROR);
    EXPECT_EQ(mclibElmAttr_deleteAttribute(1, 1), MCLIB_ERROR);
    EXPECT_EQ(mclibElmAttr_createText(dgnBufP, nullptr, "x", nullptr, nullptr, 0, 1, 1.0, nullptr), MCLIB_ERROR);
    EXPECT_EQ(mclibElmAttr_findIdForAttributeName("x", 1), 0);
    mclibElmAttr_setGroupeNames(1, "x", 1, 0);
    mclibElmAttr_setLevelNameVariable(1, nullptr);
    mclibElmAttr_freeAllAttribute();
    mclibElmAttr_freeGroupeNames();
    elmattr::bringStyleNumbersInStep();
}

// ---- what an attribute does to an element ----

class ApplyAttribute : public AttributeTable {
  protected:
    ApplyAttribute() {
        openDesignFile();
        const Point3d ends[2] = {{0, 0, 0}, {10, 0, 0}};
        mdlLine_create(&line_, nullptr, ends);
    }
    MSElementBuffer line_;
};

TEST_F(ApplyAttribute, OnlyFlaggedValuesReachTheElement) {
    ElmAttrData data{};
    data.color = 7;
    data.weight = 5;
    data.style = 3;
    data.elementClass = 2;
    std::wcscpy(data.levelName, L"Axis");
    const ElementHead before = line_.head;
    LevelId axis = 0;
    struct Case {
        uint32_t flag;
        std::function<bool(const ElementHead&)> applied;
    };
    const std::vector<Case> cases = {
        {ATTR_USE_COLOR, [](const ElementHead& h) { return h.color == 7; }},
        {ATTR_USE_WEIGHT, [](const ElementHead& h) { return h.weight == 5; }},
        {ATTR_USE_STYLE, [](const ElementHead& h) { return h.style == 3; }},
        {ATTR_USE_CLASS, [](const ElementHead& h) { return (h.properties & MDL_PROP_CLASS) == 1; }},
        {ATTR_USE_LEVEL, [&](const ElementHead& h) { return h.level == axis; }},
    };
    for (const Case& c : cases) {
        mclibElmAttr_freeAllAttribute();
        line_.head = before;
        data.useFlags = c.flag;
        add(1, plain, "x", data);
        ElmAttrData out{};
        ASSERT_EQ(mclibElmAttr_setSymbologyAndProperties(&line_, 1, &out), MCLIB_SUCCESS);
        mdlLevel_getIdFromName(&axis, mdlModelRef_getActive(), 0, L"Axis");
        for (const Case& other : cases) {
            EXPECT_EQ(other.applied(line_.head), other.flag == c.flag) << c.flag << ", and the value of " << other.flag;
        }
        EXPECT_EQ(out.color, 7);
    }
}

TEST_F(ApplyAttribute, ANamedStyleAppliesWhereTheFileKnowsIt) {
    int32_t number = 0;
    const double pattern[2] = {1, 0.5};
    ASSERT_EQ(mdlLineStyle_define(&number, mdlModelRef_getActive(), "dashes", pattern, 2), MDL_SUCCESS);
    const int32_t before = line_.head.style;
    ElmAttrData data{};
    data.style = -1;
    data.styleScale = 2;
    data.styleWidth = 0.25;
    data.useFlags = ATTR_USE_STYLE | ATTR_USE_STYLE_WIDTH;
    for (const char* unknown : {"", "unheard of"}) {
        std::strcpy(data.styleName, unknown);
        mclibElmAttr_freeAllAttribute();
        add(1, plain, "x", data);
        EXPECT_EQ(mclibElmAttr_setSymbologyAndProperties(&line_, 1, nullptr), MCLIB_SUCCESS);
        EXPECT_EQ(line_.head.style, before) << unknown;
    }
    std::strcpy(data.styleName, "dashes");
    mclibElmAttr_editAttribute(1, 0, &data);
    mclibElmAttr_setSymbologyAndProperties(&line_, 1, nullptr);
    EXPECT_EQ(line_.head.style, number);
    LineStyleParams params{};
    ASSERT_EQ(mdlElement_getLineStyleParams(&params, &line_), MDL_SUCCESS);
    EXPECT_EQ(params.modifiers, uint32_t{LINE_STYLE_START_WIDTH | LINE_STYLE_END_WIDTH});
    EXPECT_EQ(params.endWidth, 0.25);
}

TEST_F(ApplyAttribute, StyleNumbersAndNamesFollowTheActiveFile) {
    int32_t first = 0, second = 0;
    const double pattern[2] = {1, 0.5};
    mdlLineStyle_define(&first, mdlModelRef_getActive(), "first", pattern, 2);
    mdlLineStyle_define(&second, mdlModelRef_getActive(), "second", pattern, 2);
    ElmAttrData byName{}, byNumber{}, unknown{}, builtIn{};
    byName.style = byNumber.style = second;
    unknown.style = -77;
    std::strcpy(byName.styleName, "first");
    std::strcpy(unknown.styleName, "unheard of");
    std::strcpy(builtIn.styleName, "first");
    builtIn.style = 2;
    add(1, plain, "x", byName);
    add(2, plain, "x", byNumber);
    add(3, plain, "x", unknown);
    add(4, plain, "x", builtIn);
    elmattr::bringStyleNumbersInStep();
    EXPECT_EQ(record(1).data.style, first);
    EXPECT_STREQ(record(2).data.styleName, "second");
    EXPECT_EQ(record(3).data.style, -77);
    EXPECT_EQ(record(4).data.style, 2);
}

}  // namespace
