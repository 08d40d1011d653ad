#include "mclib/dialogs/hooks.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "mchost/mdl/dialog.h"
#include "mchost/mdl/files.h"
#include "mchost/mdl/lists.h"
#include "mchost/mdl/system.h"
#include "mclib/frame/errors.h"
#include "mclib/frame/messages.h"
#include "mclib/frame/named_messages.hpp"
#include "mclib/frame/resource_files.h"
#include "mclib/frame/room.h"
#include "resources/ids.h"

namespace mc::dialogs {

namespace {

using mdl::itemOf;

constexpr int32_t savedListRecord = -20002;  // remembered files of the file dialog

// Pixels.
constexpr int32_t margin = 15;
constexpr int32_t leastTextHeight = 50;  // the icon's
constexpr int32_t textLeft = 65;         // from the edge of the head to its lines, past the icon
constexpr int32_t widthAroundText = 95;  // textLeft and a margin on both sides
constexpr int32_t listGap = 7;           // between the parts of the list dialog

struct KindOfBox {
    int32_t kind, icon, color;
};
// clang-format off
constexpr auto kinds = std::to_array<KindOfBox>({
    // kind        icon                  fixed colour
    { MSGBOX_KIND_1, ids::icons::notice,   4 },
    { MSGBOX_KIND_2, ids::icons::warning,  4 },
    { MSGBOX_KIND_4, ids::icons::note,     1 },
    { MSGBOX_KIND_8, ids::icons::question, 1 },
});
// clang-format on

void place(MdlItem* item, const DialogRect& rect) {
    mdlDialog_itemMove(item, rect.left, rect.top);
    mdlDialog_itemSetExtent(item, rect.right - rect.left, rect.bottom - rect.top);
}

// Puts one button in the middle of a row at the window's lower edge, or two with three equal gaps. On the offset scale
// of mdlDialog_itemMove places below 0 count from the window's upper left corner too.
void placeButtons(MdlDialog* dialog, MdlItem* first, MdlItem* second) {
    DialogRect window;
    mdlWindow_contentRectGet(&window, dialog);
    const int32_t f = mdlDialog_fontHeight(MDL_FONT_DIALOG);
    const int32_t top = 2 * f - window.bottom + margin;
    const int32_t gap = second ? (window.right - 8 * f) / 3 : (window.right - 4 * f) / 2;
    mdlDialog_itemMove(first, -gap, top);
    mdlDialog_itemSetExtent(first, 4 * f, 2 * f);
    if (!second) return;
    mdlDialog_itemMove(second, gap + 4 * f - window.right, top);
    mdlDialog_itemSetExtent(second, 4 * f, 2 * f);
}

// ---- the head: icon and lines ----

int32_t heightOfLines(int32_t fontHeight) {
    return std::max(fontHeight * messageState->messageLineCount, leastTextHeight);
}

// Draws the box's icon, its top `aboveMiddle` over the middle of the rectangle, and the lines beside it. Without its
// icon a box stays empty.
void drawHead(MdlDialog* dialog, const DialogRect& rect, int32_t kind, int32_t aboveMiddle) {
    const auto row = std::ranges::find(kinds, kind, &KindOfBox::kind);
    if (row == kinds.end()) return;
    if (const char* title = messageTitle(kind)) mdlWindow_titleSet(dialog, title);
    const int32_t iconTop = (rect.top + rect.bottom) / 2 - aboveMiddle;
    if (mdlWindow_iconDraw(dialog, 0, row->icon, rect.left, iconTop, row->color) != MDL_SUCCESS) return;
    const int32_t f = mdlDialog_fontHeight(mdlDialog_getFontIndex(dialog));
    for (int32_t i = 0; i < messageState->messageLineCount; ++i)
        mdlDialog_textDrawCD(dialog, rect.left + textLeft, rect.top + i * f, messageState->messageLines[i]);
}

// ---- message box ----

struct ButtonLabel {
    int32_t flag;
    Text text;
};
constexpr auto buttonLabels = std::to_array<ButtonLabel>({
    {MSGBOX_FIRST_16, ids::texts::ok},
    {MSGBOX_FIRST_32, ids::texts::yes},
    {MSGBOX_FIRST_64, ids::texts::goOn},
    {MSGBOX_SECOND_128, ids::texts::cancel},
    {MSGBOX_SECOND_256, ids::texts::no},
    {MSGBOX_SECOND_512, ids::texts::end},
});

// The label that a button's flag asks for.
void setLabel(MdlItem* item, int32_t flag) {
    const auto row = std::ranges::find(buttonLabels, flag, &ButtonLabel::flag);
    if (row != buttonLabels.end()) mdlDialog_itemSetLabel(item, languageText(row->text));
}

void layOutBox(MdlDialog* dialog) {
    const int32_t f = mdlDialog_fontHeight(mdlDialog_getFontIndex(dialog));
    int32_t textWidth = 8 * f - 50;
    for (int32_t i = 0; i < messageState->messageLineCount; ++i)
        textWidth = std::max(textWidth, mdlDialog_stringWidth(messageState->messageLines[i], MDL_FONT_DIALOG));
    const int32_t width = textWidth + widthAroundText;
    const int32_t height = heightOfLines(f) + 3 * (f + margin);
    mdlWindow_extentSet(dialog, width, height);

    const bool two = messageState->msgBoxSecondButton != MSGBOX_NO_SECOND;
    MdlItem* const first = itemOf(dialog, ids::messageBox::first);
    MdlItem* const second = itemOf(dialog, ids::messageBox::second);
    placeButtons(dialog, first, two ? second : nullptr);
    place(itemOf(dialog, ids::messageBox::text), {margin, margin, width - margin, height - 2 * f - 2 * margin});
    setLabel(first, messageState->msgBoxFirstButton);
    mdlDialog_itemShow(second, two);
    if (two) setLabel(second, messageState->msgBoxSecondButton);
}

void messageBox(DialogMessage* message) {
    message->handled = message->type == DIALOG_INIT;
    if (message->handled) layOutBox(message->dialog);
}

void messageBoxText(DialogMessage* message) {
    message->handled = 1;
    switch (message->type) {
        case ITEM_CREATE: message->itemFlags &= ~(ITEM_TAKES_FOCUS | ITEM_IS_DEFAULT); break;
        case ITEM_DRAW: {
            DialogRect rect;
            mdlDialog_itemRect(&rect, message->item);
            drawHead(message->dialog, rect, messageState->msgBoxKind, 25);
            break;
        }
        default: message->handled = 0;
    }
}

// ---- list dialog ----

// From above: the head in its frame, the list box, the row of buttons.
void layOutList(MdlDialog* dialog) {
    DialogRect window;
    mdlWindow_contentRectGet(&window, dialog);
    const int32_t f2 = mdlDialog_fontHeight(MDL_FONT_DIALOG), f4 = mdlDialog_fontHeight(MDL_FONT_FIXED);
    const int32_t listHeight = 8 * f4 + 6;
    const int32_t height = listHeight + heightOfLines(f2) + 2 * f2 + 66;
    mdlWindow_extentSet(dialog, window.right, height);

    MdlItem* const save = itemOf(dialog, ids::messageList::save);
    placeButtons(dialog, itemOf(dialog, ids::messageList::first), save);
    const int32_t listTop = height - 2 * f2 - margin - listGap - listHeight;
    const int32_t right = window.right - listGap;
    place(itemOf(dialog, ids::messageList::lines), {listGap, listTop, right, listTop + listHeight});
    place(itemOf(dialog, ids::messageList::head), {listGap, listGap, right, listTop - listGap});
}

void listDialog(DialogMessage* message) {
    message->handled = 1;
    switch (message->type) {
        case DIALOG_CREATE: mdlDialog_itemDraw(itemOf(message->dialog, ids::messageList::lines)); break;
        case DIALOG_INIT:
            mdlDialog_setFontIndex(message->dialog, MDL_FONT_FIXED);
            layOutList(message->dialog);
            break;
        case DIALOG_DESTROY: dropMessageList(); break;
        default: message->handled = 0;
    }
}

void collectedLines(DialogMessage* message) {
    message->handled = message->type == ITEM_CREATE;
    if (message->handled) mdlDialog_listBoxSetStrListP(message->item, ensureMessageList(), 1);
}

void drawListHead(MdlDialog* dialog, MdlItem* item) {
    DialogRect rect;
    mdlDialog_itemRect(&rect, item);
    mdlDialog_rectDrawEdge(dialog, &rect, 1);
    mdlDialog_rectInset(&rect, margin, margin);
    mdlDialog_setFontIndex(dialog, MDL_FONT_DIALOG);
    drawHead(dialog, rect, MSGBOX_KIND_1, 24);
    mdlDialog_setFontIndex(dialog, MDL_FONT_FIXED);
}

void listHead(DialogMessage* message) {
    message->handled = 1;
    switch (message->type) {
        case ITEM_CREATE: message->itemFlags &= ~(ITEM_TAKES_FOCUS | ITEM_IS_DEFAULT); break;
        case ITEM_DRAW: drawListHead(message->dialog, message->item); break;
        default: message->handled = 0;
    }
}

// A message box would take the place of the head that is shown, so a full disk gets a line.
void tellUnfinished(const char* fileName) {
    char line[400];
    std::snprintf(line, sizeof line, "%s: the list couldn't be written whole; make room on the disk and save it again",
                  fileName);
    mdlOutput_messageCenter(MDL_PRIORITY_ERROR, line, "", 0);
}

void writeLines(const char* fileName, const StringList* lines) {
    std::FILE* file = dlmSystem_mdlFopen(fileName, "w");
    if (!file) return;
    bool good = true;
    for (int32_t i = 0, count = mdlStringList_size(lines); i < count; ++i) {
        const char* line = nullptr;
        if (mdlStringList_getMember(&line, nullptr, lines, i) == MDL_SUCCESS)
            good = std::fprintf(file, "%s\n", line) >= 0 && good;
    }
    if (dlmSystem_mdlFclose(file) != 0 || !good) tellUnfinished(fileName);
}

void saveList(DialogMessage* message) {
    message->handled = message->type == ITEM_BUTTON && message->state == 1;
    if (!message->handled || !messageState->messageList) return;
    char fileName[256];
    if (mclibUpf_defFileCreate(fileName, nullptr, "*.txt", nullptr, languageText(ids::texts::saveList),
                               savedListRecord) == 0)
        writeLines(fileName, messageState->messageList);
}

}  // namespace

const DialogHook messageDialogHooks[] = {
    {ids::hooks::messageList, listDialog},
    {ids::hooks::collectedLines, collectedLines},
    {ids::hooks::listHead, listHead},
    {ids::hooks::saveList, saveList},
    {ids::hooks::boxText, messageBoxText},
    {ids::hooks::messageBox, messageBox},
    endOfHooks,
};

}  // namespace mc::dialogs
