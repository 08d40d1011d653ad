#include "mclib/text/formula.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <optional>
#include <random>
#include <string>

#include "formula_states.h"
#include "mchost/mdl/transform.h"

namespace {

struct Outcome {
    bool good;
    double value;
    std::string console;  // without a session the console is standard error
};

Outcome evaluate(const std::string& formula, char (*names)[6] = nullptr, const double* values = nullptr,
                 int count = 0) {
    int error = -1;
    testing::internal::CaptureStderr();
    const double value = *mclibParse_parseFormulaP(formula.c_str(), &error, count, names ? names[0] : nullptr, values);
    EXPECT_EQ(error & ~1, 0);
    return {error == 0, value, testing::internal::GetCapturedStderr()};
}

void expectRefused(const std::string& formula, const std::string& console = "") {
    SCOPED_TRACE("\"" + formula + "\"");
    const Outcome outcome = evaluate(formula);
    EXPECT_FALSE(outcome.good);
    EXPECT_EQ(outcome.value, 0.0);
    EXPECT_EQ(outcome.console, console);
}

std::string repeated(int count, const std::string& text) {
    std::string all;
    for (int i = 0; i < count; ++i) all += text;
    return all;
}

struct Case {
    const char* formula;
    double value;
};

void expectValues(std::initializer_list<Case> cases) {
    for (const Case& c : cases) {
        SCOPED_TRACE(c.formula);
        const Outcome outcome = evaluate(c.formula);
        EXPECT_TRUE(outcome.good);
        EXPECT_EQ(outcome.value, c.value);
        EXPECT_EQ(outcome.console, "");
    }
}

TEST(Formula, OperatorsBindAsTheLanguageSays) {
    expectValues({{"1+2*3", 7},
                  {"(1+2)*3", 9},
                  {"2^3^2", 512},
                  {"8/2/2", 2},
                  {"8-2-2", 4},
                  {"-2^2", 4},
                  {"2^-1", 0.5},
                  {"2--2", 4},
                  {"2*-3", -6},
                  {"-(3)^2", 9},
                  {"1-2^2*3", -11},
                  {"-(-2)", 2},
                  {"2^(1+1)^2", 16},
                  {"((((7))))", 7},
                  {"6/-2*3", -9},
                  {"1/1E-300", 1 / 1e-300}});
}

TEST(Formula, NumbersReadAsFarAsTheyGo) {
    expectValues({{"1.5E2", 150},
                  {"1.5e2", 150},
                  {"1E+2", 100},
                  {"1e-2", 0.01},
                  {".5", 0.5},
                  {"5.", 5},
                  {"2E", 2},
                  {"2E+", 2},
                  {"0.1", 0.1},
                  {"1E23", 1e23},
                  {"1E999", HUGE_VAL},
                  {"1E-999", 0},
                  {"4.9E-324", 4.9e-324},
                  {"0.000000000000000000000000000000001E40", 1e7},
                  {"123456789012345678901234567890", 123456789012345678901234567890.0},
                  {"0.30000000000000004", 0.30000000000000004},
                  {"9007199254740993", 9007199254740992.0}});
    for (const char* bad : {".", "1.2.3", ".E5", "1E2222", "2 3", "2E5.1"}) expectRefused(bad);
}

TEST(Formula, NumbersAreThoseOfTheStandardReader) {
    std::mt19937 random(5);
    for (int i = 0; i < 20000; ++i) {
        std::string text;
        for (int n = static_cast<int>(random() % 24); n >= 0; --n) text += static_cast<char>('0' + random() % 10);
        text.insert(random() % (text.size() + 1), ".");
        if (random() % 2) text += (random() % 2 ? "E-" : "E") + std::to_string(random() % 340);
        int error = 1;
        EXPECT_EQ(*mclibParse_parseFormulaP(text.c_str(), &error, 0, nullptr, nullptr),
                  std::strtod(text.c_str(), nullptr))
            << text;
        EXPECT_EQ(error, 0) << text;
    }
}

TEST(Formula, FunctionsGiveTheirValues) {
    expectValues({{"abs(-3)", 3},
                  {"Acos(1)", 0},
                  {"ASIN(0)", 0},
                  {"ATAN(1)", std::atan(1.0)},
                  {"COS(0)", 1},
                  {"COSH(0)", 1},
                  {"EXP(1)", std::exp(1.0)},
                  {"LOG(1)", 0},
                  {"LOG10(1000)", 3},
                  {"POW10(2)", 1024},
                  {"ROUND(2.5)", 3},
                  {"ROUND(-2.5)", -3},
                  {"ROUND(2.4)", 2},
                  {"SIN(0.5)", std::sin(0.5)},
                  {"SINH(1)", std::sinh(1.0)},
                  {"SQR(3)", 9},
                  {"SQRT(9)", 3},
                  {"TAN(1)", std::tan(1.0)},
                  {"TANH(1)", std::tanh(1.0)},
                  {"TRUNC(-2.5)", -2},
                  {" sin ( 0 ) ", 0},
                  {"-SQRT(4)^2", 4},
                  {"pi", *fc_piP},
                  {"2*PI", 2 * *fc_piP}});
}

TEST(Formula, WholeNumbersStayWithin32Bits) {
    constexpr double lowest = std::numeric_limits<int32_t>::min(), highest = std::numeric_limits<int32_t>::max();
    expectValues({{"ROUND(1E20)", highest},
                  {"TRUNC(-1E20)", lowest},
                  {"TRUNC(1E999)", highest},
                  {"ROUND(2147483646.5)", highest},
                  {"TRUNC(LOG(-1))", 0},
                  {"ROUND(1E999-1E999)", 0}});
}

TEST(Formula, ArithmeticOutOfRangeIsAnErrorOnlyWhereTold) {
    for (const char* bad : {"1/0", "1/(2-2)", "1/-0", "ACOS(1.1)", "ASIN(-1.1)", "SQRT(-1)", "1+SQRT(0-1)*2"}) {
        expectRefused(bad);
    }
    EXPECT_EQ(evaluate("LOG(0)").value, -HUGE_VAL);
    EXPECT_TRUE(std::isnan(evaluate("LOG10(-1)").value));
    EXPECT_TRUE(evaluate("ACOS(LOG(-1))").good) << "no number lies neither below nor above a limit";
}

TEST(Formula, BadSyntaxIsRefusedWithoutAWord) {
    for (const char* bad :
         {"",   "   ", "--2", "+2",   "2*--2",  "2:3", "\t1", "1\t", "SIN", "SIN 1", "SIN()",   "()",   "(1",
          "1)", "1+",  "*2",  "2(3)", "(1)(2)", "2PI", "1,2", "^2",  "2^",  "-",     "SIN-(1)", "\xE5", "1\xFF"}) {
        expectRefused(bad);
    }
}

TEST(Formula, UnknownNameShowsTheUpperCasedRest) {
    expectRefused("2*sinx + b", "Error 'SINX + B' in cmParse\n");
    expectRefused("2x", "Error 'X' in cmParse\n");
    expectRefused("pi2", "Error 'PI2' in cmParse\n");
    expectRefused("a_b", "Error 'A_B' in cmParse\n");
    expectRefused("2%averylongname%s", "");
    expectRefused("averylongname%s", "Error 'AVERYLONGNAME%S' in cmParse\n");
}

TEST(Formula, NextTokenIsReadBeforeWhatStandsInFrontIsWorkedOut) {
    EXPECT_EQ(evaluate("xcorr(1)").value, 20);
    EXPECT_EQ(evaluate("XCORR(2)+1").console, "X_Correction. inn=2.000000\n");
    expectRefused("XCORR(1)foo", "Error 'FOO' in cmParse\nX_Correction. inn=1.000000\n");
    expectRefused("1/0foo", "Error 'FOO' in cmParse\n");
    expectRefused("1/0+foo", "");
    expectRefused("XCORR(1:", "");
    expectRefused("XCORR(1):", "X_Correction. inn=1.000000\n");
    EXPECT_EQ(evaluate("XCORR(1)^XCORR(2)^XCORR(0)*0").console,
              "X_Correction. inn=1.000000\nX_Correction. inn=2.000000\nX_Correction. inn=0.000000\n");
}

TEST(Formula, ParametersHaveTheirValuesAndAreUpperCasedInPlace) {
    char names[][6] = {"a", "b2", "Log", "pi", "hEigh", "a", "bl\xE5"};
    const double values[] = {2, 3, 10, 99, 7, 5, 11};
    const auto value = [&](const char* formula) { return evaluate(formula, names, values, 7); };
    EXPECT_EQ(value("A*b2").value, 6);
    EXPECT_STREQ(names[0], "A");
    EXPECT_STREQ(names[1], "B2");
    EXPECT_STREQ(names[4], "HEIGH");
    EXPECT_STREQ(names[6], "BL\xC5");
    EXPECT_EQ(value("LOG(1)").value, 0) << "the function's name wins";
    EXPECT_EQ(value("PI").value, *fc_piP);
    EXPECT_EQ(value("height").console, "Error 'HEIGHT' in cmParse\n") << "the whole run of letters and digits counts";
    EXPECT_EQ(value("A2").console, "Error 'A2' in cmParse\n");
    EXPECT_EQ(value("B2(1)").good, false);
}

TEST(Formula, ResultOfTheLastCallMayBeAParameter) {
    char names[6] = "a";
    int error = 1;
    const double* const last = mclibParse_parseFormulaP("3", &error, 0, nullptr, nullptr);
    EXPECT_EQ(*mclibParse_parseFormulaP("1+a", &error, 1, names, last), 4);
}

TEST(Formula, NamesEndWithTheirSlot) {
    char names[][6] = {{'l', 'o', 'n', 'g', 'e', 'r'}, "ab"};
    names[1][3] = 'x';
    const double values[] = {1, 2};
    EXPECT_EQ(evaluate("longer+ab", names, values, 2).value, 3);
    EXPECT_EQ(std::memcmp(names, "LONGERAB\0x", 10), 0) << "nothing behind a name's NUL changes";
}

TEST(Formula, LimitsRefuseWithoutTouchingTheArrays) {
    char names[51][6] = {};
    double values[51] = {};
    strcpy(names[50], "a");
    strcpy(names[49], "b");
    values[49] = 4;
    EXPECT_EQ(evaluate("1", names, values, 51).console,
              "Feil i mclibParse_parseFormula: For mange parametre 51 (max 50)\n");
    EXPECT_FALSE(evaluate("1", names, values, 51).good);
    EXPECT_STREQ(names[49], "b");
    EXPECT_EQ(evaluate("b", names, values, 50).value, 4);
    EXPECT_TRUE(evaluate("1", nullptr, nullptr, -1).good);

    EXPECT_EQ(evaluate(std::string(511, ' ') + "1").value, 1);
    expectRefused(std::string(512, ' ') + "1", "Feil i mclibParse_parseFormula: For lang ligning\n");

    EXPECT_EQ(evaluate("1." + std::string(77, '0')).value, 1);
    expectRefused("1." + std::string(78, '0'));
    EXPECT_EQ(evaluate("0." + std::string(73, '0') + "1E74").value, 1);

    EXPECT_EQ(evaluate(repeated(47, "(") + "1" + repeated(47, ")")).value, 1);
    expectRefused(repeated(48, "(") + "1" + repeated(48, ")"));
    EXPECT_TRUE(evaluate(repeated(23, "SIN(") + "1" + repeated(23, ")")).good);
    expectRefused(repeated(24, "SIN(") + "1" + repeated(24, ")"));
    EXPECT_EQ(evaluate("1" + repeated(200, "+1")).value, 201) << "only what is open takes room";
}

TEST(Formula, AFailureTellsItsReasonAndColumn) {
    struct Failure {
        std::string formula;
        int reason, column;
    };
    const std::string deep(49, '(');
    const std::initializer_list<Failure> failures = {
        {"1+2", MCLIB_FORMULA_GOOD, 1},
        {"", MCLIB_FORMULA_SYNTAX, 1},
        {"1+ ", MCLIB_FORMULA_SYNTAX, 4},
        {"1 + * 2", MCLIB_FORMULA_SYNTAX, 5},
        {"2 12.5", MCLIB_FORMULA_SYNTAX, 3},
        {"(1+2", MCLIB_FORMULA_SYNTAX, 5},
        {"1)", MCLIB_FORMULA_SYNTAX, 2},
        {"--2", MCLIB_FORMULA_SYNTAX, 2},
        {"SIN 2", MCLIB_FORMULA_SYNTAX, 5},
        {"1+\t2", MCLIB_FORMULA_SYNTAX, 3},
        {"2*width", MCLIB_FORMULA_UNKNOWN_NAME, 3},
        {"1/(2-2)*3", MCLIB_FORMULA_DIVISION, 8},
        {"1/0*", MCLIB_FORMULA_DIVISION, 4},
        {"2+SQRT(1-2)", MCLIB_FORMULA_RANGE, 12},
        {"1+" + std::string(80, '1'), MCLIB_FORMULA_LIMIT, 3},
        {deep + "1", MCLIB_FORMULA_LIMIT, 50},
        {std::string(513, ' '), MCLIB_FORMULA_LIMIT, 1},
        {"1+2", MCLIB_FORMULA_GOOD, 1},
    };
    for (const Failure& f : failures) {
        int error = -1, column = -1;
        mclibParse_parseFormulaP(f.formula.c_str(), &error, 0, nullptr, nullptr);
        EXPECT_EQ(mclibParse_getFormulaError(&column), f.reason) << f.formula;
        EXPECT_EQ(column, f.column) << f.formula;
        EXPECT_EQ(error, f.reason == MCLIB_FORMULA_GOOD ? 0 : 1) << f.formula;
    }
}

TEST(Formula, ResultOfAFailureIsZeroEvenIfTheCallerWroteThere) {
    int error = 0;
    *mclibParse_parseFormulaP("", &error, 0, nullptr, nullptr) = 5.0;
    EXPECT_EQ(*mclibParse_parseFormulaP("1/0", &error, 0, nullptr, nullptr), 0.0);
    EXPECT_EQ(*mclibParse_parseFormulaP(nullptr, nullptr, 0, nullptr, nullptr), 0.0);
}

// The table of states of the LR parser that defines the language decides about any row of tokens.
TEST(Formula, AcceptsExactlyWhatTheStatesAccept) {
    const std::string tokens = "+-*/^()18FF(1)-(:";
    std::mt19937 random(1);
    int accepted = 0;
    for (int i = 0; i < 300000; ++i) {
        std::string row;
        for (int n = static_cast<int>(random() % 12); n >= 0; --n) row += tokens[random() % tokens.size()];
        std::string formula;
        for (const char token : row) formula += (token == 'F' ? "EXP" : std::string(1, token)) + ' ';
        int error = -1;
        const double value = *mclibParse_parseFormulaP(formula.c_str(), &error, 0, nullptr, nullptr);
        const std::optional<double> expected = valueByStates(row);
        ASSERT_EQ(error == 0, expected.has_value()) << formula;
        if (expected && !std::isnan(*expected)) {
            ASSERT_EQ(value, *expected) << formula;
        }
        accepted += expected.has_value();
    }
    EXPECT_GT(accepted, 3000);
}

}  // namespace
