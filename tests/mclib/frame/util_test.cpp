#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <ctime>
#include <numbers>
#include <string>
#include <vector>

#include "mchost/mdl/level.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/system.h"
#include "mchost/session/memory.h"
#include "mclib/frame/errors.h"
#include "mclib/frame/main.h"
#include "mclib/frame/util.h"
#include "tests/support/session_fixture.h"

namespace {

// ---- without a session ----

std::vector<std::string> tokensOf(std::string text, const char* delimiters) {
    int count = -1;
    char** tokens = mclibString_tokenize2(&count, text.c_str(), delimiters);
    EXPECT_EQ(tokens == nullptr, count == 0);
    std::vector<std::string> result(tokens, tokens + count);
    mclibString_freeTokenList(tokens, count);
    return result;
}

TEST(TextPieces, RunsOfDelimitersPartTokens) {
    using Tokens = std::vector<std::string>;
    EXPECT_EQ(tokensOf("", ", "), Tokens());
    EXPECT_EQ(tokensOf(" ,, ,", ", "), Tokens());
    EXPECT_EQ(tokensOf(",a, b ,,c", ", "), (Tokens{"a", "b", "c"}));
    EXPECT_EQ(tokensOf("a b", ""), Tokens{"a b"});

    std::string many;
    for (int i = 1; i <= 45; ++i) many += std::to_string(i) + ";";
    const Tokens tokens = tokensOf(many, ";");
    ASSERT_EQ(tokens.size(), 45u);
    EXPECT_EQ(tokens[19] + tokens[20] + tokens[44], "202145");
}

TEST(TextPieces, TokenizingGivesEverythingBack) {
    const size_t before = host::memoryUse().blocks;
    tokensOf("a b c d", " ");
    tokensOf("   ", " ");
    int count;
    char text[] = "x y";
    char** tokens = mclibString_tokenize(&count, text, " ");
    EXPECT_STREQ(text, "x");
    char* const second = tokens[1];
    mclibString_freeTokenList(tokens, 0);
    EXPECT_STREQ(second, "y");
    dlmSystem_mdlFree(tokens[0]);
    mclibString_freeTokenList(tokens, -1);
    EXPECT_STREQ(second, "y");
    dlmSystem_mdlFree(second);
    EXPECT_EQ(host::memoryUse().blocks, before);
}

TEST(TextPieces, TokenizingWithoutMemoryGivesNoTokensAndLeavesNothing) {
    std::string text;
    for (int i = 0; i < 25; ++i) text += "t ";
    const size_t before = host::memoryUse().blocks;
    for (int call = 1; call <= 28; ++call) {  // a copy, an array that grows once, 25 tokens
        int count = -1;
        host::failMemoryFrom(call);
        EXPECT_EQ(mclibString_tokenize2(&count, text.c_str(), " "), nullptr) << call;
        host::failMemoryFrom(0);
        EXPECT_EQ(count, 0) << call;
        EXPECT_EQ(host::memoryUse().blocks, before) << call;
    }
}

TEST(TextPieces, AreSplitAtTheFirstLineBreak) {
    struct Case {
        const char *text, *first, *rest;
        int result;
    };
    constexpr Case cases[] = {
        {"abc\\ndef", "abc", "def", 1},
        {"abc\\Ndef", "abc", "def", 1},
        {"abc\ndef\\nghi", "abc", "def\\nghi", 1},
        {"abc\\n", "abc", "kept", 0},
        {"abc\n", "abc", "kept", 0},
        {"abc\\x", "abc\\x", "kept", 0},
        {"abc\\", "abc\\", "kept", 0},
        {"", "", "kept", 0},
        {"\nabc", "", "abc", 1},
        {"a\\\\nb", "a\\", "b", 1},
    };
    for (const Case& c : cases) {
        char text[32], rest[32] = "kept";
        std::strcpy(text, c.text);
        EXPECT_EQ(mclibUtil_splitText(text, rest), c.result) << c.text;
        EXPECT_STREQ(text, c.first) << c.text;
        EXPECT_STREQ(rest, c.rest) << c.text;
    }
}

TEST(TextPieces, LoseTheirBlanksInPlace) {
    char text[] = " a\tb  c \n";
    EXPECT_EQ(mclibUtil_removeSpaces(text), text);
    EXPECT_STREQ(text, "abc\n");
    char none[] = "";
    EXPECT_STREQ(mclibUtil_removeSpaces(none), "");
}

TEST(WideText, GoesThereAndBackWithin511Characters) {
    EXPECT_STREQ(mclibUtil_convertToUnicodeText("S\xf8r \x80"), L"S\u00f8r \u20ac");
    EXPECT_STREQ(mclibUtil_convertToMultibyteText(L"S\u00f8r \u20ac"), "S\xf8r \x80");
    EXPECT_EQ(std::wcslen(mclibUtil_convertToUnicodeText(std::string(600, 'x').c_str())), 511u);
    EXPECT_EQ(std::strlen(mclibUtil_convertToMultibyteText(std::wstring(600, L'x').c_str())), 511u);
    EXPECT_STREQ(mclibUtil_convertToUnicodeText(""), L"");
}

TEST(Angles, TellTextsThatWouldStandUpsideDown) {
    struct Case {
        double degrees;
        int upsideDown;
    };
    constexpr Case cases[] = {{0, 0},   {45, 0},  {89.999, 0}, {90, 0},  {90.003, 0}, {90.1, 1}, {120, 1},
                              {180, 1}, {225, 1}, {269.9, 1},  {270, 1}, {270.1, 0},  {315, 0},  {-90, 1}};
    for (const Case& c : cases)
        EXPECT_EQ(mclibUtil_angleIn2Or3Quadrant(c.degrees * std::numbers::pi / 180.0), c.upsideDown) << c.degrees;
}

TEST(Readout, AccuracyComesFromTheFormatBytes) {
    struct Case {
        unsigned char format, flags;
        int fallback, accuracy;
    };
    constexpr Case cases[] = {
        {0, 0, 9, 4},        {7, 0xFB, 9, 6}, {0xF8, 0, 9, 4}, {7, 4, 0, 0}, {7, 4, -1, 5}, {31 << 3 & 0xFF, 4, -1, 10},
        {2 << 3, 4, -7, -7},
    };
    const MdlTcb before = *tcbP;
    for (const Case& c : cases) {
        tcbP->readoutFormat = c.format;
        tcbP->readoutFlags = c.flags;
        EXPECT_EQ(mclibUtil_getCoordinateReadoutAccuracy(c.fallback), c.accuracy)
            << int{c.format} << " " << int{c.flags};
    }
    *tcbP = before;
}

TEST(WithoutAnApplication, CallsThatNeedABlockDoNoHarm) {
    EXPECT_EQ(*mclibUtil_masterToUORP(0.0), 0.0);
    EXPECT_EQ(*mclibUtil_UORToMasterP(*mclibUtil_masterToUORP(2.5)), 2.5);
    EXPECT_EQ(mclibMain_getApplicationName(), nullptr);
    EXPECT_EQ(mclibMain_currentAppIsInitApp(), 0);
    EXPECT_EQ(mclibWeb_openApplHelp(), MCLIB_ERROR);
    EXPECT_STREQ(mclibUtil_getLanguageText(2), "");
    EXPECT_EQ(mclibUtil_levelIdFromName(L"Roads"), 0u);
    EXPECT_EQ(mclibMain_initMcLib("loner", 0, nullptr), MCLIB_ERROR);
}

// ---- with a session and one application ----

class Utilities : public SessionTest {
  protected:
    Utilities()
        : SessionTest({{"MS_APPRSC", BUILD_DIR "/lib/mclib.rsc"}, {"MC_DIR", "c:\\mc\\"}}),
          app_(session().startApplication(
              "util", [](int argc, char** argv) { return mclibMain_initMcLib("Util", argc, argv); })),
          scope_(app_) {
        front().clear();
    }

  private:
    MdlDesc* app_;
    host::ApplicationScope scope_;
};

TEST_F(Utilities, TheHourGlassTurnsAtMostEvery31Ticks) {
    session().advanceTicks(0);
    mclibUtil_initHourGlass();
    session().advanceTicks(30);
    mclibUtil_updateHourGlass();
    EXPECT_TRUE(front().fields.empty());
    std::string frames;
    for (int i = 0; i < 6; ++i) {
        session().advanceTicks(i == 0 ? 1 : 31);
        mclibUtil_updateHourGlass();
        mclibUtil_updateHourGlass();
        frames += front().field(1);
    }
    EXPECT_EQ(frames, "|/-\\|/");
    EXPECT_EQ(front().fields.size(), 6u);
}

TEST_F(Utilities, DateAndTimeAreLocalWithNamesInTheLanguage) {
    const std::time_t before = std::time(nullptr);
    std::tm now{};
    now.tm_isdst = -1;
    int weekDay;
    char* name = nullptr;
    mclibUtil_getDateAndTime(&now.tm_year, &now.tm_mon, &now.tm_mday, &now.tm_hour, &now.tm_min, &now.tm_sec, &weekDay,
                             &name, nullptr);
    now.tm_year -= 1900;
    now.tm_mon -= 1;
    const std::time_t told = std::mktime(&now);
    EXPECT_LE(before, told);
    EXPECT_LE(told, std::time(nullptr));
    EXPECT_EQ(weekDay, now.tm_wday);
    constexpr const char* days[] = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
    EXPECT_STREQ(name, days[now.tm_wday]);

    mdlSystem_defineCfgVar("MS_LANGUAGE", "no", 4);
    constexpr const char* months[] = {"januar", "februar", "mars",      "april",   "mai",      "juni",
                                      "juli",   "august",  "september", "oktober", "november", "desember"};
    mclibUtil_getDateAndTime(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &name);
    EXPECT_STREQ(name, months[now.tm_mon]);
    mclibUtil_getDateAndTime(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    EXPECT_STREQ(name, months[now.tm_mon]);
}

TEST_F(Utilities, TheWorkmodeVariableFollowsTheHost) {
    EXPECT_EQ(mclibUtil_setWorkmode("ROADS_MODE"), 0);
    char value[32] = "?";
    EXPECT_NE(mdlSystem_getenv(value, "ROADS_MODE", sizeof value), 0);
    mdlSystem_defineCfgVar("ROADS_MODE", "dgn", 4);
    EXPECT_EQ(mclibUtil_setWorkmode("ROADS_MODE"), 1);
    ASSERT_EQ(mdlSystem_getenv(value, "ROADS_MODE", sizeof value), 0);
    EXPECT_STREQ(value, "DGN");
    EXPECT_EQ(mclibUtil_setWorkmode("ROADS_MODE"), 0);
}

TEST_F(Utilities, EditionsWithoutExternalProgramsAreToldByTheirVariables) {
    EXPECT_EQ(mclibUtil_mdlExternalNotAvailable(), 0);
    EXPECT_EQ(mclibUtil_runningPowerDraft(), 0);
    mdlSystem_defineCfgVar("_PRJREVIEW", "1", 4);
    EXPECT_EQ(mclibUtil_mdlExternalNotAvailable(), 1);
    EXPECT_EQ(mclibUtil_runningPowerDraft(), 0);
    EXPECT_EQ(front().dialogs, 0);
    mdlSystem_defineCfgVar("_MSDRAFT", "1", 4);
    EXPECT_EQ(mclibUtil_runningPowerDraft(), 1);
    EXPECT_EQ(front().dialogs, 1);
}

TEST_F(Utilities, AMissingBrowserIsToldAndTheKeyinIsStillSent) {
    EXPECT_EQ(mclibWeb_openUrl("https://example.org/"), MCLIB_SUCCESS);
    EXPECT_EQ(front().dialogs, 1);
    EXPECT_EQ(mclibWeb_openUrl(nullptr), MCLIB_ERROR);
}

TEST_F(Utilities, ManualsAreLookedForWithTheLanguageFirst) {
    EXPECT_EQ(mclibWeb_openApplHelp(), MCLIB_ERROR);
    EXPECT_EQ(front().dialogs, 0);
    std::filesystem::create_directories(path("drive_c/mc/doc/manual/Util"));
    writeFile("drive_c/mc/doc/manual/Util/index.htm", "<p>");
    EXPECT_EQ(mclibWeb_openApplHelp(), MCLIB_SUCCESS);
    EXPECT_EQ(mclibWeb_openApplChmHelp(), MCLIB_ERROR);
}

TEST_F(Utilities, EachCallGivesTheNextGraphicGroup) {
    const int32_t first = mclibUtil_newGraphicGroup();
    EXPECT_EQ(mclibUtil_newGraphicGroup(), first + 1);
}

class Levels : public Utilities {
  protected:
    void SetUp() override {
        ASSERT_EQ(mdlSystem_createDesignFile(path("a.mcd").c_str(), 1), MDL_SUCCESS);
        ASSERT_EQ(mdlSystem_newDesignFile(path("a.mcd").c_str(), 0), MDL_SUCCESS);
        model_ = mdlModelRef_getActive();
        ASSERT_NE(model_, nullptr);
    }
    ModelRef* model_ = nullptr;
};

TEST_F(Levels, AreMadeOnDemandAndFoundAgain) {
    const LevelId roads = mclibUtil_levelIdFromName(L"Roads");
    ASSERT_NE(roads, 0u);
    EXPECT_EQ(mclibUtil_levelIdFromName(L"Roads"), roads);
    EXPECT_EQ(mdlLevel_isValidByName(model_, L"Roads"), 1);
    EXPECT_EQ(mclibUtil_levelIdFromName(L""), 0u);
    EXPECT_EQ(mclibUtil_levelIdFromName(nullptr), 0u);
    mdlSystem_closeDesignFile();
    const LevelId own = mclibUtil_levelIdFromName(L"Tracks");
    EXPECT_NE(own, 0u) << "what is made without a design file has levels too";
    EXPECT_EQ(mclibUtil_levelIdFromName(L"Tracks"), own);
}

TEST_F(Levels, TakeColourWeightAndStyleWhenTheyAreNew) {
    const LevelId id = mclibUtil_levelIdFromNameExtended(L"Kerbs", 0, 1, 5, 3, 2);
    uint32_t color = 0, weight = 0;
    int32_t style = 0;
    ASSERT_EQ(mdlLevel_getElementSymbology(&color, &style, &weight, model_, id), MDL_SUCCESS);
    EXPECT_EQ(color, 5u);
    EXPECT_EQ(weight, 3u);
    EXPECT_EQ(style, 2);
    EXPECT_EQ(mclibUtil_levelIdFromNameExtended(L"Kerbs", 1, 1, 9, 9, 1), id);
    mdlLevel_getElementSymbology(&color, &style, &weight, model_, id);
    EXPECT_EQ(color, 5u);
}

TEST_F(Levels, ArentMadeInTheOldestWorkmode) {
    mdlSystem_defineCfgVar("MS_WORKMODE", "V7", 4);
    EXPECT_EQ(mclibUtil_levelIdFromName(L"S\u00f8r"), 0u);
    ASSERT_EQ(front().messages.size(), 1u);
    EXPECT_EQ(front().messages[0].priority, 11);
    EXPECT_EQ(front().messages[0].brief, "NA in 'V7 Workmode'.");
    EXPECT_NE(front().messages[0].details.find("Cannot create level 'S\u00f8r' because"), std::string::npos);
    EXPECT_EQ(mdlLevel_isValidByName(model_, L"S\u00f8r"), 0);
}

}  // namespace
