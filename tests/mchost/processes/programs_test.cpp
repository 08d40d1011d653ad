// Programs found, started and waited for; processes; texts handed to the system.
#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "mchost/base/existing_path.h"
#include "mchost/mdl/external.h"
#include "mchost/mdl/win32.h"
#include "mchost/processes/open.h"
#include "mchost/processes/programs.h"
#include "tests/support/recorder.h"

namespace {

namespace fs = std::filesystem;

TEST(ArgumentLine, QuotesKeepWordsTogether) {
    using Words = std::vector<std::string>;
    const std::vector<std::pair<std::string, Words>> cases = {
        {"", {}},
        {" \t ", {}},
        {"a  b\tc ", {"a", "b", "c"}},
        {"\"a b\" c", {"a b", "c"}},
        {"a\"b c\"d", {"ab cd"}},
        {"\"\" x", {"", "x"}},
        {"a \"b c", {"a", "b c"}},
        {"c:\\a\\ 'x y'", {"c:\\a\\", "'x", "y'"}},
    };
    for (const auto& [line, words] : cases) EXPECT_EQ(host::wordsOf(line), words) << line;
}

TEST(ExistingPath, PartsAreFoundWhateverTheirCase) {
    char pattern[] = "/tmp/pathXXXXXX";
    const fs::path folder = mkdtemp(pattern);
    fs::create_directories(folder / "Jobs/a");
    const std::string found = (folder / "Jobs/a").string();
    EXPECT_EQ(host::existingPath((folder / "JOBS/A").string()), found);
    EXPECT_EQ(host::existingPath((folder / "jobs//A/").string()), found);
    EXPECT_EQ(host::existingPath((folder / "jobs/b").string()), std::nullopt);
    std::string deep = folder.string();
    for (int part = 0; part < 100000; ++part) deep += "/a";
    EXPECT_EQ(host::existingPath(deep), std::nullopt);
    fs::remove_all(folder);
}

class Programs : public SessionTest {
  protected:
    int run(const char* program, const char* arguments = nullptr) {
        int status = -9;
        MdlExternalProgram* started = mdlExternal_startProgram(program, arguments);
        if (started == nullptr) return -5;
        EXPECT_GT(started->processId, 0);
        EXPECT_EQ(mdlExternal_wait(&status, started), MDL_SUCCESS);
        EXPECT_EQ(mdlExternal_wait(nullptr, started), MDL_ERROR);  // it has been given back
        return status;
    }
    std::string logAfterWaiting() {
        std::string ran;
        for (int i = 0; i < 100 && ran.empty(); ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            ran = recorder.take();
        }
        return ran;
    }

    Recorder recorder{path("")};
};

TEST_F(Programs, AreFoundWhateverTheCaseOfTheirNames) {
    const std::string tool = recorder.add("Tool", 1);
    recorder.add("TOOL", 2);
    recorder.add("tooL", 3);
    recorder.add("plain", 4);
    fs::create_directories(path("drive_c/Program Files"));
    fs::copy_file(tool, path("drive_c/Program Files/Tool.exe"));
    struct Case {
        const char* name;
        int status;
    };
    for (const Case& c : {Case{"Tool", 1},
                          {"TOOL", 2},
                          {"tool", 2},
                          {"PLAIN", 4},
                          {"\"plain\"", 4},
                          {"NoSuch", -5},
                          {"c:\\program files\\TOOL.EXE", 1},
                          {"\"C:\\Program Files\\Tool.exe\"", 1},
                          {"c:\\program files", -5},
                          {"c:\\none\\tool", -5},
                          {"", -5}})
        EXPECT_EQ(run(c.name), c.status) << c.name;
    writeFile("bin/text", "no program");
    EXPECT_EQ(run("text"), -5);  // nothing may run it
    fs::permissions(path("bin/text"), fs::perms::owner_all);
    EXPECT_EQ(run("text"), -5);  // the system can't
}

TEST_F(Programs, GetPathsOfTheSystemAndTheVariablesOfTheFamily) {
    recorder.add("tool", 0, "echo \"$MC_ONE|$OTHER|$MC_DRIVE_C\" >>'" + path("log") + "'; test ! -t 0 && cat");
    mdlSystem_defineCfgVar("MC_ONE", "one $(OTHER)", 4);
    mdlSystem_defineCfgVar("OTHER", "two", 4);
    const std::string drive = path("drive_c");
    EXPECT_EQ(run("tool", "c:\\a\\b.ps \"C:/bl\xe5 c\" c: /c:\\a bl\xe5"), 0);
    EXPECT_EQ(recorder.take(), "one two||" + drive + "\n[tool][" + drive + "/a/b.ps][" + drive +
                                   "/bl\xc3\xa5 c][c:][/c:\\a][bl\xc3\xa5]\n");
}

TEST_F(Programs, TellWhatEndedThem) {
    recorder.add("killed", 0, "kill -9 $$");
    EXPECT_EQ(run("killed"), 128 + 9);
    MdlExternalProgram* endless = mdlExternal_startProgram("sleep", "1000");
    ASSERT_NE(endless, nullptr);
    EXPECT_EQ(mdlExternal_terminateProgram(endless), MDL_SUCCESS);
    EXPECT_EQ(mdlExternal_terminateProgram(endless), MDL_ERROR);
    EXPECT_EQ(mdlExternal_terminateProgram(nullptr), MDL_ERROR);
    int status = 7;
    EXPECT_EQ(mdlExternal_wait(&status, nullptr), MDL_ERROR);
    EXPECT_EQ(status, -1);
}

TEST_F(Programs, AnEndThatWasSeenEarlyIsToldLater) {
    recorder.add("quick", 6);
    recorder.add("other", 0);
    MdlExternalProgram* quick = mdlExternal_startProgram("quick", nullptr);
    EXPECT_EQ(logAfterWaiting(), "[quick]\n");
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    run("other");  // collects what has ended
    int status = 0;
    EXPECT_EQ(mdlExternal_wait(&status, quick), MDL_SUCCESS);
    EXPECT_EQ(status, 6);
}

TEST_F(Programs, AProcessStartsInItsFolderAndIsWaitedFor) {
    recorder.add("tool", 0, "pwd >>'" + path("log") + "'; sleep 0.1");
    char line[] = "TOOL \"a b\"";
    Win32ProcessInfo process = {};
    fs::create_directories(path("drive_c/work"));
    ASSERT_EQ(
        CreateProcessA(nullptr, line, nullptr, nullptr, 0, WIN32_IDLE_PRIORITY, nullptr, "c:\\work", nullptr, &process),
        1);
    EXPECT_EQ(WaitForSingleObject(process.process, 0), 258u);
    EXPECT_EQ(WaitForSingleObject(process.process, 30000), 0u);
    EXPECT_EQ(WaitForSingleObject(process.process, WIN32_INFINITE), 0u);
    EXPECT_EQ(CloseHandle(process.process), 1);
    EXPECT_EQ(CloseHandle(process.process), 0);
    EXPECT_EQ(CloseHandle(process.thread), 1);
    EXPECT_EQ(WaitForSingleObject(process.process, 0), 0xFFFFFFFFu);
    EXPECT_EQ(recorder.take(), path("drive_c/work") + "\n[tool][a b]\n");
    char none[] = "";
    EXPECT_EQ(CreateProcessA(nullptr, none, nullptr, nullptr, 0, 0, nullptr, nullptr, nullptr, &process), 0);
}

TEST_F(Programs, TheSystemOpensFilesAndAddressesAndRunsCommandLines) {
    mdlSystem_defineCfgVar("MC_OPENER", recorder.add("opener").c_str(), 4);
    recorder.add("tool");
    const std::string file = writeFile("drive_c/my plan.pdf", "");
    struct Case {
        std::string text, ran;
    };
    for (const Case& c : {Case{"c:\\My Plan.PDF", "[opener][" + file + "]\n"},
                          {"\"c:\\my plan.pdf\"", "[opener][" + file + "]\n"},
                          {"https://host/a b", "[opener][https://host/a b]\n"},
                          {"TOOL \"a b\"", "[tool][a b]\n"}}) {
        EXPECT_TRUE(host::handToSystem(c.text)) << c.text;
        EXPECT_EQ(logAfterWaiting(), c.ran);
    }
    EXPECT_FALSE(host::handToSystem("c:\\none.pdf"));
    EXPECT_FALSE(host::handToSystem(""));
}

}  // namespace
