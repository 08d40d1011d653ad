// An application of the family with an open design file: what tests of the library's rooms start from.
#pragma once

#include <optional>

#include "mchost/mdl/model.h"
#include "mclib/elmattr/attributes.h"
#include "mclib/frame/main.h"
#include "tests/support/session_fixture.h"

class LibraryTest : public SessionTest {
  protected:
    LibraryTest() : SessionTest({{"MS_APPRSC", BUILD_DIR "/lib/mclib.rsc"}, {"MC_DIR", "c:\\mc\\"}}) {
        session().startApplication("tester",
                                   [](int argc, char** argv) { return mclibMain_initMcLib("Tester", argc, argv); });
        scope_.emplace(application("tester"));
    }
    ~LibraryTest() override {
        mclibElmAttr_freeAllAttribute();
        mclibElmAttr_freeGroupeNames();
        scope_.reset();
    }

    void openDesignFile() {
        ASSERT_EQ(mdlSystem_createDesignFile(path("test.mcd").c_str(), 0), MDL_SUCCESS);
        ASSERT_EQ(mdlSystem_newDesignFile(path("test.mcd").c_str(), 0), MDL_SUCCESS);
    }

  private:
    std::optional<host::ApplicationScope> scope_;
};
