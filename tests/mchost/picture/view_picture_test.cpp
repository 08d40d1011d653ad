// Pictures of views: looked at as the strokes of an SVG file, and as the dots of a PNG file.
#include <cmath>
#include <map>
#include <memory>

#include "mchost/command/command.h"
#include "mchost/mdl/level.h"
#include "mchost/mdl/reference.h"
#include "mchost/mdl/state.h"
#include "mchost/mdl/text.h"
#include "mchost/mdl/transform.h"
#include "mchost/mdl/view.h"
#include "mchost/picture/view.h"
#include "mchost/space/vector.h"
#include "tests/mchost/model/model_fixture.h"
#include "tests/support/dots.h"

namespace {

// View 0 shows x and y from 0 to 800 and 600, so a dot is a UOR.
class ViewPicture : public DesignFileTest {
  protected:
    ViewPicture() {
        EXPECT_EQ(mdlSystem_createDesignFile(file.c_str(), 1), MDL_SUCCESS);
        open();
        showFrom(1, {0, 0, 0});
    }
    // As the standard view, with that point of the model in the lower left corner.
    void showFrom(int32_t standard, const Point3d& origin) {
        RotMatrix rotation;
        const Point3d extent{800, 600, 0};
        ASSERT_EQ(mdlView_getStandard(&rotation, standard), MDL_SUCCESS);
        ASSERT_EQ(mdlView_setRotation(0, &rotation), MDL_SUCCESS);
        ASSERT_EQ(mdlView_setArea(0, &origin, &extent), MDL_SUCCESS);
    }
    Dots picture() {
        EXPECT_EQ(mdlPicture_writeView(path("view.png").c_str(), 0, 0, 0), MDL_SUCCESS);
        return Dots(path("view.png"));
    }
    // A block of lines from one corner to the opposite one.
    void addBlock(const Point3d& low, const Point3d& high, uint32_t color = 0) {
        const auto corner = [&](int i) {
            return Point3d{i & 1 ? high.x : low.x, i & 2 ? high.y : low.y, i & 4 ? high.z : low.z};
        };
        for (int from = 0; from < 8; ++from) {
            for (const int axis : {1, 2, 4}) {
                if ((from & axis) != 0) continue;
                const Point3d ends[] = {corner(from), corner(from | axis)};
                mdlLine_create(dgnBufP, nullptr, ends);
                dgnBufP->head.color = static_cast<int32_t>(color);
                ASSERT_NE(mdlElement_add(dgnBufP), 0u);
            }
        }
    }
    static FilePos addAcross(double y, LevelId level = 1, uint16_t elementClass = 0) {
        MSElementBuffer* const element = line(100, y, 700, y);
        element->head.level = level;
        element->head.properties |= elementClass;
        return mdlElement_add(element);
    }
};

TEST_F(ViewPicture, ABlockLooksFromEachSideAsItIs) {
    addBlock({100, 200, 300}, {200, 400, 600});
    const Dots top = picture();
    EXPECT_EQ(top.width(), 800);
    EXPECT_EQ(top.height(), 600);
    EXPECT_TRUE(top.isInked(150, 600 - 200) && top.isInked(100, 600 - 300) && !top.isInked(150, 600 - 300));
    showFrom(5, {0, 0, 200});  // x to the right, z up
    const Dots front = picture();
    EXPECT_TRUE(front.isInked(150, 600 - 100) && front.isInked(100, 600 - 300) && !front.isInked(100, 600 - 450));
    showFrom(3, {0, 500, 200});  // from the side of small x: y to the left, z up
    const Dots left = picture();
    EXPECT_TRUE(left.isInked(100, 600 - 300) && left.isInked(300, 600 - 300) && !left.isInked(200, 600 - 300));
}

TEST_F(ViewPicture, ShowsWhatTheViewHasOn) {
    LevelId road = 0;
    ASSERT_EQ(mdlLevel_create(&road, nullptr, L"Road"), MDL_SUCCESS);
    addAcross(100, road);
    addAcross(200, 1, 1);
    const Point3d square[] = {{100, 300, 0}, {200, 300, 0}, {200, 400, 0}, {100, 400, 0}};
    mdlShape_create(dgnBufP, nullptr, square, 4, 1);
    dgnBufP->head.weight = 10;
    mdlElement_add(dgnBufP);
    const auto inked = [&] {
        const Dots dots = picture();
        std::string all;
        for (const auto& [x, y] : {std::pair(400, 100), {400, 200}, {150, 350}, {96, 350}})
            all += dots.isInked(x, 600 - y) ? '1' : '0';
        return all;
    };
    EXPECT_EQ(inked(), "1111");
    mdlView_setLevelOn(0, nullptr, road, 0);
    EXPECT_EQ(inked(), "0111");
    mdlView_setDisplayControl(0, MDL_VIEW_CONSTRUCTIONS, 0);
    EXPECT_EQ(inked(), "0011");
    mdlView_setDisplayControl(0, MDL_VIEW_FILLS, 0);
    EXPECT_EQ(inked(), "0001");
    mdlView_setDisplayControl(0, MDL_VIEW_WEIGHTS, 0);
    EXPECT_EQ(inked(), "0000");
}

TEST_F(ViewPicture, LevelsOverrideColoursWhereTheViewLetsThem) {
    mdlLevel_setSymbology(nullptr, 1, 3, 0, 6);
    addAcross(100);
    EXPECT_NE(picture().at(400, 500), 0xD90000u);
    mdlView_setDisplayControl(0, MDL_VIEW_LEVEL_SYMBOLOGY, 1);
    EXPECT_EQ(picture().at(400, 500), 0xD90000u);
}

// The reference is twice as large, moved by 100, and cut at x = 300; from the front its z is doubled too.
TEST_F(ViewPicture, ReferencesAreWhereTheyAreAttachedAndCutFromEachSide) {
    addBlock({50, 50, 50}, {150, 150, 150});
    close();
    const std::string host = path("host.mcd");
    ASSERT_EQ(mdlSystem_createDesignFile(host.c_str(), 1), MDL_SUCCESS);
    ASSERT_EQ(mdlSystem_newDesignFile(host.c_str(), 0), MDL_SUCCESS);
    const Transform doubled{{{2, 0, 0, 100}, {0, 2, 0, 0}, {0, 0, 2, 0}}};
    const Point3d clip[] = {{0, -10, 0}, {300, -10, 0}, {300, 500, 0}, {0, 500, 0}};
    ModelRef* place = nullptr;
    ASSERT_EQ(mdlRefFile_attach(&place, nullptr, file.c_str(), &doubled, clip, 4), MDL_SUCCESS);
    for (const int32_t side : {1, 5}) {
        SCOPED_TRACE(side);
        showFrom(side, {0, 0, 0});
        const Dots dots = picture();
        EXPECT_TRUE(dots.isInked(200, 600 - 200) && dots.isInked(290, 600 - 100) && dots.isInked(290, 600 - 300));
        EXPECT_FALSE(dots.isInked(310, 600 - 100) || dots.isInked(400, 600 - 200));
    }
    mdlView_setDisplayControl(0, MDL_VIEW_REFERENCES, 0);
    EXPECT_FALSE(picture().isInked(200, 400));
    mdlView_setDisplayControl(0, MDL_VIEW_REFERENCES, 1);
    const int32_t hidden = 1;
    mdlRefFile_setParameters(&hidden, MDL_REFERENCE_HIDDEN, place);
    EXPECT_FALSE(picture().isInked(200, 400));
}

// A triangle of the drawing is the clip: moved, it shows another part; deleted, nothing, which is told.
TEST_F(ViewPicture, AnElementThatClipsIsFollowed) {
    addAcross(100);
    close();
    const std::string host = path("host.mcd");
    ASSERT_EQ(mdlSystem_createDesignFile(host.c_str(), 0), MDL_SUCCESS);
    ASSERT_EQ(mdlSystem_newDesignFile(host.c_str(), 0), MDL_SUCCESS);
    const auto triangle = [](double x) {
        const Point3d corners[] = {{x, 0, 0}, {x + 200, 0, 0}, {x + 100, 200, 0}};
        EXPECT_EQ(mdlShape_create(dgnBufP, nullptr, corners, 3, 0), MDL_SUCCESS);
        return dgnBufP;
    };
    ModelRef* place = nullptr;
    ASSERT_EQ(mdlRefFile_attach(&place, nullptr, file.c_str(), nullptr, nullptr, 0), MDL_SUCCESS);
    const FilePos position = mdlElement_add(triangle(200));
    ASSERT_EQ(mdlRefFile_setClipElement(position, place), MDL_SUCCESS);
    showFrom(1, {0, 0, 0});
    const auto inked = [&] {
        const Dots dots = picture();
        std::string all;
        for (const int x : {230, 300, 370, 500}) all += dots.isInked(x, 600 - 100) ? '1' : '0';
        return all;
    };
    EXPECT_EQ(inked(), "0100");
    ASSERT_NE(mdlElement_rewrite(triangle(400), position), 0u);
    EXPECT_EQ(inked(), "0001");
    EXPECT_EQ(front().consoleText, "");
    ASSERT_EQ(mdlElement_undoableDelete(nullptr, position, 0), MDL_SUCCESS);
    for (int times = 0; times < 2; ++times) EXPECT_EQ(inked(), "0000");
    EXPECT_NE(front().consoleText.find("isn't there any more"), std::string::npos);
    EXPECT_EQ(front().consoleText.find('\n'), front().consoleText.size() - 1) << "once";
}

// ---- what commands show ----

constexpr uint32_t highlight = 0xFF00CC;

TEST_F(ViewPicture, ShowsWhatCommandsEraseHighlightAndMove) {
    const FilePos kept = addAcross(100), erased = addAcross(200), lit = addAcross(300);
    mdl::Descr toErase, toLight;
    asApplication("editor", [&] {
        mdlState_startPrimitive([](Point3d*, int32_t) {}, nullptr, 0, 0);
        return mdlState_setFunction(MDL_STATE_DYNAMICS,
                                    reinterpret_cast<MdlStateFunction>(+[](Point3d* at, int32_t, int32_t mode) {
                                        mdlElement_display(line(100, at->y, 700, at->y), mode);
                                    }));
    });
    ASSERT_NE(mdlElmdscr_read(toErase.out(), erased, nullptr), 0u);
    mdlElmdscr_display(toErase.get(), nullptr, MDL_ERASE);
    ASSERT_NE(mdlElmdscr_read(toLight.out(), lit, nullptr), 0u);
    mdlElmdscr_display(toLight.get(), nullptr, MDL_HIGHLIGHT);
    host::moveCursor({0, 400, 0}, 0);
    const Dots dots = picture();
    EXPECT_TRUE(dots.isInked(400, 500)) << kept;
    EXPECT_FALSE(dots.isInked(400, 400));
    EXPECT_EQ(dots.at(400, 300), highlight);
    EXPECT_TRUE(dots.isInked(400, 200)) << "in dynamics";
    mdlState_startDefaultCommand();
    const Dots after = picture();
    EXPECT_TRUE(after.isInked(400, 400) && !after.isInked(400, 200));
    EXPECT_TRUE(after.isInked(400, 300) && after.at(400, 300) != highlight);
}

TEST_F(ViewPicture, ALocatedElementIsHighlightedUntilItIsLetGo) {
    addAcross(100);
    asApplication("editor", [] {
        return mdlState_startModifyCommand([] {}, [](Point3d*, int32_t) {}, nullptr, nullptr, nullptr, 0, 0, 0, 0);
    });
    EXPECT_TRUE(host::giveDataPoint({400, 104, 0}, 0));
    EXPECT_EQ(picture().at(400, 500), highlight);
    host::giveReset();
    EXPECT_NE(picture().at(400, 500), highlight);
}

// As a window would: it hears that the view has changed, and draws what the view shows from calls alone.
class Window : public host::Canvas {
  public:
    MdlPen pen() override {
        MdlPen pen = {};
        pen.userArg = this;
        pen.tolerance = 1;
        pen.line = [](void* self, const MSElementBuffer*, const MdlLook*, const Point3d* points, int32_t) {
            auto& window = *static_cast<Window*>(self);
            window.drawn.push_back({(points->x - window.range.low.x) / window.pixel,
                                    (window.range.high.y - points->y) / window.pixel, window.highlighted ? 1.0 : 0.0});
        };
        return pen;
    }
    void beginClip(std::span<const Point3d>) override {}
    void endClip() override {}
    void highlight(bool on) override { highlighted = on; }
    void redraw(int32_t view) {
        host::ViewSize size;
        mdlView_getSize(&size.width, &size.height, view);
        range = host::rangeOn(view, size);
        pixel = mdlView_getPixelSize(view);
        EXPECT_TRUE(host::drawView(view, range, *this));
    }

    Range3d range = {};
    double pixel = 0;
    bool highlighted = false;
    std::vector<Point3d> drawn;  // the beginnings of lines in pixels; z is 1 for highlighted ones
};

TEST_F(ViewPicture, AWindowDrawsItselfFromCallsAlone) {
    addAcross(100);
    const FilePos lit = addAcross(200);
    ASSERT_EQ(mdlView_setSize(0, 500, 500), MDL_SUCCESS);
    front().clear();
    mdlInput_sendKeyin("view 1 rotate 30", 0, -1, nullptr);
    mdl::Descr ed;
    ASSERT_NE(mdlElmdscr_read(ed.out(), lit, nullptr), 0u);
    mdlElmdscr_display(ed.get(), nullptr, MDL_HIGHLIGHT);
    host::serve();
    EXPECT_EQ(front().seen.back(), "view 0");
    Window window;
    window.redraw(0);
    ASSERT_EQ(window.drawn.size(), 3u) << "both lines, and one highlighted";
    const Point3d begin{100, 200, 0};
    double x = 0, y = 0;
    ASSERT_EQ(mdlView_pixelFromPoint(&x, &y, &begin, 0), MDL_SUCCESS);
    EXPECT_NEAR(window.drawn[2].x, x, 1e-9);
    EXPECT_NEAR(window.drawn[2].y, y, 1e-9);
    EXPECT_TRUE(window.drawn[2].z == 1 && window.drawn[1].z == 0);
}

TEST_F(ViewPicture, KeyInMakesAPicture) {
    addAcross(100);
    const std::string name = path("of it.png");
    mdlInput_sendKeyin(("picture view 1 " + name).c_str(), 0, -1, nullptr);
    mdlInput_sendKeyin("picture view 9", 0, -1, nullptr);
    mdlInput_sendKeyin(("picture view 1 " + path("view.gif")).c_str(), 0, -1, nullptr);
    host::serve();
    EXPECT_TRUE(Dots(name).isInked(400, 500));
    EXPECT_EQ(front().consoleText, "made " + name + "\n");
    ASSERT_EQ(front().messages.size(), 2u);
    EXPECT_NE(front().messages[0].brief.find("\"9\" isn't a view"), std::string::npos);
    EXPECT_EQ(mdlPicture_writeView(name.c_str(), 0, 100, 0), MDL_ERROR);
    EXPECT_EQ(mdlPicture_writeView(name.c_str(), 0, 40000, 100), MDL_ERROR);
    EXPECT_EQ(mdlPicture_writeView(name.c_str(), 8, 0, 0), MDL_ERROR);
}

}  // namespace
