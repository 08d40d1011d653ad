// References merged into a drawing: what comes, how it looks, and that nothing else changes.
#include "mclib/design/merge.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstring>
#include <numbers>

#include "mchost/mdl/compound.h"
#include "mchost/mdl/level.h"
#include "mchost/mdl/reference.h"
#include "mchost/mdl/region.h"
#include "mchost/mdl/tag.h"
#include "mchost/mdl/undo.h"
#include "mchost/mdl/view.h"
#include "mclib/design/merging.h"
#include "tests/support/child.h"
#include "tests/support/dots.h"
#include "tests/support/library_fixture.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr int32_t view = 0;

class Merge : public LibraryTest {
  protected:
    // Makes a drawing, which stays open.
    void begin(const char* name) {
        ASSERT_EQ(mdlSystem_createDesignFile(path(name).c_str(), 0), MDL_SUCCESS);
        ASSERT_EQ(mdlSystem_newDesignFile(path(name).c_str(), 0), MDL_SUCCESS);
    }
    // Opens the drawing that things are merged into; a UOR of it is a dot of its view.
    void open(const char* name = "test.mcd") {
        ASSERT_EQ(mdlSystem_newDesignFile(path(name).c_str(), 0), MDL_SUCCESS);
        const Point3d origin = {0, 0, 0}, extent = {800, 600, 0};
        ASSERT_EQ(mdlView_setArea(view, &origin, &extent), MDL_SUCCESS);
    }
    ModelRef* attach(const char* name, const MdlRefPlacement* placement = nullptr) {
        ModelRef* place = nullptr;
        EXPECT_EQ(mdlRefFile_attachAt(&place, nullptr, path(name).c_str(), placement), MDL_SUCCESS);
        return place;
    }
    static MdlRefPlacement placed(double x, double y, double angle, double scale) {
        MdlRefPlacement placement = {{x, y, 0}, {}, scale};
        mdlRMatrix_fromAngle(&placement.rotation, angle);
        return placement;
    }
    static LevelId level(const wchar_t* name) {
        LevelId id = 0;
        if (mdlLevel_getIdFromName(&id, nullptr, 0, name) != MDL_SUCCESS) mdlLevel_create(&id, nullptr, name);
        return id;
    }

    // Adds the element that was made.
    FilePos put(uint32_t color = 0, LevelId on = 1) {
        mdlElement_setSymbology(&e, &color, nullptr, nullptr);
        mdlElement_setProperties(&e, &on, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
        const FilePos position = mdlElement_add(&e);
        EXPECT_NE(position, 0u);
        return position;
    }
    MSElementBuffer* line(double x1, double y1, double x2, double y2) {
        const Point3d ends[] = {{x1, y1, 0}, {x2, y2, 0}};
        EXPECT_EQ(mdlLine_create(&e, nullptr, ends), MDL_SUCCESS);
        return &e;
    }
    MSElementBuffer* shape(double x, double y, double size, int filled) {
        const Point3d corners[] = {{x, y, 0}, {x + size, y, 0}, {x + size, y + size, 0}, {x, y + size, 0}};
        EXPECT_EQ(mdlShape_create(&e, nullptr, corners, 4, filled), MDL_SUCCESS);
        return &e;
    }
    MSElementBuffer* tag(double x, double y, int32_t type = MDL_TAG_DOUBLE) {
        MdlTagValue value = {};
        value.type = type;
        value.doubleValue = 2;
        const Point3d origin = {x, y, 0};
        const TextSize size = {1, 12, 12, 1};
        EXPECT_EQ(mdlTag_create(&e, nullptr, &value, &origin, nullptr, &size, nullptr, 1), MDL_SUCCESS);
        return &e;
    }

    // What the drawing holds: type, colour and level of each element, texts with their words.
    std::vector<std::string> held() {
        std::vector<std::string> all;
        for (const FilePos position : mdl::Scan(mdlModelRef_getActive())) {
            EXPECT_NE(mdlElement_read(&e, nullptr, position), 0u);
            wchar_t name[64] = L"";
            char text[256] = "";
            mdlLevel_getName(name, 64, nullptr, e.head.level);
            mdlText_extractString(text, &e);
            all.push_back(std::to_string(e.head.type) + " colour " + std::to_string(e.head.color) + " " +
                          std::string(name, name + std::wcslen(name)) + (*text ? " " : "") + text);
        }
        return all;
    }
    static int references() {
        ModelRefIterator* iterator = nullptr;
        int count = 0;
        mdlModelRefIterator_create(&iterator, nullptr, MDL_ITERATE_REFERENCES, -1);
        for (auto* place = mdlModelRefIterator_getFirst(iterator); place; place = mdlModelRefIterator_getNext(iterator))
            ++count;
        mdlModelRefIterator_free(&iterator);
        return count;
    }
    Dots picture(const char* name) {
        EXPECT_EQ(mdlPicture_writeView(path(name).c_str(), view, 800, 600), MDL_SUCCESS);
        return Dots(path(name));
    }

    MSElementBuffer e{};
};

// ---- the picture of before ----

int darkness(const Dots& dots, int x, int y) {
    const uint32_t color = dots.at(x, y);
    return static_cast<int>((color & 0xFF) + (color >> 8 & 0xFF) + (color >> 16 & 0xFF));
}

// How many dots of one picture have none like them in the other, a dot around.
int strangers(const Dots& a, const Dots& b) {
    constexpr int slack = 150;  // of 765
    int count = 0;
    for (int y = 1; y + 1 < a.height(); ++y)
        for (int x = 1; x + 1 < a.width(); ++x) {
            int low = 765, high = 0;
            for (int dy = -1; dy <= 1; ++dy)
                for (int dx = -1; dx <= 1; ++dx) {
                    low = std::min(low, darkness(b, x + dx, y + dy));
                    high = std::max(high, darkness(b, x + dx, y + dy));
                }
            const int own = darkness(a, x, y);
            count += own < low - slack || own > high + slack;
        }
    return count;
}

TEST_F(Merge, NestedTurnedAndScaledGivesThePictureOfBefore) {
    begin("detail.mcd");
    const double dashes[] = {0.0005, 0.0003};
    mdlLineStyle_define(nullptr, nullptr, "hedge", dashes, 2);
    line(0, 0, 200, 0);
    mdlElement_setLineStyle(&e, "hedge", nullptr);
    e.head.weight = 3;
    put(1, level(L"Pipes"));
    shape(20, 20, 60, 1);
    put(2);
    shape(100, 20, 60, 0);
    put(3);
    const Point3d centre = {50, 140, 0};
    mdlArc_create(&e, nullptr, &centre, 40, 20, nullptr, 0.5, 4);
    put(4);
    mdlEllipse_create(&e, nullptr, &centre, 10, 10, nullptr, 1);
    put(5);
    put(6, (tag(110, 130), 1));
    const Point3d ends[] = {{100, 100, 0}, {180, 100, 0}}, through = {0, 115, 0};
    const TextSize small = {1, 8, 8, 1};
    ASSERT_EQ(mdlDimension_create(&e, nullptr, ends, &through, L"80", &small), MDL_SUCCESS);
    put(7);
    const double offsets[] = {-4, 4};
    ASSERT_EQ(mdlMultiline_create(&e, nullptr, ends, 2, offsets, 2), MDL_SUCCESS);
    put(8);
    const Point3d origin = {25, 90, 0};
    mdlCell_create(&e, L"PUMP", &origin, 0);
    mdl::Descr cell;
    ASSERT_EQ(mdlElmdscr_new(cell.out(), nullptr, &e), MDL_SUCCESS);
    ASSERT_EQ(mdlElmdscr_appendElement(cell.get(), line(25, 90, 40, 105)), MDL_SUCCESS);
    ASSERT_NE(mdlElmdscr_add(cell.get()), 0u);

    begin("middle.mcd");
    const MdlRefPlacement upright = placed(20, 30, 0, 1), turned = placed(420, 60, 0.9, 0.8);
    attach("detail.mcd", &upright);
    attach("detail.mcd", &turned);
    put(9, (line(0, 0, 400, 300), 1));

    begin("test.mcd");
    open();
    const MdlRefPlacement whole = placed(150, 40, 0.25, 1.3);
    ModelRef* const middle = attach("middle.mcd", &whole);
    const Point3d fence[] = {{-100, -100, 0}, {700, -100, 0}, {650, 420, 0},
                             {340, 230, 0},   {330, 700, 0},  {-100, 700, 0}};
    ASSERT_EQ(mdlRefFile_setClip(fence, 6, middle), MDL_SUCCESS);
    const Dots before = picture("before.png");
    ASSERT_LT(strangers(before, before), 1);
    mclibMerge_refFiles(view + 1);
    EXPECT_EQ(references(), 0);
    const Dots after = picture("after.png");
    EXPECT_EQ(strangers(before, after), 0);
    EXPECT_EQ(strangers(after, before), 0);
    EXPECT_EQ(front().consoleText, "");
}

// ---- what comes ----

TEST_F(Merge, WhatTheViewShowsComesOnItsLevelInItsLook) {
    begin("other.mcd");
    const LevelId pipes = level(L"Pipes"), pumps = level(L"Pumps"), off = level(L"Off");
    mdlLevel_setSymbology(nullptr, pipes, 5, 0, 0);
    line(0, 0, 10, 0);
    put(1, pipes);
    put(2, off);
    put(3, pumps);
    const Point3d origin = {0, 0, 0};
    for (const LevelId second : {pumps, off}) {
        mdlCell_create(&e, L"PUMP", &origin, 0);
        e.head.level = second == off ? 1 : off;  // whichever it is, its parts count
        mdl::Descr cell;
        ASSERT_EQ(mdlElmdscr_new(cell.out(), nullptr, &e), MDL_SUCCESS);
        for (const LevelId id : {off, second}) {
            line(0, 0, 1, 1)->head.level = id;
            ASSERT_EQ(mdlElmdscr_appendElement(cell.get(), &e), MDL_SUCCESS);
        }
        ASSERT_NE(mdlElmdscr_add(cell.get()), 0u);
    }
    mdlLevelTable_rewrite(nullptr);
    for (const int symbology : {0, 1}) {
        const char* name = symbology ? "with.mcd" : "without.mcd";
        begin(name);
        level(L"Mine");
        open(name);
        ModelRef* const other = attach("other.mcd");
        ASSERT_EQ(mdlView_setLevelOn(view, other, off, 0), MDL_SUCCESS);
        ASSERT_EQ(mdlView_setDisplayControl(view, MDL_VIEW_LEVEL_SYMBOLOGY, symbology), MDL_SUCCESS);
        mclibMerge_refFiles(view + 1);
        EXPECT_THAT(held(), ElementsAre(symbology ? "3 colour 5 Pipes" : "3 colour 1 Pipes", "3 colour 3 Pumps",
                                        testing::StartsWith("2 ")));
        mdl::Descr cell;
        EXPECT_EQ(mdlElmdscr_read(cell.out(), 3, nullptr), 2u) << "its part on the level that is off is left out";
        EXPECT_EQ(references(), 0);
    }
}

TEST_F(Merge, LineStylesTakeTheScaleOfTheAttachment) {
    begin("other.mcd");
    const double dashes[] = {1, 1};
    mdlLineStyle_define(nullptr, nullptr, "hedge", dashes, 2);
    line(0, 0, 10, 0);
    put();
    ASSERT_EQ(mdlElement_setLineStyle(&e, "hedge", nullptr), MDL_SUCCESS);
    put();
    const LineStyleParams all = {LINE_STYLE_SCALE | LINE_STYLE_DASH_SCALE | LINE_STYLE_GAP_SCALE, 2, 0, 0, 3, 4};
    ASSERT_EQ(mdlElement_setLineStyle(&e, "hedge", &all), MDL_SUCCESS);
    put();
    begin("test.mcd");
    const MdlRefPlacement fivefold = placed(0, 0, 0, 5);
    attach("other.mcd", &fivefold);
    mclibMerge_refFiles(view + 1);
    LineStyleParams params;
    EXPECT_NE(mdlElement_read(&e, nullptr, 1), 0u);
    EXPECT_EQ(mdlElement_getLineStyleParams(&params, &e), MDL_ERROR);
    for (const auto& [position, scales] : {std::pair(2u, std::tuple(5, 5, 5)), std::pair(3u, std::tuple(10, 15, 20))}) {
        EXPECT_NE(mdlElement_read(&e, nullptr, position), 0u);
        ASSERT_EQ(mdlElement_getLineStyleParams(&params, &e), MDL_SUCCESS);
        EXPECT_EQ(std::tuple(params.scale, params.dashScale, params.gapScale), scales);
        EXPECT_EQ(params.modifiers, all.modifiers);
    }
}

TEST_F(Merge, CutElementsKeepFillOrderAndKind) {
    begin("other.mcd");
    const uint32_t fill = 8;
    shape(50, 50, 100, 1);
    ASSERT_EQ(mdlElement_setFillColor(&e, &fill), MDL_SUCCESS);
    put(2, level(L"Areas"));
    const Point3d bends[] = {{0, 50, 0}, {150, 50, 0}, {150, 80, 0}, {0, 80, 0}}, centre = {100, 50, 0};
    mdlLineString_create(&e, nullptr, bends, 4);
    put(3);
    mdlArc_create(&e, nullptr, &centre, 20, 20, nullptr, 0, 6);
    put(4);
    put(5, (tag(90, 90), 1));
    put(6, (tag(110, 90), 1));
    shape(150, 150, 10, 1);
    put(7);
    begin("test.mcd");
    ModelRef* const other = attach("other.mcd");
    shape(-100, -100, 200, 0);  // the clip: what lies below 100 on both axes
    const FilePos clip = put(1);
    ASSERT_EQ(mdlRefFile_setClipElement(clip, other), MDL_SUCCESS);
    mclibMerge_refFiles(view + 1);
    EXPECT_EQ(front().consoleText, "");
    EXPECT_THAT(held(), ElementsAre("6 colour 1 Default", "6 colour 2 Areas", "4 colour 3 Default",
                                    "4 colour 3 Default", "16 colour 4 Default", "17 colour 5 Default 2.000"));
    uint32_t found = 0;
    EXPECT_NE(mdlElement_read(&e, nullptr, 2), 0u);
    EXPECT_EQ(mdlElement_getFillColor(&found, &e), MDL_SUCCESS);
    EXPECT_EQ(found, fill);
    Point3d ends[2];
    int32_t count = 0;
    EXPECT_NE(mdlElement_read(&e, nullptr, 4), 0u);
    ASSERT_EQ(mdlLinear_extract(ends, &count, &e, 2), MDL_SUCCESS);
    EXPECT_EQ(std::tuple(std::lround(ends[0].x), std::lround(ends[1].x), std::lround(ends[0].y)),
              std::tuple(100, 0, 80))
        << "the second piece, in the direction of the line";
}

TEST_F(Merge, FilledShapesAreCutAlongTheSameClipInATurnedView) {
    begin("other.mcd");
    put(2, (shape(50, 50, 100, 1), 1));
    begin("test.mcd");
    open();
    RotMatrix turned;
    mdlRMatrix_fromAngle(&turned, 0.6);
    ASSERT_EQ(mdlView_setRotation(view, &turned), MDL_SUCCESS);
    const MdlRefPlacement aside = placed(1000, 500, 0, 2);
    const Point3d clip[] = {{1000, 500, 0}, {1200, 500, 0}, {1200, 700, 0}, {1000, 700, 0}};
    ASSERT_EQ(mdlRefFile_setClip(clip, 4, attach("other.mcd", &aside)), MDL_SUCCESS);
    mclibMerge_refFiles(view + 1);
    EXPECT_THAT(held(), ElementsAre("6 colour 2 Default"));
    mdl::Descr shape;
    Point3d low, high;
    ASSERT_NE(mdlElmdscr_read(shape.out(), 1, nullptr), 0u);
    ASSERT_EQ(mdlElmdscr_computeRange(&low, &high, shape.get(), nullptr), MDL_SUCCESS);
    EXPECT_NEAR(low.x, 1100, 1e-6);
    EXPECT_NEAR(low.y, 600, 1e-6);
    EXPECT_NEAR(high.x, 1200, 1e-6);
    EXPECT_NEAR(high.y, 700, 1e-6);
}

// ---- tags ----

TEST_F(Merge, ATagOfTheDrawingGivesWayToItsText) {
    begin("test.mcd");
    const FilePos position = put(4, (tag(10, 20), level(L"Tags")));
    const MSElementBuffer before = e;
    const Transform moved = {{{1, 0, 0, 100}, {0, 1, 0, 0}, {0, 0, 1, 0}}};
    EXPECT_EQ(mclibMerge_replaceTagWithText(&before, position, nullptr, 1, &moved, nullptr, 1), 0);
    EXPECT_THAT(held(), ElementsAre("17 colour 4 Tags 2.000"));
    Point3d origin;
    EXPECT_EQ(mdlText_extractShape(nullptr, &origin, &e, 0, 0), MDL_SUCCESS);
    EXPECT_EQ(std::tuple(origin.x, origin.y), std::tuple(110, 20));
    EXPECT_THAT(front().seen, testing::Contains("mode 0"));
    const FilePos other = put(4, (tag(10, 20, 77), 1));
    const MSElementBuffer unknown = e;
    EXPECT_EQ(mclibMerge_replaceTagWithText(&unknown, other, nullptr, 0, nullptr, nullptr, 0), 0x8000);
    EXPECT_THAT(held(), ElementsAre("17 colour 4 Tags 2.000", "37 colour 4 Default"));
}

TEST_F(Merge, ATagOfAReferenceStaysThere) {
    begin("other.mcd");
    const FilePos position = put(4, (tag(10, 20), 1));
    const MSElementBuffer before = e;
    begin("test.mcd");
    ModelRef* const other = attach("other.mcd");
    const Point3d left[] = {{-5, -5, 0}, {5, -5, 0}, {5, 50, 0}, {-5, 50, 0}};
    ASSERT_EQ(mdlRefFile_setClip(left, 4, other), MDL_SUCCESS);
    ClipDescr* clip = nullptr;
    ASSERT_EQ(mdlClip_getRefBoundary(&clip, other, view), MDL_SUCCESS);
    EXPECT_EQ(mclibMerge_replaceTagWithText(&before, position, other, 0, nullptr, clip, 1), 0);
    EXPECT_THAT(held(), IsEmpty()) << "it lies outside";
    EXPECT_EQ(mclibMerge_replaceTagWithText(&before, position, other, 0, nullptr, clip, 0), 0);
    EXPECT_THAT(held(), ElementsAre("17 colour 4 Default 2.000"));
    mdlClip_free(&clip);
    EXPECT_NE(mdlElement_read(&e, other, position), 0u);
}

// ---- what goes wrong ----

TEST_F(Merge, OneUndoTakesAllOfItBack) {
    begin("other.mcd");
    put(1, (line(0, 0, 10, 0), 1));
    put(2, (tag(5, 5), 1));
    begin("test.mcd");
    put(3, (line(0, 0, 20, 0), 1));
    attach("other.mcd");
    attach("other.mcd");
    const auto before = held();
    mclibMerge_refFiles(view + 1);
    EXPECT_EQ(held().size(), 5u);
    EXPECT_EQ(mdlUndo_undo(), MDL_SUCCESS);
    EXPECT_EQ(held(), before);
    EXPECT_EQ(references(), 2);
}

TEST_F(Merge, WhatIsHiddenIsDetachedAndWhatIsMissingTold) {
    begin("other.mcd");
    put(1, (line(0, 0, 10, 0), 1));
    begin("gone.mcd");
    begin("test.mcd");
    const int32_t off = 0, on = 1;
    ASSERT_EQ(mdlRefFile_setParameters(&off, MDL_REFERENCE_SHOWN, attach("other.mcd")), MDL_SUCCESS);
    ASSERT_EQ(mdlRefFile_setParameters(&on, MDL_REFERENCE_HIDDEN, attach("other.mcd")), MDL_SUCCESS);
    attach("gone.mcd");
    begin("else.mcd");
    std::filesystem::remove(path("gone.mcd"));
    open();
    mclibMerge_refFiles(view + 1);
    EXPECT_THAT(held(), IsEmpty());
    EXPECT_THAT(front().consoleText, HasSubstr("gone.mcd: the file isn't found, so nothing of it is merged.\n"));
    EXPECT_EQ(references(), 0);
}

TEST_F(Merge, DamagedDimensionsAndMultilinesAreToldAndLeftOut) {
    begin("other.mcd");
    const Point3d run[] = {{0, 0, 0}, {10, 0, 0}};
    const double offset = 1;
    const uint32_t parts = 99;  // more than there are
    for (const uint16_t type : {MDL_DIMENSION, MDL_MULTILINE}) {
        ASSERT_EQ(mdlMultiline_create(&e, nullptr, run, 2, &offset, 1), MDL_SUCCESS);
        std::memcpy(e.bytes + sizeof e.head, &parts, sizeof parts);
        e.head.type = type;
        put();
    }
    put(1, (line(0, 0, 10, 0), 1));
    begin("test.mcd");
    attach("other.mcd");
    mclibMerge_refFiles(view + 1);
    EXPECT_EQ(front().consoleText,
              "\t==> WARNING: Could not get descr from compound, DIMENSION element skipped!\n"
              "\t==> WARNING: Could not get descr from compound, MULTILINE element skipped!\n");
    EXPECT_EQ(mdlSystem_failureNoted(), 1);
    EXPECT_THAT(held(), ElementsAre("3 colour 1 Default"));
}

TEST_F(Merge, WithoutItsClipElementNothingOfAReferenceComes) {
    begin("other.mcd");
    put(1, (line(0, 0, 10, 0), 1));
    begin("test.mcd");
    ModelRef* const other = attach("other.mcd");
    const FilePos clip = put(1, (shape(-100, -100, 200, 0), 1));
    ASSERT_EQ(mdlRefFile_setClipElement(clip, other), MDL_SUCCESS);
    ASSERT_EQ(mdlElement_undoableDelete(nullptr, clip, 0), MDL_SUCCESS);
    mclibMerge_refFiles(view + 1);
    EXPECT_THAT(held(), IsEmpty());
    EXPECT_THAT(front().consoleText, HasSubstr("boundary can't be told"));
}

TEST_F(Merge, NothingIsDoneForAnotherViewOrADrawingThatIsOnlyRead) {
    mclibMerge_refFiles(1);
    begin("other.mcd");
    put(1, (line(0, 0, 10, 0), 1));
    begin("test.mcd");
    attach("other.mcd");
    mclibMerge_refFiles(0);
    mclibMerge_refFiles(9);
    ASSERT_EQ(mdlSystem_newDesignFile(path("test.mcd").c_str(), 1), MDL_SUCCESS);
    mclibMerge_refFiles(1);
    EXPECT_EQ(references(), 1);
    EXPECT_THAT(held(), IsEmpty());
    EXPECT_EQ(front().consoleText,
              "ERROR - References can't be merged: no design file is open\n"
              "ERROR - References can't be merged: the view isn't one from 1 to 8\n"
              "ERROR - References can't be merged: the view isn't one from 1 to 8\n"
              "ERROR - References can't be merged: the drawing is open to be read only\n");
    mdlSystem_closeDesignFile();
}

TEST_F(Merge, OnAFullDiskTheDrawingStaysAsItWas) {
    begin("other.mcd");
    for (int i = 0; i < 5000; ++i) put(1, (line(0, i, 10, i), 1));
    begin("test.mcd");
    put(3, (line(0, 0, 20, 0), 1));
    attach("other.mcd");
    ASSERT_EQ(mdlSystem_saveDesignFile(), MDL_SUCCESS);
    EXPECT_EQ(inChild([&] {
                  limitFileSize(200'000);
                  mclibMerge_refFiles(1);
                  const bool merged = references() == 0 && held().size() == 5001;
                  return merged && mdlSystem_saveDesignFile() == MDL_ERROR ? 0 : 1;
              }),
              0);
    open();
    EXPECT_EQ(references(), 1);
    EXPECT_EQ(held().size(), 1u);
}

}  // namespace
