// The printer set-up in the preference file and in its dialog.
#include <gmock/gmock.h>

#include <cstring>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "mchost/dialog/dialog.h"
#include "mchost/front/scripted.h"
#include "mchost/mdl/resource.h"
#include "mchost/mdl/system.h"
#include "mclib/frame/util.h"
#include "mclib/print/print.h"
#include "mclib/print/setup.h"
#include "tests/support/drawn.h"
#include "tests/support/library_fixture.h"

namespace {

using host::Dialog;
using testing::HasSubstr;

enum { BLOCK_TYPE = 0x50745365, BLOCK_ID = 20002, OLDER_TYPE = 0x50725344, OLDER_ID = 20001 };
enum { SIZES = 20003, DEVICE = 20005, WIDTH = 20009, HEIGHT = 20010, FILE_NAME = 20013, PLOTTER_FILE = 20014 };
enum {
    PRINTER_TEXT = 20016,
    FILE_ONLY = 20006,
    PRINTERS = 20006,
    FILE_DEVICES = 20001,
    PLOTTERS = 20002,
    CHOOSE = 20003
};

// The stored block's bytes, told from the printed table of offsets.
class StoredBlock {
  public:
    explicit StoredBlock(size_t size) : bytes(size) {}
    StoredBlock& number(size_t at, int32_t value) { return put(at, &value, sizeof value); }
    StoredBlock& number(size_t at, double value) { return put(at, &value, sizeof value); }
    StoredBlock& text(size_t at, const char* value) { return put(at, value, std::strlen(value) + 1); }
    template <class Number>
    Number get(size_t at) const {
        Number value;
        std::memcpy(&value, &bytes[at], sizeof value);
        return value;
    }
    std::string textAt(size_t at) const { return reinterpret_cast<const char*>(&bytes[at]); }
    std::vector<uint8_t> bytes;

  private:
    StoredBlock& put(size_t at, const void* value, size_t size) {
        std::memcpy(&bytes[at], value, size);
        return *this;
    }
};

// A5 landscape for HP-GL, of a size that no code has.
StoredBlock sample(size_t size = 840) {
    StoredBlock block(size);
    block.number(0, 12).number(8, 211.0).number(16, 149.0).number(24, 1.0).number(32, 2.0).number(40, 3.0);
    block.number(48, 4.0).number(56, 1).number(60, 1).number(64, 7).text(68, "\\\\hall\\laser").text(323, "d:\\out.hp");
    block.number(580, 1);
    if (size > 584) block.text(584, "d:\\plot.plt");
    return block;
}

class PrinterSetup : public LibraryTest {
  protected:
    PrinterSetup() {
        front().answer = std::ref(script);
        define("MC_SPOOL", path("spool"));
    }

    static void define(const char* variable, const std::string& value) {
        ASSERT_EQ(mdlSystem_defineCfgVar(variable, value.c_str(), 4), MDL_SUCCESS);
    }
    static std::string value(const std::string& field) {
        char text[512] = "no such field";
        mdlDialog_getAccessValue(text, sizeof text, ("mclibpsd->" + field).c_str());
        return text;
    }
    static double number(const std::string& field) { return std::stod(value(field)); }
    void addPrinter(const char* server, const char* name) const {
        std::filesystem::create_directories(std::filesystem::path(path("spool")) / server / name);
    }

    // ---- the preference file ----

    static RscHandle openPreferences(int mode) {
        RscHandle file = 0;
        EXPECT_EQ(mclibUtil_openUserPrefFile(&file, mode), MCLIB_SUCCESS);
        return file;
    }
    static void keep(int32_t type, int32_t id, const StoredBlock& block) {
        const RscHandle file = openPreferences(MDL_RSC_WRITE);
        const auto size = static_cast<int32_t>(block.bytes.size());
        EXPECT_EQ(mdlResource_add(file, type, id, block.bytes.data(), size, 0, nullptr), MDL_SUCCESS);
        mdlResource_closeFile(file);
    }
    static StoredBlock kept(int32_t type, int32_t id) {
        const RscHandle file = openPreferences(MDL_RSC_READ);
        void* block = mdlResource_load(file, type, id);
        StoredBlock stored(static_cast<size_t>(mdlResource_size(block)));
        if (block) std::memcpy(stored.bytes.data(), block, stored.bytes.size());
        mdlResource_free(block);
        mdlResource_closeFile(file);
        return stored;
    }

    // ---- the dialog ----

    static MdlItem* item(int32_t kind, int32_t id) {
        return mdlDialog_itemGetByTypeAndId(mdlDialog_find(20006, nullptr), kind, id);
    }
    static bool enabled(int32_t kind, int32_t id) { return mdlDialog_itemIsEnabled(item(kind, id)) == 1; }
    static int32_t selectedPrinter(const Dialog& dialog) {
        return dialog.items()[static_cast<size_t>(dialog.indexOf(ITEM_COMBO_BOX, PRINTERS))].selectedRow();
    }
    // Which group boxes are on show, with how many members.
    static std::string targets(Dialog& dialog) {
        std::string text;
        for (const host::DialogItem& group : dialog.items()) {
            if (group.id != FILE_DEVICES && group.id != PLOTTERS) continue;
            if (group.kind != ITEM_GROUP_BOX || !dialog.isVisible(group)) continue;
            const auto members = std::ranges::count_if(dialog.items(), [&](const host::DialogItem& member) {
                return member.group == group.id && dialog.isVisible(member);
            });
            text += std::to_string(group.id) + ":" + std::to_string(members);
        }
        return text;
    }
    // Opens the dialog, looks, and cancels.
    void look(const std::function<void(Dialog&)>& at = [](Dialog&) {}) {
        script.check(at).press(-4);
        EXPECT_EQ(mclibPrintSet_dialogOpen(), 4) << script.fault();
    }
    void accept() {
        script.press(-3);
        EXPECT_EQ(mclibPrintSet_dialogOpen(), 3) << script.fault();
    }

    host::DialogScript script;
};

TEST_F(PrinterSetup, HasItsUsualValuesFromTheFirstStartOn) {
    const std::map<std::string, std::string> usual = {
        {"pageSize", "9"},
        {"pageWidth", "210"},
        {"pageHeight", "297"},
        {"marginLeft", "20"},
        {"marginRight", "10"},
        {"marginTop", "10"},
        {"marginBottom", "10"},
        {"orientation", "2"},
        {"deviceType", "0"},
        {"copies", "1"},
        {"printerName", "\\\\server\\printer"},
        {"fileOnly", "0"},
        {"plotterFile", ""},
        {"fileName", "c:\\temp\\mc.ps"},
    };
    for (const auto& [field, text] : usual) EXPECT_EQ(value(field), text) << field;
}

TEST_F(PrinterSetup, ThePrintFileLiesInTheTemporaryFolder) {
    struct Case {
        const char *variable, *file;
    };
    const Case cases[] = {{"d:\\work\\", "d:\\work\\mc.ps"},
                          {"d:\\work", "d:\\work\\mc.ps"},
                          {"/var/tmp", "/var/tmp/mc.ps"},
                          {"", "c:\\temp\\mc.ps"}};
    for (const Case& c : cases) {
        define("MS_TMP", c.variable);
        look();
        EXPECT_EQ(value("fileName"), c.file) << c.variable;
    }
    define("MS_TMP", "d:\\work\\");
    std::filesystem::create_directory(path("drive_c/temp"));
    look();
    EXPECT_EQ(value("fileName"), "c:\\temp\\mc.ps");
}

TEST_F(PrinterSetup, IsKeptByteForByte) {
    keep(BLOCK_TYPE, BLOCK_ID, sample());
    look();
    EXPECT_EQ(number("pageSize"), 12);
    EXPECT_EQ(number("marginBottom"), 4);
    EXPECT_EQ(number("copies"), 7);
    EXPECT_EQ(value("printerName"), "\\\\hall\\laser");
    EXPECT_EQ(value("fileName"), "d:\\out.hp");
    EXPECT_EQ(number("fileOnly"), 1);
    EXPECT_EQ(value("plotterFile"), "d:\\plot.plt");

    script.setValue(ITEM_TEXT, 20005, "25.5").setValue(ITEM_TEXT, FILE_NAME, "d:\\next.hp");
    accept();
    StoredBlock expected = sample();
    expected.number(8, 210.0).number(16, 148.5);  // those of the page code
    expected.number(24, 25.5);
    std::fill_n(expected.bytes.begin() + 323, 257, uint8_t{0});
    expected.text(323, "d:\\next.hp");
    EXPECT_EQ(kept(BLOCK_TYPE, BLOCK_ID).bytes, expected.bytes);
}

TEST_F(PrinterSetup, TheOlderFormIsReadAndKeptAnewBesideIt) {
    writeFile("hall.plt", "output = pdf\n");
    define("MS_PLTR", path("hall.plt"));
    keep(OLDER_TYPE, OLDER_ID, sample(584));
    look();
    EXPECT_EQ(number("marginLeft"), 1);
    EXPECT_EQ(number("fileOnly"), 1);
    EXPECT_EQ(value("plotterFile"), path("hall.plt"));
    EXPECT_EQ(kept(BLOCK_TYPE, BLOCK_ID).bytes.size(), 0u) << "looking keeps nothing";
    accept();
    EXPECT_EQ(kept(BLOCK_TYPE, BLOCK_ID).textAt(584), path("hall.plt"));
    EXPECT_EQ(kept(OLDER_TYPE, OLDER_ID).bytes, sample(584).bytes);
}

TEST_F(PrinterSetup, ABlockThatIsCutShortCountsAsNoneAndIsReplaced) {
    keep(BLOCK_TYPE, BLOCK_ID, sample(839));
    look();
    EXPECT_EQ(number("copies"), 1);
    accept();
    EXPECT_EQ(kept(BLOCK_TYPE, BLOCK_ID).bytes.size(), 840u);
}

TEST_F(PrinterSetup, TextsWithoutAnEndStayInTheirFields) {
    StoredBlock block = sample();
    std::fill_n(block.bytes.begin() + 68, 255, uint8_t{'p'});
    keep(BLOCK_TYPE, BLOCK_ID, block);
    look();
    EXPECT_EQ(value("printerName"), std::string(254, 'p'));
    EXPECT_EQ(value("fileName"), "d:\\out.hp");
}

TEST_F(PrinterSetup, CancelLeavesTheChangesUntilItIsReadAgain) {
    accept();
    script.setValue(ITEM_TEXT, 20005, "33").press(-4);
    EXPECT_EQ(mclibPrintSet_dialogOpen(), 4) << script.fault();
    EXPECT_EQ(number("marginLeft"), 33);
    EXPECT_EQ(kept(BLOCK_TYPE, BLOCK_ID).get<double>(24), 20);
    look([](Dialog&) { EXPECT_EQ(number("marginLeft"), 20); });
}

TEST_F(PrinterSetup, APreferenceFileThatCannotBeUsedIsToldAndGivesTheUsualValues) {
    accept();
    define("MS_USERPREF", path("text.rsc"));
    writeFile("text.rsc", "no resource file");
    std::string told;
    const auto notice = [&](Dialog& dialog) { told += textDrawnIn(dialog); };
    script.check(notice).press(-3).setValue(ITEM_TEXT, 20005, "33").press(-3).check(notice).press(-3);
    EXPECT_EQ(mclibPrintSet_dialogOpen(), 3) << script.fault();
    EXPECT_TRUE(script.finished());
    EXPECT_THAT(told, HasSubstr(path("text.rsc")));
    EXPECT_EQ(readFile("text.rsc"), "no resource file");
    EXPECT_EQ(number("marginLeft"), 33);
}

// ---- items ----

TEST_F(PrinterSetup, ATypedSizeGivesWayToA4WhenTheDialogOpensOrTheDeviceChanges) {
    keep(BLOCK_TYPE, BLOCK_ID, sample().number(0, 0).number(8, 500.0));
    const auto isA4 = [](Dialog&) {
        EXPECT_EQ(number("pageSize"), 9);
        EXPECT_EQ(number("pageWidth"), 210);
        EXPECT_STREQ(mdlDialog_itemGetValue(item(ITEM_OPTION_BUTTON, SIZES)), "9");
        EXPECT_STREQ(mdlDialog_itemGetValue(item(ITEM_TEXT, HEIGHT)), "297.0");
        EXPECT_FALSE(enabled(ITEM_TEXT, WIDTH));
        EXPECT_FALSE(enabled(ITEM_TEXT, HEIGHT));
    };
    script.check(isA4).setValue(ITEM_OPTION_BUTTON, SIZES, "0").check([](Dialog&) {
        EXPECT_TRUE(enabled(ITEM_TEXT, WIDTH));
        EXPECT_TRUE(enabled(ITEM_TEXT, HEIGHT));
    });
    script.setValue(ITEM_TEXT, WIDTH, "444").setValue(ITEM_OPTION_BUTTON, DEVICE, "5").check(isA4);
    accept();
}

TEST_F(PrinterSetup, ADeviceShowsTheItemsThatServeIt) {
    script.check([](Dialog& d) { EXPECT_EQ(targets(d), "20001:4"); });
    script.setValue(ITEM_OPTION_BUTTON, DEVICE, "4").check([](Dialog& d) { EXPECT_EQ(targets(d), ""); });
    script.setValue(ITEM_OPTION_BUTTON, DEVICE, "6").check([](Dialog& d) {
        EXPECT_EQ(targets(d), "20002:3");
        EXPECT_FALSE(d.setValue(static_cast<size_t>(d.indexOf(ITEM_OPTION_BUTTON, SIZES)), "0"));
    });
    script.setValue(ITEM_OPTION_BUTTON, DEVICE, "1").check([](Dialog& d) { EXPECT_EQ(targets(d), "20001:4"); });
    script.setValue(ITEM_OPTION_BUTTON, SIZES, "0");
    accept();
}

TEST_F(PrinterSetup, EveryDeviceIsOffered) {
    script.check([](Dialog&) {
        const MdlItem* button = item(ITEM_OPTION_BUTTON, DEVICE);
        int row = 0;
        for (; const McPrintDevice* device = mclibPrint_getDeviceP(row); ++row) {
            int32_t value = -1;
            EXPECT_EQ(mdlDialog_optionButtonGet(button, row, nullptr, &value), MDL_SUCCESS) << device->key;
            EXPECT_EQ(value, device->code) << device->key;
        }
        EXPECT_EQ(mdlDialog_optionButtonCount(button), row);
    });
    accept();
}

TEST_F(PrinterSetup, KeepingTheFileEnablesItsNameInPlaceOfThePrinters) {
    const auto state = [] { return enabled(ITEM_COMBO_BOX, PRINTERS) * 10 + enabled(ITEM_TEXT, FILE_NAME); };
    script.check([&](Dialog&) { EXPECT_EQ(state(), 10); });
    script.setValue(ITEM_TOGGLE, FILE_ONLY, "1").check([&](Dialog&) { EXPECT_EQ(state(), 1); });
    accept();
    look([&](Dialog&) { EXPECT_EQ(state(), 1); });
}

TEST_F(PrinterSetup, ThePlotDriverFileIsChosenAmongFilesOfItsKind) {
    writeFile("hall.plt", "output = pdf\n");
    define("MS_PLTR", writeFile("office.plt", "output = png\n"));
    front().files.cancel().answer(path("hall.plt"));
    script.setValue(ITEM_OPTION_BUTTON, DEVICE, "6").press(CHOOSE).check([&](Dialog&) {
        EXPECT_EQ(mdlDialog_itemGetValue(item(ITEM_TEXT, PLOTTER_FILE)), path("office.plt"));
    });
    script.press(CHOOSE).check(
        [&](Dialog&) { EXPECT_EQ(mdlDialog_itemGetValue(item(ITEM_TEXT, PLOTTER_FILE)), path("hall.plt")); });
    accept();
    EXPECT_EQ(value("plotterFile"), path("hall.plt"));
    ASSERT_EQ(front().files.questions.size(), 2u);
    EXPECT_EQ(front().files.questions[0].filter, "*.plt");
    EXPECT_EQ(front().files.questions[0].directory, path("")) << "where the variable's file lies";
}

TEST_F(PrinterSetup, ThePrinterOfTheSetupIsSelectedAndAChosenOneTaken) {
    addPrinter("hall", "a3");
    addPrinter("hall", "laser");
    keep(BLOCK_TYPE, BLOCK_ID, sample().number(580, 0));
    script.check([](Dialog& d) {
        const host::DialogItem& printers = d.items()[static_cast<size_t>(d.indexOf(ITEM_COMBO_BOX, PRINTERS))];
        EXPECT_EQ(Dialog::rowCount(printers), 2);
        EXPECT_EQ(Dialog::cellText(printers, printers.selectedRow(), 1), "\\\\hall\\laser");
    });
    script.choose(PRINTERS, 0).check([](Dialog&) {
        EXPECT_STREQ(mdlDialog_itemGetValue(item(ITEM_TEXT, PRINTER_TEXT)), "\\\\hall\\a3");
    });
    accept();
    EXPECT_EQ(kept(BLOCK_TYPE, BLOCK_ID).textAt(68), "\\\\hall\\a3");
}

TEST_F(PrinterSetup, NoPrinterIsGuessed) {
    look();  // there is none
    addPrinter("hall", "a3");
    look([](Dialog& d) { EXPECT_EQ(selectedPrinter(d), -1); });
    EXPECT_EQ(value("printerName"), "\\\\server\\printer");
    keep(BLOCK_TYPE, BLOCK_ID, sample());
    look([](Dialog& d) { EXPECT_EQ(selectedPrinter(d), -1); });
    EXPECT_EQ(value("printerName"), "\\\\hall\\laser") << "it may be switched off";
}

TEST_F(PrinterSetup, TheDefaultPrinterIsSelectedWhereNobodyChoseOneAndTakenWhenTheDialogCloses) {
    addPrinter("hall", "a3");
    addPrinter("hall", "laser");
    define("_USTN_WORKSPACEROOT", path("work"));
    std::filesystem::create_directories(path("work/System/plotdrv"));
    writeFile("work/System/plotdrv/printer.plt", "printer = laser\n");
    look([](Dialog& d) {
        EXPECT_EQ(selectedPrinter(d), 1);
        EXPECT_EQ(value("printerName"), "\\\\server\\printer");
    });
    EXPECT_EQ(value("printerName"), "\\\\hall\\laser");
}

TEST_F(PrinterSetup, AnyKindOfPrinterCanBeTyped) {
    addPrinter("hall", "a3");
    for (const char* printer : {"LPT1", "$(PLOTTER)", "lp -d office -n %d %s", "\\\\hall\\a3", "lp %s"}) {
        SCOPED_TRACE(printer);
        script.setValue(ITEM_TEXT, PRINTER_TEXT, printer).check([&](Dialog& d) {
            EXPECT_EQ(selectedPrinter(d), printer == std::string("\\\\hall\\a3") ? 0 : -1);
        });
        accept();
        EXPECT_EQ(kept(BLOCK_TYPE, BLOCK_ID).textAt(68), printer);
    }
}

}  // namespace
