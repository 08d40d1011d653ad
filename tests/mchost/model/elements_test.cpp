// Elements in the open design file: adding, rewriting, deleting, and what comes back of it.
#include <cstring>

#include "mchost/mdl/undo.h"
#include "tests/mchost/model/model_fixture.h"

namespace {

// A cell with a line, a text node header of its own with two lines, and a line behind that.
ElementDescr* nestedCell() {
    MSElementBuffer header;
    EXPECT_EQ(mdlCell_create(&header, L"KERB", nullptr, 0), MDL_SUCCESS);
    ElementDescr *cell = nullptr, *inner = nullptr;
    mdlElmdscr_new(&cell, nullptr, &header);
    mdlElmdscr_appendElement(cell, line(0, 0, 10, 10));
    mdlElmdscr_new(&inner, nullptr, &header);
    mdlElmdscr_appendElement(inner, line(1, 1, 2, 2));
    mdlElmdscr_appendElement(inner, line(3, 3, 4, 4));
    mdlElmdscr_appendDscr(cell, inner);
    mdlElmdscr_appendElement(cell, line(20, 20, 30, 30));
    return cell;
}

// Depths and bytes of all elements in order.
std::string outline(const ElementDescr* node, int depth = 0) {
    std::string text;
    for (; node != nullptr; node = node->next) {
        const auto* bytes = reinterpret_cast<const char*>(node->element);
        text += std::to_string(depth) + ":" + std::string(bytes, mdlElement_bytes(node->element)) + "\n";
        text += outline(node->firstChild, depth + 1);
    }
    return text;
}

std::string outlineAt(FilePos position, uint32_t& count) {
    ElementDescr* read = nullptr;
    count = mdlElmdscr_read(&read, position, nullptr);
    const std::string text = outline(read);
    mdlElmdscr_freeAll(&read);
    return text;
}

using Elements = OpenModelTest;

TEST_F(Elements, ComplexElementComesBackWithItsNesting) {
    ElementDescr* cell = nestedCell();
    const FilePos position = mdlElmdscr_add(cell);
    ASSERT_NE(position, 0u);
    EXPECT_EQ(mdlModelRef_getElementCount(nullptr), 1u);
    uint32_t count = 0;
    EXPECT_EQ(outlineAt(position, count), outline(cell));
    EXPECT_EQ(count, 6u);
    reopen();
    EXPECT_EQ(outlineAt(position, count), outline(cell));
    mdlElmdscr_freeAll(&cell);
}

TEST_F(Elements, CellLargerThanAChunkIsKept) {
    MSElementBuffer header;
    mdlCell_create(&header, L"LARGE", nullptr, 0);
    ElementDescr* cell = nullptr;
    mdlElmdscr_new(&cell, nullptr, &header);
    for (uint32_t i = 0; i < 5000; ++i) mdlElmdscr_appendElement(cell, numbered(i));
    const FilePos before = mdlElement_add(numbered(1)), position = mdlElmdscr_add(cell),
                  behind = mdlElement_add(numbered(2));
    reopen();
    uint32_t count = 0;
    EXPECT_EQ(outlineAt(position, count), outline(cell));
    EXPECT_EQ(count, 5001u);
    EXPECT_EQ(numberOf(before), 1u);
    EXPECT_EQ(numberOf(behind), 2u);
    mdlElmdscr_freeAll(&cell);
}

TEST_F(Elements, ChainIsAddedInOrder) {
    ElementDescr* chain = nullptr;
    mdlElmdscr_new(&chain, nullptr, numbered(1));
    mdlElmdscr_appendElement(chain, numbered(2));
    mdlElmdscr_appendElement(chain, numbered(3));
    const FilePos first = mdlElmdscr_add(chain);
    mdlElmdscr_freeAll(&chain);
    EXPECT_EQ(allPositions(), (std::vector<FilePos>{first, first + 1, first + 2}));
    EXPECT_EQ(numberOf(first), 1u);
    EXPECT_EQ(numberOf(first + 2), 3u);
}

TEST_F(Elements, ChainWithADamagedElementIsNotAddedAtAll) {
    ElementDescr* chain = nullptr;
    mdlElmdscr_new(&chain, nullptr, numbered(1));
    mdlElmdscr_appendElement(chain, numbered(2));
    chain->next->element->head.attributeOffset = chain->next->element->head.size + 40;
    EXPECT_EQ(mdlElmdscr_add(chain), 0u);
    EXPECT_EQ(mdlModelRef_getElementCount(nullptr), 0u);
    onlyMessage("isn't stored");
    mdlElmdscr_freeAll(&chain);
}

TEST_F(Elements, RewriteKeepsThePositionAndOtherElements) {
    const FilePos a = mdlElement_add(numbered(1)), b = mdlElement_add(numbered(2));
    ElementDescr* cell = nestedCell();
    EXPECT_EQ(mdlElmdscr_rewrite(cell, a), a);
    EXPECT_EQ(mdlElement_rewrite(numbered(7), b), b);
    EXPECT_EQ(mdlElement_rewrite(numbered(8), 99), 0u);
    reopen();
    uint32_t count = 0;
    EXPECT_EQ(outlineAt(a, count), outline(cell));
    EXPECT_EQ(numberOf(b), 7u);
    EXPECT_EQ(mdlModelRef_getElementCount(nullptr), 2u);
    mdlElmdscr_freeAll(&cell);
}

TEST_F(Elements, RewriteOfAHeaderKeepsItsComponents) {
    ElementDescr* cell = nestedCell();
    const FilePos position = mdlElmdscr_add(cell);
    cell->element->head.graphicGroup = 4711;
    EXPECT_EQ(mdlElement_rewrite(cell->element, position), position);
    uint32_t count = 0;
    EXPECT_EQ(outlineAt(position, count), outline(cell));
    mdlElmdscr_freeAll(&cell);
}

TEST_F(Elements, DeletedComeBackInReverseOrderUnderTheirPositions) {
    for (uint32_t i = 1; i <= 4; ++i) mdlElement_add(numbered(i));
    for (const FilePos position : {2u, 4u, 1u}) EXPECT_EQ(mdlElement_undoableDelete(nullptr, position, 0), MDL_SUCCESS);
    EXPECT_EQ(mdlElement_undoableDelete(nullptr, 2, 0), MDL_ERROR);
    EXPECT_EQ(allPositions(), (std::vector<FilePos>{3}));
    mdlSystem_saveDesignFile();
    EXPECT_EQ(mdlUndo_lastDelete(), 1u);
    EXPECT_EQ(mdlUndo_lastDelete(), 4u);
    EXPECT_EQ(numberOf(4), 4u);
    reopen();
    EXPECT_EQ(allPositions(), (std::vector<FilePos>{1, 3, 4}));
    EXPECT_EQ(mdlUndo_lastDelete(), 0u) << "a deletion is final when the file was closed";
    EXPECT_EQ(mdlElement_add(numbered(5)), 5u) << "positions are never given again";
}

TEST_F(Elements, RewritesAndDeletionsAreTakenBackLastFirst) {
    for (uint32_t i = 1; i <= 3; ++i) mdlElement_add(numbered(i));
    EXPECT_EQ(mdlElement_rewrite(numbered(11), 1), 1u);
    EXPECT_EQ(mdlElement_rewrite(numbered(12), 1), 1u);
    EXPECT_EQ(mdlElement_undoableDelete(nullptr, 1, 0), MDL_SUCCESS);
    EXPECT_EQ(mdlElement_rewrite(numbered(13), 2), 2u);
    EXPECT_EQ(mdlUndo_lastDelete(), 1u) << "the rewrite behind it stays";
    EXPECT_EQ(numberOf(1), 12u);
    EXPECT_EQ(numberOf(2), 13u);
    for (const FilePos position : {2u, 1u, 1u, 0u}) EXPECT_EQ(mdlUndo_lastChange(), position);
    EXPECT_EQ(numberOf(1), 1u);
    EXPECT_EQ(numberOf(2), 2u);
}

TEST_F(Elements, PositionOfTheLastElementIsNotGivenAgainAfterItsDeletion) {
    mdlElement_add(numbered(1));
    mdlElement_undoableDelete(nullptr, 1, 0);
    reopen();
    EXPECT_EQ(mdlElement_add(numbered(2)), 2u);
}

TEST_F(Elements, FileGivesBackWhatManyDeletionsLeft) {
    static MSElementBuffer large;
    std::memset(&large, 0x5A, sizeof large);
    large.head = {};
    large.head.type = MDL_APPLICATION_DATA;
    large.head.size = large.head.attributeOffset = 32000;
    large.head.level = 20;
    for (int i = 0; i < 100; ++i) mdlElement_add(&large);
    mdlElement_add(numbered(3));
    mdlSystem_saveDesignFile();
    for (FilePos position = 1; position <= 100; ++position) mdlElement_undoableDelete(nullptr, position, 0);
    close();
    EXPECT_LT(std::filesystem::file_size(file), 300'000u);
    open();
    EXPECT_EQ(allPositions(), (std::vector<FilePos>{101}));
    EXPECT_EQ(numberOf(101), 3u);
    EXPECT_EQ(mdlElement_add(numbered(4)), 102u);
}

TEST_F(Elements, NothingIsReadFromPositionsWithoutAnElement) {
    mdlElement_add(numbered(1));
    static MSElementBuffer element;
    for (const FilePos position : {0u, 2u, UINT32_MAX}) {
        SCOPED_TRACE(position);
        EXPECT_EQ(mdlElement_read(&element, nullptr, position), 0u);
        ElementDescr* read = nullptr;
        EXPECT_EQ(mdlElmdscr_read(&read, position, nullptr), 0u);
        EXPECT_EQ(read, nullptr);
        EXPECT_EQ(mdlElement_undoableDelete(nullptr, position, 0), MDL_ERROR);
    }
}

// Whoever walks components calls itself for each depth, so there is an end to it.
TEST_F(Elements, CellsAreNestedToALimit) {
    MSElementBuffer header;
    ASSERT_EQ(mdlCell_create(&header, L"cell", nullptr, 0), MDL_SUCCESS);
    for (const int depth : {500, 501}) {
        ElementDescr* cell = nullptr;
        mdlElmdscr_new(&cell, nullptr, line(0, 0, 1, 1));
        for (int i = 0; i < depth; ++i) {
            ElementDescr* outer = nullptr;
            mdlElmdscr_new(&outer, nullptr, &header);
            mdlElmdscr_appendDscr(outer, cell);
            cell = outer;
        }
        EXPECT_EQ(mdlElmdscr_add(cell) != 0, depth == 500);
        mdlElmdscr_freeAll(&cell);
    }
    EXPECT_NE(onlyMessage("nested deeper").find("500"), std::string::npos);
    reopen();
    EXPECT_EQ(mdlModelRef_getElementCount(nullptr), 1u);
}

}  // namespace
