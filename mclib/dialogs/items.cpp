// Small calls on items and menus.
#include "mchost/mdl/dialog_items.h"
#include "mchost/mdl/lists.h"
#include "mchost/mdl/menu_bar.h"
#include "mclib/dialogs/dialogs.h"
#include "mclib/dialogs/selection.h"
#include "mclib/frame/main.h"

using namespace mc;
using namespace mc::dialogs;

int mclibDialog_optionButtonInsertFromStringlist(StringList* list, int step, int offset, MdlDialog* dialog,
                                                 int32_t itemId, int setExtent) {
    MdlItem* const button = mdlDialog_itemGetByTypeAndId(dialog, ITEM_OPTION_BUTTON, itemId);
    const int32_t size = mdlStringList_size(list);
    if (!button || step < 1 || mdlDialog_optionButtonDeleteAll(button) != MDL_SUCCESS || size == 0) return MCLIB_ERROR;
    int32_t value = 0;
    const char* text = nullptr;
    for (int64_t i = 0; i < size; i += step)
        if (i + offset < size &&
            mdlStringList_getMember(&text, nullptr, list, static_cast<int32_t>(i + offset)) == MDL_SUCCESS &&
            mdlDialog_optionButtonInsert(button, text, value++) != MDL_SUCCESS)
            return MCLIB_ERROR;
    mdlDialog_itemSynch(button);
    if (setExtent) mdlDialog_optionButtonSetExtent(button);
    mdlDialog_itemDraw(button);
    return MCLIB_SUCCESS;
}

void mclibDialog_itemEnableByTypeAndId(MdlDialog* dialog, int32_t type, int32_t id, int enable) {
    mdlDialog_itemEnable(mdlDialog_itemGetByTypeAndId(dialog, type, id), enable);
}

void mclibDialog_itemShowByTypeAndId(MdlDialog* dialog, int32_t type, int32_t id, int show) {
    mdlDialog_itemShow(mdlDialog_itemGetByTypeAndId(dialog, type, id), show);
}

void mclibDialog_insertPdm(void** menuP, int32_t menuId) {
    GlobalData* const data = mclibMain_getGlobalDataP();
    if (menuP) *menuP = nullptr;
    if (!data) return;
    data->pdmMenu = mdlDialog_menuBarInsertMenu(0, menuId, MDL_MENU_HELP);
    if (menuP) *menuP = data->pdmMenu;
}

void mclibDialog_deletePdm(void) {
    GlobalData* const data = mclibMain_getGlobalDataP();
    if (!data || !data->pdmMenu) return;
    mdlDialog_menuBarDeleteMenu(static_cast<MdlMenu*>(data->pdmMenu));
    data->pdmMenu = nullptr;
}
