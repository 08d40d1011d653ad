// Other words in place of texts that fit a pattern.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>

#include "mclib/design/text_search.h"
#include "mclib/frame/errors.h"

namespace {

struct Replaced {
    int status;
    std::string text;
};
bool operator==(const Replaced& a, const Replaced& b) {
    return a.status == b.status && a.text == b.text;
}
void PrintTo(const Replaced& replaced, std::ostream* out) {
    *out << replaced.status << " \"" << replaced.text << '"';
}

Replaced replaced(const std::string& text, const std::string& pattern, const std::string& replacement,
                  uint32_t flags = 0, int size = MCLIB_SEARCH_TEXT_SIZE) {
    char out[MCLIB_SEARCH_TEXT_SIZE] = "left";
    const int status = mclibSearch_replaceString(out, size, text.c_str(), pattern.c_str(), replacement.c_str(), flags);
    return {status, out};
}

TEST(ReplaceString, CarriesOverWhatWildcardsTook) {
    const struct {
        const char *text, *pattern, *replacement, *result;
    } cases[] = {
        {"Road-017 B", "ROAD-###*", "STREET ???*", "STREET 017 B"},
        {"axxb", "A*B", "<*>", "<xx>"},
        {"AxAB", "*AB", "*", "Ax"},      // the star was tried again further along
        {"AxAyAB", "*AB", "*", "AxAy"},  // twice
        {"V12/34", "V*/*", "*:*", "12:34"},
        {"A", "A*", "B*C", "BC"},
        {"1 of 3", "*:2 of *:2", "2 of *", "2 of 1"},
        {"K7z", "[JK]#@", "???", "K7z"},
        {"a*b", "a|*b", "|*|?||", "*?|"},
        {"abc", "abc", "x|", "x|"},
        {"say \"a\"", "say \xA7*\xA7", "*", "a"},
        {"\xC5s", "\xA4s", "?", "\xC5"},
        {"AAB", "**B", "*-*", "AA-"},
        {"", "*", "new*", "new"},
        {"x", "x", "", ""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(replaced(c.text, c.pattern, c.replacement), (Replaced{MCLIB_SUCCESS, c.result})) << c.pattern;
}

TEST(ReplaceString, TellsWhatCannotBeReplaced) {
    EXPECT_EQ(replaced("ABX", "ABC", "*"), (Replaced{MCLIB_REPLACE_BAD_FORM, ""}));
    EXPECT_EQ(replaced("ABX", "AB*", "??"), (Replaced{MCLIB_REPLACE_BAD_FORM, ""}));
    EXPECT_EQ(replaced("ABX", "AB_", "?"), (Replaced{MCLIB_REPLACE_BAD_FORM, ""}));  // no choice, no wildcard
    EXPECT_EQ(replaced("ABX", "ABC", "D"), (Replaced{MCLIB_REPLACE_NO_FIT, ""}));
    EXPECT_EQ(replaced("abc", "ABC", "D", SEARCH_CASE_SENSITIVE), (Replaced{MCLIB_REPLACE_NO_FIT, ""}));
    EXPECT_EQ(replaced("ABC", "A*", "*X", 0, 3), (Replaced{MCLIB_REPLACE_TOO_LONG, ""}));
    EXPECT_EQ(replaced("ABC", "A*", "*X", 0, 4), (Replaced{MCLIB_SUCCESS, "BCX"}));
    EXPECT_EQ(replaced("A", std::string(MCLIB_SEARCH_TEXT_SIZE, '*'), "B"), (Replaced{MCLIB_REPLACE_TOO_LONG, ""}));
    EXPECT_EQ(mclibSearch_replaceString(nullptr, 0, nullptr, "A*", "*", 0), MCLIB_SUCCESS);
    EXPECT_EQ(mclibSearch_replaceString(nullptr, 0, nullptr, "A*", "**", 0), MCLIB_REPLACE_BAD_FORM);
    EXPECT_EQ(mclibSearch_replaceString(nullptr, 0, "A", "A", "B", 0), MCLIB_REPLACE_TOO_LONG);
}

// All that a pattern takes put together again, in its order, is the text.
TEST(ReplaceString, AWholeTextIsMadeOfWhatWasTaken) {
    std::mt19937 random(3);
    const auto oneOf = [&](std::string_view letters) { return letters[random() % letters.size()]; };
    int fitting = 0;
    for (int round = 0; round < 20'000; ++round) {
        std::string text, pattern, replacement;
        for (size_t length = random() % 9; length > 0; --length) text += oneOf("aab1");
        for (size_t length = random() % 7; length > 0; --length) {
            const char sign = oneOf("ab1?#@***");
            pattern += sign;
            if (sign == '*' && random() % 4 == 0) pattern += std::string(":00") + oneOf("0123");
            replacement += sign == '#' || sign == '@' ? '?' : sign;
        }
        if (mclibSearch_compareString(text.c_str(), pattern.c_str(), SEARCH_CASE_SENSITIVE, 0) != 0) continue;
        ++fitting;
        EXPECT_EQ(replaced(text, pattern, replacement, SEARCH_CASE_SENSITIVE), (Replaced{MCLIB_SUCCESS, text}))
            << pattern;
    }
    EXPECT_GT(fitting, 500);
}

TEST(CompareString, LeavesTheTextAndTakesFlagsAndErrors) {
    EXPECT_EQ(mclibSearch_compareString("a b c", "ABC", SEARCH_IGNORE_BLANKS, 0), 0);
    EXPECT_EQ(mclibSearch_compareString("abc", "ABC", SEARCH_CASE_SENSITIVE, 0), 1);
    EXPECT_EQ(mclibSearch_compareString("ABXC", "ABC", 0, 1), 1);
    EXPECT_EQ(mclibSearch_compareString(nullptr, nullptr, 0, 0), 0);
    EXPECT_EQ(mclibSearch_compareString(std::string(5000, 'A').c_str(), "*", 0, 0), 1);
}

}  // namespace
