#include "mchost/mdl/plot.h"
#include "mchost/mdl/view.h"

#include <cairo.h>
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <memory>

#include "mchost/front/scripted.h"
#include "mchost/mdl/element.h"
#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/fence.h"
#include "mchost/mdl/files.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/reference.h"
#include "mchost/mdl/system.h"
#include "mchost/mdl/transform.h"
#include "tests/support/child.h"
#include "tests/support/session_fixture.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::StartsWith;

struct PlotDeleter {
    void operator()(MdlPlotDesc* descr) const { mdlPlotDesc_destroy(descr); }
};
using OwnedPlot = std::unique_ptr<MdlPlotDesc, PlotDeleter>;

class PlotTest : public SessionTest {
  protected:
    OwnedPlot plotter(const std::string& text) {
        return OwnedPlot(mdlPlotDesc_createFromTCBAndPltFile(writeFile("test.plt", text).c_str()));
    }

    void openFile() {
        ASSERT_EQ(mdlSystem_createDesignFile(path("drawing.mcd").c_str(), 0), MDL_SUCCESS);
        ASSERT_EQ(mdlSystem_newDesignFile(path("drawing.mcd").c_str(), 0), MDL_SUCCESS);
    }

    // A filled square with its lower left corner there.
    void addSquare(double x, double y, double side, uint32_t color) {
        const Point3d corners[] = {{x, y, 0}, {x + side, y, 0}, {x + side, y + side, 0}, {x, y + side, 0}};
        mdlShape_create(dgnBufP, nullptr, corners, 4, 1);
        mdlElement_setSymbology(dgnBufP, &color, nullptr, nullptr);
        ASSERT_NE(mdlElement_add(dgnBufP), 0u);
    }

    void fence(double x, double y, double width, double height) {
        const Point3d corners[] = {{x, y, 0}, {x + width, y, 0}, {x + width, y + height, 0}, {x, y + height, 0}};
        mdlShape_create(dgnBufP, nullptr, corners, 4, 0);
        ASSERT_EQ(mdlFence_fromShape(dgnBufP), MDL_SUCCESS);
    }

    std::string lastMessage() { return front().messages.empty() ? "" : front().messages.back().brief; }
};

// A PNG that was plotted; colours as 0xRRGGBB, by millimetres from the upper left corner.
class Png {
  public:
    Png(const std::string& path, double dpi)
        : surface_(cairo_image_surface_create_from_png(path.c_str())), dotsPerMm_(dpi / 25.4) {}
    ~Png() { cairo_surface_destroy(surface_); }
    int width() const { return cairo_image_surface_get_width(surface_); }
    int height() const { return cairo_image_surface_get_height(surface_); }
    uint32_t at(double x, double y) const {
        const unsigned char* row = cairo_image_surface_get_data(surface_) +
                                   static_cast<int>(y * dotsPerMm_) * cairo_image_surface_get_stride(surface_);
        return reinterpret_cast<const uint32_t*>(row)[static_cast<int>(x * dotsPerMm_)] & 0xFFFFFF;
    }

  private:
    cairo_surface_t* surface_;
    double dotsPerMm_;
};
constexpr uint32_t white = 0xFFFFFF, black = 0x000000, red = 0xD90000;

TEST_F(PlotTest, TheFenceFillsThePaperWithinItsMargin) {
    openFile();
    addSquare(0, 0, 1000, 0);
    addSquare(1000, 1000, 1000, 3);
    addSquare(3000, 0, 1000, 3);  // outside
    fence(0, 0, 2000, 4000);
    const OwnedPlot plot = plotter("output = png\nresolution = 50.8\nmargin = 10\npaper = P 120 220\n");
    ASSERT_TRUE(plot);
    ASSERT_EQ(mdlPlotDesc_setFenceFromTCB(plot.get(), 1), MDL_SUCCESS);
    ASSERT_EQ(mdlPlotDesc_plot(plot.get(), path("a.png").c_str()), MDL_SUCCESS) << lastMessage();
    const Png png(path("a.png"), 50.8);
    EXPECT_EQ(png.width(), 240);
    EXPECT_EQ(png.height(), 440);
    EXPECT_EQ(png.at(30, 190), black);
    EXPECT_EQ(png.at(85, 135), red);
    EXPECT_EQ(png.at(85, 190), white);
    EXPECT_EQ(png.at(5, 190), white) << "the margin";
    EXPECT_EQ(png.at(115, 215), white);
}

TEST_F(PlotTest, AnAreaThatIsLargerAsideIsTurned) {
    openFile();
    addSquare(0, 0, 1000, 3);  // in the lower left corner
    fence(0, 0, 4000, 2000);
    const OwnedPlot plot = plotter("output = png\nresolution = 50.8\npaper = P 100 200\n");
    mdlPlotDesc_setFenceFromTCB(plot.get(), 1);
    ASSERT_EQ(mdlPlotDesc_plot(plot.get(), path("a.png").c_str()), MDL_SUCCESS) << lastMessage();
    const Png png(path("a.png"), 50.8);
    EXPECT_EQ(png.at(75, 175), red) << "turned counter-clockwise it comes to the lower right";
    EXPECT_EQ(png.at(25, 175), white);
    EXPECT_EQ(png.at(75, 25), white);
}

TEST_F(PlotTest, WhatATurnedViewShowsStandsUprightOnPaper) {
    openFile();
    RotMatrix quarter;
    mdlRMatrix_fromAngle(&quarter, *fc_piover2P);
    ASSERT_EQ(mdlView_setRotation(1, &quarter), MDL_SUCCESS);
    addSquare(0, 0, 1000, 3);
    mdlFence_setView(1);
    fence(0, 0, 4000, 2000);  // 2000 wide and 4000 high in the view
    const OwnedPlot plot = plotter("output = png\nresolution = 50.8\npaper = P 100 200\n");
    mdlPlotDesc_setFenceFromTCB(plot.get(), 1);
    ASSERT_EQ(mdlPlotDesc_plot(plot.get(), path("a.png").c_str()), MDL_SUCCESS) << lastMessage();
    EXPECT_EQ(Png(path("a.png"), 50.8).at(75, 175), red);
    EXPECT_EQ(Png(path("a.png"), 50.8).at(25, 175), white);
}

TEST_F(PlotTest, ReferencesArePlottedWithTheirClipsAndLevelsAsTheViewHasThem) {
    openFile();
    addSquare(0, 0, 1000, 3);
    ASSERT_EQ(mdlSystem_createDesignFile(path("sheet.mcd").c_str(), 0), MDL_SUCCESS);
    ASSERT_EQ(mdlSystem_newDesignFile(path("sheet.mcd").c_str(), 0), MDL_SUCCESS);
    addSquare(1000, 0, 1000, 0);
    const Point3d clip[] = {{0, 0, 0}, {500, 0, 0}, {500, 1000, 0}, {0, 1000, 0}};
    ModelRef* place = nullptr;
    ASSERT_EQ(mdlRefFile_attach(&place, nullptr, path("drawing.mcd").c_str(), nullptr, clip, 4), MDL_SUCCESS);
    fence(0, 0, 2000, 1000);
    const OwnedPlot plot = plotter("output = png\nresolution = 50.8\npaper = P 200 100\n");
    mdlPlotDesc_setFenceFromTCB(plot.get(), 1);
    const auto colours = [&] {
        EXPECT_EQ(mdlPlotDesc_plot(plot.get(), path("a.png").c_str()), MDL_SUCCESS) << lastMessage();
        const Png png(path("a.png"), 50.8);
        return std::vector<uint32_t>{png.at(25, 50), png.at(75, 50), png.at(150, 50)};
    };
    EXPECT_EQ(colours(), (std::vector{red, white, black}));
    mdlRefFile_setLevelOn(place, 0, 1, 0);
    EXPECT_EQ(colours(), (std::vector{white, white, black}));
}

TEST_F(PlotTest, PdfsAreMadeWhateverTheSuffix) {
    openFile();
    addSquare(0, 0, 1000, 0);
    fence(0, 0, 1000, 1000);
    const OwnedPlot plot = plotter("# usual\n\nOUTPUT = PDF\n");
    mdlPlotDesc_setFenceFromTCB(plot.get(), 1);
    ASSERT_EQ(mdlPlotDesc_setPaperSize(plot.get(), "a3"), MDL_SUCCESS);
    EXPECT_EQ(mdlPlotDesc_setPaperSize(plot.get(), "B5"), MDL_ERROR);
    char paper[MDL_PLOT_TEXT_BYTES];
    mdlPlotDesc_getPaperSize(paper, plot.get());
    EXPECT_STREQ(paper, "A3");
    ASSERT_EQ(mdlPlotDesc_plot(plot.get(), path("page.000").c_str()), MDL_SUCCESS) << lastMessage();
    EXPECT_THAT(readFile("page.000"), StartsWith("%PDF-"));
    EXPECT_THAT(readFile("page.000"), HasSubstr("/MediaBox [ 0 0 841.889"));
}

TEST_F(PlotTest, APlotThatFailsTellsWhyAndLeavesFilesAsTheyWere) {
    openFile();
    addSquare(0, 0, 1000, 0);
    const OwnedPlot plot = plotter("output = pdf\n");
    EXPECT_EQ(mdlPlotDesc_setFenceFromTCB(plot.get(), 1), MDL_ERROR) << "there is no fence";
    EXPECT_EQ(mdlPlotDesc_maximize(plot.get()), MDL_ERROR);
    EXPECT_EQ(mdlPlotDesc_plot(plot.get(), path("a.pdf").c_str()), MDL_ERROR);
    EXPECT_THAT(lastMessage(), HasSubstr("place a fence"));
    fence(0, 0, 1000, 0);
    EXPECT_EQ(mdlPlotDesc_setFenceFromTCB(plot.get(), 1), MDL_ERROR) << "it has no height";
    fence(0, 0, 1000, 1000);
    EXPECT_EQ(mdlPlotDesc_setFenceFromTCB(plot.get(), 1), MDL_SUCCESS);
    EXPECT_EQ(mdlPlotDesc_plot(plot.get(), path("gone/a.pdf").c_str()), MDL_ERROR);
    EXPECT_THAT(lastMessage(), HasSubstr("there is no folder \"" + path("gone")));
    EXPECT_EQ(mdlPlotDesc_plot(plot.get(), nullptr), MDL_ERROR);
    EXPECT_THAT(lastMessage(), HasSubstr("no printer"));
    fs::create_directory(path("folder.pdf"));
    EXPECT_EQ(mdlPlotDesc_plot(plot.get(), path("folder.pdf").c_str()), MDL_ERROR);
    EXPECT_THAT(lastMessage(), HasSubstr("a folder has that name"));
    mdlSystem_closeDesignFile();
    EXPECT_EQ(mdlPlotDesc_plot(plot.get(), path("a.pdf").c_str()), MDL_ERROR);
    EXPECT_FALSE(fs::exists(path("a.pdf")));
}

TEST_F(PlotTest, AFullDiskIsAFailedPlot) {
    openFile();
    addSquare(0, 0, 1000, 0);
    fence(0, 0, 1000, 1000);
    writeFile("a.pdf", "old");
    const OwnedPlot plot = plotter("");
    mdlPlotDesc_setFenceFromTCB(plot.get(), 1);
    const auto filesBefore = std::distance(fs::directory_iterator(path("")), {});
    limitFileSize(100);
    const int status = mdlPlotDesc_plot(plot.get(), path("a.pdf").c_str());
    limitFileSize(RLIM_INFINITY);
    EXPECT_EQ(status, MDL_ERROR);
    EXPECT_THAT(lastMessage(), HasSubstr("is the disk full?"));
    EXPECT_EQ(readFile("a.pdf"), "old");
    EXPECT_EQ(std::distance(fs::directory_iterator(path("")), {}), filesBefore);
}

TEST_F(PlotTest, APlotterTellsItsTarget) {
    const struct {
        const char* text;
        int32_t hasName, isSystem;
        const char *name, *extension;
    } cases[] = {
        {"", 0, 0, "", ".pdf"},
        {"output = png", 0, 0, "", ".png"},
        {"extension = plo\noutput = svg", 0, 0, "", "plo"},
        {"extension =", 0, 0, "", ""},
        {"name = c:\\plots\\sheet", 1, 0, "c:\\plots\\sheet", ".pdf"},
        {"printer = \\\\office\\wide", 0, 1, "", ".pdf"},
    };
    for (const auto& c : cases) {
        const OwnedPlot plot = plotter(c.text);
        ASSERT_TRUE(plot) << c.text;
        const MdlPlotter* plotter = mdlPlotDesc_getPlotter(plot.get());
        int32_t hasName = -1, isSystem = -1;
        char text[MDL_PLOT_TEXT_BYTES];
        mdlPlotter_getInt(&hasName, plotter, MDL_PLOTTER_HAS_OUTPUT_NAME);
        mdlPlotter_getInt(&isSystem, plotter, MDL_PLOTTER_IS_SYSTEM);
        EXPECT_EQ(hasName, c.hasName) << c.text;
        EXPECT_EQ(isSystem, c.isSystem) << c.text;
        EXPECT_EQ(mdlPlotter_getString(text, plotter, MDL_PLOTTER_OUTPUT_NAME), static_cast<int>(strlen(c.name)));
        EXPECT_STREQ(text, c.name);
        mdlPlotter_getString(text, plotter, MDL_PLOTTER_EXTENSION);
        EXPECT_STREQ(text, c.extension);
        EXPECT_EQ(mdlPlotter_getString(text, plotter, 0x7004), -1);
        EXPECT_EQ(mdlPlotter_getInt(&hasName, plotter, 0x1003), MDL_ERROR);
    }
}

TEST_F(PlotTest, ABadDriverFileIsRefusedWithItsLine) {
    const struct {
        const char *text, *message;
    } cases[] = {
        {"output = pdf\npaper A4", "in line 2"},
        {"output = tiff", "pdf, png or svg"},
        {"colour = 3", "the names are"},
        {"resolution = 5", "10 to 2400"},
        {"resolution = 300dpi", "10 to 2400"},
        {"paper = X 100", "NAME WIDTH HEIGHT"},
        {"paper = X 100 0", "NAME WIDTH HEIGHT"},
        {"paper = X 100 nan", "NAME WIDTH HEIGHT"},
        {"paper = X 100 50\npaper = x 1 1", "already"},
        {"default = X", "isn't a paper"},
        {"margin = 90", "leaves nothing"},
        {"margin = -1", "0 to 1000"},
    };
    for (const auto& c : cases) {
        front().clear();
        EXPECT_FALSE(plotter(c.text)) << c.text;
        EXPECT_THAT(lastMessage(), HasSubstr(c.message)) << c.text;
        EXPECT_THAT(lastMessage(), HasSubstr("test.plt"));
    }
    EXPECT_EQ(mdlPlotDesc_createFromTCBAndPltFile(path("none.plt").c_str()), nullptr);
    EXPECT_THAT(lastMessage(), HasSubstr("can't be read"));
    EXPECT_EQ(mdlPlotDesc_createFromTCBAndPltFile(path("").c_str()), nullptr) << "a folder";
    EXPECT_EQ(mdlPlotDesc_createFromTCBAndPltFile(""), nullptr);
}

TEST_F(PlotTest, TheShippedPlottersCanBeUsedAndTheFirstIsFound) {
    for (const char* name : {"pdf.plt", "png.plt"}) {
        const std::string file = std::string(BUILD_DIR "/lib/plotters/") + name;
        EXPECT_TRUE(OwnedPlot(mdlPlotDesc_createFromTCBAndPltFile(file.c_str()))) << lastMessage();
    }
    mdlSystem_defineCfgVar("MS_PLTR", (path("gone.plt") + ";" BUILD_DIR "/lib/plotters/pdf.plt").c_str(), 4);
    char found[256] = "";
    EXPECT_EQ(mdlFile_find(found, nullptr, "MS_PLTR", nullptr), MDL_SUCCESS);
    EXPECT_STREQ(found, BUILD_DIR "/lib/plotters/pdf.plt");
}

class PrinterTest : public PlotTest {
  protected:
    PrinterTest() {
        fs::create_directories(path("spool/office/wide"));
        fs::create_directories(path("spool/office/narrow"));
        mdlSystem_defineCfgVar("MC_SPOOL", path("spool").c_str(), 4);
    }
    size_t jobsFor(const char* printer) {
        size_t count = 0;
        for (const auto& entry : fs::directory_iterator(path(std::string("spool/office/") + printer))) {
            std::ifstream file(entry.path());
            std::string start(5, ' ');
            file.read(start.data(), 5);
            count += start == "%PDF-";
        }
        return count;
    }
};

TEST_F(PrinterTest, ASystemPrinterGetsEachCopyAsAJob) {
    openFile();
    addSquare(0, 0, 1000, 0);
    fence(0, 0, 1000, 1000);
    const OwnedPlot plot = plotter("output = png\nprinter = \\\\office\\wide\n");
    mdlPlotDesc_setFenceFromTCB(plot.get(), 1);
    EXPECT_EQ(mdlPlotDesc_setNumCopies(plot.get(), 0), MDL_ERROR);
    mdlPlotDesc_setNumCopies(plot.get(), 3);
    EXPECT_EQ(mdlPlotDesc_plot(plot.get(), nullptr), MDL_SUCCESS) << lastMessage();
    EXPECT_EQ(jobsFor("wide"), 3u);
    const OwnedPlot other = plotter("printer = \\\\office\\gone\n");
    mdlPlotDesc_setFenceFromTCB(other.get(), 1);
    EXPECT_EQ(mdlPlotDesc_plot(other.get(), nullptr), MDL_ERROR);
    EXPECT_THAT(lastMessage(), HasSubstr("The plot on \"\\\\office\\gone\""));
}

TEST_F(PrinterTest, TheUserChoosesThePrinter) {
    const OwnedPlot plot = plotter("printer = wide\n");
    MdlPlotter* plotter = mdlPlotDesc_getPlotter(plot.get());
    int32_t answer = 0;
    host::DialogScript cancel, choose;
    cancel.press(-4);
    front().answer = std::ref(cancel);
    EXPECT_EQ(mdlPlotter_showSystemPrintdlg(&answer, plotter, 4, 1), MDL_SUCCESS);
    EXPECT_EQ(answer, 1);
    choose.setValue(ITEM_OPTION_BUTTON, 1, "0").press(-3);
    front().answer = std::ref(choose);
    EXPECT_EQ(mdlPlotter_showSystemPrintdlg(&answer, plotter, 4, 1), MDL_SUCCESS) << choose.fault();
    EXPECT_EQ(answer, 2);
    char name[MDL_PLOT_TEXT_BYTES];
    EXPECT_EQ(mdlPlotDesc_getSysPrinter(name, plot.get()), MDL_SUCCESS);
    EXPECT_STREQ(name, "\\\\office\\narrow");
    front().answer = nullptr;
    EXPECT_EQ(mdlPlotter_showSystemPrintdlg(&answer, plotter, 4, 1), MDL_ERROR) << "nobody answers";
}

}  // namespace
