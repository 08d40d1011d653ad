#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "mchost/mdl/external.h"
#include "mchost/mdl/files.h"
#include "mchost/mdl/resource.h"
#include "mchost/mdl/system.h"
#include "mchost/session/keyin.h"
#include "mchost/session/memory.h"
#include "tests/support/session_fixture.h"

namespace {

using Console = SessionTest;
using Timers = SessionTest;
using Settings = SessionTest;

TEST_F(Console, NarrowTextComesOutAsUtf8) {
    EXPECT_EQ(toolSubsystem_printf("%s\n", "Bl\xe5 \xd8y \x80 5"), 11);
    EXPECT_EQ(front().consoleText, "Blå Øy € 5\n");
    mdlOutput_printf(2, "velg p\xe5 %d", 5);
    EXPECT_EQ(front().field(2), "velg på 5");
    EXPECT_EQ(mdlOutput_printf(5, "none"), MDL_ERROR);
    mdlOutput_messageCenter(MDL_PRIORITY_WARNING, "\xe6", nullptr, 0);
    ASSERT_EQ(front().messages.size(), 1u);
    EXPECT_EQ(front().messages[0].brief, "æ");
    EXPECT_EQ(front().messages[0].details, "");
}

TEST_F(Console, LinesOfAnyLengthStayWhole) {
    for (const size_t length : {511u, 512u, 513u, 100000u}) {
        front().clear();
        const std::string text(length, 'x');
        EXPECT_EQ(toolSubsystem_printf("%s", text.c_str()), static_cast<int>(length));
        EXPECT_EQ(front().consoleText, text);
    }
}

TEST(Memory, FailsFromTheOrderedCallOnAndLosesNothing) {
    const host::MemoryUse before = host::memoryUse();
    auto* block = static_cast<char*>(dlmSystem_mdlMalloc(0));
    ASSERT_NE(block, nullptr);
    block = static_cast<char*>(dlmSystem_mdlRealloc(block, 100));
    std::memset(block, 'x', 100);
    host::failMemoryFrom(2);
    void* last = dlmSystem_mdlMalloc(10);
    EXPECT_NE(last, nullptr);
    EXPECT_EQ(dlmSystem_mdlMalloc(10), nullptr);
    EXPECT_EQ(dlmSystem_mdlRealloc(block, 1000), nullptr);
    EXPECT_EQ(block[99], 'x');
    host::failMemoryFrom(0);
    EXPECT_EQ(host::memoryUse().blocks, before.blocks + 2);
    EXPECT_GE(host::memoryUse().bytes, before.bytes + 110);
    dlmSystem_mdlFree(block);
    dlmSystem_mdlFree(last);
    dlmSystem_mdlFree(nullptr);
    EXPECT_EQ(host::memoryUse().blocks, before.blocks);
    EXPECT_EQ(host::memoryUse().bytes, before.bytes);
    EXPECT_EQ(dlmSystem_mdlMalloc(SIZE_MAX), nullptr);
}

std::vector<std::string> fired;
std::map<int32_t, std::string> names;

void ring(int32_t id) {
    MdlDesc* current = mdlSystem_getCurrMdlDesc();
    fired.push_back(names[id] + "@" + std::to_string(mdlSystem_getTicks()) + " by " +
                    std::to_string(mdlSystem_getProcessNumberFromMdlDesc(current)));
    if (names[id] == "again" && fired.size() < 5) {
        int32_t next = 0;
        mdlSystem_setTimerFunction(&next, 0, reinterpret_cast<void*>(ring));
        names[next] = "again";
    }
}

int32_t setTimer(const char* name, int32_t ticks) {
    int32_t id = 0;
    EXPECT_EQ(mdlSystem_setTimerFunction(&id, ticks, reinterpret_cast<void*>(ring)), MDL_SUCCESS);
    names[id] = name;
    return id;
}

TEST_F(Timers, FireOnceInOrderOfTimeInTheirOwnTurn) {
    fired.clear();
    names.clear();
    session().advanceTicks(0);
    const int32_t start = mdlSystem_getTicks();
    const auto at = [&](const char* name, int32_t ticks, int by) {
        return std::string(name) + "@" + std::to_string(start + ticks) + " by " + std::to_string(by);
    };
    asApplication("one", [] { setTimer("late", 60), setTimer("early", 5); });
    const int32_t cancelled = asApplication("two", [] { return setTimer("two", 5), setTimer("never", 6); });
    EXPECT_EQ(mdlSystem_cancelTimer(cancelled), MDL_SUCCESS);
    EXPECT_EQ(mdlSystem_cancelTimer(cancelled), MDL_ERROR);
    session().advanceTicks(4);
    EXPECT_TRUE(fired.empty());
    session().advanceTicks(1);
    EXPECT_EQ(fired, (std::vector<std::string>{at("early", 5, 1), at("two", 5, 2)}));
    session().advanceTicks(1000);
    session().advanceTicks(1000);
    EXPECT_EQ(fired.back(), at("late", 60, 1));
    EXPECT_EQ(fired.size(), 3u);
    EXPECT_EQ(mdlSystem_getTicks(), start + 2005);
}

TEST_F(Timers, GoWithTheirApplicationAndMaySetThemselvesAgain) {
    fired.clear();
    names.clear();
    asApplication("ends", [] { setTimer("never", 1); });
    session().endApplication(application("ends"));
    asApplication("stays", [] { setTimer("again", 1); });
    session().advanceTicks(100);
    EXPECT_EQ(fired.size(), 5u);
    for (const std::string& timer : fired) EXPECT_EQ(timer.find("never"), timer.npos);
    int32_t id = 0;
    EXPECT_EQ(mdlSystem_setTimerFunction(&id, 1, reinterpret_cast<void*>(ring)), MDL_ERROR) << "nobody's turn";
}

TEST_F(Settings, ParametersKeepTheirTypes) {
    double size = 2.5;
    int32_t color = 7;
    EXPECT_EQ(mdlParams_setActive(&size, MDL_PARAM_TEXT_SIZE), MDL_SUCCESS);
    EXPECT_EQ(mdlParams_setActive(&color, MDL_PARAM_COLOR), MDL_SUCCESS);
    size = 0.0, color = 0;
    EXPECT_EQ(mdlParams_getActive(&size, MDL_PARAM_TEXT_SIZE), MDL_SUCCESS);
    EXPECT_EQ(mdlParams_getActive(&color, MDL_PARAM_COLOR), MDL_SUCCESS);
    EXPECT_EQ(size, 2.5);
    EXPECT_EQ(color, 7);
    EXPECT_EQ(mdlParams_getActive(&color, 1000), MDL_ERROR);

    int32_t before = 0, after = 0;
    mdlParams_getActive(&before, MDL_PARAM_GRAPHIC_GROUP);
    mdlSystem_updateGraphicGroup();
    mdlParams_getActive(&after, MDL_PARAM_GRAPHIC_GROUP);
    EXPECT_EQ(after, before + 1);
}

TEST_F(Settings, TheWorkModeFollowsItsVariable) {
    EXPECT_EQ(mdlSystem_getWorkmode(), 0);
    for (const auto& [name, mode] : {std::pair("DWG", 1), {"V7", 2}, {"DGN", 0}, {"dwg", 0}}) {
        mdlSystem_defineCfgVar("MS_WORKMODE", name, 4);
        EXPECT_EQ(mdlSystem_getWorkmode(), mode) << name;
        EXPECT_EQ(tcbP->workmode, mode);
    }
}

TEST_F(Settings, KeyInsWaitInTheirOrder) {
    mdlInput_sendKeyin("second", 0, -1, nullptr);
    mdlInput_sendKeyin("first", 1, 0, "ROADS");
    mdlInput_sendKeyin("third", 0, 99, nullptr);
    EXPECT_EQ(mdlInput_sendKeyin(nullptr, 0, -1, nullptr), MDL_ERROR);
    const auto& queue = host::keyInQueue();
    ASSERT_EQ(queue.size(), 3u);
    EXPECT_EQ(queue[0].text + queue[1].text + queue[2].text, "firstsecondthird");
    EXPECT_EQ(queue[0].task, "ROADS");
    EXPECT_TRUE(queue[0].literal);
}

TEST_F(Settings, ThePreferenceFileIsMadeWhenItIsNotThere) {
    for (const int mode : {MDL_RSC_READ, MDL_RSC_WRITE, MDL_RSC_READ}) {
        RscHandle handle = 0;
        EXPECT_EQ(mdlDialog_userPrefFileOpen(&handle, mode), MDL_SUCCESS);
        EXPECT_NE(handle, 0);
        EXPECT_EQ(mdlResource_closeFile(handle), MDL_SUCCESS);
        EXPECT_TRUE(std::filesystem::exists(path("user.rsc")));
    }
    mdlSystem_defineCfgVar("MS_USERPREF", path("in/folders/user.rsc").c_str(), 4);
    RscHandle handle = 0;
    EXPECT_EQ(mdlDialog_userPrefFileOpen(&handle, MDL_RSC_READ), MDL_SUCCESS);
}

TEST_F(Settings, ProgramsStartWithTheirArguments) {
    const std::string script = "printf '%s|' \"$@\" > " + path("part") + "; mv " + path("part") + " " + path("said");
    const char* arguments[] = {"-c", script.c_str(), "sh", "a b", "c"};
    EXPECT_EQ(mdlExternal_extStartProgram("/bin/sh", 5, arguments), MDL_SUCCESS);
    for (int wait = 0; wait < 500 && !std::filesystem::exists(path("said")); ++wait) usleep(10000);
    EXPECT_EQ(readFile("said"), "a b|c|");
    EXPECT_EQ(mdlExternal_extStartProgram("/bin/no-such-program", 0, nullptr), MDL_ERROR);
}

}  // namespace
