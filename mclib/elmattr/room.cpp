// The room's part of an application's start and of a new design file: the dialog's blocks, and named line styles.
#include <cstring>

#include "mchost/mdl/dialog.h"
#include "mchost/mdl/level.h"
#include "mchost/mdl/lists.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/system.h"
#include "mclib/elmattr/table.h"
#include "mclib/frame/room.h"

namespace mc::elmattr {

namespace {

// ---- line styles ----

constexpr const char* keepsLineStyles = "MCDraft";  // the application that starts without them

// Makes each named style the active one in turn, which brings its definition into the file; true when there was one.
bool activateNamedStyles(const ListModel* styles) {
    bool any = false;
    for (int32_t row = 0, count = mdlListModel_rowCount(styles); row < count; ++row) {
        int32_t value = 0;
        if (mdlListModel_getValue(&value, styles, row, 0) != MDL_SUCCESS || value != MDL_STYLE_NAMED) continue;
        mdlParams_setActive(mdlListModel_getText(styles, row, 0), MDL_PARAM_LINE_STYLE_NAME);
        any = true;
    }
    return any;
}

void refreshLineStyles() {
    ListModel* styles = mdlListModel_create(1);
    if (styles && mdlLevelList_getStyleListModel(styles, mdlModelRef_getActive()) == MDL_SUCCESS) {
        int32_t active = 0;
        mdlParams_getActive(&active, MDL_PARAM_STYLE);
        if (activateNamedStyles(styles)) mdlParams_setActive(&active, MDL_PARAM_STYLE);
    }
    if (styles) mdlListModel_destroy(styles);
    bringStyleNumbersInStep();
}

// ---- the room ----

bool begin(GlobalData& data, const Start&) {
    return makeBlock(data.activeRecord) && makeBlock(data.attributeEditBlock);
}

void ready(GlobalData& data, const Start&) {
    if (std::strcmp(data.applicationName, keepsLineStyles) != 0) refreshLineStyles();
}

void takeNewDesignFile(GlobalData&) {
    if (MdlDialog* attributes = mdlDialog_find(dialogId, nullptr)) mdlWindow_close(attributes, 0, 1);
    refreshLineStyles();
}

void release(GlobalData& data) {
    freeRecords(data);
    freeGroups(data);
    dlmSystem_mdlFree(data.activeRecord);
    dlmSystem_mdlFree(data.attributeEditBlock);
}

}  // namespace

}  // namespace mc::elmattr

namespace mc {

const Room elmattrRoom = {.name = "elmattr",
                          .hooks = {},
                          .published = {},
                          .begin = elmattr::begin,
                          .ready = elmattr::ready,
                          .newDesignFile = elmattr::takeNewDesignFile,
                          .applicationEnds = nullptr,
                          .release = elmattr::release,
                          .end = nullptr};

}  // namespace mc
