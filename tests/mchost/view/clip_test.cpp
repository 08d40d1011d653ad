// What bounds references in the active model, and what of elements lies within.
#include "mchost/mdl/clip.h"

#include <gmock/gmock.h>

#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/reference.h"
#include "mchost/mdl/reference_info.h"
#include "mchost/mdl/transform.h"
#include "mchost/mdl/view.h"
#include "tests/mchost/model/model_fixture.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::vector<Point3d> square(double x, double y, double side) {
    return {{x, y, 0}, {x + side, y, 0}, {x + side, y + side, 0}, {x, y + side, 0}};
}

// The drawing shows "outer", twice as large and turned by a right angle, with its origin at 1000,0; that shows "inner".
class ReferenceClips : public DesignFileTest {
  protected:
    ReferenceClips() {
        make("inner.mcd");
        make("outer.mcd");
        inner = attach("inner.mcd", {{0, 0, 0}, {}, 1});
        setClip(inner, square(0, 0, 100));
        create();
        open();
        MdlRefPlacement placement = {{1000, 0, 0}, {}, 2};
        mdlRMatrix_fromAngle(&placement.rotation, *fc_piover2P);
        outer = attach("outer.mcd", placement);
        ModelRefIterator* places = nullptr;
        EXPECT_EQ(mdlModelRefIterator_create(&places, nullptr, MDL_ITERATE_REFERENCES, -1), MDL_SUCCESS);
        mdlModelRefIterator_getFirst(places);
        inner = mdlModelRefIterator_getNext(places);
        mdlModelRefIterator_free(&places);
    }
    void make(const std::string& name) {
        EXPECT_EQ(mdlSystem_createDesignFile(path(name).c_str(), 0), MDL_SUCCESS);
        EXPECT_EQ(mdlSystem_newDesignFile(path(name).c_str(), 0), MDL_SUCCESS);
    }
    ModelRef* attach(const std::string& name, MdlRefPlacement placement) {
        if (placement.rotation.form[0][0] == 0 && placement.rotation.form[0][1] == 0)
            mdlRMatrix_getIdentity(&placement.rotation);
        ModelRef* place = nullptr;
        EXPECT_EQ(mdlRefFile_attachAt(&place, nullptr, path(name).c_str(), &placement), MDL_SUCCESS);
        return place;
    }
    static void setClip(ModelRef* place, const std::vector<Point3d>& corners) {
        EXPECT_EQ(mdlRefFile_setClip(corners.data(), static_cast<int32_t>(corners.size()), place), MDL_SUCCESS);
    }
    // What of a line along y = `y` of the active model lies within, as x of its ends; -1 when all of it does.
    static std::vector<double> within(ModelRef* place, double y) {
        ClipDescr* clip = nullptr;
        EXPECT_EQ(mdlClip_getRefBoundary(&clip, place, 0), MDL_SUCCESS);
        if (!clip) return {-1};
        mdl::Descr in;
        EXPECT_EQ(mdlElmdscr_new(in.out(), nullptr, line(0, y, 2000, y)), MDL_SUCCESS);
        ElementDescr* out = nullptr;
        EXPECT_EQ(mdlClip_element(&out, in.get(), place, clip, 0), MDL_SUCCESS);
        mdlClip_free(&clip);
        if (out == in.get()) return {-1};
        std::vector<double> ends;
        for (const ElementDescr* piece = out; piece; piece = piece->next) {
            Point3d points[2] = {};
            EXPECT_EQ(mdlLinear_extract(points, nullptr, piece->element, 2), MDL_SUCCESS);
            for (const Point3d& p : points) ends.push_back(std::round(p.x));
        }
        mdlElmdscr_freeAll(&out);
        return ends;
    }
    struct Info {
        std::vector<Point3d> corners;  // in the active model
        FilePos element;
    };
    static Info info(ModelRef* place, int32_t view) {
        MdlReferenceInfo* told = nullptr;
        EXPECT_EQ(mdlRefFile_getInfo(&told, place, view), MDL_SUCCESS);
        RotMatrix matrix;
        EXPECT_EQ(mdlRMatrix_fromView(&matrix, view), MDL_SUCCESS);
        std::vector<Point3d> corners(told->clip, told->clip + told->clipCount);
        mdlRMatrix_unrotatePointArray(corners.data(), &matrix, told->clipCount);
        for (Point3d& p : corners) p = {p.x + told->offset.x, p.y + told->offset.y, 0};
        const Info info{corners, told->clipElement};
        mdlRefFile_freeInfo(&told);
        return info;
    }
    static double areaOf(const std::vector<Point3d>& corners) {
        double twice = 0;
        for (size_t i = 0, before = corners.size() - 1; i < corners.size(); before = i++)
            twice += corners[before].x * corners[i].y - corners[i].x * corners[before].y;
        return std::round(std::fabs(twice) / 2);
    }

    ModelRef *outer, *inner;
};

TEST_F(ReferenceClips, ElementsAreCutByAllThatAReferenceLiesIn) {
    EXPECT_THAT(within(outer, 50), ElementsAre(-1)) << "it isn't clipped";
    EXPECT_THAT(within(inner, 50), ElementsAre(800, 1000)) << "its own clip, twice as large and turned";
    EXPECT_THAT(within(inner, 250), IsEmpty());
    setClip(outer, {{750, -50, 0},
                    {850, -50, 0},
                    {850, 60, 0},
                    {950, 60, 0},
                    {950, -50, 0},
                    {1100, -50, 0},
                    {1100, 100, 0},
                    {750, 100, 0}});
    EXPECT_THAT(within(outer, 50), ElementsAre(750, 850, 950, 1100));
    EXPECT_THAT(within(inner, 50), ElementsAre(800, 850, 950, 1000)) << "that of the one around it, too";
    EXPECT_THAT(within(inner, 150), IsEmpty());
    ClipDescr* clip = nullptr;
    EXPECT_EQ(mdlClip_getRefBoundary(&clip, nullptr, 0), MDL_ERROR);
    EXPECT_EQ(mdlClip_getRefBoundary(&clip, outer, 8), MDL_ERROR);
    EXPECT_EQ(clip, nullptr);
}

TEST_F(ReferenceClips, AnElementThatIsGoneLeavesNothingAndIsTold) {
    const FilePos position = mdlElement_add(shape());
    ASSERT_EQ(mdlRefFile_setClipElement(position, outer), MDL_SUCCESS);
    EXPECT_THAT(within(outer, 5), ElementsAre(0, 10));
    EXPECT_EQ(info(outer, 0).element, position);
    EXPECT_THAT(info(outer, 0).corners, IsEmpty());
    ASSERT_EQ(mdlElement_undoableDelete(nullptr, position, 0), MDL_SUCCESS);
    front().clear();
    EXPECT_THAT(within(outer, 5), IsEmpty());
    EXPECT_THAT(within(inner, 50), IsEmpty());
    EXPECT_THAT(front().consoleText, HasSubstr("outer.mcd"));
    EXPECT_EQ(info(outer, 0).element, 0u);
    EXPECT_THAT(info(outer, 0).corners, IsEmpty());
}

TEST_F(ReferenceClips, CornersAreToldAsAViewSeesThem) {
    EXPECT_THAT(info(outer, 0).corners, IsEmpty());
    RotMatrix turned;
    mdlRMatrix_fromAngle(&turned, *fc_piover6P);
    ASSERT_EQ(mdlView_setRotation(3, &turned), MDL_SUCCESS);
    for (const int32_t view : {0, 3}) {
        SCOPED_TRACE(view);
        const std::vector<Point3d> corners = info(inner, view).corners;
        ASSERT_EQ(corners.size(), 4u);
        EXPECT_NEAR(corners[2].x, 800, 1e-9);
        EXPECT_NEAR(corners[2].y, 200, 1e-9);
    }
    setClip(outer, {{700, 0, 0}, {900, 0, 0}, {900, 100, 0}, {700, 100, 0}});
    EXPECT_EQ(areaOf(info(inner, 3).corners), 100 * 100) << "what the two clips leave";
    setClip(outer, {{750, -50, 0},
                    {850, -50, 0},
                    {850, 250, 0},
                    {880, 250, 0},
                    {880, 90, 0},
                    {920, 90, 0},
                    {920, 250, 0},
                    {950, 250, 0},
                    {950, -50, 0},
                    {1100, -50, 0},
                    {1100, 300, 0},
                    {750, 300, 0}});
    const std::vector<Point3d> parts = info(inner, 0).corners;
    EXPECT_EQ(areaOf(parts), 50 * 200 + 40 * 110 + 50 * 200);
    EXPECT_EQ(parts.size(), 5u + 6 + 6) << "each of the three closed, and two ways back to the first";
    MdlReferenceInfo* told = nullptr;
    EXPECT_EQ(mdlRefFile_getInfo(&told, nullptr, 0), MDL_ERROR);
}

}  // namespace
