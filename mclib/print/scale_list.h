// The list of plot scales, for the files of this room.
#pragma once

#include <cstdint>
#include <string_view>

#include "mclib/print/shared.h"

namespace mc::print {

enum ScaleColumn { scaleName = 0, scaleValue = 1, scaleColumns = 2 };

// Sets the name and, for an empty `value`, the value that follows from it: the number from its third letter on.
bool setScale(ListModel* list, int32_t row, const char* name, const char* value = "");
// The number at the start of a text, as atof reads it.
double numberAtStart(std::string_view text);
// A cell's text; empty where there is none.
const char* scaleCell(int32_t row, ScaleColumn column);
// Writes a number into column 1.
bool setScaleValue(int32_t row, double value);

// Sets activeScale to the value of the active row; 1 where that is none.
void recomputeScale();
// The active scale has become another one than `before`, by more than numbers are compared.
bool scaleDiffersFrom(double before);
// All items that show the scale, in all open dialogs.
void showScaleEverywhere();

// The dialog is open: it shows another list.
void showListInDialog();

extern const DialogHook scaleHooks[];

}  // namespace mc::print
