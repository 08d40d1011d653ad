// A drawing with lines and a cell, and a modify command that notes what it is called with.
#pragma once

#include <functional>

#include "mchost/command/command.h"
#include "mchost/command/hits.h"
#include "mchost/mdl/locate.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/state.h"
#include "mchost/mdl/view.h"
#include "tests/mchost/model/model_fixture.h"

// What the functions of the command under test were called with, and what they do beside it.
struct Calls {
    std::vector<std::string> seen;
    std::function<void()> inShow, inClean, inAccept, inReset;
    std::function<int(const MSElementBuffer*, ModelRef*, FilePos)> post;
};
inline Calls calls;

inline void note(const std::string& what, const std::function<void()>& doing) {
    calls.seen.push_back(what);
    if (doing) doing();
}
inline void show() {
    note("show", calls.inShow);
}
inline void clean() {
    note("clean", calls.inClean);
}
inline void accept(Point3d* point, int32_t view) {
    note("accept " + std::to_string(std::lround(point->x)) + " " + std::to_string(view), calls.inAccept);
}
inline void reset() {
    note("reset", calls.inReset);
}
inline void dynamics(Point3d* point, int32_t, int32_t mode) {
    calls.seen.push_back("dynamics");
    const Point3d ends[] = {{}, *point};
    mdlLine_create(dgnBufP, nullptr, ends);
    mdlElement_display(dgnBufP, mode);
}
inline int postLocate(const MSElementBuffer* element, ModelRef* model, FilePos position) {
    return calls.post(element, model, position);
}

class ModifyCommand : public OpenModelTest {
  protected:
    ModifyCommand() { calls = {}; }

    // A line through (0, y) along x, in reaches of a click.
    FilePos addLine(double y, bool locked = false) {
        const Point3d ends[] = {{-10 * reach, y * reach, 0}, {10 * reach, y * reach, 0}};
        mdlLine_create(dgnBufP, nullptr, ends);
        if (locked) dgnBufP->head.properties |= MDL_PROP_LOCKED;
        return mdlElement_add(dgnBufP);
    }
    // A cell with a cell (which has a line through y = 100), a line through y = 101, and a line string through y = 102.
    FilePos addCell() {
        mdlCell_create(dgnBufP, L"OUTER", nullptr, 0);
        mdl::Descr outer;
        ElementDescr* inner = nullptr;
        EXPECT_EQ(mdlElmdscr_new(outer.out(), nullptr, dgnBufP), MDL_SUCCESS);
        EXPECT_EQ(mdlElmdscr_new(&inner, nullptr, dgnBufP), MDL_SUCCESS);
        EXPECT_EQ(mdlElmdscr_appendElement(inner, along(100)), MDL_SUCCESS);
        EXPECT_EQ(mdlElmdscr_appendDscr(outer.get(), inner), MDL_SUCCESS);
        EXPECT_EQ(mdlElmdscr_appendElement(outer.get(), along(101)), MDL_SUCCESS);
        EXPECT_EQ(mdlElmdscr_appendElement(outer.get(), along(102)), MDL_SUCCESS);
        return mdlElmdscr_add(outer.get());
    }
    MSElementBuffer* along(double y) {
        const Point3d ends[] = {{0, y * reach, 0}, {reach, y * reach, 0}};
        if (y == 102)
            mdlLineString_create(dgnBufP, nullptr, ends, 2);
        else
            mdlLine_create(dgnBufP, nullptr, ends);
        return dgnBufP;
    }

    void start(MdlDynamicsFunction dynamic = nullptr) {
        asApplication("editor", [&] {
            EXPECT_EQ(mdlState_startModifyCommand(reset, accept, dynamic, show, clean, 0, 0, 0, 0), MDL_SUCCESS);
            return 0;
        });
    }
    bool point(double y, double x = 0) { return host::giveDataPoint({x * reach, y * reach, 0}, 0); }
    FilePos locatedElement() { return mdlElement_getFilePos(MDL_FILE_POS_ELEMENT, nullptr); }
    std::string told() { return front().field(MDL_FIELD_ERROR); }

    // The same in all views.
    static double reachOfViews() {
        const Point3d origin{}, extent{800 * 100, 600 * 100, 0};
        for (int32_t view = 0; view < 8; ++view) EXPECT_EQ(mdlView_setArea(view, &origin, &extent), MDL_SUCCESS);
        return host::aimAt({}, 0).reach;
    }
    const double reach = reachOfViews();
};
