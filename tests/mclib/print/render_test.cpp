// Foreign programs draw our print files: the pictures of one page must agree, whatever the language.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <numbers>
#include <vector>

#include "tests/mclib/print/page_fixture.h"

namespace {

constexpr double pi = std::numbers::pi;

// Ink on paper, cut to what is drawn; row 0 on top.
struct Picture {
    int width = 0, height = 0;
    std::vector<bool> ink;

    bool at(int x, int y) const {
        return 0 <= x && x < width && 0 <= y && y < height && ink[static_cast<size_t>(y * width + x)];
    }

    // Is there ink within that many pixels of the place?
    bool near(int x, int y, int distance) const {
        for (int v = y - distance; v <= y + distance; ++v)
            for (int u = x - distance; u <= x + distance; ++u)
                if (at(u, v)) return true;
        return false;
    }

    template <class InkAt>
    static Picture drawn(int width, int height, InkAt inkAt) {
        Picture p{width, height, {}};
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) p.ink.push_back(inkAt(x, y));
        return p;
    }

    Picture cutToInk() const {
        int left = width, right = -1, top = height, bottom = -1;
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                if (at(x, y)) {
                    left = std::min(left, x), right = std::max(right, x);
                    top = std::min(top, y), bottom = std::max(bottom, y);
                }
        return drawn(right - left + 1, bottom - top + 1, [&](int x, int y) { return at(left + x, top + y); });
    }

    Picture turnedClockwise() const {
        return drawn(height, width, [&](int x, int y) { return at(y, height - 1 - x); });
    }
};

// A picture file of one bit a pixel (PBM, raw); empty when it is none.
Picture readPicture(const std::string& bytes) {
    int width = 0, height = 0, head = 0;
    if (std::sscanf(bytes.c_str(), "P4%*[ \n]%n", &head) != 0 || head == 0) return {};
    while (bytes[static_cast<size_t>(head)] == '#')
        head = static_cast<int>(bytes.find('\n', static_cast<size_t>(head))) + 1;
    int size = 0;
    if (std::sscanf(bytes.c_str() + head, "%d %d%n", &width, &height, &size) != 2) return {};
    const size_t start = static_cast<size_t>(head + size) + 1, row = (static_cast<size_t>(width) + 7) / 8;
    if (bytes.size() < start + row * static_cast<size_t>(height)) return {};
    return Picture::drawn(width, height, [&](int x, int y) {
        return bytes[start + static_cast<size_t>(y) * row + static_cast<size_t>(x) / 8] >> (7 - x % 8) & 1;
    });
}

// How much of a's ink has none of b's within two pixels.
int strayInk(const Picture& a, const Picture& b) {
    int stray = 0;
    for (int y = 0; y < a.height; ++y)
        for (int x = 0; x < a.width; ++x) stray += a.at(x, y) && !b.near(x, y, 2);
    return stray;
}

bool isInstalled(const std::string& program) {
    return std::system(("command -v " + program + " >/dev/null").c_str()) == 0;
}

class Render : public PageTest {
  protected:
    void SetUp() override {
        for (const char* program : {"gs", "hp2xx"})
            if (!isInstalled(program)) GTEST_SKIP() << program << " isn't installed: nothing is rendered";
    }

    // A frame and lines in all directions, and arcs.
    void drawing() {
        line(0, 0, 200000, 0), line(200000, 0, 200000, 100000);
        line(200000, 100000, 0, 100000), line(0, 100000, 0, 0);
        line(30000, 40000, 80000, 40000), line(30000, 40000, 55000, 90000);
        for (int i = 0; i < 12; ++i) line(150000, 70000, 150000 + 20000 * std::cos(i), 70000 + 20000 * std::sin(i));
        const Point3d center = {100000, 50000, 0};
        mdlArc_create(&element, nullptr, &center, 60000, 40000, nullptr, pi, pi / 2);
        append({});
        mdlEllipse_create(&element, nullptr, &center, 10000, 20000, nullptr, 0);
        append({});
    }
    void areas() {
        shape(true, {});
        const Point3d center = {120000, 40000, 0};
        mdlEllipse_create(&element, nullptr, &center, 10000, 15000, nullptr, 1);
        append({});
    }

    // Prints, has the file drawn by the command with %i and %o for file and picture, and gives the picture.
    Picture rendered(int device, std::string command) {
        std::string file = job(device, box);
        if (device == PRINT_PCL) file = plotterSection(file);
        std::ofstream(path("drawn.in"), std::ios::binary) << file;
        for (const auto& [mark, name] : {std::pair("%i", path("drawn.in")), {"%o", path("drawn.pbm")}})
            command.replace(command.find(mark), 2, name);
        std::filesystem::remove(path("drawn.pbm"));
        EXPECT_EQ(std::system(("timeout 60 " + command + " </dev/null >" + path("log") + " 2>&1").c_str()), 0)
            << readFile("log");
        const Picture picture = readPicture(readFile("drawn.pbm")).cutToInk();
        EXPECT_GT(picture.width, 100) << command;
        return picture;
    }

    static std::string plotterSection(const std::string& pcl) {
        const std::string enter = "\33%1B", leave = "\33%1A";
        const size_t start = pcl.find(enter) + enter.size();
        return pcl.substr(start, pcl.find(leave) - start);
    }

    static void expectSame(const Picture& expected, const Picture& picture) {
        EXPECT_NEAR(picture.width, expected.width, 2);
        EXPECT_NEAR(picture.height, expected.height, 2);
        EXPECT_EQ(strayInk(expected, picture), 0) << "lacks ink";
        EXPECT_EQ(strayInk(picture, expected), 0) << "has ink too much";
    }

    static constexpr PaperBox box = {15, 20, 180, 90};
    static constexpr const char* ghostscript =
        "gs -q -dNOPAUSE -dBATCH -dSAFER -sDEVICE=pbmraw -r100 -sOutputFile=%o %i";
};

}  // namespace

// The plotter's unit of 0.025 mm is taken as 0.026 mm: its picture is drawn by so much finer.
TEST_F(Render, HpGlDrawsThePictureOfPostScript) {
    drawing();
    expectSame(rendered(PRINT_POSTSCRIPT, ghostscript),
               rendered(PRINT_HPGL, "hp2xx -q -t -d 104 -p 1 -m pbm -f %o %i").turnedClockwise());
}

TEST_F(Render, PclDrawsThePictureOfPostScript) {
    drawing();
    areas();
    expectSame(rendered(PRINT_POSTSCRIPT, ghostscript), rendered(PRINT_PCL, "hp2xx -q -t -d 100 -m pbm -f %o %i"));
}

TEST_F(Render, PostScriptOfAWholePageIsTakenWithoutAWord) {
    drawing();
    text(L"Bl\u00e5b\u00e6r (100 %) \\ \u00d8", 7, pi / 6);
    rendered(PRINT_POSTSCRIPT, ghostscript);
    EXPECT_EQ(readFile("log"), "");
}
