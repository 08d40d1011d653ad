// When the work of a command is in the design file.
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <string>

#include "mchost/mdl/element.h"
#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/level.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/system.h"
#include "tests/support/session_fixture.h"

namespace {

class Commands : public SessionTest {
  protected:
    // What the file holds after a process that does `body` with it and stops without an end.
    uint32_t storedBy(const std::function<void()>& body) {
        const std::string file = path("road.mcd");
        const pid_t child = fork();
        if (child == 0) {
            if (mdlSystem_createDesignFile(file.c_str(), 0) == 0 && mdlSystem_newDesignFile(file.c_str(), 0) == 0)
                body();
            _exit(0);
        }
        waitpid(child, nullptr, 0);
        EXPECT_EQ(mdlSystem_newDesignFile(file.c_str(), 0), MDL_SUCCESS);
        return mdlModelRef_getElementCount(mdlModelRef_getActive());
    }
};

int32_t addLine() {
    static MSElementBuffer line;
    const Point3d ends[2] = {{0.0, 0.0, 0.0}, {100.0, 50.0, 0.0}};
    mdlLine_create(&line, nullptr, ends);
    return mdlElement_add(&line) != 0 ? 0 : 1;
}

TEST_F(Commands, AFinishedOneIsInTheFile) {
    EXPECT_EQ(storedBy([&] {
                  session().startApplication("draws", [](int, char**) { return static_cast<int>(addLine()); });
                  dlmSystem_callAnyFunction("", application("draws"), reinterpret_cast<void*>(addLine));
              }),
              2u);
}

TEST_F(Commands, AnUnfinishedOneIsNot) {
    EXPECT_EQ(storedBy([&] {
                  asApplication("first", addLine);
                  asApplication("second", [&] {
                      asApplication("first", addLine);
                      dlmSystem_callAnyFunction("", application("third"), reinterpret_cast<void*>(addLine));
                      _exit(0);
                  });
              }),
              1u);
}

TEST_F(Commands, WhatIsOpenIsStoredWhenTheSessionEnds) {
    const std::string file = path("road.mcd");
    ASSERT_EQ(mdlSystem_createDesignFile(file.c_str(), 0), MDL_SUCCESS);
    ASSERT_EQ(mdlSystem_newDesignFile(file.c_str(), 0), MDL_SUCCESS);
    EXPECT_EQ(addLine(), 0);
    endSession();
    host::Session next;
    ASSERT_EQ(mdlSystem_newDesignFile(file.c_str(), 1), MDL_SUCCESS);
    EXPECT_EQ(mdlModelRef_getElementCount(mdlModelRef_getActive()), 1u);
}

TEST_F(Commands, ALineStyleIsChosenByItsName) {
    const std::string file = path("road.mcd");
    ASSERT_EQ(mdlSystem_createDesignFile(file.c_str(), 0), MDL_SUCCESS);
    ASSERT_EQ(mdlSystem_newDesignFile(file.c_str(), 0), MDL_SUCCESS);
    const double pattern[] = {2.0, 1.0};
    int32_t number = 0, style = 5;
    char name[64] = "";
    ASSERT_EQ(mdlLineStyle_define(&number, mdlModelRef_getActive(), "fence", pattern, 2), MDL_SUCCESS);
    EXPECT_EQ(mdlParams_setActive("fence", MDL_PARAM_LINE_STYLE_NAME), MDL_SUCCESS);
    EXPECT_EQ(mdlParams_setActive("no such style", MDL_PARAM_LINE_STYLE_NAME), MDL_ERROR);
    mdlParams_getActive(&style, MDL_PARAM_STYLE);
    mdlParams_getActive(name, MDL_PARAM_LINE_STYLE_NAME);
    EXPECT_EQ(style, number);
    EXPECT_STREQ(name, "fence");
    style = 2;
    mdlParams_setActive(&style, MDL_PARAM_STYLE);
    mdlParams_getActive(name, MDL_PARAM_LINE_STYLE_NAME);
    EXPECT_STREQ(name, "");
}

}  // namespace
