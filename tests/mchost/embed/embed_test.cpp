// A session that is held from C: what the calls refuse, and the caller's own functions. Two sessions one after the
// other are in examples/embed.
#include "mchost/mdl/embed.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>
#include <string>

#include "mchost/mdl/file_dialogs.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/state.h"
#include "mchost/mdl/system.h"

namespace {

using testing::HasSubstr;

// What the caller's functions got and give.
struct Caller {
    std::deque<std::string> answers;
    std::string given, console, messages, keyIns;
};

const char* answer(void* data, const char*) {
    auto& caller = *static_cast<Caller*>(data);
    if (caller.answers.empty()) return nullptr;
    caller.given = caller.answers.front();
    caller.answers.pop_front();
    return caller.given.c_str();
}

void write(void* data, int32_t kind, const char* text) {
    auto& caller = *static_cast<Caller*>(data);
    (kind == MCHOST_TEXT_CONSOLE ? caller.console : caller.messages) += text;
}

int32_t carryOut(void* data, const char* text) {
    static_cast<Caller*>(data)->keyIns += text;
    return std::string(text) == "fit view";
}

class Embedded : public testing::Test {
  protected:
    ~Embedded() override { mchost_end(); }
    int begin() {
        McHostSettings settings{};
        settings.size = sizeof settings;
        settings.answer = answer;
        settings.write = write;
        settings.keyIn = carryOut;
        settings.data = &caller;
        return mchost_begin(&settings);
    }
    Caller caller;
};

TEST_F(Embedded, WhatCannotBeDoneIsToldAndLeavesNoSession) {
    EXPECT_EQ(mchost_end(), MDL_ERROR);
    EXPECT_EQ(mchost_serve(), MDL_ERROR);
    EXPECT_EQ(mchost_define("A", "b", 4), MDL_ERROR);
    McHostSettings settings{};
    settings.size = sizeof settings;
    settings.answers = "/nowhere/answers";
    EXPECT_EQ(mchost_begin(&settings), MDL_ERROR);
    EXPECT_THAT(mchost_lastError(), HasSubstr("/nowhere/answers"));
    EXPECT_EQ(mdlSystem_getSessionNumber(), 0);
    ASSERT_EQ(begin(), MDL_SUCCESS);
    EXPECT_STREQ(mchost_lastError(), "");
    EXPECT_EQ(mchost_begin(nullptr), MDL_ERROR);
    EXPECT_THAT(mchost_lastError(), HasSubstr("running already"));
    for (const char* bad : {"", "A B", "A=B"}) EXPECT_EQ(mchost_define(bad, "b", 4), MDL_ERROR) << bad;
    EXPECT_EQ(mchost_configure("/nowhere/mchost.cfg", 3), MDL_ERROR);
    EXPECT_THAT(caller.messages, HasSubstr("/nowhere/mchost.cfg: the configuration can't be read"));
    EXPECT_EQ(mchost_load("nowhere", nullptr, 0, nullptr), MDL_ERROR);
    EXPECT_THAT(mchost_lastError(), HasSubstr("no application \"nowhere\""));
    EXPECT_EQ(mchost_openDesignFile("/nowhere/a.mcd"), MDL_ERROR);
    EXPECT_THAT(mchost_lastError(), HasSubstr("/nowhere/a.mcd"));
    EXPECT_EQ(mchost_end(), 0);
}

int asks(int argc, char** argv) {
    if (argc != 3 || std::string(argv[1]) != "USER") return 5;
    toolSubsystem_printf("%s\n", argv[2]);
    mdlInput_sendKeyin("fit view", 0, -1, nullptr);
    mdlInput_sendKeyin("zoom in", 0, -1, nullptr);
    mdlState_startPrimitive([](Point3d* point, int32_t) { toolSubsystem_printf("%g\n", point->x); }, nullptr, 0, 0);
    mdlOutput_prompt("From");
    return 0;
}

TEST_F(Embedded, TheCallersFunctionsAnswerAndSeeWhatIsWritten) {
    ASSERT_EQ(begin(), MDL_SUCCESS);
    caller.answers = {"3,4", "what", "end"};
    const char* argument = "gr\xc3\xb8nn";
    EXPECT_EQ(mchost_start("asking", asks, nullptr, 1, &argument), MDL_SUCCESS);
    EXPECT_EQ(mchost_serve(), MDL_SUCCESS);
    EXPECT_EQ(caller.console, "gr\xc3\xb8nn\n3\n");
    EXPECT_THAT(caller.messages, HasSubstr("From\n"));
    EXPECT_THAT(caller.messages, HasSubstr("\"what\" isn't a point."));
    EXPECT_THAT(caller.keyIns, HasSubstr("fit view"));
    EXPECT_EQ(mchost_end(), 0);
    EXPECT_THAT(caller.messages, HasSubstr("not carried out, do it by hand: zoom in"));
    EXPECT_THAT(caller.messages, testing::Not(HasSubstr("by hand: fit view")));
}

TEST_F(Embedded, AStatusOfAnApplicationIsThatOfTheSession) {
    ASSERT_EQ(begin(), MDL_SUCCESS);
    EXPECT_EQ(mchost_start("asking", asks, nullptr, 0, nullptr), MDL_SUCCESS);
    EXPECT_EQ(mchost_end(), 5);
}

}  // namespace
