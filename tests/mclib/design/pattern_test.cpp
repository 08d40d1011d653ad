// The pattern language and its errors: by hand, and against the rules written down in the plainest way.
#include "mclib/design/pattern.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "mclib/frame/letters.h"

using namespace mc;
using design::Pattern;

namespace {

// ---- the rules, one by one, on the pattern as it is written ----

struct Position {
    size_t text, pattern;
};

class Rules {
  public:
    Rules(std::string_view text, std::string_view pattern, bool caseSensitive, int maxErrors)
        : text_(text), pattern_(pattern), caseSensitive_(caseSensitive), maxErrors_(maxErrors) {}

    int errors() {
        Position at{0, 0};
        int count = 0;
        size_t star = none, starText = 0;
        while (at.text < text_.size() && at.pattern < pattern_.size()) {
            const size_t tried = at.pattern;
            if (tryElement(at)) {
                if (!isStar(tried)) continue;
                if (star != tried) retries_ = 0;
                star = tried;
                starText = at.text;
            } else if (star != none && at.pattern != star) {
                ++retries_;
                at = {starText, star};
            } else {
                star = none;
                if (count >= maxErrors_) return count + 1;
                count += recover(at);
                if (count > maxErrors_) return count;
            }
        }
        for (; at.pattern < pattern_.size(); at.pattern = behind(at.pattern)) {
            if (!isStar(at.pattern) && ++count > maxErrors_) return count;
        }
        return count + static_cast<int>(text_.size() - at.text) * (at.pattern == pattern_.size());
    }

  private:
    static constexpr size_t none = ~size_t{0};

    bool isStar(size_t p) const { return p < pattern_.size() && pattern_[p] == '*'; }
    // Digits of the limit of the star at p.
    size_t digits(size_t p) const {
        size_t count = 0;
        if (p + 1 < pattern_.size() && pattern_[p + 1] == ':')
            while (count < 3 && p + 2 + count < pattern_.size() && isDigit(pattern_[p + 2 + count])) ++count;
        return count;
    }
    int limit(size_t p) const { return std::stoi(std::string(pattern_.substr(p + 2, digits(p)))); }
    size_t behind(size_t p) const {
        if (isStar(p)) return p + 1 + (digits(p) != 0 ? 1 + digits(p) : 0);
        if (pattern_[p] == '[') return std::min(pattern_.find(']', p), pattern_.size() - 1) + 1;
        return std::min(p + (pattern_[p] == '|' ? 2 : 1), pattern_.size());
    }
    bool same(char a, char b) const { return a == b || (!caseSensitive_ && lower(a) == lower(b)); }
    bool isIn(std::string_view set, char c) const {
        if (set.back() != ']') return false;
        for (const char one : set.substr(1, set.size() - 2))
            if (same(one, c)) return true;
        return false;
    }
    bool matches(size_t p, char c) const {
        const std::string_view element = pattern_.substr(p, behind(p) - p);
        switch (element[0]) {
            case '?': return true;
            case '#': return isDigit(c);
            case '@': return isLetter(c);
            case '&': return isDigit(c) || isLetter(c);
            case '_': return c == ' ';
            case '\xA7': return c == '"';
            case '\xA4': return static_cast<unsigned char>(c) >= 0x80;
            case '[': return isIn(element, c);
            default: return same(element.back(), c);
        }
    }
    bool tryElement(Position& at) const {
        if (at.text == text_.size()) return at.pattern == pattern_.size();
        if (at.pattern == pattern_.size()) return false;
        if (isStar(at.pattern)) return tryStar(at);
        if (!matches(at.pattern, text_[at.text])) return false;
        at = {at.text + 1, behind(at.pattern)};
        return true;
    }
    bool tryStar(Position& at) const {
        const int most = digits(at.pattern) != 0 ? limit(at.pattern) - retries_ : 200;
        const size_t next = behind(at.pattern);
        if (next == pattern_.size()) {
            if (static_cast<int>(text_.size() - at.text) > most) return false;
            at = {text_.size(), next};
            return true;
        }
        for (size_t t = at.text; t < text_.size(); ++t) {
            Position found{t, next};
            if (!tryElement(found)) continue;
            if (static_cast<int>(found.text - at.text) - 1 > most) return false;
            at = found;
            return true;
        }
        return false;
    }
    int recover(Position& at) const {
        const size_t failed = at.pattern;
        size_t current = isStar(failed) ? behind(failed) : failed;
        size_t span = text_.size() - at.text, resume = none;
        if (!isStar(failed) && maxErrors_ < static_cast<int>(span)) span = static_cast<size_t>(maxErrors_) + 1;
        int skipped = 0;
        while (current != pattern_.size()) {
            for (size_t offset = 0; offset < span; ++offset) {
                Position first{at.text + offset, current};
                if (!tryElement(first)) continue;
                Position second{first.text, behind(current)};
                if (!tryElement(second)) continue;
                resume = current;
                span = offset;
            }
            current = behind(current);
            ++skipped;
            if (skipped > static_cast<int>(span) || skipped > maxErrors_) break;
        }
        int errors = static_cast<int>(span);
        if (isStar(failed)) {
            errors = std::max(skipped - 1, 0);
            if (digits(failed) != 0) errors += std::max(static_cast<int>(span) - limit(failed), 0);
        }
        at = {at.text + span, resume != none ? resume : current};
        return isStar(resume) ? skipped - 1 : errors;
    }

    std::string_view text_, pattern_;
    bool caseSensitive_;
    int maxErrors_, retries_ = 0;
};

// ---- by hand ----

TEST(Pattern, CountsTheErrorsOfAText) {
    const std::string x200(200, 'x'), x201(201, 'x');
    struct Case {
        std::string text, pattern;
        int maxErrors, errors;
    };
    for (const Case& c : {
             Case{"ABC", "abc", 0, 0},
             {"\xC6\x8A", "\xE6\x9A", 0, 0},
             {"A7", "A#", 0, 0},
             {"AB", "A#", 0, 1},
             {"", "", 0, 0},
             {"A", "A*", 0, 0},
             {"", "*", 0, 0},
             {"", "?", 0, 1},
             {"", "AB", 5, 2},
             {"abc", "", 9, 3},
             {"a\xE5\xDF", "@@@", 0, 0},
             {"1", "@", 0, 1},
             {"\xF7", "@", 0, 1},
             {"a1\xE5", "&&&", 0, 0},
             {"-", "&", 0, 1},
             {" ", "_", 0, 0},
             {"\t", "_", 0, 1},
             {"_", "_", 0, 1},
             {"_", "|_", 0, 0},
             {"\"", "\xA7", 0, 0},
             {"\xA7", "\xA7", 0, 1},
             {"\x80\xFF", "\xA4\xA4", 0, 0},
             {"\x7F", "\xA4", 0, 1},
             // sets and bars
             {"b", "[abc]", 0, 0},
             {"C", "[abc]", 0, 0},
             {"d", "[abc]", 0, 1},
             {"-", "[a-c]", 0, 0},
             {"x", "[]", 0, 1},
             {"[", "[", 0, 1},
             {"a", "[abc", 0, 1},
             {"", "[abc", 5, 1},
             {"]", "]", 0, 0},
             {"*", "[*]", 0, 0},
             {"a*b", "a|*b", 0, 0},
             {"axb", "a|*b", 0, 1},
             {"a|", "a|", 0, 0},
             {"a|", "a||", 0, 0},
             // stars
             {"XXB", "*:2B", 0, 0},
             {"XXXB", "*:2B", 0, 1},
             {"AxAB", "*AB", 0, 0},
             {"AA", "*A", 0, 1},
             {"ABAB", "*AB", 0, 2},
             {x200 + "B", "*B", 0, 0},
             {x201 + "B", "*B", 0, 1},
             {x200, "*", 0, 0},
             {x201, "*", 0, 1},
             {"B", "*:0B", 0, 0},
             {"xB", "*:0B", 0, 1},
             {"x:B", "*:B", 0, 0},
             {"xB", "*:B", 0, 1},
             {"xx4", "*:0024", 0, 0},
             {"xx", "*:2", 0, 0},
             {"xxx", "*:2", 0, 1},
             // a star that is gone back to takes one less: "xA", then "x" of one that is left
             {"xAxAB", "*:1AB", 0, 1},
             {"xAxAB", "*:2AB", 0, 0},
             {"AxABxxC", "*AB*:2C", 0, 1},
             {"AxABxC", "*AB*:2C", 0, 0},
             // stars in a row
             {"xxB", "**B", 0, 0},
             {"xxB", "*:2*:0B", 0, 0},
             {"xxB", "*:1*B", 0, 1},
             {"xx", "*:1*", 0, 0},
             {"xx", "**:0", 0, 1},
             {"xx", "*:0*", 0, 1},
             {"x", "***", 0, 0},
             // near
             {"ABXD", "ABCD", 1, 1},
             {"ABD", "ABCD", 1, 0},
             {"ABCxyz", "ABC", 3, 3},
             {"AXYD", "ABCD", 1, 2},
             {"xxxB", "*:2B", 2, 1},
             {"ABC", "ABCDE", 1, 2},
             {"ABC", "ABCDE", 2, 2},
         }) {
        SCOPED_TRACE(c.text + " " + c.pattern);
        EXPECT_EQ(Pattern(c.pattern, false).errorsOf(c.text, c.maxErrors), c.errors);
        EXPECT_EQ(Rules(c.text, c.pattern, false, c.maxErrors).errors(), c.errors);
    }
}

TEST(Pattern, ComparesLettersExactlyWhenAsked) {
    for (const char* pattern : {"a", "|a", "[ab]", "*a"}) {
        EXPECT_EQ(Pattern(pattern, true).errorsOf("a", 0), 0) << pattern;
        EXPECT_EQ(Pattern(pattern, true).errorsOf("A", 0), 1) << pattern;
    }
    EXPECT_EQ(Pattern("@", true).errorsOf("A", 0), 0);
}

TEST(Pattern, AgreesWithTheRulesOnRandomTexts) {
    std::mt19937 random(20261123);
    const auto below = [&](size_t n) { return random() % n; };
    constexpr const char* elements[] = {"a",   "b",    "A",    "B",    "1",  "?",  "#",  "@", "*", "*:0", "*:1", "*:2",
                                        "*:3", "*:12", "[ab]", "[B1]", "[]", "[a", "|*", "_", "&", "|",   ":",   " "};
    for (int round = 0; round < 100'000; ++round) {
        std::string pattern, text;
        for (size_t i = below(9); i > 0; --i) pattern += elements[below(std::size(elements))];
        for (size_t i = below(below(20) == 0 ? 60 : 12); i > 0; --i) text += "abAB1 x*"[below(8)];
        const bool caseSensitive = below(2) == 0;
        const int maxErrors = static_cast<int>(below(below(2) == 0 ? 2 : 7)) - (below(50) == 0);
        ASSERT_EQ(Pattern(pattern, caseSensitive).errorsOf(text, maxErrors),
                  Rules(text, pattern, caseSensitive, maxErrors).errors())
            << '"' << text << "\" \"" << pattern << "\" " << caseSensitive << ' ' << maxErrors;
    }
}

// ---- texts of applications ----

TEST(CheckString, ComparesATextInABufferOfTheCallers) {
    char text[MCLIB_SEARCH_TEXT_SIZE] = "Pump 12";
    EXPECT_EQ(mclibSearch_checkString(text, "pump_##"), 0);
    EXPECT_EQ(mclibSearch_checkString(text, "pump##"), 1);
    EXPECT_STREQ(text, "Pump 12");
    EXPECT_EQ(mclibSearch_checkString(nullptr, nullptr), 0);
    EXPECT_EQ(mclibSearch_checkString(text, nullptr), 7);
    EXPECT_EQ(mclibSearch_checkString(nullptr, "A"), 1);
}

TEST(CheckString, ALongTextIsCutInItsBuffer) {
    std::string text(2500, 'a');
    EXPECT_EQ(mclibSearch_checkString(text.data(), std::string(1999, 'A').c_str()), 0);
    EXPECT_EQ(text[1999], '\0');
}

TEST(ErrorsOfText, BlanksDoNotCountWhenAsked) {
    char text[] = " A  B ";
    EXPECT_EQ(design::errorsOfText(text, Pattern("AB", true), true, 0), 0);
    EXPECT_EQ(design::errorsOfText(text, Pattern("A B", true), true, 0), 1) << "those of the pattern stay";
    EXPECT_STREQ(text, " A  B ");

    std::string longest(1000, ' ');
    EXPECT_EQ(design::errorsOfText(longest.data(), Pattern("", true), true, 0), 0);
    longest += ' ';
    testing::internal::CaptureStderr();
    EXPECT_EQ(design::errorsOfText(longest.data(), Pattern("", true), true, 3), 4);
    EXPECT_GT(design::errorsOfText(longest.data(), Pattern("", true), true, INT32_MAX - 1), INT32_MAX - 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "ERROR - Buffer size exceeded\nERROR - Buffer size exceeded\n");
}

}  // namespace
