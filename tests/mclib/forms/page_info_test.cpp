// The page information dialog: what it keeps, and what it asks before changes are lost.
#include <cstring>

#include "mclib/forms/forms.h"
#include "mclib/frame/global_data.h"
#include "mclib/project/dialog.h"
#include "tests/mclib/forms/preview_fixture.h"

using namespace mc;

namespace {

const TestPage one{"one", 180000, 277000}, two{"two", 277000, 180000};
constexpr int32_t saveButton = 20086, deleteButton = 20087, cleanUpButton = 20088, deleteAllButton = 20089;
constexpr int32_t pageButton = 20015, revision = 20120;
constexpr int yes = -3, no = -4;  // buttons of a question

class PageInfo : public PreviewTest {
  protected:
    void openInfo(std::vector<TestPage> pages = {one, two}) {
        openPreview(std::move(pages));
        press(dialog(), 20083);
        ASSERT_NE(openDialog(20024), nullptr);
    }
    static host::Dialog& info() { return *openDialog(20024); }
    // The user types the revision of the page in the dialog.
    static void type(const std::string& text) {
        EXPECT_TRUE(info().setValue(placeOf(info(), ITEM_TEXT, revision), text));
    }
    static std::string shown() { return valueOf(info(), ITEM_TEXT, revision); }
    static void store(const char* pageName, const char* revs) {
        mclibSideData page{};
        std::strcpy(page.pageName, pageName);
        std::strcpy(page.revs, revs);
        mclibProject_writePageInfoToDesignFile(&page);
    }
    // The revision in the design file; "-" when there is no record.
    static std::string stored(const char* pageName) {
        mclibSideData page{};
        mclibProject_readPageInfoFromDesignFile(&page, pageName);
        return *page.pageName ? page.revs : "-";
    }
};

TEST_F(PageInfo, ShowsTheChosenPagesInformation) {
    store("one", "A");
    store("two", "B");
    openInfo();
    EXPECT_EQ(valueOf(info(), ITEM_OPTION_BUTTON, pageButton), "0");
    EXPECT_EQ(shown(), "A");
    choose(info(), pageButton, 1);
    EXPECT_EQ(shown(), "B");
    EXPECT_EQ(get("mgdP->previewPage"), "0");
}

TEST_F(PageInfo, SavesARunningEditUnderThePagesNameAndShowsThePageAnew) {
    openInfo();
    info().type(placeOf(info(), ITEM_TEXT, revision), "C");
    press(info(), saveButton);
    EXPECT_EQ(stored("one"), "C");
    EXPECT_EQ(testApplication.made.size(), 2u);
    const int asked = front().dialogs;
    choose(info(), pageButton, 1);
    EXPECT_EQ(front().dialogs, asked) << "nothing is unsaved";
    type("D");
    press(info(), saveButton);
    EXPECT_EQ(stored("two"), "D");
    EXPECT_EQ(testApplication.made.size(), 2u);  // it isn't on show
    press(info(), -4);
}

TEST_F(PageInfo, AsksBeforeAnotherPageTakesThePlaceOfChanges) {
    openInfo();
    for (const auto& [answer, kept] : {std::pair(no, "-"), std::pair(yes, "E")}) {
        choose(info(), pageButton, 0);
        type("E");
        answers.press(answer);
        choose(info(), pageButton, 1);
        EXPECT_TRUE(answers.finished());
        EXPECT_EQ(stored("one"), kept);
        EXPECT_EQ(shown(), "");
    }
}

TEST_F(PageInfo, AsksBeforeTheDialogCloses) {
    for (const auto& [answer, kept] : {std::pair(no, "-"), std::pair(yes, "F")}) {
        openInfo();
        type("F");
        answers.press(answer);
        press(info(), -4);
        EXPECT_TRUE(answers.finished());
        EXPECT_EQ(stored("one"), kept);
        EXPECT_EQ(mclibMain_getGlobalDataP()->pageInfoSaved, 1);
    }
}

TEST_F(PageInfo, GoesAlongToThePageThatComesOnShow) {
    store("two", "B");
    openInfo();
    type("G");
    answers.press(yes);
    choose(dialog(), 20001, 1);
    EXPECT_EQ(stored("one"), "G");
    EXPECT_EQ(valueOf(info(), ITEM_OPTION_BUTTON, pageButton), "1");
    EXPECT_EQ(shown(), "B");
}

TEST_F(PageInfo, MakingPagesLeavesWhatIsBeingEdited) {
    store("two", "B");
    openInfo();
    choose(info(), pageButton, 1);
    type("H");
    testApplication.whileMade = [](int) { set("mclibsd->revs", "X"); };  // as a title block's values do
    answers.setValue(ITEM_OPTION_BUTTON, 20012, "1").setValue(ITEM_TOGGLE, 20006, "1");
    answers.setValue(ITEM_TEXT, 20013, path("out.ps")).press(-3);
    press(dialog(), 20007);
    EXPECT_EQ(testApplication.made.size(), 3u);
    mclibPreview_setUserPrintFunction([](int) { set("mclibsd->revs", "Y"); });
    answers.setValue(ITEM_OPTION_BUTTON, 20012, "1").press(-3);
    press(dialog(), 20007);
    testApplication.whileMade = nullptr;
    press(info(), saveButton);
    EXPECT_EQ(stored("two"), "H");
}

TEST_F(PageInfo, MakingPagesLeavesTheProjectThatIsBeingEditedAndItsWritingShowsThePageAnew) {
    openPreview({one, two});
    press(dialog(), 20092);
    host::Dialog& project = *openDialog(20008);
    EXPECT_TRUE(project.setValue(placeOf(project, ITEM_TEXT, 20100), "TYPED"));
    testApplication.whileMade = [](int) {  // as a page with a title block
        FormData* form = mclibMatList_createFormDataArray(4, 10);
        mclibProject_insertProjectData(form);
        mclibMatList_destroyFormDataArray(form);
    };
    choose(dialog(), 20001, 1);
    EXPECT_EQ(get("mclibpd->pron"), "TYPED");
    const size_t made = testApplication.made.size();
    press(project, 20028);
    EXPECT_EQ(testApplication.made.size(), made + 1);
    mclibProsjektData stored;
    mclibProject_readProjectInfoFromDesignFile(&stored);
    EXPECT_STREQ(stored.pron, "TYPED");
}

TEST_F(PageInfo, GoesToThePageOnShowOfANewPreview) {
    store("Alpha", "S");
    openInfo();
    openPreview({{"Alpha", 180000, 277000}, {"Beta", 180000, 277000}});
    EXPECT_EQ(shown(), "S");
    EXPECT_EQ(info().items()[placeOf(info(), ITEM_OPTION_BUTTON, pageButton)].rows[1].label, "Beta");
}

TEST_F(PageInfo, GoesToThePageOnShowOfANewList) {
    store("second", "S");
    openInfo();
    choose(dialog(), 20001, 1);
    type("I");
    testApplication.newList = {"first", "second"};
    answers.press(yes);
    press(dialog(), 20009);
    EXPECT_EQ(stored("two"), "I");
    EXPECT_EQ(shown(), "S");
    EXPECT_EQ(info().items()[placeOf(info(), ITEM_OPTION_BUTTON, pageButton)].rows[0].label, "first");
}

TEST_F(PageInfo, DeletesOnePagesThoseOfNoPageAndAll) {
    for (const char* page : {"one", "two", "gone"}) store(page, "A");
    openInfo();
    press(info(), deleteButton);
    EXPECT_EQ(stored("one"), "-");
    EXPECT_EQ(shown(), "");
    EXPECT_EQ(get("mclibsd->pageName"), "one");
    EXPECT_EQ(stored("gone"), "A");
    press(info(), cleanUpButton);
    EXPECT_EQ(stored("gone"), "-");
    EXPECT_EQ(stored("two"), "A");
    answers.press(no);
    press(info(), deleteAllButton);
    EXPECT_EQ(stored("two"), "A");
    answers.press(yes);
    press(info(), deleteAllButton);
    EXPECT_EQ(stored("two"), "-");
    EXPECT_TRUE(answers.finished());
}

}  // namespace
