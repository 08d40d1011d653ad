// Levels, line styles and text styles of a model, and what elements take from them.
#include <limits>

#include "mchost/mdl/files.h"
#include "mchost/mdl/level.h"
#include "mchost/mdl/lists.h"
#include "mchost/mdl/reference.h"
#include "mchost/mdl/text.h"
#include "tests/mchost/model/model_fixture.h"

namespace {

using Levels = OpenModelTest;

int32_t codeOf(const wchar_t* name) {
    LevelId id = 0;
    int32_t code = -1;
    mdlLevel_getIdFromName(&id, nullptr, 0, name);
    mdlLevel_getCode(&code, nullptr, id);
    return code;
}

TEST_F(Levels, NamesWithANumberGetItAsTheirCode) {
    struct Case {
        const wchar_t* name;
        int32_t code;
    };
    const Case cases[] = {{L"Level 7", 7},  {L"7", 64},        {L"63", 63},      {L"Level 64", 65}, {L"Kerb", 66},
                          {L"Level 0", 67}, {L"Level 07", 68}, {L"level 8", 69}, {L"Default", 0}};
    for (const Case& c : cases) {
        LevelId id = 0;
        EXPECT_EQ(mdlLevel_create(&id, nullptr, c.name), c.code == 0 ? MDL_ERROR : MDL_SUCCESS);
        EXPECT_EQ(codeOf(c.name), c.code) << &c - cases;
    }
}

TEST_F(Levels, NamesThatCannotBeAreRefused) {
    LevelId id = 4711;
    const std::wstring longest(511, L'x'), tooLong(512, L'x');
    EXPECT_EQ(mdlLevel_create(&id, nullptr, L""), MDL_ERROR);
    EXPECT_EQ(mdlLevel_create(&id, nullptr, tooLong.c_str()), MDL_ERROR);
    EXPECT_EQ(mdlLevel_create(&id, nullptr, L"Default"), MDL_ERROR);
    EXPECT_EQ(id, 4711u);
    EXPECT_EQ(mdlLevel_create(&id, nullptr, longest.c_str()), MDL_SUCCESS);
    wchar_t name[512];
    EXPECT_EQ(mdlLevel_getName(name, 512, nullptr, id), MDL_SUCCESS);
    EXPECT_EQ(name, longest);
    EXPECT_EQ(mdlLevel_getName(name, 511, nullptr, id), MDL_ERROR);
    EXPECT_EQ(name, longest.substr(1));
}

TEST_F(Levels, LevelIsStoredWithItsFirstElementOrWithTheTable) {
    LevelId used = 0, unused = 0;
    mdlLevel_create(&used, nullptr, L"R\u00F8r \u20AC");
    mdlLevel_create(&unused, nullptr, L"Unused");
    mdlElement_add(numbered(1, used));
    reopen();
    EXPECT_EQ(mdlLevel_isValidByName(nullptr, L"R\u00F8r \u20AC"), 1);
    EXPECT_EQ(mdlLevel_isValidByName(nullptr, L"Unused"), 0);
    LevelId next = 0;
    mdlLevel_create(&next, nullptr, L"Next");
    EXPECT_GT(next, unused);
    EXPECT_EQ(mdlLevelTable_rewrite(nullptr), MDL_SUCCESS);
    reopen();
    EXPECT_EQ(mdlLevel_isValidByName(nullptr, L"Next"), 1);
}

TEST_F(Levels, ByLevelValuesComeFromTheLevel) {
    LevelId level = 0;
    mdlLevel_create(&level, nullptr, L"Kerb");
    const uint32_t color = 5, weight = 3;
    const int32_t style = 2;
    const LineStyleParams params = {LINE_STYLE_SCALE | LINE_STYLE_START_WIDTH, 2.5, 4, 4, 1, 1};
    const LineStyleParams endless = {LINE_STYLE_SCALE, std::numeric_limits<double>::quiet_NaN(), 0, 0, 1, 1};
    EXPECT_EQ(mdlLevel_setElementSymbology(nullptr, level, &color, &style, &params, &weight, nullptr), MDL_SUCCESS);
    EXPECT_EQ(mdlLevel_setElementSymbology(nullptr, level, nullptr, nullptr, &endless, nullptr, nullptr), MDL_ERROR);
    EXPECT_EQ(mdlLevelTable_rewrite(nullptr), MDL_SUCCESS);
    reopen();
    struct Case {
        LevelId level;
        int32_t color, style;
        int16_t weight;
        int32_t expected[3];  // colour, weight, style
        double scale, width;
    };
    const Case cases[] = {{level, -1, 0x7FFFFFFF, -1, {5, 3, 2}, 2.5, 4},
                          {level, 9, 0x7FFFFFFF, 8, {9, 8, 2}, 2.5, 4},
                          {level, -1, 1, -1, {5, 3, 1}, 1, 0},
                          {level, -1, -4, -1, {5, 3, -4}, 1, 0},
                          {4711, -1, 0x7FFFFFFF, -1, {0, 0, 0}, 1, 0}};
    for (const Case& c : cases) {
        SCOPED_TRACE(&c - cases);
        MSElementBuffer* element = numbered(1, c.level);
        element->head.color = c.color;
        element->head.style = c.style;
        element->head.weight = c.weight;
        int32_t got[3] = {};
        double scale = 0, width = -1;
        EXPECT_EQ(mdlElement_getEffectiveSymbology(&got[0], &got[1], &got[2], &scale, &width, element, nullptr), 0);
        EXPECT_EQ(std::vector(got, got + 3), std::vector(c.expected, c.expected + 3));
        EXPECT_EQ(scale, c.scale);
        EXPECT_EQ(width, c.width);
    }
}

TEST_F(Levels, LevelLibraryIsReadFromTheFileThatTheVariableNames) {
    EXPECT_EQ(mdlLevelLibrary_getModelRef(), nullptr);
    LevelId id = 0;
    mdlLevel_create(&id, nullptr, L"Shared");
    mdlLevelTable_rewrite(nullptr);
    close();
    mdlSystem_defineCfgVar("MS_LEVELLIB", file.c_str(), 4);
    ModelRef* library = mdlLevelLibrary_getModelRef();
    ASSERT_NE(library, nullptr);
    EXPECT_EQ(mdlLevelLibrary_getModelRef(), library);
    EXPECT_EQ(mdlLevel_isValidByName(library, L"Shared"), 1);
    EXPECT_EQ(mdlLevel_isValidByName(nullptr, L"Shared"), 0);
    EXPECT_EQ(mdlLevel_create(&id, library, L"Other"), MDL_ERROR);
    front().clear();
    mdlSystem_defineCfgVar("MS_LEVELLIB", writeFile("foreign", "text").c_str(), 4);
    EXPECT_EQ(mdlLevelLibrary_getModelRef(), nullptr);
    onlyMessage("foreign");
}

using Styles = OpenModelTest;

TEST_F(Styles, NumbersOfLineStylesStayWithTheirNames) {
    const double dashes[] = {2, 1, 0, 1}, others[] = {5};
    int32_t first = 0, second = 0, again = 0;
    EXPECT_EQ(mdlLineStyle_define(&first, nullptr, "fence", dashes, 4), MDL_SUCCESS);
    EXPECT_EQ(mdlLineStyle_define(&second, nullptr, "m\xE5l", nullptr, 0), MDL_SUCCESS);
    EXPECT_EQ(mdlLineStyle_define(&again, nullptr, "fence", others, 1), MDL_SUCCESS);
    EXPECT_EQ(first, -1);
    EXPECT_EQ(second, -2);
    EXPECT_EQ(again, -1);
    reopen();
    char name[64];
    EXPECT_EQ(mdlLineStyle_nameFromNumber(name, -2, nullptr), MDL_SUCCESS);
    EXPECT_STREQ(name, "m\xE5l");
    double pattern[32];
    int32_t count = 0, number = 5;
    EXPECT_EQ(mdlLineStyle_getPattern(pattern, &count, -1, nullptr), MDL_SUCCESS);
    EXPECT_EQ(std::vector(pattern, pattern + count), std::vector<double>{5});
    EXPECT_EQ(mdlLineStyle_numberFromName(&number, "none", nullptr), MDL_ERROR);
    EXPECT_EQ(number, 0);
    for (const int32_t unknown : {0, 7, -3, INT32_MIN}) {
        EXPECT_EQ(mdlLineStyle_nameFromNumber(name, unknown, nullptr), MDL_ERROR) << unknown;
    }
}

TEST_F(Styles, LineStylesThatCannotBeAreRefused) {
    const std::vector<double> many(33, 1.0);
    const double negative[] = {1, -1}, endless[] = {1, std::numeric_limits<double>::infinity()};
    EXPECT_EQ(mdlLineStyle_define(nullptr, nullptr, "", many.data(), 2), MDL_ERROR);
    EXPECT_EQ(mdlLineStyle_define(nullptr, nullptr, std::string(64, 'x').c_str(), many.data(), 2), MDL_ERROR);
    EXPECT_EQ(mdlLineStyle_define(nullptr, nullptr, "a", many.data(), 33), MDL_ERROR);
    EXPECT_EQ(mdlLineStyle_define(nullptr, nullptr, "a", negative, 2), MDL_ERROR);
    EXPECT_EQ(mdlLineStyle_define(nullptr, nullptr, "a", endless, 2), MDL_ERROR);
    EXPECT_EQ(mdlLineStyle_define(nullptr, nullptr, "a", many.data(), 32), MDL_SUCCESS);
}

TEST_F(Styles, ListModelHoldsBuiltInAndNamedLineStyles) {
    mdlLineStyle_define(nullptr, nullptr, "fence", nullptr, 0);
    ListModel* list = mdlListModel_create(1);
    EXPECT_EQ(mdlLevelList_getStyleListModel(list, nullptr), MDL_SUCCESS);
    ASSERT_EQ(mdlListModel_rowCount(list), 9);
    int32_t value = 0;
    EXPECT_EQ(mdlListModel_getValue(&value, list, 3, 0), MDL_SUCCESS);
    EXPECT_EQ(value, 3);
    EXPECT_EQ(mdlListModel_getValue(&value, list, 8, 0), MDL_SUCCESS);
    EXPECT_EQ(value, MDL_STYLE_NAMED);
    EXPECT_STREQ(mdlListModel_getText(list, 8, 0), "fence");
    mdlListModel_destroy(list);
}

TEST_F(Styles, TextStyleComesBackFromTheFile) {
    const TextParams params = {3, 6, -1, -1, TEXT_FLAG_SLANT, -0.0, 1.5};
    const TextSize size = {1, 250, 300, 0.8};
    EXPECT_EQ(mdlTextStyle_define(nullptr, L"T\u00E6xt", &params, &size), MDL_SUCCESS);
    reopen();
    MdlTextStyle* style = mdlTextStyle_getByName(L"T\u00E6xt", nullptr);
    ASSERT_NE(style, nullptr);
    TextParams gotParams = {};
    TextSize gotSize = {};
    EXPECT_EQ(mdlTextStyle_getTextParamWideFromStyle(&gotParams, &gotSize, style), MDL_SUCCESS);
    mdlTextStyle_free(style);
    EXPECT_EQ(gotParams.font, 3);
    EXPECT_EQ(gotParams.flags, static_cast<uint32_t>(TEXT_FLAG_SLANT));
    EXPECT_EQ(gotParams.lineSpacing, 1.5);
    EXPECT_EQ(gotSize.height, 300);
    EXPECT_EQ(mdlTextStyle_getByName(L"none", nullptr), nullptr);
    const wchar_t halfACharacter[] = {L'a', static_cast<wchar_t>(0xD800), 0};
    EXPECT_EQ(mdlTextStyle_define(nullptr, halfACharacter, &params, &size), MDL_ERROR);
}

TEST_F(Levels, IteratorVisitsTheActiveModelAlone) {
    struct Case {
        int32_t flags;
        bool active;
    };
    for (const Case& c : {Case{3, true}, Case{1, true}, Case{2, false}}) {
        SCOPED_TRACE(c.flags);
        ModelRefIterator* iterator = nullptr;
        ASSERT_EQ(mdlModelRefIterator_create(&iterator, mdlModelRef_getActive(), c.flags, 0), MDL_SUCCESS);
        EXPECT_EQ(mdlModelRefIterator_getFirst(iterator), c.active ? mdlModelRef_getActive() : nullptr);
        EXPECT_EQ(mdlModelRefIterator_getNext(iterator), nullptr);
        mdlModelRefIterator_free(&iterator);
    }
}

}  // namespace
