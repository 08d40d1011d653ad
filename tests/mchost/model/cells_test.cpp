// Cell libraries: written, attached, listed, and their cells as descriptors.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <thread>

#include "mchost/mdl/cell.h"
#include "mchost/mdl/level.h"
#include "mchost/resource/container.h"
#include "tests/mchost/model/model_fixture.h"
#include "tests/support/cell_file.h"

namespace {

class Cells : public DesignFileTest {
  protected:
    ~Cells() override { mdlElmdscr_freeAll(&cell); }

    int attach(std::string_view name) { return mdlCell_attachLibraryEx(nullptr, path(name).c_str(), 0, 1, 2); }
    // The cell in `cell`.
    int get(const wchar_t* name) {
        mdlElmdscr_freeAll(&cell);
        return mdlCell_getElmDscr(&cell, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 1,
                                  name, nullptr);
    }
    int children() const {
        int count = 0;
        for (const ElementDescr* node = cell->firstChild; node; node = node->next) ++count;
        return count;
    }
    Range3d range() const {
        Range3d r{};
        mdlElmdscr_computeRange(&r.low, &r.high, cell, nullptr);
        return r;
    }
    std::vector<std::wstring> names() {
        std::vector<std::wstring> found;
        MdlCellLibrary* library = nullptr;
        if (mdlCell_getLibraryObject(&library, tcbP->cellLibraryName) != MDL_SUCCESS) return found;
        MdlModelIterator* iterator = mdlModelIterator_create(library);
        while (const MdlModelItem* item = mdlModelIterator_getNext(iterator)) {
            wchar_t name[512];
            EXPECT_EQ(mdlModelItem_getName(name, 512, item), MDL_SUCCESS);
            found.emplace_back(name);
        }
        mdlModelIterator_free(iterator);
        return found;
    }

    ElementDescr* cell = nullptr;
};

TEST_F(Cells, AttachedLibraryGivesItsCellsByName) {
    CellFile().add(L"VALVE", L"Gate valve", 2).add(L"BEND", L"", 1, 20).write(path("a.cel"));
    char full[256];
    ASSERT_EQ(mdlCell_attachLibraryEx(full, path("a.cel").c_str(), 0, 1, 2), MDL_SUCCESS);
    EXPECT_EQ(path("a.cel"), full);
    EXPECT_EQ(path("a.cel"), tcbP->cellLibraryName);
    EXPECT_EQ(names(), (std::vector<std::wstring>{L"VALVE", L"BEND"}));

    create();
    open();
    ASSERT_EQ(get(L"valve"), MDL_SUCCESS);  // the case of letters doesn't count
    EXPECT_EQ(mdlElement_getType(cell->element), MDL_CELL_HEADER);
    EXPECT_EQ(cell->model, mdlModelRef_getActive());
    EXPECT_EQ(cell->filePos, 0u);
    wchar_t text[512];
    EXPECT_EQ(mdlCell_extractName(text, 512, cell->element), MDL_SUCCESS);
    EXPECT_STREQ(text, L"VALVE");
    EXPECT_EQ(mdlCell_extractDescription(text, 512, cell->element), MDL_SUCCESS);
    EXPECT_STREQ(text, L"Gate valve");
    EXPECT_EQ(children(), 2);
    EXPECT_EQ(range().high.x, 100000);
    double low[2], high[2];  // the header's own range
    std::memcpy(low, cell->element->bytes + 112, sizeof low);
    std::memcpy(high, cell->element->bytes + 128, sizeof high);
    EXPECT_EQ(low[0], 0);
    EXPECT_EQ(high[0], 100000);
    EXPECT_EQ(high[1], 10000);

    EXPECT_EQ(get(L"VALVES"), MDL_ERROR);
    EXPECT_EQ(cell, nullptr);
    ASSERT_EQ(mdlCell_detachLibrary(), MDL_SUCCESS);
    EXPECT_STREQ(tcbP->cellLibraryName, "");
    EXPECT_EQ(get(L"VALVE"), MDL_ERROR);
    EXPECT_TRUE(front().messages.empty());
}

TEST_F(Cells, MasterUnitsStayAsLongAsTheyAre) {
    CellFile(250).add(L"C").write(path("a.cel"));
    ASSERT_EQ(attach("a.cel"), MDL_SUCCESS);
    ASSERT_EQ(get(L"C"), MDL_SUCCESS);
    EXPECT_EQ(range().high.x, 2500);  // without a design file in UOR of the library
    create();
    open();
    ASSERT_EQ(get(L"C"), MDL_SUCCESS);
    EXPECT_EQ(range().high.x, 100000);
    Point3d origin;
    RotMatrix matrix;
    ASSERT_EQ(mdlCell_extract(&origin, &matrix, cell->element), MDL_SUCCESS);
    EXPECT_DOUBLE_EQ(matrix.form[0][0], 1);
}

TEST_F(Cells, HeadersAreOfTheKindOfTheActiveModel) {
    CellFile().add(L"C").write(path("a.cel"));
    ASSERT_EQ(attach("a.cel"), MDL_SUCCESS);
    for (const int is3d : {0, 1}) {
        SCOPED_TRACE(is3d);
        const std::string name = path("file" + std::to_string(is3d) + ".mcd");
        ASSERT_EQ(mdlSystem_createDesignFile(name.c_str(), is3d), MDL_SUCCESS);
        ASSERT_EQ(mdlSystem_newDesignFile(name.c_str(), 0), MDL_SUCCESS);
        ASSERT_EQ(get(L"C"), MDL_SUCCESS);
        uint32_t kind;
        std::memcpy(&kind, cell->element->bytes + 32, sizeof kind);
        EXPECT_EQ(kind != 0, is3d != 0);
        wchar_t text[8];
        EXPECT_EQ(mdlCell_extractName(text, 8, cell->element), MDL_SUCCESS);
        EXPECT_STREQ(text, L"C");
        EXPECT_NE(mdlElmdscr_add(cell), 0u);
    }
}

TEST_F(Cells, LevelsGoByNameAndAreStoredWithTheElement) {
    CellFile file;
    file.add(L"C", L"", 1, 10, L"Valves").add(L"D", L"", 1, 10, L"Bends");
    file.draft().setLevelSymbology(file.draft().level(L"Valves"), 3, 2, 5);
    file.write(path("a.cel"));
    ASSERT_EQ(attach("a.cel"), MDL_SUCCESS);
    create();
    open();
    LevelId bends = 0, other = 0, valves = 0;
    mdlLevel_create(&other, nullptr, L"Other");
    mdlLevel_create(&bends, nullptr, L"Bends");
    mdlLevelTable_rewrite(nullptr);
    ASSERT_EQ(get(L"D"), MDL_SUCCESS);
    EXPECT_EQ(cell->firstChild->element->head.level, bends);
    ASSERT_EQ(get(L"C"), MDL_SUCCESS);
    ASSERT_EQ(mdlLevel_getIdFromName(&valves, nullptr, 0, L"Valves"), MDL_SUCCESS);
    EXPECT_EQ(cell->firstChild->element->head.level, valves);
    uint32_t color = 0, weight = 0;
    int32_t style = 0;
    mdlLevel_getElementSymbology(&color, &style, &weight, nullptr, valves);
    EXPECT_EQ(color, 3u);
    EXPECT_EQ(style, 2);
    EXPECT_EQ(weight, 5u);

    mdlLevelTable_rewrite(nullptr);  // as for any other new level
    reopen();
    EXPECT_FALSE(mdlLevel_isValidByName(nullptr, L"Valves")) << "no element of it was stored";
    ASSERT_EQ(get(L"C"), MDL_SUCCESS);
    ASSERT_NE(mdlElmdscr_add(cell), 0u);
    reopen();
    EXPECT_TRUE(mdlLevel_isValidByName(nullptr, L"Valves"));
}

// What is made without a design file has levels all the same, and they go with the session.
TEST_F(Cells, WithoutADesignFileLevelsAreTheSessions) {
    CellFile file;
    file.add(L"C", L"", 1, 10, L"Valves").add(L"D", L"", 1, 10, L"63").draft().setLevelSymbology(2, 3, 2, 5);
    file.write(path("a.cel"));
    ASSERT_EQ(attach("a.cel"), MDL_SUCCESS);
    for (const wchar_t* name : {L"D", L"C", L"D"}) ASSERT_EQ(get(name), MDL_SUCCESS);
    LevelId id = cell->firstChild->element->head.level;
    int32_t code = 0;
    EXPECT_EQ(mdlLevel_getCode(&code, nullptr, id), MDL_SUCCESS);
    EXPECT_EQ(code, 63);
    ASSERT_EQ(mdlLevel_getIdFromName(&id, nullptr, 0, L"Valves"), MDL_SUCCESS);
    uint32_t color = 0, weight = 0;
    mdlLevel_getElementSymbology(&color, nullptr, &weight, nullptr, id);
    EXPECT_EQ(color, 3u);
    EXPECT_EQ(weight, 5u);
    EXPECT_EQ(mdlLevel_create(&id, nullptr, L"Made"), MDL_SUCCESS);
    EXPECT_EQ(mdlLevelTable_rewrite(nullptr), MDL_SUCCESS);
    create();
    open();
    for (const wchar_t* name : {L"Valves", L"63", L"Made"}) EXPECT_FALSE(mdlLevel_isValidByName(nullptr, name));
    endSession();
    EXPECT_EQ(mdlLevel_getCode(&code, nullptr, 1), MDL_ERROR);
    host::Session next;
    EXPECT_TRUE(mdlLevel_isValidByName(nullptr, L"Default"));
    EXPECT_FALSE(mdlLevel_isValidByName(nullptr, L"Made"));
}

// Processor time for a library of so many cells, made and attached, in clock ticks.
clock_t timeFor(int cells, const std::string& file) {
    const clock_t begin = std::clock();
    CellFile library;
    for (int i = 0; i < cells; ++i) library.add((L"CELL" + std::to_wstring(i)).c_str());
    library.write(file);
    EXPECT_EQ(mdlCell_attachLibraryEx(nullptr, file.c_str(), 0, 1, 2), MDL_SUCCESS);
    return std::clock() - begin;
}

TEST_F(Cells, EightTimesAsManyTakeAboutEightTimesAsLong) {
    EXPECT_LT(timeFor(16'000, path("many.cel")), 25 * timeFor(2'000, path("few.cel")));
}

TEST_F(Cells, AReadOnlyFileShowsCellsToo) {
    CellFile().add(L"C", L"", 1, 10, L"Valves").write(path("a.cel"));
    ASSERT_EQ(attach("a.cel"), MDL_SUCCESS);
    create();
    open(true);
    EXPECT_EQ(get(L"C"), MDL_SUCCESS);
    EXPECT_TRUE(front().messages.empty());
}

TEST_F(Cells, OtherFilesAreRefusedInOneLineAndTheLibraryBeforeStays) {
    CellFile().add(L"KEPT").write(path("kept.cel"));
    CellFile().add(L"C", L"", 200).add(L"D", L"", 200).write(path("whole.cel"));
    const std::string whole = readFile("whole.cel");
    create();
    host::writeContainer(path("other.rsc"), {});
    std::string newer = whole;
    newer[63] = 9;  // user_version, big-endian at byte 60
    struct Case {
        const char* name;
        std::string bytes;
        const char* why;
    };
    const Case cases[] = {
        {"empty.cel", "", "isn't a cell library"},
        {"text.cel", "CELL LIBRARY", "isn't a cell library"},
        {"design.cel", readFile("a.mcd"), "isn't a cell library"},
        {"resource.cel", readFile("other.rsc"), "isn't a cell library"},
        {"newer.cel", newer, "newer version"},
        {"head.cel", whole.substr(0, 100), "is damaged"},
        {"half.cel", whole.substr(0, whole.size() / 2), "is damaged"},
        {"short.cel", whole.substr(0, whole.size() - 8192), "is damaged"},
    };
    ASSERT_EQ(attach("kept.cel"), MDL_SUCCESS);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const std::string name = writeFile(c.name, c.bytes);
        EXPECT_EQ(attach(c.name), MDL_ERROR);
        EXPECT_THAT(onlyMessage(name), testing::HasSubstr(c.why));
        EXPECT_TRUE(readFile(c.name) == c.bytes) << "it was changed";
        EXPECT_EQ(names(), std::vector<std::wstring>{L"KEPT"});
    }
    EXPECT_EQ(attach("nowhere.cel"), MDL_ERROR);
    EXPECT_THAT(onlyMessage(path("nowhere.cel")), testing::HasSubstr("can't be read"));
    EXPECT_EQ(mdlCell_attachLibraryEx(nullptr, "", 0, 1, 2), MDL_ERROR);
    EXPECT_THAT(onlyMessage("\"\""), testing::HasSubstr("no name was given"));
    EXPECT_EQ(mdlSystem_newDesignFile(path("whole.cel").c_str(), 0), MDL_ERROR);
    EXPECT_THAT(onlyMessage("whole.cel"), testing::HasSubstr("isn't a design file"));
}

TEST_F(Cells, EveryFlippedByteOfTheContentIsNoticedOrDoesNoHarm) {
    CellFile().add(L"C", L"A cell", 30).write(path("whole.cel"));
    ASSERT_EQ(attach("whole.cel"), MDL_SUCCESS);
    ASSERT_EQ(get(L"C"), MDL_SUCCESS);
    const Range3d before = range();
    const std::string whole = readFile("whole.cel");
    int refused = 0;
    for (size_t at = 0; at < whole.size(); at += 97) {
        std::string bytes = whole;
        bytes[at] = static_cast<char>(bytes[at] ^ 0x55);
        writeFile("bad.cel", bytes);
        if (attach("bad.cel") != MDL_SUCCESS) {
            ++refused;
            continue;
        }
        ASSERT_EQ(get(L"C"), MDL_SUCCESS) << at;
        EXPECT_EQ(range().high.x, before.high.x) << at;
        EXPECT_EQ(children(), 30) << at;
    }
    EXPECT_GT(refused, 40);
}

TEST_F(Cells, AnIteratorKeepsItsLibraryAndTextsAreCut) {
    CellFile().add(L"FIRST", L"One").add(L"SECOND").write(path("a.cel"));
    CellFile().add(L"OTHER").write(path("b.cel"));
    ASSERT_EQ(attach("a.cel"), MDL_SUCCESS);
    MdlCellLibrary* library = nullptr;
    ASSERT_EQ(mdlCell_getLibraryObject(&library, tcbP->cellLibraryName), MDL_SUCCESS);
    MdlModelIterator* iterator = mdlModelIterator_create(library);
    EXPECT_EQ(mdlModelIterator_setAcceptCellsOnly(iterator, 1), MDL_SUCCESS);
    ASSERT_EQ(attach("b.cel"), MDL_SUCCESS);
    const MdlModelItem* item = mdlModelIterator_getNext(iterator);
    ASSERT_NE(item, nullptr);
    wchar_t text[16];
    EXPECT_EQ(mdlModelItem_getName(text, 4, item), MDL_ERROR);
    EXPECT_STREQ(text, L"FIR");
    EXPECT_EQ(mdlModelItem_getDescription(text, 16, item), MDL_SUCCESS);
    EXPECT_STREQ(text, L"One");
    item = mdlModelIterator_getNext(iterator);
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(mdlModelItem_getDescription(text, 16, item), MDL_SUCCESS);
    EXPECT_STREQ(text, L"");
    EXPECT_EQ(mdlModelIterator_getNext(iterator), nullptr);
    mdlModelIterator_free(iterator);
    EXPECT_EQ(mdlCell_getLibraryObject(&library, path("a.cel").c_str()), MDL_ERROR);
    EXPECT_EQ(library, nullptr);
}

TEST_F(Cells, ALibraryWrittenFromAnOpenedOneHoldsTheSame) {
    CellFile file;
    file.add(L"A", L"Letter \xe5", 3, 10, L"Valves").add(L"B", L"", 1).write(path("a.cel"));
    const host::CellLibrary opened(path("a.cel"));
    host::CellLibraryDraft copy(10000);
    copy.level(L"Valves");
    for (const auto& c : opened.cells()) {
        ElementDescr* ed = opened.read(c, nullptr);
        EXPECT_TRUE(copy.add(ed));
        EXPECT_FALSE(copy.add(ed)) << "a name that is there";
        mdlElmdscr_freeAll(&ed);
    }
    copy.write(path("b.cel"));
    const host::CellLibrary again(path("b.cel"));
    ASSERT_EQ(again.cells().size(), 2u);
    for (size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(again.cells()[i].name, opened.cells()[i].name);
        EXPECT_EQ(again.cells()[i].description, opened.cells()[i].description);
        ElementDescr* a = opened.read(opened.cells()[i], nullptr);
        ElementDescr* b = again.read(again.cells()[i], nullptr);
        const ElementDescr* left = a->firstChild;
        for (const ElementDescr* right = b->firstChild; right; right = right->next, left = left->next) {
            ASSERT_NE(left, nullptr);
            const uint32_t bytes = mdlElement_bytes(left->element);
            ASSERT_EQ(mdlElement_bytes(right->element), bytes);
            EXPECT_EQ(std::memcmp(left->element, right->element, bytes), 0);
        }
        EXPECT_EQ(left, nullptr);
        mdlElmdscr_freeAll(&a);
        mdlElmdscr_freeAll(&b);
    }
}

TEST_F(Cells, WritingReplacesAFileWholeOrNotAtAll) {
    CellFile().add(L"OLD").write(path("a.cel"));
    ASSERT_EQ(attach("a.cel"), MDL_SUCCESS);
    CellFile().add(L"NEW").write(path("a.cel"));
    EXPECT_EQ(names(), std::vector<std::wstring>{L"OLD"}) << "read when it was attached";
    ASSERT_EQ(attach("a.cel"), MDL_SUCCESS);
    EXPECT_EQ(names(), std::vector<std::wstring>{L"NEW"});
    EXPECT_THROW(CellFile().add(L"C").write(path("nowhere/a.cel")), std::runtime_error);
    std::filesystem::create_directories(path("folder.cel/full"));
    EXPECT_THROW(CellFile().add(L"C").write(path("folder.cel")), std::runtime_error);
    for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::path(path("a.cel")).parent_path()))
        EXPECT_EQ(entry.path().string().find(".draft"), std::string::npos) << entry.path();
}

TEST_F(Cells, ALibraryThatIsAttachedAgainIsReadAsItIsNow) {
    CellFile().add(L"OLD").write(path("a.cel"));
    CellFile().add(L"NEW").write(path("new.cel"));
    std::this_thread::sleep_for(std::chrono::milliseconds(80));  // so that they count as unchanged
    for (const char* name : {"a.cel", "new.cel", "a.cel"}) ASSERT_EQ(attach(name), MDL_SUCCESS);
    EXPECT_EQ(names(), std::vector<std::wstring>{L"OLD"});
    ASSERT_EQ(attach("new.cel"), MDL_SUCCESS);
    ASSERT_EQ(std::filesystem::file_size(path("a.cel")), std::filesystem::file_size(path("new.cel")));
    std::filesystem::copy_file(path("new.cel"), path("a.cel"), std::filesystem::copy_options::overwrite_existing);
    ASSERT_EQ(attach("a.cel"), MDL_SUCCESS);
    EXPECT_EQ(names(), std::vector<std::wstring>{L"NEW"});
    std::filesystem::remove(path("a.cel"));
    ASSERT_EQ(attach("new.cel"), MDL_SUCCESS);
    EXPECT_EQ(attach("a.cel"), MDL_ERROR);
}

TEST_F(Cells, EndingTheSessionDetaches) {
    CellFile().add(L"C").write(path("a.cel"));
    ASSERT_EQ(attach("a.cel"), MDL_SUCCESS);
    endSession();
    EXPECT_STREQ(tcbP->cellLibraryName, "");
    EXPECT_EQ(get(L"C"), MDL_ERROR);
}

TEST(CellHeader, SetRangeCoversNestedCells) {
    MSElementBuffer element;
    ElementDescr *outer = nullptr, *inner = nullptr;
    mdlCell_create(&element, L"IN", nullptr, 1);
    mdlElmdscr_new(&inner, nullptr, &element);
    const Point3d ends[] = {{5, 6, 7}, {15, 26, 37}};
    mdlLine_create(&element, nullptr, ends);
    mdlElmdscr_appendElement(inner, &element);
    mdlCell_create(&element, L"OUT", nullptr, 1);
    mdlElmdscr_new(&outer, nullptr, &element);
    EXPECT_EQ(mdlCell_setRange(outer, nullptr), MDL_ERROR);  // nothing in it
    ASSERT_EQ(mdlElmdscr_appendDscr(outer, inner), MDL_SUCCESS);
    ASSERT_EQ(mdlCell_setRange(outer, nullptr), MDL_SUCCESS);
    for (const ElementDescr* ed : {outer, outer->firstChild}) {
        double corners[6];
        std::memcpy(corners, ed->element->bytes + 112, sizeof corners);
        EXPECT_THAT(corners, testing::ElementsAre(5, 6, 7, 15, 26, 37));
    }
    mdlElmdscr_freeAll(&outer);
}

}  // namespace
