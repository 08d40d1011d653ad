// The two blocks of the print folder that all applications share, and what dialogs reach of them. Internal. Start-up
// makes both blocks, zero-filled, with the first application; null before.
#pragma once

#include "mclib/frame/room.h"
#include "mclib/frame/struct_fields.h"
#include "mclib/print/scale.h"
#include "mclib/print/setup.h"

extern mclibPrinterSetupData* mclibpsd;
extern mclibPlotScale* mcScaleP;

namespace mc::print {
// Whether one of PRINT_DEVICE_... holds for the device of the set-up. A number that no device has counts as one whose
// files go to printers.
bool setupDeviceIs(uint32_t trait);
}  // namespace mc::print

namespace mc {

// Fills the scale list at start-up: that of the file that MC_PLOTSCALES names, else the default scales, the first one
// active. False when out of memory.
bool loadPlotScales();

static_assert(sizeof(mclibPrinterSetupData) == 840 && offsetof(mclibPrinterSetupData, pageWidth) == 8);
static_assert(offsetof(mclibPrinterSetupData, orientation) == 56 && offsetof(mclibPrinterSetupData, printerName) == 68);
static_assert(offsetof(mclibPrinterSetupData, fileName) == 323 && offsetof(mclibPrinterSetupData, fileOnly) == 580);
static_assert(offsetof(mclibPrinterSetupData, plotterFile) == 584);

inline constexpr StructField printerSetupFields[] = {
    MCLIB_FIELD(mclibPrinterSetupData, pageSize),
    MCLIB_FIELD(mclibPrinterSetupData, pageWidth),
    MCLIB_FIELD(mclibPrinterSetupData, pageHeight),
    MCLIB_FIELD(mclibPrinterSetupData, marginLeft),
    MCLIB_FIELD(mclibPrinterSetupData, marginRight),
    MCLIB_FIELD(mclibPrinterSetupData, marginTop),
    MCLIB_FIELD(mclibPrinterSetupData, marginBottom),
    MCLIB_FIELD(mclibPrinterSetupData, orientation),
    MCLIB_FIELD(mclibPrinterSetupData, deviceType),
    MCLIB_FIELD(mclibPrinterSetupData, copies),
    MCLIB_FIELD(mclibPrinterSetupData, printerName),
    MCLIB_FIELD(mclibPrinterSetupData, fileName),
    MCLIB_FIELD(mclibPrinterSetupData, fileOnly),
    MCLIB_FIELD(mclibPrinterSetupData, plotterFile),
    endOfFields,
};

inline constexpr StructField plotScaleFields[] = {
    MCLIB_FIELD(mclibPlotScale, activeIndex),
    MCLIB_FIELD(mclibPlotScale, activeScale),
    endOfFields,
};

extern const Room printRoom;

}  // namespace mc
