// The Fii reader: tokens of a logical line.
#include "mclib/text/fii.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "tests/mclib/text/text_files.h"

namespace {

// A reader on a file of these bytes, its first line in hand.
class LineReader {
  public:
    explicit LineReader(std::string_view bytes, bool pack = false) {
        const std::string path = files.write("fii.txt", bytes);
        EXPECT_EQ(mclibFii_open(&fii, path.c_str(), "r"), MCLIB_SUCCESS);
        if (pack) mclibFii_packOn(&fii);
        mclibFii_readNewLine(&fii);
    }
    ~LineReader() { mclibFii_close(&fii); }

    McFii* operator->() { return &fii; }
    McFii* get() { return &fii; }

  private:
    TextFiles files;
    McFii fii;
};

}  // namespace

TEST(FiiReader, NumberTakesTheTokenAndTheRunOfDelimiters) {
    struct Case {
        const char *line, *delimiters;
        double value;
        const char* left;
    };
    for (const Case& c : {
             Case{"12,13", ",", 12, "13"},
             Case{"12,,13", ",", 12, "13"},
             Case{",13", ",", 0, "13"},
             Case{"-7;,;5", ",;", -7, "5"},
             Case{"+42", " ", 42, ""},
             Case{"1   ,2", " ,", 1, "2"},
             Case{"2147483647 ", " ", 2147483647, ""},
             Case{"-2147483648 x", " ", -2147483648.0, "x"},
             Case{"007e5", "e", 7, "5"},
         }) {
        SCOPED_TRACE(c.line);
        LineReader whole(c.line), real(c.line);
        EXPECT_EQ(mclibFii_readLong(whole.get(), c.delimiters), c.value);
        EXPECT_STREQ(whole->position, c.left);
        EXPECT_EQ(*mclibFii_readDoubleP(real.get(), c.delimiters), c.value);
        EXPECT_STREQ(real->position, c.left);
        EXPECT_EQ(whole->error, FII_NONE);
        EXPECT_EQ(real->error, FII_NONE);
    }
}

TEST(FiiReader, LeadingBlanksBelongToANumber) {
    LineReader fii("1;  2; ;4");
    EXPECT_EQ(mclibFii_readLong(fii.get(), ";"), 1);
    EXPECT_EQ(mclibFii_readLong(fii.get(), ";"), 2);
    EXPECT_EQ(mclibFii_isLong(fii.get(), ";"), MCLIB_ERROR);  // blanks alone are no empty token
    EXPECT_STREQ(fii->position, " ;4");
}

TEST(FiiReader, RealNumbersAreThoseOfTheSystem) {
    for (const char* text : {"3.5", ".5", "5.", "-0.25e3", "1E-3", "+1e+2", "-0", "0.1", "123456789.123456789",
                             "2.2250738585072014e-308", "4.9e-324", "1e-400", "-1e-400", "1.7976931348623157e308"}) {
        SCOPED_TRACE(text);
        LineReader fii(text);
        ASSERT_EQ(mclibFii_isDouble(fii.get(), " "), MCLIB_SUCCESS);
        const double expected = std::strtod(text, nullptr);
        EXPECT_EQ(*mclibFii_getDoubleP(fii.get()), expected);
        EXPECT_EQ(std::signbit(fii->doubleValue), std::signbit(expected));
    }
}

TEST(FiiReader, RandomNumbersAreThoseOfTheSystem) {
    std::mt19937_64 random(7);
    for (int i = 0; i < 300; ++i) {
        std::string line;
        std::vector<std::string> numbers;
        for (int j = 0; j < 20; ++j) {
            char text[64];
            const double value = std::ldexp(static_cast<double>(random() >> 11), -static_cast<int>(random() % 70));
            std::snprintf(text, sizeof text, j % 3 ? "%.*f" : "%.*e", static_cast<int>(random() % 12),
                          random() % 2 ? value : -value);
            numbers.push_back(text);
            line += numbers.back() + ';';
        }
        LineReader fii(line);
        for (const std::string& number : numbers)
            ASSERT_EQ(*mclibFii_readDoubleP(fii.get(), ";"), std::strtod(number.c_str(), nullptr)) << number;
        EXPECT_EQ(mclibFii_eol(fii.get()), 1);
    }
}

TEST(FiiReader, WhatIsNoNumberLeavesPositionAndValue) {
    for (const char* text :
         {"abc", "12x", "0x10", "inf", "nan", "-", "+", "+-1", "-+1", ".", "e5", "1e", "--1", "1 2"}) {
        SCOPED_TRACE(text);
        LineReader fii(text);
        EXPECT_EQ(mclibFii_isDouble(fii.get(), ","), MCLIB_ERROR);
        EXPECT_EQ(fii->error, FII_NOT_NUMBER);
        EXPECT_EQ(mclibFii_isLong(fii.get(), ","), MCLIB_ERROR);
        EXPECT_EQ(fii->error, FII_NOT_WHOLE);
        EXPECT_EQ(*mclibFii_readDoubleP(fii.get(), ","), 0.0);
        EXPECT_EQ(mclibFii_readLong(fii.get(), ","), 0);
        EXPECT_STREQ(fii->position, text);
    }
    for (const char* text : {"1e3", "1.0", "2147483648", "-2147483649", "99999999999999999999"}) {
        SCOPED_TRACE(text);
        LineReader fii(text);
        EXPECT_EQ(mclibFii_isLong(fii.get(), " "), MCLIB_ERROR);
        EXPECT_EQ(mclibFii_isDouble(fii.get(), " "), MCLIB_SUCCESS);
    }
    LineReader infinite("1e999");
    EXPECT_EQ(mclibFii_isDouble(infinite.get(), " "), MCLIB_ERROR);
}

TEST(FiiReader, LongTokenIsCutInItsCopyAlone) {
    const std::string word(300, 'w'), digits(300, '1');
    LineReader fii(word + "  \t" + digits + " end");
    char dest[256];
    EXPECT_EQ(mclibFii_readText(fii.get(), dest), dest);
    EXPECT_EQ(dest, word.substr(0, 255));
    EXPECT_EQ(mclibFii_isDouble(fii.get(), " "), MCLIB_SUCCESS);
    EXPECT_EQ(fii->doubleValue, std::strtod(digits.substr(0, 255).c_str(), nullptr));
    EXPECT_STREQ(fii->position, "end");
}

TEST(FiiReader, TextsUpToSeparatorsQuotesAndDelimiters) {
    LineReader fii(" first  \"in quotes\"  a=b ;  rest of line");
    char dest[256];
    EXPECT_STREQ(mclibFii_readText(fii.get(), dest), "first");
    EXPECT_STREQ(mclibFii_readString(fii.get(), "\"", dest), "in quotes");
    EXPECT_STREQ(fii->position, "a=b ;  rest of line");
    EXPECT_EQ(mclibFii_readString(fii.get(), "\"", dest), nullptr);
    EXPECT_STREQ(dest, "");
    EXPECT_STREQ(mclibFii_readSubString(fii.get(), "=", dest), "a");
    EXPECT_STREQ(mclibFii_readSubString(fii.get(), ";", dest), "b ");
    EXPECT_EQ(mclibFii_getLine(fii.get(), dest), 0);
    EXPECT_STREQ(dest, "rest of line");
    EXPECT_STREQ(fii->position, "rest of line");
    EXPECT_EQ(mclibFii_eol(fii.get()), 0);
}

TEST(FiiReader, SeparatorsBehindTheLastTokenAreTheEndOfTheLine) {
    LineReader fii("a \"b\"");
    char dest[256];
    mclibFii_readText(fii.get(), dest);
    EXPECT_EQ(mclibFii_eol(fii.get()), 0);
    mclibFii_readString(fii.get(), "\"", dest);
    EXPECT_EQ(mclibFii_eol(fii.get()), 1);
    EXPECT_EQ(mclibFii_readChar(fii.get()), ' ');
    EXPECT_EQ(fii->error, FII_NONE);
    EXPECT_STREQ(mclibFii_readText(fii.get(), dest), "");
}

TEST(FiiReader, CharacterThatIsNoLetterIsPassedWithAnError) {
    LineReader fii(
        " a \xE6\x8A"
        "5");
    EXPECT_EQ(mclibFii_readChar(fii.get()), 'a');
    EXPECT_EQ(mclibFii_readChar(fii.get()), '\xE6');  // the Norwegian ae
    EXPECT_EQ(mclibFii_readChar(fii.get()), '\x8A');  // S with caron
    EXPECT_EQ(fii->error, FII_NONE);
    EXPECT_EQ(mclibFii_readChar(fii.get()), '5');
    EXPECT_EQ(fii->error, FII_NOT_LETTER);
    EXPECT_EQ(mclibFii_eol(fii.get()), 1);
}

TEST(FiiReader, KeywordsWithAndWithoutLetterCase) {
    LineReader fii("NAME = 1");
    EXPECT_EQ(mclibFii_seekText(fii.get(), "other"), MCLIB_ERROR);
    EXPECT_EQ(mclibFii_seekText(fii.get(), "NAME = 1 and more"), MCLIB_ERROR);
    EXPECT_EQ(fii->error, FII_NONE);
    mclibFii_caseSensitiveOn(fii.get());
    EXPECT_EQ(mclibFii_isText(fii.get(), "name"), MCLIB_ERROR);
    EXPECT_STREQ(fii->position, "NAME = 1");
    mclibFii_caseSensitiveOff(fii.get());
    EXPECT_EQ(mclibFii_isText(fii.get(), "name"), MCLIB_SUCCESS);
    EXPECT_STREQ(fii->position, " = 1");
    EXPECT_EQ(mclibFii_seekText(fii.get(), "x"), MCLIB_ERROR);
    EXPECT_STREQ(fii->position, "= 1");  // skipped separators stay skipped
    LineReader norwegian("N\xD8KKEL");
    EXPECT_EQ(mclibFii_isText(norwegian.get(), "n\xF8kkel"), MCLIB_SUCCESS);
    LineReader saami("\x8AILJU \x9F");
    EXPECT_EQ(mclibFii_isText(saami.get(), "\x9Ailju \xFF"), MCLIB_SUCCESS);
}

TEST(FiiReader, PackModeRemovesBlanksOutsideQuotesFromTheNextLine) {
    LineReader fii("A = 1\nA = \"x y\"\t2\nB C");
    mclibFii_packOn(fii.get());
    EXPECT_STREQ(fii->line, "A = 1");
    mclibFii_readNewLine(fii.get());
    EXPECT_STREQ(fii->line, "A=\"x y\"2");
    EXPECT_EQ(mclibFii_isText(fii.get(), "A="), MCLIB_SUCCESS);
    char dest[256];
    EXPECT_STREQ(mclibFii_readString(fii.get(), "\"", dest), "x y");
    EXPECT_EQ(mclibFii_readLong(fii.get(), " "), 2);
    mclibFii_packOff(fii.get());
    mclibFii_readNewLine(fii.get());
    EXPECT_STREQ(fii->line, "B C");
}

TEST(FiiReader, ArraysOfNumbersMoveOverNumbersAlone) {
    LineReader fii("1.5-2+3 4");
    double a[3], x[1], y[1];
    int n[2];
    EXPECT_EQ(mclibFii_readNumeric(fii.get(), 0, 1, 1, a, -1), MCLIB_SUCCESS);
    EXPECT_EQ(a[0], 1.5);
    EXPECT_STREQ(fii->position, " 4");  // the run of a number holds its signs
    EXPECT_EQ(mclibFii_readNumeric(fii.get(), 0, 2, 2, n, 0, 1, a, 1, 3, x, y, -1), MCLIB_SUCCESS);
    EXPECT_EQ(n[0], 4);
    EXPECT_EQ(n[1], 4);
    EXPECT_EQ(x[0], 4);
    EXPECT_EQ(y[0], 4);
    EXPECT_STREQ(fii->position, " 4");
    EXPECT_EQ(mclibFii_readNumeric(fii.get(), 0, 1, 7, a, -1), MCLIB_ERROR);
    LineReader large("99999999999x");
    EXPECT_EQ(mclibFii_readNumeric(large.get(), 0, 2, 2, n, -1), MCLIB_SUCCESS);
    EXPECT_EQ(n[0], 2147483647);
    EXPECT_EQ(n[1], 0);
    EXPECT_STREQ(large->position, "x");
}

TEST(FiiReader, ErrorsTellCodeLineAndColumn) {
    LineReader fii("# head\nvalue = abc\n");
    int code = 5, line = 5, column = 5;
    char text[300] = "untouched";
    EXPECT_EQ(mclibFii_reportErr(fii.get(), &code, &line, &column, text), MCLIB_ERROR);
    EXPECT_EQ(mclibFii_formatErr(fii.get(), &code, text), MCLIB_ERROR);
    EXPECT_EQ(code, 5);
    EXPECT_STREQ(text, "untouched");
    mclibFii_isText(fii.get(), "value");
    mclibFii_isText(fii.get(), "=");
    mclibFii_eol(fii.get());
    EXPECT_EQ(mclibFii_isLong(fii.get(), " "), MCLIB_ERROR);
    EXPECT_EQ(mclibFii_formatErr(fii.get(), &code, text), MCLIB_SUCCESS);
    EXPECT_STREQ(text, "(2) value = abc");
    EXPECT_EQ(mclibFii_reportErr(fii.get(), &code, &line, &column, text), MCLIB_SUCCESS);
    EXPECT_EQ(code, FII_NOT_WHOLE);
    EXPECT_EQ(line, 2);
    EXPECT_EQ(column, 9);
    EXPECT_STREQ(text, "value = abc");
    EXPECT_EQ(fii->error, FII_NONE);
}

TEST(FiiReader, CaretStandsUnderThePositionWhenTheTextFits) {
    LineReader fii("ab cd");
    char text[64];
    mclibFii_isText(fii.get(), "ab");
    mclibFii_eol(fii.get());
    const int needed = 5 + 4 + 2;
    EXPECT_EQ(mclibFii_makeErr2(fii.get(), text, needed - 1), nullptr);
    EXPECT_STREQ(text, "");
    EXPECT_STREQ(mclibFii_makeErr2(fii.get(), text, needed), "ab cd\n   ^");
}

TEST(FiiReader, EndOfFileAndBrokenLinesAreToldApart) {
    LineReader fii("a\n" + std::string(2000, 'x') + "\nb\\");
    EXPECT_EQ(mclibFii_readNewLine(fii.get()), MCLIB_ERROR);
    EXPECT_EQ(fii->error, FII_READ_FAILED);
    EXPECT_EQ(mclibFii_eof(fii.get()), 0);
    EXPECT_EQ(mclibFii_readNewLine(fii.get()), MCLIB_ERROR);
    EXPECT_EQ(fii->error, FII_END_OF_FILE);
    EXPECT_EQ(mclibFii_eof(fii.get()), 1);
    EXPECT_STREQ(fii->line, "");  // what the continued line left isn't handed out
    EXPECT_EQ(fii->position, fii->line);
    int code = 0;
    EXPECT_EQ(mclibFii_reportErr(fii.get(), &code, nullptr, nullptr, nullptr), MCLIB_SUCCESS);
    EXPECT_EQ(code, -1);
}

TEST(FiiReader, RewindReadsTheFileAgain) {
    LineReader fii("a 1\nb\n");
    mclibFii_readNewLine(fii.get());
    EXPECT_EQ(fii->lineNumber, 2);
    mclibFii_rewind(fii.get());
    EXPECT_STREQ(fii->line, "");
    EXPECT_EQ(fii->lineNumber, 0);
    mclibFii_readNewLine(fii.get());
    EXPECT_EQ(mclibFii_isText(fii.get(), "A"), MCLIB_SUCCESS);
    EXPECT_EQ(fii->lineNumber, 1);
}

TEST(FiiReader, OpeningRefusesWhatItCantDo) {
    const TextFiles files;
    const std::string path = files.write("fii.txt", "a;b\n");
    McFii fii;
    EXPECT_EQ(mclibFii_open(nullptr, path.c_str(), "r"), MCLIB_ERROR);
    EXPECT_EQ(mclibFii_open(&fii, nullptr, "r"), MCLIB_ERROR);
    EXPECT_EQ(mclibFii_openExtended(&fii, path.c_str(), "r", "\\", "#", 512, 1024, "abcdefghijklmnopqrstuvwxyz!"),
              MCLIB_ERROR);
    mclibFii_close(&fii);
    EXPECT_EQ(mclibFii_open(&fii, (path + ".missing").c_str(), "r"), MCLIB_ERROR);
    EXPECT_EQ(mclibFii_readNewLine(&fii), MCLIB_ERROR);
    mclibFii_close(&fii);
    ASSERT_EQ(mclibFii_openExtended(&fii, path.c_str(), "r", "\\", "#", 512, 1024, "abcdefghijklmnopqrstuvwxy;"),
              MCLIB_SUCCESS);
    mclibFii_close(&fii);
    mclibFii_close(&fii);
    char dest[256];
    EXPECT_STREQ(mclibFii_readText(&fii, dest), "");
    EXPECT_EQ(mclibFii_eol(&fii), 1);
}

TEST(FiiReader, TwoReadersKeepApart) {
    LineReader a("  1 2"), b("  3 4");
    char dest[256];
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(mclibFii_isText(a.get(), i ? "2" : "1"), MCLIB_SUCCESS);
        EXPECT_EQ(mclibFii_isText(b.get(), i ? "4" : "3"), MCLIB_SUCCESS);
    }
    EXPECT_STREQ(mclibFii_shrinkString(dest, std::strcpy(dest, "same")), "same");
}
