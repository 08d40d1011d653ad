// Choosing files, searching them, choosing members of lists: each dialog by script, with the resources as shipped.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "mchost/dialog/dialog.h"
#include "mchost/dialog/menus.h"
#include "mchost/front/scripted.h"
#include "mchost/mdl/lists.h"
#include "mchost/mdl/owned.hpp"
#include "mclib/dialogs/dialogs.h"
#include "mclib/frame/resource_files.h"
#include "tests/support/library_fixture.h"

namespace {

using host::Dialog;
using testing::ElementsAre;
using testing::HasSubstr;
using Names = std::vector<std::string>;

constexpr int32_t files = 20004, folders = 20005, found = 20006, one = 20007, several = 20008;
constexpr int32_t search = 20070, takeOut = 20071, writeList = 20072, readList = 20074;
constexpr int32_t filterText = 20061, directoryText = 20065, searchedText = 20069;

Names membersOf(const StringList* list) {
    Names members;
    for (int32_t i = 0; i < mdlStringList_size(list); ++i) {
        const char* text = "";
        mdlStringList_getMember(&text, nullptr, list, i);
        members.emplace_back(text);
    }
    return members;
}

const host::DialogItem& itemOf(const Dialog& dialog, int32_t kind, int32_t id) {
    return dialog.items().at(static_cast<size_t>(dialog.indexOf(kind, id)));
}
Names rowsOf(const Dialog& dialog, int32_t listBox) {
    return membersOf(itemOf(dialog, ITEM_LIST_BOX, listBox).list);
}

class Selection : public LibraryTest {
  protected:
    Selection() { front().answer = std::ref(script); }
    ~Selection() override { EXPECT_EQ(script.fault(), ""); }

    // Empty files on the drive c:, with their folders.
    void make(const Names& names) {
        for (const std::string& name : names) {
            std::filesystem::create_directories(std::filesystem::path(path("drive_c/" + name)).parent_path());
            writeFile("drive_c/" + name, "");
        }
    }
    // A folder that nobody may look into, within those that everybody may.
    std::filesystem::path closedFolder(const char* name) {
        const std::filesystem::path folder = path(std::string("drive_c/") + name);
        std::filesystem::permissions(path(""), static_cast<std::filesystem::perms>(0755));
        std::filesystem::permissions(folder, std::filesystem::perms::none);
        return folder;
    }
    host::DialogScript& rows(int32_t listBox, Names expected) {
        return script.check([=](Dialog& d) { EXPECT_EQ(rowsOf(d, listBox), expected); });
    }
    host::DialogScript& openRow(int32_t listBox, int32_t row) {
        return script.selectRow(listBox, row).activate(ITEM_LIST_BOX, listBox);
    }
    void firstIs(bool enabled) {
        script.check([=](Dialog& d) { EXPECT_EQ(itemOf(d, ITEM_PUSH_BUTTON, -3).enabled, enabled); });
    }
    std::string boxes() {
        std::string text;
        for (const std::string& line : shownBoxes) text += line + "|";
        return text;
    }
    // A message box in the way: what it says is kept.
    host::DialogScript& box() {
        return script
            .check([this](Dialog& d) {
                EXPECT_EQ(d.id(), 20011);
                for (const host::DrawCall& call : d.drawing())
                    if (const auto* text = std::get_if<host::DrawnText>(&call)) shownBoxes.push_back(text->text);
            })
            .press(-3);
    }

    host::DialogScript script;
    FileDialogResult result{};
    Names shownBoxes;
};

// ---- files of one folder ----

TEST_F(Selection, FilesComeWithTheirFolderInTheOrderTheyWereChosen) {
    make({"work/a.txt", "work/b.TXT", "work/c.dat", "work/sub/d.txt"});
    rows(files, {"a.txt", "b.TXT"});
    rows(folders, {"..", "sub", "[-c:-]"});
    firstIs(false);
    script.selectRows(files, {1, 0});
    firstIs(true);
    script.check([](Dialog& d) { EXPECT_EQ(d.title(), "Take some"); }).press(-3);
    const mdl::StringListPtr chosen(mclibDialog_selectFiles(&result, nullptr, "Take some", "*.txt", "c:\\work"));
    EXPECT_THAT(membersOf(chosen.get()), ElementsAre("c:\\work\\b.TXT", "c:\\work\\a.txt"));
    EXPECT_STREQ(result.directory, "c:\\work\\");
    EXPECT_STREQ(result.filter, "*.txt");
    EXPECT_EQ(result.reply, MDL_FILES_OK);
}

TEST_F(Selection, FoldersLeadDownUpAndToDrives) {
    make({"a/b/deep.txt", "a/middle.txt", "top.txt"});
    openRow(folders, 1);
    rows(files, {"deep.txt"});
    script.selectRow(files, 0);
    openRow(folders, 0);
    rows(files, {"middle.txt"});
    firstIs(false);
    openRow(folders, 0);
    openRow(folders, 0);  // the root stays
    rows(files, {"top.txt"});
    script.setValue(ITEM_TEXT, directoryText, "c:\\a\\b");
    rows(files, {"deep.txt"});
    openRow(folders, 1);  // the drive
    script.check([](Dialog& d) { EXPECT_EQ(itemOf(d, ITEM_TEXT, directoryText).value, "c:\\"); });
    script.setValue(ITEM_TEXT, filterText, "*.dat;t*.txt");
    rows(files, {"top.txt"});
    script.selectRow(files, 0).press(-3);
    const mdl::StringListPtr chosen(mclibDialog_selectFiles(&result, nullptr, nullptr, "*.txt", "c:\\a\\"));
    EXPECT_THAT(membersOf(chosen.get()), ElementsAre("c:\\top.txt"));
}

TEST_F(Selection, AFolderThatCannotBeReadLeavesTheListsAsTheyAre) {
    make({"a/x.txt", "a/closed/y.txt"});
    const std::filesystem::path closed = closedFolder("a/closed");
    openRow(folders, 1);
    box();
    script.setValue(ITEM_TEXT, directoryText, "c:\\nowhere");
    box();
    rows(files, {"x.txt"});
    script.selectRow(files, 0).press(-3);
    {
        const WriteProtection nobody(path("drive_c/a/x.txt"));
        const mdl::StringListPtr chosen(mclibDialog_selectFiles(&result, nullptr, nullptr, "*.txt", "c:\\a"));
        EXPECT_THAT(membersOf(chosen.get()), ElementsAre("c:\\a\\x.txt"));
    }
    std::filesystem::permissions(closed, std::filesystem::perms::owner_all);
    EXPECT_THAT(boxes(), HasSubstr("closed\\|"));
    EXPECT_THAT(boxes(), HasSubstr("c:\\nowhere\\|"));
}

TEST_F(Selection, CancelGivesNothingAndLeavesTheCallersListAlone) {
    make({"a.txt"});
    const mdl::StringListPtr own(mdlStringList_create(3, 1));
    script.press(-4);
    EXPECT_EQ(mclibDialog_selectFiles(&result, own.get(), "", "*.txt", "no such folder"), nullptr);
    script.selectRow(files, 0).press(-4);
    EXPECT_EQ(mclibDialog_selectFiles(&result, own.get(), "", "*.txt", "c:\\"), nullptr);
    EXPECT_EQ(mdlStringList_size(own.get()), 3);
    EXPECT_EQ(result.reply, 0);
    script.press(-3);
    EXPECT_EQ(mclibDialog_selectFiles(&result, own.get(), "", "*.txt", "no such folder"), own.get());
    EXPECT_STREQ(result.directory, "c:\\");
}

// ---- searching ----

TEST_F(Selection, ASearchGivesTheDeepestFirstAndEachPatternByItself) {
    make({"p/z.mcd", "p/a.cel", "p/sub/m.mcd", "p/sub/deep/k.mcd", "p/sub/deep/k.cel", "p/other/n.mcd", "p/no.txt"});
    std::filesystem::create_directory_symlink(path("drive_c/p"), path("drive_c/p/sub/deep/round"));
    std::filesystem::create_directory_symlink(path("drive_c/p/other"), path("drive_c/p/sub/same"));
    script.press(search).press(-3);
    const mdl::StringListPtr all(mclibDialog_searchFiles(&result, "", "*.mcd; *.cel;;", "c:\\p"));
    EXPECT_THAT(membersOf(all.get()), ElementsAre("c:\\p\\other\\n.mcd", "c:\\p\\sub\\deep\\k.mcd", "c:\\p\\sub\\m.mcd",
                                                  "c:\\p\\z.mcd", "c:\\p\\sub\\deep\\k.cel", "c:\\p\\a.cel"));
    EXPECT_STREQ(result.directory, "c:\\p");
    EXPECT_EQ(result.reply, MDL_FILES_OK);
}

TEST_F(Selection, WhatASearchCannotLookIntoIsTold) {
    make({"p/z.mcd", "p/closed/a.mcd"});
    const std::filesystem::path closed = closedFolder("p/closed");
    Names lines;
    script.press(search)
        .check([&](Dialog& d) {
            EXPECT_EQ(d.id(), 20010);
            lines = rowsOf(d, 20000);
        })
        .press(-3)
        .press(-3);
    {
        const WriteProtection nobody(path("drive_c/p/z.mcd"));
        const mdl::StringListPtr all(mclibDialog_searchFiles(&result, "", "*.mcd;*.cel", "c:\\p"));
        EXPECT_THAT(membersOf(all.get()), ElementsAre("c:\\p\\z.mcd"));
    }
    std::filesystem::permissions(closed, std::filesystem::perms::owner_all);
    EXPECT_THAT(lines, ElementsAre("\"c:\\p\\closed\\\" was left out"));
}

TEST_F(Selection, ASearchBeginsInTheFirstFolderOfAVariableOrWhereTheLastOneWas) {
    make({"p/z.mcd", "q/y.mcd"});
    mdlSystem_defineCfgVar("FOLDERS", "c:\\p\\;c:\\q\\", 4);
    const auto begins = [&](const char* directory, const char* filter) {
        script.check([=](Dialog& d) {
            EXPECT_EQ(itemOf(d, ITEM_TEXT, searchedText).value, directory);
            EXPECT_EQ(itemOf(d, ITEM_TEXT, filterText).value, filter);
        });
    };
    begins("c:\\p\\", "*.mcd");
    script.press(-4);
    EXPECT_EQ(mclibDialog_searchFiles(&result, "", "*.mcd", "FOLDERS"), nullptr);
    begins("c:\\", "*.mcd");
    script.setValue(ITEM_TEXT, searchedText, "c:\\q").setValue(ITEM_TEXT, filterText, "y*").press(search).press(-3);
    mclibUpf_open(nullptr, "NO_VARIABLE", "tester.rsc");
    const mdl::StringListPtr first(mclibUpf_defSearchFiles("", "*.mcd", "no such folder", 7));
    EXPECT_THAT(membersOf(first.get()), ElementsAre("c:\\q\\y.mcd"));
    begins("c:\\q", "y*");
    script.press(-4);
    EXPECT_EQ(mclibUpf_defSearchFiles("", "*.mcd", "FOLDERS", 7), nullptr);
    mclibUpf_close();
}

TEST_F(Selection, FoundFilesCanBeTakenOutWrittenAndRead) {
    make({"p/a.mcd", "p/b.mcd", "p/c.mcd"});
    const std::string list = path("list.txt");
    front().files.answer(list).answer(list);
    script.press(search).selectRows(found, {2, 0}).press(takeOut);
    rows(found, {"c:\\p\\b.mcd"});
    script.check([this](Dialog&) { front().files.agree(true); }).press(writeList).press(-3);
    const mdl::StringListPtr rest(mclibDialog_searchFiles(&result, "", "*.mcd", "c:\\p"));
    EXPECT_THAT(membersOf(rest.get()), ElementsAre("c:\\p\\b.mcd"));
    EXPECT_EQ(readFile("list.txt"), "c:\\p\\b.mcd\n");

    writeFile("list.txt", "# files\nc:\\p\\c.mcd\nc:\\p\\gone.mcd\n\nc:\\p\\a.mcd\n");
    script.press(readList)
        .check([](Dialog& d) { EXPECT_EQ(rowsOf(d, 20000), Names{"\"c:\\p\\gone.mcd\" not found"}); })
        .press(-3)
        .press(-3);
    result = {};
    const mdl::StringListPtr read(mclibDialog_searchFiles(&result, "", "*.mcd", "c:\\p"));
    EXPECT_THAT(membersOf(read.get()), ElementsAre("c:\\p\\c.mcd", "c:\\p\\a.mcd"));
}

TEST_F(Selection, AHundredThousandRowsAreTakenOutAtOnce) {
    constexpr int32_t count = 100000;
    script.check([](Dialog& d) {
        StringList* const list = itemOf(d, ITEM_LIST_BOX, found).list;
        EXPECT_EQ(mdlStringList_insertMember(nullptr, list, -1, count), MDL_SUCCESS);
        EXPECT_EQ(mdlStringList_setMember(list, count - 1, "last", nullptr), MDL_SUCCESS);
    });
    std::vector<int32_t> odd;
    for (int32_t row = 0; row < count; row += 2) odd.push_back(row);
    script.selectRows(found, odd).press(takeOut).press(-3);
    const mdl::StringListPtr rest(mclibDialog_searchFiles(&result, "", "*", "c:\\"));
    EXPECT_EQ(mdlStringList_size(rest.get()), count / 2);
    EXPECT_EQ(membersOf(rest.get()).back(), "last");
}

// ---- members of lists ----

struct Filling {
    Names texts;
    bool none = false;
};
void fillOne(StringList** listP, void* userArg) {
    const auto& filling = *static_cast<Filling*>(userArg);
    if (filling.none) return;
    *listP = mdlStringList_create(static_cast<int32_t>(filling.texts.size()), 2);
    for (size_t i = 0; i < filling.texts.size(); ++i) {
        const int32_t info[] = {static_cast<int32_t>(i) * 10, static_cast<int32_t>(i) * 100};
        mdlStringList_setMember(*listP, static_cast<int32_t>(i), filling.texts[i].c_str(), info);
    }
}
void fillSeveral(StringList** listP, void* userArg, int) {
    fillOne(listP, userArg);
}

TEST_F(Selection, OneRowIsChosenAndItsTextCutToTheBuffer) {
    struct Case {
        std::function<void(host::DialogScript&)> answer;
        int columns, row;
        const char* text;
    };
    const auto press = [](int32_t button) { return [=](host::DialogScript& s) { s.press(button); }; };
    const auto row = [](int32_t r) { return [=](host::DialogScript& s) { s.selectRow(one, r).press(-3); }; };
    const Case cases[] = {
        {press(-3), 0, 0, "abc"},  // the first one is chosen at the start
        {row(1), 0, 1, "xyz"},
        {row(1), 2, 1, "las"},  // rows of two members
        {[](host::DialogScript& s) { s.selectRow(one, 2).activate(ITEM_LIST_BOX, one); }, 0, 2, "las"},
        {[](host::DialogScript& s) { s.selectRow(one, 2).press(-4); }, 0, -1, "-"},
        {[](host::DialogScript& s) { s.close(); }, 0, -1, "-"},
    };
    Filling filling{{"abcdef", "xyz", "last", "more"}};
    for (const Case& c : cases) {
        char text[4] = "-";
        c.answer(script);
        EXPECT_EQ(mclibDialog_selectFromStringListSingle(text, 4, fillOne, &filling, "", "", 0, c.columns), c.row);
        EXPECT_STREQ(text, c.text);
    }
}

TEST_F(Selection, AListDialogTakesItsLabelTitleAndRows) {
    Filling filling{{"a", "b"}};
    script
        .check([](Dialog& d) {
            const host::DialogItem& list = itemOf(d, ITEM_LIST_BOX, one);
            EXPECT_EQ(d.title(), "Layers");
            EXPECT_EQ(list.label, "Layer");
            EXPECT_EQ(list.rect.bottom - list.rect.top, 20 * host::rowHeight);
            EXPECT_GE(itemOf(d, ITEM_PUSH_BUTTON, -3).rect.top, list.rect.bottom);
            EXPECT_GE(d.height(), itemOf(d, ITEM_PUSH_BUTTON, -3).rect.bottom);
        })
        .press(-3);
    EXPECT_EQ(mclibDialog_selectFromStringListSingle(nullptr, 0, fillOne, &filling, "Layers", "Layer", 20, 0), 0);
}

TEST_F(Selection, ListsOfNothingChooseNothing) {
    Filling none{{}, true}, empty{};
    char text[8] = "-";
    EXPECT_EQ(mclibDialog_selectFromStringListSingle(text, 8, fillOne, &none, "t", "l", 0, 0), -1);
    EXPECT_EQ(mclibDialog_selectFromStringListMulti(fillSeveral, &none, 1, "t", "l"), nullptr);
    EXPECT_EQ(front().dialogs, 0);
    script.press(-3);
    EXPECT_EQ(mclibDialog_selectFromStringListSingle(text, 8, fillOne, &empty, "", "", 0, 0), -1);
    script.press(-3);
    EXPECT_EQ(mclibDialog_selectFromStringListMulti(fillSeveral, &empty, 1, "", ""), nullptr);
    EXPECT_STREQ(text, "-");
}

TEST_F(Selection, SeveralRowsComeWithTheInfoFieldsThatAreAskedFor) {
    Filling filling{{"a", "b", "c"}};
    script.press(-3);
    const mdl::StringListPtr first(mclibDialog_selectFromStringListMulti(fillSeveral, &filling, 1, "", ""));
    EXPECT_THAT(membersOf(first.get()), ElementsAre("a"));
    script.selectRows(several, {2, 1}).press(-3);
    const mdl::StringListPtr chosen(mclibDialog_selectFromStringListMulti(fillSeveral, &filling, 1, "", ""));
    EXPECT_THAT(membersOf(chosen.get()), ElementsAre("c", "b"));
    int32_t value = -1;
    EXPECT_EQ(mdlStringList_getInfoField(&value, chosen.get(), 0, 0), MDL_SUCCESS);
    EXPECT_EQ(value, 20);
    EXPECT_EQ(mdlStringList_getInfoField(&value, chosen.get(), 0, 1), MDL_ERROR);
    script.selectRows(several, {}).press(-3);
    EXPECT_EQ(mclibDialog_selectFromStringListMulti(fillSeveral, &filling, 1, "", ""), nullptr);
    script.press(-4);
    EXPECT_EQ(mclibDialog_selectFromStringListMulti(fillSeveral, &filling, 1, "", ""), nullptr);
}

// ---- items and menus ----

TEST_F(Selection, OptionButtonsTakeEveryStepOfAList) {
    const mdl::StringListPtr list(mdlStringList_create(5, 0)), empty(mdlStringList_create(0, 0));
    for (int32_t i = 0; i < 5; ++i) mdlStringList_setMember(list.get(), i, std::to_string(i).c_str(), nullptr);
    MdlDialog* const dialog = mdlDialog_open(0, 20006);
    constexpr int32_t orientation = 20004;
    MdlItem* const button = mdlDialog_itemGetByTypeAndId(dialog, ITEM_OPTION_BUTTON, orientation);
    const auto fill = [&](StringList* from, int step, int offset) {
        return mclibDialog_optionButtonInsertFromStringlist(from, step, offset, dialog, orientation, 1);
    };
    EXPECT_EQ(fill(list.get(), 2, 1), MCLIB_SUCCESS);
    Names entries;
    for (const host::OptionRow& row : itemOf(*host::openDialogs().at(0), ITEM_OPTION_BUTTON, orientation).rows)
        entries.push_back(row.label + "=" + std::to_string(row.value));
    EXPECT_THAT(entries, ElementsAre("1=0", "3=1"));
    EXPECT_EQ(fill(list.get(), 0, 0), MCLIB_ERROR);
    EXPECT_EQ(mdlDialog_optionButtonCount(button), 2);
    EXPECT_EQ(fill(empty.get(), 1, 0), MCLIB_ERROR);
    EXPECT_EQ(mdlDialog_optionButtonCount(button), 0);
    EXPECT_EQ(mclibDialog_optionButtonInsertFromStringlist(list.get(), 1, 0, nullptr, orientation, 1), MCLIB_ERROR);

    mclibDialog_itemEnableByTypeAndId(dialog, ITEM_OPTION_BUTTON, orientation, 0);
    mclibDialog_itemShowByTypeAndId(dialog, ITEM_OPTION_BUTTON, orientation, 0);
    mclibDialog_itemShowByTypeAndId(dialog, ITEM_OPTION_BUTTON, 12345, 0);
    EXPECT_FALSE(mdlDialog_itemIsEnabled(button));
    EXPECT_FALSE(mdlDialog_itemIsShown(button));
    mdlWindow_close(dialog, 0, 1);
}

TEST_F(Selection, AMenuThatIsNotThereIsToldAndDeletingNoneDoesNothing) {
    void* menu = &script;
    mclibDialog_deletePdm();
    mclibDialog_insertPdm(&menu, 4711);
    EXPECT_EQ(menu, nullptr);
    ASSERT_EQ(front().messages.size(), 1u);
    EXPECT_THAT(front().messages[0].brief, HasSubstr("Menu 4711"));
    EXPECT_TRUE(host::menuBar().empty());
}

}  // namespace
