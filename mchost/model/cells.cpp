// The attached cell library, and the calls that look into it.
#include "mchost/mdl/cell.h"

#include <algorithm>
#include <cstring>
#include <cwchar>
#include <memory>

#include "mchost/base/existing_path.h"
#include "mchost/base/guard.h"
#include "mchost/base/paths.h"
#include "mchost/mdl/system.h"
#include "mchost/model/cell_library.h"
#include "mchost/model/container.h"
#include "mchost/model/model_ref.h"
#include "mchost/model/recent_libraries.h"
#include "mchost/session/owned_state.h"

struct MdlCellLibrary {
    std::shared_ptr<const host::CellLibrary> library;  // null when none is attached
};

struct MdlModelItem {
    host::CellLibrary::Cell cell;
};

// Holds its library, so that another one may be attached meanwhile.
struct MdlModelIterator {
    std::shared_ptr<const host::CellLibrary> library;
    size_t next = 0;
    MdlModelItem item = {};
};

namespace host {
namespace {

MdlCellLibrary& attached() {
    return sessionState<MdlCellLibrary>();
}

void attach(std::shared_ptr<const CellLibrary> library) {
    const std::string name = library ? hostName(library->path()) : std::string();
    attached().library = std::move(library);
    std::memcpy(tcbP->cellLibraryName, name.c_str(), name.size() + 1);
}

std::shared_ptr<const CellLibrary> load(const char* name) {
    if (*name == '\0') throw FileProblem("no name was given. Give the name of a cell library (.cel).");
    const std::string named = fullPath(name);
    const std::string path = existingPath(named).value_or(named);
    if (hostName(path).size() >= sizeof tcbP->cellLibraryName) {
        throw FileProblem("its full name is longer than 255 characters. Move it to a folder with a shorter name.");
    }
    return sessionState<RecentLibraries>().load(path);
}

int copyText(wchar_t* to, int32_t size, const std::wstring& text) {
    if (!to || size < 1) return MDL_ERROR;
    const size_t copied = std::min(text.size(), static_cast<size_t>(size) - 1);
    std::wmemcpy(to, text.data(), copied);
    to[copied] = L'\0';
    return copied == text.size() ? int{MDL_SUCCESS} : int{MDL_ERROR};
}

}  // namespace
}  // namespace host

using namespace host;

int mdlCell_attachLibraryEx(char* fullName, const char* name, int32_t, int32_t, int32_t) noexcept {
    const char* given = name ? name : "";
    return withFile("attach the cell library", given, [&] {
        attach(load(given));
        if (fullName) std::strcpy(fullName, tcbP->cellLibraryName);
    });
}

int mdlCell_detachLibrary(void) noexcept {
    return guarded<int>(MDL_ERROR, []() -> int {
        if (!attached().library) return MDL_ERROR;
        attach(nullptr);
        return MDL_SUCCESS;
    });
}

int mdlCell_getElmDscr(ElementDescr** edPP, const void*, const void*, const void*, const void*, const void*,
                       const void*, const void*, const void*, int32_t, const wchar_t* name, const void*) noexcept {
    if (!edPP) return MDL_ERROR;
    *edPP = nullptr;
    return guarded(int{MDL_ERROR}, [&]() -> int {
        if (!attached().library || !name) return MDL_ERROR;
        const CellLibrary::Cell* cell = attached().library->find(name);
        if (!cell) return MDL_ERROR;
        *edPP = attached().library->read(*cell, openPlace(nullptr));
        return *edPP ? int{MDL_SUCCESS} : int{MDL_ERROR};
    });
}

int mdlCell_getLibraryObject(MdlCellLibrary** libraryPP, const char* fileName) noexcept {
    if (!libraryPP) return MDL_ERROR;
    *libraryPP = nullptr;
    return guarded<int>(MDL_ERROR, [&]() -> int {
        const bool isAttached = attached().library && fileName && std::strcmp(fileName, tcbP->cellLibraryName) == 0;
        if (!isAttached) return MDL_ERROR;
        *libraryPP = &attached();
        return MDL_SUCCESS;
    });
}

MdlModelIterator* mdlModelIterator_create(MdlCellLibrary* library) noexcept {
    if (!library) return nullptr;
    return guarded<MdlModelIterator*>(nullptr, [&] { return new MdlModelIterator{library->library}; });
}

int mdlModelIterator_setAcceptCellsOnly(MdlModelIterator* iterator, int32_t) noexcept {
    return iterator ? int{MDL_SUCCESS} : int{MDL_ERROR};
}

MdlModelItem* mdlModelIterator_getNext(MdlModelIterator* iterator) noexcept {
    if (!iterator || !iterator->library) return nullptr;
    const auto& cells = iterator->library->cells();
    if (iterator->next >= cells.size()) return nullptr;
    return guarded<MdlModelItem*>(nullptr, [&] {
        iterator->item = {cells[iterator->next]};
        ++iterator->next;
        return &iterator->item;
    });
}

void mdlModelIterator_free(MdlModelIterator* iterator) noexcept {
    delete iterator;
}

int mdlModelItem_getName(wchar_t* name, int32_t size, const MdlModelItem* item) noexcept {
    return item ? copyText(name, size, item->cell.name) : int{MDL_ERROR};
}

int mdlModelItem_getDescription(wchar_t* description, int32_t size, const MdlModelItem* item) noexcept {
    return item ? copyText(description, size, item->cell.description) : int{MDL_ERROR};
}
