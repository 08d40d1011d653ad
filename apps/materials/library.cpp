#include "library.h"

#include <algorithm>

#include <mchost/mdl/cell.h>
#include <mchost/mdl/files.h>
#include <mchost/mdl/system.h>
#include <mclib/mclib.h>
#include <mclib/app/tell.hpp>

namespace materials {

namespace {

constexpr const char *searchVariable = "MC_CELL", *extension = ".cel";

std::string searchPath() {
    char path[1024] = "";
    mclibCell_getMcCellPath(path, sizeof path);
    return path;
}

bool isHere(const std::string& name, char* found) {
    return mdlFile_find(found, name.c_str(), nullptr, extension) == MDL_SUCCESS;
}

// Without the variable the library looks for names in its own folder alone, and a path isn't found.
void lookIn(const std::string& folders) {
    constexpr int userLevel = 4;
    mdlSystem_defineCfgVar(searchVariable, folders.c_str(), userLevel);
}

}  // namespace

std::optional<std::string> fullLibraryName(const std::string& name) {
    char found[512] = "";
    if (!isHere(name, found) && mclibCell_getCellPathAndName(found, name.c_str()) != MCLIB_SUCCESS) {
        std::string folders = searchPath();
        std::ranges::replace(folders, '\\', '/');
        mcapp::fail(name + ": there is no such cell library, neither as it stands nor in " + folders);
        return {};
    }
    int32_t kind = MDL_FILE_OTHER;
    if (mdlFile_getKind(&kind, found) != MDL_SUCCESS) return {};
    if (kind != MDL_FILE_CELL_LIBRARY) {
        mcapp::fail(name + ": this is no cell library; mccel makes one of a description");
        return {};
    }
    lookIn(searchPath());
    return found;
}

std::optional<std::string> findableLibrary(const std::string& name) {
    if (!fullLibraryName(name)) return {};
    if (!isHere(name, nullptr)) return name;
    const size_t separator = name.find_last_of("/\\");
    lookIn((separator == name.npos ? "./" : name.substr(0, separator + 1)) + ";" + searchPath());
    return separator == name.npos ? name : name.substr(separator + 1);
}

Cell cellOf(const std::string& library, const char* name, const std::string& purpose) {
    constexpr int option = 1;
    ElementDescr* cell = nullptr;
    if (mclibCell_loadCellLibraryIfNeeded(library.c_str()) != MCLIB_SUCCESS) {
        mcapp::fail(library + ": the cell library can't be read");
        return nullptr;
    }
    if (mdlCell_getElmDscr(&cell, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, option,
                           mclibUtil_convertToUnicodeText(name), nullptr) != MDL_SUCCESS) {
        mcapp::fail(library + ": the library has no cell " + name + ", which " + purpose);
    }
    return Cell(cell);
}

}  // namespace materials
