#include "mclib/print/raster.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "raster_steps.h"
#include "tests/support/session_fixture.h"

namespace {

constexpr int atZero[] = {0, 0};

// A bitmap between guards; row 0 is the top one.
struct Picture {
    int size[2];
    std::vector<uint8_t> bytes;

    Picture(int width, int height, uint8_t fill = 0)
        : size{width, height}, bytes(static_cast<size_t>((width * height + 7) / 8), fill) {}
    int draw(std::vector<int> points, int mode = 1, const int* origin = atZero) {
        return mclibRaster_drawPoints(points.data(), origin, static_cast<int>(points.size() / 2),
                                      static_cast<int>(bytes.size()), size, bytes.data(), mode);
    }
    void fill(std::vector<int> points, int mode = 1, const int* origin = atZero) {
        mclibRaster_fillShape(points.data(), static_cast<int>(points.size() / 2), origin,
                              static_cast<int>(bytes.size()), size, bytes.data(), mode);
    }
    // Rows of '#' and '.', from the top.
    std::string text() const {
        std::string rows;
        for (int y = 0; y < size[1]; ++y) {
            for (int x = 0; x < size[0]; ++x) {
                const int bit = size[0] * y + x;
                rows += bytes[static_cast<size_t>(bit / 8)] & 0x80 >> bit % 8 ? '#' : '.';
            }
            rows += '\n';
        }
        return rows;
    }
};

size_t setPixels(const Picture& picture) {
    const std::string rows = picture.text();
    return static_cast<size_t>(std::ranges::count(rows, '#'));
}

TEST(RasterLines, StopOnePixelShortWhenStraightAndKeepBothEndsWhenSloping) {
    struct {
        const char* what;
        std::vector<int> points;
        const char* rows;
    } const cases[] = {
        {"horizontal", {2, 1, 6, 1}, "..........\n..####....\n..........\n"},
        {"horizontal, backwards", {6, 1, 2, 1}, "..........\n..####....\n..........\n"},
        {"vertical", {1, 0, 1, 2}, ".#........\n.#........\n..........\n"},
        {"flat: the corner lies in the old row", {0, 1, 4, 2}, "..###.....\n###.......\n..........\n"},
        {"flat, downwards", {0, 1, 4, 0}, "..........\n###.......\n..###.....\n"},
        {"steep: the corner lies in the new row", {3, 2, 4, 0}, "...#......\n...##.....\n....#.....\n"},
        {"diagonal", {0, 0, 2, 2}, "..#.......\n.##.......\n##........\n"},
        {"a point", {3, 1, 3, 1}, "..........\n..........\n..........\n"},
        {"one point alone", {3, 1}, "..........\n..........\n..........\n"},
        {"none", {}, "..........\n..........\n..........\n"},
        {"a span is less than a row long", {0, 1, 10, 1}, "..........\n#########.\n..........\n"},
        {"a span begins in its row", {-5, 1, 4, 1}, "..........\n#########.\n..........\n"},
        {"pixels left of a row are in the one above", {-2, 1, 2, 1}, "........##\n##........\n..........\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        Picture picture(10, 3);
        EXPECT_EQ(picture.draw(c.points), std::max(0, static_cast<int>(c.points.size() / 2) - 1));
        EXPECT_EQ(picture.text(), c.rows);
    }
}

class RasterMessages : public SessionTest {};

TEST_F(RasterMessages, ProgressComesAtEveryThousandthLine) {
    std::vector<int> points;
    for (int i = 0; i < 2501; ++i) points.insert(points.end(), {i % 7, i % 5});
    Picture picture(10, 10);
    EXPECT_EQ(picture.draw(points), 2500);
    ASSERT_EQ(front().fields.size(), 2u);
    EXPECT_EQ(front().fields[0], std::pair(0, std::string("<Rasterizing> 1000")));
    EXPECT_EQ(front().fields[1].second, "<Rasterizing> 2000");
}

TEST_F(RasterMessages, LinesFarOutAreLeftOut) {
    Picture picture(100, 10);
    EXPECT_EQ(picture.draw({0, 0, 201, 0}), 0);
    EXPECT_EQ(front().field(0), "X out of range: 0, 201");
    EXPECT_EQ(picture.draw({0, 9, 50, -12}), 0);
    EXPECT_EQ(front().field(0), "Y out of range: 0, 21");
    EXPECT_EQ(picture.text(), Picture(100, 10).text());
    front().clear();
    EXPECT_EQ(picture.draw({0, 0, 200, 0, INT_MAX, 0, 5, 5, 5, 7}), 2) << "the rest of the chain goes on";
    EXPECT_EQ(front().fields.size(), 2u);
    EXPECT_EQ(picture.text().substr(9 * 101, 100), std::string(99, '#') + ".");
}

TEST(RasterFill, LiesFromTheLeftEdgeToBeforeTheRightEdge) {
    Picture rectangle(14, 4);
    rectangle.fill({2, 0, 12, 0, 12, 2, 2, 2, 2, 0});
    EXPECT_EQ(rectangle.text(), "..............\n..##########..\n..##########..\n..............\n");
    Picture triangle(9, 5);
    triangle.fill({0, 0, 8, 0, 4, 4, 0, 0});
    EXPECT_EQ(triangle.text(), ".........\n...##....\n..####...\n.######..\n.........\n");
}

TEST(RasterFill, BeginsInTheFirstRowThatHasEdgesLeft) {
    Picture picture(6, 4);
    // The two upper edges begin above the bitmap and don't count; the lower ones begin in row 1.
    picture.fill({0, 2, 3, 9, 5, 2, 5, 0, 0, 0, 0, 2});
    EXPECT_EQ(picture.text(), "......\n#####.\n#####.\n......\n");
}

// Strips between random lines from top to bottom, which keep more than a pixel apart.
TEST(RasterFill, ShapesThatShareEdgesNeitherOverlapNorLeaveAGap) {
    constexpr int count = 10, distance = 9, width = count * distance, height = 40;
    const int origin[] = {0, 1};  // the lines go from the first row to the end of the last one
    std::mt19937 random(3);
    for (int i = 0; i < 200; ++i) {
        Picture all(width, height);
        size_t pixels = 0;
        for (int strip = 1, top = 0, bottom = 0; strip <= count; ++strip) {
            const auto next = [&] { return strip * distance - (strip < count ? static_cast<int>(random() % 7) : 0); };
            const int nextTop = next(), nextBottom = next();
            const std::vector<int> corners = {top, height, nextTop, height, nextBottom, 0, bottom, 0, top, height};
            Picture part(width, height);
            part.fill(corners, 1, origin);
            all.fill(corners, 1, origin);
            pixels += setPixels(part);
            top = nextTop;
            bottom = nextBottom;
        }
        ASSERT_EQ(pixels, width * height);
        ASSERT_EQ(setPixels(all), width * height);
    }
}

struct Scene {
    int size[2], origin[2];
    std::vector<int> points;
    std::vector<uint8_t> bytes;
};

Scene randomScene(std::mt19937& random, int reach, size_t mostPoints) {
    const auto upTo = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    Scene scene{{upTo(70), upTo(40)}, {upTo(9) - 4, upTo(9) - 4}, {}, {}};
    scene.bytes.resize(static_cast<size_t>(upTo(scene.size[0] * scene.size[1] / 8 + 12)), upTo(2) ? 0x5A : 0);
    if (upTo(20) == 0) scene.size[0] = -scene.size[0];
    for (auto n = 2 + random() % mostPoints; n > 0; --n) {
        scene.points.push_back(upTo(std::abs(scene.size[0]) + 2 * reach + 1) - reach);
        scene.points.push_back(upTo(scene.size[1] + 2 * reach + 1) - reach);
    }
    return scene;
}

void expectSamePixels(const Scene& scene, bool filled, int mode) {
    raster_steps::Target expected{scene.bytes, scene.size[0], scene.size[1], mode == 1};
    std::vector<uint8_t> bytes = scene.bytes;
    const auto count = static_cast<int>(scene.points.size() / 2), byteCount = static_cast<int>(bytes.size());
    if (filled) {
        raster_steps::fill(expected, scene.points, scene.origin);
        mclibRaster_fillShape(scene.points.data(), count, scene.origin, byteCount, scene.size, bytes.data(), mode);
    } else {
        const int lines = raster_steps::lines(expected, scene.points, scene.origin);
        EXPECT_EQ(
            mclibRaster_drawPoints(scene.points.data(), scene.origin, count, byteCount, scene.size, bytes.data(), mode),
            lines);
    }
    ASSERT_EQ(bytes, expected.bytes) << testing::PrintToString(scene.points) << " in " << scene.size[0] << " x "
                                     << scene.size[1] << ", " << byteCount << " bytes";
}

// Inside and outside, bitmaps of any width, too few and too many bytes, set and clear.
TEST(Raster, DrawsThePixelsOfThePlainSteps) {
    std::mt19937 random(11);
    for (int i = 0; i < 5000; ++i) {
        const int reach = i % 3 == 0 ? 0 : i % 3 == 1 ? 8 : 500;
        Scene scene = randomScene(random, reach, i % 50 == 0 ? 80 : 8);
        expectSamePixels(scene, false, i % 2);
        scene.points.push_back(scene.points[0]);
        scene.points.push_back(scene.points[1]);
        expectSamePixels(scene, true, i % 2);
        if (HasFailure()) return;
    }
}

// Many edges through few points: equal crossings in every row, whose order decides about pixels.
TEST(RasterFill, KeepsTheOrderOfEdgesThatMeet) {
    std::mt19937 random(2);
    for (int i = 0; i < 500; ++i) {
        Scene scene{{64, 12}, {0, 0}, {}, std::vector<uint8_t>(96)};
        for (size_t n = 3 + random() % 120; n > 0; --n) {
            scene.points.push_back(static_cast<int>(random() % 4 * 16));
            scene.points.push_back(static_cast<int>(random() % 3 * 5));
        }
        scene.points.insert(scene.points.end(), {scene.points[0], scene.points[1]});
        expectSamePixels(scene, true, 1);
        if (HasFailure()) return;
    }
}

TEST(Raster, CoordinatesNearTheirLimitsTakeNoTime) {
    std::mt19937 random(4);
    const int extremes[] = {INT_MIN, INT_MIN + 1, -1, 0, 7, INT_MAX - 1, INT_MAX};
    std::vector<uint8_t> bytes(8);
    for (int i = 0; i < 3000; ++i) {
        int points[8], origin[2] = {extremes[random() % 7], extremes[random() % 7]};
        const int size[] = {8, 8};
        for (int& p : points) p = extremes[random() % 7];
        points[6] = points[0];
        points[7] = points[1];
        mclibRaster_drawPoints(points, origin, 4, 8, size, bytes.data(), i % 2);
        if (i % 100 == 0) mclibRaster_fillShape(points, 4, origin, 8, size, bytes.data(), i % 2);
    }
    const int farOrigin[] = {-8, 0};
    Picture diagonal(8, 4);
    diagonal.draw({INT_MIN, INT_MAX - 4, -1, -4}, 1, farOrigin);
    EXPECT_EQ(diagonal.text(), "#.......\n##......\n.##.....\n..##....\n");
    Picture filled(8, 4);
    filled.fill({0, 0, 4, 0, 4, -2000000000, 0, -2000000000, 0, 0});
    EXPECT_EQ(filled.text(), "........\n........\n........\n####....\n");
    filled.fill({4, 2, 2000000000, 2, 2000000000, 0, 4, 0, 4, 2});
    EXPECT_EQ(filled.text(), "........\n....####\n########\n########\n");
}

TEST(Raster, NothingIsWrittenWhereThereIsNoBitmap) {
    const int none[] = {0, 0}, negative[] = {-5, -5}, points[] = {0, 0, 4, 3, 0, 5, 0, 0};
    for (const int* size : {none, negative}) {
        mclibRaster_drawPoints(points, atZero, 4, 0, size, nullptr, 1);
        mclibRaster_fillShape(points, 4, atZero, 0, size, nullptr, 1);
        mclibRaster_fillShape(points, 4, atZero, -7, size, nullptr, 1);
    }
    Picture picture(8, 8);
    for (const int count : {1, 0, -3}) {
        EXPECT_EQ(mclibRaster_drawPoints(points, atZero, count, 8, picture.size, picture.bytes.data(), 1), 0);
        mclibRaster_fillShape(points, count, atZero, 8, picture.size, picture.bytes.data(), 1);
    }
    EXPECT_EQ(picture.text(), Picture(8, 8).text());
}

}  // namespace
