// The list of print devices.
#pragma once

#include "mclib/print/driver.h"

namespace mc::print {

// Numbers of devices are below this. One in between that no device has takes whole jobs and makes nothing of them.
constexpr int mostDevices = 7;
constexpr bool isDevice(int number) {
    return 0 <= number && number < mostDevices;
}

// Null for a number that no device has.
const PrintDriver* driverOf(int number);

}  // namespace mc::print
