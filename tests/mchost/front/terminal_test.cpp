// The terminal's front end, answered through a pipe, from a file and by nobody.
#include "mchost/front/terminal.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "mchost/command/command.h"
#include "mchost/dialog/dialog.h"
#include "mchost/front/dialog_words.h"
#include "mchost/front/line_editor.h"
#include "mchost/mdl/dialog_items.h"
#include "mchost/mdl/file_dialogs.h"
#include "mchost/mdl/lists.h"
#include "mchost/mdl/menu_bar.h"
#include "mchost/mdl/resource.h"
#include "mchost/mdl/state.h"
#include "mchost/mdl/system.h"
#include "mchost/mdl/view.h"
#include "mchost/resource/container.h"
#include "mchost/session/session.h"

namespace {

using testing::HasSubstr;
namespace fs = std::filesystem;

enum { NOTICE = 1, QUESTION = 2, FORM = 3, TOOLS = 4 };
enum { HOOK = 7, LIST_HOOK = 8, FORM_HOOK = 9, ENTRY_HOOK = 10 };
enum { ROW_MENU = 1 };

host::ItemLayout item(int32_t kind, int32_t id, const char* label, int32_t hook = 0) {
    host::ItemLayout layout{kind, id, 0, 0, 10, 10, hook, "", "", {}, {}};
    layout.label.set("en", label);
    return layout;
}

host::ResourceContents layouts() {
    host::ResourceContents contents;
    contents.icons[5] = {5, 2, {true, true, true, true}, "!"};
    const auto dialog = [&](int32_t id, const char* title, std::vector<host::ItemLayout> items) {
        host::DialogLayout& made = contents.dialogs[id] = {id, 100, 100, 0, {}, std::move(items)};
        made.title.set("en", title);
    };
    dialog(NOTICE, "Melding", {item(ITEM_GENERIC, 1, "", HOOK), item(ITEM_PUSH_BUTTON, -3, "OK")});
    dialog(QUESTION, "Sp\xf8rsm\xe5l", {item(ITEM_PUSH_BUTTON, -4, "Nei"), item(ITEM_PUSH_BUTTON, -3, "\xc5ja")});
    host::ItemLayout device = item(ITEM_OPTION_BUTTON, 2, "Device");
    for (int32_t value : {10, 20}) {
        device.rows.push_back({value, {}});
        device.rows.back().label.set("en", value == 10 ? "Paper" : "Sk\xe6rm");
    }
    host::ItemLayout margin = item(ITEM_TEXT, 5, "Margin");
    margin.format = "%.1f";
    dialog(
        FORM, "Form",
        {item(ITEM_TEXT, 1, "Name"), device, item(ITEM_TOGGLE, 3, "Frame"), item(ITEM_LIST_BOX, 4, "Rows", LIST_HOOK),
         margin, item(ITEM_PUSH_BUTTON, -3, "Print"), item(ITEM_PUSH_BUTTON, -4, "Preview")});
    contents.dialogs[FORM].hook = FORM_HOOK;
    host::MenuLayout& menu = contents.menus[ROW_MENU] = {ROW_MENU, {}, {{0, ENTRY_HOOK, {}}}};
    menu.title.set("en", "Tools");
    menu.entries[0].label.set("en", "Drop");
    dialog(TOOLS, "Tools", {item(ITEM_PUSH_BUTTON, 7, "Work"), item(ITEM_PUSH_BUTTON, 8, "Rest")});
    return contents;
}

StringList* rows = nullptr;
bool severalRows = false;
std::string clicked;  // the row of a double click and of a click with the right button, "drop" for the menu's entry

void listHook(DialogMessage* message) {
    if (message->type == ITEM_CREATE) {
        mdlDialog_listBoxSetStrListP(message->item, rows, 1);
        mdlDialog_listBoxSetInfo(message->item, 0, severalRows);
    }
    if (message->type == ITEM_BUTTON && message->clickCount == 2) clicked += std::to_string(message->row + 1) + " ";
}

void formHook(DialogMessage* message) {
    if (message->type != DIALOG_BUTTON) return;
    clicked += std::to_string(message->row) + " ";
    mdlDialog_offerMenu(message->dialog, 0, ROW_MENU);
}

void entryHook(DialogMessage*) {
    clicked += "drop ";
}

void hook(DialogMessage* message) {
    if (message->type != ITEM_DRAW) return;
    mdlDialog_textDrawCD(message->dialog, 60, 36, "lower \xe5 \x1b[31m");
    mdlDialog_textDrawCD(message->dialog, 60, 20, "upper \x80");
    mdlDialog_textDrawCD(message->dialog, 160, 20, "beside");
    mdlWindow_iconDraw(message->dialog, 0, 5, 0, 20, 4);
}

class Terminal : public testing::Test {
  protected:
    Terminal() {
        std::string pattern = (fs::temp_directory_path() / "terminal-XXXXXX").string();
        folder = mkdtemp(pattern.data());
        host::writeContainer(folder / "dialogs.rsc", layouts());
        rows = mdlStringList_create(2, 0);
        mdlStringList_setMember(rows, 0, "first", nullptr);
        mdlStringList_setMember(rows, 1, "second", nullptr);
        options.asks = false;
        options.showsProgress = false;
    }
    ~Terminal() override {
        mdlStringList_destroy(rows);
        fs::remove_all(folder);
    }

    void typed(const std::string& lines) {
        std::ofstream(folder / "input") << lines;
        options.asks = true;
    }
    void answers(const std::string& lines) {
        std::ofstream(folder / "answers") << lines;
        options.answersFile = folder / "answers";
    }

    // Runs `body` in a session with this terminal.
    template <class Body>
    void inSession(Body body) {
        std::ofstream(folder / "input", std::ios::app).flush();
        options.input = std::fopen((folder / "input").c_str(), "r");
        options.output = std::fopen((folder / "output").c_str(), "w");
        options.errors = std::fopen((folder / "errors").c_str(), "w");
        {
            host::Session session({.frontEnd = host::makeTerminalFrontEnd(options), .variables = {}});
            RscHandle file = 0;
            mdlResource_openFile(&file, (folder / "dialogs.rsc").c_str(), MDL_RSC_READ);
            const DialogHook hooks[] = {
                {HOOK, hook}, {LIST_HOOK, listHook}, {FORM_HOOK, formHook}, {ENTRY_HOOK, entryHook}};
            mdlDialog_hookPublish(4, hooks);
            body();
            mdlResource_closeFile(file);
            status = session.exitStatus();
        }
        for (std::FILE* file : {options.input, options.output, options.errors}) std::fclose(file);
        shown = contentsOf("errors");
    }
    int32_t run(int32_t dialog) {
        int32_t reply = -1;
        inSession([&] { mdlDialog_openModal(&reply, 0, dialog); });
        return reply;
    }
    std::string contentsOf(const char* name) const {
        std::ostringstream bytes;
        bytes << std::ifstream(folder / name).rdbuf();
        return bytes.str();
    }

    fs::path folder;
    host::TerminalOptions options;
    std::string shown;
    int status = -1;  // of the session
};

TEST_F(Terminal, ShowsDrawnLinesInReadingOrderWithTheIconsSign) {
    typed("\n");
    EXPECT_EQ(run(NOTICE), 3);
    EXPECT_EQ(shown, "--- Melding ---\n(!) upper \xe2\x82\xac  beside\n    lower \xc3\xa5  [31m\n  1) OK\n[OK] > ")
        << "what is drawn can't steer the terminal";
}

TEST_F(Terminal, TakesAButtonByNumberLabelOrBeginning) {
    struct Case {
        const char* line;
        int32_t reply;
    };
    const Case cases[] = {{"1\n", 4},           {"2\r\n", 3},    {"\n", 3}, {"nei\n", 4}, {"\xc3\xa5ja\n", 3},
                          {" \xc3\x85J \n", 3}, {"3\nNEI\n", 4}, {"", 4},   {"1", 4},     {"x\n1=2\n\xff\n2\n", 3}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.line);
        typed(c.line);
        EXPECT_EQ(run(QUESTION), c.reply);
        EXPECT_THAT(shown, HasSubstr("--- Sp\xc3\xb8rsm\xc3\xa5l ---\n  1) Nei  2) \xc3\x85ja\n"));
    }
}

TEST_F(Terminal, AnAnswerThatFitsTwoButtonsIsRefusedWithBoth) {
    typed("pr\nprev\n");
    EXPECT_EQ(run(FORM), 4);
    EXPECT_THAT(shown, HasSubstr("\"pr\" can be Print or Preview. Give more of the label, or its number.\n[Print] > "));
}

TEST_F(Terminal, WhatIsRefusedInAnUnattendedRunEndsItWithStatusOne) {
    answers("Maybe\nNei\n");
    EXPECT_EQ(run(QUESTION), 4);
    EXPECT_EQ(status, 1);
    answers("Nei\n");
    EXPECT_EQ(run(QUESTION), 4);
    EXPECT_EQ(status, 0);
    answers("");
    EXPECT_EQ(run(QUESTION), 4);
    EXPECT_EQ(status, 1) << "nobody answers";
    typed("maybe\nnei\n");
    EXPECT_EQ(run(QUESTION), 4);
    EXPECT_EQ(status, 0) << "somebody saw it, and did something else";
}

TEST_F(Terminal, SetsTextsChoicesTogglesAndRowsByNumber) {
    answers("3= \xc3\x86 b=c \n4=sk\xc3\xa6rm\n5\n6=2\nprint\n");
    EXPECT_EQ(run(FORM), 3);
    EXPECT_THAT(shown, HasSubstr("3) Name: \n4) Device: Paper (Paper, Sk\xc3\xa6rm)\n5) [ ] Frame\n6) Rows\n"
                                 "      1.  first\n      2.  second\n7) Margin: \n  1) Print  2) Preview\n"));
    EXPECT_THAT(shown,
                HasSubstr("3) Name: \xc3\x86 b=c\n4) Device: Sk\xc3\xa6rm (Paper, Sk\xc3\xa6rm)\n5) [x] Frame\n"));
    EXPECT_THAT(shown, HasSubstr("    * 2.  second\n"));
}

TEST_F(Terminal, SetsItemsByTheirLabels) {
    answers("name=x=y\nDEV = sk\xc3\xa6rm\nframe\nrow=Second\nlabel=1\nprint\n");
    EXPECT_EQ(run(FORM), 3);
    EXPECT_THAT(shown, HasSubstr("3) Name: x=y\n4) Device: Sk\xc3\xa6rm (Paper, Sk\xc3\xa6rm)\n5) [x] Frame\n"));
    EXPECT_THAT(shown, HasSubstr("    * 2.  second\n"));
    EXPECT_THAT(shown, HasSubstr("can't be done here: \"label=1\""));
}

TEST_F(Terminal, WrongAnswersAreToldWithTheReasonAndAskedAgain) {
    struct Case {
        const char *answer, *told;
    };
    const Case cases[] = {
        {"4=3", "Device: \"3\" is none of its choices: Paper, Sk\xc3\xa6rm.\n"},
        {"5=maybe", "Frame: \"maybe\" is neither 1 nor 0.\n"},
        {"6=9", "Rows: \"9\" is none of its rows, nor the number of one.\n"},
        {"6=0", "Rows: \"0\" is none of its rows"},
        {"rows=third", "Rows: \"third\" is none of its rows"},
        {"7=7,5", "Margin: \"7,5\" isn't a number: the decimal sign is \".\".\n"},
        {"9=x", "There is no item 9 that can be used now.\n"},
        {"1=x", "Print is a button, which takes no value.\n"},
        {"3", "Name takes a value: number=value.\n"},
        {"3=\xe6\x97\xa5", "There is a character in this answer that can't be used.\n"},
        {"size 300", "\"300\" isn't WIDTHxHEIGHT in pixels, such as 800x600.\n"},
        {"undo", "This can't be done here: \"undo\". \"help\" lists what can be done.\n"},
    };
    std::string lines;
    for (const Case& c : cases) lines += std::string(c.answer) + "\n";
    typed(lines + "1\n");
    EXPECT_EQ(run(FORM), 3);
    for (const Case& c : cases) EXPECT_THAT(shown, HasSubstr(c.told)) << c.answer;
    const size_t first = shown.find("--- Form ---");
    EXPECT_EQ(shown.find("--- Form ---", first + 1), shown.npos) << "the dialog isn't shown over the message";
}

TEST_F(Terminal, ALongListIsShownInPartsAndTakesSpansOfRows) {
    mdlStringList_insertMember(nullptr, rows, -1, 98);
    severalRows = true;
    typed("rows 90\n6=3-5,100,4\n6=all\n6=none\n6=5-3x\nopen 6=second\nright rows=7\nentry 2\nentry drop\nclose\n");
    run(FORM);
    severalRows = false;
    EXPECT_THAT(shown, HasSubstr("      40.  \n    rows 1 to 40 of 100, 0 chosen\n"));
    EXPECT_THAT(shown, HasSubstr("      90.  \n"));
    EXPECT_THAT(shown, HasSubstr("    * 100.  \n    rows 90 to 100 of 100, 4 chosen\n"));
    EXPECT_THAT(shown, HasSubstr("100 chosen\n"));
    EXPECT_THAT(shown, HasSubstr("is none of its rows, nor numbers of rows such as 1,3-5"));
    EXPECT_THAT(shown, HasSubstr("Menu:  1. Drop\n"));
    EXPECT_THAT(shown, HasSubstr("\"2\" is no entry of the menu, nor its number.\n"));
    EXPECT_EQ(clicked, "2 6 drop ") << "a double click, a click with the right button, an entry";
}

TEST_F(Terminal, MenusOfApplicationsKeepTheTerminalUntilItIsLeft) {
    clicked.clear();
    typed("menu\nmenu tools/none\nnonsense\nmenu tools/drop\n\nmenu tools/drop\n");
    inSession([] {
        mdlDialog_menuBarInsertMenu(0, ROW_MENU, 0);
        host::serve();
    });
    EXPECT_EQ(contentsOf("output"), "Tools: Drop\n");
    EXPECT_THAT(shown, HasSubstr("The menu Tools has no entry \"none\""));
    EXPECT_THAT(shown, HasSubstr("\"nonsense\" can't be done."));
    EXPECT_EQ(clicked, "drop ");
}

TEST_F(Terminal, WhoeverReadsSeesWhatChangesAndAllOfItWhenAsked) {
    typed("frame\nshow\nclose\n");
    run(FORM);
    EXPECT_THAT(shown, HasSubstr("[Print] > --- Form ---\n5) [x] Frame\n[Print] > --- Form ---\n3) Name: \n"));
}

TEST_F(Terminal, HelpListsWhatCanBeDone) {
    typed("help\n?\nclose\n");
    run(FORM);
    EXPECT_THAT(shown, HasSubstr("You can answer:\n"
                                 "  a button, by its number, its label or the beginning of it: Print, Preview\n"
                                 "  an empty line: Print\n"));
    EXPECT_THAT(shown, HasSubstr("turns a switch: Name, Device, Frame, Rows, Margin\n  close: closes this window\n"));
    EXPECT_THAT(shown, HasSubstr("  picture FILE.png: makes a picture of this window\n  show: "));
}

TEST_F(Terminal, TabCompletesLabelsAndWords) {
    inSession([] {
        mdlDialog_open(0, FORM);
        const std::shared_ptr<host::Dialog> form = host::openDialogs()[0];
        const auto complete = [&](const char* typed) { return host::completeAnswer(*form, typed).text; };
        EXPECT_THAT(host::completeAnswer(*form, "pr").choices, testing::ElementsAre("Print", "Preview"));
        EXPECT_EQ(complete("pri"), "Print");
        EXPECT_EQ(complete("na"), "Name=");
        EXPECT_EQ(complete("cl"), "close");
        EXPECT_EQ(complete("none"), "none");
    });
}

TEST_F(Terminal, ItemsKeepTheirNumbersWhileOthersAreHidden) {
    answers("5\nclose\n");
    inSession([] {
        MdlDialog* form = mdlDialog_open(0, FORM);
        mdlDialog_itemShow(mdlDialog_itemGetByTypeAndId(form, ITEM_OPTION_BUTTON, 2), 0);
        mdlDialog_itemShow(mdlDialog_itemGetByTypeAndId(form, ITEM_PUSH_BUTTON, -3), 0);
        host::serve();
    });
    EXPECT_THAT(shown, HasSubstr("3) Name: \n5) [x] Frame\n6) Rows\n"));
    EXPECT_THAT(shown, HasSubstr("\n  2) Preview\n"));
}

TEST_F(Terminal, WhatComesFromDataCannotSteerTheTerminal) {
    options.showsProgress = true;
    inSession([] {
        toolSubsystem_printf("a\x1b[31m\tb\n");
        mdlOutput_printf(0, "%s", "page\x1b[2J\r");
        mdlOutput_messageCenter(MDL_PRIORITY_ERROR, "x\x1b]0;y\a", "\x7f", 0);
    });
    EXPECT_EQ(contentsOf("output"), "a [31m\tb\n");
    EXPECT_EQ(shown, "\rpage [2J \x1b[K\nx ]0;y :  \n");
    EXPECT_EQ(host::printable("\xc2\x9b"
                              "2J\xc3\xa5"),
              " 2J\xc3\xa5");
}

TEST_F(Terminal, AnAlertWaitsUntilSomebodyHasTakenNote) {
    for (const bool attended : {true, false}) {
        typed("\n");
        options.asks = attended;
        inSession([] { mdlOutput_messageCenter(MDL_PRIORITY_ERROR, "disk", "nearly full", 1); });
        EXPECT_EQ(shown, attended ? "disk: nearly full\nPress Enter to go on > " : "disk: nearly full\n");
    }
}

TEST_F(Terminal, YesPressesTheFirstButtonAndSaysSo) {
    options.yes = true;
    EXPECT_EQ(run(QUESTION), 3);
    EXPECT_THAT(shown, HasSubstr("> \xc3\x85ja\n"));
}

TEST_F(Terminal, AFileOfAnswersGoesBeforeYesAndTheTerminal) {
    answers("Nei\n");
    options.yes = true;
    int32_t first = 0, second = 0;
    inSession([&] {
        mdlDialog_openModal(&first, 0, QUESTION);
        mdlDialog_openModal(&second, 0, QUESTION);
    });
    EXPECT_EQ(first, 4);
    EXPECT_EQ(second, 3);
    EXPECT_THAT(shown, HasSubstr("> Nei\n"));
}

TEST_F(Terminal, AFileOfAnswersThatCannotBeReadIsTold) {
    options.answersFile = folder / "missing";
    EXPECT_THROW(host::makeTerminalFrontEnd(options), std::runtime_error);
    options.answersFile = folder;
    EXPECT_THROW(host::makeTerminalFrontEnd(options), std::runtime_error);
}

TEST_F(Terminal, WithNobodyThereANoticeCountsAsReadAndAQuestionAsDeclined) {
    EXPECT_EQ(run(NOTICE), 3);
    EXPECT_THAT(shown, HasSubstr("upper"));
    EXPECT_EQ(run(QUESTION), 4);
    EXPECT_THAT(shown, HasSubstr("--- Sp\xc3\xb8rsm\xc3\xa5l ---"));
    EXPECT_THAT(shown, HasSubstr("Nobody answers. Answer at a terminal, or run with --yes or --answers FILE.\n"));
}

TEST_F(Terminal, AnInputThatEndsLetsTheDialogGo) {
    typed("no such button\n");
    EXPECT_EQ(run(QUESTION), 4);
    EXPECT_THAT(shown, HasSubstr("Nobody answers."));
}

TEST_F(Terminal, ProgressKeepsToOneLineAndEndsBeforeAnythingElse) {
    options.showsProgress = true;
    inSession([] {
        mdlOutput_printf(1, "%s", "10 %");
        mdlOutput_printf(1, "%s", "20 %");
        mdlOutput_messageCenter(MDL_PRIORITY_ERROR, "bl\xe5.mcd", "not found", 0);
        mdlOutput_printf(1, "%s", "30 %");
    });
    EXPECT_EQ(shown, "\r10 %\x1b[K\r20 %\x1b[K\nbl\xc3\xa5.mcd: not found\n\r30 %\x1b[K\n");
    options.showsProgress = false;
    inSession([] { mdlOutput_printf(1, "%s", "10 %"); });
    EXPECT_EQ(shown, "");
}

TEST_F(Terminal, ConsoleLinesGoToTheOutputAlone) {
    inSession([] { toolSubsystem_printf("stasjon %d \xf8\n", 5); });
    EXPECT_EQ(contentsOf("output"), "stasjon 5 \xc3\xb8\n");
    EXPECT_EQ(shown, "");
}

TEST_F(Terminal, OpenDialogsAreServedUntilNoneIsLeft) {
    typed("3=name\nwindow 1\nsize 300x200\nwindow 7\npicture " + (folder / "form.png").string() + "\n2\nclose\n");
    inSession([&] {
        mdlDialog_open(0, QUESTION);
        mdlDialog_open(0, FORM);
        host::serve();
        EXPECT_TRUE(host::openDialogs().empty());
    });
    EXPECT_THAT(shown, HasSubstr("3) Name: name\n"));
    EXPECT_THAT(shown, HasSubstr("Open windows: 1 Sp\xc3\xb8rsm\xc3\xa5l, *2 Form\n"));
    EXPECT_THAT(shown, HasSubstr("Open windows: *1 Sp\xc3\xb8rsm\xc3\xa5l, 2 Form\n"));
    EXPECT_THAT(shown, HasSubstr("This window keeps its size.\n"));
    EXPECT_THAT(shown, HasSubstr("There is no open window of that number. Open windows: "));
    EXPECT_EQ(contentsOf("form.png").substr(1, 3), "PNG");
}

TEST_F(Terminal, YesPressesTheFirstButtonOfAnOpenDialogOnceAndThenClosesIt) {
    options.yes = true;
    inSession([] {
        mdlDialog_open(0, TOOLS);
        EXPECT_TRUE(host::serve());
        EXPECT_TRUE(host::openDialogs().empty());
    });
    const size_t pressed = shown.find("> Work\n");
    ASSERT_NE(pressed, shown.npos);
    EXPECT_EQ(shown.find("> Work\n", pressed + 1), shown.npos);
}

TEST_F(Terminal, OpenDialogsThatNobodyAnswersAreClosed) {
    inSession([] {
        mdlDialog_open(0, FORM);
        host::serve();
    });
    EXPECT_THAT(shown, HasSubstr("--- Form ---"));
}

TEST_F(Terminal, ARowThatIsNotEnabledIsNeitherOfferedNorTaken) {
    typed("4=Sk\xc3\xa6rm\n4=2\n4=1\nclose\n");
    inSession([] {
        MdlDialog* form = mdlDialog_open(0, FORM);
        mdlDialog_optionButtonEnableRow(mdlDialog_itemGetByTypeAndId(form, ITEM_OPTION_BUTTON, 2), 1, 0);
        host::serve();
    });
    EXPECT_THAT(shown, HasSubstr("4) Device: Paper (Paper)\n"));
    EXPECT_THAT(shown, HasSubstr("Device: \"Sk\xc3\xa6rm\" is none of its choices: Paper.\n"));
    EXPECT_THAT(shown, HasSubstr("Device: \"2\" is none of its choices: Paper.\n"));
}

// ---- commands ----

std::vector<double> points;  // x of the points that the command below was given

void startPointCommand() {
    points.clear();
    mdlState_startPrimitive([](Point3d* point, int32_t) { points.push_back(point->x); }, nullptr, 0, 0);
    mdlOutput_prompt("Plass for siden p\xe5 arket");
}

TEST_F(Terminal, ACommandAsksForPointsUntilItIsReset) {
    typed("4,5\nhere\n6,7 2\n\n");
    inSession([] {
        startPointCommand();
        EXPECT_TRUE(host::serveCommands());
    });
    EXPECT_THAT(points, testing::ElementsAre(4, 6));
    EXPECT_THAT(shown, HasSubstr("Plass for siden p\xc3\xa5 arket\nx,y[,z] [view] > "));
    EXPECT_THAT(shown, HasSubstr("\"here\" isn't a point. Give x,y"));
}

TEST_F(Terminal, OpenDialogsCanBeUsedWhileACommandWaitsForAPoint) {
    typed("help\nframe\nname=7\n5=x\n4,5\nclose\nwhat\n\n");
    inSession([] {
        mdlDialog_open(0, FORM);
        startPointCommand();
        EXPECT_TRUE(host::serveCommands());
        EXPECT_TRUE(host::openDialogs().empty());
    });
    EXPECT_THAT(points, testing::ElementsAre(4));
    EXPECT_THAT(shown, HasSubstr("Any other answer goes to the open window:\n  a button"));
    EXPECT_THAT(shown, HasSubstr("5) [x] Frame\n"));
    EXPECT_THAT(shown, HasSubstr("3) Name: 7\n"));
    EXPECT_THAT(shown, HasSubstr("Frame: \"x\" is neither 1 nor 0.\n"));
    EXPECT_THAT(shown, HasSubstr("\"what\" isn't a point.")) << "no window is open any more";
}

// But not by a window that has to be answered first.
TEST_F(Terminal, LinesForTheHostAreTakenWhileACommandWaitsAndBesideOpenDialogs) {
    typed("view 2 open\n4,5\nview 3 opn\n\nview 4 open\nclose\nview 5 open\n1\n");
    inSession([] {
        startPointCommand();
        EXPECT_TRUE(host::serveCommands());
        mdlDialog_open(0, FORM);
        host::serve();
        mdlDialog_openModal(nullptr, 0, FORM);
        for (const int32_t view : {1, 3}) EXPECT_TRUE(mdlView_isOpen(view)) << view;
        for (const int32_t view : {2, 4}) EXPECT_FALSE(mdlView_isOpen(view)) << view;
    });
    EXPECT_THAT(points, testing::ElementsAre(4));
    EXPECT_THAT(shown, HasSubstr("A view can't do \"opn\". Give one of: fit,"));
    EXPECT_THAT(shown, HasSubstr("This can't be done here: \"view 5 open\"."));
}

TEST_F(Terminal, AnUnattendedCommandGetsItsAnswersThenTheOriginOnce) {
    answers("4,5\n");
    options.yes = true;
    inSession([] {
        startPointCommand();
        EXPECT_FALSE(host::serveCommands()) << "it wants points for ever";
    });
    EXPECT_THAT(points, testing::ElementsAre(4, 0));
    EXPECT_THAT(shown, HasSubstr("Nobody gives a point."));
}

TEST_F(Terminal, LinesForTheHostAreCarriedOutWhileACommandWaits) {
    typed("move 3,4\nundo\nsnap end 5,5\nselect all\nhelp\nmove here\n6,7\nend\n");
    inSession([] {
        startPointCommand();
        mdlState_setFunction(
            MDL_STATE_DYNAMICS,
            reinterpret_cast<MdlStateFunction>(+[](Point3d* point, int32_t, int32_t) { points.push_back(-point->x); }));
        EXPECT_TRUE(host::serveCommands());
    });
    EXPECT_THAT(points, testing::ElementsAre(-3, -6, 6));
    EXPECT_THAT(shown, HasSubstr("There is nothing to take back."));
    EXPECT_THAT(shown, HasSubstr("No element within reach has such a point."));
    EXPECT_THAT(shown, HasSubstr("No design file is open."));
    EXPECT_THAT(shown, HasSubstr("  undo | redo: "));
    EXPECT_THAT(shown, HasSubstr("\"move here\" isn't a point."));
}

int pipeEnd = -1;
int timersRun = 0;

// The user types half a line, and the other half when the next timer comes.
void typeOn(int32_t) {
    const std::string_view parts[] = {"4,", "5\n\n"};
    const std::string_view part = parts[timersRun++];
    EXPECT_EQ(write(pipeEnd, part.data(), part.size()), static_cast<ssize_t>(part.size()));
    if (timersRun < 2) mdlSystem_setTimerFunction(nullptr, 2, reinterpret_cast<void*>(typeOn));
}

TEST_F(Terminal, TimersRunWhileALineIsWaitedFor) {
    const std::string pipe = folder / "input";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    pipeEnd = open(pipe.c_str(), O_RDWR);
    options.asks = true;
    timersRun = 0;
    inSession([] {
        host::Session::current()->startApplication("timers", [](int, char**) {
            startPointCommand();
            return mdlSystem_setTimerFunction(nullptr, 2, reinterpret_cast<void*>(typeOn));
        });
        EXPECT_TRUE(host::serveCommands());
    });
    close(pipeEnd);
    EXPECT_EQ(timersRun, 2);
    EXPECT_THAT(points, testing::ElementsAre(4));
    const std::string asked = "Plass for siden p\xc3\xa5 arket\nx,y[,z] [view] > ";
    EXPECT_EQ(shown, asked + asked) << "it is asked once for each line, however often timers run meanwhile";
}

// ---- file dialogs ----

// The chosen file, or the status in parentheses.
std::string fileOpened(const fs::path& folder, const char* suggested) {
    char name[256] = "";
    const int status = mdlDialog_fileOpen(name, 0, 0, suggested, "*.txt", folder.c_str(), "Choose a list");
    return status == MDL_SUCCESS ? std::string(name) : "(" + std::to_string(status) + ")";
}

TEST_F(Terminal, AsksForAFileWithItsDirectoryAndFilter) {
    std::ofstream(folder / "a.txt") << "text";
    typed("none.txt\n a \n!\n");
    inSession([&] {
        EXPECT_EQ(fileOpened(folder, ""), folder / "a.txt");
        EXPECT_EQ(fileOpened(folder, ""), "(1)") << "cancelled";
        EXPECT_EQ(fileOpened(folder, ""), "(1)") << "the input has ended";
    });
    EXPECT_THAT(shown,
                testing::HasSubstr("--- Choose a list ---\nDirectory: " + folder.string() + "/\nFilter: *.txt\n"));
    EXPECT_THAT(shown, testing::HasSubstr("none.txt\" isn't there. Give the name of another one.\n> "));
    EXPECT_THAT(shown, testing::EndsWith("Nobody names a file. Answer at a terminal, or run with --answers FILE.\n"));
}

TEST_F(Terminal, UnattendedRunsTakeTheSuggestedFileOrNone) {
    std::ofstream(folder / "a.txt") << "text";
    options.yes = true;
    inSession([&] {
        EXPECT_EQ(fileOpened(folder, "a.txt"), folder / "a.txt");
        EXPECT_EQ(fileOpened(folder, "none.txt"), "(1)");
        EXPECT_EQ(fileOpened(folder, ""), "(1)");
        char name[256] = "";
        EXPECT_EQ(mdlDialog_fileCreate(name, 0, 0, "a.txt", "*.txt", folder.c_str(), ""), MDL_SUCCESS);
    });
    EXPECT_THAT(shown, testing::HasSubstr("none.txt\" isn't there"));
    EXPECT_THAT(shown, testing::HasSubstr("Replace it?\n> yes\n"));
}

TEST_F(Terminal, AnswersFromAFileMayRefuseToReplace) {
    std::ofstream(folder / "a.txt") << "text";
    answers("a.txt\nn\nb\n");
    inSession([&] {
        char name[256] = "";
        EXPECT_EQ(mdlDialog_fileCreate(name, 0, 0, "", "*.txt", folder.c_str(), ""), MDL_SUCCESS);
        EXPECT_EQ(name, folder / "b.txt");
    });
}

}  // namespace
