// The file layer: physical lines become logical lines, across includes.
#include "mclib/text/file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <malloc.h>

#include <filesystem>
#include <memory>
#include <vector>

#include "tests/mclib/text/text_files.h"

namespace {

using testing::ElementsAre;

struct CloseFile {
    void operator()(McFile* f) const { mclibFile_close(f); }
};
using File = std::unique_ptr<McFile, CloseFile>;

File open(const std::string& path, int bufferSize = 512) {
    return File(mclibFile_openExtended(path.c_str(), "r", "\\", "#", bufferSize));
}

// A logical line, and how many physical lines it took.
struct Read {
    int lines;
    std::string text;
    bool operator==(const Read&) const = default;
    friend void PrintTo(const Read& r, std::ostream* out) { *out << r.lines << " \"" << r.text << '"'; }
};

std::vector<Read> readAll(McFile* f, int maxLength = 1024) {
    std::vector<Read> all;
    std::string dest(static_cast<size_t>(maxLength), '?');
    for (;;) {
        const int lines = mclibFile_read(dest.data(), f, maxLength);
        all.push_back({lines, dest.c_str()});
        if (lines == 0 || all.size() > 100) return all;
    }
}

}  // namespace

TEST(FileLayer, LinesAreSkippedJoinedAndTrimmed) {
    struct Case {
        const char* name;
        const char* bytes;
        std::vector<Read> expected;
    };
    const Read end = {0, ""};
    const TextFiles files;
    for (const Case& c : {
             Case{"comment, blanks and spaces are skipped and counted", "# c\n\n   \nx\n", {{4, "x"}, end}},
             Case{"leading blanks stay, trailing ones go", "  a b \t \n", {{1, "  a b"}, end}},
             Case{"a tab alone is an empty line", "\t\nx\n", {{1, ""}, {1, "x"}, end}},
             Case{"the blank before the continuation stays", "ab \\\ncd\n", {{2, "ab  cd"}, end}},
             Case{"blanks behind the continuation", "ab\\ \t\ncd\n", {{2, "ab cd"}, end}},
             Case{"comment and blank line within a continued line", "ab\\\n# c\n\ncd\n", {{4, "ab cd"}, end}},
             Case{"a tab line ends a continued line", "ab\\\n\t\ncd\n", {{2, "ab "}, {1, "cd"}, end}},
             Case{"end of file in a continued line", "x\nab \\", {{1, "x"}, {0, "ab  "}}},
             Case{"a comment needs the first column",
                  " # no comment\na # b\n",
                  {{1, " # no comment"}, {1, "a # b"}, end}},
             Case{"carriage returns, and no line end at the end", "a\r\nb", {{1, "a"}, {1, "b"}, end}},
             Case{"empty file", "", {end}},
         }) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(readAll(open(files.write("lines.txt", c.bytes)).get()), c.expected);
    }
}

TEST(FileLayer, LineLongerThanTheBufferIsOneLine) {
    const TextFiles files;
    const std::string path = files.write("long.txt", "# a comment that is long\n0123456789abcdefghij \\\nx\ny\n");
    EXPECT_THAT(readAll(open(path, 8).get()),
                ElementsAre(Read{3, "0123456789abcdefghij  x"}, Read{1, "y"}, Read{0, ""}));
}

TEST(FileLayer, PiecesOfALineAreOneLine) {
    const TextFiles files;
    files.write("inner.txt", "inner\n");
    const File f = open(files.write("top.txt", "0123456789abcdefghi%include inner.txt\nx\n"), 20);
    EXPECT_STREQ(mclibFile_fgets(nullptr, 0, f.get()), "0123456789abcdefghi");
    EXPECT_STREQ(mclibFile_fgets(nullptr, 0, f.get()), "%include inner.txt\n");
    EXPECT_STREQ(mclibFile_fgets(nullptr, 0, f.get()), "x\n");
    EXPECT_EQ(f->lineNumber, 2);
}

TEST(FileLayer, TooLongLineFailsAndTheNextLineIsRead) {
    const TextFiles files;
    const std::string path = files.write("long.txt", "ab\\\n0123456789abcdefghij\nx\n0123456\n012345678\n");
    for (const int bufferSize : {8, 512}) {
        SCOPED_TRACE(bufferSize);
        // A line end counts as a character, and the length must stay below the limit.
        EXPECT_THAT(readAll(open(path, bufferSize).get(), 10),
                    ElementsAre(Read{-1, "ab "}, Read{1, "x"}, Read{1, "0123456"}, Read{-1, ""}, Read{0, ""}));
    }
}

TEST(FileLayer, IncludesAreFoundBesideTheFileThatNamesThem) {
    const TextFiles files;
    files.write("one/two/three/three.txt", "three\n");
    files.write("one/two/two.txt", "two a\n%include three/three.txt\ntwo b\n");
    files.write("one/one.txt", "%include t w o/two.txt\n");
    files.write("one/two.txt", "not this one\n");
    files.write("one/nothing.txt", "");
    files.write("one/comments.txt", "# c\n# d\n");
    const std::string top =
        files.write("top.txt", "%include one/one.txt\n%include one/nothing.txt\n%include one/comments.txt\nend\n");
    // Blanks in a name are lost: "t w o/two.txt" is one/two/two.txt. An include line that is followed isn't counted.
    EXPECT_THAT(readAll(open(top).get()),
                ElementsAre(Read{1, "two a"}, Read{1, "three"}, Read{1, "two b"}, Read{3, "end"}, Read{0, ""}));
}

TEST(FileLayer, ConfigurationVariablesInAnIncludeAreExpanded) {
    const TextFiles files;
    files.write("settings/name.txt", "found\n");
    setenv("FILE_TEST_FOLDER", (files.folder / "settings/").c_str(), 1);
    const std::string top = files.write("top.txt", "%include $(FILE_TEST_FOLDER)name.txt\n");
    EXPECT_THAT(readAll(open(top).get()), ElementsAre(Read{1, "found"}, Read{0, ""}));
}

TEST(FileLayer, IncludeThatCantBeFollowedIsAComment) {
    const TextFiles files;
    files.write("there.txt", "there\n");
    const std::string top = files.write("top.txt",
                                        "%include miss ing.txt\na\n%if exist include no\nb\n"
                                        "%if exist include there.txt\n %include there.txt\n%INCLUDE there.txt\n");
    const File f = open(top);
    EXPECT_STREQ(mclibFile_fgets(nullptr, 0, f.get()), "#includemissing.txt");
    mclibFile_rewind(f.get());
    EXPECT_THAT(readAll(f.get()),
                ElementsAre(Read{2, "a"}, Read{2, "b"}, Read{1, "there"}, Read{1, " %include there.txt"},
                            Read{1, "%INCLUDE there.txt"}, Read{0, ""}));
    // The line end that the include line loses doesn't count: its 19 letters fit in 20.
    EXPECT_THAT(readAll(open(files.write("short.txt", "%if exist include no\nab")).get(), 20),
                ElementsAre(Read{2, "ab"}, Read{0, ""}));
}

// By its own name, by a link's, and by way of another file: the include line counts as one that can't be followed.
TEST(FileLayer, AFileThatIncludesItselfIsReadOnce) {
    const TextFiles files;
    const std::string top = files.write("self.txt",
                                        "a\n%include self.txt\n%include link.txt\n%include other.txt\n"
                                        "%if exist include self.txt\nb\n");
    std::filesystem::create_symlink(top, files.folder / "link.txt");
    files.write("other.txt", "other\n%include ./self.txt\nend\n");
    const File f = open(top);
    EXPECT_THAT(readAll(f.get()),
                ElementsAre(Read{1, "a"}, Read{3, "other"}, Read{2, "end"}, Read{2, "b"}, Read{0, ""}));
    EXPECT_EQ(f->lostInclude, 2);
    mclibFile_rewind(f.get());
    EXPECT_EQ(readAll(f.get()).size(), 5u);
}

// 900 files deep within 8 MB: a file in the chain costs what it holds.
TEST(FileLayer, AChainOfIncludesIsReadToItsEnd) {
    const TextFiles files;
    constexpr int depth = 900;
    const auto name = [](int i) { return "f" + std::to_string(i) + ".txt"; };
    for (int i = 0; i < depth; ++i) files.write(name(i), "%include " + name(i + 1) + "\nx\n");
    files.write(name(depth), "innermost\n");
    const size_t before = mallinfo2().uordblks;
    const File f = open((files.folder / name(0)).string());
    char line[64];
    ASSERT_EQ(mclibFile_read(line, f.get(), sizeof line), 1);
    EXPECT_STREQ(line, "innermost");
    EXPECT_LT(mallinfo2().uordblks - before, 8u << 20);
    int lines = 0;
    while (mclibFile_read(line, f.get(), sizeof line) == 1) ++lines;
    EXPECT_EQ(lines, depth);
    EXPECT_EQ(f->child, nullptr);
}

TEST(FileLayer, AByteOrderMarkIsNoText) {
    const TextFiles files;
    files.write("inner.txt", "\xEF\xBB\xBF# inner\nx\xEF\xBB\xBF\n");
    const std::string top = files.write("top.txt", "\xEF\xBB\xBF%include inner.txt\n\xEF\xBB\xBFy\n");
    files.write("mark.txt", "\xEF\xBB\xBF");
    for (const int bufferSize : {20, 512}) {
        const File f = open(top, bufferSize);
        const std::vector<Read> lines = {{2, "x\xEF\xBB\xBF"}, {1, "\xEF\xBB\xBFy"}, {0, ""}};
        EXPECT_EQ(readAll(f.get()), lines);
        EXPECT_THAT(readAll(open((files.folder / "mark.txt").string(), 2).get()), ElementsAre(Read{0, ""}));
    }
}

TEST(FileLayer, RewindLeavesTheInclude) {
    const TextFiles files;
    files.write("inner.txt", "x\ny\n");
    const File f = open(files.write("top.txt", "first\n%include inner.txt\n"));
    char line[64];
    for (int i = 0; i < 2; ++i) mclibFile_read(line, f.get(), sizeof line);
    EXPECT_STREQ(line, "x");
    mclibFile_rewind(f.get());
    EXPECT_EQ(f->child, nullptr);
    EXPECT_EQ(mclibFile_read(line, f.get(), sizeof line), 1);
    EXPECT_STREQ(line, "first");
}

TEST(FileLayer, SemicolonSplitsTheTrailingComment) {
    struct Case {
        const char* bytes;
        int lines;
        const char *text, *comment;
    };
    const TextFiles files;
    for (const Case& c : {
             Case{"a = 1 ;note\n", 1, "a = 1", "note"},
             Case{"a = 1\n", 1, "a = 1", ""},
             Case{"a;b;c\r\n", 1, "a", "b;c"},
             Case{";note\nx\n", 2, "x", ""},
             Case{";note\n", 0, "", ""},
             Case{"ab \\ ;note\ncd\n", 2, "ab  cd", ""},
             Case{"ab\\\ncd ; last\n", 2, "ab cd", " last"},
             Case{"x = \"a;b\"\n", 1, "x = \"a", "b\""},
         }) {
        SCOPED_TRACE(c.bytes);
        for (const int bufferSize : {5, 512}) {
            const File f = open(files.write("split.txt", c.bytes), bufferSize);
            char text[64], comment[512];
            EXPECT_EQ(mclibFile_read2(text, comment, f.get(), sizeof text), c.lines);
            EXPECT_STREQ(text, c.text);
            EXPECT_EQ(std::string(comment), std::string(c.comment).substr(0, static_cast<size_t>(bufferSize) - 1));
        }
    }
}

TEST(FileLayer, TheCommentOfALineThatIsTooLongIsWhole) {
    const TextFiles files;
    const File f = open(files.write("long.txt", "0123456789 ; a comment\nx\n"), 16);
    char text[8], comment[16];
    EXPECT_EQ(mclibFile_read2(text, comment, f.get(), sizeof text), -1);
    EXPECT_STREQ(comment, " a comment");
}

TEST(FileLayer, OpeningRefusesWhatItCantDo) {
    const TextFiles files;
    const std::string path = files.write("there.txt", "x\n");
    EXPECT_EQ(mclibFile_open(path.c_str(), "rb"), nullptr);
    EXPECT_EQ(mclibFile_open(path.c_str(), "R"), nullptr);
    EXPECT_EQ(mclibFile_open(path.c_str(), nullptr), nullptr);
    EXPECT_EQ(mclibFile_open(nullptr, "r"), nullptr);
    EXPECT_EQ(mclibFile_open((files.folder / "missing.txt").c_str(), "r"), nullptr);
    EXPECT_EQ(mclibFile_open(files.folder.c_str(), "r"), nullptr);
    EXPECT_EQ(mclibFile_open(std::string(300, 'x').c_str(), "r"), nullptr);
    EXPECT_EQ(mclibFile_openExtended(path.c_str(), "r", "\\", "#", 1), nullptr);
}

TEST(FileLayer, WritingToAFullDiskIsToldOnClosing) {
    McFile* f = mclibFile_open("/dev/full", "w");
    ASSERT_NE(f, nullptr);
    mdlTextFile_putString("x", f->stream, 1);
    EXPECT_NE(mclibFile_close(f), 0);
}

TEST(FileLayer, FoldersFilesAndShortNames) {
    const TextFiles files;
    const std::string path = files.write("there.txt", "x\n");
    EXPECT_EQ(mclibFile_directoryExists(files.folder.c_str()), 1);
    EXPECT_EQ(mclibFile_directoryExists(path.c_str()), 0);
    EXPECT_EQ(mclibFile_directoryExists((files.folder / "missing").c_str()), 0);
    EXPECT_STRNE(mclibFile_GetShortPathName(path.c_str()), "");
    EXPECT_EQ(mclibFile_delete(path.c_str()), 1);
    EXPECT_EQ(mclibFile_delete(path.c_str()), 0);
    EXPECT_STREQ(mclibFile_GetShortPathName(path.c_str()), "");
}
