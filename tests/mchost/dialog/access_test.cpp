#include <gtest/gtest.h>

#include <clocale>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <cwchar>

#include "mchost/base/number_format.h"
#include "mchost/dialog/access.h"
#include "mchost/mdl/system.h"
#include "tests/support/session_fixture.h"

namespace {

struct Inner {
    char name[6];
    double length;
};
struct Block {
    int32_t device;
    uint32_t mask;
    uint8_t flag;
    double widths[3];
    char label[5];
    wchar_t title[4];
    char lines[2][4];
    Inner inner;
    Inner* other;
};

#define FIELD(Struct, member, type, count, name)                                               \
    StructField {                                                                              \
#member, type, offsetof(Struct, member), sizeof(Struct::member) / (count), count, name \
    }

const StructField innerFields[] = {FIELD(Inner, name, FIELD_CHARS, 1, nullptr),
                                   FIELD(Inner, length, FIELD_DOUBLE, 1, nullptr), StructField{}};
const StructField blockFields[] = {
    FIELD(Block, device, FIELD_INT32, 1, nullptr),  FIELD(Block, mask, FIELD_UINT32, 1, nullptr),
    FIELD(Block, flag, FIELD_BYTE, 1, nullptr),     FIELD(Block, widths, FIELD_DOUBLE, 3, nullptr),
    FIELD(Block, label, FIELD_CHARS, 1, nullptr),   FIELD(Block, title, FIELD_WCHARS, 1, nullptr),
    FIELD(Block, lines, FIELD_CHARS, 2, nullptr),   FIELD(Block, inner, FIELD_STRUCT, 1, "Inner"),
    FIELD(Block, other, FIELD_POINTER, 1, "Inner"), StructField{},
};

class AccessString : public SessionTest {
  protected:
    AccessString() {
        SymbolSet* set = mdlCExpression_initializeSet(4, 0, 0);
        mdlDialog_publishStructure(set, "Block", blockFields);
        mdlDialog_publishStructure(set, "Inner", innerFields);
        mdlDialog_publishComplexPtr(set, "Block", "bP", &blockP);
        mdlDialog_publishComplexPtr(set, "Lost", "lostP", &blockP);
    }
    static std::string get(const char* access) {
        char text[512] = "(untouched)";
        return mdlDialog_getAccessValue(text, sizeof text, access) == MDL_SUCCESS ? text : "error";
    }

    Inner far{"far", 2.5};
    Block block{-7, 4000000000u, 200, {1, 0.1, 3}, "abcd", L"\u00e6\u20ac", {"one", "two"}, {"near", 1.5}, &far};
    Block* blockP = &block;
};

TEST_F(AccessString, ReachesFieldsElementsAndOtherStructures) {
    struct Case {
        const char *access, *value, *next;
    };
    const Case cases[] = {
        {"bP->device", "-7", "12"},        {"bP->mask", "4000000000", "0"}, {"bP->flag", "200", "255"},
        {"bP->widths[1]", "0.1", "-2.25"}, {"bP->label", "abcd", "\xf8x"},  {"bP->title", "\xe6\x80", "\xc5"},
        {"bP->lines[1]", "two", ""},       {"bP->inner.name", "near", "n"}, {"bP->other->length", "2.5", "1e+100"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.access);
        EXPECT_EQ(get(c.access), c.value);
        EXPECT_EQ(mdlDialog_setAccessValue(c.access, c.next), MDL_SUCCESS);
        EXPECT_EQ(get(c.access), c.next);
    }
    EXPECT_STREQ(block.lines[0], "one");
    EXPECT_EQ(block.widths[0], 1);
    EXPECT_EQ(far.length, 1e100);
}

TEST_F(AccessString, WhatCannotBeReachedIsTold) {
    struct Case {
        const char *access, *fault;
    };
    const Case cases[] = {
        {"xP->device", "no published name \"xP\""},
        {"", "no published name \"\""},
        {"bP->devices", "has no field \"devices\""},
        {"bP->widths[3]", "has the elements 0 to 2, not \"3\""},
        {"bP->widths[-1]", "has the elements 0 to 2"},
        {"bP->widths[99999999999999999999]", "has the elements 0 to 2"},
        {"bP->widths[]", "has the elements 0 to 2"},
        {"bP->widths[1", "\"]\" is missing"},
        {"bP->widths", "stops before a single value"},
        {"bP->widths.name", "is no structure"},
        {"bP->device[0]", "is no array"},
        {"bP->device->x", "is no structure"},
        {"bP", "stops before a single value"},
        {"bP->inner", "stops before a single value"},
        {"bP->device x", "can't be read"},
        {"lostP->device", "no published structure \"Lost\""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.access);
        const host::AccessResult result = host::resolveAccess(c.access);
        EXPECT_FALSE(result.place);
        EXPECT_NE(result.fault.find(c.fault), std::string::npos) << result.fault;
        EXPECT_EQ(get(c.access), "error");
        EXPECT_EQ(mdlDialog_setAccessValue(c.access, "1"), MDL_ERROR);
    }
}

TEST_F(AccessString, PointersAreFollowedWhenTheValueIsWanted) {
    block.other = nullptr;
    EXPECT_EQ(get("bP->other->name"), "error");
    EXPECT_TRUE(host::resolveAccess("bP->other->name").onNull);
    Block second{};
    second.device = 99;
    blockP = &second;
    EXPECT_EQ(get("bP->device"), "99");
    blockP = nullptr;
    EXPECT_EQ(get("bP->device"), "error");
}

TEST_F(AccessString, AValueThatDoesNotFitLeavesTheOldOne) {
    struct Case {
        const char *access, *text, *fault;
    };
    constexpr const char* noNumber = "isn't a number";
    const Case cases[] = {
        {"bP->label", "abcde", "is too long: it has 5 characters, and 4 fit"},
        {"bP->title", "1234", "is too long: it has 4 characters, and 3 fit"},
        {"bP->lines[0]", "four", "is too long: it has 4 characters, and 3 fit"},
        {"bP->device", "2147483648", "isn't between -2147483648 and 2147483647"},
        {"bP->device", "1.5", "isn't a whole number"},
        {"bP->device", "7x", noNumber},
        {"bP->device", "", noNumber},
        {"bP->mask", "-1", "isn't between 0 and 4294967295"},
        {"bP->flag", "256", "isn't between 0 and 255"},
        {"bP->widths[0]", "nan", noNumber},
        {"bP->widths[0]", "1,5", "isn't a number: the decimal sign is \".\""},
        {"bP->widths[0]", "1e999", noNumber},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.access);
        const std::string before = get(c.access);
        EXPECT_EQ(mdlDialog_setAccessValue(c.access, c.text), MDL_ERROR) << c.text;
        EXPECT_EQ(host::writePlace(*host::resolveAccess(c.access).place, c.text), c.fault);
        EXPECT_EQ(get(c.access), before);
    }
    EXPECT_STREQ(block.lines[1], "two");
}

TEST_F(AccessString, ATextWithoutAnEndStopsAtItsArray) {
    std::memcpy(block.label, "xxxxx", 5);
    std::wmemcpy(block.title, L"yyyy", 4);
    EXPECT_EQ(get("bP->label"), "xxxxx");
    EXPECT_EQ(get("bP->title"), "yyyy");
    char small[4];
    EXPECT_EQ(mdlDialog_getAccessValue(small, sizeof small, "bP->label"), MDL_SUCCESS);
    EXPECT_STREQ(small, "xxx");
}

TEST_F(AccessString, TheCurrentApplicationsNamesHideThoseOfOthersAndGoWithIt) {
    static int32_t mine = 5;
    static int32_t* mineP = &mine;
    static const StructField field[] = {{"device", FIELD_INT32, 0, 4, 1, nullptr}, {}};
    asApplication("one", [&] {
        SymbolSet* set = mdlCExpression_initializeSet(4, 0, 0);
        mdlDialog_publishStructure(set, "Mine", field);
        mdlDialog_publishComplexPtr(set, "Mine", "bP", &mineP);
        mdlDialog_publishComplexPtr(set, "Mine", "oneP", &mineP);
        EXPECT_EQ(get("bP->device"), "5");
    });
    EXPECT_EQ(get("bP->device"), "-7");
    EXPECT_EQ(get("oneP->device"), "5");
    session().endApplication(application("one"));
    EXPECT_EQ(get("oneP->device"), "error");
}

TEST(ValueFormat, TakesExactlyOneConversionOfOneValue) {
    for (const char* good : {"%d", "%8.3f", "%-5s|", "100%% %g", "%+.2e m", "%04X"})
        EXPECT_TRUE(host::isValueFormat(good)) << good;
    for (const char* bad : {"", "abc", "%%", "%", "%d %d", "%n", "%ld", "%*d", "%.*f", "%100d", "%.100f", "%8.", "%p"})
        EXPECT_FALSE(host::isValueFormat(bad)) << bad;
}

TEST(ValueFormat, NumbersTakeTheFormOfTheirFormat) {
    EXPECT_EQ(host::formatNumber("%.2f m", 1.005e3), "1005.00 m");
    EXPECT_EQ(host::formatNumber("%d", -3.0), "-3");
    EXPECT_EQ(host::formatNumber("%u", 4294967295.0), "4294967295");
    EXPECT_EQ(host::formatNumber("%x", 255), "ff");
    EXPECT_EQ(host::formatNumber("%d", 1e300), std::nullopt);
    EXPECT_EQ(host::formatNumber("%s", 1), std::nullopt);
    EXPECT_EQ(host::formatNumber("%.99f", 1e300).value().size(), 301u + 1 + 99);
}

// Makes a locale with a decimal comma in the folder, and takes it; false where that can't be done.
bool takeCommaLocale(const std::string& folder) {
    std::filesystem::create_directories(folder);
    setenv("LOCPATH", folder.c_str(), 1);
    const std::string command = "localedef -c -i de_DE -f ISO-8859-1 '" + folder + "/comma' >/dev/null 2>&1";
    return std::system(command.c_str()) >= 0 && std::setlocale(LC_NUMERIC, "comma") != nullptr;
}

TEST_F(AccessString, NumbersHaveAPointInEveryLocale) {
    if (!takeCommaLocale(path("locale"))) GTEST_SKIP() << "no sources of locales";
    ASSERT_EQ(std::to_string(0.5), "0,500000");
    EXPECT_EQ(host::formatNumber("%.1f mm, %%", 20).value(), "20.0 mm, %");
    toolSubsystem_printf("%g\n", 0.5);
    EXPECT_EQ(front().consoleText, "0.5\n");
    std::setlocale(LC_NUMERIC, "C");
}

}  // namespace
