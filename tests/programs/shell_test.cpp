// mcshell, run as the host runs it.
#include <gmock/gmock.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/session_fixture.h"

namespace {

namespace fs = std::filesystem;

struct Outcome {
    int status;
    std::string out, error;
};

class Shell : public SessionTest {
  protected:
    Shell() {
        fs::create_directories(path("drive_c/jobs"));
        fs::create_directories(path("spool/LPT1"));
        writeFile("drive_c/jobs/A.ps", "a\n");
        writeFile("drive_c/jobs/b.ps", "b\n");
        writeFile("drive_c/note.txt", "note\n");
        setenv("MC_DRIVE_C", path("drive_c").c_str(), 1);
        setenv("MC_SPOOL", path("spool").c_str(), 1);
    }

    // Words are quoted as in a shell of the system; the test's folder is the current one.
    Outcome run(const std::string& command) {
        const std::string line =
            "cd '" + path("") + "' && '" BUILD_DIR "/bin/mcshell' /c " + command + " >out 2>error </dev/null";
        const int status = std::system(line.c_str());
        return {WEXITSTATUS(status), readFile("out"), readFile("error")};
    }
    // Files and folders below a folder of the test's own, sorted.
    std::vector<std::string> below(const std::string& folder) const {
        std::vector<std::string> names;
        for (const auto& entry : fs::recursive_directory_iterator(path(folder)))
            names.push_back(fs::relative(entry.path(), path(folder)));
        std::ranges::sort(names);
        return names;
    }
    Outcome runBatch(const std::string& text, const std::string& arguments = "") {
        writeFile("job.bat", text);
        return run("JOB.BAT " + arguments);
    }
};

using testing::ElementsAre;

TEST_F(Shell, CopiesFilesToFilesFoldersAndPrinters) {
    EXPECT_EQ(run("COPY 'c:\\NOTE.txt' 'c:\\jobs' /y").out, "1 file copied\n");
    EXPECT_EQ(run("copy 'c:\\jobs\\*.ps' lpt1:").status, 0);
    EXPECT_EQ(run("copy 'c:\\note.txt' NUL").status, 0);
    EXPECT_THAT(below("spool"), ElementsAre("LPT1", "LPT1/A.ps", "LPT1/b.ps"));
    EXPECT_EQ(run("copy 'c:\\jobs\\a.ps+c:\\jobs\\b.ps' 'c:\\ab'").status, 0);
    EXPECT_EQ(readFile("drive_c/ab"), "a\nb\n");
    EXPECT_EQ(run("copy 'c:\\jobs\\a.ps' + 'c:\\note.txt' LPT1").status, 0);
    EXPECT_EQ(readFile("spool/LPT1/A-2.ps"), "a\nnote\n");
    EXPECT_EQ(run("copy 'c:\\note.txt'").status, 0);  // into the current folder
    EXPECT_EQ(readFile("note.txt"), "note\n");
    EXPECT_EQ(run("print /N:2 /d:LPT1 'c:\\note.txt'").status, 0);
    EXPECT_EQ(readFile("spool/LPT1/note-2.txt"), "note\n");
}

TEST_F(Shell, WorksOnFilesAndFolders) {
    EXPECT_EQ(run("md 'c:\\x\\y' 'c:\\z'").status, 0);
    EXPECT_EQ(run("xcopy 'c:\\jobs' 'c:\\x\\y\\in'").out, "2 files copied\n");
    EXPECT_EQ(run("ren 'c:\\x\\y\\in\\*.ps' '*.old'").status, 0);
    EXPECT_EQ(run("rename 'c:\\x\\y\\in\\a.old' 'sheet?.*'").status, 0);
    EXPECT_THAT(below("drive_c/x"), ElementsAre("y", "y/in", "y/in/b.old", "y/in/sheet.old"));
    EXPECT_EQ(run("move 'c:\\x\\y\\in\\*' 'c:\\z'").out, "2 files moved\n");
    EXPECT_EQ(run("move 'c:\\x\\y' 'c:\\w'").status, 0);
    EXPECT_THAT(below("drive_c/z"), ElementsAre("b.old", "sheet.old"));
    EXPECT_TRUE(fs::is_directory(path("drive_c/w/in")));
    EXPECT_EQ(run("del 'c:\\z\\*' 'c:\\note.txt'").status, 0);
    EXPECT_EQ(run("dir /b 'c:\\'").out, "jobs\nw\nx\nz\n");
    EXPECT_THAT(run("dir 'c:\\jobs\\a*'").out, testing::MatchesRegex("....-..-.. ..:..  +2 A\\.ps\n"));
}

TEST_F(Shell, CopiesTrees) {
    fs::create_directories(path("drive_c/jobs/deep/empty"));
    writeFile("drive_c/jobs/deep/c.ps", "c\n");
    EXPECT_EQ(run("xcopy 'c:\\jobs' 'c:\\flat'").status, 0);
    EXPECT_THAT(below("drive_c/flat"), ElementsAre("A.ps", "b.ps"));
    EXPECT_EQ(run("xcopy 'c:\\jobs' 'c:\\full' /S").status, 0);
    EXPECT_THAT(below("drive_c/full"), ElementsAre("A.ps", "b.ps", "deep", "deep/c.ps"));
    EXPECT_EQ(run("xcopy 'c:\\jobs' 'c:\\all' /E").status, 0);
    EXPECT_THAT(below("drive_c/all"), ElementsAre("A.ps", "b.ps", "deep", "deep/c.ps", "deep/empty"));
    EXPECT_EQ(run("xcopy 'c:\\jobs' 'c:\\all' /E /D").out, "0 files copied\n");
    EXPECT_EQ(run("xcopy 'c:\\note.txt' 'c:\\new\\'").status, 0);
    EXPECT_EQ(readFile("drive_c/new/note.txt"), "note\n");
    EXPECT_EQ(run("xcopy 'c:\\jobs' 'c:\\jobs\\deep' /E").status, 1);
}

TEST_F(Shell, RefusesWithOneClearLine) {
    struct Case {
        const char* command;
        int status;
        const char* error;
    };
    for (const Case& c : {
             Case{"copy", 2, "write COPY SOURCE"},
             {"copy 'c:\\none' 'c:\\x'", 1, "c:\\none: No such file"},
             {"copy 'c:\\jobs' 'c:\\x'", 1, "c:\\jobs: that is a folder"},
             {"copy 'c:\\note.txt' lpt2", 1, "lpt2: there is no such printer"},
             {"copy 'c:\\note.txt' 'c:\\note.txt'", 1, "note.txt onto itself"},
             {"copy 'c:\\note.txt' 'c:\\none\\x'", 1, "No such file"},
             {"copy a b c", 2, "write COPY"},
             {"copy + a", 2, "write COPY"},
             {"del 'c:\\none*'", 1, "No such file"},
             {"del 'c:\\jobs'", 1, "that is a folder; write c:\\jobs\\*"},
             {"md 'c:\\jobs'", 1, "already"},
             {"move 'c:\\jobs\\*' 'c:\\none'", 1, "need a folder"},
             {"move 'c:\\none' 'c:\\x'", 1, "No such file"},
             {"ren 'c:\\note.txt' 'c:\\x'", 2, "without a folder"},
             {"ren 'c:\\jobs\\b.ps' A.ps", 1, "File exists"},
             {"dir 'c:\\none'", 1, "No such file"},
             {"cd 'c:\\none'", 1, "No such file"},
             {"chdsk x", 2, "write CHDSK"},
             {"print /n:x 'c:\\note.txt'", 2, "number of copies"},
             {"print /d:LPT2 'c:\\note.txt'", 1, "no such printer"},
             {"nosuch", 127, "no command of mcshell"},
             {"'dir | sort'", 2, "\"|\" isn't understood"},
             {"'dir >'", 2, "the name of a file is missing"},
             {"'dir >LPT1'", 2, "write it to a file, and COPY that"},
         }) {
        SCOPED_TRACE(c.command);
        const Outcome outcome = run(c.command);
        EXPECT_EQ(outcome.status, c.status);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(std::ranges::count(outcome.error, '\n'), 1);
        EXPECT_THAT(outcome.error, testing::StartsWith("mcshell: "));
        EXPECT_THAT(outcome.error, testing::HasSubstr(c.error));
    }
    EXPECT_EQ(readFile("drive_c/note.txt"), "note\n");
    EXPECT_EQ(readFile("drive_c/jobs/A.ps"), "a\n");
}

TEST_F(Shell, SendsOutputElsewhereAndPassesAProgramsStatusOn) {
    EXPECT_EQ(run("'dir /b c:\\jobs > c:\\list'").out, "");
    EXPECT_EQ(run("'echo more>>c:\\list'").status, 0);
    EXPECT_EQ(readFile("drive_c/list"), "A.ps\nb.ps\nmore\n");
    EXPECT_EQ(run("'del c:\\none 2>nul'").error, "");
    EXPECT_EQ(run("'del c:\\none >both 2>&1'").error, "");
    EXPECT_THAT(readFile("both"), testing::HasSubstr("No such file"));
    for (const char* quoted : {"copy '>x' nul", "'copy \">x\" nul'"}) {
        writeFile(">x", "");
        EXPECT_EQ(run(quoted).out, "1 file copied\n") << quoted;
        EXPECT_FALSE(fs::exists(path("x"))) << quoted;
    }
    EXPECT_EQ(run("SH -c 'echo from sh; exit 9'").status, 9);
    EXPECT_EQ(readFile("out"), "from sh\n");
}

TEST_F(Shell, RunsBatchFiles) {
    writeFile("drive_c/called.cmd", "@echo called [%~1] in %~nx0\r\nexit /b 4\r\n");
    const Outcome outcome = runBatch(
        "@ECHO OFF\r\nrem nothing\r\n:: nothing\r\n"
        "set NAME=a b\r\n"
        "echo %1 %~2 %NAME% 100%% %9[%*] \"q\"\r\n"
        "if \"%3\"==\"\" echo no third\r\n"
        "IF NOT /I x==y echo wrong order\r\n"
        "if /i %1==ONE if exist c:\\NOTE.TXT echo nested\r\n"
        "call c:\\called \"x y\"\r\n"
        "if errorlevel 5 goto :bad\r\n"
        "if not errorlevel 4 goto bad\r\n"
        "echo level %ERRORLEVEL%\r\n"
        "cd c:\\jobs\r\ncd..\r\nCD.\\jobs\r\n"
        "dir /b *.ps > c:\\list\r\n"
        "goto End\r\n"
        ":bad\r\necho bad\r\n"
        ":END\r\n"
        "copy c:\\none x 2>nul\r\n",
        "one 'two words'");
    EXPECT_EQ(outcome.status, 1);  // of the last command
    EXPECT_EQ(
        outcome.out,
        "one two words a b 100% [one \"two words\"] \"q\"\nno third\nnested\ncalled [x y] in called.cmd\nlevel 4\n");
    EXPECT_THAT(outcome.error, testing::HasSubstr("job.bat:7: write IF"));
    EXPECT_EQ(readFile("drive_c/list"), "A.ps\nb.ps\n");
}

TEST_F(Shell, ABatchFileTellsTheLineThatIsWrong) {
    struct Case {
        const char *text, *error;
        int status;
    };
    for (const Case& c : {
             Case{"rem\nfor %%i in (a) do echo x\n", "job.bat:2: FOR isn't understood", 2},
             {"dir | sort\n", "job.bat:1: \"|\" isn't understood", 2},
             {"goto none\necho not here\n", "no line \":NONE\"", 2},
             {"\n\ncopy none x\n", "job.bat:3: COPY: none: No such file", 1},
             {"call :sub\n", "CALL takes the name", 2},
             {"exit /b x\n", "EXIT takes a number", 2},
             {"call job.bat\n", "call each other too deeply", 1},
             {"nosuch a\n", "job.bat:1: nosuch: no command", 127},
         }) {
        const Outcome outcome = runBatch(c.text);
        EXPECT_EQ(outcome.status, c.status) << c.text;
        EXPECT_EQ(outcome.out, "");
        EXPECT_THAT(outcome.error, testing::HasSubstr(c.error));
    }
    EXPECT_EQ(runBatch("echo one\nexit 3\necho two\n").status, 3);
    EXPECT_EQ(readFile("out"), "one\n");
    writeFile("next.bat", "echo next\n");
    EXPECT_EQ(runBatch("next.bat\necho not here\n").out, "next\n");
}

}  // namespace
