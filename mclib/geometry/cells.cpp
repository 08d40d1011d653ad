#include "mclib/geometry/cells.h"

#include <algorithm>
#include <cstring>
#include <cwchar>
#include <string>
#include <string_view>

#include "mchost/mdl/cell.h"
#include "mchost/mdl/dialog.h"
#include "mchost/mdl/files.h"
#include "mchost/mdl/lists.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/system.h"
#include "mchost/mdl/text.h"
#include "mchost/mdl/transform.h"
#include "mclib/frame/letters.h"
#include "mclib/frame/util.h"
#include "mclib/geometry/elmdscr.h"

namespace mc {

namespace {

constexpr const char* searchVariable = "MC_CELL";
constexpr const char* productVariable = "MC_DIR";
constexpr const char* defaultFolder = "c:\\markacad\\cell\\";
constexpr const char* cellFolder = "cell\\";
constexpr const char* extension = "cel";
constexpr int pathBytes = 256;

bool hasSearchPath() {
    return mdlSystem_getenv(nullptr, searchVariable, 0) == MDL_SUCCESS;
}

// The folder of cell libraries where no search path is defined.
std::string folder() {
    char product[pathBytes + 1] = "";
    if (mdlSystem_getenv(product, productVariable, sizeof product) != MDL_SUCCESS) return defaultFolder;
    return std::string(product) + cellFolder;
}

void copyCut(char* to, int size, const std::string& text) {
    if (size > 0) to[text.copy(to, static_cast<size_t>(size) - 1)] = '\0';
}

std::string attachedFile() {
    char name[pathBytes], suffix[pathBytes];
    mdlFile_parseName(tcbP->cellLibraryName, nullptr, nullptr, name, suffix);
    return std::string(name) + "." + suffix;
}

// ---- lists ----

struct Iteration {
    explicit Iteration(MdlCellLibrary* library) : cells(mdlModelIterator_create(library)) {
        mdlModelIterator_setAcceptCellsOnly(cells, 1);
    }
    ~Iteration() { mdlModelIterator_free(cells); }
    Iteration(const Iteration&) = delete;
    Iteration& operator=(const Iteration&) = delete;

    MdlModelIterator* cells;
};

constexpr int wideCharacters = 512, narrowBytes = 1024;

void setMember(StringList* list, int32_t index, const wchar_t* text) {
    char narrow[narrowBytes];
    mdlCnv_convertUnicodeToMultibyte(text, static_cast<int>(std::wcslen(text)), narrow, narrowBytes);
    mdlStringList_setMember(list, index, narrow, nullptr);
}

// False when the list is full.
bool addRow(StringList* list, int32_t index, int membersPerRow, const wchar_t* name, const MdlModelItem* item) {
    if (mdlStringList_insertMember(&index, list, index, membersPerRow) != MDL_SUCCESS) return false;
    setMember(list, index, name);
    wchar_t description[wideCharacters] = L"";
    mdlModelItem_getDescription(description, wideCharacters, item);
    if (*description != L'\0') setMember(list, index + 1, description);
    return true;
}

// ---- drawing ----

enum CrossMode { crossVertical = 1, crossHorizontal = 2, crossBoth = 3 };

void drawCross(MdlDialog* window, const DialogRect& rect, int crossMode) {
    if (crossMode < crossVertical || crossMode > crossBoth) return;
    constexpr int crossColor = 7;
    mdlWindow_lineStyleSet(window, 0, mdlWindow_fixedColorIndexGet(window, crossColor), 0, 1);
    const int x = (rect.left + rect.right) / 2, y = (rect.top + rect.bottom) / 2;
    if (crossMode & crossVertical) mdlWindow_lineDraw(window, x, rect.top, x, rect.bottom);
    if (crossMode & crossHorizontal) mdlWindow_lineDraw(window, rect.left, y, rect.right, y);
}

// ---- joining ----

int appendToCell(MSElementBuffer* element, void* cell, int32_t, int32_t, ElementDescr*) {
    if (mdlElement_getType(element) == MDL_CELL_HEADER) return MDL_SUCCESS;
    return mdlElmdscr_appendElement(static_cast<ElementDescr*>(cell), element);
}

// Whether the descriptor is the cell or a part of it, to which appending would never end.
bool isWithin(const ElementDescr* part, const ElementDescr* cell) {
    while (part && part != cell) part = part->parent;
    return part;
}

// Where a cell header keeps its origin. Headers are 3D in a 3D file; one of the other kind, which a builder can make in
// any file, is told by its length, since the other place would lie in its axes or behind its end.
constexpr size_t origin3dAt = 232, origin2dAt = 176;

void putOrigin(MSElementBuffer* header, const Point3d& origin) {
    const bool is3d = size_t{header->head.attributeOffset} * 2 >= origin3dAt + sizeof origin;
    if (is3d)
        std::memcpy(header->bytes + origin3dAt, &origin, sizeof origin);
    else
        std::memcpy(header->bytes + origin2dAt, &origin, 2 * sizeof(double));
}

void undoRotation(MSElementBuffer* header) {
    Point3d origin;
    RotMatrix matrix;
    if (mdlCell_extract(&origin, nullptr, header) != MDL_SUCCESS) return;
    if (mdlCell_extract(nullptr, &matrix, header) == MDL_SUCCESS &&
        mdlRMatrix_getInverse(&matrix, &matrix) == MDL_SUCCESS) {
        Transform back;
        mdlTMatrix_fromRMatrix(&back, &matrix);
        if (mdlElement_transform(header, header, &back) != MDL_SUCCESS) return;
    }
    putOrigin(header, origin);
}

}  // namespace

}  // namespace mc

using namespace mc;

int mclibCell_getMcCellPath(char* pathP, int size) {
    if (mdlSystem_getenv(pathP, searchVariable, size) != MDL_SUCCESS) copyCut(pathP, size, folder());
    return MCLIB_SUCCESS;
}

int mclibCell_getCellPathAndName(char* pathP, const char* nameP) {
    *pathP = '\0';
    if (hasSearchPath())
        return mdlFile_find(pathP, nameP, searchVariable, extension) == MDL_SUCCESS ? MCLIB_SUCCESS : MCLIB_ERROR;
    const std::string inFolder = folder();
    if (inFolder.size() >= pathBytes) return MCLIB_ERROR;
    const std::string path = inFolder + nameP;
    std::memcpy(pathP, path.c_str(), path.size() + 1);
    return mdlFile_find(nullptr, pathP, nullptr, nullptr) == MDL_SUCCESS ? MCLIB_SUCCESS : MCLIB_ERROR;
}

int mclibCell_loadCellLibraryIfNeeded(const char* nameP) {
    if (*nameP == '\0' || lowered(attachedFile()) == lowered(nameP)) return MCLIB_SUCCESS;
    std::string path = nameP;  // a file that isn't found is attached by this name, so that the host tells it
    if (hasSearchPath()) {
        char found[pathBytes];
        if (mdlFile_find(found, nameP, searchVariable, extension) == MDL_SUCCESS) path = found;
    } else {
        path = folder() + nameP;
    }
    char attached[pathBytes];
    return mdlCell_attachLibraryEx(attached, path.c_str(), 0, 1, 2);
}

int mclibCell_getStringlistFromLib(StringList* listP, int membersPerRow) {
    if (membersPerRow < 2) return MCLIB_ERROR;
    MdlCellLibrary* library = nullptr;
    if (mdlCell_getLibraryObject(&library, tcbP->cellLibraryName) != MDL_SUCCESS) return 0;
    const Iteration iteration(library);
    int rows = 0;
    while (const MdlModelItem* item = mdlModelIterator_getNext(iteration.cells)) {
        wchar_t name[wideCharacters];
        mdlModelItem_getName(name, wideCharacters, item);
        if (lowered(mclibUtil_convertToMultibyteText(name)) == "default") continue;
        if (!addRow(listP, rows * membersPerRow, membersPerRow, name, item)) break;
        ++rows;
    }
    return rows;
}

int mclibCell_getFilePosFromStringlist(void) {
    toolSubsystem_printf(
        "mclibCell_getFilePosFromStringlist er ikke n\xf8"
        "dvendig i V8.\n");
    return MCLIB_ERROR;
}

int mclibCell_drawCell(const char* nameP, MdlDialog* windowP, const MdlItem* itemP, int inset, int crossMode) {
    DialogRect item;
    mdlDialog_itemRect(&item, itemP);
    mdlDialog_rectDrawBeveled(windowP, &item, 0, 1);

    ElementDescr* cell = nullptr;
    const wchar_t* name = mclibUtil_convertToUnicodeText(nameP);
    if (mdlCell_getElmDscr(&cell, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 1, name,
                           nullptr) != MDL_SUCCESS) {
        return MCLIB_ERROR;
    }
    DialogRect rect = item;
    mdlDialog_rectInset(&rect, 2, 2);
    mdlDialog_rectFill(windowP, &rect, 0);
    if (inset > 0) mdlDialog_rectInset(&rect, inset, inset);
    mclibElemDscr_drawElementDescr(windowP, &rect, cell, nullptr, -1);
    drawCross(windowP, item, crossMode);
    mdlElmdscr_freeAll(&cell);
    return MCLIB_SUCCESS;
}

int mclibCell_mergeCells(ElementDescr* cellEdP, ElementDescr* firstEdP, ElementDescr* secondEdP) {
    if (isWithin(firstEdP, cellEdP) || isWithin(secondEdP, cellEdP)) return MCLIB_ERROR;
    for (ElementDescr* part : {firstEdP, secondEdP}) {
        if (part && mdlElmdscr_operation(part, appendToCell, cellEdP, MDL_DESCR_ALL) != MDL_SUCCESS) return MCLIB_ERROR;
    }
    const mdl::CurrTransScope uor(mdl::CurrTransScope::Begin::uor);
    undoRotation(cellEdP->element);
    return MCLIB_SUCCESS;
}
