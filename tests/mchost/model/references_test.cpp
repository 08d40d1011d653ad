// What is attached to models: kept in files, shown in places, taken back.
#include "mchost/mdl/reference.h"

#include <sys/stat.h>

#include "mchost/mdl/files.h"
#include "mchost/mdl/level.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/reference_info.h"
#include "mchost/mdl/transform.h"
#include "mchost/mdl/undo.h"
#include "mchost/mdl/view.h"
#include "tests/mchost/model/model_fixture.h"

namespace {

constexpr Transform shift(double x, double factor = 1) {
    return {{{factor, 0, 0, x}, {0, factor, 0, 0}, {0, 0, factor, 0}}};
}

std::vector<ModelRef*> placesIn(ModelRef* root, int32_t depth = 0) {
    std::vector<ModelRef*> places;
    ModelRefIterator* iterator = nullptr;
    EXPECT_EQ(mdlModelRefIterator_create(&iterator, root, MDL_ITERATE_REFERENCES, depth), MDL_SUCCESS);
    for (ModelRef* place = mdlModelRefIterator_getFirst(iterator); place; place = mdlModelRefIterator_getNext(iterator))
        places.push_back(place);
    mdlModelRefIterator_free(&iterator);
    return places;
}

int32_t parameter(ModelRef* place, int32_t which) {
    int32_t value = -1;
    mdlRefFile_getParameters(&value, which, place);
    return value;
}

double scaleOf(ModelRef* place) {
    double scale = -1;
    mdlRefFile_getParameters(&scale, MDL_REFERENCE_SCALE, place);
    return scale;
}

// Number, x of the clip's first corner and x in the drawing where its first line begins, of each place, indented by how
// deep it lies.
std::string outline(ModelRef* root = nullptr) {
    std::string text;
    for (ModelRef* place : placesIn(root)) {
        for (ModelRef* above = mdlModelRef_getParent(mdlModelRef_getParent(place)); above;
             above = mdlModelRef_getParent(above))
            text += " ";
        Point3d clip[8] = {}, low = {}, high = {};
        int32_t corners = 0;
        EXPECT_EQ(mdlRefFile_getClip(clip, &corners, place), MDL_SUCCESS);
        mdl::Descr ed;
        mdlElmdscr_readToMaster(ed.out(), 1, place);
        if (ed.get()) mdlElmdscr_computeRange(&low, &high, ed.get(), nullptr);
        text += std::to_string(mdlRefFile_getNumber(place)) + ":" + std::to_string(int(clip[0].x)) + ":" +
                std::to_string(int(low.x)) + "\n";
    }
    return text;
}

class References : public DesignFileTest {
  protected:
    References() {
        create();
        for (const uint32_t number : {1u, 2u, 3u}) {
            const std::string name = path("part" + std::to_string(number) + ".mcd");
            EXPECT_EQ(mdlSystem_createDesignFile(name.c_str(), 0), MDL_SUCCESS);
            EXPECT_EQ(mdlSystem_newDesignFile(name.c_str(), 0), MDL_SUCCESS);
            EXPECT_EQ(mdlElement_add(numbered(number)), 1u);
        }
        open();
        EXPECT_EQ(mdlElement_add(numbered(7)), 1u);
    }
    std::string part(int number) const { return path("part" + std::to_string(number) + ".mcd"); }
    ModelRef* attach(const std::string& name, const Transform& toParent, std::vector<Point3d> clip = {},
                     ModelRef* parent = nullptr) {
        ModelRef* place = nullptr;
        EXPECT_EQ(
            mdlRefFile_attach(&place, parent, name.c_str(), &toParent, clip.data(), static_cast<int32_t>(clip.size())),
            MDL_SUCCESS);
        return place;
    }
    // Part 2 twice, each time with another clip, and part 1 in part 2.
    void attachNested() {
        ModelRef* inner = nullptr;
        ASSERT_EQ(mdlWorkDgn_openFileToWrite(&inner, part(2).c_str()), MDL_SUCCESS);
        attach(part(1), shift(100), {}, inner);
        ASSERT_EQ(mdlWorkDgn_closeFile(inner), MDL_SUCCESS);
        attach(part(2), shift(1000), {{10, 0, 0}, {20, 0, 0}, {10, 10, 0}});
        attach(part(2), shift(2000, 2), {{30, 0, 0}, {40, 0, 0}, {30, 10, 0}, {25, 5, 0}});
    }
};

TEST_F(References, OneFileIsShownInManyPlacesNestedAndEachClipped) {
    attachNested();
    const std::string nested = "1:10:1002\n 1:0:1101\n2:30:2004\n 1:0:2202\n";
    EXPECT_EQ(outline(), nested);
    const std::vector<ModelRef*> places = placesIn(nullptr);
    EXPECT_EQ(placesIn(nullptr, 1), (std::vector<ModelRef*>{places[0], places[2]}));
    for (ModelRef* place : places) {
        EXPECT_EQ(mdlModelRef_isReference(place), 1);
        EXPECT_EQ(parameter(place, MDL_REFERENCE_SHOWN), 1);
        EXPECT_EQ(parameter(place, MDL_REFERENCE_FOUND), 1);
        EXPECT_EQ(parameter(place, MDL_REFERENCE_HIDDEN), 0);
        EXPECT_EQ(allPositions(place), (std::vector<FilePos>{1}));
    }
    EXPECT_EQ(scaleOf(places[2]), 2);
    EXPECT_EQ(mdlModelRef_isReference(mdlModelRef_getActive()), 0);
    const int32_t off = 0, on = 1;
    EXPECT_EQ(mdlRefFile_setParameters(&off, MDL_REFERENCE_SHOWN, places[2]), MDL_SUCCESS);
    EXPECT_EQ(mdlRefFile_setParameters(&on, MDL_REFERENCE_HIDDEN, places[0]), MDL_SUCCESS);
    EXPECT_EQ(mdlRefFile_setParameters(&on, MDL_REFERENCE_FOUND, places[0]), MDL_ERROR);
    EXPECT_EQ(mdlRefFile_setParameters(&on, MDL_REFERENCE_HIDDEN, places[1]), MDL_ERROR) << "of an attached file";
    onlyMessage("part1.mcd");
    reopen();
    EXPECT_EQ(outline(), nested);
    const std::vector<ModelRef*> again = placesIn(nullptr);
    EXPECT_EQ(parameter(again[2], MDL_REFERENCE_SHOWN), 0);
    EXPECT_EQ(parameter(again[0], MDL_REFERENCE_HIDDEN), 1);
    char name[256];
    EXPECT_EQ(mdlRefFile_getFileName(name, sizeof name, again[1]), MDL_SUCCESS);
    EXPECT_EQ(name, part(1));
}

TEST_F(References, AttachingAndDetachingAreTakenBack) {
    mdlUndo_mark("attach");
    attachNested();
    const std::string nested = outline();
    ModelRef* const first = placesIn(nullptr)[0];
    mdlUndo_mark("detach");
    mdlElement_rewrite(numbered(8), 1);
    EXPECT_EQ(mdlRefFile_detach(3), MDL_ERROR);
    EXPECT_EQ(mdlRefFile_detach(1), MDL_SUCCESS);
    EXPECT_EQ(mdlModelRef_isReference(first), 0) << "the place is gone";
    EXPECT_EQ(outline(), "2:30:2004\n 1:0:2202\n");
    EXPECT_EQ(mdlRefFile_detachModel(placesIn(nullptr)[0]), MDL_SUCCESS);
    EXPECT_EQ(outline(), "");
    EXPECT_EQ(mdlUndo_undo(), MDL_SUCCESS);
    EXPECT_EQ(outline(), nested);
    EXPECT_EQ(numberOf(1), 7u);
    EXPECT_EQ(mdlUndo_undo(), MDL_SUCCESS);
    EXPECT_EQ(outline(), "");
    for (int i = 0; i < 2; ++i) EXPECT_EQ(mdlUndo_redo(), MDL_SUCCESS);
    EXPECT_EQ(outline(), "");
    EXPECT_EQ(mdlUndo_undo(), MDL_SUCCESS);
    EXPECT_EQ(mdlRefFile_detach(-1), MDL_SUCCESS);
    EXPECT_EQ(outline(), "");
    reopen();
    EXPECT_EQ(outline(), "");
}

TEST_F(References, ModelWithinItselfIsShownOnce) {
    attach(file, shift(500));
    EXPECT_EQ(outline(), "1:0:507\n");
    mdlElement_rewrite(numbered(9), 1);
    EXPECT_EQ(outline(), "1:0:509\n") << "as it is now";
}

TEST_F(References, FileThatIsNotFoundIsAPlaceAndIsLookedForBesideTheOther) {
    std::filesystem::create_directory(path("parts"));
    const std::string there = path("parts/part.mcd");
    std::filesystem::copy_file(part(3), there);
    attach(there, shift(10));
    reopen();
    EXPECT_EQ(outline(), "1:0:13\n");
    close();
    std::filesystem::rename(there, path("part.mcd"));
    open();
    EXPECT_EQ(outline(), "1:0:13\n") << "beside the file";
    close();
    std::filesystem::remove(path("part.mcd"));
    open();
    EXPECT_EQ(outline(), "1:0:0\n");
    onlyMessage("part.mcd");
    ModelRef* const lost = placesIn(nullptr)[0];
    EXPECT_EQ(parameter(lost, MDL_REFERENCE_FOUND), 0);
    EXPECT_EQ(mdlModelRef_isReadOnly(lost), 1);
    EXPECT_EQ(allPositions(lost), std::vector<FilePos>{});
}

// A file that is shown stays when it is closed as what it also was.
TEST_F(References, ClosedFileGoesOnBeingShown) {
    ModelRef* work = nullptr;
    ASSERT_EQ(mdlWorkDgn_openFileToWrite(&work, part(1).c_str()), MDL_SUCCESS);
    ModelRef* const place = attach(part(1), shift(0));
    mdl::Descr ed;
    ASSERT_EQ(mdlElmdscr_new(ed.out(), work, numbered(5)), MDL_SUCCESS);
    EXPECT_EQ(mdlElmdscr_add(ed.get()), 2u);
    EXPECT_EQ(numberOf(2, place), 5u) << "as it is now";
    EXPECT_EQ(mdlWorkDgn_closeFile(work), MDL_SUCCESS);
    EXPECT_EQ(placesIn(nullptr), std::vector<ModelRef*>{place});
    EXPECT_EQ(numberOf(2, place), 5u);
    mdl::Descr shown;
    EXPECT_EQ(mdlElmdscr_read(shown.out(), 2, place), 1u);
    EXPECT_EQ(mdlElmdscr_rewrite(shown.get(), 2), 0u);
    onlyMessage("where it is attached");
    EXPECT_EQ(mdlWorkDgn_closeFile(place), MDL_ERROR);
}

// Part 1 begins at 1,0. Scaled and turned about its origin it goes to the offset.
TEST_F(References, LiesWhereOffsetTurnAndScalePutIt) {
    MdlRefPlacement placement = {{100, 200, 0}, {}, 3};
    mdlRMatrix_fromAngle(&placement.rotation, *fc_piover2P);
    ModelRef* place = nullptr;
    ASSERT_EQ(mdlRefFile_attachAt(&place, nullptr, part(1).c_str(), &placement), MDL_SUCCESS);
    const auto begin = [&] {
        mdl::Descr ed;
        Point3d points[2] = {};
        EXPECT_EQ(mdlElmdscr_readToMaster(ed.out(), 1, place), 1u);
        if (ed) mdlLinear_extract(points, nullptr, ed.get()->element, 2);
        return points[0];
    };
    EXPECT_NEAR(begin().x, 100, 1e-9);
    EXPECT_NEAR(begin().y, 203, 1e-9);
    MdlRefPlacement again = {};
    ASSERT_EQ(mdlRefFile_getPlacement(&again, place), MDL_SUCCESS);
    EXPECT_EQ(again.offset.y, 200);
    EXPECT_DOUBLE_EQ(again.rotation.form[1][0], 1);
    EXPECT_DOUBLE_EQ(again.scale, 3);
    placement.offset = {};
    for (const double scale : {0.0, -1.0, std::nan("")}) {
        placement.scale = scale;
        EXPECT_EQ(mdlRefFile_setPlacement(&placement, place), MDL_ERROR);
        EXPECT_NE(onlyMessage("part1.mcd").find("scale"), std::string::npos);
        EXPECT_EQ(mdlRefFile_attachAt(nullptr, nullptr, part(1).c_str(), &placement), MDL_ERROR);
        onlyMessage("scale");
    }
    placement = {{-5, 0, 0}, {{{1, 1, 0}, {0, 1, 0}, {0, 0, 1}}}, 1};
    EXPECT_EQ(mdlRefFile_setPlacement(&placement, place), MDL_ERROR);
    onlyMessage("rotation");
    mdlRMatrix_getIdentity(&placement.rotation);
    mdlUndo_mark("move");
    ASSERT_EQ(mdlRefFile_setPlacement(&placement, place), MDL_SUCCESS);
    EXPECT_DOUBLE_EQ(begin().x, -4);
    EXPECT_EQ(mdlUndo_undo(), MDL_SUCCESS);
    EXPECT_NEAR(begin().y, 203, 1e-9);
}

TEST_F(References, NestedOnesAreScaledTurnedAndHiddenWithWhatTheyLieIn) {
    attachNested();
    const std::vector<ModelRef*> places = placesIn(nullptr);
    ModelRef *const outer = places[2], *const inner = places[3];
    EXPECT_EQ(scaleOf(inner), 2);
    Transform back;
    ASSERT_EQ(mdlTMatrix_masterToReference(&back, inner), MDL_SUCCESS);
    EXPECT_DOUBLE_EQ(back.form[0][0], 0.5);
    EXPECT_DOUBLE_EQ(back.form[0][3], -1100);
    EXPECT_EQ(mdlTMatrix_masterToReference(&back, nullptr), MDL_ERROR);
    const int32_t off = 0;
    ASSERT_EQ(mdlRefFile_setParameters(&off, MDL_REFERENCE_SHOWN, outer), MDL_SUCCESS);
    EXPECT_EQ(parameter(inner, MDL_REFERENCE_HIDDEN), 1);
    EXPECT_EQ(parameter(inner, MDL_REFERENCE_SHOWN), 1);
    EXPECT_EQ(parameter(outer, MDL_REFERENCE_HIDDEN), 0) << "its own switch is the other one";
    EXPECT_EQ(mdlModelRef_areSame(outer, places[0]), 0) << "the same file in another place";
    EXPECT_EQ(mdlModelRef_areSame(nullptr, mdlModelRef_getActive()), 1);
    EXPECT_EQ(mdlModelRef_isActiveModel(inner), 0);
    MSElementBuffer element;
    ElementRef* found = dgnCache_findElemByID(1, mdlModelRef_getCache(inner));
    ASSERT_NE(elementRef_getElement(found, &element, sizeof element), 0u);
    EXPECT_EQ(element.head.graphicGroup, 1u);
    EXPECT_EQ(dgnCache_findElemByID(2, mdlModelRef_getCache(inner)), nullptr);
}

// Levels of the attached file in one view, and a shape of this one as its clip.
TEST_F(References, KeepsItsLevelsAndItsClip) {
    mdlUndo_mark("before");
    ModelRef* place = attach(part(1), shift(0), {{0, 0, 0}, {5, 0, 0}, {0, 5, 0}});
    const FilePos square = mdlElement_add(shape());
    const auto state = [&] {
        FilePos element = 0;
        int32_t corners = 0;
        std::string text;
        EXPECT_EQ(mdlRefFile_getClip(nullptr, &corners, place), MDL_SUCCESS);
        EXPECT_EQ(mdlRefFile_getClipElement(&element, place), MDL_SUCCESS);
        for (const int32_t view : {2, 3}) {
            text += std::to_string(mdlRefFile_isLevelOn(place, view, 1)) +
                    std::to_string(mdlView_isLevelOn(view, place, 1)) +
                    std::to_string(mdlBitMask_testBit(mdlView_getLevelDisplayMask(place, view, 2), 0)) + " ";
        }
        return text + std::to_string(corners) + "/" + std::to_string(element);
    };
    EXPECT_EQ(state(), "111 111 3/0");
    mdlUndo_mark("levels and clip");
    ASSERT_EQ(mdlRefFile_setLevelOn(place, 3, 1, 0), MDL_SUCCESS);
    ASSERT_EQ(mdlRefFile_setClipElement(square, place), MDL_SUCCESS);
    const std::string changed = "111 000 0/" + std::to_string(square);
    EXPECT_EQ(state(), changed);
    EXPECT_EQ(mdlView_isLevelOn(3, nullptr, 1), 1) << "the level of that name here stays on";
    EXPECT_EQ(mdlRefFile_setClipElement(1, place), MDL_ERROR) << "a line";
    onlyMessage("ellipse");
    EXPECT_EQ(mdlRefFile_setLevelOn(place, 3, 9, 0), MDL_ERROR);
    reopen();
    place = placesIn(nullptr).at(0);
    EXPECT_EQ(state(), changed);
    mdlUndo_mark("clip");
    ASSERT_EQ(mdlRefFile_setClip(nullptr, 0, place), MDL_SUCCESS);
    ASSERT_EQ(mdlRefFile_setLevelOn(place, 3, 1, 1), MDL_SUCCESS);
    EXPECT_EQ(state(), "111 111 0/0");
    EXPECT_EQ(mdlUndo_undo(), MDL_SUCCESS);
    EXPECT_EQ(state(), changed);
}

TEST_F(References, FilesAreFoundFromTheFolderOfTheDrawingAndAlongTheSearchPath) {
    for (const char* folder : {"site", "site/plans", "site/parts", "store"})
        std::filesystem::create_directory(path(folder));
    std::filesystem::copy_file(part(3), path("site/parts/part.mcd"));
    close();
    std::filesystem::rename(file, path("site/plans/a.mcd"));
    ASSERT_EQ(mdlSystem_newDesignFile(path("site/plans/a.mcd").c_str(), 0), MDL_SUCCESS);
    attach(path("site/parts/part.mcd"), shift(10));
    close();
    std::filesystem::rename(path("site"), path("moved"));
    ASSERT_EQ(mdlSystem_newDesignFile(path("moved/plans/a.mcd").c_str(), 0), MDL_SUCCESS);
    EXPECT_EQ(outline(), "1:0:13\n") << "all folders were moved";
    close();
    std::filesystem::rename(path("moved/parts/part.mcd"), path("store/part.mcd"));
    mdlSystem_defineCfgVar("MC_REFERENCES", (path("none") + ";" + path("store")).c_str(), 4);
    ASSERT_EQ(mdlSystem_newDesignFile(path("moved/plans/a.mcd").c_str(), 0), MDL_SUCCESS);
    EXPECT_EQ(outline(), "1:0:13\n") << "along the path";
    EXPECT_TRUE(front().messages.empty());
}

TEST_F(References, MissingFilesAndCirclesAreToldOnce) {
    attach(part(1), shift(10));
    attach(part(2), shift(20));
    attach(file, shift(500));
    outline();
    onlyMessage("within itself");
    close();
    std::filesystem::rename(part(1), path("gone.mcd"));
    open();
    front().clear();
    EXPECT_EQ(outline(), "1:0:0\n2:0:22\n3:0:507\n");
    EXPECT_EQ(front().messages.size(), 2u);
    ModelRef* place = placesIn(nullptr)[0];
    const int32_t off = 0;
    front().clear();
    EXPECT_EQ(mdlRefFile_setParameters(&off, MDL_REFERENCE_SHOWN, place), MDL_SUCCESS);
    EXPECT_EQ(outline(), "1:0:0\n2:0:22\n3:0:507\n");
    EXPECT_TRUE(front().messages.empty());
    EXPECT_EQ(mdlRefFile_setFileName(&place, path("gone.mcd").c_str(), place), MDL_SUCCESS);
    EXPECT_EQ(outline(), "1:0:11\n2:0:22\n3:0:507\n");
    EXPECT_TRUE(front().messages.empty());
    EXPECT_EQ(parameter(place, MDL_REFERENCE_SHOWN), 0) << "all else is as it was";
    EXPECT_EQ(mdlRefFile_setFileName(nullptr, path("nowhere.mcd").c_str(), place), MDL_ERROR);
    onlyMessage("nowhere.mcd");
    EXPECT_EQ(parameter(place, MDL_REFERENCE_FOUND), 1);
}

TEST_F(References, WhatCannotBeAttachedIsRefused) {
    const Transform flat = {{{1, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 1, 0}}}, good = shift(0);
    const Point3d clip[] = {{0, 0, 0}, {1, 0, 0}, {1 / 0.0, 1, 0}};
    const std::string pipe = path("pipe.mcd");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    struct Case {
        std::string name;
        const Transform* transform;
        int32_t corners;
        const char* why;
    };
    for (const Case& c :
         {Case{part(1), &flat, 0, "no way back"}, Case{part(1), &good, 2, "clip"}, Case{part(1), &good, 3, "clip"},
          Case{path("none.mcd"), &good, 0, "none.mcd"},
          Case{writeFile("foreign.mcd", "text"), &good, 0, "isn't a design file"}, Case{"", &good, 0, "no name"}}) {
        SCOPED_TRACE(c.name + c.why);
        EXPECT_EQ(mdlRefFile_attach(nullptr, nullptr, c.name.c_str(), c.transform, clip, c.corners), MDL_ERROR);
        EXPECT_NE(onlyMessage(c.name).find(c.why), std::string::npos);
    }
    ModelRef* const place = attach(part(1), good);
    EXPECT_EQ(mdlRefFile_attach(nullptr, place, part(2).c_str(), &good, nullptr, 0), MDL_ERROR);
    onlyMessage("attached itself");
    reopen();
    open(true);
    EXPECT_EQ(mdlRefFile_attach(nullptr, nullptr, part(2).c_str(), &good, nullptr, 0), MDL_ERROR);
    onlyMessage("read only");
    EXPECT_EQ(outline(), "1:0:1\n");
}

}  // namespace
