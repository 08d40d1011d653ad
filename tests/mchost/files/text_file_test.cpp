#include <cerrno>
#include <string>
#include <vector>

#include "mchost/mdl/files.h"
#include "mchost/mdl/system.h"
#include "tests/support/session_fixture.h"

namespace {

class TextFiles : public SessionTest {
  protected:
    // All pieces that a buffer of `size` bytes gives.
    std::vector<std::string> pieces(std::string_view bytes, int size, bool keepNewline) {
        MdlTextFile* file = mdlTextFile_open(writeFile("text", bytes).c_str(), MDL_TEXT_READ);
        std::vector<std::string> all;
        std::vector<char> buffer(static_cast<size_t>(size));  // the sanitizer tells when more is written
        while (all.size() < 100 && mdlTextFile_getString(buffer.data(), size, file, keepNewline) != nullptr) {
            all.emplace_back(buffer.data());
            EXPECT_EQ(all.back().size(), static_cast<size_t>(mdlTextFile_lastLength(file)));
        }
        EXPECT_EQ(mdlTextFile_eof(file), 1);
        EXPECT_EQ(mdlTextFile_error(file), 0);
        EXPECT_EQ(mdlTextFile_close(file), 0);
        return all;
    }
};

using Pieces = std::vector<std::string>;
using namespace std::string_view_literals;

TEST_F(TextFiles, LinesEndInOneNewlineWhateverEndedThem) {
    struct Case {
        std::string_view bytes;
        int size;
        Pieces kept, bare;
    };
    const Case cases[] = {
        {"", 10, {}, {}},
        {"\n", 10, {"\n"}, {""}},
        {"a\r\nb\nc", 10, {"a\n", "b\n", "c\n"}, {"a", "b", "c"}},
        {"a\n\r\n\nb\n", 10, {"a\n", "\n", "\n", "b\n"}, {"a", "", "", "b"}},
        {"a\rb\n", 10, {"a\rb\n"}, {"a\rb"}},
        {"a\r", 10, {"a\r\n"}, {"a\r"}},
        {"abc\nx\n", 4, {"abc", "\n", "x\n"}, {"abc", "x"}},
        {"abc\r\nx", 4, {"abc", "\n", "x\n"}, {"abc", "x"}},
        {"abc", 4, {"abc", "\n"}, {"abc"}},
        {"abcdefg\r\n", 4, {"abc", "def", "g\n"}, {"abc", "def", "g"}},
        {"ab\r\r\n", 4, {"ab\r", "\n"}, {"ab\r"}},
        {"abcd", 2, {"a", "b", "c", "d", "\n"}, {"a", "b", "c", "d"}},
        {"ab\0cd\nef\n"sv, 10, {"ab\n", "ef\n"}, {"ab", "ef"}},
        {"\0\0\r\nx"sv, 10, {"\n", "x\n"}, {"", "x"}},
        {"abcdef\0ghijkl\nz"sv, 4, {"abc", "def", "\n", "z\n"}, {"abc", "def", "", "z"}},
        {"a\0bcdefghijkl\nz"sv, 4, {"a\n", "z\n"}, {"a", "z"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.bytes) + " by " + std::to_string(c.size));
        EXPECT_EQ(pieces(c.bytes, c.size, true), c.kept);
        EXPECT_EQ(pieces(c.bytes, c.size, false), c.bare);
    }
}

// Line ends fall on every place around the edge of what is read at once.
TEST_F(TextFiles, NothingIsLostWhereOneReadEndsAndTheNextBegins) {
    for (size_t length = 65530; length < 65545; ++length) {
        SCOPED_TRACE(length);
        const std::string line(length, 'x');
        EXPECT_EQ(pieces(line + "\r\nnext\r\n", 70000, true), (Pieces{line + "\n", "next\n"}));
        EXPECT_EQ(pieces(line + "\r\nnext", 40000, true),
                  (Pieces{line.substr(0, 39999), line.substr(39999) + "\n", "next\n"}));
    }
}

TEST_F(TextFiles, ReadAgainFromTheStartAfterARewind) {
    MdlTextFile* file = mdlTextFile_open(writeFile("text", "one\ntwo").c_str(), MDL_TEXT_READ);
    char line[10];
    for (int round = 0; round < 2; ++round) {
        EXPECT_STREQ(mdlTextFile_getString(line, sizeof line, file, 0), "one");
        EXPECT_EQ(mdlTextFile_eof(file), 0);
        EXPECT_STREQ(mdlTextFile_getString(line, sizeof line, file, 0), "two");
        EXPECT_EQ(mdlTextFile_eof(file), 1);
        mdlTextFile_rewind(file);
    }
    EXPECT_EQ(mdlTextFile_getString(line, 1, file, 0), nullptr);
    EXPECT_EQ(mdlTextFile_close(file), 0);
}

TEST_F(TextFiles, WriteAndAppend) {
    MdlTextFile* file = mdlTextFile_open("c:\\out.txt", MDL_TEXT_WRITE);
    EXPECT_EQ(mdlTextFile_putString("one", file, 1), MDL_SUCCESS);
    EXPECT_EQ(mdlTextFile_putString("t", file, 0), MDL_SUCCESS);
    EXPECT_EQ(mdlTextFile_close(file), 0);
    file = mdlTextFile_open("C:/out.txt", MDL_TEXT_APPEND);
    EXPECT_EQ(mdlTextFile_putString("wo", file, 1), MDL_SUCCESS);
    EXPECT_EQ(mdlTextFile_close(file), 0);
    EXPECT_EQ(readFile("drive_c/out.txt"), "one\ntwo\n");
}

TEST_F(TextFiles, WhatIsNoFileIsNotOpened) {
    for (const int mode : {MDL_TEXT_READ, MDL_TEXT_WRITE, MDL_TEXT_APPEND}) {
        EXPECT_EQ(mdlTextFile_open(path("").c_str(), mode), nullptr);
        EXPECT_EQ(mdlTextFile_open(path("none/none").c_str(), mode), nullptr);
    }
    EXPECT_EQ(mdlTextFile_open(path("none").c_str(), MDL_TEXT_READ), nullptr);
    EXPECT_EQ(mdlTextFile_open(path("odd").c_str(), 3), nullptr);
    EXPECT_EQ(mdlTextFile_open("", MDL_TEXT_READ), nullptr);
    EXPECT_EQ(dlmSystem_mdlFopen(path("").c_str(), "r"), nullptr);
}

TEST_F(TextFiles, AFullDiskIsToldAtTheLatestOnClosing) {
    const std::string large(200000, 'x');
    for (const std::string& text : {std::string("short"), large}) {
        SCOPED_TRACE(text.size());
        FILE* stream = dlmSystem_mdlFopen("/dev/full", "w");
        toolSubsystem_fprintf(stream, "%s", text.c_str());
        EXPECT_EQ(dlmSystem_mdlFclose(stream), EOF);

        MdlTextFile* file = mdlTextFile_open("/dev/full", MDL_TEXT_WRITE);
        mdlTextFile_putString(text.c_str(), file, 1);
        EXPECT_EQ(mdlTextFile_close(file), ENOSPC);
    }
    FILE* good = dlmSystem_mdlFopen(path("good").c_str(), "w");
    EXPECT_EQ(toolSubsystem_fprintf(good, "%s %d\n", "n", 7), 4);
    EXPECT_EQ(dlmSystem_mdlFclose(good), 0);
    EXPECT_EQ(readFile("good"), "n 7\n");
}

}  // namespace
