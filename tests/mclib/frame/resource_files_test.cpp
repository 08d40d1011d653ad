// Resource files and the user preference file, as applications of the family use them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "mchost/dialog/dialog.h"
#include "mchost/mdl/file_dialogs.h"
#include "mchost/mdl/lists.h"
#include "mchost/mdl/resource.h"
#include "mchost/mdl/system.h"
#include "mclib/frame/resource_files.h"
#include "tests/support/drawn.h"
#include "tests/support/library_fixture.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr int32_t type = MDL_RSC_TYPE('T', 'e', 's', 't');

class ResourceFiles : public LibraryTest {
  protected:
    ResourceFiles() {
        front().answer = [this](host::Dialog& dialog) {
            dialog.refresh();
            std::string text;
            for (const host::DrawnText& line : drawnIn<host::DrawnText>(dialog)) text += line.text + "|";
            boxes.push_back(text);
            dialog.close();
            return true;
        };
        mdlSystem_defineCfgVar("MS_USERPREF", path("user.ucf").c_str(), 4);
    }
    ~ResourceFiles() override { mclibUpf_close(); }

    // What the first message box said that was shown since the last call, and no other was.
    std::string box() {
        const std::string text = boxes.size() == 1 ? boxes[0] : std::to_string(boxes.size()) + " boxes";
        boxes.clear();
        return text;
    }

    std::vector<std::string> boxes;
};

// ---- resource files ----

TEST_F(ResourceFiles, AFileThatIsWrittenIsMadeAndOneThatIsReadMustBeThere) {
    McHandle h = {};
    EXPECT_EQ(mclibResource_openFile(&h, path("new.rsc").c_str(), 0), MCLIB_ERROR);
    EXPECT_THAT(box(), HasSubstr("can't be read:|" + path("new.rsc")));
    EXPECT_EQ(mclibResource_openFile(&h, path("new.rsc").c_str(), 1), MCLIB_SUCCESS);
    EXPECT_EQ(h.name, path("new.rsc"));
    EXPECT_EQ(mclibResource_closeFile(&h), MCLIB_SUCCESS);
    EXPECT_EQ(mclibResource_openFile(&h, path("new.rsc").c_str(), 0), MCLIB_SUCCESS);
    EXPECT_EQ(mclibResource_closeFile(&h), MCLIB_SUCCESS);
    EXPECT_EQ(mclibResource_openFile(&h, path("no/such.rsc").c_str(), 1), MCLIB_ERROR);
    EXPECT_THAT(box(), HasSubstr("can't be opened:|" + path("no/such.rsc")));
}

TEST_F(ResourceFiles, AForeignFileIsNeverReplacedByAnEmptyOne) {
    McHandle h = {};
    EXPECT_EQ(mclibResource_openFile(&h, writeFile("notes.txt", "my notes").c_str(), 1), MCLIB_ERROR);
    EXPECT_THAT(box(), HasSubstr("can't be opened:"));
    EXPECT_EQ(readFile("notes.txt"), "my notes");
}

TEST_F(ResourceFiles, AResourceIsAddedOnceAndThenWrittenOver) {
    McHandle h = {};
    ASSERT_EQ(mclibResource_openFile(&h, path("a.rsc").c_str(), 1), MCLIB_SUCCESS);
    EXPECT_EQ(mclibResource_add(&h, type, 1, "abcdef", 6, 0), MCLIB_SUCCESS);
    EXPECT_EQ(mclibResource_add(&h, type, 1, "XY", 2, 0), MCLIB_SUCCESS);
    char read[8] = "~~~~~~~";
    EXPECT_EQ(mclibResource_load(&h, type, 1, read, 6), MCLIB_SUCCESS);
    McHandle none = {};
    EXPECT_EQ(mclibResource_load(&none, type, 1, read, 6), MCLIB_ERROR) << "a file that isn't open has nothing";
    EXPECT_STREQ(read, "XYcdef~") << "a shorter write leaves the bytes behind it";
    EXPECT_EQ(mclibResource_load(&h, type, 2, read, 6), MCLIB_ERROR);
    EXPECT_TRUE(boxes.empty());

    EXPECT_EQ(mclibResource_add(&h, type, 1, "1234567", 7, 0), MCLIB_ERROR) << "it is larger than what is stored";
    EXPECT_THAT(box(), HasSubstr("couldn't be written"));
    std::memset(read, '~', 7);
    EXPECT_EQ(mclibResource_load(&h, type, 1, read, 7), MCLIB_ERROR) << "it is smaller than what is asked for";
    EXPECT_STREQ(read, "~~~~~~~");
    ASSERT_EQ(front().messages.size(), 1u);
    EXPECT_THAT(front().messages[0].brief, HasSubstr("6 bytes, 7 are needed"));
}

TEST_F(ResourceFiles, AFileThatIsntOpenIsntConfusedWithAnother) {
    McHandle other = {}, closed = {};
    ASSERT_EQ(mclibResource_openFile(&other, path("a.rsc").c_str(), 1), MCLIB_SUCCESS);
    EXPECT_EQ(mclibResource_add(&other, type, 1, "abc", 3, 0), MCLIB_SUCCESS);
    EXPECT_EQ(mclibResource_add(&closed, type, 1, "xyz", 3, 0), MCLIB_ERROR);
    EXPECT_THAT(box(), HasSubstr("couldn't be written"));
    char read[4] = {};
    EXPECT_EQ(mclibResource_load(&other, type, 1, read, 3), MCLIB_SUCCESS);
    EXPECT_STREQ(read, "abc");
}

TEST_F(ResourceFiles, WritingToAFileThatIsOpenForReadingShowsThatItIsProtected) {
    McHandle h = {};
    mclibResource_openFile(&h, path("a.rsc").c_str(), 1);
    mclibResource_add(&h, type, 1, "abc", 3, 0);
    mclibResource_closeFile(&h);
    mclibResource_openFile(&h, path("a.rsc").c_str(), 0);
    StringList* list = mdlStringList_create(1, 1);
    for (const auto& write :
         std::vector<std::function<int()>>{[&] { return mclibResource_add(&h, type, 1, "xyz", 3, 0); },
                                           [&] { return mclibResource_add(&h, type, 2, "xyz", 3, 0); },
                                           [&] { return mclibResource_addStringList(&h, 1, list); }}) {
        EXPECT_EQ(write(), MCLIB_ERROR);
        EXPECT_THAT(box(), HasSubstr("can't be written to:|" + path("a.rsc")));
    }
    mdlStringList_destroy(list);
    char read[4] = {};
    mclibResource_load(&h, type, 1, read, 3);
    EXPECT_STREQ(read, "abc");
}

TEST_F(ResourceFiles, AStringListTakesThePlaceOfTheOneBefore) {
    McHandle h = {};
    mclibResource_openFile(&h, path("a.rsc").c_str(), 1);
    EXPECT_EQ(mclibResource_loadStringList(&h, 5), nullptr);
    for (const int32_t size : {3, 2}) {
        StringList* list = mdlStringList_create(size, 1);
        mdlStringList_setInfoField(list, 1, 0, size);
        EXPECT_EQ(mclibResource_addStringList(&h, 5, list), MCLIB_SUCCESS);
        mdlStringList_destroy(list);
        StringList* stored = mclibResource_loadStringList(&h, 5);
        EXPECT_EQ(mdlStringList_size(stored), size);
        int32_t value = 0;
        mdlStringList_getInfoField(&value, stored, 1, 0);
        EXPECT_EQ(value, size);
        mdlStringList_destroy(stored);
    }
}

TEST_F(ResourceFiles, ANameThatIsTooLongIsRefusedAndNotCut) {
    const std::string longName = path(std::string(250 - path("").size(), 'n') + "-and-more.rsc");
    McHandle h = {7, ""};
    EXPECT_EQ(mclibResource_openFile(&h, longName.c_str(), 1), MCLIB_ERROR);
    EXPECT_THAT(box(), HasSubstr("can't be opened:"));
    EXPECT_EQ(h.handle, 0);
    EXPECT_FALSE(std::filesystem::exists(longName.substr(0, 255)));
}

// ---- the preference file ----

TEST_F(ResourceFiles, ThePreferenceFileStandsBesideTheHostsOne) {
    EXPECT_EQ(mclibUpf_getHandle(), 0);
    EXPECT_EQ(mclibUpf_getMcHandle(), nullptr);
    EXPECT_EQ(mclibUpf_getUpfFileName(), nullptr);
    McHandle out = {};
    mclibUpf_open(&out, "TESTER_UPF", "tester.upf");
    EXPECT_TRUE(std::filesystem::exists(path("tester.upf")));
    EXPECT_EQ(out.name, path("tester.upf"));
    EXPECT_EQ(mclibUpf_getHandle(), out.handle);
    EXPECT_STREQ(mclibUpf_getUpfFileName(), out.name);
    mclibUpf_close();
    EXPECT_EQ(mclibUpf_getMcHandle(), nullptr);

    mdlSystem_defineCfgVar("TESTER_UPF", "other.upf", 4);
    mclibUpf_open(nullptr, "TESTER_UPF", "tester.upf");
    EXPECT_TRUE(std::filesystem::exists(path("other.upf")));
}

TEST_F(ResourceFiles, PreferencesComeBackInTheNextRun) {
    mclibUpf_openWithPath(nullptr, path("p.upf").c_str());
    EXPECT_EQ(mclibUpf_save(type, 1, "abc", 4), MCLIB_SUCCESS);
    mclibUpf_close();
    mclibUpf_openWithPath(nullptr, path("p.upf").c_str());
    char read[4];
    EXPECT_EQ(mclibUpf_load(type, 1, read, 4), MCLIB_SUCCESS);
    EXPECT_STREQ(read, "abc");
    EXPECT_EQ(mclibUpf_load(type, 2, read, 4), MCLIB_ERROR);
}

TEST_F(ResourceFiles, WithoutAnOpenFileThereIsALineOnTheConsole) {
    char read[4];
    EXPECT_EQ(mclibUpf_load(type, 1, read, 4), MCLIB_ERROR);
    EXPECT_EQ(mclibUpf_save(type, 1, read, 4), MCLIB_ERROR);
    EXPECT_EQ(front().consoleText, "User preference file not open!!\nUser preference file not open!!\n");
    front().clear();
    mdlSystem_deleteCfgVar("MS_USERPREF");
    McHandle out = {};
    mclibUpf_open(&out, "TESTER_UPF", "tester.upf");
    EXPECT_EQ(front().consoleText, "\"MS_USERPREF\" undefined!\n");
    EXPECT_EQ(out.handle, 0);
    EXPECT_EQ(mclibUpf_getHandle(), 0);
}

TEST_F(ResourceFiles, AFileThatCannotBeOpenedLeavesNoHandle) {
    writeFile("p.upf", "not a resource file");
    EXPECT_EQ(mclibUpf_openWithPath(nullptr, path("p.upf").c_str()), MCLIB_ERROR);
    EXPECT_EQ(boxes.size(), 2u) << "it can neither be read nor be made";
    EXPECT_EQ(mclibUpf_getHandle(), 0);
    EXPECT_EQ(readFile("p.upf"), "not a resource file");
    mclibUpf_openWithPath(nullptr, path("good.upf").c_str());
    EXPECT_EQ(mclibUpf_openWithPath(nullptr, path("p.upf").c_str()), MCLIB_ERROR);
    char read[4];
    EXPECT_EQ(mclibUpf_load(type, 1, read, 4), MCLIB_ERROR);
    EXPECT_EQ(front().consoleText, "User preference file not open!!\n") << "none is open any more";
}

// ---- remembered files ----

class RememberedFiles : public ResourceFiles {
  protected:
    RememberedFiles() {
        mclibUpf_openWithPath(nullptr, path("p.upf").c_str());
        handle = mclibUpf_getHandle();
    }
    void save(const std::string& name) { EXPECT_EQ(mclibUpf_saveFileName(name.c_str(), handle, -20001), MDL_SUCCESS); }
    UserFileRecord record() {
        UserFileRecord r = {};
        EXPECT_EQ(mdlUserPrefs_getFileName(&r, handle, -20001), MDL_SUCCESS);
        return r;
    }
    static std::vector<std::string> entries(const char (&list)[10][256], int32_t count) { return {list, list + count}; }
    std::vector<std::string> files() {
        const UserFileRecord r = record();
        return entries(r.fileHistory, r.fileCount);
    }

    RscHandle handle = 0;
};

TEST_F(RememberedFiles, ANewRecordGetsItsCurrentValuesAndItsListsFromTheSecondFileOn) {
    save("c:\\data\\a.txt");
    UserFileRecord r = record();
    EXPECT_EQ(r.marker, 0xFF);
    EXPECT_EQ(r.version, 5);
    EXPECT_STREQ(r.fileName, "c:\\data\\a.txt");
    EXPECT_STREQ(r.filter, "*.txt");
    EXPECT_STREQ(r.directory, "c:\\data\\");
    EXPECT_EQ(r.fileCount + r.filterCount + r.directoryCount, 0);
    save("c:\\data\\b.dat");
    r = record();
    EXPECT_THAT(entries(r.fileHistory, r.fileCount), ElementsAre("c:\\data\\b.dat"));
    EXPECT_THAT(entries(r.filterHistory, r.filterCount), ElementsAre("*.dat"));
    EXPECT_THAT(entries(r.directoryHistory, r.directoryCount), ElementsAre("c:\\data\\"));
}

TEST_F(RememberedFiles, TheLatestStandsFirstOnceAndTheTenthFallsOff) {
    save("start");
    for (const char* name : {"c", "b", "a"}) save(name);
    EXPECT_THAT(files(), ElementsAre("a", "b", "c"));
    save("a");
    EXPECT_THAT(files(), ElementsAre("a", "b", "c"));
    save("c");
    EXPECT_THAT(files(), ElementsAre("c", "a", "b"));
    for (int n = 1; n <= 7; ++n) save(std::to_string(n));
    EXPECT_THAT(files(), ElementsAre("7", "6", "5", "4", "3", "2", "1", "c", "a", "b"));
    save("8");
    EXPECT_THAT(files(), ElementsAre("8", "7", "6", "5", "4", "3", "2", "1", "c", "a"));
    save("a");
    EXPECT_THAT(files(), ElementsAre("a", "8", "7", "6", "5", "4", "3", "2", "1", "c"));
}

TEST_F(RememberedFiles, ARecordOfAnotherVersionKeepsItsLists) {
    UserFileRecord other = {};
    other.marker = 0xFF;
    other.version = 4;
    other.fileCount = 99;
    std::memset(other.fileHistory, 'x', sizeof other.fileHistory);
    other.reserved[17] = 42;
    mdlUserPrefs_saveFileName(&other, handle, -20001);
    save("new.txt");
    void* block = mdlResource_load(handle, MDL_RSC_TYPE('U', 's', 'F', 'i'), -20001);
    ASSERT_NE(block, nullptr);
    ASSERT_EQ(mdlResource_size(block), 11032);
    const auto* bytes = static_cast<const unsigned char*>(block);
    EXPECT_EQ(bytes[0], 0xFF);
    EXPECT_EQ(bytes[4], 5);
    EXPECT_STREQ(reinterpret_cast<const char*>(bytes + 8), "new.txt");
    EXPECT_STREQ(reinterpret_cast<const char*>(bytes + 264), "*.txt");
    EXPECT_EQ(bytes[776], 99);
    for (size_t i = 780; i < 3340; ++i) ASSERT_EQ(bytes[i], 'x') << i;
    EXPECT_EQ(bytes[5904 + 17], 42);
    mdlResource_free(block);
}

TEST_F(RememberedFiles, ADialogOpensOnTheFileFilterAndDirectoryOfTheLastTime) {
    writeFile("one.txt", "1");
    std::filesystem::create_directory(path("sub"));
    writeFile("sub/two.dat", "2");
    mdlSystem_defineCfgVar("MY_DATA", path("").c_str(), 4);
    char result[256] = "untouched";
    EXPECT_NE(mclibUpf_defFileOpen(result, "first.txt", "*.txt", "MY_DATA", "Choose", -7), 0);
    EXPECT_STREQ(result, "untouched");
    const host::FileQuestion first = front().files.questions.at(0);
    EXPECT_EQ(first.title, "Choose");
    EXPECT_EQ(first.suggested, "first.txt");
    EXPECT_EQ(first.filter, "*.txt");
    EXPECT_EQ(first.directory, path(""));
    EXPECT_TRUE(first.remembered.empty());

    front().files.answer("one.txt").answer("sub/two.dat");
    EXPECT_EQ(mclibUpf_defFileOpen(result, "", "*.txt", "MY_DATA", "Choose", -7), 0);
    EXPECT_EQ(result, path("one.txt"));
    EXPECT_EQ(mclibUpf_defFileOpen(result, "", "*.txt", "MY_DATA", "Choose", -7), 0);
    front().files.questions.clear();
    mclibUpf_close();
    mclibUpf_openWithPath(nullptr, path("p.upf").c_str());
    mclibUpf_defFileCreate(result, "else.txt", "*.txt", "MY_DATA", "Make", -7);
    const host::FileQuestion last = front().files.questions.at(0);
    EXPECT_EQ(last.suggested, path("sub/two.dat"));
    EXPECT_EQ(last.directory, path("sub/"));
    EXPECT_THAT(last.remembered, ElementsAre(path("sub/two.dat"), path("one.txt")));
}

TEST_F(RememberedFiles, AnEditedListIsRememberedOnlyWhenItWasAccepted) {
    writeFile("one.txt", "1");
    StringList* list = mdlStringList_create(1, 1);
    mdlStringList_setMember(list, 0, "old.txt", nullptr);
    int reply = 0;
    front().files.answer("one.txt").cancel();
    EXPECT_EQ(mclibUpf_defFileListEdit(&reply, list, 283, "Files", "Chosen", "*.txt", path("").c_str(), -9), list);
    EXPECT_EQ(reply, 4);
    UserFileRecord r = {};
    EXPECT_EQ(mdlUserPrefs_getFileName(&r, handle, -9), MDL_ERROR);

    front().files.answer("one.txt").answer("-1").answer("");
    StringList* edited = mclibUpf_defFileListEdit(&reply, list, 283, "Files", "Chosen", "*.txt", path("").c_str(), -9);
    EXPECT_EQ(reply, 3);
    ASSERT_EQ(mdlStringList_size(edited), 1);
    const char* text = nullptr;
    mdlStringList_getMember(&text, nullptr, edited, 0);
    EXPECT_EQ(text, path("one.txt"));
    EXPECT_EQ(mdlUserPrefs_getFileName(&r, handle, -9), MDL_SUCCESS);
    EXPECT_EQ(r.directory, path(""));
    EXPECT_STREQ(r.filter, "*.txt");
    mdlStringList_destroy(edited);
    mdlStringList_destroy(list);
}

TEST_F(RememberedFiles, AFileOpenForReadingIsUsedAndNotWritten) {
    save("a.txt");
    mclibUpf_close();
    const WriteProtection protection(path("p.upf"));
    EXPECT_EQ(mclibUpf_openWithPath(nullptr, path("p.upf").c_str()), MCLIB_SUCCESS);
    EXPECT_EQ(mclibUpf_save(type, 1, "abc", 3), MCLIB_SUCCESS);
    char read[3];
    EXPECT_EQ(mclibUpf_load(type, 1, read, 3), MCLIB_ERROR) << "nothing was written";
    EXPECT_EQ(mclibUpf_saveFileName("b.txt", mclibUpf_getHandle(), -20001), MDL_RSC_READ_ONLY);
    EXPECT_TRUE(boxes.empty());
    mclibUpf_close();
}

}  // namespace
