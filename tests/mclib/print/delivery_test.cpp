// Print files on their way to ports, network printers and commands.
#include "mclib/print/delivery.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <vector>

#include "mchost/mdl/lists.h"
#include "tests/support/library_fixture.h"
#include "tests/support/recorder.h"

namespace {

namespace fs = std::filesystem;

class Delivery : public LibraryTest {
  protected:
    Delivery() {
        mdlSystem_defineCfgVar("MC_SPOOL", path("spool").c_str(), 4);
        mdlSystem_defineCfgVar("COMSPEC", BUILD_DIR "/bin/mcshell", 4);
        fs::create_directories(path("spool/LPT1"));
        fs::create_directories(path("spool/office/A3"));
    }

    int send(const std::string& printer, int copies = 1) {
        return mclibPrint_sendFileToPrinter(file.c_str(), printer.c_str(), copies);
    }
    // What the folder of a printer holds, in order of name.
    std::vector<std::string> jobs(const std::string& printer) const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(path("spool/" + printer)))
            names.push_back(entry.path().filename());
        std::ranges::sort(names);
        return names;
    }

    Recorder recorder{path("")};
    std::string file = writeFile("sheet.ps", "%!PS\n");
};

TEST_F(Delivery, PortsNetworkPrintersAndVariablesGetCopies) {
    mdlSystem_defineCfgVar("PLOTTER", "\\\\Office\\a3", 4);
    EXPECT_EQ(send("LPT1", 3), 0);
    EXPECT_THAT(jobs("LPT1"), testing::ElementsAre("sheet-2.ps", "sheet-3.ps", "sheet.ps"));
    EXPECT_EQ(readFile("spool/LPT1/sheet-3.ps"), "%!PS\n");
    EXPECT_EQ(send("\\\\office\\A3"), 0);
    EXPECT_EQ(send("$(PLOTTER)"), 0);
    EXPECT_EQ(jobs("office/A3").size(), 2u);
    EXPECT_EQ(send("LPT1", 0), 0);
    EXPECT_EQ(jobs("LPT1").size(), 3u);
    mdlSystem_defineCfgVar("PLOTTER", path("copy.ps").c_str(), 4);
    EXPECT_EQ(send("$(PLOTTER)"), 0);
    EXPECT_EQ(readFile("copy.ps"), "%!PS\n");
    EXPECT_EQ(front().consoleText, "");
}

TEST_F(Delivery, ADestinationThatIsntThereIsAFailedCopy) {
    mdlSystem_defineCfgVar("PATH", path("bin").c_str(), 4);  // no print system
    for (const char* printer : {"LPT2", "\\\\office\\A4", "\\\\other\\A3", "$(NONE)", "\\\\a\\b\\c"}) {
        EXPECT_NE(send(printer, 2), 0) << printer;
    }
    EXPECT_EQ(send("LPT9"), ENXIO);
    EXPECT_EQ(readFile("sheet.ps"), "%!PS\n");
    EXPECT_EQ(mclibPrint_sendFileToPrinter(path("none.ps").c_str(), "LPT1", 1), ENOENT);
}

TEST_F(Delivery, TheTemplateDecidesHowOftenCommandsRun) {
    mdlSystem_defineCfgVar("COMSPEC", recorder.add("sh").c_str(), 4);
    recorder.add("lp");
    const std::string copy = "[sh][/C][COPY][" + file + "][lpt2]\n", del = "[sh][/C][DEL][" + file + "]\n";
    struct Case {
        const char* printer;
        int copies;
        std::string ran;
    };
    for (const Case& c : {
             Case{"copy %s lpt2;del %s", 2, copy + del + copy + del},
             {"print /n:%d %s", 3, "[sh][/C][PRINT][/n:3][" + file + "]\n"},
             {"lp 100%% %x % %s", 1, "[lp][100%%][%x][%][" + file + "]\n"},
             {";; lp -d A3 ; ;\tlp \"a  %s\";", 1, "[lp][-d][A3]\n[lp][a  " + file + "]\n"},
             {"lp %d%s%s", 2, "[lp][2" + file + file + "]\n"},
             {"lp %s", 0, ""},
         }) {
        SCOPED_TRACE(c.printer);
        EXPECT_EQ(send(c.printer, c.copies), 0);
        EXPECT_EQ(recorder.take(), c.ran);
    }
    std::string many, ran;
    for (int i = 0; i < 25; ++i) many += "lp %s;", ran += "[lp][" + file + "]\n";
    EXPECT_EQ(send(many), 0);
    EXPECT_EQ(recorder.take(), ran);
}

TEST_F(Delivery, WhateverLettersANameHasItIsOneWordOfItsCommand) {
    recorder.add("lp");
    const struct {
        const char *name, *printer, *ran;
    } cases[] = {
        {"a;touch PWNED.ps", "lp %s", "[lp][a;touch PWNED.ps]\n"},
        {"b\" x\" ;touch PWNED \" y.ps", "lp \"%s\" end", "[lp][b\" x\" ;touch PWNED \" y.ps][end]\n"},
        {"my list.ps", "lp file=%s", "[lp][file=my list.ps]\n"},
        {"\"", "lp %s", "[lp][\"]\n"},
        {"%d;%s", "lp %s", "[lp][%d;%s]\n"},
        {"-o.ps", "lp %s", "[lp][./-o.ps]\n"},
        {">P.ps", "lp %s", "[lp][./>P.ps]\n"},
        {"2>P.ps", "lp %s", "[lp][./2>P.ps]\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(mclibPrint_sendFileToPrinter(c.name, c.printer, 1), 0);
        EXPECT_EQ(recorder.take(), c.ran);
    }
}

TEST_F(Delivery, CommandsWithoutAPlaceForTheFileAreRefused) {
    recorder.add("lp");
    for (const char* printer : {"lp", "lp -n %d", ";;", ""}) {
        front().clear();
        EXPECT_EQ(send(printer), MCLIB_ERROR);
        EXPECT_THAT(front().consoleText, testing::HasSubstr("has no place for the file")) << printer;
    }
    EXPECT_EQ(recorder.take(), "");
}

TEST_F(Delivery, AFailedCommandIsToldAndTheNextOneRuns) {
    recorder.add("bad", 3);
    recorder.add("good");
    EXPECT_EQ(send(" bad %s;good"), 3);
    EXPECT_EQ(recorder.take(), "[bad][" + file + "]\n[good]\n");
    EXPECT_EQ(front().consoleText, "Error executing\nbad " + file + "\nReturn status = 3\n");
    front().clear();
    EXPECT_EQ(send("LPT10;good %s;lpt1"), MCLIB_ERROR);  // neither is a port
    EXPECT_EQ(recorder.take(), "[good][" + file + "]\n");
    EXPECT_THAT(front().consoleText, testing::HasSubstr("Error executing\nLPT10\nReturn status = 32768\n"));
    EXPECT_THAT(front().consoleText, testing::HasSubstr("Error executing\nlpt1\nReturn status = 32768\n"));
}

TEST_F(Delivery, ATemplateOfShellWordsPrintsForReal) {
    file = "c:\\temp\\sheet.ps";
    fs::create_directories(path("drive_c/temp"));
    writeFile("drive_c/temp/sheet.ps", "%!PS\n");
    EXPECT_EQ(send("print /n:%d %s;copy \"%s\" \\\\OFFICE\\a3;del %s", 2), 0);
    EXPECT_THAT(jobs("LPT1"), testing::ElementsAre("sheet-2.ps", "sheet.ps"));
    EXPECT_EQ(readFile("spool/office/A3/sheet.ps"), "%!PS\n");
    EXPECT_FALSE(fs::exists(path("drive_c/temp/sheet.ps")));
    EXPECT_EQ(send("copy %s lpt1;copy %s lpt1"), 1);
    EXPECT_EQ(jobs("LPT1").size(), 2u);
}

struct ListedPrinter {
    std::string name, path;
    int32_t isDefault;
    bool operator==(const ListedPrinter&) const = default;
};

std::vector<ListedPrinter> listed(const StringList* list) {
    std::vector<ListedPrinter> printers;
    for (int32_t i = 0; i + 1 < mdlStringList_size(list); i += 2) {
        const char *name = nullptr, *where = nullptr;
        int32_t isDefault = -1;
        mdlStringList_getMember(&name, nullptr, list, i);
        mdlStringList_getMember(&where, nullptr, list, i + 1);
        mdlStringList_getInfoField(&isDefault, list, i + 1, 1);
        printers.push_back({name, where, isDefault});
    }
    return printers;
}

TEST_F(Delivery, ThePrinterListHasWhatServersOffer) {
    recorder.add("lpstat", 0,
                 "echo 'device for drum: ipp://plotters:631/printers/drum'; echo 'device for desk: usb://x/y'");
    StringList* list = mclibWin32_findWindowsPrinterNames();
    EXPECT_EQ(listed(list),
              (std::vector<ListedPrinter>{{"A3", "\\\\office\\A3", 0}, {"drum", "\\\\plotters\\drum", 0}}));
    mdlStringList_destroy(list);
    mdlSystem_defineCfgVar("_USTN_WORKSPACEROOT", path("work").c_str(), 4);
    fs::create_directories(path("work/System/plotdrv"));
    for (const char* named : {"drum", "\\\\plotters\\drum"}) {
        writeFile("work/System/plotdrv/printer.plt", std::string("printer = ") + named + "\n");
        list = mclibWin32_findWindowsPrinterNames();
        EXPECT_EQ(listed(list),
                  (std::vector<ListedPrinter>{{"A3", "\\\\office\\A3", 0}, {"drum", "\\\\plotters\\drum", 1}}));
        mdlStringList_destroy(list);
    }
}

TEST_F(Delivery, NoPrinterAtAllGivesNoListAndLocalOnesAnEmptyOne) {
    mdlSystem_defineCfgVar("PATH", path("bin").c_str(), 4);
    fs::remove_all(path("spool/office"));
    StringList* list = mclibWin32_findWindowsPrinterNames();
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(mdlStringList_size(list), 0);
    mdlStringList_destroy(list);
    fs::remove_all(path("spool/LPT1"));
    EXPECT_EQ(mclibWin32_findWindowsPrinterNames(), nullptr);
}

}  // namespace
