// File dialogs: what an answer means, what is asked again, and what is remembered.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "mchost/mdl/file_dialogs.h"
#include "mchost/mdl/lists.h"
#include "mchost/mdl/resource.h"
#include "mchost/mdl/system.h"
#include "tests/support/session_fixture.h"

namespace {

namespace fs = std::filesystem;
using host::FileQuestion;
using testing::ElementsAre;
using testing::HasSubstr;

class FileDialogs : public SessionTest {
  protected:
    FileDialogs() {
        fs::create_directory(path("sub"));
        for (const char* name : {"a.txt", "b.txt", "c.dat", "noend", "sub/d.txt"}) writeFile(name, name);
    }
    host::FileScript& files() { return front().files; }
    const FileQuestion& asked(size_t n) { return files().questions.at(n); }

    // The chosen file, without the test's folder; empty when there is none.
    std::string chosen(int status, const char* name) const {
        if (status != MDL_SUCCESS) return "";
        const std::string whole = name, folder = path("");
        return whole.starts_with(folder) ? whole.substr(folder.size()) : whole;
    }
    std::string open(const char* suggested = "", const char* filter = "*.txt") {
        char name[256] = "";
        return chosen(mdlDialog_fileOpen(name, 0, 0, suggested, filter, path("").c_str(), "Open"), name);
    }
    std::string create(const char* suggested = "", const char* filter = "*.txt") {
        char name[256] = "";
        return chosen(mdlDialog_fileCreate(name, 0, 0, suggested, filter, path("").c_str(), "Make"), name);
    }
    std::vector<std::string> edit(int32_t options, std::vector<std::string> members) {
        StringList* list = mdlStringList_create(static_cast<int32_t>(members.size()), 1);
        for (size_t i = 0; i < members.size(); ++i)
            mdlStringList_setMember(list, static_cast<int32_t>(i), members[i].c_str(), nullptr);
        StringList* edited = mdlFileList_edit(&result, list, options, "Files", "Chosen", "*.txt", path("").c_str());
        mdlStringList_destroy(list);
        if (!edited) return {"(cancelled)"};
        members.clear();
        for (int32_t i = 0; i < mdlStringList_size(edited); ++i) {
            const char* text = nullptr;
            mdlStringList_getMember(&text, nullptr, edited, i);
            members.push_back(chosen(MDL_SUCCESS, text));
        }
        mdlStringList_destroy(edited);
        return members;
    }

    FileDialogResult result = {};
};

TEST_F(FileDialogs, OpeningTakesAFileThatIsThere) {
    struct Case {
        const char* answer;
        const char* file;
    };
    const std::string whole = path("c.dat");
    for (const Case& c :
         {Case{"a.txt", "a.txt"}, Case{"a", "a.txt"}, Case{"noend", "noend"}, Case{"sub/d", "sub/d.txt"},
          Case{"sub\\d.txt", "sub\\d.txt"}, Case{whole.c_str(), "c.dat"}, Case{"", "b.txt"}}) {
        SCOPED_TRACE(c.answer);
        files().answer(c.answer);
        EXPECT_EQ(open("b.txt"), c.file);
    }
}

TEST_F(FileDialogs, OpeningAsksAgainAndSaysWhy) {
    files().answer("none.txt").answer("").answer(std::string(300, 'x')).answer("a.txt");
    EXPECT_EQ(open(), "a.txt");
    EXPECT_EQ(asked(0).complaint, "");
    EXPECT_THAT(asked(1).complaint, HasSubstr("none.txt\" isn't there"));
    EXPECT_THAT(asked(2).complaint, HasSubstr("Give the name"));
    EXPECT_THAT(asked(3).complaint, HasSubstr("too long"));
    files().answer("none.txt").cancel();
    EXPECT_EQ(open(), "");
    EXPECT_EQ(open(), "") << "nobody answers";
}

TEST_F(FileDialogs, AFolderOrAPatternChangesWhatIsShown) {
    files().answer("sub").answer("*.dat;*.d").answer("../c.dat");
    EXPECT_EQ(open(), "sub/../c.dat");
    EXPECT_EQ(asked(1).directory, path("sub/"));
    EXPECT_EQ(asked(2).filter, "*.dat;*.d");
    EXPECT_EQ(asked(2).directory, path("sub/"));
}

TEST_F(FileDialogs, CreatingAsksBeforeItReplaces) {
    files().answer("new").answer("a.txt").agree(false).answer("a").agree(true).answer("no/such.txt").answer("x.");
    EXPECT_EQ(create(), "new.txt") << "the filter's extension is added";
    EXPECT_TRUE(files().confirmations.empty());
    EXPECT_EQ(create(), "a.txt") << "the second time it may be replaced";
    ASSERT_EQ(files().confirmations.size(), 2u);
    EXPECT_THAT(files().confirmations[0], HasSubstr("a.txt\" is there already"));
    EXPECT_EQ(create(), "x.");
    EXPECT_THAT(files().questions.back().complaint, HasSubstr("no/\" isn't there"));
    EXPECT_EQ(readFile("a.txt"), "a.txt") << "the dialog itself touches nothing";
}

TEST_F(FileDialogs, TheDirectoryIsAVariablesFirstFolderOrAFolderOrElseTheWorkingOne) {
    mdlSystem_defineCfgVar("MY_FOLDERS", (path("sub") + ";" + path("")).c_str(), 4);
    const std::string sub = path("sub"), working = fs::current_path().string() + "/";
    char name[256];
    for (const auto& [directory, shown] : {std::pair<const char*, std::string>{"MY_FOLDERS", path("sub/")},
                                           {sub.c_str(), path("sub/")},
                                           {"c:\\", "c:\\"},
                                           {"NO_SUCH", working},
                                           {nullptr, working}}) {
        files().questions.clear();
        mdlDialog_fileOpen(name, 0, 0, nullptr, nullptr, directory, nullptr);
        EXPECT_EQ(asked(0).directory, shown);
        EXPECT_EQ(asked(0).filter, "*.*");
    }
}

TEST_F(FileDialogs, RememberedFilesAreOfferedByNumberInTheSameSession) {
    char name[256];
    const auto choose = [&] {
        return chosen(mdlDialog_defFileOpen(name, 0, 0, "", "*.txt", path("").c_str(), "", 5, 0), name);
    };
    files().answer("a.txt").answer("sub/d.txt").answer("2");
    EXPECT_EQ(choose(), "a.txt");
    EXPECT_EQ(choose(), "sub/d.txt");
    EXPECT_EQ(choose(), "a.txt");
    EXPECT_THAT(asked(2).remembered, ElementsAre(path("sub/d.txt"), path("a.txt")));
    EXPECT_EQ(asked(2).directory, path("sub/"));
    mdlDialog_defFileOpen(name, 0, 0, "", "*.txt", path("").c_str(), "", 6, 0);
    EXPECT_TRUE(asked(3).remembered.empty()) << "another record";
    asApplication("other", [&] { mdlDialog_defFileOpen(name, 0, 0, "", "*.txt", path("").c_str(), "", 5, 0); });
    EXPECT_TRUE(asked(4).remembered.empty()) << "another application";
}

TEST_F(FileDialogs, ARememberedFolderThatIsGoneGivesWayToTheOneGiven) {
    char name[256];
    files().answer("sub/d.txt");
    mdlDialog_defFileOpen(name, 0, 0, "", "*.txt", path("").c_str(), "", 5, 0);
    fs::remove_all(path("sub"));
    mdlDialog_defFileOpen(name, 0, 0, "", "*.txt", path("").c_str(), "", 5, 0);
    EXPECT_EQ(asked(1).directory, path(""));
}

TEST_F(FileDialogs, AListIsEditedMemberByMember) {
    files().answer("a.txt").answer("a.txt").answer("*.txt").answer("-1").answer("-9").answer("none").answer("");
    EXPECT_THAT(edit(283, {"old"}), ElementsAre("a.txt", "b.txt"));
    EXPECT_EQ(result.reply, MDL_FILES_OK);
    EXPECT_EQ(result.directory, path(""));
    EXPECT_STREQ(result.filter, "*.txt");
    EXPECT_THAT(asked(1).members, ElementsAre("old", path("a.txt")));
    EXPECT_THAT(asked(5).complaint, HasSubstr("-9\" isn't there"));

    files().answer("").answer("-1").answer("").answer("-1").cancel();
    EXPECT_THAT(edit(283, {}), testing::IsEmpty());
    EXPECT_THAT(edit(283, {"one"}), testing::IsEmpty());
    EXPECT_THAT(edit(283, {"one"}), ElementsAre("(cancelled)"));
    EXPECT_EQ(result.reply, MDL_FILES_CANCEL);
}

TEST_F(FileDialogs, WithoutTheOptionForSeveralTheListHoldsOneFile) {
    files().answer("*.txt").answer("c.dat").answer("");
    EXPECT_THAT(edit(0, {}), ElementsAre("c.dat"));
}

TEST_F(FileDialogs, ADirectoryIsAskedForByItsOption) {
    files().answer("a.txt").answer("none").answer("sub").answer("");
    EXPECT_THAT(edit(MDL_FILE_LIST_DIRECTORY, {}), ElementsAre("sub"));
    EXPECT_THAT(asked(1).complaint, HasSubstr("isn't there"));
    EXPECT_EQ(edit(MDL_FILE_LIST_DIRECTORY, {})[0] + "/", path("")) << "an empty line takes the directory shown";
}

TEST_F(FileDialogs, WithoutASessionNobodyCanBeAsked) {
    const std::string folder = path("");
    endSession();
    char name[256];
    EXPECT_EQ(mdlDialog_fileOpen(name, 0, 0, "a.txt", "*.txt", folder.c_str(), ""), MDL_ERROR);
    EXPECT_EQ(mdlFileList_edit(&result, nullptr, 0, "", "", "", ""), nullptr);
    EXPECT_EQ(result.reply, MDL_FILES_CANCEL);
}

}  // namespace
