#include "mclib/print/print.h"

#include <algorithm>
#include <array>

#include "mchost/mdl/system.h"
#include "mclib/frame/global_data.h"
#include "mclib/frame/main.h"
#include "mclib/print/driver.h"
#include "mclib/print/shared.h"
#include "mclib/print/walker.h"

namespace {

// The drivers by print device.
constexpr auto drivers = std::to_array<const PrintDriver*>({
    &psDriver, &hpglDriver, nullptr, nullptr,  // 0 PostScript, 1 HP-GL
    &asciiDriver, &pclDriver, nullptr,         // 4 ASCII, 5 PCL, 6 is the host's plotter, which gets no file
});

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

// Of the last job: whether it may lack what there was no memory for.
int failuresAtOpen = 0;
bool lackedMemory = false;

bool isDevice(int32_t device) {
    return 0 <= device && device < static_cast<int32_t>(drivers.size());
}

const PrintDriver* driverOf(int32_t device) {
    return isDevice(device) ? drivers[static_cast<size_t>(device)] : nullptr;
}

// The application whose job is open, or was the last to be; only told apart from others, never followed.
const GlobalData* jobOwner = nullptr;

// A job that is open when the process ends is whole too.
struct AtExit {
    ~AtExit() { print::closeJobs(); }
};
const AtExit atExit;

const PrintDriver* currentDriver() {
    const GlobalData* gd = mclibMain_getGlobalDataP();
    return gd ? driverOf(gd->printDevice) : nullptr;
}

}  // namespace

void print::closeJobs() {
    for (const PrintDriver* driver : drivers)
        if (driver) driver->close();
    jobOwner = nullptr;
}

int mclibPrint_fopen(const char* fileName, int device) {
    GlobalData* gd = mclibMain_getGlobalDataP();
    if (!gd) return 0;
    print::closeJobs();
    gd->printDevice = device;
    jobOwner = gd;
    if (!isDevice(device))
        toolSubsystem_printf("mclibPrint: there is no print device %d; nothing is printed.\n", device);
    failuresAtOpen = mdlSystem_memoryFailures();
    lackedMemory = false;
    const PrintDriver* driver = driverOf(device);
    return driver ? driver->open(fileName, gd->printPageCode) : 1;
}

void print::closeJobOfApplication() {
    if (jobOwner && jobOwner == mclibMain_getGlobalDataP()) print::closeJobs();
}

void mclibPrint_newPage(void) {
    const PrintDriver* driver = currentDriver();
    if (driver && driver->newPage) driver->newPage();
}

void mclibPrint_fclose(void) {
    if (const PrintDriver* driver = currentDriver()) driver->close();
    lackedMemory = mdlSystem_memoryFailures() != failuresAtOpen;
}

int mclibPrint_jobStatus(void) {
    const GlobalData* gd = mclibMain_getGlobalDataP();
    if (!gd) return MCLIB_ERROR;
    if (!isDevice(gd->printDevice)) return MCLIB_ERROR;
    const PrintDriver* driver = driverOf(gd->printDevice);
    if (lackedMemory) return MCLIB_ERROR;
    return driver ? driver->jobStatus() : MCLIB_SUCCESS;
}

void mclibPrint_getPageSize(double* width, double* height, int pageCode) {
    if (GlobalData* gd = mclibMain_getGlobalDataP()) gd->printPageCode = pageCode;
    if (pageCode < 1 || pageCode > static_cast<int>(pageSizes.size())) return;
    const PageSize& size = pageSizes[static_cast<size_t>(pageCode) - 1];
    *width = size.width;
    *height = size.height;
}

void mclibPrint_printElementDescr(ElementDescr* page, double x, double y, double width, double height) {
    if (const PrintDriver* driver = currentDriver()) walkPage(*driver, page, {x, y, width, height});
}
