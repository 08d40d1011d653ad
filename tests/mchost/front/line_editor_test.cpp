// The line editor: keys, completion of file names, and a terminal to run it on.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <deque>
#include <filesystem>
#include <fstream>
#include <string>

#include "mchost/front/file_question.h"
#include "mchost/front/line_editor.h"
#include "mchost/front/terminal.h"
#include "mchost/mdl/file_dialogs.h"
#include "mchost/mdl/system.h"
#include "mchost/session/session.h"

namespace {

namespace fs = std::filesystem;
using host::Completion;
using host::FileQuestion;
using host::LineEdit;
using host::LineHelp;
using testing::ElementsAre;

// The line behind these keys, with | for the cursor.
std::string typed(std::string_view keys, const LineHelp& help = {}) {
    LineEdit line(help);
    for (const char key : keys)
        if (line.key(key) != LineEdit::State::typing) break;
    std::string text = line.text();
    return text.insert(line.cursor(), "|");
}

TEST(LineEditor, KeysMoveAndErase) {
    struct Case {
        const char* what;
        std::string keys, line;
    };
    const std::string left = "\x1b[D", right = "\x1b[C", home = "\x1b[H", end = "\x1b[F", erase = "\x1b[3~";
    const Case cases[] = {
        {"letters", "abc", "abc|"},
        {"in the middle", "ac" + left + "b", "ab|c"},
        {"back", "abc\x7f\x08", "a|"},
        {"back at the beginning",
         "\x7f"
         "a",
         "a|"},
        {"whole characters", "a\xc3\xa5\xe2\x82\xac\x7f", "a\xc3\xa5|"},
        {"across a character", "\xc3\xa5" + left + "b", "b|\xc3\xa5"},
        {"no further than the ends", "a" + right + left + left + left + "b", "b|a"},
        {"delete", "abc" + home + erase, "|bc"},
        {"delete at the end", "abc" + erase, "abc|"},
        {"control-D within", "abc\x01\x04", "|bc"},
        {"home and end",
         "bc\x01"
         "a" +
             end + "d",
         "abcd|"},
        {"the rest", "abcd" + left + left + "\x0b", "ab|"},
        {"all before", "abcd" + left + "\x15", "|d"},
        {"the last part of a path", "/usr/local/bin\x17\x17", "/usr/|"},
        {"a word and nothing more", "word\x17\x17", "|"},
        {"other keys do nothing", "a\x1bOP\x1b[15~\x1b[1;5Cb\x02\x06", "ab|"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(typed(c.keys), c.line);
    }
}

TEST(LineEditor, ArrowsBringTheLinesBeforeAndTheOwnOneBack) {
    const LineHelp help{nullptr, {"latest", "older"}};
    const std::string up = "\x1b[A", down = "\x1b[B";
    EXPECT_EQ(typed("mine" + up, help), "latest|");
    EXPECT_EQ(typed("mine" + up + up + up, help), "older|");
    EXPECT_EQ(typed("mine" + up + up + down, help), "latest|");
    EXPECT_EQ(typed("mine" + up + down + down, help), "mine|");
    EXPECT_EQ(typed("mine" + up), "mine|") << "there are none";
}

TEST(LineEditor, EnterIsDoneAndControlKeysGiveUp) {
    const LineHelp help;
    LineEdit line(help);
    EXPECT_EQ(line.key(4), LineEdit::State::givenUp);
    EXPECT_EQ(line.key(3), LineEdit::State::interrupted);
    EXPECT_EQ(line.key(26), LineEdit::State::suspended);
    line.key('a');
    EXPECT_EQ(line.key(4), LineEdit::State::typing) << "something stands in the line";
    EXPECT_EQ(line.key('\r'), LineEdit::State::done);
    EXPECT_EQ(line.text(), "a");
}

class FileNames : public testing::Test {
  protected:
    FileNames() {
        std::string pattern = (fs::temp_directory_path() / "names-XXXXXX").string();
        folder = mkdtemp(pattern.data());
        fs::create_directory(folder / "list folder");
        for (const char* name : {"list-1.txt", "list-2.txt", "list-3.dat", ".hidden.txt", "pl\xc3\xa5n.txt",
                                 "pl\xc3\xa6n.txt", "only.dat", "list folder/inner.txt"})
            std::ofstream(folder / name) << "x";
        question.directory = folder.string() + "/";
        question.filter = "*.txt;*.lst";
    }
    ~FileNames() override { fs::remove_all(folder); }

    Completion complete(const std::string& text) { return completeFileName(question, text); }

    fs::path folder;
    FileQuestion question;
};

TEST_F(FileNames, TabGrowsTheNameAsFarAsItIsCertain) {
    EXPECT_EQ(complete("list-").text, "list-");
    EXPECT_THAT(complete("list-").choices, ElementsAre("list-1.txt", "list-2.txt"));
    EXPECT_EQ(complete("l").text, "list") << "a folder counts too";
    EXPECT_EQ(complete("list f").text, "list folder/");
    EXPECT_EQ(complete("list folder/").text, "list folder/inner.txt");
    EXPECT_EQ(complete("pl").text, "pl") << "never half a character";
    EXPECT_EQ(complete("on").text, "only.dat") << "no file of the filter begins so";
    EXPECT_EQ(complete("none").text, "none");
    EXPECT_EQ(complete("no/such/").text, "no/such/");
    EXPECT_EQ(complete((folder / "list-1").string()).text, (folder / "list-1.txt").string());
    EXPECT_THAT(complete("").choices, testing::Not(testing::Contains(".hidden.txt")));
    question.kind = FileQuestion::Kind::directory;
    EXPECT_EQ(complete("l").text, "list folder/");
}

// What a child process shows that asks for a file on a terminal of its own, and ends with 0 when list-2.txt is chosen.
// Keys go in when what they wait for is shown, the prompt to begin with, so that none is read in the terminal's own
// line mode.
std::string chosenOnTerminal(const fs::path& folder, std::deque<std::pair<std::string, std::string>> keys,
                             int (*application)(int, char**)) {
    int terminal = -1;
    const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0) {
        setenv("TERM", "xterm", 1);
        char name[256] = "";
        {
            host::TerminalOptions options;
            host::Session session({.frontEnd = host::makeTerminalFrontEnd(options), .variables = {}});
            session.startApplication("asking", application);
            mdlDialog_fileOpen(name, 0, 0, "", "*.txt", folder.c_str(), "Choose");
        }
        _exit(name == (folder / "list-2.txt").string() ? 0 : 1);
    }
    std::string shown;
    char buffer[512];
    for (ssize_t got; (got = read(terminal, buffer, sizeof buffer)) > 0;) {
        shown.append(buffer, static_cast<size_t>(got));
        while (!keys.empty() && shown.find(keys.front().first) != std::string::npos) {
            const std::string typed = keys.front().second;
            EXPECT_EQ(write(terminal, typed.data(), typed.size()), static_cast<ssize_t>(typed.size()));
            keys.pop_front();
        }
    }
    int status = -1;
    waitpid(child, &status, 0);
    close(terminal);
    EXPECT_EQ(WEXITSTATUS(status), 0) << shown;
    return shown;
}

TEST_F(FileNames, AFileIsChosenOnATerminalWithTab) {
    const auto idle = [](int, char**) { return 0; };
    EXPECT_THAT(chosenOnTerminal(folder, {{"> ", "lis\t-\t\t2\t\r"}}, idle),
                testing::HasSubstr("list-1.txt\r\nlist-2.txt\r\n"))
        << "the names to choose from";
}

TEST_F(FileNames, WhatIsTypedStaysWhileTimersRun) {
    const auto ticking = [](int, char**) {
        const auto tick = [](int32_t) { toolSubsystem_printf("tick\n"); };
        return mdlSystem_setTimerFunction(nullptr, 12, reinterpret_cast<void*>(+tick));
    };
    const std::string shown = chosenOnTerminal(folder, {{"> ", "list-"}, {"tick", "2.txt\r"}}, ticking);
    EXPECT_THAT(shown, testing::HasSubstr("> list-\x1b[K\r\x1b[K")) << "the row is cleared for what is told";
    EXPECT_THAT(shown.substr(shown.find("tick")), testing::HasSubstr("\r> list-")) << "the line stands behind it again";
}

}  // namespace
