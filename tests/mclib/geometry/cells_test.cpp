// Cell libraries of the family: found, attached, listed, drawn, and descriptors joined into a cell.
#include "mclib/geometry/cells.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <filesystem>

#include "mchost/dialog/dialog.h"
#include "mchost/dialog/registry.h"
#include "mchost/mdl/cell.h"
#include "mchost/mdl/dialog.h"
#include "mchost/mdl/lists.h"
#include "mchost/mdl/resource.h"
#include "mchost/mdl/system.h"
#include "mchost/mdl/transform.h"
#include "mchost/resource/container.h"
#include "tests/support/cell_file.h"
#include "tests/support/drawn.h"
#include "tests/support/library_fixture.h"

namespace {

void define(const char* name, const std::string& value) {
    ASSERT_EQ(mdlSystem_defineCfgVar(name, value.c_str(), 4), MDL_SUCCESS);
}

std::string cellPath(int size = 256) {
    char buffer[512];
    EXPECT_EQ(mclibCell_getMcCellPath(buffer, size), MCLIB_SUCCESS);
    return buffer;
}

class NoProductFolder : public SessionTest {};
class CellLibraries : public LibraryTest {
  protected:
    CellLibraries() {
        std::filesystem::create_directories(path("lib"));
        std::filesystem::create_directories(path("drive_c/mc/cell"));
    }
    // Libraries of one cell that tells where it lies.
    void makeLibrary(const std::string& file, const wchar_t* cell) { CellFile().add(cell).write(path(file)); }
    std::wstring attachedCell() {
        MdlCellLibrary* library = nullptr;
        if (mdlCell_getLibraryObject(&library, tcbP->cellLibraryName) != MDL_SUCCESS) return L"";
        MdlModelIterator* iterator = mdlModelIterator_create(library);
        wchar_t name[64] = L"";
        mdlModelItem_getName(name, 64, mdlModelIterator_getNext(iterator));
        mdlModelIterator_free(iterator);
        return name;
    }
};

TEST_F(NoProductFolder, DefaultFolderComesLast) {
    EXPECT_EQ(cellPath(), "c:\\markacad\\cell\\");
    EXPECT_EQ(cellPath(8), "c:\\mark");
    define("MC_DIR", "d:\\data\\");
    EXPECT_EQ(cellPath(), "d:\\data\\cell\\");
    define("MC_DIR", "d:\\data");
    EXPECT_EQ(cellPath(), "d:\\datacell\\");
    define("MC_CELL", "e:\\a;e:\\b");
    EXPECT_EQ(cellPath(), "e:\\a;e:\\b");
}

TEST_F(CellLibraries, FileIsFoundAlongTheSearchPathOrInTheProductFolder) {
    makeLibrary("lib/roads.cel", L"ALONG");
    makeLibrary("drive_c/mc/cell/roads.cel", L"PRODUCT");
    char found[600];
    EXPECT_EQ(mclibCell_getCellPathAndName(found, "roads.cel"), MCLIB_SUCCESS);
    EXPECT_STREQ(found, "c:\\mc\\cell\\roads.cel");
    EXPECT_EQ(mclibCell_getCellPathAndName(found, "roads"), MCLIB_ERROR);
    EXPECT_EQ(mclibCell_getCellPathAndName(found, "nowhere.cel"), MCLIB_ERROR);
    define("MC_CELL", path("lib"));
    EXPECT_EQ(mclibCell_getCellPathAndName(found, "roads"), MCLIB_SUCCESS);
    EXPECT_THAT(found, testing::EndsWith("roads.cel"));
    EXPECT_EQ(mclibCell_getCellPathAndName(found, "nowhere.cel"), MCLIB_ERROR);
    EXPECT_STREQ(found, "");
    mdlSystem_deleteCfgVar("MC_CELL");
    define("MC_DIR", std::string(254, 'x') + "\\");  // leaves less than the name's room in 256 bytes
    EXPECT_EQ(mclibCell_getCellPathAndName(found, "roads.cel"), MCLIB_ERROR);
    EXPECT_STREQ(found, "");
}

TEST_F(CellLibraries, LibraryIsAttachedUnlessOneOfItsNameIs) {
    makeLibrary("lib/roads.cel", L"ALONG");
    makeLibrary("drive_c/mc/cell/roads.cel", L"PRODUCT");
    makeLibrary(
        "drive_c/mc/cell/\xc3\x86"
        "re.cel",
        L"LETTERS");
    EXPECT_EQ(mclibCell_loadCellLibraryIfNeeded(""), MCLIB_SUCCESS);
    EXPECT_EQ(attachedCell(), L"");
    EXPECT_EQ(mclibCell_loadCellLibraryIfNeeded("roads.cel"), MCLIB_SUCCESS);
    EXPECT_EQ(attachedCell(), L"PRODUCT");
    define("MC_CELL", path("lib"));
    EXPECT_EQ(mclibCell_loadCellLibraryIfNeeded("ROADS.CEL"), MCLIB_SUCCESS);
    EXPECT_EQ(attachedCell(), L"PRODUCT") << "the folder doesn't count";
    mdlCell_detachLibrary();
    EXPECT_EQ(mclibCell_loadCellLibraryIfNeeded("roads.cel"), MCLIB_SUCCESS);
    EXPECT_EQ(attachedCell(), L"ALONG");
    EXPECT_TRUE(front().messages.empty());

    EXPECT_NE(mclibCell_loadCellLibraryIfNeeded("nowhere.cel"), MCLIB_SUCCESS);
    EXPECT_EQ(attachedCell(), L"ALONG");
    ASSERT_EQ(front().messages.size(), 1u);
    EXPECT_THAT(front().messages[0].brief, testing::HasSubstr("nowhere.cel"));
}

TEST_F(CellLibraries, ListHasARowForEachCellButTheDefaultOne) {
    CellFile().add(L"VALVE", L"Gate valve").add(L"DEFAULT", L"x").add(L"B\xd8Y").write(path("drive_c/mc/cell/a.cel"));
    CellFile().add(L"Default").write(path("drive_c/mc/cell/only.cel"));
    StringList* list = mdlStringList_create(0, 1);
    EXPECT_EQ(mclibCell_getStringlistFromLib(list, 3), 0) << "none is attached";
    ASSERT_EQ(mclibCell_loadCellLibraryIfNeeded("only.cel"), MCLIB_SUCCESS);
    EXPECT_EQ(mclibCell_getStringlistFromLib(list, 3), 0);
    ASSERT_EQ(mclibCell_loadCellLibraryIfNeeded("a.cel"), MCLIB_SUCCESS);
    EXPECT_EQ(mclibCell_getStringlistFromLib(list, 1), MCLIB_ERROR);
    EXPECT_EQ(mdlStringList_size(list), 0);
    EXPECT_EQ(mclibCell_getStringlistFromLib(list, 3), 2);
    const char* expected[] = {"VALVE", "Gate valve", "", "B\xd8Y", "", ""};
    ASSERT_EQ(mdlStringList_size(list), 6);
    for (int i = 0; i < 6; ++i) {
        const char* text = nullptr;
        mdlStringList_getMember(&text, nullptr, list, i);
        EXPECT_STREQ(text, expected[i]) << i;
    }
    mdlStringList_destroy(list);

    EXPECT_EQ(mclibCell_getFilePosFromStringlist(), MCLIB_ERROR);
    EXPECT_THAT(front().consoleText, testing::HasSubstr("er ikke n\xc3\xb8"
                                                        "dvendig i V8.\n"));
}

TEST_F(CellLibraries, CellIsDrawnInItsItemWithACross) {
    CellFile().add(L"C", L"", 2, 40).write(path("drive_c/mc/cell/a.cel"));
    ASSERT_EQ(mclibCell_loadCellLibraryIfNeeded("a.cel"), MCLIB_SUCCESS);
    host::ResourceContents contents;
    host::ItemLayout item;
    item.kind = ITEM_GENERIC;
    item.id = 1;
    item.x = 10, item.y = 20, item.width = 100, item.height = 60;
    contents.dialogs[1] = {1, 400, 300, 0, {}, {item}};
    host::writeContainer(path("window.rsc"), contents);
    mdlResource_openFile(nullptr, path("window.rsc").c_str(), MDL_RSC_READ);

    struct Case {
        int inset, crossMode;
        std::vector<std::vector<int32_t>> cross;
    };
    const std::vector<int32_t> vertical{60, 20, 60, 80}, horizontal{10, 50, 110, 50};
    for (const Case& c : {Case{0, 0, {}}, Case{0, 4, {}}, Case{5, 1, {vertical}}, Case{-5, 2, {horizontal}},
                          Case{10, 3, {vertical, horizontal}}}) {
        SCOPED_TRACE(c.crossMode);
        MdlDialog* window = mdlDialog_open(0, 1);
        ASSERT_NE(window, nullptr);
        const MdlItem* drawn = mdlDialog_itemGetByIndex(window, 0);
        ASSERT_EQ(mclibCell_drawCell("C", window, drawn, c.inset, c.crossMode), MCLIB_SUCCESS);
        const auto calls = host::dialogOf(window)->drawing();
        ASSERT_EQ(calls.size(), 4 + c.cross.size());
        EXPECT_EQ(std::get<host::DrawnBevel>(calls[0]).rect.right, 110);
        EXPECT_EQ(std::get<host::DrawnFill>(calls[1]).rect.left, 12) << "the fill isn't inset further";
        const int32_t left = 12 + std::max(c.inset, 0), right = 108 - std::max(c.inset, 0);
        const auto outline = std::get<host::ElementLine>(calls[2]).points;
        EXPECT_EQ(outline[0], left);
        EXPECT_EQ(outline[2], right);
        const auto cross = drawnIn<host::DrawnLine>(*host::dialogOf(window));
        ASSERT_EQ(cross.size(), c.cross.size());
        for (size_t i = 0; i < cross.size(); ++i) EXPECT_EQ(cross[i].points, c.cross[i]);
        mdlWindow_close(window, 0, 1);
    }

    MdlDialog* window = mdlDialog_open(0, 1);
    EXPECT_EQ(mclibCell_drawCell("NONE", window, mdlDialog_itemGetByIndex(window, 0), 0, 3), MCLIB_ERROR);
    const auto calls = host::dialogOf(window)->drawing();
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_TRUE(std::holds_alternative<host::DrawnBevel>(calls[0]));
}

// ---- joining ----

ElementDescr* newCell(int is3d) {
    MSElementBuffer element;
    ElementDescr* ed = nullptr;
    const Point3d origin{3, 4, is3d ? 5.0 : 0.0};
    mdlCell_create(&element, L"CELL", &origin, is3d);
    mdlElmdscr_new(&ed, nullptr, &element);
    return ed;
}

void addLine(ElementDescr* ed, double x) {
    const Point3d ends[] = {{x, 0, 0}, {x, 1, 0}};
    mdlLine_create(dgnBufP, nullptr, ends);
    mdlElmdscr_appendElement(ed, dgnBufP);
}

class MergedCells : public LibraryTest {
  protected:
    void openFile(int is3d) {
        const std::string name = path("f" + std::to_string(is3d) + ".mcd");
        if (!std::filesystem::exists(name)) mdlSystem_createDesignFile(name.c_str(), is3d);
        ASSERT_EQ(mdlSystem_newDesignFile(name.c_str(), 0), MDL_SUCCESS);
    }
};

TEST_F(MergedCells, ElementsOfBothAreAppendedWithoutTheirHeaders) {
    openFile(0);
    ElementDescr *cell = newCell(0), *first = newCell(0), *second = newCell(0), *nested = newCell(0);
    addLine(cell, 1);
    addLine(first, 2);
    addLine(nested, 3);
    mdlElmdscr_appendDscr(first, nested);
    addLine(second, 4);
    ASSERT_EQ(mclibCell_mergeCells(cell, first, second), MCLIB_SUCCESS);
    std::vector<double> places;
    for (const ElementDescr* node = cell->firstChild; node; node = node->next) {
        EXPECT_EQ(mdlElement_getType(node->element), MDL_LINE);
        Point3d ends[2];
        int32_t count = 0;
        mdlLinear_extract(ends, &count, node->element, 2);
        places.push_back(ends[0].x);
    }
    EXPECT_EQ(places, (std::vector<double>{1, 2, 3, 4}));
    EXPECT_EQ(mclibCell_mergeCells(cell, cell, nullptr), MCLIB_ERROR);  // would never end
    EXPECT_EQ(mclibCell_mergeCells(cell, nullptr, cell->firstChild), MCLIB_ERROR);
    EXPECT_EQ(cell->firstChild->next->next->next->next, nullptr);
    for (ElementDescr* ed : {cell, first, second}) mdlElmdscr_freeAll(&ed);
}

TEST_F(MergedCells, HeaderLosesItsRotationAndKeepsItsOrigin) {
    struct Case {
        int file3d, header3d;
    };
    for (const Case& c : {Case{0, 0}, Case{1, 1}, Case{1, 0}, Case{0, 1}}) {
        SCOPED_TRACE(testing::Message() << c.file3d << c.header3d);
        openFile(c.file3d);
        ElementDescr* cell = newCell(c.header3d);
        RotMatrix turn;
        Transform transform;
        mdlRMatrix_fromAngle(&turn, 0.7);
        mdlTMatrix_fromRMatrix(&transform, &turn);
        mdlElmdscr_transform(cell, &transform);
        Point3d before, after;
        RotMatrix matrix;
        mdlCell_extract(&before, nullptr, cell->element);

        mdlCurrTrans_begin();
        mdlCurrTrans_scale(10, 10, 10);
        EXPECT_EQ(mclibCell_mergeCells(cell, nullptr, nullptr), MCLIB_SUCCESS);
        mdlCurrTrans_end();
        ASSERT_EQ(mdlCell_extract(&after, &matrix, cell->element), MDL_SUCCESS);
        for (int i = 0; i < 9; ++i) EXPECT_NEAR(matrix.form[i / 3][i % 3], i % 4 == 0, 1e-12);
        EXPECT_EQ(after.x, before.x);
        EXPECT_EQ(after.y, before.y);
        EXPECT_EQ(after.z, before.z);
        wchar_t name[16];
        EXPECT_EQ(mdlCell_extractName(name, 16, cell->element), MDL_SUCCESS);
        EXPECT_STREQ(name, L"CELL");
        mdlElmdscr_freeAll(&cell);
    }
}

}  // namespace
