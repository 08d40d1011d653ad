// Command lines and programs, stored settings, network names.
#include <gmock/gmock.h>
#include <sys/wait.h>

#include <chrono>
#include <cstring>
#include <string>
#include <thread>

#include "mchost/session/keyin.h"
#include "mclib/frame/external.h"
#include "mclib/frame/win32.h"
#include "tests/support/library_fixture.h"
#include "tests/support/recorder.h"

namespace {

class CommandLines : public LibraryTest {
  protected:
    CommandLines() { mdlSystem_defineCfgVar("COMSPEC", recorder.add("Shell", 5).c_str(), 4); }

    // The status of a run that is waited for; -2 when the call itself failed.
    static int run(const char* line) {
        int status = 0;
        return mclibExternal_executeCommandLine(line, &status) == MCLIB_SUCCESS ? status : -2;
    }

    Recorder recorder{path("")};
};

TEST_F(CommandLines, GoToTheShellOrToAProgramByTheirFirstWord) {
    recorder.add("notepad", 3);
    recorder.add(".bat", 4);
    recorder.add("COPYX", 6);
    struct Case {
        const char* line;
        int status;
        const char* ran;
    };
    for (const Case& c : {
             Case{"copy a b", 5, "[Shell][/C][COPY][a][b]\n"},
             {"Rename a \"b c\"", 5, "[Shell][/C][RENAME][a][b c]\n"},
             {"dir", 5, "[Shell][/C][DIR]\n"},
             {"X.BAT one two", 5, "[Shell][/C][X.BAT][one][two]\n"},
             {"x.cmd", 5, "[Shell][/C][X.CMD]\n"},
             {"  md a", 5, "[Shell][/C][MD][a]\n"},
             {".BAT x", 4, "[.bat][x]\n"},
             {"copyx x", 6, "[COPYX][x]\n"},
             {"notepad a.txt", 3, "[notepad][a.txt]\n"},
             {"Notepad  \"a b\"  c\"d e\"f \"\"", 3, "[notepad][a b][cd ef][]\n"},
         }) {
        SCOPED_TRACE(c.line);
        EXPECT_EQ(run(c.line), c.status);
        EXPECT_EQ(recorder.take(), c.ran);
    }
    EXPECT_EQ(front().consoleText, "");
}

TEST_F(CommandLines, WhatCantBeStartedIsTold) {
    EXPECT_EQ(run("nosuch a b"), -2);
    EXPECT_EQ(front().consoleText, "Error executing external program\n<NOSUCH a b>\nErrorcode -101\n");
    front().clear();
    EXPECT_EQ(run(""), -2);
    mdlSystem_defineCfgVar("COMSPEC", "/none/mcshell", 4);
    EXPECT_EQ(run("del a"), -2);
    EXPECT_THAT(front().consoleText, testing::HasSubstr("</none/mcshell /C DEL a>"));
    EXPECT_EQ(mclibExternal_executeProgram(nullptr, nullptr, nullptr), MCLIB_ERROR);
}

TEST_F(CommandLines, AProgramThatNobodyWaitsForRunsOn) {
    recorder.add("slow", 0, "sleep 0.3");
    int status = -1;
    EXPECT_EQ(mclibExternal_executeProgram("slow", nullptr, &status), MCLIB_SUCCESS);
    EXPECT_EQ(status, -1);
    EXPECT_EQ(recorder.take(), "");
    std::string ran;
    for (int i = 0; i < 100 && ran.empty(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        ran = recorder.take();
    }
    EXPECT_EQ(ran, "[slow]\n");
}

TEST_F(CommandLines, RunNowhereInAnEditionWithoutPrograms) {
    mdlSystem_defineCfgVar("_MSDRAFT", "1", 4);
    int status = 9;
    EXPECT_EQ(mclibExternal_executeCommandLine("copy a b", &status), MCLIB_SUCCESS);
    EXPECT_EQ(status, 9);
    EXPECT_EQ(front().dialogs, 1);
    EXPECT_EQ(recorder.take(), "");
}

TEST_F(CommandLines, AFileToOpenIsAKeyInOfTheHost) {
    EXPECT_EQ(mclibExternal_openFile("c:\\help\\a b.pdf"), MCLIB_SUCCESS);
    ASSERT_EQ(host::keyInQueue().size(), 1u);
    EXPECT_EQ(host::keyInQueue()[0].text, "% c:\\help\\a b.pdf");
    EXPECT_EQ(host::keyInQueue()[0].task, "");
}

TEST_F(CommandLines, TheSystemsOwnCallsRunThemToo) {
    const std::string program = recorder.add("tool", 3);
    EXPECT_EQ(WEXITSTATUS(mclibWin32_execCommand(program.c_str(), "a b")), 3);
    EXPECT_EQ(WEXITSTATUS(mclibWin32_execCommand(program.c_str(), nullptr)), 3);
    EXPECT_NE(mclibWin32_execCommandAndWait("TOOL", "\"a b\" c", 0), 0);
    EXPECT_EQ(recorder.take(), "[tool][a][b]\n[tool]\n[tool][a b][c]\n");
    EXPECT_EQ(mclibWin32_execCommandAndWait("nosuch", nullptr, 1), 0);
}

TEST_F(CommandLines, ALineForTheShellHasTheNamesOfThisSystem) {
    const std::string program = recorder.add("tool");
    const std::string drive = path("drive_c");
    struct Case {
        const char *arguments, *given;
    };
    for (const Case& c : {Case{"\xf8.txt x:y", "[\xc3\xb8.txt][x:y]\n"},
                          {"c:\\f.txt -o=c:\\g", "[DRIVE/f.txt][-o=DRIVE/g]\n"},
                          {"\"c:\\a b\\$f\" 'c:\\it' c:\\a;:", "[DRIVE/a b/$f][DRIVE/it][DRIVE/a]\n"}}) {
        SCOPED_TRACE(c.arguments);
        EXPECT_EQ(mclibWin32_execCommand(program.c_str(), c.arguments), 0);
        std::string given = c.given;
        for (size_t at; (at = given.find("DRIVE")) != given.npos;) given.replace(at, 5, drive);
        EXPECT_EQ(recorder.take(), "[tool]" + given);
    }
}

class StoredSettings : public LibraryTest {
  protected:
    StoredSettings() {
        mdlSystem_defineCfgVar("MC_USER_SETTINGS", path("user.txt").c_str(), 4);
        mdlSystem_defineCfgVar("MC_MACHINE_SETTINGS", path("machine.txt").c_str(), 4);
    }

    // The text of a value; "none" when nothing was read.
    static std::string text(const char* key, const char* value, uint32_t room = 64) {
        char data[64] = "untouched";
        uint32_t type = 0;
        const uint32_t size = mclibWin32_getRegistryValue(key, value, &type, data, room);
        EXPECT_TRUE(size > 0 || std::strcmp(data, "untouched") == 0);
        if (size == 0) return "none";
        EXPECT_EQ(type, 1u);
        EXPECT_EQ(size, std::strlen(data) + 1);
        return data;
    }
};

TEST_F(StoredSettings, ThoseOfTheUserGoBeforeThoseOfTheMachine) {
    EXPECT_EQ(text("Software\\Maker", "Folder"), "none");
    writeFile("machine.txt", "[Software\\Maker]\nFolder = machine\nPlotter = A0\n");
    EXPECT_EQ(text("Software\\Maker", "Folder"), "machine");
    writeFile("user.txt", "[Software\\Maker]\nFolder = user\n");
    EXPECT_EQ(text("software\\MAKER", "FOLDER"), "user");
    EXPECT_EQ(text("Software\\Maker", "Plotter"), "A0");
    EXPECT_EQ(text("Software\\Maker", "Plotter", 3), "A0");
    EXPECT_EQ(text("Software\\Maker", "Plotter", 2), "none");
    EXPECT_EQ(text("Software", "Plotter"), "none");
}

TEST_F(LibraryTest, ANetworkNameComesFromTheTableOfMounts) {
    mdlSystem_defineCfgVar("MC_MOUNTS", path("mounts").c_str(), 4);
    writeFile("mounts", "//server/jobs\\040new " + path("drive_c") + " cifs rw 0 0\n");
    char name[260] = "untouched";
    EXPECT_EQ(mclibWin32_getGetUniversalFileName("c:\\a\\b.mcd", name), 1);
    EXPECT_STREQ(name, "\\\\server\\jobs new\\a\\b.mcd");
    std::strcpy(name, "untouched");
    EXPECT_EQ(mclibWin32_getGetUniversalFileName("/usr/b.mcd", name), 0);
    EXPECT_EQ(mclibWin32_getGetUniversalFileName("c:\\a\\b.mcd", nullptr), 0);
    EXPECT_EQ(mclibWin32_getGetUniversalFileName(("c:\\" + std::string(250, 'x')).c_str(), name), 0);  // too long
    EXPECT_STREQ(name, "untouched");
}

}  // namespace
