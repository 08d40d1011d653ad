#include "mclib/print/devices.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "mchost/mdl/system.h"

namespace mc {

// Each stands at the end of its device's file.
extern const PrintDriver psDriver, hpglDriver, pclDriver, asciiDriver;

namespace {

constexpr PrintDriver hostPlotter = {
    .device = {.code = PRINT_HOST_PLOTTER,
               .key = "plotter",
               .name = "plotter",
               .suffix = nullptr,
               .traits = PRINT_DEVICE_BY_HOST,
               .longestPaperSide = 0,
               .lettersVariable = nullptr,
               .lettersValue = nullptr},
    .letters = nullptr,
    .moreLetters = nullptr,
    .job = noCalls,
};

// In the order in which they are offered, the usual one first.
constexpr std::array<const PrintDriver*, 5> devices = {&psDriver, &hpglDriver, &pclDriver, &asciiDriver, &hostPlotter};

}  // namespace

const PrintDriver* print::driverOf(int number) {
    const auto at = std::ranges::find(devices, number, [](const PrintDriver* driver) { return driver->device.code; });
    return at == devices.end() ? nullptr : *at;
}

bool hasMoreLetters(const PrintDriver& driver) {
    char value[16] = "";
    if (!driver.moreLetters) return false;
    mdlSystem_getCfgVar(value, driver.device.lettersVariable, sizeof value);
    return std::string_view(value) == driver.device.lettersValue;
}

}  // namespace mc

using namespace mc;

const McPrintDevice* mclibPrint_getDeviceP(int row) {
    return 0 <= row && row < static_cast<int>(devices.size()) ? &devices[static_cast<size_t>(row)]->device : nullptr;
}

const McPrintDevice* mclibPrint_findDeviceP(int device) {
    const PrintDriver* driver = print::driverOf(device);
    return driver ? &driver->device : nullptr;
}

int mclibPrint_showsLetter(int device, char letter) {
    const PrintDriver* driver = print::driverOf(device);
    if (!driver) return 0;
    const auto code = static_cast<unsigned char>(letter);
    if (!driver->letters || (*driver->letters)[code]) return 1;
    return driver->moreLetters && (*driver->moreLetters)[code] && hasMoreLetters(*driver) ? 1 : 0;
}
