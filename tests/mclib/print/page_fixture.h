// A page in a design file that is printed on a device.
#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/level.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/system.h"
#include "mchost/mdl/text.h"
#include "mchost/mdl/transform.h"
#include "mclib/frame/main.h"
#include "mclib/print/print.h"
#include "mclib/print/walker.h"
#include "tests/support/session_fixture.h"

using namespace mc;

inline int registerPrintTest(int argc, char** argv) {
    return mclibMain_initMcLib("print test", argc, argv);
}

// The look of an element. Level: the code of its level, made when it isn't there.
struct Look {
    uint32_t color = 0, weight = 0;
    int32_t style = 0, level = 0;
};

// A page of an application with a design file. Its sheet is 200 by 100 mm and its elements are given in thousandths of
// a millimetre, so that a box of the sheet's size has them in their places.
class PageTest : public SessionTest {
  protected:
    PageTest() : SessionTest({{"MS_APPRSC", BUILD_DIR "/lib/mclib.rsc"}, {"MC_DIR", "c:\\mc\\"}}) {
        session().startApplication("print", registerPrintTest, "USER", {});
        scope.emplace(application("print"));
        EXPECT_EQ(mdlSystem_createDesignFile(path("page.mcd").c_str(), 0), MDL_SUCCESS);
        EXPECT_EQ(mdlSystem_newDesignFile(path("page.mcd").c_str(), 0), MDL_SUCCESS);
    }
    ~PageTest() override {
        mdlElmdscr_freeAll(&page);
        scope.reset();
    }

    static LevelId levelOf(int32_t code) {
        LevelId id = 0;
        ModelRef* model = mdlModelRef_getActive();
        if (mdlLevel_getIdFromCode(&id, model, code) != MDL_SUCCESS)
            mdlLevel_create(&id, model, (L"Level " + std::to_wstring(code)).c_str());
        return id;
    }

    void setLook(const Look& look) {
        mdlElement_setSymbology(&element, &look.color, &look.weight, &look.style);
        const uint32_t level = levelOf(look.level);
        mdlElement_setProperties(&element, &level, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    }
    void append(const Look& look) {
        setLook(look);
        if (page)
            mdlElmdscr_appendElement(page, &element);
        else
            mdlElmdscr_new(&page, nullptr, &element);
    }
    void line(double x1, double y1, double x2, double y2, const Look& look = {}) {
        const Point3d points[2] = {{x1, y1, 0}, {x2, y2, 0}};
        mdlLine_create(&element, nullptr, points);
        append(look);
    }
    void shape(bool filled, const Look& look) {
        const Point3d points[3] = {{10000, 10000, 0}, {20000, 10000, 0}, {20000, 20000, 0}};
        mdlShape_create(&element, nullptr, points, 3, filled);
        append(look);
    }
    void text(const wchar_t* characters, int32_t just, double angle = 0, const Point3d& origin = {20000, 10000, 0}) {
        RotMatrix rotation;
        mdlRMatrix_fromAngle(&rotation, angle);
        const TextSize size = {1, 2500, 2500, 1};
        const TextParams params = {0, just, -1, -1, 0, 0, 0};
        ASSERT_EQ(mdlText_createWide(&element, nullptr, characters, &origin, &rotation, &size, &params, 0),
                  MDL_SUCCESS);
        append({});
    }

    // Two points in the corners of the sheet, which give the page its extent.
    void corners() {
        line(0, 0, 0, 0);
        line(200000, 100000, 200000, 100000);
    }

    // The whole file of a job that prints the page into the box, a number of times.
    std::string job(int device, const PaperBox& box = {0, 0, 200, 100}, int pages = 1) {
        EXPECT_EQ(mclibPrint_fopen(path("page.out").c_str(), device), 1);
        for (int i = 0; i < pages; ++i) {
            if (i > 0) mclibPrint_newPage();
            mclibPrint_printElementDescr(page, box.x, box.y, box.width, box.height);
        }
        mclibPrint_fclose();
        EXPECT_EQ(mclibPrint_jobStatus(), MCLIB_SUCCESS);
        return readFile("page.out");
    }

    MSElementBuffer element;
    ElementDescr* page = nullptr;

  private:
    std::optional<host::ApplicationScope> scope;
};
