// The exported front end.
#include "mclib/print/print.h"

#include <algorithm>
#include <array>

#include "mchost/mdl/system.h"
#include "mclib/frame/global_data.h"
#include "mclib/frame/main.h"
#include "mclib/print/devices.h"
#include "mclib/print/job.h"

using namespace mc;
using namespace mc::print;

namespace mc {

namespace {

struct PageSize {
    int32_t code;
    double width, height;  // mm
};

// clang-format off
constexpr auto pageSizes = std::to_array<PageSize>({
    // code  width   height
    {  1,    841.0, 1189.0 },  // A0 portrait
    {  2,   1189.0,  841.0 },  // A0 landscape
    {  3,    594.0,  841.0 },  // A1 portrait
    {  4,    841.0,  594.0 },  // A1 landscape
    {  5,    420.0,  594.0 },  // A2 portrait
    {  6,    594.0,  420.0 },  // A2 landscape
    {  7,    297.0,  420.0 },  // A3 portrait
    {  8,    420.0,  297.0 },  // A3 landscape
    {  9,    210.0,  297.0 },  // A4 portrait
    { 10,    297.0,  210.0 },  // A4 landscape
    { 11,    148.5,  210.0 },  // A5 portrait
    { 12,    210.0,  148.5 },  // A5 landscape
});
// clang-format on
static_assert(std::ranges::all_of(pageSizes, [](const PageSize& p) { return &p - pageSizes.data() + 1 == p.code; }));

}  // namespace

}  // namespace mc

int mclibPrint_fopen(const char* fileName, int device) {
    GlobalData* gd = mclibMain_getGlobalDataP();
    if (!gd) return 0;
    if (!isDevice(device))
        toolSubsystem_printf("mclibPrint: there is no print device %d; nothing is printed.\n", device);
    return openApplicationJob(*gd, device, fileName) ? 1 : 0;
}

void mclibPrint_newPage(void) {
    const GlobalData* gd = mclibMain_getGlobalDataP();
    const PrintDriver* driver = gd ? driverOf(gd->printDevice) : nullptr;
    if (driver && !driver->is(PRINT_DEVICE_ONE_PAGE)) applicationJob()->newPage();
}

void mclibPrint_fclose(void) {
    if (PrintJob* job = applicationJob()) job->close();
}

int mclibPrint_jobStatus(void) {
    const PrintJob* job = applicationJob();
    return job ? job->status() : MCLIB_ERROR;
}

void mclibPrint_getPageSize(double* width, double* height, int pageCode) {
    if (GlobalData* gd = mclibMain_getGlobalDataP()) gd->printPageCode = pageCode;
    if (pageCode < 1 || pageCode > static_cast<int>(pageSizes.size())) return;
    const PageSize& size = pageSizes[static_cast<size_t>(pageCode) - 1];
    *width = size.width;
    *height = size.height;
}

void mclibPrint_printElementDescr(ElementDescr* page, double x, double y, double width, double height) {
    const GlobalData* gd = mclibMain_getGlobalDataP();
    if (PrintJob* job = applicationJob())
        job->printPage({.descr = page, .box = {x, y, width, height}, .pageAngle = gd->pageAngle});
}
