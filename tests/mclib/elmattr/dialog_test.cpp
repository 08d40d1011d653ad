// What shows attributes: the list box of the attribute dialog, and option buttons of applications.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "mchost/mdl/dialog.h"
#include "mchost/mdl/lists.h"
#include "mchost/mdl/resource.h"
#include "mchost/resource/container.h"
#include "mclib/elmattr/table.h"
#include "mclib/frame/global_data.h"
#include "tests/support/library_fixture.h"

using namespace mc;

namespace {

using testing::ElementsAre;

constexpr int attributeDialog = 20013, listBox = 20001, optionButton = 7;
constexpr int shownGroup = 1, otherGroup = 2;

host::ResourceContents layouts() {
    host::ResourceContents contents;
    host::DialogLayout& dialog = contents.dialogs[attributeDialog];
    dialog = {attributeDialog, 300, 200, 0, {}, {}};
    dialog.items = {
        {ITEM_LIST_BOX, listBox, 10, 10, 200, 100, 0, "", "", {}, {}},
        {ITEM_OPTION_BUTTON, optionButton, 10, 120, 200, 20, 0, "", "", {}, {}},
    };
    return contents;
}

class AttributeDialog : public LibraryTest {
  protected:
    AttributeDialog() {
        host::writeContainer(path("dialogs.rsc"), layouts());
        mdlResource_openFile(nullptr, path("dialogs.rsc").c_str(), MDL_RSC_READ);
        mclibElmAttr_setGroupeNames(2, "Shown", shownGroup, 0, "Other", otherGroup, 0);
        gd().activeRecord->group = shownGroup;
    }
    GlobalData& gd() { return *mclibMain_getGlobalDataP(); }
    MdlItem* item(int type, int id) {
        return mdlDialog_itemGetByTypeAndId(mdlDialog_find(attributeDialog, nullptr), type, id);
    }
    static void add(int id, int group, const char* label, int refresh) {
        const ElmAttrData data{};
        mclibElmAttr_addAttribute(id, label, group, ATTR_KIND_SYMBOLOGY, 0, nullptr, refresh, &data);
    }
    std::vector<std::string> labels() {
        std::vector<std::string> found;
        const StringList* list = mdlDialog_listBoxGetStrListP(item(ITEM_LIST_BOX, listBox));
        for (int i = 0; i < mdlStringList_size(list); i += attributeRowCells) {
            const char* text = nullptr;
            mdlStringList_getMember(&text, nullptr, list, i);
            found.emplace_back(text);
        }
        return found;
    }
    int selectedRow() { return mdlDialog_listBoxGetSelectedRow(item(ITEM_LIST_BOX, listBox)); }
};

TEST_F(AttributeDialog, TheListFollowsTheTableWhereACallAsksForIt) {
    ASSERT_NE(mdlDialog_open(0, attributeDialog), nullptr);
    add(1, shownGroup, "one", 1);
    add(20, otherGroup, "hidden", 1);
    add(2, shownGroup, "two", 0);
    EXPECT_THAT(labels(), ElementsAre("one"));
    add(3, shownGroup, "three", 1);
    EXPECT_THAT(labels(), ElementsAre("one", "two", "three"));
    EXPECT_EQ(selectedRow(), 2);

    const ElmAttrData data{};
    mclibElmAttr_insertAttribute(2, "before two", 0, &data);
    EXPECT_THAT(labels(), ElementsAre("one", "before two", "two", "three"));
    EXPECT_EQ(selectedRow(), 1);
    EXPECT_EQ(gd().nextAttributeId, 22);
    elmattr::moveDown(gd(), 1);
    EXPECT_THAT(labels(), ElementsAre("one", "before two", "two", "three")) << "its neighbour is of the other group";
    elmattr::moveUp(gd(), 3);
    EXPECT_THAT(labels(), ElementsAre("one", "before two", "three", "two"));
    EXPECT_EQ(selectedRow(), 2);
    mclibElmAttr_deleteAttribute(3, 1);
    EXPECT_EQ(selectedRow(), 1);
    StringList* list = mdlDialog_listBoxGetStrListP(item(ITEM_LIST_BOX, listBox));
    mdlWindow_close(mdlDialog_find(attributeDialog, nullptr), 0, 1);
    mdlStringList_destroy(list);    // it was never the dialog's
    add(4, shownGroup, "four", 1);  // nothing is open: nothing happens
}

TEST_F(AttributeDialog, TheDialogOfAnotherApplicationStaysAsItIs) {
    asApplication("other", [] { return mdlDialog_open(0, attributeDialog); });
    add(1, shownGroup, "mine", 1);
    EXPECT_EQ(mdlDialog_listBoxGetStrListP(item(ITEM_LIST_BOX, listBox)), nullptr);
}

TEST_F(AttributeDialog, AnOptionButtonOffersTheAttributesOfAGroup) {
    MdlDialog* dialog = mdlDialog_open(0, attributeDialog);
    MdlItem* button = item(ITEM_OPTION_BUTTON, optionButton);
    int selected = 99;
    mclibElmAttr_insertOptionButton(dialog, button, shownGroup, &selected);
    EXPECT_EQ(selected, 99) << "no attribute in the group";
    add(5, shownGroup, "five", 0);
    add(20, otherGroup, "other", 0);
    add(6, shownGroup, "six", 0);
    selected = 6;
    mclibElmAttr_insertOptionButton(dialog, button, shownGroup, &selected);
    mclibElmAttr_insertOptionButton(dialog, button, shownGroup, &selected);
    EXPECT_EQ(selected, 6);
    EXPECT_EQ(mdlDialog_optionButtonCount(button), 2);
    const char* label = nullptr;
    int32_t value = 0;
    mdlDialog_optionButtonGet(button, 1, &label, &value);
    EXPECT_STREQ(label, "six");
    EXPECT_EQ(value, 6);
    selected = 20;
    mclibElmAttr_insertOptionButton(dialog, button, shownGroup, &selected);
    EXPECT_EQ(selected, 5);
}

}  // namespace
