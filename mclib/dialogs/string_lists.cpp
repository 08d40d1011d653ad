// Choosing members of a list that the application makes.
#include <algorithm>
#include <cstring>

#include "mchost/mdl/dialog_items.h"
#include "mchost/mdl/lists.h"
#include "mchost/mdl/system.h"
#include "mclib/dialogs/dialogs.h"
#include "mclib/dialogs/selection.h"
#include "mclib/frame/main.h"
#include "mclib/frame/named_messages.hpp"
#include "resources/ids.h"

namespace mc::dialogs {

namespace {

// Moves what lies below the list box down by as much as this has grown, with the window's lower edge.
void makeRoomBelow(MdlDialog* dialog, const MdlItem* listBox, int32_t bottomBefore) {
    DialogRect rect, window;
    mdlDialog_itemRect(&rect, listBox);
    const int32_t grown = rect.bottom - bottomBefore;
    for (int32_t i = 0; i < mdlDialog_itemCount(dialog); ++i) {
        MdlItem* const item = mdlDialog_itemGetByIndex(dialog, i);
        mdlDialog_itemRect(&rect, item);
        if (rect.top >= bottomBefore) mdlDialog_itemMove(item, rect.left, rect.top + grown);
    }
    mdlWindow_contentRectGet(&window, dialog);
    mdlWindow_extentSet(dialog, window.right, window.bottom + grown);
}

constexpr int32_t unitsOfARow = 6;

void setRows(MdlDialog* dialog, MdlItem* listBox, int32_t rows) {
    DialogRect before;
    mdlDialog_itemRect(&before, listBox);
    mdlDialog_itemSetHeight(listBox, std::min(rows, 1000) * unitsOfARow);
    makeRoomBelow(dialog, listBox, before.bottom);
}

void showList(const GlobalData& data, const DialogMessage& message) {
    if (data.dialogLabel) mdlDialog_itemSetLabel(message.item, data.dialogLabel);
    mdlDialog_listBoxSetStrListP(message.item, data.selectList, 0);
    mdlDialog_listBoxSelectRow(message.item, mdlStringList_size(data.selectList) > 0 ? 0 : -1);
    showTitle(data, message.dialog);
}

void oneOfList(DialogMessage* message) {
    GlobalData* data = mclibMain_getGlobalDataP();
    message->handled = data != nullptr;
    if (!data) return;
    switch (message->type) {
        case ITEM_CREATE:
            if (data->listBoxRows > 0) setRows(message->dialog, message->item, data->listBoxRows);
            if (data->listBoxColumns > 0) mdlDialog_listBoxSetInfo(message->item, data->listBoxColumns, -1);
            showList(*data, *message);
            data->selectedRow = mdlDialog_listBoxGetSelectedRow(message->item);
            break;
        case ITEM_BUTTON:
        case ITEM_STATE_CHANGED:
            data->selectedRow = mdlDialog_listBoxGetSelectedRow(message->item);
            if (message->type == ITEM_BUTTON && message->clickCount == 2)
                mdlDialog_itemPress(mdl::itemOf(message->dialog, ids::selectOne::first));
            break;
        default: message->handled = 0;
    }
}

void severalOfList(DialogMessage* message) {
    GlobalData* data = mclibMain_getGlobalDataP();
    message->handled = data && (message->type == ITEM_CREATE || message->type == ITEM_DESTROY);
    if (!message->handled) return;
    if (message->type == ITEM_DESTROY) return takeSelection(*data, message->item);
    mdlDialog_listBoxSetInfo(message->item, 0, 1);
    showList(*data, *message);
}

// As much of the text as the buffer holds.
void copyResult(char* result, int size, const char* text) {
    if (!result || size < 1) return;
    const size_t length = std::min(std::strlen(text), static_cast<size_t>(size) - 1);
    std::memcpy(result, text, length);
    result[length] = '\0';
}

bool takeOver(StringList* to, int32_t member, const StringList* from, int32_t row, int32_t infoFields) {
    if (mdlStringList_setMember(to, member, memberOf(from, row), nullptr) != MDL_SUCCESS) return false;
    for (int32_t field = 0, value = 0; field < infoFields; ++field)
        if (mdlStringList_getInfoField(&value, from, row, field) == MDL_SUCCESS &&
            mdlStringList_setInfoField(to, member, field, value) != MDL_SUCCESS)
            return false;
    return true;
}

// The chosen rows of the list; null, told, when out of memory.
StringList* chosenMembers(const GlobalData& data, int32_t infoFields) {
    mdl::StringListPtr chosen(mdlStringList_create(data.selectionCount, infoFields));
    for (int32_t i = 0; chosen && i < data.selectionCount; ++i)
        if (!takeOver(chosen.get(), i, data.selectList, data.selectionRows[i].row, infoFields)) chosen.reset();
    if (!chosen) tellOutOfMemory();
    return chosen.release();
}

void destroyShown(GlobalData& data) {
    mdlStringList_destroy(data.selectList);
    data.selectList = nullptr;
}

}  // namespace

const DialogHook stringListHooks[] = {
    {ids::hooks::oneOfList, oneOfList},
    {ids::hooks::severalOfList, severalOfList},
    endOfHooks,
};

}  // namespace mc::dialogs

using namespace mc;
using namespace mc::dialogs;

int32_t mclibDialog_selectFromStringListSingle(char* result, int resultSize,
                                               void (*fill)(StringList** listP, void* userArg), void* userArg,
                                               const char* title, const char* label, int rows, int columns) {
    GlobalData* const data = mclibMain_getGlobalDataP();
    if (!data) return -1;
    data->listBoxColumns = columns;
    data->listBoxRows = rows;
    const DialogTexts texts(*data, title, label);
    data->selectList = nullptr;
    dlmSystem_callAnyFunction("PP", mdlSystem_getCurrMdlDesc(), reinterpret_cast<void*>(fill), &data->selectList,
                              userArg);
    if (!data->selectList) return -1;
    if (!agreedIn(ids::selectOne::id)) data->selectedRow = -1;
    if (data->selectedRow >= 0)
        copyResult(result, resultSize, memberOf(data->selectList, data->selectedRow * std::max(columns, 1)));
    destroyShown(*data);
    return data->selectedRow;
}

StringList* mclibDialog_selectFromStringListMulti(void (*fill)(StringList** listP, void* userArg, int infoFields),
                                                  void* userArg, int infoFields, const char* title, const char* label) {
    GlobalData* const data = mclibMain_getGlobalDataP();
    if (!data) return nullptr;
    const DialogTexts texts(*data, title, label);
    data->selectList = nullptr;
    dlmSystem_callAnyFunction("PPI", mdlSystem_getCurrMdlDesc(), reinterpret_cast<void*>(fill), &data->selectList,
                              userArg, infoFields);
    if (!data->selectList) return nullptr;
    forgetSelection(*data);
    const bool agreed = agreedIn(ids::selectSeveral::id);
    StringList* const chosen =
        agreed && data->selectionCount > 0 ? chosenMembers(*data, std::max(infoFields, 0)) : nullptr;
    forgetSelection(*data);
    destroyShown(*data);
    return chosen;
}
