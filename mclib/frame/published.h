// What dialogs reach of an application's block, as mgdP.
#pragma once

#include "mclib/frame/global_data.h"
#include "mclib/frame/struct_fields.h"

namespace mc {

inline constexpr StructField fileDialogFields[] = {
    MCLIB_FIELD(FileDialogBlock, pageInfoChoice), MCLIB_FIELD(FileDialogBlock, pageChoice),
    MCLIB_FIELD(FileDialogBlock, printRange),     MCLIB_FIELD(FileDialogBlock, firstPage),
    MCLIB_FIELD(FileDialogBlock, lastPage),       MCLIB_FIELD(FileDialogBlock, pagesPerRow),
    MCLIB_FIELD(FileDialogBlock, plotCount),      MCLIB_FIELD(FileDialogBlock, plotPlaced),
    MCLIB_FIELD(FileDialogBlock, filter),         MCLIB_FIELD(FileDialogBlock, directory),
    MCLIB_FIELD(FileDialogBlock, excelTemplate),  MCLIB_FIELD(FileDialogBlock, excelSheet),
    MCLIB_FIELD(FileDialogBlock, decimalSign),    endOfFields,
};

inline constexpr StructField globalDataFields[] = {
    MCLIB_FIELD(GlobalData, applicationName),
    MCLIB_FIELD(GlobalData, currentPageName),
    MCLIB_FIELD(GlobalData, pageAngle),
    MCLIB_FIELD(GlobalData, pageScale),
    MCLIB_FIELD(GlobalData, selectedAttributeId),
    MCLIB_FIELD(GlobalData, placeForPlot),
    MCLIB_FIELD(GlobalData, previewPage),
    MCLIB_FIELD(GlobalData, printerRow),
    MCLIB_FIELD(GlobalData, exportToExcel),
    MCLIB_FIELD(GlobalData, pageInfoPage),
    MCLIB_FIELD(GlobalData, selectedRow),
    MCLIB_FIELD(GlobalData, printDevice),
    MCLIB_POINTER_FIELD(GlobalData, fileDialogP, "FileDialogBlock"),
    endOfFields,
};

}  // namespace mc
