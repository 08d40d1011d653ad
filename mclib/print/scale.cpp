// The plot scales: the list, the active one, and the file that they are kept in.
#include "mclib/print/scale.h"

#include <charconv>
#include <cmath>
#include <iterator>
#include <memory>
#include <utility>

#include "mchost/mdl/dialog_items.h"
#include "mchost/mdl/files.h"
#include "mchost/mdl/lists.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/system.h"
#include "mchost/mdl/transform.h"
#include "mclib/frame/applications.h"
#include "mclib/print/scale_list.h"
#include "mclib/text/decimal.h"

using namespace mc;
using namespace mc::print;

mclibPrinterSetupData* mclibpsd = nullptr;
mclibPlotScale* mcScaleP = nullptr;

namespace mc::print {

namespace {

constexpr const char* defaultScales[] = {"1:1",   "1:2",   "1:5",   "1:10",   "1:20",   "1:25",   "1:50",   "1:100",
                                         "1:200", "1:250", "1:500", "1:1000", "1:2000", "1:5000", "1:10000"};
constexpr uint32_t textEditor = 0x64547874;
constexpr int32_t textEditorId = -13999;
constexpr int32_t storedList = 20001, stringsPerScale = 2, activeField = 0;

struct DestroyModel {
    void operator()(ListModel* list) const { mdlListModel_destroy(list); }
};
using ModelPtr = std::unique_ptr<ListModel, DestroyModel>;

bool sameScale(double a, double b) {
    return std::abs(a - b) < *fc_epsilonP;
}

// "%.6f"
struct ValueText {
    char text[400]{};
    explicit ValueText(double value) { std::to_chars(text, std::end(text) - 1, value, std::chars_format::fixed, 6); }
};

bool addScale(ListModel* list, const char* name, const char* value = "") {
    const int32_t row = mdlListModel_addRow(list);
    return row >= 0 && setScale(list, row, name, value);
}

// ---- the file ----

const char* memberOf(const StringList* strings, int32_t index) {
    const char* text = "";
    return mdlStringList_getMember(&text, nullptr, strings, index) == MDL_SUCCESS ? text : "";
}

// The list that the strings tell, and in `active` the last marked row, or as it was; an odd last string is left out.
// Null when there are no two, or memory is out.
ModelPtr listFrom(const StringList* strings, int32_t& active) {
    const int32_t rows = mdlStringList_size(strings) / stringsPerScale;
    ModelPtr list(rows > 0 ? mdlListModel_create(scaleColumns) : nullptr);
    for (int32_t row = 0; list && row < rows; ++row) {
        const int32_t name = row * stringsPerScale;
        int32_t marked = 0;
        mdlStringList_getInfoField(&marked, strings, name, activeField);
        if (marked != 0) active = row;
        if (!addScale(list.get(), memberOf(strings, name)) ||
            mdlListModel_setText(list.get(), row, scaleValue, memberOf(strings, name + 1)) != MDL_SUCCESS)
            list.reset();
    }
    return list;
}

bool storeRow(StringList* strings, int32_t row) {
    const int32_t name = row * stringsPerScale;
    return mdlStringList_setMember(strings, name, scaleCell(row, scaleName), nullptr) == MDL_SUCCESS &&
           mdlStringList_setMember(strings, name + 1, scaleCell(row, scaleValue), nullptr) == MDL_SUCCESS &&
           mdlStringList_setInfoField(strings, name, activeField, row == mcScaleP->activeIndex) == MDL_SUCCESS;
}

// The file that MC_PLOTSCALES names; false when it isn't told, isn't there, or has no list.
bool readNamedFile() {
    char name[256], path[256];
    if (mdlSystem_getCfgVar(name, "MC_PLOTSCALES", sizeof name) != MDL_SUCCESS ||
        mdlFile_find(path, name, "MC_DATA", nullptr) != MDL_SUCCESS)
        return false;
    McHandle file{};
    if (mclibResource_openFile(&file, path, MDL_RSC_READ) != MCLIB_SUCCESS) return false;
    const bool read = mclibPlotScale_readSettings(&file) == MCLIB_SUCCESS;
    mclibResource_closeFile(&file);
    if (!read) toolSubsystem_printf("Plot scale file %s has no list of scales; the default scales are in use.\n", path);
    return read;
}

}  // namespace

// ---- rows ----

double numberAtStart(std::string_view text) {
    return decimal::parseNumber<double>(text).value;
}

bool setScale(ListModel* list, int32_t row, const char* name, const char* value) {
    constexpr size_t numberAt = 2;  // behind "1:"
    const std::string_view text = name;
    const ValueText own(text.size() > numberAt ? numberAtStart(text.substr(numberAt)) : 0.0);
    bool good = mdlListModel_setText(list, row, scaleName, name) == MDL_SUCCESS &&
                mdlListModel_setText(list, row, scaleValue, value[0] != '\0' ? value : own.text) == MDL_SUCCESS;
    for (int32_t column = 0; column < scaleColumns; ++column)
        good = mdlListModel_setEditor(list, row, column, textEditor, textEditorId) == MDL_SUCCESS && good;
    return good;
}

bool setScaleValue(int32_t row, double value) {
    return mdlListModel_setText(mcScaleP->scaleList, row, scaleValue, ValueText(value).text) == MDL_SUCCESS;
}

const char* scaleCell(int32_t row, ScaleColumn column) {
    const char* text = mdlListModel_getText(mcScaleP->scaleList, row, column);
    return text ? text : "";
}

// ---- the active scale ----

void recomputeScale() {
    const double value = numberAtStart(scaleCell(mcScaleP->activeIndex, scaleValue));
    mcScaleP->activeScale = value > 0 && std::isfinite(value) ? value : 1.0;
}

bool scaleDiffersFrom(double before) {
    return std::abs(mcScaleP->activeScale - before) > *fc_epsilonP;
}

void showScaleEverywhere() {
    mdlDialog_synchShown("mcScaleP");
}

}  // namespace mc::print

bool mc::loadPlotScales() {
    mcScaleP->activeIndex = 0;
    mcScaleP->activeScale = 1.0;
    if (readNamedFile()) return true;
    mcScaleP->scaleList = mdlListModel_create(scaleColumns);
    if (!mcScaleP->scaleList) return false;
    for (const char* scale : defaultScales)
        if (!addScale(mcScaleP->scaleList, scale)) return false;
    return true;
}

double* mclibPlotScale_getActiveScaleP(void) {
    return mcScaleP ? &mcScaleP->activeScale : nullptr;
}

int mclibPlotScale_setActiveScale(double scale, int includeCurrent) {
    if (!mcScaleP) return MCLIB_ERROR;
    if (sameScale(scale, mcScaleP->activeScale)) return MCLIB_SUCCESS;
    for (int32_t row = 0, count = mdlListModel_rowCount(mcScaleP->scaleList); row < count; ++row) {
        const double value = numberAtStart(scaleCell(row, scaleValue));
        if (!sameScale(scale, value)) continue;
        const double before = std::exchange(mcScaleP->activeScale, value);
        mcScaleP->activeIndex = row;
        showScaleEverywhere();
        notifyScaleChange(before, value, includeCurrent);
        return MCLIB_SUCCESS;
    }
    return MCLIB_ERROR;
}

int mclibPlotScale_readSettings(McHandle* file) {
    if (!mcScaleP || !file) return MCLIB_ERROR;
    const mdl::StringListPtr strings(mclibResource_loadStringList(file, storedList));
    int32_t active = mcScaleP->activeIndex;
    ModelPtr list = strings ? listFrom(strings.get(), active) : nullptr;
    if (!list) return MCLIB_ERROR;
    const ModelPtr old(std::exchange(mcScaleP->scaleList, list.release()));
    const double before = mcScaleP->activeScale;
    mcScaleP->activeIndex = active;
    recomputeScale();
    showListInDialog();
    if (scaleDiffersFrom(before)) notifyScaleChange(before, mcScaleP->activeScale, 0);
    return MCLIB_SUCCESS;
}

int mclibPlotScale_saveSettings(McHandle* file) {
    if (!mcScaleP || !mcScaleP->scaleList || !file) return MCLIB_ERROR;
    const int32_t rows = mdlListModel_rowCount(mcScaleP->scaleList);
    const mdl::StringListPtr strings(mdlStringList_create(rows * stringsPerScale, 1));
    for (int32_t row = 0; row < rows; ++row)
        if (!strings || !storeRow(strings.get(), row)) return MCLIB_ERROR;
    return mclibResource_addStringList(file, storedList, strings.get());
}
