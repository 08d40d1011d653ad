// The PCL driver, without an application.
#include "mclib/print/pcl.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "tests/mclib/print/file_fixture.h"

namespace {

const std::string portrait = "\33E\33&l26a0O\33*c5952x8418Y\33&l0E\33*p0x0Y\33*c0T\33%1BIN;SP1;PA0,0;\n",
                  landscape = "\33E\33&l26a1O\33*c8418x5952Y\33&l0E\33*p0x0Y\33*c0T\33%1BIN;SP1;PA0,0;\n",
                  pageEnd = "\33%1A", jobEnd = "\33E";

class Pcl : public PrintFileTest {
  protected:
    Pcl()
        : PrintFileTest({[](const char* name) { return mclibPcl_fopen(name, 9); }, mclibPcl_fclose, mclibPcl_jobStatus,
                         portrait, pageEnd + jobEnd}) {}
};

std::string font(int size, const char* direction) {
    return "SD1,14,2,1,4," + std::to_string(size) + ",5,0,5,-7,7,52;SS;DI" + direction + ";";
}

}  // namespace

TEST_F(Pcl, OnlyTheLandscapesOfA4AndA5GetTheLandscapeHead) {
    for (int code = -1; code <= 13; ++code) {
        SCOPED_TRACE(code);
        const std::string head = code == 10 || code == 12 ? landscape : portrait;
        ASSERT_EQ(mclibPcl_fopen(file.c_str(), code), 1);
        mclibPcl_newPage();
        mclibPcl_fclose();
        EXPECT_EQ(read(file), head + pageEnd + head + pageEnd + jobEnd);
    }
}

TEST_F(Pcl, PolylinesAreDrawnOrFilledByTheirGrey) {
    // The x axis is moved 6 mm to the left.
    const std::string line = "PU;PW0.35;PA160,800;PD;PA960,800;\nPD;PA960,1600;\n";
    const std::string area = "PU;PW0.35;PA160,800;PM0;PD960,800,960,1600,160,800;\n";
    struct Case {
        double gray;
        std::string written;
    };
    for (const Case& c :
         {Case{-1.0, line}, Case{1.01, line}, Case{std::nan(""), line}, Case{0.0, area + "PM2;FT1;FP;"},
          Case{-0.0, area + "PM2;FT1;FP;"}, Case{0.5, area + "PM2;FT10,50;FP;"}, Case{1.0, area + "PM2;FT10,0;FP;"},
          Case{0.9, area + "PM2;FT10,9;FP;"}}) {  // (1 - 0.9) * 100 lies just below 10
        SCOPED_TRACE(c.gray);
        EXPECT_EQ(page([&] { mclibPcl_drawPolyline(corner, 3, 0.35, c.gray); }), c.written);
        EXPECT_EQ(page([&] { mclibPcl_drawPolylineExtended(corner, 3, 0.35, 0, 0.0, c.gray); }), c.written);
        EXPECT_EQ(page([&] { mclibPcl_drawPolylineExtended(corner, 3, 0.35, 4, 2.3, c.gray); }),
                  "LT4,2.30;" + c.written + "LT");
    }
    EXPECT_EQ(page([] { mclibPcl_drawPolylineExtended(corner, 1, 1, 0, 0, -1); }), "PU;PW1.00;PA160,800;");
    EXPECT_EQ(page([] { mclibPcl_drawPolyline(corner, 1, 1, 0); }), "PU;PW1.00;PA160,800;PM0;PD160,800;\nPM2;FT1;FP;");
    EXPECT_EQ(page([] { mclibPcl_drawPolylineExtended(corner, 0, 1, 3, 1, 0); }), "");
}

TEST_F(Pcl, PlotterUnitsAreCutTowardsZeroAndHeldIn32Bits) {
    const Point3d points[] = {{6, -0.99, 0},      {0, 0.999, 0},  {6.0249, 0, 0},      {5.99, 0, 0},
                              {-1e300, 1e300, 0}, {1e9, -1e9, 0}, {std::nan(""), 0, 0}};
    EXPECT_EQ(page([&] { mclibPcl_drawPolyline(points, 7, 1e-9, -1); }),
              "PU;PW0.00;PA0,-39;PD;PA-240,39;\nPD;PA0,0;\nPD;PA-1,0;\nPD;PA-2147483648,2147483647;\n"
              "PD;PA2147483407,-2147483648;\nPD;PA-240,0;\n");
}

TEST_F(Pcl, FontIsSentAgainOnlyWhenItChanges) {
    const auto text = [](double height, double angle, int just = 2) {
        mclibPcl_drawText(6, 1, "a", height, angle, just);
    };
    const std::string at = "PU;PA0,40;", label = "LBa\3\n";
    const std::string level = at + font(9, "1.0,0.0") + label;
    EXPECT_EQ(page([&] { text(3.25, 0), text(3.25, 0); }), level + at + label);
    EXPECT_EQ(page([&] { text(3.25, 0), text(3.25, 90), text(6.5, 90); }),
              level + at + font(9, "0.0,1.0") + label + at + font(18, "0.0,1.0") + label);
    EXPECT_EQ(page([&] { text(3.25, 0), mclibPcl_newPage(), text(3.25, 0); }), level + pageEnd + portrait + level);
    EXPECT_EQ(page([&] { text(0, 0); }), at + label);
    // Below a right angle by the last bits, the cosine is a negative nothing.
    EXPECT_EQ(page([&] { text(3.25, 90.1); }), at + font(9, "-0.0,1.0") + label);
}

TEST_F(Pcl, AlignmentIsSentWhenItChanges) {
    const auto texts = [&](std::initializer_list<int> alignments) {
        std::string lines = page([&] {
            for (const int just : alignments) mclibPcl_drawText(0, 0, "", 0, 0, just);
        });
        std::string origins;  // between point and label
        for (size_t i = 0; (i = lines.find("PU;PA-240,0;", i)) != lines.npos; ++i)
            origins += lines.substr(i + 12, lines.find("LB", i) - i - 12) + '|';
        return origins;
    };
    EXPECT_EQ(texts({2, 2, 0, 0, 1, 2}), "||LO4;||LO7;|LO1;|");
    EXPECT_EQ(texts({0}), "LO4;|");
    EXPECT_EQ(texts({3, 3, 2, -1}), "LO1;||LO1;|LO1;|");
}

TEST_F(Pcl, TextsGoToTheFileAsTheyAre) {
    const std::string text = "\xE6\x80\xFF (\\;%s\n" + std::string(100000, 'x');
    EXPECT_EQ(page([&] { mclibPcl_drawText(0, 0, text.c_str(), 0, 0, 2); }), "PU;PA-240,0;LB" + text + "\3\n");
}

TEST_F(Pcl, LargePolygonHasAllItsPoints) {
    std::vector<Point3d> points;
    std::string expected = "PU;PW1.00;PA-240,0;PM0;PD";
    for (int i = 0; i < 50000; ++i) {
        points.push_back({i / 40.0, 0, 0});
        if (i > 0) expected += std::to_string(i - 240) + ",0,";
    }
    expected += "-240,0;\nPM2;FT1;FP;";
    EXPECT_TRUE(page([&] { mclibPcl_drawPolyline(points.data(), 50000, 1, 0); }) == expected);
}

TEST_F(Pcl, NothingIsDrawnWithoutAJobOrByCallsThatTheDeviceLacks) {
    const auto lacking = [] {
        mclibPcl_drawLine(1, 2, 3, 4, 5);
        mclibPcl_drawArc(0, 0, 1, 0, 1, 1);
        mclibPcl_fillCirc(0, 0, 1, 0, 1, 1);
    };
    EXPECT_EQ(page(lacking), "");
    expectNothingIsDrawnWithoutAJob([] {
        mclibPcl_drawPolylineExtended(corner, 3, 1, 3, 1, 0);
        mclibPcl_drawText(0, 0, "x", 1, 0, 0);
        mclibPcl_newPage();
    });
}
