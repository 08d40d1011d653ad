// Scans: what they find, in portions, while elements come and go.
#include <algorithm>
#include <map>
#include <random>

#include "mchost/mdl/reference_info.h"
#include "mchost/mdl/undo.h"
#include "tests/mchost/model/model_fixture.h"

namespace {

using Scans = OpenModelTest;

std::vector<FilePos> upTo(FilePos last) {
    std::vector<FilePos> positions;
    for (FilePos position = 1; position <= last; ++position) positions.push_back(position);
    return positions;
}

TEST_F(Scans, PortionTellsWhetherMoreFollow) {
    for (uint32_t i = 0; i < 5; ++i) mdlElement_add(numbered(i));
    struct Case {
        int32_t room;
        std::vector<std::pair<size_t, int>> portions;
    };
    const Case cases[] = {{64, {{5, 0}}},
                          {5, {{5, 0}}},
                          {4, {{4, MDL_SCAN_MORE}, {1, 0}}},
                          {2, {{2, MDL_SCAN_MORE}, {2, MDL_SCAN_MORE}, {1, 0}}}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.room);
        ScanHandle scan;
        for (const auto& [size, expected] : c.portions) {
            int status = -1;
            EXPECT_EQ(scan.portion(c.room, status).size(), size);
            EXPECT_EQ(status, expected);
        }
    }
}

TEST_F(Scans, OneElementAtATimeEndsWithAnEmptyPortion) {
    for (uint32_t i = 0; i < 2; ++i) mdlElement_add(numbered(i));
    ScanHandle scan;
    EXPECT_EQ(mdlScanCriteria_setReturnType(scan, 1, 1, 0), MDL_SUCCESS);
    int status = 0;
    EXPECT_EQ(scan.portion(64, status), (std::vector<FilePos>{1}));
    EXPECT_EQ(status, MDL_SCAN_MORE);
    EXPECT_EQ(scan.portion(64, status), (std::vector<FilePos>{2}));
    EXPECT_EQ(status, MDL_SCAN_MORE);
    EXPECT_TRUE(scan.portion(64, status).empty());
    EXPECT_EQ(status, 0);
}

TEST_F(Scans, StartPositionContinuesBehindIt) {
    for (uint32_t i = 0; i < 5; ++i) mdlElement_add(numbered(i));
    ScanHandle scan;
    FilePos buffer[2], start = 3;
    int32_t words = 4;
    EXPECT_EQ(mdlScanCriteria_scan(scan, buffer, &words, &start), 0);
    EXPECT_EQ(words, 4);
    EXPECT_EQ(buffer[0], 4u);
    EXPECT_EQ(start, 5u);
    start = 0;
    EXPECT_EQ(mdlScanCriteria_scan(scan, buffer, &words, &start), MDL_SCAN_MORE);
    EXPECT_EQ(start, 2u);
}

TEST_F(Scans, VisitorMayDeleteAndAdd) {
    for (uint32_t i = 0; i < 300; ++i) mdlElement_add(numbered(i));
    ScanHandle scan;
    std::vector<FilePos> visited;
    for (int status = MDL_SCAN_MORE; status == MDL_SCAN_MORE;) {
        const bool first = visited.empty();
        for (const FilePos position : scan.portion(64, status)) {
            visited.push_back(position);
            EXPECT_EQ(mdlElement_undoableDelete(nullptr, position, 0), MDL_SUCCESS);
            if (first) mdlElement_undoableDelete(nullptr, position + 100, 0);
            mdlElement_add(numbered(1000));
        }
    }
    std::vector<FilePos> expected = upTo(300);
    expected.erase(expected.begin() + 100, expected.begin() + 164);
    EXPECT_EQ(visited, expected);
    EXPECT_EQ(mdlModelRef_getElementCount(nullptr), visited.size());
}

TEST_F(Scans, KindsOfTestsMustAllPass) {
    const auto add = [](uint16_t type, LevelId level, uint16_t elementClass) {
        MSElementBuffer* element = numbered(0, level);
        element->head.type = type;
        element->head.properties = elementClass;
        return mdlElement_add(element);
    };
    const FilePos a = add(3, 1, 0), b = add(3, 2, 1), c = add(4, 2, 0), d = add(6, 3, 2);
    struct Case {
        std::vector<int32_t> types;
        std::vector<LevelId> levels;
        uint32_t classes;
        std::vector<FilePos> found;
    };
    const Case cases[] = {{{}, {}, 0, {a, b, c, d}},  {{3}, {}, 0, {a, b}}, {{3, 6}, {}, 0, {a, b, d}},
                          {{}, {2, 3}, 0, {b, c, d}}, {{3}, {2}, 0, {b}},   {{}, {}, 1, {a, c}},
                          {{}, {}, 4, {d}},           {{6}, {}, 1 | 2, {}}, {{}, {20}, 0, {}}};
    for (const Case& test : cases) {
        ScanHandle scan;
        for (const int32_t type : test.types) mdlScanCriteria_addSingleElementTypeTest(scan, type);
        for (const LevelId level : test.levels) mdlScanCriteria_addSingleLevelTest(scan, level);
        mdlScanCriteria_setClassTest(scan, test.classes);
        EXPECT_EQ(scan.all(), test.found) << "case " << &test - cases;
    }
}

TEST_F(Scans, DrawnElementsBeforeAStopPosition) {
    for (const uint32_t number : {1u, 2u, 3u}) {
        MSElementBuffer* element = numbered(number);
        if (number == 2) element->head.type = MDL_APPLICATION_DATA;
        ASSERT_EQ(mdlElement_add(element), number);
    }
    ScanHandle scan;
    mdlScanCriteria_setDrawnElements(scan);
    mdlScanCriteria_setStopPosition(scan, mdlModelRef_getEof(nullptr));
    ASSERT_EQ(mdlElement_add(numbered(4)), 4u);
    EXPECT_EQ(scan.all(), (std::vector<FilePos>{1, 3}));
    const Range3d window = {{0, 0, 0}, {20, 20, 0}};
    mdlScanCriteria_setRangeTest(scan, &window);
    EXPECT_EQ(scan.all(), (std::vector<FilePos>{1, 3}));
    mdlScanCriteria_setStopPosition(scan, 0);
    EXPECT_EQ(scan.all(), (std::vector<FilePos>{1, 3, 4}));
}

TEST_F(Scans, RareTypeIsFoundWhereverItStandsAndWhateverHappensToIt) {
    const auto withType = [](uint16_t type) {
        MSElementBuffer* element = numbered(0);
        element->head.type = type;
        return element;
    };
    const auto rare = [] {
        ScanHandle scan;
        mdlScanCriteria_addSingleElementTypeTest(scan, MDL_APPLICATION_DATA);
        return scan.all();
    };
    std::vector<FilePos> expected;
    for (uint32_t i = 1; i <= 1000; ++i) {
        const bool isRare = i == 63 || i == 64 || i == 128 || i == 700;
        const FilePos position = mdlElement_add(withType(isRare ? MDL_APPLICATION_DATA : MDL_LINE));
        if (isRare) expected.push_back(position);
    }
    EXPECT_EQ(rare(), expected);
    mdlElement_undoableDelete(nullptr, 700, 0);
    mdlElement_rewrite(withType(MDL_LINE), 64);
    mdlElement_rewrite(withType(MDL_APPLICATION_DATA), 500);
    EXPECT_EQ(rare(), (std::vector<FilePos>{63, 128, 500}));
    mdlUndo_lastDelete();
    EXPECT_EQ(rare(), (std::vector<FilePos>{63, 128, 500, 700}));
    mdlElement_undoableDelete(nullptr, 1000, 0);
    ASSERT_EQ(mdlSystem_newDesignFile(path("a.mcd").c_str(), 0), MDL_SUCCESS);
    EXPECT_EQ(rare(), (std::vector<FilePos>{63, 128, 500, 700}));
}

// A model in two ways: the design file, and a plain map of boxes that is searched one by one.
class SearchedModel {
  public:
    void add() {
        const Range3d box = anyBox();
        boxes_[mdlElement_add(elementOver(box))] = box;
    }
    void changeOne() {
        if (boxes_.empty()) return add();
        auto& [position, box] = *std::next(boxes_.begin(), static_cast<long>(random_() % boxes_.size()));
        box = anyBox();
        EXPECT_EQ(mdlElement_rewrite(elementOver(box), position), position);
    }
    void deleteOne() {
        if (boxes_.empty()) return;
        const auto one = std::next(boxes_.begin(), static_cast<long>(random_() % boxes_.size()));
        EXPECT_EQ(mdlElement_undoableDelete(nullptr, one->first, 0), MDL_SUCCESS);
        deleted_.push_back(*one);
        boxes_.erase(one);
    }
    void bringBack() {
        if (deleted_.empty()) return;
        EXPECT_EQ(mdlUndo_lastDelete(), deleted_.back().first);
        boxes_.insert(deleted_.back());
        deleted_.pop_back();
    }
    void expectSameIn(const Range3d& window) const {
        std::vector<FilePos> expected;
        for (const auto& [position, box] : boxes_) {
            if (box.low.x <= window.high.x && box.high.x >= window.low.x && box.low.y <= window.high.y &&
                box.high.y >= window.low.y) {
                expected.push_back(position);
            }
        }
        ScanHandle scan;
        mdlScanCriteria_setRangeTest(scan, &window);
        EXPECT_EQ(scan.all(), expected);
    }
    Range3d anyBox() {
        const auto number = [this](uint32_t limit) { return static_cast<double>(random_() % limit); };
        const double x = number(10000), y = number(10000);
        return {{x, y, 0}, {x + number(200), y + number(200), 0}};
    }
    uint32_t random() { return random_(); }

  private:
    static MSElementBuffer* elementOver(const Range3d& box) {
        return line(box.low.x, box.high.y, box.high.x, box.low.y);
    }

    std::mt19937 random_{20240229};
    std::map<FilePos, Range3d> boxes_;
    std::vector<std::pair<const FilePos, Range3d>> deleted_;
};

TEST_F(Scans, WindowFindsTheSameAsALookAtEachElement) {
    SearchedModel model;
    for (int i = 0; i < 3000; ++i) model.add();
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE(round);
        Range3d window = model.anyBox();
        window.high.x += 50 * round;
        window.high.y += 50 * round;
        model.expectSameIn(window);
        for (int change = 0; change < 150; ++change) {
            switch (model.random() % 5) {
                case 0: model.changeOne(); break;
                case 1: model.deleteOne(); break;
                case 2: model.bringBack(); break;
                default: model.add();
            }
        }
    }
    model.expectSameIn({{-1, -1, -1}, {20000, 20000, 1}});
}

TEST_F(Scans, WindowMeetsEdgesAndComponents) {
    MSElementBuffer header;
    mdlCell_create(&header, L"C", nullptr, 0);
    ElementDescr* cell = nullptr;
    mdlElmdscr_new(&cell, nullptr, &header);
    mdlElmdscr_appendElement(cell, line(100, 100, 110, 110));
    mdlElmdscr_appendElement(cell, line(900, 900, 910, 910));
    const FilePos cellAt = mdlElmdscr_add(cell), lineAt = mdlElement_add(line(500, 500, 600, 500));
    mdlElmdscr_freeAll(&cell);
    struct Case {
        Range3d window;
        std::vector<FilePos> found;
    };
    const Case cases[] = {{{{910, 910, 0}, {950, 950, 0}}, {cellAt}},
                          {{{911, 911, 0}, {950, 950, 0}}, {}},
                          {{{550, 500, 0}, {550, 500, 0}}, {cellAt, lineAt}},
                          {{{550, 500, 1}, {550, 500, 2}}, {}},
                          {{{0, 0, -1e300}, {99, 1e300, 1e300}}, {}}};
    for (const Case& c : cases) {
        ScanHandle scan;
        mdlScanCriteria_setRangeTest(scan, &c.window);
        EXPECT_EQ(scan.all(), c.found) << "case " << &c - cases;
    }
    Range3d all = {};
    EXPECT_EQ(mdlModelRef_getRange(nullptr, &all), MDL_SUCCESS);
    EXPECT_EQ(all.high.x, 910);
    mdlElement_undoableDelete(nullptr, cellAt, 0);
    EXPECT_EQ(mdlModelRef_getRange(nullptr, &all), MDL_SUCCESS);
    EXPECT_EQ(all.high.x, 600);
    mdlElement_undoableDelete(nullptr, lineAt, 0);
    EXPECT_EQ(mdlModelRef_getRange(nullptr, &all), MDL_ERROR);
}

TEST_F(Scans, ScanOfAModelThatWasClosedFails) {
    mdlElement_add(numbered(1));
    ScanHandle scan;
    mdlScanCriteria_setModel(scan, mdlModelRef_getActive());
    ScanHandle ofActive;
    close();
    int status = 0;
    EXPECT_TRUE(scan.portion(4, status).empty());
    EXPECT_EQ(status, MDL_ERROR);
    EXPECT_TRUE(ofActive.portion(4, status).empty());
    EXPECT_EQ(status, 0);
}

TEST_F(Scans, LargeModelComesInFileOrder) {
    for (uint32_t i = 0; i < 20000; ++i) mdlElement_add(numbered((i * 7919) % 20000));
    EXPECT_EQ(allPositions(), upTo(20000));
    ScanHandle scan;
    const Range3d all = {{-1, -1, -1}, {30000, 30000, 1}};
    mdlScanCriteria_setRangeTest(scan, &all);
    EXPECT_EQ(scan.all(), upTo(20000));
}

}  // namespace
