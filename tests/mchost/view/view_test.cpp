// Views: where they look, what they show, what the design file keeps of them, and the key-ins about them.
#include <cmath>

#include "mchost/command/command.h"
#include "mchost/mdl/level.h"
#include "mchost/mdl/reference.h"
#include "mchost/mdl/transform.h"
#include "mchost/mdl/undo.h"
#include "mchost/mdl/view.h"
#include "mchost/view/seen.h"
#include "tests/mchost/model/model_fixture.h"

namespace {

constexpr double uor = 10000;

class Views : public OpenModelTest {
  protected:
    void keyIn(const std::string& text) {
        mdlInput_sendKeyin(text.c_str(), 0, -1, nullptr);
        EXPECT_TRUE(host::serve());
    }
    // The line that the key-in refuses itself with.
    std::string complaint(const std::string& text) {
        front().clear();
        keyIn(text);
        EXPECT_EQ(front().messages.size(), 1u) << text;
        return front().messages.empty() ? "" : front().messages.front().brief;
    }
    std::string told(const std::string& text) {
        front().clear();
        keyIn(text);
        EXPECT_TRUE(front().messages.empty());
        return front().consoleText;
    }
    static void expectArea(int32_t view, const Point3d& origin, const Point3d& extent) {
        Point3d o, e;
        ASSERT_EQ(mdlView_getArea(&o, &e, view), MDL_SUCCESS);
        const double tolerance = 1e-9 * (std::fabs(extent.x) + 1);
        EXPECT_NEAR(o.x, origin.x, tolerance);
        EXPECT_NEAR(o.y, origin.y, tolerance);
        EXPECT_NEAR(o.z, origin.z, tolerance);
        EXPECT_NEAR(e.x, extent.x, tolerance);
        EXPECT_NEAR(e.y, extent.y, tolerance);
    }
    void addLevel(const wchar_t* name, LevelId& id) {
        ASSERT_EQ(mdlLevel_create(&id, nullptr, name), MDL_SUCCESS);
        mdlLevelTable_rewrite(nullptr);
    }
    static FilePos addLine(double x1, double y1, double x2, double y2, LevelId level = 1) {
        MSElementBuffer* const element = line(x1, y1, x2, y2);
        element->head.level = level;
        return mdlElement_add(element);
    }
};

TEST_F(Views, AreFittedAtTheFirstLookToWhatTheyShow) {
    EXPECT_TRUE(mdlView_isOpen(0));
    EXPECT_FALSE(mdlView_isOpen(1));
    expectArea(1, {0, 0, 0}, {100 * uor, 75 * uor, 0});  // of nothing
    LevelId off = 0;
    addLevel(L"off", off);
    addLine(100, 200, 1100, 700);
    addLine(0, 0, 9000, 9000, off);
    ASSERT_EQ(mdlView_setLevelOn(0, nullptr, off, 0), MDL_SUCCESS);
    expectArea(0, {80, 180, 0}, {1040, 540, 0});
    EXPECT_DOUBLE_EQ(mdlView_getPixelSize(0), 1040 / 800.0);
    expectArea(1, {0, 0, 0}, {100 * uor, 75 * uor, 0});
    ASSERT_EQ(mdlView_fit(1), MDL_SUCCESS);
    expectArea(1, {-180, -180, 0}, {9360, 9360, 0});
}

TEST_F(Views, FitTakesInReferencesAsFarAsTheirClipsLeaveThem) {
    addLine(100, 0, 200, 100);
    close();
    const std::string host = path("host.mcd");
    ASSERT_EQ(mdlSystem_createDesignFile(host.c_str(), 0), MDL_SUCCESS);
    ASSERT_EQ(mdlSystem_newDesignFile(host.c_str(), 0), MDL_SUCCESS);
    const Transform doubled{{{2, 0, 0, 1000}, {0, 2, 0, 0}, {0, 0, 2, 0}}};
    const Point3d clip[] = {{1200, -500, 0}, {1300, -500, 0}, {1300, 900, 0}, {1200, 900, 0}};
    ASSERT_EQ(mdlRefFile_attach(nullptr, nullptr, file.c_str(), &doubled, clip, 4), MDL_SUCCESS);
    expectArea(0, {1196, -4, 0}, {108, 208, 0});
    ASSERT_EQ(mdlView_setDisplayControl(0, MDL_VIEW_REFERENCES, 0), MDL_SUCCESS);
    ASSERT_EQ(mdlView_fit(0), MDL_SUCCESS);
    expectArea(0, {0, 0, 0}, {100 * uor, 75 * uor, 0});
}

TEST_F(Views, PixelsAndPointsAreTheSamePlaces) {
    const Point3d origin{1000, 2000, 0}, extent{400, 300, 0};
    RotMatrix turned;
    mdlRMatrix_fromAngle(&turned, *fc_piover6P);
    ASSERT_EQ(mdlView_setSize(3, 1000, 600), MDL_SUCCESS);
    ASSERT_EQ(mdlView_setArea(3, &origin, &extent), MDL_SUCCESS);
    EXPECT_DOUBLE_EQ(mdlView_getPixelSize(3), 0.5);
    double x = 0, y = 0;
    ASSERT_EQ(mdlView_pixelFromPoint(&x, &y, &origin, 3), MDL_SUCCESS);
    EXPECT_DOUBLE_EQ(x, 100) << "the area is in the middle of the pixels";
    EXPECT_DOUBLE_EQ(y, 600);
    Point3d middle, again;
    ASSERT_EQ(mdlView_pointFromPixel(&middle, 500, 300, 3), MDL_SUCCESS);
    ASSERT_EQ(mdlView_setRotation(3, &turned), MDL_SUCCESS);
    ASSERT_EQ(mdlView_pointFromPixel(&again, 500, 300, 3), MDL_SUCCESS);
    EXPECT_NEAR(middle.x, again.x, 1e-9) << "it turns about the middle";
    EXPECT_NEAR(middle.y, 2150, 1e-9);
    const Point3d point{1234, 2100, 0};
    ASSERT_EQ(mdlView_pixelFromPoint(&x, &y, &point, 3), MDL_SUCCESS);
    ASSERT_EQ(mdlView_pointFromPixel(&again, x, y, 3), MDL_SUCCESS);
    EXPECT_NEAR(again.x, 1234, 1e-9);
    EXPECT_NEAR(again.y, 2100, 1e-9);
}

TEST_F(Views, ZoomKeepsThePointAndPanAndCentreMoveAlongTheAxesOfTheView) {
    const Point3d origin{0, 0, 0}, extent{400, 300, 0}, about{100, 0, 0}, center{0, 0, 0};
    RotMatrix quarter;
    mdlRMatrix_fromAngle(&quarter, *fc_piover2P);
    mdlView_setArea(0, &origin, &extent);
    ASSERT_EQ(mdlView_zoom(0, 4, &about), MDL_SUCCESS);
    expectArea(0, {75, 0, 0}, {100, 75, 0});
    ASSERT_EQ(mdlView_setCenter(0, &center), MDL_SUCCESS);
    expectArea(0, {-50, -37.5, 0}, {100, 75, 0});
    ASSERT_EQ(mdlView_setRotation(0, &quarter), MDL_SUCCESS);
    expectArea(0, {-37.5, 50, 0}, {100, 75, 0});
    ASSERT_EQ(mdlView_pan(0, 10, 0), MDL_SUCCESS);
    expectArea(0, {-37.5, 40, 0}, {100, 75, 0});
}

TEST_F(Views, RefuseWhatTheyCantShow) {
    const Point3d origin{0, 0, 0}, extent{400, 300, 0}, flat{400, 0, 0}, endless{1e16, 1e16, 0}, bad{NAN, 0, 0};
    mdlView_setArea(0, &origin, &extent);
    const RotMatrix skew{{{1, 0.5, 0}, {0, 1, 0}, {0, 0, 1}}}, mirrored{{{1, 0, 0}, {0, -1, 0}, {0, 0, 1}}};
    for (const Point3d* wrong : {&flat, &endless, &bad}) EXPECT_EQ(mdlView_setArea(0, &origin, wrong), MDL_ERROR);
    EXPECT_EQ(mdlView_setArea(0, &bad, &extent), MDL_ERROR);
    for (const RotMatrix* wrong : {&skew, &mirrored}) EXPECT_EQ(mdlView_setRotation(0, wrong), MDL_ERROR);
    for (const double factor : {0.0, -1.0, 1e-14, 1e9, double{NAN}})
        EXPECT_EQ(mdlView_zoom(0, factor, nullptr), MDL_ERROR) << factor;
    EXPECT_EQ(mdlView_setWindow(0, &origin, &flat), MDL_ERROR);
    EXPECT_EQ(mdlView_setSize(0, 0, 600), MDL_ERROR);
    EXPECT_EQ(mdlView_setDisplayControl(0, 8, 1), MDL_ERROR);
    for (const int32_t view : {-1, 8}) {
        EXPECT_EQ(mdlView_fit(view), MDL_ERROR);
        EXPECT_EQ(mdlView_getPixelSize(view), 0);
        EXPECT_EQ(mdlView_getDisplayControl(view, MDL_VIEW_TEXTS), -1);
    }
    expectArea(0, origin, extent);
}

TEST_F(Views, ShowElementsByLevelClassAndKind) {
    LevelId road = 0;
    addLevel(L"Road", road);
    const auto head = [](uint16_t type, LevelId level, uint16_t elementClass) {
        ElementHead made = {};
        made.type = type;
        made.level = level;
        made.properties = elementClass;
        return made;
    };
    const auto seen = [&](const std::vector<ElementHead>& heads) {
        std::string all;
        for (const ElementHead& head : heads) all += host::isSeen(head, 4) ? '1' : '0';
        return all;
    };
    // A line on the road, a text, a text for construction, a line of a dimension, a cell
    const std::vector<ElementHead> all = {head(MDL_LINE, road, 0), head(MDL_TEXT, 1, 0), head(MDL_TEXT, 1, 1),
                                          head(MDL_LINE, 1, 2), head(MDL_CELL_HEADER, road, 1)};
    EXPECT_EQ(seen(all), "11111");
    mdlView_setLevelOn(4, nullptr, road, 0);
    EXPECT_EQ(seen(all), "01111");
    mdlView_setDisplayControl(4, MDL_VIEW_CONSTRUCTIONS, 0);
    EXPECT_EQ(seen(all), "01011");
    mdlView_setDisplayControl(4, MDL_VIEW_CONSTRUCTIONS, 1);
    mdlView_setDisplayControl(4, MDL_VIEW_TEXTS, 0);
    EXPECT_EQ(seen(all), "00011");
    mdlView_setDisplayControl(4, MDL_VIEW_DIMENSIONS, 0);
    EXPECT_EQ(seen(all), "00001");
    const MdlBitMask* const mask = mdlView_getLevelDisplayMask(nullptr, 4, 2);
    EXPECT_TRUE(mdlBitMask_testBit(mask, 0));
    EXPECT_FALSE(mdlBitMask_testBit(mask, road - 1));
    EXPECT_TRUE(mdlView_isLevelOn(3, nullptr, road));
    EXPECT_EQ(mdlView_setLevelOn(4, nullptr, 77, 0), MDL_ERROR);
}

TEST_F(Views, StayInTheFileThatIsClosed) {
    LevelId road = 0;
    addLevel(L"Vei æ", road);
    const Point3d origin{-5, 7, 3}, extent{400, 300, 50};
    RotMatrix left, kept;
    mdlView_getStandard(&left, 3);
    mdlView_setOpen(6, 1);
    mdlView_setRotation(6, &left);
    mdlView_setArea(6, &origin, &extent);
    mdlView_setDisplayControl(6, MDL_VIEW_LEVEL_SYMBOLOGY, 1);
    mdlView_setLevelOn(6, nullptr, road, 0);
    mdlView_setOpen(0, 0);
    close();
    EXPECT_TRUE(mdlView_isOpen(0)) << "those of the next file";
    open();
    EXPECT_TRUE(mdlView_isOpen(6) && !mdlView_isOpen(0));
    mdlRMatrix_fromView(&kept, 6);
    EXPECT_EQ(kept.form[0][1], -1);
    expectArea(6, origin, extent);
    EXPECT_EQ(mdlView_getDisplayControl(6, MDL_VIEW_LEVEL_SYMBOLOGY), 1);
    EXPECT_FALSE(mdlView_isLevelOn(6, nullptr, road));
    mdlView_setOpen(5, 1);
    close();
    open();
    EXPECT_TRUE(mdlView_isOpen(5)) << "nothing else was changed";
    close();
    const std::string before = readFile("a.mcd");
    open(true);
    mdlView_setOpen(7, 1);
    close();
    EXPECT_TRUE(readFile("a.mcd") == before) << "it is only read";
    EXPECT_TRUE(front().messages.empty());
}

// Undo leaves them, and what else is stored while a view was only looked at leaves the file whole.
TEST_F(Views, AreNoPartOfUndo) {
    addLine(0, 0, 1000, 1000);
    mdlView_getPixelSize(0);
    ASSERT_EQ(mdlSystem_saveDesignFile(), MDL_SUCCESS);
    mdlUndo_mark("next");
    addLine(0, 0, 5000, 1000);
    mdlView_zoom(0, 2, nullptr);
    Point3d origin, extent;
    mdlView_getArea(&origin, &extent, 0);
    ASSERT_EQ(mdlUndo_undo(), MDL_SUCCESS);
    expectArea(0, origin, extent);
    open();
    expectArea(0, origin, extent);
}

TEST_F(Views, TellTheFrontEndWhatHasChanged) {
    front().clear();
    mdlView_setOpen(2, 1);
    mdlView_zoom(2, 2, nullptr);
    mdlView_update(-1);
    EXPECT_EQ(front().seen, (std::vector<std::string>{"view 2", "view 2", "view 0", "view 2"}));
    front().clear();
    close();
    EXPECT_EQ(front().seen, (std::vector<std::string>{"view 0"})) << "another file, and its views";
}

// ---- key-ins ----

TEST_F(Views, AreTurnedAndMovedByKeyIns) {
    keyIn("view 1 window 10,20 30,0");
    expectArea(0, {10 * uor, 0, 0}, {20 * uor, 20 * uor, 0});
    keyIn("View 1 ZOOM 2 10,0");
    expectArea(0, {10 * uor, 0, 0}, {10 * uor, 10 * uor, 0});
    keyIn("view 1 pan -5,2.5");
    expectArea(0, {5 * uor, 2.5 * uor, 0}, {10 * uor, 10 * uor, 0});
    keyIn("view 1 center 5,5");
    expectArea(0, {0, 0, 0}, {10 * uor, 10 * uor, 0});
    keyIn("view 1 rotate 90");
    expectArea(0, {0, 10 * uor, 0}, {10 * uor, 10 * uor, 0});
    EXPECT_EQ(told("view 1"), "view 1: open, top, turned by 90, from 0,10, 10 by 10\n");
    keyIn("view 1 front");
    EXPECT_EQ(told("view 1"), "view 1: open, front, from 0,5,-5, 10 by 10\n");
    addLine(0, 0, 10 * uor, 0);
    keyIn("view 1 top");
    keyIn("view all fit");
    expectArea(0, {-0.2 * uor, -0.3 * uor, 0}, {10.4 * uor, 0.6 * uor, 0});
}

TEST_F(Views, LevelsAndSwitchesAreTurnedByKeyIns) {
    LevelId road = 0;
    addLevel(L"Road edge", road);
    keyIn("view 2 open");
    keyIn("view all level Road edge off");
    keyIn("view 2 show fills off");
    keyIn("view 2 show overrides on");
    keyIn("view 2 window 0,0 8,6");
    EXPECT_EQ(told("view 2"), "view 2: open, top, from 0,0, 8 by 6, fills off, overrides on; levels off: Road edge\n");
    EXPECT_FALSE(mdlView_isLevelOn(0, nullptr, road));
    keyIn("view 1 level Road edge on");
    EXPECT_TRUE(mdlView_isLevelOn(0, nullptr, road));
    keyIn("view 1 levels off");
    EXPECT_FALSE(mdlView_isLevelOn(0, nullptr, 1));
    keyIn("view 1 levels on");
    EXPECT_TRUE(mdlView_isLevelOn(0, nullptr, 1));
    keyIn("view 2 close");
    EXPECT_FALSE(mdlView_isOpen(1));
}

TEST_F(Views, WrongKeyInsSayWhatWasWantedAndChangeNothing) {
    const std::pair<const char*, const char*> cases[] = {
        {"view", "\"\" isn't a view. Give a number from 1 to 8"},
        {"view 9 fit", "\"9\" isn't a view"},
        {"view 1 zooom 2", "can't do \"zooom\". Give one of: fit, zoom"},
        {"view 1 zoom", "\"\" isn't a factor"},
        {"view 1 zoom 0", "above 0"},
        {"view 1 zoom 1e300", "too small"},
        {"view 1 zoom 2 1;2", "\"1;2\" isn't a point. Give x,y"},
        {"view 1 window 1,2 3,4,5,6", "\"3,4,5,6\" isn't a point"},
        {"view 1 window 1,2 3,", "\"3,\" isn't a point"},
        {"view 1 window 1,2 1,2", "too small"},
        {"view 1 rotate a", "\"a\" isn't an angle"},
        {"view 1 fit now", "\"now\" is more"},
        {"view 1 level Raod off", "no level \"Raod\". Give one of: Default."},
        {"view 1 level Default", "isn't \"on\" or \"off\""},
        {"view 1 show text off", "no switch \"text\". Give one of: constructions"},
        {"view 1 top 3", "\"3\" is more"},
    };
    const std::string before = told("view 1");
    for (const auto& [text, why] : cases) {
        const std::string brief = complaint(text);
        EXPECT_NE(brief.find(why), std::string::npos) << text << ": " << brief;
    }
    EXPECT_EQ(told("view 1"), before);
    EXPECT_EQ(session().exitStatus(), 1) << "a script that isn't followed has failed";
}

}  // namespace
