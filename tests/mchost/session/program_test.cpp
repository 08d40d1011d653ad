// Applications loaded from shared objects, by the session and by the program.
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "mchost/mdl/system.h"
#include "mchost/mdl/win32.h"
#include "tests/support/recorder.h"
#include "tests/support/session_fixture.h"

namespace {

const std::string modules = BUILD_DIR "/lib/tests/";

using LoadedApplications = SessionTest;

TEST_F(LoadedApplications, RunTheirMainAndLeaveMemoryAtTheEnd) {
    MdlDesc* desc = session().loadApplication(modules + "probe.so", "PROBE", "USER", {"arguments", "b c"});
    ASSERT_NE(desc, nullptr);
    EXPECT_EQ(front().consoleText, "[USER][arguments][b c]\n");
    EXPECT_EQ(host::modulePath(desc), modules + "probe.so");
    EXPECT_NE(GetModuleHandleA("probe.dll"), nullptr);
    session().endApplication(desc);
    EXPECT_EQ(GetModuleHandleA("probe.dll"), nullptr);
    session().loadApplication(modules + "probe.so", "PROBE", "USER", {"exit", "4"});
    EXPECT_EQ(mdlSystem_findMdlDesc("PROBE"), nullptr);
    EXPECT_EQ(session().exitStatus(), 4);
}

TEST_F(LoadedApplications, AreFoundAlongTheirPath) {
    mdlSystem_defineCfgVar("MS_MDL", (path("none") + ";" + modules).c_str(), 4);
    for (const char* program : {"probe", "probe.so", "probe.ma"}) {
        EXPECT_EQ(mdlSystem_loadMdlProgram(program, program, nullptr), MDL_SUCCESS) << program;
        EXPECT_NE(mdlSystem_findMdlDesc(program), nullptr);
    }
    EXPECT_EQ(mdlSystem_loadMdlProgram("WEBBROWS", "WEBBROWS", nullptr), MDL_ERROR);
    EXPECT_TRUE(front().messages.empty());
}

TEST_F(LoadedApplications, WhatIsNoneIsRefusedWithOneLine) {
    const std::string text = writeFile("text.so", "not a module");
    for (const std::string& module : {text, path("none.so"), modules + "no_main.so"}) {
        front().clear();
        EXPECT_EQ(session().loadApplication(module, "BAD"), nullptr);
        ASSERT_EQ(front().messages.size(), 1u);
        EXPECT_NE(front().messages[0].brief.find(module), std::string::npos);
        EXPECT_EQ(mdlSystem_findMdlDesc("BAD"), nullptr);
    }
}

struct Outcome {
    int status;
    std::string out, error;
};

// Runs mchost in the test's folder by a shell.
class Program : public SessionTest {
  protected:
    Outcome run(const std::string& arguments, const std::string& output = "out") {
        const std::string command = "cd '" + path("") + "' && unset MS_MDL && exec '" BUILD_DIR "/bin/mchost' " +
                                    arguments + " >" + output + " 2>error </dev/null";
        const int status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, readFile("out"), readFile("error")};
    }
    const std::string probe_ = "'" + modules + "probe' ";
};

TEST_F(Program, GivesAnApplicationItsArgumentsUntouched) {
    const Outcome outcome = run(probe_ + "arguments --list -x --set A=B --help");
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_EQ(outcome.out, "[USER][arguments][--list][-x][--set][A=B][--help]\n");
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(run("--new l.mcd --list-name MS_INITAPPS " + probe_ + "arguments").out, "[MS_INITAPPS][arguments]\n");
    EXPECT_EQ(run(probe_ + "arguments 'Bl\xc3\xa5 \xc3\x98y'").out, "[USER][arguments][Bl\xc3\xa5 \xc3\x98y]\n");
}

TEST_F(Program, FindsAnApplicationAlongThePathThatIsSet) {
    for (const char* name : {"probe", "probe.so"}) {
        EXPECT_EQ(run("--set 'MS_MDL=/none;" + modules + "' " + name).status, 0) << name;
    }
    const Outcome outcome = run("nosuchapp");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.error.find("nosuchapp"), std::string::npos);
    EXPECT_EQ(std::count(outcome.error.begin(), outcome.error.end(), '\n'), 1);
}

TEST_F(Program, AWrongCallShowsUsage) {
    for (const char* call : {"", "--nosuchoption app", "--open", "--set novalue app", "--set =x app",
                             "--set 'a b=x' app", "--list-name MS_DGNAPPS app", "app --and", "app --and --x",
                             "--open a.mcd --new b.mcd app", "--set A=B", "--3d app", "''"}) {
        SCOPED_TRACE(call);
        const Outcome outcome = run(call);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_TRUE(outcome.error.starts_with("mchost: "));
        EXPECT_NE(outcome.error.find("Usage: mchost"), std::string::npos);
    }
    EXPECT_NE(run("--nosuchoption app").error.find("no such option: --nosuchoption"), std::string::npos);
    EXPECT_EQ(run("--help").status, 0);
    EXPECT_NE(run("--version").out.find("mchost 6."), std::string::npos);
}

TEST_F(Program, EveryProgramNamesAnOptionThatItDoesNotKnow) {
    for (const char* program : {"mchost", "mccel", "mcrsc", "mcshell"}) {
        const auto call = [&](const std::string& arguments) {
            const std::string line =
                std::string(BUILD_DIR "/bin/") + program + " " + arguments + " >'" + path("out") + "' 2>&1 </dev/null";
            const int status = WEXITSTATUS(std::system(line.c_str()));
            return std::to_string(status) + " " + readFile("out");
        };
        EXPECT_EQ(call("--version").substr(0, 4 + std::strlen(program)), "0 " + std::string(program) + " 6");
        EXPECT_EQ(call("--nonsense").find("--nonsense") != std::string::npos, true) << program;
        EXPECT_NE(call("--nonsense")[0], '0');
    }
}

TEST_F(Program, TellsWhichApplicationsThereAre) {
    const auto isTold = [](const std::string& text) {
        const size_t line = text.find("\n  probe ");
        return line != text.npos && text.find("  does what its first argument says\n", line) != text.npos;
    };
    writeFile("probe.cfg", "MS_MDL = " + modules + "\n");
    EXPECT_TRUE(isTold(run("--config probe.cfg --help").out));
    const Outcome alone = run("--set 'MS_MDL=" + modules + "' ");
    EXPECT_EQ(alone.status, 2);
    EXPECT_TRUE(isTold(alone.error)) << alone.error;
}

TEST_F(Program, SeveralApplicationsRunInOneSession) {
    EXPECT_EQ(run(probe_ + "arguments a --and " + probe_ + "arguments --and " + probe_ + "return 7").out,
              "[USER][arguments][a]\n[USER][arguments]\n");
    EXPECT_EQ(run(probe_ + "return 2 --and " + probe_ + "return 0").status, 2);
    EXPECT_EQ(run(probe_ + "arguments --and nosuchapp").status, 1);
}

TEST_F(Program, TheListsOfTheConfigurationAreStarted) {
    const std::string lists =
        "--set 'MS_INITAPPS=" + modules + "probe;" + modules + "probe.so' --set 'MS_DGNAPPS=" + modules + "probe' ";
    EXPECT_EQ(run(lists + probe_ + "arguments").out, "[MS_INITAPPS]\n[MS_INITAPPS]\n[USER][arguments]\n");
    EXPECT_EQ(run(lists + "--new a.mcd").out, "[MS_INITAPPS]\n[MS_INITAPPS]\n[MS_DGNAPPS]\n");
    const Outcome missing = run("--set MS_INITAPPS=nosuchapp " + probe_);
    EXPECT_EQ(missing.status, 1);
    EXPECT_NE(missing.error.find("\"nosuchapp\" of MS_INITAPPS"), std::string::npos);
}

TEST_F(Program, WhatAnApplicationBrowsesIsOpenedByTheSystem) {
    const Recorder recorder(path(""));
    recorder.add("opener");
    writeFile("a page.htm", "<p>");
    const std::string opener = "--set MC_OPENER='" + path("bin/opener") + "' " + probe_;
    const auto opened = [&](const std::string& keyIn) {
        const Outcome outcome = run(opener + "key '" + keyIn + "'");
        std::string log;
        for (int i = 0; outcome.status == 0 && i < 100 && log.empty(); ++i) {
            usleep(20000);
            log = recorder.take();
        }
        return std::to_string(outcome.status) + " " + log;
    };
    EXPECT_EQ(opened("browse url http://example.org/"), "0 [opener][http://example.org/]\n");
    EXPECT_EQ(opened("browse file " + path("a page.htm")), "0 [opener][" + path("a page.htm") + "]\n");
    EXPECT_EQ(opened("browse file /none.htm"), "1 ");
    EXPECT_EQ(run(probe_ + "task WEBBROWS").out, "there\n");
}

TEST_F(Program, FailedWorkIsStatusOne) {
    struct Case {
        std::string call;
        int status;
    };
    writeFile("bad.cfg", "# fine\nMC_X = 1\nwhat is this\n");
    writeFile("foreign.mcd", "not a design file");
    for (const Case& c : {Case{probe_ + "return 0", 0}, Case{probe_ + "return 7", 1}, Case{probe_ + "return 256", 1},
                          Case{probe_ + "fail", 1}, Case{probe_ + "exit 0", 0}, Case{probe_ + "exit 3", 1},
                          Case{"--config none.cfg " + probe_, 1}, Case{"--config bad.cfg " + probe_, 1},
                          Case{"--open none.mcd " + probe_, 1}, Case{"--open foreign.mcd " + probe_, 1},
                          Case{"'" + modules + "no_main'", 1}}) {
        EXPECT_EQ(run(c.call).status, c.status) << c.call;
    }
    EXPECT_NE(run("--config bad.cfg " + probe_).error.find("bad.cfg:3"), std::string::npos);
    EXPECT_EQ(readFile("foreign.mcd"), "not a design file");
}

TEST_F(Program, VariablesComeFromTheFilesAndTheCall) {
    writeFile("own.cfg", "  ONE=1 \n# ONE = 2\n\nTWO = $(ONE)$(ONE)\r\nHOME_OF=$(MCHOST_DIR)\nMC_DIR = /own");
    EXPECT_EQ(run("--config own.cfg " + probe_ + "variable TWO").out, "11\n");
    EXPECT_EQ(run("--config own.cfg --set ONE=3 " + probe_ + "variable TWO").out, "33\n");
    EXPECT_EQ(run("--config own.cfg " + probe_ + "variable HOME_OF").out, BUILD_DIR "/bin\n");
    EXPECT_EQ(run("--config own.cfg " + probe_ + "variable MC_DIR").out, "/own\n");
    EXPECT_EQ(run("--set EMPTY= --set B=2 " + probe_ + "variable B").out, "2\n");
    EXPECT_EQ(run(probe_ + "variable MS_APPRSC").out, BUILD_DIR "/lib/mclib.rsc\n");
}

TEST_F(Program, DrawsInANewFileAndGoesOnInItLater) {
    EXPECT_EQ(run("--new road.mcd " + probe_ + "draw").out, "1\n");
    EXPECT_EQ(run("--open road.mcd " + probe_ + "draw").out, "2\n");
    const Outcome again = run("--new road.mcd " + probe_ + "draw");
    EXPECT_EQ(again.status, 1);
    EXPECT_NE(again.error.find("road.mcd"), std::string::npos);
    EXPECT_EQ(run("--open road.mcd " + probe_ + "draw").out, "3\n");
    EXPECT_EQ(run(probe_ + "draw").status, 1) << "no design file";
}

TEST_F(Program, AnApplicationOfAStartListHearsOfTheFileThatOpens) {
    EXPECT_EQ(run("--new a.mcd --list-name MS_DGNAPPS " + probe_ + "watch").out, "open: 0\na.mcd 1\n");
    EXPECT_EQ(run("--open a.mcd " + probe_ + "watch").out, "open: 1\n");
}

TEST_F(Program, AMessageIsOneLineOnStandardError) {
    const Outcome outcome = run(probe_ + "say 'bl\xc3\xa5'");
    EXPECT_EQ(outcome.error, "bl\xc3\xa5: try again\n");
    EXPECT_EQ(outcome.out, "");
}

TEST_F(Program, WhatIsLostOrLeftOverIsTold) {
    const Outcome full = run(probe_ + "arguments", "/dev/full");
    EXPECT_EQ(full.status, 1);
    EXPECT_NE(full.error.find("written in full"), std::string::npos);
    EXPECT_NE(run(probe_ + "key 'update right'").error.find("update right"), std::string::npos);
    setenv("MCHOST_TRACE_MEMORY", "1", 1);
    const std::string error = run(probe_ + "leak").error;
    unsetenv("MCHOST_TRACE_MEMORY");
    EXPECT_EQ(error.substr(0, 11), "not freed: ");
    EXPECT_NE(error.find("tests/probe.so"), std::string::npos);
}

}  // namespace
