// The HP-GL driver, without an application.
#include "mclib/print/hpgl.h"

#include <cmath>

#include "tests/mclib/print/file_fixture.h"

namespace {

class HpGl : public PrintFileTest {
  protected:
    HpGl()
        : PrintFileTest({mclibHpgl_fopen, mclibHpgl_fclose, mclibHpgl_jobStatus,
                         "IN;PU;VS80;IP,603,521,10603,7721;SP1;CS32;\n", "PU;PA0,0;PG;\n"}) {}

    // The text is changed as the caller sees it.
    std::string label(std::string& text, int just, double height = 10, double angle = 0) {
        return page([&] { mclibHpgl_drawText(10, 1, text.data(), height, angle, just); });
    }
};

}  // namespace

TEST_F(HpGl, PolylinesAreLinesWhateverTheirWidthAndGrey) {
    for (const double gray : {-1.0, 0.0, 0.5})
        EXPECT_EQ(page([&] { mclibHpgl_drawPolyline(corner, 3, gray, gray); }),
                  "PU;PA0,730;PD;PD;PA769,730;\nPD;PA769,1500;\n");
    EXPECT_EQ(page([] { mclibHpgl_drawPolyline(corner, 1, 1, -1); }), "PU;PA0,730;PD;");
    EXPECT_EQ(page([] { mclibHpgl_drawPolyline(corner, 0, 1, -1); }), "");
    const Point3d points[] = {{10, 1, 0}, {9.98, 0.98, 0}, {0, 0, 0}, {-1e300, 1e300, 0}, {1e9, std::nan(""), 0}};
    EXPECT_EQ(page([&] { mclibHpgl_drawPolyline(points, 5, 1, -1); }),
              "PU;PA0,0;PD;PD;PA0,0;\nPD;PA-384,-38;\nPD;PA-2147483648,2147483647;\nPD;PA2147483647,0;\n");
}

TEST_F(HpGl, TextsStepBackByTheirCharacters) {
    struct Case {
        const char* text;
        int just;
        const char* stepBack;
    };
    for (const Case& c : {Case{"Road 17", 1, "CP-7,0;"}, Case{"Road 17", 0, "CP-3.50,0;"}, Case{"Road 17", 2, ""},
                          Case{"Road 17", 9, ""}, Case{"", 1, "CP0,0;"}, Case{"", 0, "CP-0.00,0;"}}) {
        std::string text = c.text;
        EXPECT_EQ(label(text, c.just),
                  "PU;PA0,0;SI0.30,0.60;DI1.0,0.0;" + std::string(c.stepBack) + "SS;LB" + c.text + "\3\n");
    }
    std::string text = "a";
    EXPECT_EQ(label(text, 2, 3.25, -135), "PU;PA0,0;SI0.10,0.20;DI-0.7,-0.7;SS;LBa\3\n");
}

TEST_F(HpGl, NorwegianLettersBecomeThePlottersBytesInTheCallersTextToo) {
    std::string text =
        "Bl\xE5"
        "b\xE6r \xF8\xC6\xD8\xC5 \xE4\x80\xFF{";
    EXPECT_EQ(label(text, 2), "PU;PA0,0;SI0.30,0.60;DI1.0,0.0;SS;LBBl}b{r |[\\] \xE4\x80\xFF{\3\n");
    EXPECT_EQ(text, "Bl}b{r |[\\] \xE4\x80\xFF{");
    std::string longText(100000, '\xE5');
    EXPECT_TRUE(label(longText, 2).ends_with("LB" + std::string(100000, '}') + "\3\n"));
}

TEST_F(HpGl, NothingIsDrawnWithoutAJobOrByCallsThatTheDeviceLacks) {
    const auto lacking = [] {
        mclibHpgl_drawLine(1, 2, 3, 4, 5);
        mclibHpgl_drawArc(0, 0, 1, 0, 1, 1);
        mclibHpgl_fillCirc(0, 0, 1, 0, 1, 1);
    };
    EXPECT_EQ(page(lacking), "");
    expectNothingIsDrawnWithoutAJob([&] {
        char text[] = "\xE6";
        mclibHpgl_drawPolyline(corner, 3, 1, -1);
        mclibHpgl_drawText(0, 0, text, 1, 0, 0);
        mclibHpgl_newPage();
    });
}
