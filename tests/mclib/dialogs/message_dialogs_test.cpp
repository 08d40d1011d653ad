// Message boxes and the list dialog, with the resources that are shipped.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "mchost/dialog/dialog.h"
#include "mchost/front/scripted.h"
#include "mclib/frame/errors.h"
#include "mclib/frame/main.h"
#include "tests/support/drawn.h"
#include "tests/support/session_fixture.h"

namespace {

using host::Dialog;
using host::DialogItem;
using host::DrawnEdge;
using host::DrawnIcon;
using host::DrawnText;

constexpr int32_t f = 16;  // height of the dialog font
constexpr int32_t fixedFont = 14;

const DialogItem* itemOf(const Dialog& dialog, int32_t kind, int32_t id) {
    const int32_t index = dialog.indexOf(kind, id);
    return index < 0 ? nullptr : &dialog.items()[static_cast<size_t>(index)];
}
const DialogItem& buttonOf(const Dialog& dialog, int32_t id) {
    return *itemOf(dialog, ITEM_PUSH_BUTTON, id);
}

std::vector<std::string> linesOf(const Dialog& dialog) {
    std::vector<std::string> lines;
    for (const DrawnText& call : drawnIn<DrawnText>(dialog)) lines.push_back(call.text);
    return lines;
}

class MessageDialogs : public SessionTest {
  protected:
    explicit MessageDialogs(const char* language = "en")
        : SessionTest({{"MS_APPRSC", BUILD_DIR "/lib/mclib.rsc"}, {"MC_DIR", "c:\\mc\\"}, {"MS_LANGUAGE", language}}) {
        front().answer = std::ref(script);
        asApplication("alignment", [] {
            char name[] = "alignment", list[] = "USER";
            char* argv[] = {name, list};
            mclibMain_initMcLib("alignment", 2, argv);
        });
    }

    // Shows a box, looks at it and presses the first button.
    void show(int flags, const char* text, std::function<void(Dialog&)> look) {
        script.check(std::move(look)).press(-3);
        asApplication("alignment", [&] { EXPECT_EQ(mclibError_msgBoxPrintf(flags, "%s", text), MSGBOX_FIRST); });
        EXPECT_EQ(script.fault(), "");
    }
    int list(int mode, const char* text) {
        return asApplication("alignment", [&] { return mclibError_listPrintf(mode, "%s", text); });
    }

    host::DialogScript script;
};

TEST_F(MessageDialogs, AShortTextLeavesTheLeastWidthAndALongLineWidensTheBox) {
    show(17, "ab", [](Dialog& d) { EXPECT_EQ(d.width(), 8 * f + 45); });
    const std::string line(60, 'W');
    const int32_t width = mdlDialog_stringWidth(line.c_str(), 2);
    show(17, ("ab\n" + line).c_str(), [=](Dialog& d) { EXPECT_EQ(d.width(), width + 95); });
}

TEST_F(MessageDialogs, TheHeightFollowsTheLinesOnceTheyPassTheIcon) {
    show(17, "a", [](Dialog& d) { EXPECT_EQ(d.height(), 50 + 3 * (f + 15)); });
    show(17, "a\nb\nc", [](Dialog& d) { EXPECT_EQ(d.height(), 50 + 3 * (f + 15)); });
    show(17, "a\nb\nc\nd\ne", [](Dialog& d) { EXPECT_EQ(d.height(), 5 * f + 3 * (f + 15)); });
}

TEST_F(MessageDialogs, OneButtonStandsInTheMiddleAndTheSecondIsHidden) {
    show(17, "a", [](Dialog& d) {
        const DialogRect& rect = buttonOf(d, -3).rect;
        EXPECT_EQ(rect.left, (d.width() - 4 * f) / 2);
        EXPECT_EQ(rect.right - rect.left, 4 * f);
        EXPECT_EQ(rect.top, d.height() - 2 * f - 15);
        EXPECT_EQ(rect.bottom, d.height() - 15);
        EXPECT_FALSE(buttonOf(d, -4).shown);
        EXPECT_FALSE(d.press(static_cast<size_t>(d.indexOf(ITEM_PUSH_BUTTON, -4))));
    });
}

TEST_F(MessageDialogs, TwoButtonsLeaveThreeEqualGaps) {
    show(152, "Shall all pages of this project be deleted, with what they hold?", [](Dialog& d) {
        const DialogRect &first = buttonOf(d, -3).rect, &second = buttonOf(d, -4).rect;
        EXPECT_EQ(first.left, second.left - first.right - (d.width() - 8 * f) % 3);
        EXPECT_EQ(first.left, d.width() - second.right);
        EXPECT_EQ(first.top, second.top);
        EXPECT_TRUE(buttonOf(d, -4).shown);
    });
}

TEST_F(MessageDialogs, FlagsChooseLabelsTitleAndIcon) {
    struct Case {
        int flags;
        const char *first, *second;  // null: hidden
        const char *sign, *title;
        int32_t color;
    };
    const Case cases[] = {
        {0, "OK", nullptr, "i", "alignment", 4},
        {7, "OK", nullptr, "i", "alignment", 4},
        {66, "Continue", nullptr, "!", "alignment: warning", 4},
        {68, "Continue", nullptr, "*", "alignment: note", 1},
        {145, "OK", "Cancel", "i", "alignment", 4},
        {152, "OK", "Cancel", "?", "alignment: question", 1},
        {0x3F0 | 12, "OK", "Cancel", "*", "alignment: note", 1},
        {296, "Yes", "No", "?", "alignment: question", 1},
        {577, "Continue", "End", "i", "alignment", 4},
        {128 + 512 + 17, "OK", "Cancel", "i", "alignment", 4},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.flags);
        show(c.flags, "text", [&](Dialog& d) {
            EXPECT_EQ(buttonOf(d, -3).label, c.first);
            EXPECT_EQ(buttonOf(d, -4).shown, c.second != nullptr);
            if (c.second) {
                EXPECT_EQ(buttonOf(d, -4).label, c.second);
            }
            const auto icons = drawnIn<DrawnIcon>(d);
            ASSERT_EQ(icons.size(), 1u);
            EXPECT_EQ(icons[0].icon->sign, c.sign);
            EXPECT_EQ(icons[0].color, c.color);
            EXPECT_EQ(d.title(), c.title);
        });
    }
}

TEST_F(MessageDialogs, LinesStandBesideTheIconOneFontHeightApart) {
    show(17, "\na\n\nb\n", [](Dialog& d) {
        const DialogRect& text = itemOf(d, ITEM_GENERIC, 20004)->rect;
        EXPECT_EQ(text.left, 15);
        EXPECT_EQ(text.right, d.width() - 15);
        EXPECT_EQ(text.bottom, buttonOf(d, -3).rect.top - 15);
        const auto lines = drawnIn<DrawnText>(d);
        ASSERT_EQ(lines.size(), 2u);
        EXPECT_EQ(lines[0].rect.left, text.left + 65);
        EXPECT_EQ(lines[0].rect.top, text.top);
        EXPECT_EQ(lines[1].rect.top, text.top + f);
        EXPECT_EQ(lines[1].text, "b");
        EXPECT_EQ(drawnIn<DrawnIcon>(d)[0].rect.top, (text.top + text.bottom) / 2 - 25);
        EXPECT_FALSE(itemOf(d, ITEM_GENERIC, 20004)->takesFocus);
    });
}

TEST_F(MessageDialogs, ABoxOverAnotherOneGivesBothTheirReplies) {
    int inner = 0;
    script.check([&](Dialog&) { inner = mclibError_msgBoxPrintf(296, "inner"); });
    script.press(-4).check([](Dialog& d) { d.draw(0); }).press(-3);
    asApplication("alignment", [&] { EXPECT_EQ(mclibError_msgBoxPrintf(17, "outer"), MSGBOX_FIRST); });
    EXPECT_EQ(inner, MSGBOX_SECOND);
    EXPECT_TRUE(script.finished());
}

TEST_F(MessageDialogs, TheListShowsWhatWasCollectedUnderItsHead) {
    list(LIST_COLLECT, "one.mcd: not found\ntwo.mcd: locked");
    list(LIST_COLLECT, "");
    script.check([](Dialog& d) {
        const DialogItem& lines = *itemOf(d, ITEM_LIST_BOX, 20000);
        ASSERT_EQ(Dialog::rowCount(lines), 2);
        EXPECT_EQ(Dialog::cellText(lines, 1, 0), "two.mcd: locked");
        EXPECT_EQ(linesOf(d), (std::vector<std::string>{"2 of 5 files failed"}));
        EXPECT_EQ(drawnIn<DrawnText>(d)[0].font, 2);
        EXPECT_EQ(d.font(), 4);
    });
    script.press(-3);
    EXPECT_EQ(list(LIST_SHOW, "2 of 5 files failed"), MSGBOX_FIRST);

    script.check([](Dialog& d) { EXPECT_EQ(Dialog::rowCount(*itemOf(d, ITEM_LIST_BOX, 20000)), 0); }).press(-3);
    EXPECT_EQ(list(LIST_SHOW, "again"), MSGBOX_FIRST) << "the collection goes with the dialog";
}

TEST_F(MessageDialogs, TheListDialogGrowsWithItsHeadAndItsPartsStandApart) {
    for (const auto& [head, lines] : {std::pair("a", 1), std::pair("a\nb\nc\nd\ne\nf", 6)}) {
        SCOPED_TRACE(head);
        const int32_t headHeight = std::max(f * lines, 50), listHeight = 8 * fixedFont + 6;
        script.check([=](Dialog& d) {
            EXPECT_EQ(d.height(), listHeight + headHeight + 2 * f + 66);
            const DialogRect& frame = itemOf(d, ITEM_GENERIC, 20003)->rect;
            const DialogRect& rows = itemOf(d, ITEM_LIST_BOX, 20000)->rect;
            EXPECT_EQ(rows.bottom - rows.top, listHeight);
            EXPECT_EQ(frame.bottom - frame.top, headHeight + 30);
            EXPECT_GT(frame.top, 0);
            EXPECT_GT(rows.top, frame.bottom);
            EXPECT_GT(buttonOf(d, -3).rect.top, rows.bottom);
            EXPECT_EQ(drawnIn<DrawnEdge>(d)[0].rect.top, frame.top);
            EXPECT_EQ(drawnIn<DrawnText>(d)[0].rect.top, frame.top + 15);
            const int32_t middle = (frame.top + frame.bottom) / 2;
            EXPECT_EQ(drawnIn<DrawnIcon>(d)[0].rect.top, middle - 24);
        });
        script.press(-3);
        EXPECT_EQ(list(LIST_SHOW, head), MSGBOX_FIRST);
    }
}

TEST_F(MessageDialogs, TheListIsSavedWhereTheUserWants) {
    list(LIST_COLLECT, "one.mcd: not found\ntwo.mcd: locked");
    script.press(20004).press(20004).press(-3);
    front().files.cancel().answer(path("saved"));
    EXPECT_EQ(list(LIST_SHOW, "2 of 5 files failed"), MSGBOX_FIRST);
    EXPECT_EQ(script.fault(), "");
    ASSERT_EQ(front().files.questions.size(), 2u);
    EXPECT_EQ(front().files.questions[0].filter, "*.txt");
    EXPECT_EQ(front().files.questions[0].title, "Save the list as");
    EXPECT_EQ(readFile("saved.txt"), "one.mcd: not found\ntwo.mcd: locked\n");

    script.press(20004).press(-3);
    front().files.answer(path("empty.txt"));
    EXPECT_EQ(list(LIST_SHOW, "nothing was collected"), MSGBOX_FIRST);
    EXPECT_EQ(readFile("empty.txt"), "");
    EXPECT_TRUE(std::filesystem::exists(path("empty.txt")));
}

class NorwegianMessageDialogs : public MessageDialogs {
  protected:
    NorwegianMessageDialogs() : MessageDialogs("no") {}
};

TEST_F(NorwegianMessageDialogs, LabelsComeInNorwegian) {
    show(296, "Vil du bruke \xe6\xf8\xe5?", [](Dialog& d) {
        EXPECT_EQ(buttonOf(d, -3).label, "Ja");
        EXPECT_EQ(buttonOf(d, -4).label, "Nei");
        EXPECT_EQ(linesOf(d), (std::vector<std::string>{"Vil du bruke \xe6\xf8\xe5?"}));
    });
}

TEST_F(MessageDialogs, NobodyThereDeclines) {
    asApplication("alignment", [] { EXPECT_EQ(mclibError_msgBoxPrintf(296, "Go on?"), MSGBOX_SECOND); });
    list(LIST_COLLECT, "a line");
    EXPECT_EQ(list(LIST_SHOW, "head"), MSGBOX_SECOND);
}

}  // namespace
