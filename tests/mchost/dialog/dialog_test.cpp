// Dialogs with their hooks: the order of messages, values, and what hooks may do in the middle.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>

#include "mchost/dialog/dialog.h"
#include "mchost/dialog/menus.h"
#include "mchost/front/scripted.h"
#include "mchost/mdl/dialog_items.h"
#include "mchost/mdl/list_models.h"
#include "mchost/mdl/menu_bar.h"
#include "mchost/mdl/resource.h"
#include "mchost/mdl/system.h"
#include "mchost/resource/container.h"
#include "mchost/session/keyin.h"
#include "tests/support/session_fixture.h"

namespace {

using host::Dialog;
using host::DialogScript;
using testing::ElementsAre;

enum { BOX = 100, OTHER_BOX = 101, MENU = 102 };
enum { BOX_HOOK = 1, BUTTON_HOOK = 2, TEXT_HOOK = 3, LIST_HOOK = 4, GENERIC_HOOK = 5, OTHER_HOOK = 6, COMBO_HOOK = 7 };
enum { BUTTON = 10, LENGTH = 11, NAME = 12, DEVICE = 13, USED = 14, ROWS = 15, AREA = 16 };
enum { PRINTERS = 20, TARGET = 21, IN_TARGET = 22 };  // combo box, group box and its member

struct Settings {
    double length;
    char name[8];
    int32_t device;
    int32_t used;
};
Settings settings;
Settings* settingsP = &settings;
const StructField settingsFields[] = {
    {"length", FIELD_DOUBLE, offsetof(Settings, length), 8, 1, nullptr},
    {"name", FIELD_CHARS, offsetof(Settings, name), 8, 1, nullptr},
    {"device", FIELD_INT32, offsetof(Settings, device), 4, 1, nullptr},
    {"used", FIELD_INT32, offsetof(Settings, used), 4, 1, nullptr},
    {},
};

host::ItemLayout item(int32_t kind, int32_t id, int32_t hook = 0, const char* access = "", const char* format = "") {
    return {kind, id, 10, 20, 60, 20, hook, access, format, {}, {}};
}

host::ResourceContents layouts() {
    host::ResourceContents contents;
    host::DialogLayout& box = contents.dialogs[BOX];
    box = {BOX, 200, 100, BOX_HOOK, {}, {}};
    box.title.set("en", "Box");
    host::ItemLayout device = item(ITEM_OPTION_BUTTON, DEVICE, 0, "sP->device");
    for (const int32_t value : {3, 5}) device.rows.push_back({value, {}});
    box.items = {
        item(ITEM_PUSH_BUTTON, BUTTON, BUTTON_HOOK),
        item(ITEM_TEXT, LENGTH, TEXT_HOOK, "sP->length", "%.2f"),
        item(ITEM_TEXT, NAME, TEXT_HOOK, "sP->name"),
        device,
        item(ITEM_TOGGLE, USED, 0, "sP->used"),
        item(ITEM_LIST_BOX, ROWS, LIST_HOOK),
        item(ITEM_GENERIC, AREA, GENERIC_HOOK),
        item(ITEM_PUSH_BUTTON, -3),
        item(ITEM_PUSH_BUTTON, -4),
        item(ITEM_COMBO_BOX, PRINTERS, COMBO_HOOK, "sP->used"),
        item(ITEM_GROUP_BOX, TARGET),
        item(ITEM_TEXT, IN_TARGET),
    };
    box.items.back().group = TARGET;
    host::MenuLayout& menu = contents.menus[MENU] = {MENU, {}, {{1, BUTTON_HOOK, {}}, {2, BUTTON_HOOK, {}}}};
    menu.title.set("en", "Tools");
    menu.entries[1].label.set("en", "two");
    contents.dialogs[OTHER_BOX] = {OTHER_BOX, 50, 50, OTHER_HOOK, {}, {item(ITEM_PUSH_BUTTON, -3, BUTTON_HOOK)}};
    return contents;
}

// What hooks got, "hook:type", and what they do on it.
std::string trace;
std::map<std::pair<int32_t, int32_t>, std::function<void(DialogMessage&)>> actions;
std::vector<MdlDesc*> contexts;

void record(DialogMessage* message) {
    trace += std::to_string(message->hookId) + ":" + std::to_string(message->type) + " ";
    contexts.push_back(mdlSystem_getCurrMdlDesc());
    const auto action = actions.find({message->hookId, message->type});
    if (action == actions.end()) return;
    const auto run = action->second;  // it may replace itself
    run(*message);
}

class Dialogs : public SessionTest {
  protected:
    Dialogs() {
        trace.clear();
        actions.clear();
        contexts.clear();
        settings = {1.5, "abc", 5, 1};
        settingsP = &settings;
        front().answer = std::ref(script);
        host::writeContainer(path("dialogs.rsc"), layouts());
        asApplication("owner", [&] {
            mdlResource_openFile(nullptr, path("dialogs.rsc").c_str(), MDL_RSC_READ);
            const DialogHook hooks[] = {{BOX_HOOK, record},  {BUTTON_HOOK, record},  {TEXT_HOOK, record},
                                        {LIST_HOOK, record}, {GENERIC_HOOK, record}, {OTHER_HOOK, record},
                                        {COMBO_HOOK, record}};
            mdlDialog_hookPublish(7, hooks);
            SymbolSet* set = mdlCExpression_initializeSet(4, 0, 0);
            mdlDialog_publishStructure(set, "Settings", settingsFields);
            mdlDialog_publishComplexPtr(set, "Settings", "sP", &settingsP);
        });
    }
    void on(int32_t hook, int32_t type, std::function<void(DialogMessage&)> action) {
        actions[{hook, type}] = std::move(action);
    }
    int32_t runModal(int32_t id = BOX) {
        return asApplication("owner", [&] {
            int32_t reply = -1;
            status = mdlDialog_openModal(&reply, 0, id);
            return reply;
        });
    }
    MdlDialog* open(int32_t id = BOX) {
        return asApplication("owner", [&] { return mdlDialog_open(0, id); });
    }
    static MdlItem* find(MdlDialog* dialog, int32_t kind, int32_t id) {
        return mdlDialog_itemGetByTypeAndId(dialog, kind, id);
    }

    DialogScript script;
    int status = -1;
};

TEST_F(Dialogs, HooksGetTheirMessagesInOrderAsTheOwner) {
    script.press(BUTTON).press(-3);
    EXPECT_EQ(runModal(), 3);
    EXPECT_EQ(status, MDL_SUCCESS);
    EXPECT_EQ(
        trace,
        "1:0 2:50 3:50 3:50 4:50 5:50 7:50 2:69 3:69 3:69 4:69 5:69 7:69 1:1 2:52 3:52 3:52 4:52 5:52 7:52 2:54 2:70 "
        "2:51 3:51 3:51 4:51 5:51 7:51 1:2 ");
    for (MdlDesc* context : contexts) EXPECT_EQ(context, application("owner"));
}

TEST_F(Dialogs, TheReplyTellsTheButtonAndFourWhenItWasClosed) {
    int32_t told = -1;
    on(BOX_HOOK, DIALOG_DESTROY, [&](DialogMessage& m) { told = m.reply; });
    script.press(-4);
    EXPECT_EQ(runModal(), 4);
    EXPECT_EQ(told, 4);
    script.close();
    EXPECT_EQ(runModal(), 4);
    EXPECT_EQ(told, 0);
    EXPECT_EQ(status, MDL_SUCCESS);
    EXPECT_EQ(runModal(), 4);  // no step is left: nobody answers
    EXPECT_EQ(status, MDL_ERROR);
    EXPECT_EQ(mdlDialog_find(BOX, nullptr), nullptr);
}

TEST_F(Dialogs, ADialogWithoutALayoutIsToldAndDeclined) {
    EXPECT_EQ(runModal(999), 4);
    EXPECT_EQ(status, MDL_DIALOG_NOT_SHOWN);
    ASSERT_EQ(front().messages.size(), 1u);
    EXPECT_NE(front().messages[0].brief.find("Dialog 999"), std::string::npos);
}

TEST_F(Dialogs, ValuesMoveBetweenItemsAndWhatIsPublished) {
    script
        .check([](Dialog& d) {
            EXPECT_EQ(d.items()[1].value, "1.50");
            EXPECT_EQ(d.items()[2].value, "abc");
            EXPECT_EQ(d.items()[3].value, "5");
            EXPECT_EQ(d.items()[4].value, "1");
        })
        .setValue(ITEM_TEXT, LENGTH, "12.345")
        .setValue(ITEM_TEXT, NAME, "\xc5s")
        .setValue(ITEM_OPTION_BUTTON, DEVICE, "3")
        .setValue(ITEM_TOGGLE, USED, "0")
        .check([](Dialog& d) { EXPECT_EQ(d.items()[1].value, "12.35"); })
        .press(-3);
    EXPECT_EQ(runModal(), 3) << script.fault();
    EXPECT_EQ(settings.length, 12.345);
    EXPECT_STREQ(settings.name, "\xc5s");
    EXPECT_EQ(settings.device, 3);
    EXPECT_EQ(settings.used, 0);
}

TEST_F(Dialogs, ChangesAreToldWithWhetherTheValueIsAnother) {
    std::string changes;
    on(TEXT_HOOK, ITEM_STATE_CHANGED,
       [&](DialogMessage& m) { changes += std::to_string(m.changed) + "/" + std::to_string(m.state) + " "; });
    script.setValue(ITEM_TEXT, LENGTH, "7").setValue(ITEM_TEXT, LENGTH, "7.0").setValue(ITEM_TEXT, NAME, "x").press(-3);
    EXPECT_EQ(runModal(), 3);
    EXPECT_EQ(changes, "1/7 0/7 1/0 ");
}

TEST_F(Dialogs, WhatAnItemCannotTakeLeavesItAsItWas) {
    MdlDialog* dialog = open();
    struct Case {
        int32_t kind, id;
        const char* value;
    };
    const Case cases[] = {
        {ITEM_TEXT, LENGTH, "long"}, {ITEM_TEXT, NAME, "12345678"}, {ITEM_OPTION_BUTTON, DEVICE, "4"},
        {ITEM_TOGGLE, USED, "2"},    {ITEM_LIST_BOX, ROWS, "0"},    {ITEM_PUSH_BUTTON, BUTTON, "x"},
        {ITEM_GENERIC, AREA, "x"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.value);
        MdlItem* changed = find(dialog, c.kind, c.id);
        const std::string before = mdlDialog_itemGetValue(changed);
        EXPECT_EQ(mdlDialog_itemSetValue(changed, c.value), MDL_ERROR);
        EXPECT_EQ(mdlDialog_itemGetValue(changed), before);
    }
    EXPECT_EQ(settings.length, 1.5);
    EXPECT_STREQ(settings.name, "abc");
    settingsP = nullptr;
    EXPECT_EQ(mdlDialog_itemSetValue(find(dialog, ITEM_TEXT, NAME), "x"), MDL_ERROR);
    EXPECT_EQ(mdlDialog_itemsSynch(dialog), MDL_ERROR);
    EXPECT_STREQ(mdlDialog_itemGetValue(find(dialog, ITEM_TEXT, NAME)), "abc");
}

TEST_F(Dialogs, SynchronisingShowsTheValueInTheItemsFormat) {
    MdlDialog* dialog = open();
    MdlItem* length = find(dialog, ITEM_TEXT, LENGTH);
    char format[32];
    EXPECT_EQ(mdlDialog_textGetInfo(format, length), MDL_SUCCESS);
    EXPECT_STREQ(format, "%.2f");
    settings.length = 2.0 / 3;
    EXPECT_EQ(mdlDialog_textSetInfo(length, "%.4f"), MDL_SUCCESS);
    EXPECT_EQ(mdlDialog_textSetInfo(length, "%s%n"), MDL_ERROR);
    EXPECT_EQ(mdlDialog_textSetInfo(length, "%.2f and words that are too long"), MDL_ERROR);
    EXPECT_EQ(mdlDialog_textSetInfo(find(dialog, ITEM_TOGGLE, USED), "%d"), MDL_ERROR);
    EXPECT_EQ(mdlDialog_itemSynch(length), MDL_SUCCESS);
    EXPECT_STREQ(mdlDialog_itemGetValue(length), "0.6667");
}

TEST_F(Dialogs, HiddenAndDisabledItemsCannotBeUsed) {
    on(BOX_HOOK, DIALOG_INIT, [](DialogMessage& m) {
        mdlDialog_itemShow(find(m.dialog, ITEM_PUSH_BUTTON, -4), 0);
        mdlDialog_itemEnable(find(m.dialog, ITEM_TEXT, NAME), 0);
    });
    script.check([](Dialog& d) {
        EXPECT_FALSE(d.press(8));
        EXPECT_FALSE(d.setValue(2, "new"));
        EXPECT_FALSE(d.press(99));
        EXPECT_FALSE(d.selectRows(0, {0}));
    });
    script.press(-3);
    EXPECT_EQ(runModal(), 3);
    EXPECT_STREQ(settings.name, "abc");
}

TEST_F(Dialogs, AListBoxShowsItsListAndTellsTheChosenRow) {
    StringList* list = mdlStringList_create(5, 0);
    for (int32_t i = 0; i < 5; ++i) mdlStringList_setMember(list, i, std::to_string(i).c_str(), nullptr);
    on(LIST_HOOK, ITEM_CREATE, [&](DialogMessage& m) { mdlDialog_listBoxSetStrListP(m.item, list, 2); });
    on(LIST_HOOK, ITEM_DESTROY, [&](DialogMessage& m) {
        EXPECT_EQ(mdlDialog_listBoxGetStrListP(m.item), list);
        mdlStringList_destroy(list);
    });
    int32_t row = -1;
    on(LIST_HOOK, ITEM_STATE_CHANGED, [&](DialogMessage& m) { row = mdlDialog_listBoxGetSelectedRow(m.item); });
    script
        .check([](Dialog& d) {
            const host::DialogItem& rows = d.items()[5];
            EXPECT_EQ(Dialog::rowCount(rows), 3);
            EXPECT_EQ(Dialog::cellText(rows, 1, 1), "3");
            EXPECT_EQ(Dialog::cellText(rows, 2, 1), "");
            EXPECT_EQ(Dialog::cellText(rows, 3, 0), "");
            EXPECT_FALSE(d.selectRows(5, {3}));
        })
        .selectRow(ROWS, 2)
        .press(-3);
    EXPECT_EQ(runModal(), 3) << script.fault();
    EXPECT_EQ(row, 2);
}

TEST_F(Dialogs, AListBoxMayTakeSeveralRowsAndTellsClicks) {
    const std::unique_ptr<StringList, decltype(&mdlStringList_destroy)> list(mdlStringList_create(6, 0),
                                                                             mdlStringList_destroy);
    on(LIST_HOOK, ITEM_CREATE, [&](DialogMessage& m) { mdlDialog_listBoxSetStrListP(m.item, list.get(), 0); });
    MdlDialog* dialog = open();
    MdlItem* rows = find(dialog, ITEM_LIST_BOX, ROWS);
    const auto shown = host::openDialogs().at(0);
    EXPECT_FALSE(shown->selectRows(5, {4, 1}));
    EXPECT_EQ(mdlDialog_listBoxSetInfo(rows, 0, 1), MDL_SUCCESS);
    EXPECT_FALSE(shown->selectRows(5, {4, 6}));

    std::vector<std::pair<int32_t, int32_t>> clicks;  // count, row
    int32_t doubles = 0;
    on(LIST_HOOK, ITEM_BUTTON, [&](DialogMessage& m) {
        clicks.emplace_back(m.clickCount, m.row);
        if (m.attributes & MDL_DOUBLE_CLICK) doubles += m.state;
    });
    EXPECT_TRUE(shown->selectRows(5, {4, 1}));
    EXPECT_TRUE(shown->activate(5));
    EXPECT_THAT(clicks, ElementsAre(std::pair(1, 1), std::pair(2, 1)));
    EXPECT_EQ(doubles, 1);

    MdlCell* cells = nullptr;
    int32_t count = 0;
    ASSERT_EQ(mdlDialog_listBoxGetSelections(&cells, &count, rows), MDL_SUCCESS);
    ASSERT_EQ(count, 2);
    EXPECT_EQ(cells[0].row, 4);
    EXPECT_EQ(cells[1].row, 1);
    dlmSystem_mdlFree(cells);
    mdlStringList_deleteMember(list.get(), 3, 3);
    mdlDialog_listBoxSetStrListP(rows, list.get(), 0);
    EXPECT_THAT(shown->items()[5].selection, ElementsAre(1));
    EXPECT_EQ(mdlDialog_listBoxGetSelections(&cells, &count, find(dialog, ITEM_TEXT, NAME)), MDL_ERROR);
    mdlWindow_close(dialog, 0, 1);
}

TEST_F(Dialogs, CellsOfAListModelAreEditedUntilTheFocusMoves) {
    const std::unique_ptr<ListModel, decltype(&mdlListModel_destroy)> model(mdlListModel_create(2),
                                                                            mdlListModel_destroy);
    for (int32_t row = 0; row < 2; ++row) EXPECT_EQ(mdlListModel_insertRow(model.get(), 0), MDL_SUCCESS);
    EXPECT_EQ(mdlListModel_insertRow(model.get(), 3), MDL_ERROR);
    mdlListModel_setText(model.get(), 1, 1, "old");
    mdlListModel_setEditor(model.get(), 1, 1, ITEM_TEXT, -1);
    MdlDialog* dialog = open();
    MdlItem* rows = find(dialog, ITEM_LIST_BOX, ROWS);
    const auto shown = host::openDialogs().at(0);
    EXPECT_EQ(mdlDialog_listBoxSetListModelP(rows, model.get()), MDL_SUCCESS);
    EXPECT_EQ(Dialog::rowCount(shown->items()[5]), 2);
    EXPECT_EQ(Dialog::cellText(shown->items()[5], 1, 1), "old");

    std::string told;
    on(LIST_HOOK, ITEM_CELL_EDITED, [&](DialogMessage& m) {
        told += std::to_string(m.row) + std::to_string(m.column) + std::to_string(m.changed) + " ";
    });
    EXPECT_EQ(mdlDialog_listBoxEditCell(rows, 0, 1), MDL_ERROR) << "it has no editor";
    EXPECT_EQ(mdlDialog_listBoxEditCell(rows, 1, 1), MDL_SUCCESS);
    EXPECT_TRUE(shown->setValue(5, "new"));
    EXPECT_STREQ(mdlListModel_getText(model.get(), 1, 1), "new");
    EXPECT_EQ(mdlDialog_listBoxEditCell(rows, 1, 1), MDL_SUCCESS);
    EXPECT_TRUE(shown->setValue(2, "away"));
    EXPECT_TRUE(shown->setValue(5, "1"));
    EXPECT_STREQ(mdlListModel_getText(model.get(), 1, 1), "new");
    EXPECT_EQ(mdlDialog_listBoxGetSelectedRow(rows), 1);
    EXPECT_EQ(told, "111 ");
    mdlWindow_close(dialog, 0, 1);
}

TEST_F(Dialogs, ItemsOfAllDialogsAreBroughtUpToDateByWhatTheyShow) {
    MdlDialog* dialog = open();
    EXPECT_EQ(mdlDialog_getOpen(0), dialog);
    EXPECT_EQ(mdlDialog_getOpen(1), nullptr);
    settings.length = 7;
    EXPECT_EQ(mdlDialog_synchShown("s"), MDL_SUCCESS);
    EXPECT_STREQ(mdlDialog_itemGetValue(find(dialog, ITEM_TEXT, LENGTH)), "1.50");
    EXPECT_EQ(mdlDialog_synchShown("sP"), MDL_SUCCESS);
    EXPECT_STREQ(mdlDialog_itemGetValue(find(dialog, ITEM_TEXT, LENGTH)), "7.00");
    mdlWindow_close(dialog, 0, 1);
}

TEST_F(Dialogs, MenusStandInTheBarAndPopUpAndCallTheirEntries) {
    MdlMenu *first = nullptr, *last = nullptr;
    asApplication("owner", [&] {
        last = mdlDialog_menuBarInsertMenu(0, MENU, MDL_MENU_HELP);
        first = mdlDialog_menuBarInsertMenu(0, MENU, MENU);
        EXPECT_EQ(mdlDialog_menuBarInsertMenu(0, 999, 0), nullptr);
    });
    ASSERT_EQ(host::menuBar().size(), 2u);
    int32_t value = -1;
    MdlDialog* over = nullptr;
    on(BUTTON_HOOK, ITEM_BUTTON, [&](DialogMessage& m) {
        value = m.value;
        over = m.dialog;
    });
    EXPECT_TRUE(host::carryOutHostWord("menu tools/Two"));
    EXPECT_EQ(value, 2);
    EXPECT_EQ(over, nullptr);
    EXPECT_EQ(contexts.back(), application("owner"));
    EXPECT_EQ(mdlDialog_menuBarDeleteMenu(first), MDL_SUCCESS);
    EXPECT_EQ(mdlDialog_menuBarDeleteMenu(first), MDL_ERROR);
    EXPECT_EQ(host::menuBar().size(), 1u);

    MdlDialog* dialog = open();
    const auto shown = host::openDialogs().at(0);
    EXPECT_FALSE(shown->askForMenu(5)) << "no hook offers one";
    on(BOX_HOOK, DIALOG_BUTTON, [&](DialogMessage& m) {
        if (m.attributes == MDL_SECOND_BUTTON && mdlDialog_itemId(m.item) == ROWS)
            mdlDialog_offerMenu(m.dialog, 0, MENU);
    });
    EXPECT_FALSE(shown->askForMenu(1));
    EXPECT_TRUE(shown->askForMenu(5));
    EXPECT_FALSE(shown->choose(2));
    EXPECT_TRUE(shown->askForMenu(5));
    EXPECT_TRUE(shown->choose(0));
    EXPECT_FALSE(shown->choose(0)) << "the menu has gone";
    EXPECT_EQ(value, 1);
    EXPECT_EQ(over, dialog);
    session().endApplication(application("owner"));
    EXPECT_TRUE(host::menuBar().empty()) << "they go with their application";
}

TEST_F(Dialogs, OptionButtonsCanBeFilledAnew) {
    MdlDialog* dialog = open();
    MdlItem* device = find(dialog, ITEM_OPTION_BUTTON, DEVICE);
    EXPECT_EQ(mdlDialog_optionButtonDeleteAll(device), MDL_SUCCESS);
    EXPECT_EQ(mdlDialog_itemSetValue(device, "3"), MDL_ERROR);
    EXPECT_EQ(mdlDialog_optionButtonInsert(device, "Plotter", 40), MDL_SUCCESS);
    EXPECT_EQ(mdlDialog_optionButtonCount(device), 1);
    EXPECT_EQ(mdlDialog_itemSetValue(device, "40"), MDL_SUCCESS);
    EXPECT_EQ(settings.device, 40);
}

TEST_F(Dialogs, ARowThatIsNotEnabledIsKeptFromTheUserAlone) {
    MdlDialog* dialog = open();
    MdlItem* device = find(dialog, ITEM_OPTION_BUTTON, DEVICE);
    EXPECT_EQ(mdlDialog_optionButtonEnableRow(device, 0, 0), MDL_SUCCESS);
    EXPECT_EQ(mdlDialog_optionButtonEnableRow(device, 2, 0), MDL_ERROR);
    EXPECT_EQ(mdlDialog_optionButtonRowIsEnabled(device, 0), 0);
    EXPECT_EQ(mdlDialog_optionButtonRowIsEnabled(device, 1), 1);
    EXPECT_FALSE(host::openDialogs().at(0)->setValue(3, "3"));
    EXPECT_EQ(settings.device, 5);
    EXPECT_EQ(mdlDialog_itemSetValue(device, "3"), MDL_SUCCESS);
    EXPECT_EQ(settings.device, 3);
}

TEST_F(Dialogs, AComboBoxKeepsItsRowInItsAccessString) {
    StringList* list = mdlStringList_create(4, 0);
    for (int32_t i = 0; i < 4; ++i) mdlStringList_setMember(list, i, std::to_string(i).c_str(), nullptr);
    on(COMBO_HOOK, ITEM_FILL, [&](DialogMessage& m) { mdlDialog_comboBoxSetStrListP(m.item, list, 2); });
    int32_t changed = -1;
    on(COMBO_HOOK, ITEM_STATE_CHANGED, [&](DialogMessage& m) { changed = m.changed; });
    MdlDialog* dialog = open();
    MdlItem* printers = find(dialog, ITEM_COMBO_BOX, PRINTERS);
    EXPECT_EQ(mdlDialog_comboBoxGetSelectedRow(printers), 1);
    EXPECT_TRUE(host::openDialogs().at(0)->selectRows(9, {0}));
    EXPECT_EQ(settings.used, 0);
    EXPECT_EQ(changed, 1);
    EXPECT_EQ(mdlDialog_comboBoxSelectRow(printers, 1), MDL_SUCCESS);
    EXPECT_EQ(settings.used, 1);
    EXPECT_EQ(mdlDialog_comboBoxSelectRow(printers, 2), MDL_ERROR);
    settings.used = 7;  // a row that isn't there
    EXPECT_EQ(mdlDialog_itemSynch(printers), MDL_SUCCESS);
    EXPECT_EQ(mdlDialog_comboBoxGetSelectedRow(printers), -1);
    EXPECT_EQ(settings.used, 7);
    mdlWindow_close(dialog, 0, 1);
    mdlStringList_destroy(list);
}

TEST_F(Dialogs, AGroupBoxHidesItsMembersWithItself) {
    MdlDialog* dialog = open();
    MdlItem* group = find(dialog, ITEM_GROUP_BOX, TARGET);
    MdlItem* member = mdlDialog_itemNeighbour(group, 1);
    EXPECT_EQ(mdlDialog_itemId(member), IN_TARGET);
    EXPECT_EQ(mdlDialog_itemNeighbour(member, 1), nullptr);
    EXPECT_EQ(mdlDialog_itemNeighbour(find(dialog, ITEM_PUSH_BUTTON, BUTTON), -1), nullptr);
    mdlDialog_itemShow(group, 0);
    EXPECT_EQ(mdlDialog_itemIsShown(member), 0);
    EXPECT_FALSE(host::openDialogs().at(0)->setValue(11, "x"));
    mdlDialog_itemShow(group, 1);
    EXPECT_EQ(mdlDialog_itemIsShown(member), 1);
    mdlDialog_itemShow(member, 0);
    mdlDialog_itemShow(group, 0);
    mdlDialog_itemShow(group, 1);
    EXPECT_EQ(mdlDialog_itemIsShown(member), 0) << "it was hidden by itself";
}

TEST_F(Dialogs, ARunningEditEndsWhenTheFocusMovesOrTheFirstButtonIsPressed) {
    MdlDialog* dialog = open();
    Dialog& state = *host::openDialogs().at(0);
    EXPECT_TRUE(state.type(2, "new"));
    EXPECT_STREQ(settings.name, "abc");
    EXPECT_EQ(mdlDialog_setFocus(dialog, nullptr), MDL_SUCCESS);
    EXPECT_STREQ(settings.name, "new");
    EXPECT_TRUE(state.type(1, "no number"));
    EXPECT_TRUE(state.setValue(2, "next"));
    EXPECT_EQ(settings.length, 1.5) << "what the item can't take is dropped";
    EXPECT_EQ(mdlDialog_setFocus(dialog, find(dialog, ITEM_GROUP_BOX, TARGET)), MDL_ERROR);

    script.type(NAME, "kept").press(-3);
    EXPECT_EQ(runModal(), 3) << script.fault();
    EXPECT_STREQ(settings.name, "kept");
    script.type(NAME, "lost").press(-4);
    EXPECT_EQ(runModal(), 4) << script.fault();
    EXPECT_STREQ(settings.name, "kept");
}

TEST_F(Dialogs, SignalsCarryTwoNumbersToTheHook) {
    std::pair<int32_t, int32_t> got;
    on(GENERIC_HOOK, ITEM_SIGNAL, [&](DialogMessage& m) { got = {m.signal, m.signalValue}; });
    EXPECT_EQ(mdlDialog_itemSignal(find(open(), ITEM_GENERIC, AREA), 1, 12), MDL_SUCCESS);
    EXPECT_EQ(got, std::pair(1, 12));
}

TEST_F(Dialogs, OnlyASizableDialogIsDrawnToAnotherSize) {
    EXPECT_FALSE(asApplication("owner", [&] { return open(), host::openDialogs().at(0)->resize(300, 200); }));
    host::openDialogs().at(0)->close();

    std::string told;
    on(BOX_HOOK, DIALOG_CREATE, [](DialogMessage& m) { m.attributes |= DIALOG_SIZABLE; });
    on(BOX_HOOK, DIALOG_RESIZE, [&](DialogMessage& m) { told += std::to_string(m.resized); });
    DialogRect window;
    MdlDialog* dialog = open();
    EXPECT_TRUE(host::openDialogs().at(0)->resize(300, 200));
    EXPECT_TRUE(host::openDialogs().at(0)->resize(300, 200));
    EXPECT_FALSE(host::openDialogs().at(0)->resize(300, 0));
    EXPECT_EQ(told, "10");
    mdlWindow_contentRectGet(&window, dialog);
    EXPECT_EQ(window.right, 300);
    EXPECT_EQ(window.bottom, 200);
}

// ---- drawing ----

TEST_F(Dialogs, AnItemIsDrawnAnewWhenItMovedAndReplacesItsOldDrawing) {
    on(GENERIC_HOOK, ITEM_DRAW, [](DialogMessage& m) {
        DialogRect rect;
        mdlDialog_itemRect(&rect, m.item);
        mdlDialog_textDrawCD(m.dialog, rect.left, rect.top, "drawn");
    });
    const auto placeOfText = [](Dialog& d) {
        EXPECT_EQ(d.drawing().size(), 1u);
        return std::get<host::DrawnText>(d.drawing().at(0)).rect.left;
    };
    script.check([&](Dialog& d) {
        EXPECT_EQ(placeOfText(d), 10);
        mdlDialog_itemMove(d.itemHandle(6), -33, -40);
    });
    script.check([&](Dialog& d) {
        EXPECT_EQ(placeOfText(d), 33);
        EXPECT_EQ(d.items()[6].rect.bottom, 60);
        mdlDialog_itemShow(d.itemHandle(6), 0);
        EXPECT_TRUE(d.drawing().empty());
    });
    script.close();
    runModal();
}

TEST_F(Dialogs, AnIconThatNoFileHasCannotBeDrawn) {
    EXPECT_EQ(mdlWindow_iconDraw(open(), 0, 20001, 0, 0, 4), MDL_ERROR);
}

// ---- hooks that open and close in the middle ----

TEST_F(Dialogs, AHookMayCloseItsDialogOnAnyMessage) {
    struct Case {
        int32_t hook, type;
    };
    const Case cases[] = {{BOX_HOOK, DIALOG_CREATE}, {TEXT_HOOK, ITEM_CREATE},   {BOX_HOOK, DIALOG_INIT},
                          {GENERIC_HOOK, ITEM_DRAW}, {BUTTON_HOOK, ITEM_BUTTON}, {TEXT_HOOK, ITEM_DESTROY},
                          {BOX_HOOK, DIALOG_DESTROY}};
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.hook) + ":" + std::to_string(c.type));
        actions.clear();
        trace.clear();
        script = {};
        script.press(BUTTON).close();
        on(c.hook, c.type, [](DialogMessage& m) { mdlWindow_close(m.dialog, 0, 1); });
        EXPECT_EQ(runModal(), 4);
        EXPECT_EQ(mdlDialog_find(BOX, nullptr), nullptr);
        size_t destroyed = 0;
        for (size_t at = trace.find("1:2 "); at != std::string::npos; at = trace.find("1:2 ", at + 1)) ++destroyed;
        EXPECT_EQ(destroyed, 1u) << trace;
    }
}

TEST_F(Dialogs, AHookMayReopenItsDialogWhileItCloses) {
    MdlDialog* const first = open();
    MdlDialog* second = nullptr;
    on(BOX_HOOK, DIALOG_DESTROY, [&](DialogMessage& m) {
        actions.clear();
        EXPECT_EQ(mdlDialog_getId(m.dialog), BOX);
        second = mdlDialog_open(0, BOX);
    });
    mdlWindow_close(first, 0, 1);
    ASSERT_NE(second, nullptr);
    EXPECT_NE(second, first);
    EXPECT_EQ(mdlDialog_find(BOX, nullptr), second);
    EXPECT_EQ(mdlDialog_getId(first), 0);
}

TEST_F(Dialogs, ModalDialogsNest) {
    int32_t inner = 0;
    on(BUTTON_HOOK, ITEM_BUTTON, [&](DialogMessage& m) {
        if (mdlDialog_getId(m.dialog) == BOX) mdlDialog_openModal(&inner, 0, OTHER_BOX);
    });
    script.press(BUTTON).press(-3).setValue(ITEM_TEXT, NAME, "after").press(-4);
    EXPECT_EQ(runModal(), 4);
    EXPECT_EQ(inner, 3);
    EXPECT_STREQ(settings.name, "after");
    EXPECT_TRUE(script.finished()) << script.fault();
}

TEST_F(Dialogs, ANestedDialogMayCloseTheOneBelow) {
    on(BUTTON_HOOK, ITEM_BUTTON, [&](DialogMessage& m) {
        if (mdlDialog_getId(m.dialog) == OTHER_BOX) mdlWindow_close(mdlDialog_find(BOX, nullptr), 0, 1);
        if (mdlDialog_getId(m.dialog) == BOX) mdlDialog_openModal(nullptr, 0, OTHER_BOX);
    });
    script.press(BUTTON).press(-3);
    EXPECT_EQ(runModal(), 4);
    EXPECT_TRUE(script.finished()) << script.fault();
}

TEST_F(Dialogs, AQueuedCloseWaitsUntilControlIsBackInTheHost) {
    asApplication("owner", [&] {
        MdlDialog* dialog = mdlDialog_open(0, BOX);
        mdlDialog_closeCommandQueue(dialog);
        EXPECT_EQ(mdlDialog_find(BOX, nullptr), dialog);
    });
    EXPECT_EQ(mdlDialog_find(BOX, nullptr), nullptr);

    MdlDialog* below = open();
    asApplication("owner", [&] { mdlDialog_closeCommandQueue(below); });
    script.press(-3);
    EXPECT_EQ(runModal(OTHER_BOX), 3);
    EXPECT_EQ(mdlDialog_getId(below), 0);
}

TEST_F(Dialogs, AnApplicationThatEndsTakesItsDialogsAndHooksAlong) {
    MdlDialog* dialog = open();
    MdlItem* text = find(dialog, ITEM_TEXT, NAME);
    trace.clear();
    session().endApplication(application("owner"));
    EXPECT_NE(trace.find("1:2 "), std::string::npos);
    EXPECT_EQ(mdlDialog_itemGetValue(text), nullptr);
    EXPECT_EQ(mdlDialog_itemSetValue(text, "x"), MDL_ERROR);
    mdlWindow_titleSet(dialog, "gone");
    mdlDialog_itemMove(text, 1, 1);

    trace.clear();
    asApplication("other", [&] {
        mdlResource_openFile(nullptr, path("dialogs.rsc").c_str(), MDL_RSC_READ);
        mdlDialog_open(0, BOX);
    });
    EXPECT_EQ(trace, "");
}

TEST_F(Dialogs, AnApplicationMayAskForItsEndInsideItsModalDialog) {
    on(BUTTON_HOOK, ITEM_BUTTON, [](DialogMessage&) { mdlSystem_exit(0, 1); });
    script.press(BUTTON).press(-3);
    EXPECT_EQ(runModal(), 3);
    EXPECT_EQ(mdlSystem_findMdlDesc("owner"), nullptr);
}

TEST_F(Dialogs, HooksOfOthersServeWhereTheOwnerHasNone) {
    asApplication("other", [&] {
        mdlResource_openFile(nullptr, path("dialogs.rsc").c_str(), MDL_RSC_READ);
        mdlDialog_open(0, OTHER_BOX);
    });
    EXPECT_EQ(trace, "6:0 2:50 2:69 6:1 ");
    for (MdlDesc* context : contexts) EXPECT_EQ(context, application("other"));
    EXPECT_NE(mdlDialog_findByTypeAndId(MDL_DIALOG_BOX, OTHER_BOX, application("other")), nullptr);
    EXPECT_EQ(mdlDialog_findByTypeAndId(MDL_DIALOG_BOX, OTHER_BOX, application("owner")), nullptr);
    EXPECT_EQ(mdlDialog_findByTypeAndId(7, OTHER_BOX, nullptr), nullptr);
}

TEST_F(Dialogs, ADialogThatIsOpenAlreadyIsGivenAgain) {
    MdlDialog* dialog = open();
    trace.clear();
    EXPECT_EQ(open(), dialog);
    EXPECT_EQ(trace, "");
}

TEST_F(Dialogs, AFrontEndIsToldOfEachChange) {
    MdlDialog* box = open();
    MdlItem* used = find(box, ITEM_TOGGLE, USED);
    MdlItem* device = find(box, ITEM_OPTION_BUTTON, DEVICE);
    MdlItem* rows = find(box, ITEM_LIST_BOX, ROWS);
    EXPECT_THAT(front().seen, ElementsAre("opened 100"));
    const std::pair<const char*, std::function<void()>> changes[] = {
        {"changed 100 4", [&] { mdlDialog_itemSetLabel(used, "Used"); }},
        {"changed 100 4", [&] { mdlDialog_itemMove(used, 1, 2); }},
        {"changed 100 4", [&] { mdlDialog_itemSetExtent(used, 1, 2); }},
        {"changed 100 4", [&] { mdlDialog_itemShow(used, 0); }},
        {"changed 100 4", [&] { mdlDialog_itemEnable(used, 0); }},
        {"changed 100 4", [&] { mdlDialog_itemSynch(used); }},
        {"changed 100 4", [&] { mdlDialog_itemSetValue(used, "0"); }},
        {"changed 100 3", [&] { mdlDialog_optionButtonInsert(device, "Seven", 7); }},
        {"changed 100 3", [&] { mdlDialog_optionButtonEnableRow(device, 0, 0); }},
        {"changed 100 3", [&] { mdlDialog_optionButtonDeleteAll(device); }},
        {"changed 100 5", [&] { mdlDialog_listBoxSetStrListP(rows, nullptr, 2); }},
        {"changed 100 5", [&] { mdlDialog_listBoxSelectRow(rows, -1); }},
        {"changed 100", [&] { mdlWindow_titleSet(box, "Other"); }},
        {"changed 100", [&] { mdlWindow_extentSet(box, 10, 10); }},
        {"changed 100", [&] { mdlDialog_textDrawCD(box, 1, 1, "drawn"); }},
        {"changed 100", [&] { mdlWindow_clear(box); }},
        {"closed 100", [&] { mdlWindow_close(box, 0, 0); }},
    };
    for (const auto& [told, change] : changes) {
        front().clear();
        change();
        EXPECT_THAT(front().seen, ElementsAre(told)) << &change - &changes[0].second;
    }
}

TEST_F(Dialogs, EventsOfOtherDialogsWaitWhileAModalOneIsOpen) {
    open(OTHER_BOX);
    const std::shared_ptr<host::Dialog> other = host::openDialogs()[0];
    using Kind = host::DialogEvent::Kind;
    front().answer = nullptr;
    front().next = [&](const std::shared_ptr<host::Dialog>& box) -> host::Event {
        if (front().dialogs == 1) return host::DialogEvent{.kind = Kind::close, .dialog = other};
        if (front().dialogs == 2)
            return host::DialogEvent{.kind = Kind::setValue, .dialog = box, .item = 4, .value = "x"};
        return host::DialogEvent{.kind = Kind::press, .dialog = box, .item = 7};
    };
    EXPECT_EQ(runModal(), 3);
    EXPECT_FALSE(other->ended());
    EXPECT_EQ(std::ranges::count(front().seen, "refused"), 1) << "a toggle takes no x";
}

}  // namespace
