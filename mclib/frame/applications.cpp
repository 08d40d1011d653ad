#include "mclib/frame/applications.h"

#include <span>

#include "mchost/mdl/dialog.h"
#include "mchost/mdl/system.h"
#include "mclib/frame/errors.h"
#include "mclib/frame/global_data.h"
#include "mclib/frame/main.h"

namespace mc {

GlobalData* mgdP = nullptr;

namespace {

struct ApplicationSlot {
    int32_t processNumber;
    MdlDesc* mdlDesc;
    GlobalData* globalData;
};

constexpr int32_t maxSlots = mostApplications + 1;  // a mark at the last one refuses

// Lives as long as the session. slotCount never goes down; slots of ended applications are used again below it.
struct ApplicationTable {
    ApplicationSlot slots[maxSlots] = {};
    int32_t slotCount = 0;
    int32_t session = 0;

    std::span<ApplicationSlot> used() { return {slots, static_cast<size_t>(slotCount)}; }
};
constinit RoomState<ApplicationTable> table;

bool isLive(const ApplicationSlot& slot) {
    return slot.mdlDesc && mdlSystem_getMdlDescFromProcessNumber(slot.processNumber) == slot.mdlDesc;
}

// The slot of the caller if it registers anew; else clears those of ended applications, and gives the first free one,
// which may be a new one at the end.
ApplicationSlot& takeSlot(const MdlDesc* caller) {
    ApplicationSlot* free = nullptr;
    for (ApplicationSlot& slot : table->used()) {
        if (isLive(slot) && slot.mdlDesc == caller) return slot;
        if (isLive(slot)) continue;
        slot = {};
        if (!free) free = &slot;
    }
    return free ? *free : table->slots[table->slotCount++];
}

void setDefaults(GlobalData& data) {
    data.pageScale = 1.0;
    data.fileListFirstUse = 1;
    data.pageInfoSaved = 1;
    data.selectedAttributeId = -1;
    data.previewPage = -1;
    data.pageInfoPage = -1;
}

}  // namespace

GlobalData* registerApplication() {
    MdlDesc* desc = mdlSystem_getCurrMdlDesc();
    // A mark of 50 refuses everyone, also where a slot is free: it serves 49 applications.
    ApplicationSlot* slot = desc ? &takeSlot(desc) : nullptr;
    if (!slot || tableIsFull()) {
        toolSubsystem_printf("Error in mclib_InitGlobalData\n");
        return nullptr;
    }
    void* block = mclibMem_mallocRscErrorPrintf(sizeof(GlobalData), MCLIB_ERRORS, MCLIB_OUT_OF_MEMORY);
    if (!block) return nullptr;
    auto* data = static_cast<GlobalData*>(block);
    *slot = {mdlSystem_getProcessNumberFromMdlDesc(desc), desc, data};
    setDefaults(*data);
    return data;
}

void replaceBlock(const GlobalData* block, GlobalData* by) {
    for (ApplicationSlot& slot : table->used()) {
        if (slot.globalData != block) continue;
        if (by)
            slot.globalData = by;
        else
            slot = {};
    }
}

int32_t tableSession() {
    return table->session;
}

void setTableSession(int32_t number) {
    table->session = number;
}

void forgetAllApplications() {
    table.end();
    mgdP = nullptr;
}

int32_t slotsHandedOut() {
    return table->slotCount;
}

bool tableIsFull() {
    return table->slotCount == maxSlots;
}

GlobalData* findGlobalData() {
    MdlDesc* desc = mdlSystem_getCurrMdlDesc();
    const int32_t processNumber = mdlSystem_getProcessNumberFromMdlDesc(desc);
    // Only the slot that fits is asked whether it is live: a call to the host for each slot would cost far more.
    for (const ApplicationSlot& slot : table->used())
        if (slot.processNumber == processNumber && slot.mdlDesc == desc && isLive(slot)) return slot.globalData;
    return nullptr;
}

void notifyScaleChange(double oldScale, double newScale, int includeCurrent) {
    const GlobalData* current = findGlobalData();
    // By index: a scale function may have applications come and go.
    for (int32_t i = 0; i < table->slotCount; ++i) {
        const ApplicationSlot slot = table->slots[i];
        if (!isLive(slot) || (!includeCurrent && slot.globalData == current)) continue;
        if (auto* function = slot.globalData->scaleFunction)
            dlmSystem_callAnyFunction("DD", slot.mdlDesc, reinterpret_cast<void*>(function), oldScale, newScale);
    }
}

}  // namespace mc

using namespace mc;

GlobalData* mclibMain_getGlobalDataP(void) {
    GlobalData* data = findGlobalData();
    if (!data) toolSubsystem_printf("Error in mclib_GetGlobalDataP\n");
    return data;
}

char* mclibMain_getApplicationName(void) {
    GlobalData* data = mclibMain_getGlobalDataP();
    return data ? data->applicationName : nullptr;
}

int32_t mclibMain_currentAppIsInitApp(void) {
    const GlobalData* data = mclibMain_getGlobalDataP();
    return data ? data->isInitApp : 0;
}

void mclibMain_addInitApp(void (*f)(void)) {
    GlobalData* data = mclibMain_getGlobalDataP();
    if (data && data->initAppCount < maxInitApps) data->initApps[data->initAppCount++] = f;
}

void mclibMain_execFuncOrAddToInitApps(void (*f)(void)) {
    const GlobalData* data = mclibMain_getGlobalDataP();
    if (!data) return;
    if (data->isInitApp)
        mclibMain_addInitApp(f);
    else
        dlmSystem_callAnyFunction("", mdlSystem_getCurrMdlDesc(), reinterpret_cast<void*>(f));
}

void mclibMain_setScaleFunction(void (*f)(double oldScale, double newScale)) {
    if (GlobalData* data = mclibMain_getGlobalDataP()) data->scaleFunction = f;
}

void mclibMain_updateBeforeDialogOpen(int dialogId) {
    const MdlDesc* current = mdlSystem_getCurrMdlDesc();
    for (int32_t i = 0; i < table->slotCount; ++i) {
        const ApplicationSlot slot = table->slots[i];
        if (!isLive(slot)) continue;
        if (slot.mdlDesc == current)
            mgdP = slot.globalData;
        else if (MdlDialog* dialog = mdlDialog_findByTypeAndId(MDL_DIALOG_BOX, dialogId, slot.mdlDesc))
            mdlWindow_close(dialog, 0, 1);
    }
}
