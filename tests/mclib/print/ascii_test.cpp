// The ASCII driver, without an application.
#include "mclib/print/ascii.h"

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "mchost/session/memory.h"
#include "tests/mclib/print/file_fixture.h"

namespace {

void draw(double x, double y, const std::string& text, double angle = 0) {
    const Point3d shape[5] = {{x, y, 0}, {x + 1, y, 0}, {x + 1, y + 1, 0}, {x, y + 1, 0}, {x, y, 0}};
    mclibAscii_drawText(shape, text.c_str(), 3, 2, angle, 2);
}

struct Text {
    double x, y;
    std::string text;
};

class Ascii : public PrintFileTest {
  protected:
    Ascii() : PrintFileTest({mclibAscii_fopen, mclibAscii_fclose, mclibAscii_jobStatus, "", "\n"}) {}

    std::string laidOut(const std::vector<Text>& texts) {
        return page([&] {
            for (const Text& t : texts) draw(t.x, t.y, t.text);
        });
    }
};

}  // namespace

TEST_F(Ascii, TextsStandInColumnsAndRows) {
    EXPECT_EQ(laidOut({}), "");
    EXPECT_EQ(laidOut({{50, 7, ""}}), "");
    EXPECT_EQ(laidOut({{50, 7, "alone"}}), "alone");
    EXPECT_EQ(laidOut({{42, 10, "c"}, {20, 10, "a"}, {30, 10, "b"}}), "a       b         c");  // columns 8 and 18
    EXPECT_EQ(laidOut({{0, 10, "high"}, {12, 8.5, "low"}}), "high      low");
    EXPECT_EQ(laidOut({{12, 10, "right"}, {0, 8.5, "left"}}), "left      right");
    EXPECT_EQ(laidOut({{0, 1, "wide text"}, {6, 1, "next"}, {24, 1, "far"}}), "wide textnext       far");
    EXPECT_EQ(laidOut({{-12, -1, "a"}, {0, -5, "b"}}), "a\n          b");
    EXPECT_EQ(laidOut({{0, 0, "second"}, {0.9, 0, "first"}}), "secondfirst");  // less than 1 mm counts as equal
    EXPECT_EQ(laidOut({{0, 0, "\xE6\x80\xFF%s"}, {12, 0, ""}, {24, 0, "x"}}), "\xE6\x80\xFF%s               x");
}

TEST_F(Ascii, GapsBecomeLineFeedsByTheirHeight) {
    struct Case {
        double gap;
        int lineFeeds;
    };
    for (const Case& c : {Case{1.999, 0}, Case{2.0, 0}, Case{2.001, 1}, Case{4, 1}, Case{4.001, 2}, Case{6, 2},
                          Case{6.001, 3}, Case{8, 3}, Case{100, 49}}) {
        const std::string expected = "a" + std::string(static_cast<size_t>(c.lineFeeds), '\n') + "b";
        EXPECT_EQ(laidOut({{0, c.gap, "a"}, {0, 0, "b"}}), expected) << c.gap;
    }
}

TEST_F(Ascii, OnlyTextsAlongTheLinesCount) {
    for (const auto& [angle, taken] : {std::pair(0.0, true),
                                       {0.9, true},
                                       {-1.0, true},
                                       {1.1, false},
                                       {-1.1, false},
                                       {90.0, false},
                                       {180.0, false},
                                       {std::nan(""), false}})
        EXPECT_EQ(page([&] { draw(0, 0, "text", angle); }), taken ? "text" : "") << angle;
    // What is left out doesn't move the left edge.
    EXPECT_EQ(page([] { draw(-50, 0, "turned", 90), draw(0, 0, "level"); }), "level");
}

// The comparison is no ordering where a row slopes; then the rows are as good as may be, but nothing is lost.
TEST_F(Ascii, SlopingRowsKeepAllTheirTexts) {
    std::mt19937 random(5);
    for (const size_t count : {2u, 3u, 7u, 1000u, 4097u}) {
        std::vector<Text> texts;
        std::vector<int> seen(count);
        for (size_t i = 0; i < count; ++i)
            texts.push_back({random() % 200 * 1.0, random() % 100 * 0.5, "<" + std::to_string(i) + ">"});
        const std::string all = laidOut(texts);
        for (size_t at = 0; (at = all.find('<', at)) != all.npos; ++at) ++seen[std::stoul(all.substr(at + 1))];
        EXPECT_EQ(seen, std::vector<int>(count, 1));
    }
}

TEST_F(Ascii, EqualPlacesKeepTheirOrder) {
    std::vector<Text> texts;
    std::string expected;
    for (int i = 0; i < 3000; ++i) {
        texts.push_back({0.5 * (i % 2), 0, std::to_string(i) + ' '});
        expected += texts.back().text;
    }
    EXPECT_EQ(laidOut(texts), expected);
}

TEST_F(Ascii, TextsInSenselessPlacesNeitherHangNorFillTheDisk) {
    constexpr double huge = std::numeric_limits<double>::max(), inf = std::numeric_limits<double>::infinity();
    EXPECT_EQ(laidOut({{0, inf, "a"}, {-inf, 0, "b"}, {std::nan(""), 0, "c"}, {0, std::nan(""), "d"}, {0, 0, "e"}}),
              "e");
    testing::internal::CaptureStderr();
    EXPECT_EQ(laidOut({{-huge, huge, "a"}, {2147483647.0, -2147483648.0, "b"}}),
              "a" + std::string(100000, '\n') + std::string(100000, ' ') + "b");
    const std::string told = testing::internal::GetCapturedStderr();
    EXPECT_EQ(told, "mclibAscii: gaps over 100000 lines or columns are cut in " + file +
                        "; look for a text far off the page.\n");
}

TEST_F(Ascii, TextWithoutMemoryIsLeftOut) {
    EXPECT_EQ(page([] {
                  draw(0, 0, "kept");
                  host::failMemoryFrom(1);
                  draw(20, 0, std::string(100000, 'x'));
                  host::failMemoryFrom(0);
                  draw(12, 0, "too");
              }),
              "kept      too");
}

TEST_F(Ascii, NothingIsTakenWithoutAJob) {
    expectNothingIsDrawnWithoutAJob([] {
        draw(0, 0, "lost");
        mclibAscii_newPage();
    });
}
