#include <charconv>
#include <string_view>

#include "mchost/mdl/files.h"
#include "mchost/mdl/lists.h"
#include "mchost/mdl/system.h"
#include "mclib/print/shared.h"

using namespace mc;

mclibPrinterSetupData* mclibpsd = nullptr;
mclibPlotScale* mcScaleP = nullptr;

namespace mc {

namespace {

constexpr const char* defaultScales[] = {"1:1",   "1:2",   "1:5",   "1:10",   "1:20",   "1:25",   "1:50",   "1:100",
                                         "1:200", "1:250", "1:500", "1:1000", "1:2000", "1:5000", "1:10000"};
constexpr uint32_t textEditor = 0x64547874;
constexpr int32_t textEditorId = -13999;

// Adds a row from its name; its value is the number from the third character on, with six decimals.
bool addScale(ListModel* list, std::string_view name) {
    const int32_t row = mdlListModel_addRow(list);
    if (row < 0) return false;
    double number = 0.0;
    std::from_chars(name.data() + 2, name.data() + name.size(), number);
    char value[32]{};
    std::to_chars(value, std::end(value) - 1, number, std::chars_format::fixed, 6);
    mdlListModel_setText(list, row, 0, name.data());
    mdlListModel_setText(list, row, 1, value);
    for (int32_t column : {0, 1}) mdlListModel_setEditor(list, row, column, textEditor, textEditorId);
    return true;
}

// Says that the scale file that a user named isn't the list in use.
void reportUnreadScaleFile() {
    char name[256], path[256];
    if (mdlSystem_getCfgVar(name, "MC_PLOTSCALES", sizeof name) != 0) return;
    if (mdlFile_find(path, name, "MC_DATA", nullptr) != 0) return;
    toolSubsystem_printf("Plot scale file %s wasn't read; the default scales are in use.\n", path);
}

}  // namespace

bool loadPlotScales() {
    reportUnreadScaleFile();
    mcScaleP->scaleList = mdlListModel_create(2);
    if (!mcScaleP->scaleList) return false;
    mcScaleP->activeIndex = 0;
    mcScaleP->activeScale = 1.0;
    for (const char* scale : defaultScales)
        if (!addScale(mcScaleP->scaleList, scale)) return false;
    return true;
}

}  // namespace mc
