#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "mchost/dialog/dialog.h"
#include "mchost/mdl/resource.h"
#include "mchost/mdl/system.h"
#include "mchost/session/memory.h"
#include "mclib/frame/errors.h"
#include "mclib/frame/main.h"
#include "mclib/frame/messages.h"
#include "mclib/text/file.h"
#include "tests/support/drawn.h"
#include "tests/support/session_fixture.h"

using namespace mc;

namespace {

// What a modal dialog showed before it was answered.
struct Shown {
    int32_t id = 0;
    std::string title = {};
    std::vector<std::string> lines = {};
    std::vector<std::string> buttons = {};  // those that are shown
    std::vector<std::string> rows = {};     // of a list box
};

Shown lookAt(host::Dialog& dialog) {
    dialog.refresh();
    Shown shown{.id = dialog.id(), .title = dialog.title()};
    for (const host::DrawnText& line : drawnIn<host::DrawnText>(dialog)) shown.lines.push_back(line.text);
    for (const host::DialogItem& item : dialog.items()) {
        if (item.kind == ITEM_PUSH_BUTTON && item.shown) shown.buttons.push_back(item.label);
        if (item.kind != ITEM_LIST_BOX) continue;
        for (int32_t row = 0; row < host::Dialog::rowCount(item); ++row)
            shown.rows.push_back(host::Dialog::cellText(item, row, 0));
    }
    return shown;
}

bool pressButton(host::Dialog& dialog, int32_t id) {
    const int32_t index = dialog.indexOf(ITEM_PUSH_BUTTON, id);
    return index >= 0 && dialog.press(static_cast<size_t>(index));
}

class Messages : public SessionTest {
  protected:
    explicit Messages(std::vector<std::pair<std::string, std::string>> more = {{"MC_DIR", "c:\\mc\\"}})
        : SessionTest(withResources(std::move(more))) {}

    static std::vector<std::pair<std::string, std::string>> withResources(
        std::vector<std::pair<std::string, std::string>> variables) {
        variables.emplace_back("MS_APPRSC", BUILD_DIR "/lib/mclib.rsc");
        return variables;
    }
    MdlDesc* start(const std::string& name, const std::string& argv0 = {}) {
        return session().startApplication(
            name, [](int argc, char** argv) { return mclibMain_initMcLib(argv[2], argc, argv); }, "USER", {name},
            argv0);
    }
    // Has each modal dialog kept in `shown` and answered with that button.
    void answerWith(int32_t button) {
        front().answer = [this, button](host::Dialog& dialog) {
            shown.push_back(lookAt(dialog));
            return pressButton(dialog, button);
        };
    }
    std::vector<Shown> shown;
};

// ---- boxes ----

class Boxes : public Messages {
  protected:
    Boxes() : scope_(start("Roads")) { answerWith(MDL_BUTTON_FIRST); }

  private:
    host::ApplicationScope scope_;
};

TEST_F(Boxes, CutTextsThatAreTooLong) {
    std::string thirty;
    for (int i = 1; i <= 30; ++i) thirty += std::to_string(i) + "\n";
    mclibError_msgBoxPrintf(17, "%s", thirty.c_str());
    mclibError_msgBoxPrintf(17, "%s", std::string(3000, 'x').c_str());
    ASSERT_EQ(shown.size(), 2u);
    EXPECT_EQ(shown[0].lines.size(), 24u);
    EXPECT_EQ(shown[0].lines.back(), "24");
    EXPECT_EQ(shown[1].lines, std::vector<std::string>{std::string(1023, 'x')});
}

TEST_F(Boxes, TakeMessagesFromTheListsInTheLanguageInUse) {
    EXPECT_EQ(mclibError_rscMsgBoxPrintf(17, MCLIB_ERRORS, 1, "c:\\road.txt"), MSGBOX_FIRST);
    mdlSystem_defineCfgVar("MS_LANGUAGE", "no", 4);
    mclibError_rscMsgBoxPrintf(17, MCLIB_ERRORS, 1, "c:\\vei.txt");
    ASSERT_EQ(shown.size(), 2u);
    EXPECT_EQ(shown[0].lines[1], "c:\\road.txt");
    EXPECT_EQ(shown[1].lines[1], "c:\\vei.txt");
    EXPECT_NE(shown[0].lines[0], shown[1].lines[0]);
    EXPECT_EQ(mclibError_rscMsgBoxPrintf(17, MCLIB_ERRORS, 9999), MCLIB_NOT_SHOWN);
    EXPECT_EQ(mclibError_rscListPrintf(LIST_COLLECT, 19999, 1), MCLIB_NOT_SHOWN);
    EXPECT_EQ(shown.size(), 2u);
}

TEST_F(Boxes, OnALongLineNameItsFileAndPlace) {
    writeFile("in.txt", "short\na line of more than twenty characters\n");
    writeFile("top.txt", "first\n%include in.txt\n");
    McFile* file = mclibFile_open(path("top.txt").c_str(), "r");
    ASSERT_NE(file, nullptr);
    char line[20];
    int status = 0;
    while ((status = mclibFile_read(line, file, sizeof line)) > 0) {
    }
    EXPECT_EQ(status, -1);
    ASSERT_EQ(shown.size(), 1u);
    ASSERT_EQ(shown[0].lines.size(), 3u);
    EXPECT_NE(shown[0].lines[0].find("20"), std::string::npos);
    EXPECT_EQ(shown[0].lines[1], path("in.txt") + ", line 2");
    EXPECT_EQ(mclibFile_close(file), 0);
}

TEST_F(Boxes, HaveTitlesThatBelongToTheApplication) {
    MdlDesc* other = start("Rails");
    mclibError_setTitle(1, "%s %d", "Line", 7);
    mclibError_setTitle(2, "%s", std::string(600, 't').c_str());
    mclibError_msgBoxPrintf(17, "x");
    mclibError_msgBoxPrintf(66, "x");
    {
        const host::ApplicationScope scope(other);
        mclibError_msgBoxPrintf(17, "x");
    }
    front().clear();
    mclibError_setTitle(3, "%s", "of no kind");
    EXPECT_EQ(front().consoleText, "Feil under setting av tittel 3\n");
    mclibError_msgBoxPrintf(17, "x");
    ASSERT_EQ(shown.size(), 4u);
    EXPECT_EQ(shown[0].title, "Line 7");
    EXPECT_EQ(shown[1].title, std::string(512, 't'));
    EXPECT_EQ(shown[2].title, "Rails");
    EXPECT_EQ(shown[3].title, "Line 7");
}

// ---- collected lines ----

TEST_F(Boxes, CollectLinesUntilTheyAreShown) {
    MdlDesc* other = start("Rails");
    EXPECT_EQ(mclibError_listPrintf(LIST_COLLECT, "%s", ""), MCLIB_STORED);
    EXPECT_EQ(mclibError_listPrintf(LIST_COLLECT, "a\n\nb\n"), MCLIB_STORED);
    EXPECT_EQ(mclibError_listPrintf(LIST_NOTHING, "nowhere"), MCLIB_STORED);
    {
        const host::ApplicationScope scope(other);
        EXPECT_EQ(mclibError_rscListPrintf(LIST_COLLECT, MCLIB_ERRORS, 1, "c:\\x"), MCLIB_STORED);
    }
    EXPECT_EQ(mclibError_listPrintf(LIST_SHOW, "2 files\nfailed"), MSGBOX_FIRST);
    mclibError_listPrintf(LIST_SHOW, "again");
    ASSERT_EQ(shown.size(), 2u);
    EXPECT_EQ(shown[0].id, 20010);
    EXPECT_EQ(shown[0].lines, (std::vector<std::string>{"2 files", "failed"}));
    ASSERT_EQ(shown[0].rows.size(), 5u);
    EXPECT_EQ(shown[0].rows[0] + shown[0].rows[1] + shown[0].rows[3], "abc:\\x");
    EXPECT_TRUE(shown[1].rows.empty());
}

TEST_F(Boxes, AFullListDropsItsOldestLine) {
    constexpr int most = 65535;
    for (int i = 0; i <= most; ++i) ASSERT_EQ(mclibError_listPrintf(LIST_COLLECT, "%d", i), MCLIB_STORED);
    size_t rows = 0;
    std::string first, last;
    front().answer = [&](host::Dialog& dialog) {
        const host::DialogItem* list = &dialog.items()[static_cast<size_t>(dialog.indexOf(ITEM_LIST_BOX, 20000))];
        rows = static_cast<size_t>(host::Dialog::rowCount(*list));
        first = host::Dialog::cellText(*list, 0, 0);
        last = host::Dialog::cellText(*list, static_cast<int32_t>(rows) - 1, 0);
        return pressButton(dialog, MDL_BUTTON_FIRST);
    };
    mclibError_listPrintf(LIST_SHOW, "all");
    EXPECT_EQ(rows, static_cast<size_t>(most));
    EXPECT_EQ(first, "1");
    EXPECT_EQ(last, "65535");
}

TEST_F(Boxes, OtherModesPrintTheFirstLine) {
    front().clear();
    EXPECT_EQ(mclibError_listPrintf(LIST_CONSOLE, "100%% of %s\nand more", "it"), MCLIB_STORED);
    EXPECT_EQ(mclibError_listPrintf(-1, "next"), MCLIB_STORED);
    EXPECT_EQ(front().consoleText, "100% of it\nnext\n");
    EXPECT_TRUE(shown.empty());
}

TEST_F(Boxes, AMessageThatIsntInItsListIsTold) {
    front().clear();
    EXPECT_EQ(mclibError_rscMsgBoxPrintf(MSGBOX_NOTICE, 77, 99), MCLIB_NOT_SHOWN);
    EXPECT_EQ(mclibError_rscListPrintf(LIST_COLLECT, MCLIB_ERRORS, 9999), MCLIB_NOT_SHOWN);
    EXPECT_EQ(front().consoleText,
              "Roads: message 99 of list 77 isn't there. Put the application's resource file (.rsc), which has it, "
              "beside its module (.so).\n"
              "Roads: message 9999 of list 20005 isn't there. Check that MS_APPRSC names mclib.rsc.\n");
}

// A session that finds no layouts.
class WithoutLayouts : public SessionTest {};

TEST_F(WithoutLayouts, AMessageIsToldWithoutItsBox) {
    const host::ApplicationScope scope(application("lost"));
    EXPECT_EQ(mclibError_msgBoxPrintf(145, "Replace %s?\nIt is old.", "a.txt"), MSGBOX_SECOND);
    ASSERT_EQ(front().messages.size(), 3u) << "and why there is no box";
    EXPECT_EQ(front().messages[1].brief, "Replace a.txt?");
    EXPECT_EQ(front().messages[2].brief, "It is old.");
    mclibError_listPrintf(LIST_COLLECT, "first\nsecond");
    EXPECT_EQ(mclibError_listPrintf(LIST_SHOW, "2 failed"), MSGBOX_SECOND);
    EXPECT_EQ(front().messages.back().brief, "2 failed");
    mclibError_listPrintf(LIST_SHOW, "again");
    EXPECT_EQ(front().consoleText, "first\nsecond\n") << "the lines are told once";
}

// ---- memory ----

TEST_F(Boxes, MemoryComesZeroedAndGrowsWithItsContent) {
    auto* block = static_cast<unsigned char*>(mclibMem_mallocRscErrorPrintf(10, MCLIB_ERRORS, MCLIB_OUT_OF_MEMORY));
    for (int i = 0; i < 10; ++i) EXPECT_EQ(block[i], 0);
    std::fill(block, block + 10, 7);
    block =
        static_cast<unsigned char*>(mclibMem_reallocRscErrorPrintf(block, 10, 20, MCLIB_ERRORS, MCLIB_OUT_OF_MEMORY));
    for (int i = 0; i < 20; ++i) EXPECT_EQ(block[i], i < 10 ? 7 : 0) << i;
    dlmSystem_mdlFree(block);
    void* none = mclibMem_mallocRscErrorPrintf(0, MCLIB_ERRORS, MCLIB_OUT_OF_MEMORY);
    EXPECT_NE(none, nullptr);
    dlmSystem_mdlFree(none);
    EXPECT_TRUE(shown.empty());
}

class OutOfMemory : public Messages {
  protected:
    // Runs into the end of memory as an application of its own; true when it is still there afterwards.
    bool meetIt(int32_t button) {
        MdlDesc* desc = start("Hungry");
        front().answer = [this, button](host::Dialog& dialog) {
            host::failMemoryFrom(0);  // the user made room
            shown.push_back(lookAt(dialog));
            return pressButton(dialog, button);
        };
        const int32_t number = mdlSystem_getProcessNumberFromMdlDesc(desc);
        {
            const host::ApplicationScope scope(desc);
            void* old = mclibMem_mallocRscErrorPrintf(4, MCLIB_ERRORS, MCLIB_OUT_OF_MEMORY);
            std::memcpy(old, "old", 4);
            host::failMemoryFrom(1);
            EXPECT_EQ(mclibMem_reallocRscErrorPrintf(old, 4, 8, MCLIB_ERRORS, MCLIB_OUT_OF_MEMORY), nullptr);
            EXPECT_STREQ(static_cast<char*>(old), "old");
            dlmSystem_mdlFree(old);
        }
        return mdlSystem_getMdlDescFromProcessNumber(number) != nullptr;
    }
};

TEST_F(OutOfMemory, TheFirstButtonGoesOnWithoutTheBlock) {
    EXPECT_TRUE(meetIt(MDL_BUTTON_FIRST));
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].buttons, (std::vector<std::string>{"Continue", "End"}));
    EXPECT_EQ(shown[0].lines.size(), 2u);
}

TEST_F(OutOfMemory, TheSecondButtonEndsTheApplication) {
    EXPECT_FALSE(meetIt(MDL_BUTTON_SECOND));
}

TEST_F(OutOfMemory, WithoutItsMessageTheCallGivesNothing) {
    const host::ApplicationScope scope(start("Hungry"));
    host::failMemoryFrom(1);
    EXPECT_EQ(mclibMem_mallocRscErrorPrintf(8, MCLIB_ERRORS, 9999), nullptr);
    host::failMemoryFrom(0);
    EXPECT_EQ(front().dialogs, 0);
}

// ---- boxes while the first application starts ----

class AtStart : public Messages {
  protected:
    AtStart() { answerWith(MDL_BUTTON_FIRST); }
};

TEST_F(AtStart, ABoxHasItsTitleItsLinesAndItsButton) {
    mdlSystem_defineCfgVar("MS_USERPREF", writeFile("text.rsc", "no resource file").c_str(), 4);
    start("Roads");
    ASSERT_EQ(shown.size(), 1u) << "the preference file can't be used";
    EXPECT_NE(shown[0].title.find("Roads"), std::string::npos) << shown[0].title;
    EXPECT_EQ(shown[0].lines.size(), 3u);
    EXPECT_EQ(shown[0].buttons, std::vector<std::string>{"OK"});
}

// ---- the offer of MC_DIR ----

class FolderOffer : public Messages {
  protected:
    FolderOffer() : Messages({{"_USTN_SITE", "c:\\site\\"}}) {}

    static std::string folder() {
        char value[256];
        return mdlSystem_getenv(value, "MC_DIR", sizeof value) == 0 ? value : "undefined";
    }
};

TEST_F(FolderOffer, DefinesTheFolderThatTheApplicationCameFrom) {
    answerWith(MDL_BUTTON_FIRST);
    struct Case {
        const char *argv0, *folder;
    };
    constexpr Case cases[] = {{"C:\\a\\b\\c\\d\\e.ma", "C:\\a\\"},
                              {"C:\\b\\e.ma", "C:\\"},
                              {"C:\\x\\b\\c\\e.ma", "C:\\"},
                              {"/opt/mc/mdl/apps/x.so", "/opt/"}};
    for (const Case& c : cases) {
        shown.clear();
        start("Roads", c.argv0);
        EXPECT_EQ(folder(), c.folder) << c.argv0;
        ASSERT_EQ(shown.size(), 1u);
        std::string text;
        for (const std::string& line : shown[0].lines) text += line + "\n";
        EXPECT_NE(text.find("Roads starts,\nadd this line to c:\\site\\company.cfg\nMC_DIR = " + std::string(c.folder)),
                  std::string::npos)
            << text;
        mdlSystem_deleteCfgVar("MC_DIR");
    }
}

TEST_F(FolderOffer, CanBeDeclinedAndIsntMadeTwice) {
    answerWith(MDL_BUTTON_SECOND);
    start("Roads", "C:\\a\\b\\c\\d\\e.ma");
    EXPECT_EQ(shown.size(), 1u);
    EXPECT_EQ(folder(), "undefined");
    mdlSystem_defineCfgVar("MC_DIR", "c:\\mc\\", 4);
    start("Rails", "C:\\a\\b\\c\\d\\e.ma");
    EXPECT_EQ(shown.size(), 1u);
}

TEST_F(FolderOffer, IsntMadeToTheOneThatDoesWithoutItNorToOneFromNowhere) {
    for (const char* name : {"pdfvirk", "PDFVIRK", "PdfVirk"}) start(name, "C:\\a\\b\\c\\d\\e.ma");
    start("Roads", "roads");  // nobody knows where it came from
    EXPECT_EQ(front().dialogs, 0);
    start("pdfvirk2", "C:\\a\\b\\c\\d\\e.ma");
    EXPECT_EQ(front().dialogs, 1);
}

}  // namespace
