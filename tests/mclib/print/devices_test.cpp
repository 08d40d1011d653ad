// What holds for every print device: one page through the front end.
#include <algorithm>
#include <fstream>
#include <numbers>
#include <sstream>

#include "mclib/frame/global_data.h"
#include "mclib/print/ps_prolog.h"
#include "tests/mclib/print/page_fixture.h"

using namespace mc;

namespace {

constexpr double pi = std::numbers::pi;

struct Device {
    const char* name;
    int number;
};
constexpr Device devices[] = {{"ps", PRINT_POSTSCRIPT}, {"hpgl", PRINT_HPGL}, {"txt", PRINT_ASCII}, {"pcl", PRINT_PCL}};

class Devices : public PageTest {
  protected:
    // Each kind of element, and a table.
    void mixedPage() {
        corners();
        shape(false, {.color = 130, .level = 63});
        line(30000, 40000, 80000, 40000, {.weight = 3, .style = 4});
        text(L"Bl\u00e5b\u00e6r (100 %) \\ \u00d8", 7, pi / 6);
        const Point3d center = {120000, 50000, 0};
        mdlArc_create(&element, nullptr, &center, 30000, 20000, nullptr, 0, pi / 2);
        append({.weight = 1});
        mdlEllipse_create(&element, nullptr, &center, 10000, 10000, nullptr, 1);
        append({});
        const struct {
            double y;
            const wchar_t *station, *radius;
        } rows[] = {
            {90000, L"Station", L"Radius"}, {82000, L"\u00c5s 0+100", L"250.00"}, {78000, L"0+180.5", L"-75.50"}};
        for (const auto& row : rows) {
            text(row.station, 2, 0, {5000, row.y, 0});
            text(row.radius, 14, 0, {60000, row.y, 0});
        }
    }
};

std::string fileBytes(const std::string& path) {
    std::ostringstream bytes;
    bytes << std::ifstream(path, std::ios::binary).rdbuf();
    return bytes.str();
}

void expectGolden(const std::string& file, const std::string& name) {
    const std::string golden = TEST_SOURCE_DIR "/golden/" + name, made = BUILD_DIR "/" + name;
    if (file == fileBytes(golden)) return;
    std::ofstream(made, std::ios::binary) << file;
    ADD_FAILURE() << "to accept the new page: cp " << made << ' ' << golden;
}

}  // namespace

TEST_F(Devices, WholePageIsTheGolden) {
    mixedPage();
    for (const Device& device : devices) expectGolden(job(device.number), std::string("page.") + device.name);
}

TEST_F(Devices, SecondPageIsLikeTheFirst) {
    mixedPage();
    struct Case {
        int device;
        std::string jobHead, pageHead, pageEnd, jobEnd;
    };
    const std::string pclHead = "\33E\33&l26a0O\33*c5952x8418Y\33&l0E\33*p0x0Y\33*c0T\33%1BIN;SP1;PA0,0;\n";
    for (const Case& c : {Case{PRINT_POSTSCRIPT, std::string(psProlog), "", "showpage\n", ""},
                          Case{PRINT_HPGL, "IN;PU;VS80;IP,603,521,10603,7721;SP1;CS32;\n", "", "PU;PA0,0;PG;\n", ""},
                          Case{PRINT_PCL, "", pclHead, "\33%1A", "\33E"}}) {
        const std::string once = job(c.device), before = c.jobHead + c.pageHead, after = c.pageEnd + c.jobEnd;
        ASSERT_TRUE(once.starts_with(before) && once.ends_with(after)) << once;
        const std::string body = once.substr(before.size(), once.size() - before.size() - after.size());
        const std::string aPage = c.pageHead + body + c.pageEnd;
        EXPECT_EQ(job(c.device, {0, 0, 200, 100}, 2), c.jobHead + aPage + aPage + c.jobEnd);
    }
}

TEST_F(Devices, FileThatCantBeOpenedIsToldAndNothingIsDrawn) {
    mixedPage();
    const std::string file = path("no folder/page.out");
    for (const Device& device : devices) {
        SCOPED_TRACE(device.name);
        front().clear();
        EXPECT_EQ(mclibPrint_fopen(file.c_str(), device.number), 0);
        mclibPrint_printElementDescr(page, 0, 0, 10, 10);
        mclibPrint_newPage();
        mclibPrint_fclose();
        EXPECT_EQ(mclibPrint_jobStatus(), MCLIB_ERROR);
        EXPECT_TRUE(front().consoleText.ends_with(": cannot open " + file + ".\n")) << front().consoleText;
        EXPECT_EQ(mclibPrint_fopen(nullptr, device.number), 0);
        EXPECT_FALSE(job(device.number).empty());  // the next job is a good one
    }
}

TEST_F(Devices, FullDiskIsToldOnceWithTheName) {
    mixedPage();
    for (int i = 0; i < 2000; ++i) line(0, 0, 200000, i);
    for (const Device& device : devices) {
        SCOPED_TRACE(device.name);
        front().clear();
        EXPECT_EQ(mclibPrint_fopen("/dev/full", device.number), 1);
        mclibPrint_printElementDescr(page, 0, 0, 200, 100);
        mclibPrint_fclose();
        EXPECT_EQ(mclibPrint_jobStatus(), MCLIB_ERROR);
        EXPECT_NE(front().consoleText.find(": cannot write all of /dev/full;"), std::string::npos);
        EXPECT_EQ(std::ranges::count(front().consoleText, '\n'), 1) << front().consoleText;
    }
}

TEST_F(Devices, JobLeftOpenEndsBeforeTheNext) {
    mixedPage();
    for (const Device& device : devices) {
        SCOPED_TRACE(device.name);
        const std::string whole = job(device.number);
        for (const Device& next : devices) {
            const std::string other = job(next.number);
            mclibPrint_fopen(path("left.out").c_str(), device.number);
            mclibPrint_printElementDescr(page, 0, 0, 200, 100);
            EXPECT_EQ(job(next.number), other);
            EXPECT_EQ(readFile("left.out"), whole);
        }
    }
}

TEST_F(Devices, JobLeftOpenEndsWithItsApplication) {
    const auto leave = [](int argc, char** argv) {
        mclibMain_initMcLib("left", argc, argv);
        return mclibPrint_fopen(argv[2], PRINT_POSTSCRIPT) == 1 ? 0 : 1;
    };
    session().endApplication(session().startApplication("left", leave, "USER", {path("left.out")}));
    EXPECT_EQ(readFile("left.out"), std::string(psProlog) + "showpage\n");
}

TEST_F(Devices, LettersThatADeviceDoesntShowAreToldOnceAJob) {
    corners();
    for (const int up : {10000, 20000}) text(L"{\u00e5} m\u00b2 45\u00b0 \u20ac \u0081", 2, 0, {0, up * 1.0, 0});
    struct Case {
        int device;
        const char* told;  // the end of the line
    };
    for (const Case& c :
         {Case{PRINT_POSTSCRIPT, ": \u20ac (129) \u00b0 \u00b2; MC_PSENCODING = 1252 brings what Windows-1252 has"},
          Case{PRINT_HPGL, ": { } \u20ac (129) \u00b0 \u00b2"}, Case{PRINT_PCL, ": \u20ac (129)"},
          Case{PRINT_ASCII, ""}}) {
        SCOPED_TRACE(c.device);
        front().clear();
        const std::string file = job(c.device, {0, 0, 200, 100}, 2);
        const std::string& told = front().consoleText;
        EXPECT_TRUE(*c.told ? told.ends_with(std::string(c.told) + "\n") : told.empty()) << told;
        EXPECT_EQ(std::ranges::count(told, '\n'), *c.told ? 1 : 0);
    }
    mdlSystem_defineCfgVar("MC_PSENCODING", "1252", 4);
    front().clear();
    job(PRINT_POSTSCRIPT);
    EXPECT_TRUE(front().consoleText.ends_with(": (129)\n")) << front().consoleText;
}

TEST_F(Devices, LettersAreKnownBeforeAJob) {
    struct Case {
        int device;
        const char *shown, *others;
    };
    for (const Case& c : {Case{PRINT_POSTSCRIPT, "a'\xE6\xA9", "\x80\xB0\x81"}, Case{PRINT_HPGL, "a'\xE6", "{\x80\xA9"},
                          Case{PRINT_PCL, "a{\xE6\xB0", "\x80\x9F"}, Case{PRINT_ASCII, "a{\x80\x81", ""},
                          Case{2, "", "a"}, Case{77, "", "a"}}) {
        for (const char letter : std::string(c.shown)) EXPECT_EQ(mclibPrint_showsLetter(c.device, letter), 1) << letter;
        for (const char letter : std::string(c.others))
            EXPECT_EQ(mclibPrint_showsLetter(c.device, letter), 0) << letter;
    }
    mdlSystem_defineCfgVar("MC_PSENCODING", "1252", 4);
    EXPECT_EQ(mclibPrint_showsLetter(PRINT_POSTSCRIPT, '\x80'), 1);
    EXPECT_EQ(mclibPrint_showsLetter(PRINT_POSTSCRIPT, '\x81'), 0);
}

// A page of a size that overflows every plotter's units, with points and texts on its far ends.
TEST_F(Devices, HugeCoordinatesMakeAFile) {
    mixedPage();
    for (const Device& device : devices) {
        SCOPED_TRACE(device.name);
        for (const PaperBox& box : {PaperBox{0, 0, 1e12, 1e12}, PaperBox{-4e9, 4e9, 200, 100}})
            EXPECT_FALSE(job(device.number, box).empty());
    }
}

TEST_F(Devices, WithoutADriverAWholeJobIsTaken) {
    corners();
    for (const int device : {2, 3, 6, 7, 77, -1}) {
        front().clear();
        EXPECT_EQ(mclibPrint_fopen(path("nothing.out").c_str(), device), 1);
        mclibPrint_printElementDescr(page, 0, 0, 10, 10);
        mclibPrint_newPage();
        mclibPrint_fclose();
        const bool known = device > 0 && device < 7;
        EXPECT_EQ(mclibPrint_jobStatus(), known ? MCLIB_SUCCESS : MCLIB_ERROR);
        EXPECT_EQ(front().consoleText.empty(), known) << front().consoleText;
    }
    EXPECT_EQ(readFile("nothing.out"), "");
}

TEST_F(Devices, WithoutARegisteredApplicationNothingIsPrinted) {
    const host::ApplicationScope other(application("stranger"));
    for (const Device& device : devices) {
        EXPECT_EQ(mclibPrint_fopen(path("stranger.out").c_str(), device.number), 0);
        mclibPrint_printElementDescr(page, 0, 0, 10, 10);
        mclibPrint_newPage();
        mclibPrint_fclose();
        EXPECT_EQ(mclibPrint_jobStatus(), MCLIB_ERROR);
    }
    EXPECT_EQ(readFile("stranger.out"), "");
}

TEST_F(Devices, PclGetsTheLastPageCodeEvenOneWithoutASize) {
    corners();
    double width = 0, height = 0;
    mclibPrint_getPageSize(&width, &height, 10);
    EXPECT_NE(job(PRINT_PCL).find("\33&l26a1O"), std::string::npos);
    mclibPrint_getPageSize(&width, &height, 13);
    EXPECT_NE(job(PRINT_PCL).find("\33&l26a0O"), std::string::npos);
}

TEST_F(Devices, TextDeviceReadsAlongThePagesDirection) {
    corners();
    text(L"upwards", 2, pi / 2, {20000, 10000, 0});
    text(L"lower", 2, pi / 2, {41000, 10000, 0});
    text(L"beside", 2, pi / 2, {20000, 34000, 0});
    text(L"level", 2, 0, {20000, 50000, 0});
    EXPECT_EQ(job(PRINT_ASCII), "level\n");
    mclibMain_getGlobalDataP()->pageAngle = 90;
    EXPECT_EQ(job(PRINT_ASCII), "upwards             beside\n\n\n\n\n\n\n\n\n\nlower\n");
}

TEST_F(Devices, PlotterPictureIsTurnedByAQuarter) {
    corners();
    line(30000, 40000, 80000, 40000);
    // (30, 40) lands on (60, 30): the box is 100 high. Plotter units begin at (10, 1).
    EXPECT_NE(job(PRINT_HPGL).find("PU;PA1923,1115;PD;PD;PA1923,3038;\n"), std::string::npos) << job(PRINT_HPGL);
}
