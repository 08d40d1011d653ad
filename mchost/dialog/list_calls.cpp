// The calls on list boxes, combo boxes and option buttons.
#include <algorithm>

#include "mchost/dialog/on_item.h"
#include "mchost/mdl/dialog_items.h"
#include "mchost/mdl/system.h"

namespace host {

namespace {

constexpr int32_t aroundOption = 32;  // pixels beside an option's text: edges, and the mark that tells the button

int setList(MdlItem* handle, int32_t kind, StringList* list, int32_t columns) {
    return onItem(handle, kind, [&](const ItemRef& item) -> int {
        if (columns < 0) return MDL_ERROR;
        item.dialog->setList(item.index, list, columns == 0 ? item->columns : columns);
        return MDL_SUCCESS;
    });
}

StringList* listOf(const MdlItem* handle, int32_t kind) {
    const ItemRef item = itemOfKind(handle, kind);
    return item ? item->list : nullptr;
}

int selectRow(MdlItem* handle, int32_t kind, int32_t row) {
    return onItem(handle, kind, [&](const ItemRef& item) -> int {
        return row >= -1 && item.dialog->select(item.index, rowAlone(row)) ? MDL_SUCCESS : MDL_ERROR;
    });
}

int32_t selectedRow(const MdlItem* handle, int32_t kind) {
    const ItemRef item = itemOfKind(handle, kind);
    return item ? item->selectedRow() : -1;
}

}  // namespace

}  // namespace host

using host::ItemRef;

int mdlDialog_listBoxSetStrListP(MdlItem* item, StringList* list, int32_t columns) noexcept {
    return host::setList(item, ITEM_LIST_BOX, list, columns);
}

int mdlDialog_listBoxSetInfo(MdlItem* handle, int32_t columns, int32_t several) noexcept {
    return host::onItem(handle, ITEM_LIST_BOX, [&](const ItemRef& item) -> int {
        if (columns < 0) return MDL_ERROR;
        if (columns > 0) item.dialog->setList(item.index, item->list, columns);
        if (several >= 0) item.dialog->allowSeveral(item.index, several != 0);
        return MDL_SUCCESS;
    });
}

int mdlDialog_listBoxSetListModelP(MdlItem* handle, ListModel* model) noexcept {
    return host::onItem(handle, ITEM_LIST_BOX, [&](const ItemRef& item) -> int {
        item.dialog->setModel(item.index, model);
        return MDL_SUCCESS;
    });
}

int mdlDialog_listBoxEditCell(MdlItem* handle, int32_t row, int32_t column) noexcept {
    return host::onItem(handle, ITEM_LIST_BOX, [&](const ItemRef& item) -> int {
        return item.dialog->editCell(item.index, row, column) ? MDL_SUCCESS : MDL_ERROR;
    });
}

int mdlDialog_listBoxGetSelections(MdlCell** cellsP, int32_t* countP, const MdlItem* handle) noexcept {
    if (cellsP) *cellsP = nullptr;
    if (countP) *countP = 0;
    return host::onItem(handle, ITEM_LIST_BOX, [&](const ItemRef& item) -> int {
        const std::vector<int32_t>& rows = item->selection;
        if (!cellsP || !countP) return MDL_ERROR;
        if (rows.empty()) return MDL_SUCCESS;
        auto* const cells = static_cast<MdlCell*>(dlmSystem_mdlMalloc(rows.size() * sizeof(MdlCell)));
        if (!cells) return MDL_ERROR;
        std::ranges::transform(rows, cells, [](int32_t row) { return MdlCell{0, row}; });
        *cellsP = cells;
        *countP = static_cast<int32_t>(rows.size());
        return MDL_SUCCESS;
    });
}

int mdlDialog_listBoxSetTopRow(MdlItem* handle, int32_t row) noexcept {
    return host::onItem(handle, ITEM_LIST_BOX, [&](const ItemRef& item) -> int {
        return item.dialog->scrollTo(item.index, row) ? MDL_SUCCESS : MDL_ERROR;
    });
}

StringList* mdlDialog_listBoxGetStrListP(const MdlItem* item) noexcept {
    return host::listOf(item, ITEM_LIST_BOX);
}

int mdlDialog_listBoxSelectRow(MdlItem* item, int32_t row) noexcept {
    return host::selectRow(item, ITEM_LIST_BOX, row);
}

int32_t mdlDialog_listBoxGetSelectedRow(const MdlItem* item) noexcept {
    return host::selectedRow(item, ITEM_LIST_BOX);
}

int mdlDialog_comboBoxSetStrListP(MdlItem* item, StringList* list, int32_t stringsPerRow) noexcept {
    return host::setList(item, ITEM_COMBO_BOX, list, stringsPerRow);
}

StringList* mdlDialog_comboBoxGetStrListP(const MdlItem* item) noexcept {
    return host::listOf(item, ITEM_COMBO_BOX);
}

int mdlDialog_comboBoxSelectRow(MdlItem* item, int32_t row) noexcept {
    return host::selectRow(item, ITEM_COMBO_BOX, row);
}

int32_t mdlDialog_comboBoxGetSelectedRow(const MdlItem* item) noexcept {
    return host::selectedRow(item, ITEM_COMBO_BOX);
}

// ---- option buttons ----

int mdlDialog_optionButtonDeleteAll(MdlItem* handle) noexcept {
    return host::onItem(handle, ITEM_OPTION_BUTTON, [](const ItemRef& item) -> int {
        item.dialog->clearRows(item.index);
        return MDL_SUCCESS;
    });
}

int mdlDialog_optionButtonInsert(MdlItem* handle, const char* label, int32_t value) noexcept {
    return host::onItem(handle, ITEM_OPTION_BUTTON, [&](const ItemRef& item) -> int {
        if (!label) return MDL_ERROR;
        item.dialog->addRow(item.index, label, value);
        return MDL_SUCCESS;
    });
}

int32_t mdlDialog_optionButtonCount(const MdlItem* handle) noexcept {
    const ItemRef item = host::itemOfKind(handle, ITEM_OPTION_BUTTON);
    return item ? static_cast<int32_t>(item->rows.size()) : 0;
}

int mdlDialog_optionButtonGet(const MdlItem* handle, int32_t row, const char** labelP, int32_t* valueP) noexcept {
    return host::onItem(handle, ITEM_OPTION_BUTTON, [&](const ItemRef& item) -> int {
        if (row < 0 || static_cast<size_t>(row) >= item->rows.size()) return MDL_ERROR;
        const host::OptionRow& found = item->rows[static_cast<size_t>(row)];
        if (labelP) *labelP = found.label.c_str();
        if (valueP) *valueP = found.value;
        return MDL_SUCCESS;
    });
}

int mdlDialog_optionButtonEnableRow(MdlItem* handle, int32_t row, int32_t enable) noexcept {
    return host::onItem(handle, ITEM_OPTION_BUTTON, [&](const ItemRef& item) -> int {
        if (row < 0 || static_cast<size_t>(row) >= item->rows.size()) return MDL_ERROR;
        item.dialog->enableRow(item.index, static_cast<size_t>(row), enable != 0);
        return MDL_SUCCESS;
    });
}

int mdlDialog_optionButtonRowIsEnabled(const MdlItem* handle, int32_t row) noexcept {
    const ItemRef item = host::itemOfKind(handle, ITEM_OPTION_BUTTON);
    return item && row >= 0 && static_cast<size_t>(row) < item->rows.size() &&
           item->rows[static_cast<size_t>(row)].enabled;
}

int mdlDialog_optionButtonSetExtent(MdlItem* handle) noexcept {
    return host::onItem(handle, ITEM_OPTION_BUTTON, [](const ItemRef& item) -> int {
        int32_t widest = 0;
        for (const host::OptionRow& row : item->rows)
            widest = std::max(widest, host::widthOfText(row.label, MDL_FONT_DIALOG));
        const int32_t height = item->rect.bottom - item->rect.top;
        item.dialog->setItemExtent(item.index, widest + host::aroundOption, height);
        return MDL_SUCCESS;
    });
}
