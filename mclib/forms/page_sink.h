// Where the values of a form go when an application makes a page of them: into a descriptor, for the screen, the
// drawing and paper, or into a sheet.
#pragma once

#include "mclib/forms/forms.h"

namespace mc::forms {

// The arguments of mclibMatList_generatePageElementDescr.
struct FormPage {
    const char *cellName, *library;
    ElementDescr** descr;
    FormData* form;
    int cellOption;
};

struct PageSink {
    int (*page)(const FormPage& page);  // its result is the exported call's
    void (*end)();                      // no more pages come; null for nothing to do
};
extern const PageSink descriptorSink, sheetSink;

// That of the current application.
const PageSink& currentSink();

}  // namespace mc::forms
