// Elements of a model changed through a function, and the scans for descriptors that find them.
#include "mchost/mdl/modify.h"

#include <memory>

#include "mchost/mdl/bitmask.h"
#include "tests/mchost/model/model_fixture.h"

namespace {

using Modify = OpenModelTest;

// Answers with the number that the element's graphic group asks for.
int byNumber(MSElementBuffer* element, void* seen, ModelRef* model, ElementDescr*, ElementDescr** newDescrPP) {
    if (seen) static_cast<std::vector<uint32_t>*>(seen)->push_back(element->head.graphicGroup);
    const int answer = static_cast<int>(element->head.graphicGroup % 100);
    element->head.graphicGroup += 100;
    if (answer == MDL_MODIFY_REPLACE_DESCR) {
        mdlElmdscr_new(newDescrPP, model, element);
        mdlElmdscr_appendElement(*newDescrPP, element);
    }
    return answer;
}

FilePos addCell(std::initializer_list<uint32_t> numbers, LevelId level = 1) {
    mdlCell_create(dgnBufP, L"CELL", nullptr, 0);
    ElementDescr* cell = nullptr;
    mdlElmdscr_new(&cell, nullptr, dgnBufP);
    for (const uint32_t number : numbers) mdlElmdscr_appendElement(cell, numbered(number, level));
    const FilePos position = mdlElmdscr_add(cell);
    mdlElmdscr_freeAll(&cell);
    return position;
}

std::vector<uint32_t> numbersIn(FilePos position) {
    ElementDescr* ed = nullptr;
    std::vector<uint32_t> numbers;
    if (!mdlElmdscr_read(&ed, position, nullptr)) return numbers;
    for (const ElementDescr* part = ed->firstChild; part; part = part->next)
        numbers.push_back(part->element->head.graphicGroup);
    mdlElmdscr_freeAll(&ed);
    return numbers;
}

TEST_F(Modify, AnswerDecidesWhatBecomesOfAnElement) {
    const auto modified = [](uint32_t number) {
        const FilePos position = mdlElement_add(numbered(number));
        const int changes = mdlModify_elementSingle(nullptr, position, MDL_MODIFY_NO_HEADERS, 0, byNumber, nullptr, 0);
        return std::pair(changes, numberOf(position));
    };
    EXPECT_EQ(modified(0), std::pair(0, 0u));
    EXPECT_EQ(modified(1), std::pair(1, 101u));
    EXPECT_EQ(modified(3), std::pair(0, 3u));
    const FilePos removed = mdlElement_add(numbered(2));
    EXPECT_EQ(mdlModify_elementSingle(nullptr, removed, MDL_MODIFY_NO_HEADERS, 0, byNumber, nullptr, 0), 1);
    EXPECT_EQ(mdlElement_read(dgnBufP, nullptr, removed), 0u);
    const FilePos next = mdlElement_add(numbered(0)) + 1;
    EXPECT_EQ(modified(16), std::pair(1, 116u));
    EXPECT_EQ(numberOf(next + 1), 116u);  // the second element of the replacement, behind
    EXPECT_EQ(mdlModify_elementSingle(nullptr, 4711, MDL_MODIFY_NO_HEADERS, 0, byNumber, nullptr, 0), 0);
}

TEST_F(Modify, ComponentsOfAHeaderAreAskedForOneByOne) {
    const FilePos cell = addCell({1, 0, 2, 16, 5});
    std::vector<uint32_t> seen;
    EXPECT_EQ(mdlModify_elementSingle(nullptr, cell, MDL_MODIFY_NO_HEADERS, 0, byNumber, &seen, 0), 3);
    EXPECT_EQ(seen, (std::vector<uint32_t>{1, 0, 2, 16, 5}));
    EXPECT_EQ(numbersIn(cell), (std::vector<uint32_t>{101, 0, 116, 116, 5}));
}

struct Found {
    std::vector<FilePos> positions;
    size_t most = SIZE_MAX;
};
int note(ElementDescr* ed, void* userArg, ScanCriteria*) {
    auto& found = *static_cast<Found*>(userArg);
    found.positions.push_back(ed->filePos);
    mdlModify_elementSingle(ed->model, ed->filePos, MDL_MODIFY_NO_HEADERS, 0, byNumber, nullptr, 0);
    return found.positions.size() == found.most ? 7 : 0;
}

TEST_F(Modify, ScanForDescriptorsFindsByLevelsAndLooksInsideWhenAsked) {
    mdlElement_add(numbered(1, 1));
    mdlElement_add(numbered(4, 2));
    mdlElement_add(numbered(3, 3));
    addCell({1, 1}, 3);
    addCell({1}, 2);
    std::unique_ptr<MdlBitMask, void (*)(MdlBitMask*)> levels(mdlBitMask_create(),
                                                              [](MdlBitMask* mask) { mdlBitMask_free(&mask); });
    mdlBitMask_setBit(levels.get(), 2, 1);
    mdlBitMask_setBit(levels.get(), 0, 1);
    mdlBitMask_setBit(levels.get(), 0, 0);
    const auto scanned = [&](const MdlBitMask* mask, int32_t nested, size_t most, int expected) {
        const ScanHandle scan;
        Found found{{}, most};
        mdlScanCriteria_addSingleElementTypeTest(scan, MDL_LINE);
        mdlScanCriteria_setLevelTest(scan, mask, 1, 0);
        mdlScanCriteria_setReturnType(scan, MDL_SCAN_DESCRIPTORS, 0, nested);
        EXPECT_EQ(mdlScanCriteria_scan(scan, nullptr, nullptr, nullptr), MDL_ERROR);  // no function
        mdlScanCriteria_setElmDscrCallback(scan, note, &found);
        EXPECT_EQ(mdlScanCriteria_scan(scan, nullptr, nullptr, nullptr), expected);
        return found.positions;
    };
    using Positions = std::vector<FilePos>;
    EXPECT_EQ(scanned(levels.get(), 0, 9, 0), (Positions{3}));
    EXPECT_EQ(scanned(levels.get(), 1, 9, 0), (Positions{3, 4}));
    EXPECT_EQ(scanned(nullptr, 1, 2, 7), (Positions{1, 2}));  // the function ends it
    EXPECT_EQ(scanned(nullptr, 1, 9, 0), (Positions{1, 2, 3, 4, 5}));
}

TEST(BitMask, BitsBeyondWhatWasSetAreOff) {
    MdlBitMask* mask = mdlBitMask_create();
    EXPECT_EQ(mdlBitMask_testBit(mask, 1000000), 0);
    EXPECT_EQ(mdlBitMask_setBit(mask, 63, 1), MDL_SUCCESS);
    EXPECT_EQ(mdlBitMask_setBit(mask, MDL_BITMASK_LIMIT, 1), MDL_ERROR);
    MdlBitMask* copy = mdlBitMask_clone(mask);
    mdlBitMask_setBit(mask, 63, 0);
    EXPECT_EQ(mdlBitMask_testBit(mask, 63), 0);
    EXPECT_EQ(mdlBitMask_testBit(copy, 63), 1);
    EXPECT_EQ(mdlBitMask_testBit(copy, 62) + mdlBitMask_testBit(copy, 64) + mdlBitMask_testBit(nullptr, 0), 0);
    mdlBitMask_free(&mask);
    mdlBitMask_free(&copy);
    EXPECT_EQ(mask, nullptr);
}

}  // namespace
