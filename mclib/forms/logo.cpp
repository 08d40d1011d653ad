#include "mclib/forms/logo.h"

#include "mclib/forms/form_cell.h"
#include "mclib/frame/text_buffer.h"

namespace {

// The last one set decides for all applications, as long as the library is loaded.
struct LogoNames {
    char cell[256];
    char library[256];
};
LogoNames logoNames;

}  // namespace

namespace forms {

void setLogo(const char* cellName, const char* library) {
    copyText(logoNames.cell, cellName ? cellName : "");
    copyText(logoNames.library, library ? library : "");
}

int makeLogo(int, char*, ElementDescr** newDescr, int, double, double) {
    constexpr int cellOption = 1;
    return getFormCell(newDescr, logoNames.cell, logoNames.library, cellOption);
}

}  // namespace forms
