// List models: rows of cells.
#include <memory>
#include <string>
#include <vector>

#include "mchost/base/guard.h"
#include "mchost/mdl/list_models.h"

namespace {

struct Cell {
    std::string text;
    int32_t value = 0;
    uint32_t editorType = 0;  // 0: no editor
    int32_t editorId = 0;
};

}  // namespace

struct ListModel {
    int32_t columns;
    std::vector<std::vector<Cell>> rows;
};

namespace {

int32_t rowsOf(const ListModel& model) {
    return static_cast<int32_t>(model.rows.size());
}

Cell* cellAt(const ListModel* model, int32_t row, int32_t column) {
    if (!model || row < 0 || row >= rowsOf(*model) || column < 0 || column >= model->columns) return nullptr;
    return const_cast<Cell*>(&model->rows[static_cast<size_t>(row)][static_cast<size_t>(column)]);
}

}  // namespace

ListModel* mdlListModel_create(int32_t columns) noexcept {
    return host::guarded<ListModel*>(nullptr, [&]() -> ListModel* {
        return columns < 1 ? nullptr : new ListModel{columns, {}};
    });
}

void mdlListModel_destroy(ListModel* model) noexcept {
    delete model;
}

int32_t mdlListModel_rowCount(const ListModel* model) noexcept {
    return model ? rowsOf(*model) : 0;
}

int32_t mdlListModel_columnCount(const ListModel* model) noexcept {
    return model ? model->columns : 0;
}

int32_t mdlListModel_addRow(ListModel* model) noexcept {
    return host::guarded<int32_t>(-1, [&]() -> int32_t {
        if (!model) return -1;
        model->rows.emplace_back(static_cast<size_t>(model->columns));
        return rowsOf(*model) - 1;
    });
}

int mdlListModel_removeRow(ListModel* model, int32_t row) noexcept {
    if (!cellAt(model, row, 0)) return MDL_ERROR;
    model->rows.erase(model->rows.begin() + row);
    return MDL_SUCCESS;
}

int mdlListModel_setText(ListModel* model, int32_t row, int32_t column, const char* text) noexcept {
    return host::guarded<int>(MDL_ERROR, [&]() -> int {
        Cell* cell = cellAt(model, row, column);
        if (!cell || !text) return MDL_ERROR;
        cell->text = std::string(text);
        return MDL_SUCCESS;
    });
}

const char* mdlListModel_getText(const ListModel* model, int32_t row, int32_t column) noexcept {
    const Cell* cell = cellAt(model, row, column);
    return cell ? cell->text.c_str() : nullptr;
}

int mdlListModel_setValue(ListModel* model, int32_t row, int32_t column, int32_t value) noexcept {
    Cell* cell = cellAt(model, row, column);
    if (!cell) return MDL_ERROR;
    cell->value = value;
    return MDL_SUCCESS;
}

int mdlListModel_getValue(int32_t* valueP, const ListModel* model, int32_t row, int32_t column) noexcept {
    const Cell* cell = cellAt(model, row, column);
    if (!cell) return MDL_ERROR;
    if (valueP) *valueP = cell->value;
    return MDL_SUCCESS;
}

int mdlListModel_setEditor(ListModel* model, int32_t row, int32_t column, uint32_t itemType, int32_t itemId) noexcept {
    Cell* cell = cellAt(model, row, column);
    if (!cell) return MDL_ERROR;
    cell->editorType = itemType;
    cell->editorId = itemId;
    return MDL_SUCCESS;
}

int mdlListModel_insertRow(ListModel* model, int32_t row) noexcept {
    return host::guarded<int>(MDL_ERROR, [&]() -> int {
        if (!model || row < 0 || row > rowsOf(*model)) return MDL_ERROR;
        model->rows.emplace(model->rows.begin() + row, static_cast<size_t>(model->columns));
        return MDL_SUCCESS;
    });
}

int mdlListModel_hasEditor(const ListModel* model, int32_t row, int32_t column) noexcept {
    const Cell* cell = cellAt(model, row, column);
    return cell && cell->editorType != 0;
}
