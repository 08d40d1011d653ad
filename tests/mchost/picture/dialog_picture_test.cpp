// Dialogs as pictures: what a person could see makes a difference in them, and nothing else does.
#include <gtest/gtest.h>

#include <string>

#include "mchost/mdl/dialog.h"
#include "mchost/mdl/lists.h"
#include "mchost/mdl/resource.h"
#include "mchost/resource/container.h"
#include "tests/support/session_fixture.h"

namespace {

enum { FRAME = 1, NAME = 2, USED = 3, DEVICE = 4, PRINTERS = 5, ROWS = 6 };

host::ItemLayout item(int32_t kind, int32_t id, int32_t y, const char* label) {
    host::ItemLayout layout{kind, id, 90, y, 100, 20, 0, "", "", {}, {}};
    layout.label.set("en", label);
    return layout;
}

class DialogPicture : public SessionTest {
  protected:
    DialogPicture() {
        host::ResourceContents contents;
        host::DialogLayout& box = contents.dialogs[1] = {1, 240, 200, 0, {}, {}};
        box.title.set("en", "Set-up");
        box.items = {item(ITEM_GROUP_BOX, FRAME, 2, "Frame"),       item(ITEM_TEXT, NAME, 20, "Name"),
                     item(ITEM_TOGGLE, USED, 45, "Used"),           item(ITEM_OPTION_BUTTON, DEVICE, 70, "Device"),
                     item(ITEM_COMBO_BOX, PRINTERS, 95, "Printer"), item(ITEM_LIST_BOX, ROWS, 140, "Rows"),
                     item(ITEM_PUSH_BUTTON, -3, 170, "OK")};
        box.items[1].group = FRAME;
        host::writeContainer(path("box.rsc"), contents);
        mdlResource_openFile(nullptr, path("box.rsc").c_str(), MDL_RSC_READ);
        dialog = mdlDialog_open(0, 1);
        mdlStringList_setMember(list, 0, "hall", nullptr);
        mdlStringList_setMember(list, 1, "office", nullptr);
        mdlDialog_comboBoxSetStrListP(find(ITEM_COMBO_BOX, PRINTERS), list, 1);
        mdlDialog_listBoxSetStrListP(find(ITEM_LIST_BOX, ROWS), list, 2);
        mdlDialog_optionButtonInsert(find(ITEM_OPTION_BUTTON, DEVICE), "Plotter", 6);
    }
    ~DialogPicture() override {
        endSession();
        mdlStringList_destroy(list);
    }

    MdlItem* find(int32_t kind, int32_t id) const { return mdlDialog_itemGetByTypeAndId(dialog, kind, id); }
    std::string picture() const {
        EXPECT_EQ(mdlWindow_savePicture(dialog, path("box.png").c_str()), MDL_SUCCESS);
        return readFile("box.png");
    }

    StringList* list = mdlStringList_create(2, 0);
    MdlDialog* dialog = nullptr;
};

TEST_F(DialogPicture, HasTwoDotsForAPixelAndItsTitleAbove) {
    const std::string png = picture();
    const auto number = [&](size_t at) {
        return static_cast<uint8_t>(png.at(at + 2)) * 256 + static_cast<uint8_t>(png.at(at + 3));
    };
    EXPECT_EQ(png.substr(1, 3), "PNG");
    EXPECT_EQ(number(16), 480);
    EXPECT_GT(number(20), 400);
    EXPECT_LT(number(20), 500);
}

TEST_F(DialogPicture, EachChangeThatCanBeSeenShows) {
    const std::function<void()> changes[] = {
        [&] { mdlDialog_itemSetValue(find(ITEM_TEXT, NAME), "E18"); },
        [&] { mdlDialog_itemSetValue(find(ITEM_TOGGLE, USED), "1"); },
        [&] { mdlDialog_itemEnable(find(ITEM_OPTION_BUTTON, DEVICE), 0); },
        [&] { mdlDialog_comboBoxSelectRow(find(ITEM_COMBO_BOX, PRINTERS), 1); },
        [&] { mdlDialog_listBoxSelectRow(find(ITEM_LIST_BOX, ROWS), 0); },
        [&] { mdlDialog_itemSetLabel(find(ITEM_PUSH_BUTTON, -3), "Print"); },
        [&] { mdlWindow_titleSet(dialog, "Other"); },
        [&] { mdlDialog_textDrawCD(dialog, 10, 10, "drawn"); },
        [&] { mdlDialog_itemMove(find(ITEM_TOGGLE, USED), 10, 45); },
        [&] { mdlDialog_itemShow(find(ITEM_GROUP_BOX, FRAME), 0); },
    };
    std::string before = picture();
    for (size_t i = 0; i < std::size(changes); ++i) {
        changes[i]();
        std::string after = picture();
        EXPECT_NE(after, before) << "change " << i;
        before = std::move(after);
    }
    mdlDialog_itemSetValue(find(ITEM_TEXT, NAME), "hidden with its frame");
    EXPECT_EQ(picture(), before);
}

TEST_F(DialogPicture, OnlyAPngFileInAFolderThatIsThereIsMade) {
    EXPECT_EQ(mdlWindow_savePicture(dialog, path("box.svg").c_str()), MDL_ERROR);
    EXPECT_EQ(mdlWindow_savePicture(dialog, path("none/box.png").c_str()), MDL_ERROR);
    EXPECT_EQ(mdlWindow_savePicture(nullptr, path("box.png").c_str()), MDL_ERROR);
}

}  // namespace
