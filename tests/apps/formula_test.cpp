// The application formula, run by mchost as a user would.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/application_test.h"

namespace {

using testing::HasSubstr;
using testing::Not;

const std::string example = PROJECT_SOURCE_DIR "/apps/formula/examples/trench.txt";

class Formula : public ApplicationTest {
  protected:
    Formula() : ApplicationTest("formula") {}
    Outcome job(const std::string& text, const std::string& arguments = "") const {
        write("job.txt", text);
        return run("--file job.txt " + arguments);
    }
};

TEST_F(Formula, GivesTheValueOfAFormula) {
    const std::vector<std::pair<const char*, const char*>> cases = {
        {"1+2*3", "7\n"},
        {"'(a+b2)*sin(pi/4)' a=2 B2=3.5", "3.88908729653\n"},
        {"-2^2", "4\n"},
        {"2/3 --decimals 2", "0.67\n"},
        {"'-(1/3000)' --decimals 3", "0.000\n"},
        {"0.1+0.2", "0.3\n"},
        {"1e300 --decimals 12", "1e+300\n"},
    };
    for (const auto& [arguments, output] : cases) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.output, output) << arguments;
        EXPECT_EQ(outcome.status, 0) << arguments;
    }
}

TEST_F(Formula, AFailedFormulaHasACaretWhereItWasNoticed) {
    const std::vector<std::pair<const char*, const char*>> cases = {
        {"'2*(3+x)'", "formula: column 6: no parameter and no function has this name\n2*(3+x)\n     ^\n"},
        {"'1 + * 2'", "formula: column 5: this can't stand here\n1 + * 2\n    ^\n"},
        {"'(1+2'", "formula: column 5: something is missing: a value or a bracket\n(1+2\n    ^\n"},
        {"''", "formula: column 1: something is missing: a value or a bracket\n\n^\n"},
        {"'1/(a-2)*5' a=2", "formula: column 8: a division by 0"},
        {"'sqrt(-1)'", "formula: column 9: a function of a value that it doesn't take"},
        {"1E400*0", "formula: column 1: the value is no finite number"},
        {"$(printf '1%.0s' $(seq 80))", "formula: column 1: too long or too deep: 512 characters, 79"},
    };
    for (const auto& [arguments, told] : cases) {
        const Outcome outcome = run(arguments + std::string(" 2>&1 >/dev/null"));
        EXPECT_EQ(outcome.status, 1) << arguments;
        EXPECT_THAT(outcome.output, HasSubstr(told)) << arguments;
    }
}

TEST_F(Formula, ExpandsATagString) {
    EXPECT_EQ(run("--tag '\"No. \"+NR' NR=7").output, "No. 7\n");
    EXPECT_EQ(run("--tag 'strupr(MY TAG)+\"§\"' 'my tag=bl\xc3\xa5=x'").output, "BL\xc3\x85=X\"\n");
    EXPECT_EQ(run("--tag 'extstr(NR,4,\"\"0\"\",start)+substr(NR,0,strlen(NR)-1)' NR=12 2>&1").status, 0);
    const std::vector<std::pair<const char*, const char*>> cases = {
        {"'strupr(NR' NR=7", "formula: column 10: a bracket isn't closed\nstrupr(NR\n         ^\n"},
        {"'\"a'", "formula: column 1: the quote isn't closed"},
        {"'NR)' NR=7", "formula: column 3: there is no bracket that this one closes"},
        {"'\"a\"+C' B=x", "formula: column 5: there is no text \"C\"; there are B\n"},
        {"'strupr(substr(C D, 0, strlen(B)-1))' B=x", "formula: column 15: there is no text \"C D\""},
    };
    for (const auto& [arguments, told] : cases) {
        const Outcome failed = run(std::string("--tag ") + arguments);
        EXPECT_EQ(failed.status, 1) << arguments;
        EXPECT_TRUE(failed.output.starts_with(told)) << arguments << failed.output;
    }
}

TEST_F(Formula, WorksOutTheExampleAsATable) {
    const Outcome outcome = run("--file " + example);
    EXPECT_EQ(outcome.status, 0) << outcome.output;
    EXPECT_THAT(outcome.output, HasSubstr("Granlia, storm water from S1 to S2\n\n"));
    EXPECT_THAT(outcome.output, HasSubstr("\nPPIPE   1340.00  pipe with joints, laid, kr/m\n"));
    EXPECT_THAT(outcome.output, HasSubstr("\nEXC       366.1  excavation, m3\n"));
    EXPECT_THAT(outcome.output, HasSubstr("\nHEAD    OV-1207: S1 - S2\n"));
    EXPECT_THAT(outcome.output, HasSubstr("\nITEM    OV001207/193200\n"));
}

TEST_F(Formula, GivenNumbersTakeThePlaceOfAFilesParameters) {
    const std::string text = "PARAMETER A 2\nFORMULA B A*A\n";
    EXPECT_EQ(job(text).output, "A  2.000\nB  4.000  A*A\n");
    EXPECT_EQ(job(text, "a=3 --decimals 0").output, "A  3\nB  9  A*A\n");
    const Outcome typo = job(text, "C=3");
    EXPECT_EQ(typo.status, 1);
    EXPECT_THAT(typo.output, HasSubstr("job.txt: there is no good PARAMETER C"));
}

TEST_F(Formula, FilesMayContinueLinesAndIncludeOthers) {
    write("more.txt", "# more\nPARAMETER X 4 \"a remark\"\n");
    EXPECT_EQ(
        job("DECIMALS 1\n%include more.txt\nFORMULA Y X \\\n + 1\nTAG \"the unit\" \"\"\nSTRING S Y+the unit\n").output,
        "X  4.0  a remark\nY  5.0  X   + 1\n\nS  5.0\n");
    write("more.txt", "\nFORMULA Z 1/0\n");
    EXPECT_THAT(job("%include more.txt\n").output, HasSubstr("more.txt, line 2, column 14: a division by 0"));
}

TEST_F(Formula, AFailedLineIsToldAndTheOthersAreWorkedOut) {
    struct Case {
        std::string line;
        const char* told;
    };
    const std::string fifty = [] {
        std::string lines;
        for (int i = 0; i < 50; ++i) lines += "PARAMETER N" + std::to_string(i) + " 1\n";
        return lines;
    }();
    const std::vector<Case> cases = {
        {"FORMULA A \"r\"  2*(3+x)",
         "line 1, column 21: no parameter and no function has this name\n"
         "FORMULA A \"r\"  2*(3+x)\n                    ^\n"},
        {"FORMULA A (1+2", "column 15: something is missing"},
        {"FORMULA A", "column 10: the formula is missing"},
        {"FORMULA sin 1", "column 9: \"sin\" means something in every formula"},
        {"FORMULA pi 1", "column 9: \"pi\" means something in every formula"},
        {"FORMULA LENGTH 1", "column 9: the name of a number has 1 to 5 letters and digits"},
        {"FORMULA 1A 1", "column 9: the name of a number"},
        {"PARAMETER A 1O", "column 13: the value must be a number"},
        {"PARAMETER A 1 2", "column 15: nothing more is expected here"},
        {"PARAMETER A 1 \"r", "column 15: the text has no closing quote"},
        {"TAG A+B \"x\"", "column 5: the name of a text"},
        {"TAG substr \"x\"", "column 5: \"substr\" begins as a function"},
        {"TAG good \"x\"", "column 5: there is a value \"good\" already"},
        {"TAG A x", "column 7: the text is missing"},
        {"STRING A \"x\"+", "column 10: an element of the tag string is missing"},
        {"DECIMALS 13", "column 10: the number of decimals must be 0 to 12"},
        {"SUM A 1", "column 1: a line begins with a keyword, one of TITLE, DECIMALS, PARAMETER"},
        {"%include missing.txt", "line 1: the file that %include names can't be opened"},
    };
    for (const Case& c : cases) {
        const std::string before = c.line.starts_with("TAG good") ? "TAG good \"y\"\n" : "";
        const Outcome outcome = job(before + c.line + "\nPARAMETER GOOD2 5\n");
        EXPECT_EQ(outcome.status, 1) << c.line;
        EXPECT_THAT(outcome.output, HasSubstr(c.told)) << c.line;
        EXPECT_TRUE(outcome.output.ends_with("GOOD2  5.000\n")) << c.line << outcome.output;
        EXPECT_THAT(outcome.output, Not(HasSubstr("cmParse"))) << c.line;
    }
    EXPECT_THAT(job(fifty + "FORMULA A 1\n").output, HasSubstr("there are 50 numbers already"));
    EXPECT_THAT(job("FORMULA A " + std::string(600, '1') + "\n").output, HasSubstr("column 11: too long"));
    const Outcome tooLong = job("FORMULA A " + std::string(3000, '1') + "\nFORMULA B 4\n");
    EXPECT_EQ(tooLong.status, 1);
    EXPECT_THAT(tooLong.output, testing::AllOf(HasSubstr("A line has 2048 characters or more"), HasSubstr("B  4.000")));
    EXPECT_EQ(run("--file nowhere.txt").status, 1);
}

TEST_F(Formula, WrongCallsGiveTheUsageAndStatus2) {
    for (const char* arguments :
         {"", "1 2", "--tag", "--file", "1+a a=x", "1 a=", "1 sin=2", "1 toolong=2", "1 a=1 A=2", "1 --decimals 13",
          "1 --decimals x", "--tag x --file y", "--tag x 'a+b=c'", "--nonsense"}) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.status, 2) << arguments;
        EXPECT_THAT(outcome.output, HasSubstr("usage: mchost formula \"FORMULA\"")) << arguments;
    }
    EXPECT_EQ(run("--help").status, 0);
    EXPECT_THAT(run("--help 2>&-").output, HasSubstr("usage: mchost formula"));
}

}  // namespace
