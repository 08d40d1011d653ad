// The command that gives an arrow another text and symbol.
#include <cstdlib>
#include <utility>

#include "mchost/mdl/selection.h"
#include "mclib/arrows/drafting.h"
#include "mclib/arrows/hooks.h"
#include "mclib/arrows/reading.h"
#include "mclib/frame/named_messages.hpp"
#include "resources/ids.h"

namespace mc::arrows {

namespace {

// Why nothing is changed.
template <class... Values>
bool refuse(mdl::Message<MCLIB_ERRORS, Values...> reason) {
    mdl::printMessage(MDL_FIELD_ERROR, reason);
    return false;
}

// The cell that the hook makes; null when it refuses.
mdl::DescrPtr askForCell(EditState& edit, int view) {
    ElementDescr* made = nullptr;
    const int32_t refused =
        callHook("PPPDI", edit.hooks.changeText, &made, edit.cell.get(), &edit.anchor, edit.textDirection, view);
    if (made == edit.cell.get()) edit.cell.release();
    mdl::DescrPtr cell(made);
    if (refused != 0 || !made) return nullptr;
    if (mdlElement_getType(made->element) == MDL_CELL_HEADER) return cell;
    refuse(ids::errors::noChangedCell);
    return nullptr;
}

// Puts the new cell in the place of the old one, with the leaders behind it.
bool takeCell(EditState& edit, mdl::DescrPtr cell) {
    mdl::DescrPtr legs = duplicate(edit.legs.get());
    if (!legs || mdlElmdscr_appendDscr(cell.get(), legs.get()) != MDL_SUCCESS) {
        showNotice(ids::errors::outOfMemory);
        return false;
    }
    legs.release();
    edit.cell = std::move(cell);
    return true;
}

// Of the arrow that was read. False when nothing was written.
bool changeText(EditState& edit, int view) {
    if (!splitCell(edit) || !edit.hooks.changeText) return false;
    mdl::DescrPtr cell = askForCell(edit, view);
    return cell && takeCell(edit, std::move(cell)) && rewrite(edit);
}

void acceptChange(Point3d*, int32_t view) {
    EditState& edit = currentEdit();
    if (readLocated(edit)) changeText(edit, view);
    mdlState_restartCurrentCommand();
}

// The position of the first selected element; 0 when nothing is selected.
FilePos firstSelected() {
    FilePos* positions = nullptr;
    ModelRef** models = nullptr;
    int32_t count = 0;
    mdlSelect_returnPositions(&positions, &models, &count);
    const FilePos first = count > 0 ? positions[0] : 0;
    std::free(positions);
    std::free(models);
    return first;
}

bool readSelected(EditState& edit) {
    const FilePos position = firstSelected();
    if (position == 0) return refuse(ids::errors::nothingSelected);
    if (!readArrow(edit, position)) return false;
    return (edit.cell->element->head.properties & MDL_PROP_LOCKED) == 0 || refuse(ids::errors::arrowLocked);
}

constexpr EditCommand changing = {CommandKind::changeText, false, acceptChange, nullptr, nullptr};

}  // namespace

}  // namespace mc::arrows

using namespace mc::arrows;

int mclibArrow_modifyTextAndSymbol(int cmdMsg, int promptMsg, McArrowLocateFilter arrowLocateFilter,
                                   McArrowReadHook arrowReadHook, McArrowBeforeWriteHook arrowBeforeWriteHook,
                                   McArrowChangeTextHook arrowChangeTextHook, McArrowResetHook arrowResetHook) {
    EditHooks hooks = editHooks(arrowLocateFilter, arrowReadHook, arrowBeforeWriteHook, arrowResetHook);
    hooks.changeText = arrowChangeTextHook;
    return startEditing(changing, hooks, cmdMsg, promptMsg);
}

int mclibArrow_modifyTextAndSymbolSelected(McArrowLocateFilter arrowLocateFilter, McArrowReadHook arrowReadHook,
                                           McArrowBeforeWriteHook arrowBeforeWriteHook,
                                           McArrowChangeTextHook arrowChangeTextHook, McArrowResetHook arrowResetHook) {
    constexpr int view = 0;
    EditState& edit = currentEdit();
    edit.hooks = editHooks(arrowLocateFilter, arrowReadHook, arrowBeforeWriteHook, arrowResetHook);
    edit.hooks.changeText = arrowChangeTextHook;
    setLocateRules(edit, CommandKind::changeText);
    const bool changed = readSelected(edit) && changeText(edit, view);
    mdlState_restartCurrentCommand();
    return changed ? MCLIB_SUCCESS : MCLIB_ERROR;
}
