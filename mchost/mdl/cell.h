/* Cell libraries: files of cells (.cel), containers of the same kind as design files. One library is attached at a
 * time.
 *
 * A cell has a name, which no other cell of its library has in any case of its letters, a description and elements; its
 * origin is (0, 0, 0). Cells are read when the library is attached: what becomes of its file later changes nothing
 * until it is attached again. Cell headers and their names: element.h. */
#ifndef HOST_MDL_CELL_H
#define HOST_MDL_CELL_H

#include "elmdscr.h"

/* Attaches a library in place of the one before; its full name goes to tcbP->cellLibraryName and to `fullName` (256
 * bytes, may be null). `name` is a path: no folders are searched, and letter case doesn't count where no file has it as
 * it stands. The last three arguments are taken and not used; the library gives 0, 1, 2. MDL_ERROR, with a line in the
 * message centre and the library before still attached, when the file isn't there, isn't a cell library, is damaged, or
 * has a full name of more than 255 characters. */
MDL_EXPORT int mdlCell_attachLibraryEx(char *fullName, const char *name, int32_t reserved1, int32_t reserved2,
                                       int32_t reserved3) MDL_NOEXCEPT;
/* Detaches the library, so that none is attached. MDL_ERROR when none was. */
MDL_EXPORT int mdlCell_detachLibrary(void) MDL_NOEXCEPT;

/* A new descriptor of a cell of the attached library: its header (type 2) with name, description and range, its
 * elements as components. It is in UOR of the active model: a master unit of the library is a master unit there. Levels
 * go by their names; one that the active model hasn't is made with the symbology that it has in the library, and
 * belongs into the design file once an element on it is stored. The header is of the active model's kind, 2D or 3D, as
 * are the headers in it. With no design file open UOR and kind are the library's, and levels those of the session
 * (level.h). `option` makes no difference in this host; all `reserved` are null. MDL_ERROR, with *edPP null, when no
 * library is attached or it has no such cell. */
MDL_EXPORT int mdlCell_getElmDscr(ElementDescr **edPP, const void *reserved1, const void *reserved2,
                                  const void *reserved3, const void *reserved4, const void *reserved5,
                                  const void *reserved6, const void *reserved7, const void *reserved8, int32_t option,
                                  const wchar_t *name, const void *reserved9) MDL_NOEXCEPT;

/* ---- the cells of a library ---- */

typedef struct MdlCellLibrary MdlCellLibrary;
typedef struct MdlModelIterator MdlModelIterator;
typedef struct MdlModelItem MdlModelItem;

/* The attached library, when `fileName` is its full name. MDL_ERROR, with *libraryPP null, when it isn't or none is
 * attached. The host's own; harmless, and without cells, once the library is detached. */
MDL_EXPORT int mdlCell_getLibraryObject(MdlCellLibrary **libraryPP, const char *fileName) MDL_NOEXCEPT;
/* An iterator over what the library holds, in its order; to be freed. Null when out of memory. */
MDL_EXPORT MdlModelIterator *mdlModelIterator_create(MdlCellLibrary *library) MDL_NOEXCEPT;
/* Whether only cells are given. A library of this host holds nothing else. */
MDL_EXPORT int mdlModelIterator_setAcceptCellsOnly(MdlModelIterator *iterator, int32_t cellsOnly) MDL_NOEXCEPT;
/* The next item, valid until the following one is asked for or the iterator is freed; null at the end. */
MDL_EXPORT MdlModelItem *mdlModelIterator_getNext(MdlModelIterator *iterator) MDL_NOEXCEPT;
MDL_EXPORT void mdlModelIterator_free(MdlModelIterator *iterator) MDL_NOEXCEPT;
/* Name and description, at most size - 1 characters and a NUL; a description that the cell hasn't is empty. MDL_ERROR
 * when the text was cut. */
MDL_EXPORT int mdlModelItem_getName(wchar_t *name, int32_t size, const MdlModelItem *item) MDL_NOEXCEPT;
MDL_EXPORT int mdlModelItem_getDescription(wchar_t *description, int32_t size, const MdlModelItem *item) MDL_NOEXCEPT;

#endif
