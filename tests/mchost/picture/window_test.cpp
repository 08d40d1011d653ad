#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "mchost/dialog/dialog.h"
#include "mchost/dialog/registry.h"
#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/resource.h"
#include "mchost/mdl/text.h"
#include "mchost/mdl/view.h"
#include "mchost/resource/container.h"
#include "tests/support/drawn.h"
#include "tests/support/session_fixture.h"

namespace {

using host::ElementLine;
using host::ElementText;

class WindowTest : public SessionTest {
  protected:
    WindowTest() {
        host::ResourceContents contents;
        contents.dialogs[1] = {1, 400, 300, 0, {}, {}};
        host::writeContainer(path("window.rsc"), contents);
        window = asApplication("owner", [&] {
            mdlResource_openFile(nullptr, path("window.rsc").c_str(), MDL_RSC_READ);
            return mdlDialog_open(0, 1);
        });
        const Point3d line[] = {{100, 50, 0}, {300, 50, 0}};
        mdlLine_create(dgnBufP, nullptr, line);
        mdlElmdscr_new(&ed, nullptr, dgnBufP);
    }
    ~WindowTest() override { mdlElmdscr_freeAll(&ed); }

    void addText(double height) {
        const Point3d origin{100, 50, 0};
        const TextSize size{1, height, height, 1};
        mdlText_createWide(dgnBufP, nullptr, L"A1", &origin, nullptr, &size, nullptr, 0);
        mdlElmdscr_appendElement(ed, dgnBufP);
    }
    // The volume from (100, 0), 200 wide and 100 high, in a square of 100 pixels at (10, 20).
    int display(const Point3d& extent = {200, 100, 0}) {
        const DialogRect rect{10, 20, 110, 120};
        const Point3d origin{100, 0, 0};
        RotMatrix top;
        mdlView_getStandard(&top, 1);
        return mdlElmdscr_displayToWindow(window, &rect, nullptr, ed, &top, &origin, &extent, 0, -1);
    }
    template <class Drawn>
    std::vector<Drawn> drawn() {
        return drawnIn<Drawn>(*host::dialogOf(window));
    }

    MdlDialog* window = nullptr;
    ElementDescr* ed = nullptr;
    int asked = 0;
};

TEST_F(WindowTest, DrawingFillsTheRectangleAndIsCentred) {
    ASSERT_NE(window, nullptr);
    ASSERT_EQ(display(), MDL_SUCCESS);
    const auto lines = drawn<ElementLine>();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].points, (std::vector<double>{10, 70, 110, 70}));
}

TEST_F(WindowTest, LinesAreAsWideAndDashedAsOnThePaperThatTheWindowShows) {
    const uint32_t weight = 5;
    const int32_t style = 3;
    mdlElement_setSymbology(ed->element, nullptr, &weight, &style);
    ASSERT_EQ(display(), MDL_SUCCESS);
    const MdlPaper paper{2.0,
                         [](MdlElementLook* look, const MSElementBuffer* element, void* asked) {
                             ++*static_cast<int*>(asked);
                             look->gray = 0.25;
                             return mdlElement_getType(element) == MDL_TEXT ? 1 : 0;
                         },
                         &asked};
    addText(40);
    ASSERT_EQ(mdlWindow_setPaper(window, &paper), MDL_SUCCESS);
    ASSERT_EQ(display(), MDL_SUCCESS);
    EXPECT_EQ(asked, 2);
    ASSERT_EQ(mdlWindow_setPaper(window, nullptr), MDL_SUCCESS);
    const auto lines = drawn<ElementLine>();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_TRUE(drawn<ElementText>().empty()) << "the text was left out";
    EXPECT_NEAR(lines[0].width, 96 / 25.4, 1e-9) << "1 mm on a screen";
    EXPECT_LT(lines[0].gray, 0);
    EXPECT_EQ(lines[1].width, 2);
    constexpr double pixelsPerPoint = 2.0 * 25.4 / 72;
    EXPECT_THAT(lines[1].dashes,
                testing::Pointwise(testing::DoubleNear(1e-9), {11.28 * pixelsPerPoint, 5.76 * pixelsPerPoint}));
    EXPECT_EQ(lines[1].gray, 0.25);
    EXPECT_EQ(lines[1].points, (std::vector<double>{10, 70, 110, 70}));
    EXPECT_EQ(mdlWindow_setPaper(nullptr, nullptr), MDL_ERROR);
}

TEST_F(WindowTest, TextsOfAnySizeFillTheirBoxes) {
    addText(40);
    addText(4);
    ASSERT_EQ(display(), MDL_SUCCESS);
    const auto texts = drawn<ElementText>();
    ASSERT_EQ(texts.size(), 2u);
    EXPECT_EQ(texts[0].text, "A1");
    EXPECT_EQ(texts[0].x, 10);
    EXPECT_EQ(texts[0].y, 70);
    EXPECT_EQ(texts[0].upY, -20);
    EXPECT_EQ(texts[1].text, "A1");
    EXPECT_EQ(texts[1].y, 70);
    EXPECT_EQ(texts[1].upY, -2);
}

TEST_F(WindowTest, DepthOfTheVolumeDoesNotCountAndEmptyOnesAreDrawn) {
    EXPECT_EQ(display({200, 100, 4294967295.0}), MDL_SUCCESS);
    EXPECT_EQ(display({0, 0, 0}), MDL_SUCCESS);
    EXPECT_EQ(display({NAN, 1, 0}), MDL_ERROR);
    const DialogRect flat{10, 20, 10, 40};
    const Point3d p{0, 0, 0};
    const RotMatrix m{};
    EXPECT_EQ(mdlElmdscr_displayToWindow(window, &flat, nullptr, ed, &m, &p, &p, 0, 0), MDL_ERROR);
    EXPECT_EQ(mdlElmdscr_displayToWindow(nullptr, &flat, nullptr, ed, &m, &p, &p, 0, 0), MDL_ERROR);
}

}  // namespace
