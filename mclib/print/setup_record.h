// The printer set-up as the user's preference file holds it, told byte by byte and used without a file.
#pragma once

#include "mclib/frame/stored_layout.h"
#include "mclib/print/setup.h"

namespace mc::print {

// Resources of the preference file. The older form, which ends with fileOnly, is read but not written any more.
enum { SETUP_TYPE = 0x50745365, SETUP_ID = 20002, OLDER_TYPE = 0x50725344, OLDER_ID = 20001 };
constexpr size_t setupSize = 840, olderSize = 584;

// `Fields` is StoreFields or LoadFields.
template <class Fields, class Setup>
void setupLayout(Fields fields, Setup& setup) {
    fields.number(0, setup.pageSize);
    fields.number(8, setup.pageWidth);
    fields.number(16, setup.pageHeight);
    fields.number(24, setup.marginLeft);
    fields.number(32, setup.marginRight);
    fields.number(40, setup.marginTop);
    fields.number(48, setup.marginBottom);
    fields.number(56, setup.orientation);
    fields.number(60, setup.deviceType);
    fields.number(64, setup.copies);
    fields.text(68, sizeof setup.printerName, setup.printerName);
    fields.text(323, sizeof setup.fileName, setup.fileName);
    fields.number(580, setup.fileOnly);
    fields.text(584, sizeof setup.plotterFile, setup.plotterFile);
}

}  // namespace mc::print
