// The application alignment, run by mchost as a user would: what it makes of the example, and of input that is wrong.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/scan.h"
#include "mchost/mdl/system.h"
#include "mchost/session/session.h"
#include "tests/support/application_test.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

const std::string examples = PROJECT_SOURCE_DIR "/apps/alignment/examples/";
const std::string mchost = BUILD_DIR "/bin/mchost";

class Alignment : public ApplicationTest {
  protected:
    Alignment() : ApplicationTest("alignment") {
        fs::copy_file(examples + "attributes.txt", folder_ / "attributes.txt");
    }

    Outcome alignment(const std::string& arguments) const { return run(arguments); }
    std::vector<std::string> files() const {
        std::vector<std::string> names = ApplicationRun::files();
        std::erase(names, "attributes.txt");
        return names;
    }
};

const std::string head = "%include attributes.txt\nPROJECT \"P\"\nSCALE 1000\n";
const std::string straight = "ELEMENT 0 0 100 0 0 0 0\n";

// Numbers of a row of the station list.
struct Row {
    double station, x, y, bearing;
    std::string radius;
};

std::vector<Row> rowsOf(const std::string& list) {
    std::vector<Row> rows;
    std::istringstream lines(list);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        Row row{};
        if (words >> row.station >> row.x >> row.y >> row.bearing >> row.radius) rows.push_back(row);
    }
    return rows;
}

TEST_F(Alignment, MakesADesignFileAPrintFileAndAPictureOfTheExample) {
    const Outcome run = alignment(examples + "granlia.txt --out road");
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_THAT(run.output, testing::Not(HasSubstr("gap")));
    EXPECT_EQ(files(), (std::vector<std::string>{"road.mcd", "road.png", "road.ps"}));
    EXPECT_EQ(read("road.png").substr(0, 8), "\x89PNG\r\n\x1a\n");
    EXPECT_EQ(shell("'" + mchost + "' --open road.mcd alignment " + examples + "granlia.txt --list").status, 0);
}

// Elements of a type in the open design file.
std::vector<ElementDescr*> elementsOf(int type) {
    std::vector<FilePos> positions(10000);
    int32_t words = static_cast<int32_t>(positions.size()) * 2;
    ScanCriteria* scan = mdlScanCriteria_create();
    mdlScanCriteria_addSingleElementTypeTest(scan, type);
    mdlScanCriteria_setReturnType(scan, 1, 0, 0);
    mdlScanCriteria_scan(scan, positions.data(), &words, nullptr);
    mdlScanCriteria_free(&scan);
    std::vector<ElementDescr*> found(words / 2, nullptr);
    for (size_t i = 0; i < found.size(); ++i) mdlElmdscr_read(&found[i], positions[i], mdlModelRef_getActive());
    return found;
}

TEST_F(Alignment, TheDesignFileHoldsTheRoadAtItsTrueCoordinates) {
    ASSERT_EQ(alignment(examples + "granlia.txt --out road").status, 0);
    const std::vector<Row> rows = rowsOf(alignment(examples + "granlia.txt --list --step 1").output);
    const host::Session session;
    ASSERT_EQ(mdlSystem_newDesignFile((folder_ / "road.mcd").c_str(), 1), MDL_SUCCESS);
    std::vector<ElementDescr*> curves = elementsOf(MDL_BSPLINE), arcs = elementsOf(MDL_ARC);
    EXPECT_EQ(curves.size(), 6u);
    EXPECT_EQ(arcs.size(), 3u);
    curves.insert(curves.end(), arcs.begin(), arcs.end());
    const double uor = mdlModelRef_getUorPerMaster(mdlModelRef_getActive());
    for (ElementDescr*& curve : curves) {
        Point3d* points = nullptr;
        int32_t count = 0;
        ASSERT_EQ(mdlElmdscr_stroke(&points, &count, curve, 0.0005 * uor), MDL_SUCCESS);
        for (int32_t i = 0; i < count; ++i) {
            const double x = points[i].x / uor, y = points[i].y / uor;
            double distance = HUGE_VAL;  // to the row's tangent, near the row
            for (const Row& row : rows) {
                const double bearing = row.bearing * M_PI / 200, dx = x - row.x, dy = y - row.y;
                if (std::hypot(dx, dy) > 1) continue;
                distance = std::min(distance, std::abs(dx * std::cos(bearing) - dy * std::sin(bearing)));
            }
            EXPECT_LT(distance, 0.004) << x << " " << y;  // a metre of a circle of 280 m rises by 1.8 mm
        }
        dlmSystem_mdlFree(points);
        mdlElmdscr_freeAll(&curve);
    }
}

TEST_F(Alignment, ThePrintedSheetIsTrueToScale) {
    ASSERT_EQ(alignment(examples + "granlia.txt --out road").status, 0);
    const std::string page = read("road.ps");
    // The frame comes first: 400 by 277 mm, 10 mm from the paper's edge, in points.
    EXPECT_THAT(page,
                HasSubstr("28.35 28.35 moveto\n1162.20 28.35 lineto\n1162.20 813.54 lineto\n28.35 813.54 lineto\n"));
    for (const char* text : {"(Fv 4127 Granlia - Tverrvik)", "(R = 280)", "(A = 165)", "(1740.86)", "(1700)", "(N)"}) {
        EXPECT_THAT(page, HasSubstr(text));
    }
}

TEST_F(Alignment, APagePrintedTwiceHasTheSameBytes) {
    ASSERT_EQ(alignment(examples + "granlia.txt --out first").status, 0);
    ASSERT_EQ(alignment(examples + "granlia.txt --out second --picture svg").status, 0);
    EXPECT_EQ(read("first.ps"), read("second.ps"));
    EXPECT_THAT(read("second.svg"), HasSubstr("<svg"));
}

TEST_F(Alignment, GhostscriptRendersTheSheet) {
    if (!canRun("gs")) GTEST_SKIP() << "no Ghostscript";
    ASSERT_EQ(alignment(examples + "granlia.txt --out road").status, 0);
    const Outcome run = shell(
        "timeout 60 gs -q -dNOPAUSE -dBATCH -dSAFER -sDEVICE=pgmraw -r50 -dDEVICEWIDTHPOINTS=1191 "
        "-dDEVICEHEIGHTPOINTS=842 -dFIXEDMEDIA -sOutputFile=page%d.pgm road.ps");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output, "");
    EXPECT_FALSE(fs::exists(folder_ / "page2.pgm"));
    const std::string image = read("page1.pgm");
    const auto dark = std::ranges::count_if(image, [](char c) { return static_cast<unsigned char>(c) < 128; });
    EXPECT_GT(dark, 3000);  // the frame alone has 2,600 points
}

TEST_F(Alignment, TheStationListFollowsTheRoad) {
    const Outcome run = alignment(examples + "granlia.txt --list --step 1");
    ASSERT_EQ(run.status, 0) << run.output;
    EXPECT_TRUE(files().empty());
    const std::vector<Row> rows = rowsOf(run.output);
    ASSERT_GT(rows.size(), 1740u);
    // From row to row the way is as long as the stations say, along the mean of the two bearings, to 1 mm.
    for (size_t i = 1; i < rows.size(); ++i) {
        const Row &a = rows[i - 1], &b = rows[i];
        const double way = b.station - a.station;
        const double bearing = (a.bearing + b.bearing) / 2 * M_PI / 200;
        EXPECT_NEAR(b.x - a.x, way * std::sin(bearing), 0.0015) << b.station;
        EXPECT_NEAR(b.y - a.y, way * std::cos(bearing), 0.0015) << b.station;
    }
    EXPECT_NEAR(rows.back().station, 1740.857, 0.001);
    EXPECT_NEAR(rows.back().x, 572391.070, 0.001);
}

TEST_F(Alignment, APartialClothoidLeadsFromCircleToCircle) {
    // R 200 to R 100 with A 100: series lengths 50 and 100, computed by integration.
    write("egg.txt", head + "ELEMENT 0 0 49.0170442 8.2435272 200 100 100\n");
    const Outcome run = alignment("egg.txt --list --step 10");
    ASSERT_EQ(run.status, 0) << run.output;
    const std::vector<Row> rows = rowsOf(run.output);
    ASSERT_EQ(rows.size(), 6u);
    EXPECT_EQ(rows.front().radius, "200.00");
    EXPECT_EQ(rows.back().radius, "100.00");
    EXPECT_NEAR(rows.front().bearing - rows.back().bearing, 0.375 * 200 / M_PI, 1e-4);  // left: the bearing falls
    EXPECT_EQ(alignment("egg.txt --scale 250").status, 0);
}

TEST_F(Alignment, GapsAreReportedWithTheirPlaceAndTheRoadIsDrawn) {
    write("gap.txt", head + straight + "ELEMENT 100 0.013 200 1 0 0 0\nELEMENT 200 1 300 1.987 0 0 0\n");
    const Outcome run = alignment("gap.txt");
    EXPECT_EQ(run.status, 1) << run.output;
    EXPECT_THAT(run.output, HasSubstr("gap.txt, line 5: gap at station 100.000: the elements lie 0.0130 m"));
    EXPECT_THAT(run.output, testing::Not(HasSubstr("gap at station 200")));
    EXPECT_TRUE(fs::exists(folder_ / "gap.mcd"));
}

TEST_F(Alignment, PrintsForEveryDevice) {
    struct Case {
        const char *device, *suffix, *begins;
    };
    for (const Case& c : {Case{"postscript", ".ps", "%!PS"}, Case{"hpgl", ".hpgl", "IN;"},
                          Case{"pcl", ".pcl",
                               "\x1b"
                               "E\x1b"},
                          Case{"ascii", ".txt", "Fv 4127 Granlia - Tverrvik\n"}}) {
        const std::string name = c.device;
        const Outcome run =
            alignment(examples + "granlia.txt --paper A4 --scale 10000 --out " + name + " --device " + name);
        EXPECT_EQ(run.status, 0) << run.output;
        EXPECT_THAT(run.output, HasSubstr("made " + name + c.suffix + "\n"));
        EXPECT_THAT(read(name + c.suffix), testing::StartsWith(c.begins)) << name;
    }
    EXPECT_EQ(files().size(), 12u);
}

TEST_F(Alignment, PclFilesTellTheWayTheirPaperLies) {
    for (const auto& [arguments, command] :
         {std::pair("--paper A4", "\x1b&l26a1O"), std::pair("--paper A4 --portrait", "\x1b&l26a0O")}) {
        const Outcome run =
            alignment(examples + "granlia.txt --scale 10000 --device pcl --out road --overwrite " + arguments);
        EXPECT_EQ(run.status, 0) << run.output;
        EXPECT_THAT(read("road.pcl"), HasSubstr(command)) << arguments;
    }
    const Outcome cut = alignment(examples + "granlia.txt --device pcl");
    EXPECT_EQ(cut.status, 2);
    EXPECT_THAT(cut.output, HasSubstr("PCL files are for A4 paper, which A3 is cut to; take --paper A4"));
}

TEST_F(Alignment, SendsTheSheetToAPrinterOrThroughACommand) {
    fs::create_directories(folder_ / "spool/LPT1");
    const std::string printing =
        "'" + mchost + "' --set MC_SPOOL=spool alignment " + examples + "granlia.txt --out road ";
    const Outcome sent = shell(printing + "--print LPT1");
    EXPECT_EQ(sent.status, 0) << sent.output;
    EXPECT_THAT(sent.output, HasSubstr("sent road.ps to LPT1\n"));
    EXPECT_EQ(read("spool/LPT1/road.ps"), read("road.ps"));
    EXPECT_EQ(shell(printing + "--overwrite --print 'copy %s lpt1;WC -c %s'").status, 0);
    EXPECT_EQ(read("spool/LPT1/road-2.ps"), read("road.ps"));
    for (const auto& [printer, why] :
         {std::pair("LPT7", "there is no such printer"), std::pair("false %s", "the command failed")}) {
        const Outcome failed = shell(printing + "--overwrite --print '" + printer + "'");
        EXPECT_EQ(failed.status, 1);
        EXPECT_THAT(failed.output, HasSubstr(std::string("road.ps: not printed by \"") + printer + "\": " + why));
    }
    EXPECT_EQ(shell(printing + "--overwrite --print cat").status, 2);
}

TEST_F(Alignment, TheSuffixTellsTheDevice) {
    write("road.txt", head + straight);
    EXPECT_EQ(alignment("road.txt --out sheet.hpgl").status, 0);
    EXPECT_EQ(files(), (std::vector<std::string>{"road.txt", "sheet.hpgl", "sheet.mcd", "sheet.png"}));
    for (const char* name : {"a.pdf", "a.png", "a.ps --device pcl", "-"})
        EXPECT_EQ(alignment(std::string("road.txt --out ") + name).status, 2) << name;
    EXPECT_EQ(alignment("--help").status, 0);
}

// Ticks that would merge on paper are thinned out with their numbers, and texts that would meet are left out.
TEST_F(Alignment, SmallScalesHaveFewerTicks) {
    const auto ticks = [&](const std::string& scale) {
        write("road.txt", head + "ELEMENT 0 0 20 0 0 0 0\nELEMENT 20 0 900 0 0 0 0\n");
        const Outcome run = alignment("road.txt --overwrite --scale " + scale);
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.output.find("there is no room for") != run.output.npos, scale == "20000") << run.output;
        const std::string page = read("road.ps");
        size_t count = 0;
        for (const char* text : {"(300) ", "(600) ", "(700) "}) count += page.find(text) != page.npos;
        return count;
    };
    EXPECT_EQ(ticks("5000"), 3u);
    EXPECT_EQ(ticks("20000"), 0u);  // each 250 m
}

TEST_F(Alignment, TheAsciiDeviceGivesTheStationListAsItIsPrinted) {
    write("short.txt", head + "PROJECT \"Bl\xc3\xa5veien\"\n" + straight);
    for (const std::string& input : {examples + "granlia.txt", std::string("short.txt")}) {
        ASSERT_EQ(alignment(input + " --step 7 --device ascii --out list --overwrite").status, 0);
        EXPECT_EQ(read("list.txt"), shell("'" + mchost + "' alignment " + input + " --step 7 --list 2>&-").output);
    }
}

TEST_F(Alignment, APrintFileNeverTakesThePlaceOfTheInput) {
    write("road.txt", head + straight);
    const Outcome run = alignment("road.txt --device ascii --overwrite");
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.output, HasSubstr("road.txt: that is the input; give another name with --out"));
    EXPECT_EQ(read("road.txt"), head + straight);
}

// A picture of one bit a pixel.
class Pbm {
  public:
    explicit Pbm(const std::string& file) {
        std::istringstream in(file);
        std::string kind;
        in >> kind >> width_ >> height_;
        in.get();
        good_ = kind == "P4" && width_ > 0 && height_ > 0;
        bytes_ = file.substr(std::min<size_t>(file.size(), in.tellg()));
        good_ = good_ && bytes_.size() == size_t(rowSize()) * height_;
    }
    bool good() const { return good_; }
    int width() const { return width_; }
    int height() const { return height_; }
    bool black(int x, int y) const { return bytes_[y * rowSize() + x / 8] & (0x80 >> x % 8); }
    int blackIn(int x1, int y1, int x2, int y2) const {
        int count = 0;
        for (int y = y1; y <= y2; ++y) {
            for (int x = x1; x <= x2; ++x) count += black(x, y);
        }
        return count;
    }

  private:
    int rowSize() const { return (width_ + 7) / 8; }
    int width_ = 0, height_ = 0;
    bool good_ = false;
    std::string bytes_;
};

TEST_F(Alignment, TheRasterShowsTheSheetTheRightWayUp) {
    // Two pixels a millimetre, and 3 pixels more than A3 has in height.
    ASSERT_EQ(alignment(examples + "granlia.txt --out road --raster 841x597").status, 0);
    const Pbm picture(read("road.pbm"));
    ASSERT_TRUE(picture.good() && picture.width() == 841 && picture.height() == 597);
    // The frame stands 10 mm inside the paper; nothing lies outside.
    const int left = 20, top = 21, right = 820, bottom = 575;
    EXPECT_GT(picture.blackIn(left + 10, top - 1, right - 10, top + 1), right - left - 40);
    EXPECT_GT(picture.blackIn(left + 10, bottom - 1, right - 10, bottom + 1), right - left - 40);
    EXPECT_GT(picture.blackIn(left - 1, top + 10, left + 1, bottom - 10), bottom - top - 40);
    EXPECT_GT(picture.blackIn(right - 1, top + 10, right + 1, bottom - 10), bottom - top - 40);
    EXPECT_EQ(picture.blackIn(0, 0, 840, top - 4), 0);
    EXPECT_EQ(picture.blackIn(0, bottom + 4, 840, 596), 0);
    EXPECT_EQ(picture.blackIn(0, 0, left - 4, 596), 0);
    EXPECT_EQ(picture.blackIn(right + 4, 0, 840, 596), 0);
    // The title strip is at the bottom, and the road climbs from the lower left to the upper right.
    EXPECT_GT(picture.blackIn(left + 10, bottom - 45, right - 10, bottom - 43), right - left - 40);
    EXPECT_GT(picture.blackIn(110, 430, 200, 460), 100);
    EXPECT_GT(picture.blackIn(left + 4, bottom - 20, left + 160, bottom - 8), 300) << "the project's name";
    EXPECT_LT(picture.blackIn(110, 100, 200, 130), 20);
}

TEST_F(Alignment, TheRasterMayHaveAnyShape) {
    for (const char* size : {"1x1", "1x300", "300x1", "37x11", "8x8"}) {
        const Outcome run = alignment(examples + "granlia.txt --out road --overwrite --raster " + std::string(size));
        EXPECT_EQ(run.status, 0) << size << run.output;
        const Pbm picture(read("road.pbm"));
        EXPECT_TRUE(picture.good()) << size;
        EXPECT_EQ(std::to_string(picture.width()) + "x" + std::to_string(picture.height()), size);
    }
}

TEST_F(Alignment, WrongInputIsToldWithItsPlaceAndMakesNothing) {
    struct Case {
        std::string input;
        std::vector<const char*> told;
    };
    const std::string longText(256, 'x');
    const std::vector<Case> cases = {
        {head + "ELEMENT 0 0 1OO 0 0 0 0\n", {"line 4, column 13: x2 must be a number", "\n            ^"}},
        {head + "ELEMENT 0 0 100 0 0 0\n", {"line 4, column 22: A is missing", "ELEMENT 0 0 100 0 0 0\n"}},
        {head + straight + "100 0 200 0 0 0 0\n", {"line 5, column 1: a line begins with a keyword"}},
        {head + straight + "SCALES 5\n", {"line 5, column 1: a line begins with a keyword"}},
        {"%include attributes.txt\nPROJECT \"P\"\n" + straight, {"line 3, column 1: SCALE must come before"}},
        {"SCALE 5\nPROJECT \"P\"\n" + straight, {"USE STRAIGHT must come before"}},
        {head, {"the file ends without an ELEMENT"}},
        {head + "ELEMENT 5 5 5 5 0 0 0\n", {"column 13", "no length", "            ^"}},
        {head + "ELEMENT 0 0 100 0 40 40 0\n", {"column 19", "100.000 m apart", "diameter of 80.000 m"}},
        {head + "ELEMENT 0 0 80.002 0 40 40 0\n", {"column 22", "80.002 m apart"}},
        {head + "ELEMENT 0 0 1e200 1e200 0 0 0\n", {"line 4", "too large to work with"}},
        {head + "ELEMENT 0 0 100 0 90 80 0\n", {"column 22", "one radius"}},
        {head + "ELEMENT 0 0 100 0 0 80 0\n", {"column 19", "one radius"}},
        {head + "ELEMENT 0 0 100 0 90 90 50\n", {"column 22", "two different radii"}},
        {head + "ELEMENT 0 0 100 0 90 -80 50\n", {"column 22", "turn both ways"}},
        {head + "ELEMENT 0 0 99 0 0 100 100\n", {"column 24", "100.000 m long with a chord of 98.893 m"}},
        {head + "ELEMENT 0 0 100 0 0 0 0 77\n", {"column 25", "no attribute 77"}},
        {head + "USE TICK 50\n" + straight, {"line 4, column 10", "no attribute 50"}},
        {head + "USE TOCK 5\n" + straight, {"line 4, column 5: USE what?"}},
        {head + "USE BOUNDARY 1\n" + straight,
         {"line 4, column 14: attribute 1 has no text size, which BOUNDARY needs"}},
        {head + "ATTRIBUTE 50 \"a\" 999 0 0 \"L\"\n", {"line 4, column 18: the colour must be -1 to 255"}},
        {head + "ATTRIBUTE 50 \"a\" 0 99 0 \"L\"\n", {"column 20: the weight must be -1 to 31"}},
        {head + "ATTRIBUTE 50 \"a\" 0 0 99 \"L\"\n", {"column 22: the line style must be 0 to 7"}},
        {head + "ATTRIBUTE 50 \"a\" 0 0 0 \"L\" 500 2\n", {"column 28: the text height must be at most 100 mm"}},
        {head + "DATE \"5 \xe2\x82\xac \xe2\x89\xa4\"\n", {"line 4, column 11: the letter U+2264"}},
        {head + "ATTRIBUTE 3 \"again\" 0 0 0 \"L\"\n", {"attribute 3 already"}},
        {"PROJECT \"" + longText + "\"\n", {"line 1, column 9", "256 characters"}},
        {"PROJECT \"P\n", {"column 9", "no closing quote"}},
        {"SCALE -5\n", {"line 1, column 7: the scale must be above 0"}},
        {"%include missing.txt\nSCALE 5\n", {"missing.txt", "bad.txt, line 1: the file that %include names"}},
        {head + straight + "ELEMENT 100 0 300 0 0 0 0 \\\n  x\n", {"line 6", "must be a whole number"}},
        {head + "ELEMENT 0 0 5000 0 0 0 0\n", {"doesn't fit on A3 at 1:1000; use --scale 20000"}},
    };
    for (const Case& c : cases) {
        write("bad.txt", c.input);
        const Outcome run = alignment("bad.txt");
        EXPECT_EQ(run.status, 1) << c.input;
        for (const char* told : c.told) EXPECT_THAT(run.output, HasSubstr(told)) << c.input;
        EXPECT_EQ(files(), std::vector<std::string>{"bad.txt"}) << c.input;
    }
}

// Ends given to a tenth of a millimetre may lie farther apart than the diameter, by less than the tolerance.
TEST_F(Alignment, AHalfCircleAtMapCoordinatesIsTaken) {
    write("half.txt", head + "ELEMENT 570020 6600030 569986.7179 6600052.1880 20 20 0\n");
    const Outcome run = alignment("half.txt --list --step 10");
    EXPECT_EQ(run.status, 0) << run.output;
    const std::vector<Row> rows = rowsOf(run.output);
    ASSERT_EQ(rows.size(), 8u);
    EXPECT_NEAR(rows.back().station, 20 * M_PI, 0.001);
    EXPECT_NEAR(std::hypot(rows[3].x - 570003.359, rows[3].y - 6600041.094), 20, 0.002);
}

TEST_F(Alignment, AnErrorInAnIncludedFileIsToldThere) {
    write("shared.txt", "# shared\nSCALE 1000\nSCALE many\n");
    write("road.txt", "# a\n# b\n%include shared.txt\nPROJECT 5\n");
    EXPECT_THAT(alignment("road.txt").output, HasSubstr("shared.txt, line 3, column 7"));
    write("shared.txt", "SCALE 1000\n");
    EXPECT_THAT(alignment("road.txt").output, HasSubstr("road.txt, line 4, column 9"));
}

TEST_F(Alignment, NorwegianLettersComeThroughFromUtf8AndWindows1252) {
    for (const char* name : {"Bl\xc3\xa5s\xc3\xb8r", "Bl\xe5s\xf8r"}) {
        write("road.txt", "%include attributes.txt\nPROJECT \"" + std::string(name) + "\"\nSCALE 1000\n" + straight);
        const Outcome run = alignment("road.txt --list --out road --overwrite");
        EXPECT_EQ(run.status, 0) << run.output;
        EXPECT_THAT(run.output, HasSubstr("Bl\xc3\xa5s\xc3\xb8r\n"));
        EXPECT_THAT(read("road.ps"), HasSubstr("(Bl\xe5s\xf8r)"));
    }
    write("road.txt", head + "TITLE \"\xc3\x85 Se\xc3\xb1or\"\n" + straight);
    EXPECT_THAT(alignment("road.txt --out road --overwrite --raster 1600x1131").output,
                HasSubstr("gaps in the place of \xc3\xb1, "));
}

TEST_F(Alignment, FilesThatAreThereStayUnlessTheyMayBeReplaced) {
    write("road.txt", head + straight);
    write("road.ps", "mine");
    const Outcome refused = alignment("road.txt");
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.output, HasSubstr("road.ps: the file is there already; give --overwrite"));
    EXPECT_EQ(read("road.ps"), "mine");
    EXPECT_EQ(files(), (std::vector<std::string>{"road.ps", "road.txt"}));
    EXPECT_EQ(alignment("road.txt --overwrite").status, 0);
    EXPECT_EQ(files(), (std::vector<std::string>{"road.mcd", "road.png", "road.ps", "road.txt"}));
    EXPECT_EQ(shell("ulimit -s 128; '" + mchost + "' alignment road.txt --overwrite").status, 0);
}

TEST_F(Alignment, WhatCantBeWrittenIsToldAndLosesNothing) {
    fs::copy_file(examples + "granlia.txt", folder_ / "road.txt");
    write("road.mcd", "mine");
    EXPECT_THAT(alignment("road.txt --out /nonexistent/road").output,
                HasSubstr("/nonexistent: the folder can't be written"));
    // Blocks of 512 bytes that a file may have: too few for the design file, then for the picture.
    for (const char* blocks : {"8", "250"}) {
        const Outcome run =
            shell("ulimit -f " + std::string(blocks) + "; '" + mchost + "' alignment road.txt --overwrite");
        EXPECT_EQ(run.status, 1) << blocks << run.output;
        EXPECT_THAT(run.output, HasSubstr("can't be")) << blocks;
        EXPECT_TRUE(read("road.mcd") == "mine") << blocks;
        EXPECT_EQ(files(), (std::vector<std::string>{"road.mcd", "road.txt"})) << blocks;
    }
}

TEST_F(Alignment, ADesignFileThatIsNoneIsRefusedAndStays) {
    write("road.txt", head + straight);
    write("foreign.mcd", "not a design file");
    const Outcome run = shell("'" + mchost + "' --open foreign.mcd alignment road.txt");
    EXPECT_EQ(run.status, 1) << run.output;
    EXPECT_EQ(read("foreign.mcd"), "not a design file");
    EXPECT_EQ(files(), (std::vector<std::string>{"foreign.mcd", "road.txt"}));
}

TEST_F(Alignment, WrongArgumentsGiveTheUsageAndStatus2) {
    for (const char* arguments :
         {"", "--bogus", "a.txt b.txt", "a.txt --scale", "a.txt --scale 0", "a.txt --scale 5x", "a.txt --paper B5",
          "a.txt --picture gif", "a.txt --device laser", "a.txt --raster", "a.txt --raster 100", "a.txt --raster 0x5",
          "a.txt --raster 5x", "a.txt --raster 5x-5", "a.txt --raster 5x5x5", "a.txt --raster 30001x1"}) {
        const Outcome run = alignment(arguments);
        EXPECT_EQ(run.status, 2) << arguments;
        EXPECT_THAT(run.output, HasSubstr("usage: mchost alignment ROAD.txt")) << arguments;
    }
    EXPECT_EQ(alignment("nowhere.txt").status, 1);
}

}  // namespace
