#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "mchost/mdl/dialog.h"
#include "mchost/mdl/system.h"
#include "mchost/session/memory.h"
#include "mclib/elmattr/attributes.h"
#include "mclib/forms/state.h"
#include "mclib/frame/errors.h"
#include "mclib/frame/main.h"
#include "tests/support/session_fixture.h"

using namespace mc;

namespace {

constexpr int mostApplications = 49;
int lastStatus = -1;

// The main function of the applications here: registers under the name that it was started with.
int registerMain(int argc, char** argv) {
    lastStatus = mclibMain_initMcLib(argc > 2 ? argv[2] : argv[0], argc, argv);
    return 0;
}

class Frame : public SessionTest {
  protected:
    using Variables = std::vector<std::pair<std::string, std::string>>;

    explicit Frame(Variables variables = {{"MS_APPRSC", BUILD_DIR "/lib/mclib.rsc"}, {"MC_DIR", "c:\\mc\\"}})
        : SessionTest(std::move(variables)) {}

    MdlDesc* start(const std::string& name, std::string_view list = "USER") {
        lastStatus = -1;
        return session().startApplication(name, registerMain, list, {name});
    }
    std::vector<MdlDesc*> startMany(int count) {
        std::vector<MdlDesc*> descs;
        for (int i = 0; i < count; ++i) {
            descs.push_back(start("app" + std::to_string(i)));
            EXPECT_EQ(lastStatus, MCLIB_SUCCESS) << i;
        }
        return descs;
    }
    static std::string nameOf(MdlDesc* desc) {
        const host::ApplicationScope scope(desc);
        const char* name = mclibMain_getApplicationName();
        return name ? name : "";
    }
    static GlobalData* blockOf(MdlDesc* desc) {
        const host::ApplicationScope scope(desc);
        return mclibMain_getGlobalDataP();
    }
};

// The value in a published structure.
std::string valueOf(const char* access) {
    char text[512];
    return mdlDialog_getAccessValue(text, sizeof text, access) == MDL_SUCCESS ? text : "unreachable";
}

// ---- the table ----

TEST_F(Frame, Runs49ApplicationsSideBySideAndRefusesTheNext) {
    const std::vector<MdlDesc*> descs = startMany(mostApplications);
    for (size_t i = 0; i < descs.size(); ++i) EXPECT_EQ(nameOf(descs[i]), "app" + std::to_string(i));
    std::set<GlobalData*> blocks;
    for (MdlDesc* desc : descs) blocks.insert(blockOf(desc));
    EXPECT_EQ(blocks.size(), static_cast<size_t>(mostApplications));

    front().clear();
    MdlDesc* one_too_many = start("late");
    EXPECT_EQ(lastStatus, MCLIB_ERROR);
    EXPECT_EQ(front().consoleText, "Error in mclib_InitGlobalData\n");
    EXPECT_EQ(nameOf(one_too_many), "");
    EXPECT_EQ(nameOf(descs[mostApplications - 1]), "app48");
}

TEST_F(Frame, UsesSlotsOfEndedApplicationsAgain) {
    std::vector<MdlDesc*> descs = startMany(mostApplications);
    for (const size_t ended : {3u, 17u, 48u}) session().endApplication(descs[ended]);
    for (const char* name : {"new a", "new b", "new c"}) {
        MdlDesc* desc = start(name);
        EXPECT_EQ(lastStatus, MCLIB_SUCCESS);
        EXPECT_EQ(nameOf(desc), name);
    }
    EXPECT_EQ(nameOf(descs[4]), "app4");
    start("late");
    EXPECT_EQ(lastStatus, MCLIB_ERROR);
}

TEST_F(Frame, RefusesEveryoneOnceFiftySlotsWereHandedOut) {
    std::vector<MdlDesc*> descs = startMany(mostApplications);
    start("late");
    ASSERT_EQ(lastStatus, MCLIB_ERROR);
    ASSERT_EQ(front().messages.size(), 1u);
    EXPECT_NE(front().messages[0].brief.find("late"), std::string::npos);
    for (size_t i = 0; i < 10; ++i) session().endApplication(descs[i]);
    start("later");
    EXPECT_EQ(lastStatus, MCLIB_ERROR);
    EXPECT_EQ(nameOf(descs[20]), "app20");
}

TEST_F(Frame, GivesApplicationsOfOneNameABlockEach) {
    MdlDesc* first = start("twin");
    MdlDesc* second = start("twin");
    EXPECT_NE(blockOf(first), blockOf(second));
}

TEST_F(Frame, ANewSessionStartsWithoutTheApplicationsBefore) {
    startMany(mostApplications);
    ASSERT_EQ(mdlDialog_setAccessValue("mclibpd->pron", "E18"), MDL_SUCCESS);
    mclibPreview_setUserPrintFunction([](int) {});
    endSession();
    const host::Session next({.frontEnd = nullptr, .variables = {{"MC_DIR", "c:\\mc\\"}}});
    for (int i = 0; i < mostApplications; ++i) {
        const std::string name = "new" + std::to_string(i);
        MdlDesc* desc = host::Session::current()->startApplication(name, registerMain, "USER", {name});
        ASSERT_EQ(lastStatus, MCLIB_SUCCESS) << i;
        EXPECT_EQ(nameOf(desc), name);
    }
    EXPECT_EQ(valueOf("mclibpd->pron"), "");
    EXPECT_EQ(forms::formsState->userPrintFunction, nullptr);
}

TEST_F(Frame, AnApplicationThatRegistersAgainKeepsTheSharedBlocks) {
    MdlDesc* desc = start("one");
    const host::ApplicationScope scope(desc);
    EXPECT_EQ(mdlDialog_setAccessValue("mclibpd->pron", "E18"), MDL_SUCCESS);
    EXPECT_EQ(mdlDialog_setAccessValue("mcScaleP->activeScale", "77"), MDL_SUCCESS);
    const ElmAttrData look{};
    EXPECT_EQ(mclibElmAttr_addAttribute(1, "Line", 0, ATTR_KIND_SYMBOLOGY, 0, nullptr, 0, &look), MCLIB_SUCCESS);
    const size_t before = host::memoryUse().blocks;
    char name[] = "again", list[] = "USER";
    char* argv[] = {name, list, nullptr};
    EXPECT_EQ(mclibMain_initMcLib("again", 2, argv), MCLIB_SUCCESS);
    EXPECT_EQ(nameOf(desc), "again");
    EXPECT_EQ(valueOf("mclibpd->pron"), "E18");
    EXPECT_EQ(valueOf("mcScaleP->activeScale"), "77");
    EXPECT_LT(host::memoryUse().blocks, before) << "what the first registration kept is freed";
    host::failMemoryFrom(3);
    EXPECT_EQ(mclibMain_initMcLib("poor", 2, argv), MCLIB_ERROR);
    host::failMemoryFrom(0);
    EXPECT_EQ(nameOf(desc), "again") << "it goes on as it was";
}

TEST_F(Frame, TellsACallerThatIsntRegistered) {
    MdlDesc* registered = start("one");
    front().clear();
    asApplication("other", [] { EXPECT_EQ(mclibMain_getGlobalDataP(), nullptr); });
    EXPECT_EQ(front().consoleText, "Error in mclib_GetGlobalDataP\n");
    EXPECT_EQ(nameOf(registered), "one");
}

TEST_F(Frame, CutsALongApplicationName) {
    const std::string name(400, 'n');
    EXPECT_EQ(nameOf(start(name)), name.substr(0, 335));
}

// ---- deferred functions ----

std::string calls;
template <char Letter>
void letter() {
    calls += Letter;
}
void letterOfTheApplication() {
    calls += mclibMain_getApplicationName();
}
constexpr void (*letters[])() = {letter<'a'>, letter<'b'>, letter<'c'>, letter<'d'>, letter<'e'>, letter<'f'>,
                                 letter<'g'>, letter<'h'>, letter<'i'>, letter<'j'>, letter<'k'>};

TEST_F(Frame, DefersTenFunctionsToTheFirstDesignFile) {
    for (const char* list : {"MS_DGNAPPS", "MS_INITAPPS"}) {
        calls.clear();
        MdlDesc* desc = start(std::string("early ") + list, list);
        const host::ApplicationScope scope(desc);
        EXPECT_EQ(mclibMain_currentAppIsInitApp(), 1);
        for (auto* function : letters) mclibMain_execFuncOrAddToInitApps(function);
        mclibMain_newDesignFile(nullptr, 0);
        mclibMain_newDesignFile(nullptr, 2);
        EXPECT_EQ(calls, "");
        mclibMain_newDesignFile(nullptr, 1);
        EXPECT_EQ(calls, "abcdefghij");
        EXPECT_EQ(mclibMain_currentAppIsInitApp(), 0);
        mclibMain_newDesignFile(nullptr, 1);
        EXPECT_EQ(calls, "abcdefghij");
        mclibMain_execFuncOrAddToInitApps(letter<'z'>);
        EXPECT_EQ(calls, "abcdefghijz");
    }
}

TEST_F(Frame, RunsFunctionsOfOtherApplicationsAtOnce) {
    for (const char* list : {"USER", "ms_dgnapps", "MS_DGNAPPS2"}) {
        calls.clear();
        const host::ApplicationScope scope(start("X", list));
        EXPECT_EQ(mclibMain_currentAppIsInitApp(), 0);
        mclibMain_execFuncOrAddToInitApps(letter<'q'>);
        EXPECT_EQ(calls, "q");
    }
}

TEST_F(Frame, TheHostTellsEachApplicationOfItsFirstDesignFile) {
    for (const char* name : {"A", "B"}) {
        const host::ApplicationScope scope(start(name, "MS_DGNAPPS"));
        mclibMain_execFuncOrAddToInitApps(letterOfTheApplication);
    }
    calls.clear();
    host::fireNewDesignFile("a.mcd", 0);
    EXPECT_EQ(calls, "");
    host::fireNewDesignFile("a.mcd", 1);
    host::fireNewDesignFile("b.mcd", 1);
    EXPECT_EQ(calls, "AB");
}

// ---- memory ----

TEST_F(Frame, RegistrationWithoutMemoryLeavesNothingBehind) {
    MdlDesc* first = start("first");
    for (int call = 1; call <= 6; ++call) {  // a block, and five behind it
        const size_t before = host::memoryUse().blocks;
        host::failMemoryFrom(call);
        MdlDesc* poor = start("poor");
        host::failMemoryFrom(0);
        EXPECT_EQ(lastStatus, MCLIB_ERROR) << call;
        EXPECT_EQ(host::memoryUse().blocks, before) << call;
        if (poor) {
            EXPECT_EQ(nameOf(poor), "");
        }
    }
    EXPECT_EQ(nameOf(first), "first");
    EXPECT_EQ(valueOf("mgdP->applicationName"), "first") << "its open dialogs go on";
    MdlDesc* next = start("next");
    EXPECT_EQ(lastStatus, MCLIB_SUCCESS);
    EXPECT_EQ(nameOf(next), "next");
}

TEST_F(Frame, TheFirstApplicationWithoutMemoryIsToldSo) {
    host::failMemoryFrom(1);
    start("poor");
    host::failMemoryFrom(0);
    EXPECT_EQ(lastStatus, MCLIB_ERROR);
    ASSERT_EQ(front().messages.size(), 1u);
    EXPECT_NE(front().messages[0].brief.find("no memory"), std::string::npos);
}

// ---- shared blocks and published names ----

TEST_F(Frame, SharesTheBlocksAmongApplicationsAndMakesThemAnewAfterTheLast) {
    MdlDesc* first = start("first");
    EXPECT_EQ(mdlDialog_setAccessValue("mclibpd->pron", "E18"), MDL_SUCCESS);
    EXPECT_EQ(mdlDialog_setAccessValue("mclibpd->pros[4]", "last line"), MDL_SUCCESS);
    EXPECT_EQ(mdlDialog_setAccessValue("mclibpsd->copies", "3"), MDL_SUCCESS);
    EXPECT_EQ(mdlDialog_setAccessValue("mclibsd->revs", "B"), MDL_SUCCESS);
    EXPECT_EQ(mdlDialog_setAccessValue("mcScaleP->activeScale", "500"), MDL_SUCCESS);
    MdlDesc* second = start("second");
    EXPECT_EQ(valueOf("mclibpd->pron"), "E18");
    EXPECT_EQ(valueOf("mclibpd->pros[4]"), "last line");
    EXPECT_EQ(valueOf("mclibpsd->copies"), "1") << "the printer set-up is read anew";
    EXPECT_EQ(valueOf("mcScaleP->activeScale"), "500");
    session().endApplication(second);
    session().endApplication(first);
    start("third");  // two slots were handed out, so it isn't the first of all
    EXPECT_EQ(valueOf("mclibpd->pron"), "E18");
}

TEST_F(Frame, MakesTheBlocksAnewWhenTheOnlyApplicationHasEnded) {
    MdlDesc* first = start("first");
    EXPECT_EQ(mdlDialog_setAccessValue("mclibsd->revs", "B"), MDL_SUCCESS);
    EXPECT_EQ(mdlDialog_setAccessValue("mcScaleP->activeIndex", "7"), MDL_SUCCESS);
    session().endApplication(first);
    start("second");
    EXPECT_EQ(valueOf("mclibsd->revs"), "");
    EXPECT_EQ(valueOf("mcScaleP->activeIndex"), "0");
    EXPECT_EQ(std::stod(valueOf("mcScaleP->activeScale")), 1.0);
}

TEST_F(Frame, PointsDialogsAtTheApplicationThatOpensOne) {
    MdlDesc* first = start("first");
    start("second");
    EXPECT_EQ(valueOf("mgdP->applicationName"), "second");
    EXPECT_EQ(valueOf("mgdP->fileDialogP->decimalSign"), ",");
    EXPECT_EQ(valueOf("mgdP->selectedAttributeId"), "-1");
    EXPECT_EQ(std::stod(valueOf("mgdP->pageScale")), 1.0);
    blockOf(first);
    EXPECT_EQ(valueOf("mgdP->applicationName"), "second");
    const host::ApplicationScope scope(first);
    mclibMain_updateBeforeDialogOpen(20011);
    EXPECT_EQ(valueOf("mgdP->applicationName"), "first");
}

TEST_F(Frame, LetsOnlyOneApplicationHaveASharedDialogOpen) {
    constexpr int32_t dialogId = 20011;
    MdlDesc *first = start("first"), *second = start("second");
    const auto open = [](MdlDesc* desc) {
        const host::ApplicationScope scope(desc);
        return mdlDialog_open(0, dialogId);
    };
    ASSERT_NE(open(first), nullptr);
    ASSERT_NE(open(second), nullptr);
    const host::ApplicationScope scope(second);
    mclibMain_updateBeforeDialogOpen(dialogId);
    EXPECT_EQ(mdlDialog_find(dialogId, first), nullptr);
    EXPECT_NE(mdlDialog_find(dialogId, second), nullptr);
}

TEST_F(Frame, SaysWhenAPlotScaleFileCannotBeRead) {
    writeFile("drive_c/scales.rsc", "");
    mdlSystem_defineCfgVar("MC_PLOTSCALES", "nowhere.rsc", 4);
    mdlSystem_defineCfgVar("MC_DATA", "c:\\", 4);
    session().endApplication(start("first"));
    EXPECT_EQ(front().dialogs, 0);
    mdlSystem_defineCfgVar("MC_PLOTSCALES", "scales.rsc", 4);
    start("second");
    EXPECT_EQ(front().dialogs, 1);
    ASSERT_FALSE(front().messages.empty());
    EXPECT_NE(front().messages[0].brief.find("scales.rsc"), std::string::npos);
}

}  // namespace
