// The PostScript driver, without an application.
#include "mclib/print/ps.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "mclib/print/ps_letters.h"
#include "mclib/print/ps_prolog.h"
#include "tests/mclib/print/file_fixture.h"

using namespace mc;

namespace {

class PostScript : public PrintFileTest {
  protected:
    PostScript()
        : PrintFileTest({mclibPs_fopen, mclibPs_fclose, mclibPs_jobStatus, std::string(psProlog), "showpage\n"}) {}

    std::string text(const std::string& characters, int just = 2) {
        return page([&] { mclibPs_drawText(0, 0, characters.c_str(), 1, 0, just); });
    }
};

std::string textLine(const std::string& escaped) {
    return "0.00 0.00 (" + escaped + ") 2.83 0.00 _dtfl\n";
}

}  // namespace

TEST_F(PostScript, PolylinesAreDrawnOrFilledByTheirGrey) {
    const std::string path = "0.99 setlinewidth\n28.35 56.69 moveto\n85.04 56.69 lineto\n85.04 113.39 lineto\n";
    struct Case {
        double gray;
        const char *before, *after;
    };
    for (const Case& c : {Case{-1.0, "", "stroke\n"}, Case{1.5, "", "stroke\n"}, Case{std::nan(""), "", "stroke\n"},
                          Case{0.0, "0.00 setgray\n", "closepath fill\n0.00 setgray\n"},
                          Case{0.5, "0.50 setgray\n", "closepath fill\n0.00 setgray\n"},
                          Case{1.0, "1.00 setgray\n", "closepath fill\n0.00 setgray\n"}}) {
        SCOPED_TRACE(c.gray);
        EXPECT_EQ(page([&] { mclibPs_drawPolyline(corner, 3, 0.35, c.gray); }), c.before + path + c.after);
        EXPECT_EQ(page([&] { mclibPs_drawPolylineExtended(corner, 3, 0.35, "5.76 3.6", c.gray); }),
                  "[5.76 3.6] 0 setdash\n" + (c.before + path + c.after));
    }
    EXPECT_EQ(page([] { mclibPs_drawPolyline(corner, 1, 1, -1); }), "2.83 setlinewidth\n28.35 56.69 moveto\nstroke\n");
    EXPECT_EQ(page([] { mclibPs_drawPolylineExtended(corner, 0, 1, "", -1); }), "");
}

TEST_F(PostScript, LinesArcsAndSectors) {
    EXPECT_EQ(page([] { mclibPs_drawLine(10, 20, 30, 20, 0.35f); }), "28.35 56.69 85.04 56.69 0.99 _dl\n");
    EXPECT_EQ(page([] { mclibPs_drawArc(10, 20, 10, 90, 180, 1); }),
              "2.83 setlinewidth\n28.35 85.04 moveto\n28.35 56.69 28.35 90.00 180.00 arc\nstroke\n");
    EXPECT_EQ(page([] { mclibPs_fillCirc(10, 20, 10, 0, 360, 1.5); }),
              "1.50 setgray\n28.35 56.69 moveto\n28.35 56.69 28.35 0.00 360.00 arc\nclosepath fill\n0.00 setgray\n");
}

TEST_F(PostScript, TextsChooseTheirProcedureByAlignment) {
    for (const auto& [just, procedure] :
         {std::pair(0, "_dtfc"), {1, "_dtfr"}, {2, "_dtfl"}, {7, "_dtfl"}, {-1, "_dtfl"}})
        EXPECT_EQ(text("Side 1", just), std::string("0.00 0.00 (Side 1) 2.83 0.00 ") + procedure + "\n");
    EXPECT_EQ(page([] { mclibPs_drawText(20, 10, "Side 1", 2.5 * 1.3, -0.001, 2); }),
              "56.69 28.35 (Side 1) 9.21 -0.00 _dtfl\n");
}

TEST_F(PostScript, TextsAreEscapedSoThatTheStringStaysWhole) {
    struct Case {
        const char *text, *escaped;
    };
    for (const Case& c : {Case{"a\\b", "a\\\\b"}, Case{"(a) (b(c))", "(a) (b(c))"}, Case{"a)", "a\\)"},
                          Case{"(a", "\\(a"}, Case{")(", "\\)\\("}, Case{"(a)) ((b)", "(a)\\) \\((b)"},
                          Case{"\\(a)", "\\\\(a)"}, Case{"", ""}, Case{"\xE6\xF8\xE5", "\xE6\xF8\xE5"}}) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(text(c.text), textLine(c.escaped));
    }
}

TEST_F(PostScript, LongTextIsCutOnAWholeEscape) {
    const auto times = [](int n, const char* s) {
        std::string all;
        while (n-- > 0) all += s;
        return all;
    };
    EXPECT_EQ(text(times(255, "x")), textLine(times(255, "x")));
    EXPECT_EQ(text(times(400, "x")), textLine(times(255, "x")));
    EXPECT_EQ(text(times(255, "\\")), textLine(times(127, "\\\\")));
    EXPECT_EQ(text("x" + times(255, "\\")), textLine("x" + times(127, "\\\\")));
    EXPECT_EQ(text(times(255, "(")), textLine(times(127, "\\(")));
    // Cut between partners, the parenthesis that is left has none.
    EXPECT_EQ(text("(" + times(253, "x") + "y)"), textLine("\\(" + times(253, "x")));
}

TEST_F(PostScript, OddNumbersStayInTheirLines) {
    constexpr double huge = std::numeric_limits<double>::max(), inf = std::numeric_limits<double>::infinity();
    const std::string lines = page([&] { mclibPs_drawArc(-huge / 4, huge / 4, huge / 4, -huge, huge, huge / 4); });
    EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), 4);
    const Point3d points[] = {{-0.0001, inf, 0}};
    EXPECT_EQ(page([&] { mclibPs_drawPolyline(points, 1, 0, -1); }), "0.00 setlinewidth\n-0.00 inf moveto\nstroke\n");
}

// The rest of Windows-1252 is set up before the first text that needs it, on each page that does.
TEST_F(PostScript, LettersBeyondTheHeadAreSetUpOnThePagesThatNeedThem) {
    const auto pages = [this] {
        mclibPs_fopen(file.c_str());
        for (const char* words : {"\xE6\xF8\xE5 \xA7 (ASCII)", "m\xB2", "45\xB0", "plain"}) {
            mclibPs_drawText(0, 0, words, 1, 0, 2);
            if (*words == 'm') mclibPs_drawText(0, 0, "\x80", 1, 0, 2);
            if (*words != '4') mclibPs_newPage();
        }
        mclibPs_fclose();
        return read(file).substr(psProlog.size());
    };
    const std::string plain = pages();
    setenv("MC_PSENCODING", "1252", 1);
    const std::string whole = pages(), setUp(psWindowsLetters);
    unsetenv("MC_PSENCODING");
    const std::string first = textLine("\xE6\xF8\xE5 \xA7 (ASCII)") + "showpage\n";
    const std::string area = textLine("m\xB2") + textLine("\x80") + "showpage\n";
    const std::string angle = textLine("45\xB0") + textLine("plain") + "showpage\nshowpage\n";
    EXPECT_EQ(plain, first + area + angle);
    EXPECT_EQ(whole, first + setUp + area + setUp + angle);
}

TEST_F(PostScript, NothingIsDrawnOfNothing) {
    EXPECT_EQ(page([] {
                  mclibPs_drawText(0, 0, nullptr, 1, 0, 2);
                  mclibPs_drawPolyline(nullptr, 2, 1, -1);
                  mclibPs_drawPolylineExtended(nullptr, 2, 1, "", -1);
              }),
              "");
    EXPECT_TRUE(page([] { mclibPs_drawPolylineExtended(corner, 2, 1, nullptr, -1); }).starts_with("[] 0 setdash\n"));
}

TEST_F(PostScript, EpsFileIsCopiedAsItIs) {
    const std::string eps = std::string("%!PS\n\0binary\0", 13) + std::string(10000, 'x');
    std::ofstream(folder / "logo.eps", std::ios::binary) << eps;
    EXPECT_EQ(page([&] {
                  EXPECT_EQ(mclibPs_includeEPSFile((folder / "logo.eps").c_str(), 0.5, -2.0005, 10, 20, 45), 1);
                  EXPECT_EQ(mclibPs_includeEPSFile((folder / "missing.eps").c_str(), 1, 1, 0, 0, 0), 0);
                  EXPECT_EQ(mclibPs_includeEPSFile(folder.c_str(), 1, 1, 0, 0, 0), 0);
              }),
              "/EPSsave save def\n/showpage {} def\n28.35 56.69 translate 0.500 -2.001 scale 45.00 rotate\n"
              "% begin included EPS file\n" +
                  eps + "% end included EPS file\nEPSsave restore\n");
}

TEST_F(PostScript, NothingIsDrawnWithoutAJob) {
    expectNothingIsDrawnWithoutAJob([&] {
        mclibPs_drawLine(1, 2, 3, 4, 5);
        mclibPs_drawPolylineExtended(corner, 3, 1, "", 0);
        mclibPs_drawText(0, 0, "x", 1, 0, 0);
        mclibPs_drawArc(0, 0, 1, 0, 1, 1);
        mclibPs_fillCirc(0, 0, 1, 0, 1, 1);
        EXPECT_EQ(mclibPs_includeEPSFile(file.c_str(), 1, 1, 0, 0, 0), 0);
        mclibPs_newPage();
    });
}
