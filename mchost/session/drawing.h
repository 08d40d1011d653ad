// What the rooms below that of models ask of the drawing that is open; told by that room. Each as the call of the host
// with that name, but where it says what it does.
#pragma once

#include "mchost/mdl/types.h"

namespace host {

struct ViewTable;  // mchost/space/view.h

struct DrawingCalls {
    ModelRef* (*getActive)();
    double (*getUorPerMaster)(ModelRef* model);
    int (*lineStyleFromName)(int32_t* numberP, const char* name, ModelRef* model);
    ViewTable* (*getViews)();  // of the active model; null while no design file is open
    void (*finishCommand)();   // stores what was changed in any file
    int (*closeDesignFile)();
};
void setDrawingCalls(const DrawingCalls& calls);
const DrawingCalls& drawing();

}  // namespace host
