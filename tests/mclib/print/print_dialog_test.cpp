// The dialog that starts a print job or a plot: where its output goes, and which pages.
#include <gmock/gmock.h>

#include <array>
#include <filesystem>
#include <functional>
#include <string>

#include "mchost/dialog/dialog.h"
#include "mchost/front/scripted.h"
#include "mchost/mdl/plot.h"
#include "mchost/mdl/system.h"
#include "mclib/frame/global_data.h"
#include "mclib/print/setup.h"
#include "tests/support/library_fixture.h"

using namespace mc;

namespace {

using host::Dialog;

enum { PRINT_DIALOG = 20007, REPLY_OK = 3, REPLY_CANCEL = 4 };
enum { RANGE = 20012, FIRST = 20013, LAST = 20014 };
enum {
    PRINTERS = 20006,
    PRINTER_TEXT = 20016,
    TARGET = 20012,
    FILE_ONLY = 20006,
    FILE_NAME = 20013,
    SYSTEM_BUTTON = 20004
};

class PrintDialog : public LibraryTest {
  protected:
    PrintDialog() {
        front().answer = std::ref(script);
        mdlSystem_defineCfgVar("MC_SPOOL", path("spool").c_str(), 4);
        for (const char* printer : {"a3", "laser"})
            std::filesystem::create_directories(std::filesystem::path(path("spool")) / "hall" / printer);
        data->pageNames = names.data();
        useDevice("0");
    }
    ~PrintDialog() override {
        data->pageNames = nullptr;
        mdlPlotDesc_destroy(static_cast<MdlPlotDesc*>(data->plotDescr));
        data->plotDescr = nullptr;
    }

    // Keeps the device in the preference file, from where the dialog reads it.
    void useDevice(const char* device) {
        script.setValue(ITEM_OPTION_BUTTON, 20005, device).press(-3);
        EXPECT_EQ(mclibPrintSet_dialogOpen(), REPLY_OK) << script.fault();
    }
    void plotWith(const std::string& driver) {
        data->plotDescr = mdlPlotDesc_createFromTCBAndPltFile(writeFile("test.plt", driver).c_str());
        ASSERT_NE(data->plotDescr, nullptr);
        useDevice("6");
    }
    void run() {
        int32_t reply = 0;
        script.press(-3);
        EXPECT_EQ(mdlDialog_openModal(&reply, 0, PRINT_DIALOG), MDL_SUCCESS);
        EXPECT_EQ(reply, REPLY_OK) << script.fault();
    }
    void look(const std::function<void(Dialog&)>& at) {
        script.check(at);
        run();
    }

    static MdlItem* item(int32_t kind, int32_t id) {
        return mdlDialog_itemGetByTypeAndId(mdlDialog_find(PRINT_DIALOG, nullptr), kind, id);
    }
    static std::string valueOf(int32_t kind, int32_t id) { return mdlDialog_itemGetValue(item(kind, id)); }
    // Letters of the target's items that are on show.
    static std::string shown() {
        const std::array<std::pair<char, MdlItem*>, 6> items = {{{'p', item(ITEM_COMBO_BOX, PRINTERS)},
                                                                 {'P', item(ITEM_TEXT, PRINTER_TEXT)},
                                                                 {'t', item(ITEM_TEXT, TARGET)},
                                                                 {'o', item(ITEM_TOGGLE, FILE_ONLY)},
                                                                 {'f', item(ITEM_TEXT, FILE_NAME)},
                                                                 {'s', item(ITEM_PUSH_BUTTON, SYSTEM_BUTTON)}}};
        std::string letters;
        for (const auto& [letter, shownItem] : items)
            if (mdlDialog_itemIsShown(shownItem)) letters += letter;
        return letters;
    }
    // Rows of the last page's button that can be chosen.
    static std::string lastPages() {
        std::string rows;
        MdlItem* last = item(ITEM_OPTION_BUTTON, LAST);
        for (int32_t row = 0; row < mdlDialog_optionButtonCount(last); ++row)
            if (mdlDialog_optionButtonRowIsEnabled(last, row)) rows += std::to_string(row);
        return rows;
    }

    GlobalData* data = mclibMain_getGlobalDataP();
    FileDialogBlock& block = *data->fileDialogP;
    std::string one = "Sheet 1", two = "Sheet 2", three = "Sheet 3";
    std::array<char*, 4> names = {one.data(), two.data(), three.data(), nullptr};
    host::DialogScript script;
};

// ---- target ----

TEST_F(PrintDialog, AFileDeviceHasItsPrintersAndItsFile) {
    look([](Dialog&) {
        EXPECT_EQ(shown(), "pPof");
        EXPECT_EQ(mdlDialog_itemIsEnabled(item(ITEM_COMBO_BOX, PRINTERS)), 1);
        EXPECT_EQ(mdlDialog_itemIsEnabled(item(ITEM_TEXT, FILE_NAME)), 0);
    });
}

TEST_F(PrintDialog, APlotShowsItsFileInSmallLettersAndShortened) {
    struct Case {
        const char *driver, *folder, *target;
    };
    const Case cases[] = {
        {"output = pdf\n", "d:\\Plots", "d:\\plots\\test_<page>.pdf"},
        {"output = pdf\nextension = .PLO\n", "d:\\plots\\", "d:\\plots\\test_<page>.plo"},
        {"output = pdf\n", "d:\\a folder of plots\\for all jobs of this house", "d:\\...\\test_<page>.pdf"},
        {"name = d:\\Out\\plot\nextension = .Plo\n", "d:\\plots", "d:\\Out\\plot.Plo"},
    };
    openDesignFile();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.driver);
        mdlSystem_defineCfgVar("MS_PLTFILES", c.folder, 4);
        mdlPlotDesc_destroy(static_cast<MdlPlotDesc*>(data->plotDescr));
        plotWith(c.driver);
        look([&](Dialog&) {
            EXPECT_EQ(shown(), "t");
            EXPECT_EQ(valueOf(ITEM_TEXT, TARGET), c.target);
            EXPECT_STREQ(mdlDialog_itemGetLabel(item(ITEM_TEXT, TARGET)), "Plot file");
        });
    }
}

TEST_F(PrintDialog, APlotOnASystemPrinterShowsPrinterAndPaper) {
    plotWith("printer = laser\npaper = Long 300 900\ndefault = Long\n");
    script.check([](Dialog&) {
        EXPECT_EQ(shown(), "tfs");
        EXPECT_EQ(valueOf(ITEM_TEXT, TARGET), "laser");
        EXPECT_EQ(valueOf(ITEM_TEXT, FILE_NAME), "Long");
        EXPECT_STREQ(mdlDialog_itemGetLabel(item(ITEM_TEXT, FILE_NAME)), "Paper size");
        DialogRect file, button;
        mdlDialog_itemRect(&file, item(ITEM_TEXT, FILE_NAME));
        mdlDialog_itemRect(&button, item(ITEM_PUSH_BUTTON, SYSTEM_BUTTON));
        EXPECT_LT(file.right, button.left);
    });
    run();
}

TEST_F(PrintDialog, TheSystemsDialogGivesAnotherPrinterAndChangesNoneByItself) {
    std::filesystem::create_directories(path("spool/office/a3"));
    constexpr int32_t choice = 1;  // option button of the system's dialog
    const struct {
        const char *printer, *chosen, *after;  // chosen: a row of hall\a3, hall\laser, office\a3
    } cases[] = {
        {"laser", "0", "\\\\hall\\a3"},           {"laser", "2", "\\\\office\\a3"},
        {"\\\\office\\a3", "", "\\\\office\\a3"}, {"\\\\Hall\\LASER", "", "\\\\hall\\laser"},
        {"\\\\other\\a3", "", "\\\\other\\a3"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.printer);
        mdlPlotDesc_destroy(static_cast<MdlPlotDesc*>(data->plotDescr));
        plotWith(std::string("printer = ") + c.printer + "\n");
        script.press(SYSTEM_BUTTON);
        if (*c.chosen) script.setValue(ITEM_OPTION_BUTTON, choice, c.chosen);
        script.press(-3).check([&](Dialog&) { EXPECT_EQ(valueOf(ITEM_TEXT, TARGET), c.after); });
        run();
        char printer[MDL_PLOT_TEXT_BYTES] = "";
        mdlPlotDesc_getSysPrinter(printer, static_cast<MdlPlotDesc*>(data->plotDescr));
        EXPECT_STREQ(printer, c.after);
    }
}

TEST_F(PrintDialog, APlotWithoutADescriptionShowsAFile) {
    useDevice("6");
    look([](Dialog&) { EXPECT_EQ(shown(), "t"); });
}

// ---- range ----

TEST_F(PrintDialog, ARangeBeginsAtThePageOnShowAndEndsAtTheLast) {
    block.pageChoice = 1;
    block.printRange = 0;
    look([](Dialog&) {
        EXPECT_EQ(valueOf(ITEM_OPTION_BUTTON, FIRST), "1");
        EXPECT_EQ(valueOf(ITEM_OPTION_BUTTON, LAST), "2");
        EXPECT_EQ(lastPages(), "12");
        EXPECT_EQ(mdlDialog_itemIsEnabled(item(ITEM_OPTION_BUTTON, FIRST)), 0);
        EXPECT_EQ(mdlDialog_itemIsEnabled(item(ITEM_OPTION_BUTTON, LAST)), 0);
    });
}

TEST_F(PrintDialog, OnlyARangeLetsItsPagesBeChosen) {
    const auto enabled = [] {
        return mdlDialog_itemIsEnabled(item(ITEM_OPTION_BUTTON, FIRST)) +
               mdlDialog_itemIsEnabled(item(ITEM_OPTION_BUTTON, LAST));
    };
    script.setValue(ITEM_OPTION_BUTTON, RANGE, "2").check([&](Dialog&) { EXPECT_EQ(enabled(), 2); });
    script.setValue(ITEM_OPTION_BUTTON, RANGE, "1").check([&](Dialog&) { EXPECT_EQ(enabled(), 0); });
    run();
    block.printRange = 2;
    look([&](Dialog&) { EXPECT_EQ(enabled(), 2); });
}

TEST_F(PrintDialog, TheLastPageStaysAtOrBehindTheFirst) {
    block.printRange = 2;
    block.lastPage = 1;
    script.setValue(ITEM_OPTION_BUTTON, FIRST, "2").check([](Dialog& d) {
        EXPECT_EQ(valueOf(ITEM_OPTION_BUTTON, LAST), "2");
        EXPECT_EQ(lastPages(), "2");
        EXPECT_FALSE(d.setValue(static_cast<size_t>(d.indexOf(ITEM_OPTION_BUTTON, LAST)), "1"));
    });
    script.setValue(ITEM_OPTION_BUTTON, FIRST, "0").check([](Dialog&) { EXPECT_EQ(lastPages(), "012"); });
    script.setValue(ITEM_OPTION_BUTTON, LAST, "1");
    run();
    EXPECT_EQ(block.firstPage, 0);
    EXPECT_EQ(block.lastPage, 1);
}

TEST_F(PrintDialog, AListThatHasBecomeShorterEndsTheRangeAtItsLastPage) {
    block.lastPage = 9;
    look([](Dialog&) { EXPECT_EQ(valueOf(ITEM_OPTION_BUTTON, LAST), "2"); });
    data->pageNames = nullptr;
    look([](Dialog&) { EXPECT_EQ(lastPages(), ""); });
    EXPECT_EQ(block.lastPage, 0);
}

}  // namespace
