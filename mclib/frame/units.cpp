// Angles, units, decimals, date and time, the progress mark.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "mchost/mdl/dialog.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/system.h"
#include "mchost/mdl/transform.h"
#include "mclib/frame/applications.h"
#include "mclib/frame/errors.h"
#include "mclib/frame/global_data.h"
#include "mclib/frame/text_buffer.h"
#include "mclib/frame/util.h"
#include "resources/ids.h"

namespace mc {

namespace {

constexpr const char* hourGlassFrames[] = {"|", "/", "-", "\\"};
constexpr int32_t hourGlassPause = 31;  // ticks
static_assert(ids::texts::december.number - ids::texts::january.number == 11 &&
              ids::texts::saturday.number - ids::texts::sunday.number == 6);
constexpr size_t itemFormatSize = 32;

// Where the last converted value lies: in the application's block, or here when no application runs.
double* convertedValue() {
    static double withoutApplication;
    GlobalData* data = findGlobalData();
    return data ? &data->convertedValue : &withoutApplication;
}

struct LongForm {
    int32_t code, decimals;
};
constexpr LongForm longForms[] = {{0, 5}, {1, 6}, {3, 7}, {7, 8}, {15, 9}, {31, 10}};
constexpr int longFormsInUse = 0x04;

void storeUnlessNull(int* to, int value) {
    if (to) *to = value;
}

int32_t digitOf(char c) {
    return c >= '0' && c <= '9' ? c - '0' : 0;
}

}  // namespace

}  // namespace mc

using namespace mc;

int mclibUtil_angleIn2Or3Quadrant(double angle) {
    constexpr double tolerance = 0.0001;
    const double c = std::cos(angle), s = std::sin(angle);
    if (c < -tolerance && s > 0.0) return 1;
    if (c > tolerance) return 0;
    return s < 0.0;
}

double* mclibUtil_masterToUORP(double value) {
    double* result = convertedValue();
    mdlCnv_masterToUOR(result, value, mdlModelRef_getActive());
    return result;
}

double* mclibUtil_UORToMasterP(double value) {
    double* result = convertedValue();
    mdlCnv_UORToMaster(result, value, mdlModelRef_getActive());
    return result;
}

int32_t mclibUtil_getCoordinateReadoutAccuracy(int fallback) {
    const int format = tcbP ? tcbP->readoutFormat : 0;
    if (!tcbP || !(tcbP->readoutFlags & longFormsInUse)) {
        const int32_t decimals = format & 7;
        return decimals == 0 ? 4 : decimals - 1;
    }
    if (fallback >= 0) return fallback;
    for (const LongForm& form : longForms)
        if (form.code == format >> 3) return form.decimals;
    return fallback;
}

void mclibUtil_setActiveDecimalNumberInTextItem(MdlItem* item) {
    char format[itemFormatSize];
    if (!item || mdlDialog_itemType(item) != ITEM_TEXT || mdlDialog_textGetInfo(format, item) != MDL_SUCCESS) return;
    const size_t length = std::strlen(format);
    if (length <= 2 || format[length - 1] != 'f') return;
    const int32_t decimals = mclibUtil_getCoordinateReadoutAccuracy(2);
    if (digitOf(format[length - 2]) == decimals) return;
    std::snprintf(format + length - 2, sizeof format - (length - 2), "%df", decimals);
    mdlDialog_textSetInfo(item, format);
    mdlDialog_itemSynch(item);
}

void mclibUtil_getDateAndTime(int* year, int* month, int* day, int* hour, int* minute, int* second, int* weekDay,
                              char** weekDayName, char** monthName) {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    storeUnlessNull(year, local.tm_year + 1900);
    storeUnlessNull(month, local.tm_mon + 1);
    storeUnlessNull(day, local.tm_mday);
    storeUnlessNull(hour, local.tm_hour);
    storeUnlessNull(minute, local.tm_min);
    storeUnlessNull(second, local.tm_sec);
    storeUnlessNull(weekDay, local.tm_wday);
    if (weekDayName) *weekDayName = mclibUtil_getLanguageText(ids::texts::sunday.number + local.tm_wday);
    if (monthName) *monthName = mclibUtil_getLanguageText(ids::texts::january.number + local.tm_mon);
}

void mclibUtil_initHourGlass(void) {
    if (GlobalData* data = findGlobalData()) data->hourGlassTicks = mdlSystem_getTicks();
}

void mclibUtil_updateHourGlass(void) {
    GlobalData* data = findGlobalData();
    if (!data) return;
    const int32_t ticks = mdlSystem_getTicks();
    if (ticks - data->hourGlassTicks < hourGlassPause) return;
    data->hourGlassTicks = ticks;
    mdlOutput_printf(MDL_FIELD_STATUS, "%s", hourGlassFrames[data->hourGlassIndex]);
    data->hourGlassIndex = (data->hourGlassIndex + 1) % static_cast<int32_t>(std::size(hourGlassFrames));
}
