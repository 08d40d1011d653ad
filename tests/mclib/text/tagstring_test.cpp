#include "mclib/text/tagstring.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <optional>
#include <string>

#include "mchost/mdl/system.h"

namespace {

// One table and what a call gives with it; without a session the console is standard error.
class TagString : public testing::Test {
  protected:
    std::array<TagEntry, 6> tags = {{{"NAME", "AB-123"},
                                     {"Nr", "7"},
                                     {"my tag", "spaced"},
                                     {"DASHES", "a-b-c"},
                                     {"QUOTED", "\xA7q\xA7"},
                                     {"name", "never"}}};
    std::string console;

    std::optional<std::string> expand(const std::string& expression) {
        testing::internal::CaptureStderr();
        char* const text = mclibParse_tagString(expression.c_str(), tags.data(), static_cast<int>(tags.size()));
        console = testing::internal::GetCapturedStderr();
        if (!text) return {};
        std::string copy = text;
        dlmSystem_mdlFree(text);
        return copy;
    }
    // A position is seen as the length of what it cuts from a long text.
    int position(const std::string& expression) {
        setValue("DASHES", std::string(500, 'x'));
        const int length = static_cast<int>(expand("substr(DASHES,0," + expression + ")")->size());
        setValue("DASHES", "a-b-c");
        return length;
    }
    void setValue(const char* name, const std::string& value) {
        for (TagEntry& tag : tags) {
            if (strcasecmp(tag.name, name) == 0) tag.value[value.copy(tag.value, sizeof tag.value - 1)] = '\0';
        }
    }

    struct Case {
        const char* expression;
        const char* text;
        const char* console = "";
    };
    void expectTexts(std::initializer_list<Case> cases) {
        for (const Case& c : cases) {
            SCOPED_TRACE(c.expression);
            EXPECT_EQ(expand(c.expression), c.text);
            EXPECT_EQ(console, c.console);
        }
    }
    void expectFails(const char* expression, const char* message = "") {
        SCOPED_TRACE(expression);
        EXPECT_EQ(expand(expression), std::nullopt);
        EXPECT_EQ(console, message);
    }
};

TEST_F(TagString, JoinsStringsAndTags) {
    expectTexts({{"", ""},
                 {"NAME", "AB-123"},
                 {"name", "AB-123"},
                 {"\"No. \"+NR", "No. 7"},
                 {"\"a\"\"b\"", "ab"},
                 {" + \"a\" ++ + nr + name", "a7AB-123"},
                 {"MY TAG+\"x\"", "spacedx"},
                 {"NAME+", "AB-123"},
                 {"NAME  ", "AB-123"},
                 {"NAME \"x\"", ""},
                 {"OTHER", ""},
                 {"\"\"", ""}});
    EXPECT_STREQ(tags[2].name, "MY TAG") << "the lookup upper-cases the names that it compares";
}

TEST_F(TagString, SectionSignInAStringIsADoubleQuote) {
    expectTexts({{"\"x\xA7y\"", "x\"y"},
                 {"QUOTED+\"a\"", "\"q\"a"},  // what stands in front is changed too
                 {"strupr(QUOTED)", "\xA7Q\xA7"}});
    EXPECT_EQ(expand("\"a\"+QUOTED"), "a\xA7q\xA7");
}

TEST_F(TagString, EmptyElementFailsTheWholeExpression) {
    for (const char* bad : {" ", "+", "\"a\"+", "\"a\" ", "NAME++", "NAME+ ", "strupr(\"a\")+", "strupr(\"a\"+)",
                            "substr(\"a\"+,0,1)", "extstr(\" \"+,2,'0',end)+NR", "strupr(strupr( ))"}) {
        expectFails(bad);
    }
    EXPECT_EQ(position("strlen(\"abc\"+)+4"), 4) << "for a position it is 0";
}

TEST_F(TagString, CutsPadsAndRaisesCase) {
    expectTexts({{"strupr(\"ab\")+NR", "AB7"},
                 {"strupr()", ""},
                 {"strupr(\"bl\xE5\xFF\xF7\"+NAME)",
                  "BL\xC5\x9F\xF7"
                  "AB-123"},
                 {"substr(NAME,0,2)", "AB"},
                 {"substr(NAME,strchr(NAME,'-',1)+1,strlen(NAME))", "123"},
                 {"substr(NAME,strlen(NAME)-2,strlen(NAME))", "23"},
                 {"substr(NAME,2,2)", ""},
                 {"substr(NAME,3,2)", ""},
                 {"substr(NAME,0,100)", "AB-123"},
                 {"substr(NAME,100,200)", ""},
                 {"substr(NAME,-1,3)", ""},
                 {"substr(OTHER,0,3)+NR", "7"},
                 {"substr(\"x\"+NAME,0, 1 + 1)", "xA"},
                 {"extstr(NR,4,'0',start)", "0007"},
                 {"extstr(NR,4,'_',end)", "7___"},
                 {"extstr(NR, + 4, '_', + end)", "7___"},
                 {"extstr(NAME,2,'0',start)", "AB"},
                 {"extstr(NAME,2,'0',end)", "AB"},
                 {"extstr(NR,0,'0',start)", ""},
                 {"extstr(NR,-3,'0',start)", ""},
                 {"extstr(NR,3,',end)", ""},
                 {"extstr(NR,3,,end)", ""},
                 {"extstr(NR,3)+NR", "7"}});
}

TEST_F(TagString, PositionsAreWorkedOutFromRightToLeftWithinATerm) {
    struct {
        const char* expression;
        int value;
    } const cases[] = {{"12/5", 2},         {"2*7/2", 6},
                       {"8/4/2", 4},        {"1+2*3", 7},
                       {"(1+2)*3", 9},      {"-2+5", 3},
                       {"--2", 2},          {"-(2)+9", 7},
                       {"9-2-3", 4},        {"20-6/4/2", 17},
                       {"2*-3+9", 3},       {" 1 2 ", 12},
                       {"7/0+1", 1},        {"99999999999", 500},
                       {"+3", 3},           {"2++3", 5},
                       {"strlen(NAME)", 6}, {"2*strlen(NAME)", 12},
                       {"((((4))))", 4},    {"0-99999999999/-1+2147483647+3", 2}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.expression);
        EXPECT_EQ(position(c.expression), c.value);
        EXPECT_EQ(console, "");
    }
}

TEST_F(TagString, FindsTheNthCharacterFromEitherEnd) {
    expectTexts({{"substr(DASHES,0,strchr(DASHES,'-',2))", "a-b"},
                 {"substr(DASHES,0,strrchr(DASHES,'-',1))", "a-b"},
                 {"substr(DASHES,0,strrchr(DASHES,'-',2))", "a"},
                 {"substr(DASHES,0,strrchr(DASHES,'-',3))", ""},
                 {"substr(DASHES,0,strchr(DASHES,'x',1)+1)", "a"},
                 {"substr(DASHES,0,strchr(DASHES,'a',1)+1)", "a"},
                 {"substr(DASHES,0,strrchr(DASHES,'a',1)+1)", "a"},
                 {"substr(DASHES,0,strchr(DASHES,'-',-1)+1)", "a"},
                 {"substr(DASHES,0,strchr(OTHER,'-',1)+1)", "a"},
                 {"substr(DASHES,0,strchr(DASHES,',',1)+1)", "a"}});
    EXPECT_EQ(position("strchr(\"abc\",'c',1)"), 2);
    const char* const forward = "Invalid arguments in strchr()\n";
    const char* const backward = "Invalid arguments in strrchr()\n";
    expectTexts({{"substr(DASHES,strchr(DASHES,' ',1),1)", "a", forward},
                 {"substr(DASHES,0,strrchr(DASHES,'-',0)+1)", "a", backward},
                 {"substr(DASHES,0,strchr(DASHES,'ab',1)+1)", "a", forward},
                 {"substr(DASHES,0,strchr(DASHES)+1)", "a", forward},
                 {"substr(DASHES,0,strchr(DASHES,-)+1)", "a", forward},
                 {"substr(DASHES,0,strrchr(DASHES,'-')+1)", "a", backward}});
}

TEST_F(TagString, BadPositionsAreToldAndCountAsZero) {
    expectTexts(
        {{"substr(NAME,0)+NR", "7", "syntax error in getSubString()\n"},
         {"substr(NAME)", "", "syntax error in getSubString()\n"},
         {"substr((NAME,1),2)+NR", "7", "Unmatched brackets in expression: \"1)\"\n"},
         {"substr(NAME, ,2)", "AB", "Invalid expression: \"\"\n"},
         {"substr(NAME,0,2-(1))", "", "This should not occure: '('\n"},
         {"substr(NAME,0,2-strlen(NAME))", "", "This should not occure: 's'\n"},
         {"substr(NAME,0,2*)", "", "Invalid expression: \"2*\"\n"},
         {"substr(NAME,0,STRLEN(NAME))", "", "Invalid expression: \"STRLEN(NAME)\"\nThis should not occure: 'S'\n"},
         {"substr(NAME,0,strlen())", "", "Invalid expression: \"strlen()\"\nThis should not occure: 's'\n"},
         {"substr(NAME,x,y)", "",
          "Invalid expression: \"y\"\nThis should not occure: 'y'\n"
          "Invalid expression: \"x\"\nThis should not occure: 'x'\n"},
         {"substr(NAME,0,strlen(extstr(substr(NR,1),3,'0',end))+1)", "A", "Missing end bracket in \"(NR\"!\n"}});
}

TEST_F(TagString, WhatIsNotClosedFails) {
    expectFails("strupr(NAME+(", "Missing end bracket in \"(NAME+(\"!\n");
    expectFails("NR+substr(NAME,0,(1)+NR", "Missing end bracket in \"(NAME,0,(1)+NR\"!\n");
    expectFails("strupr(\"(\")", "Missing end bracket in \"(\"(\")\"!\n");
    expectFails("strupr NAME", "Missing end bracket in \" NAME\"!\n");
    expectFails("NR+\"abc", "Missing end quote in \"\"abc\"!\n");
    expectFails("extstr(substr(NAME,0,1),3,'0',end)", "Missing end bracket in \"(NAME\"!\n");
}

TEST_F(TagString, TextsAreCutAtTheirLimits) {
    setValue("NAME", std::string(2000, 'n'));
    EXPECT_EQ(expand("NAME"), std::string(511, 'n'));
    EXPECT_EQ(console, "The text of \"NAME\" is cut at 511 characters!\n");
    EXPECT_EQ(expand("substr(NAME,0,2)"), "nn");
    EXPECT_EQ(console, "");
    EXPECT_EQ(expand("substr(NAME,510,600)+NR"), "n7");
    EXPECT_EQ(expand("extstr(NR,2000000000,'0',start)"), std::string(511, '0'));
    std::memset(tags[0].value, 'v', sizeof tags[0].value);
    std::memset(tags[0].name, 'a', sizeof tags[0].name);
    EXPECT_EQ(expand(std::string(33, 'a')), std::string(511, 'v')) << "arrays may be full";
    EXPECT_EQ(expand(std::string(34, 'a')), "");
}

TEST_F(TagString, NestingHasAnEnd) {
    const auto nested = [](int levels, const char* open, const char* core) {
        std::string text;
        for (int i = 0; i < levels; ++i) text += open;
        return text + core + std::string(static_cast<size_t>(levels), ')');
    };
    EXPECT_EQ(expand(nested(300, "strupr(", "\"a\"")), "A");
    EXPECT_EQ(expand(nested(500, "strupr(", "\"a\"")), std::nullopt);
    EXPECT_EQ(console, "Too many levels in a tag string, more than 400\n");
    EXPECT_EQ(expand("substr(NAME,0," + nested(20000, "(", "1") + ")"), std::nullopt);
    std::string product = "1";
    for (int i = 0; i < 20000; ++i) product += "*1";
    EXPECT_EQ(expand("substr(NAME,0," + product + ")+NR"), std::nullopt);
}

TEST_F(TagString, WithoutATableEveryTagIsUnknown) {
    for (const int count : {0, -1, 3}) {
        char* const text = mclibParse_tagString("\"a\"+NAME", nullptr, count);
        EXPECT_STREQ(text, "a");
        dlmSystem_mdlFree(text);
    }
    char* const none = mclibParse_tagString(nullptr, tags.data(), 1);
    EXPECT_STREQ(none, "");
    dlmSystem_mdlFree(none);
}

}  // namespace
