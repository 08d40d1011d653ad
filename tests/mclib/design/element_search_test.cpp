// Symbols of a drawing: their texts, what is told of them, what is deleted, and what isn't reported again.
#include "mclib/design/element_search.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "mchost/dialog/dialog.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/scan.h"
#include "mchost/mdl/system.h"
#include "mchost/mdl/tag.h"
#include "mchost/mdl/undo.h"
#include "mchost/session/memory.h"
#include "tests/mclib/design/symbol_drawing.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Symbols : public SymbolTest {
  protected:
    // A cell of texts and a line.
    static FilePos addCell(const std::vector<std::pair<const char*, Point3d>>& texts, bool hasLine) {
        const mdl::CurrTransScope units(mdl::CurrTransScope::Begin::masterUnits);
        auto element = std::make_unique<MSElementBuffer>();
        const Point3d origin = {0, 0, 0}, ends[] = {{0, 0, 0}, {1, 1, 0}};
        mdl::Descr outer, inner;
        mdlCell_create(element.get(), L"INNER", &origin, 0);
        EXPECT_EQ(mdlElmdscr_new(inner.out(), nullptr, element.get()), MDL_SUCCESS);
        for (const auto& [text, at] : texts) {
            const TextSize size = {1, 2, 2, 1};
            mdlText_create(element.get(), nullptr, text, &at, nullptr, &size, nullptr, 0);
            EXPECT_EQ(mdlElmdscr_appendElement(inner.get(), element.get()), MDL_SUCCESS);
        }
        if (hasLine) {
            mdlLine_create(element.get(), nullptr, ends);
            EXPECT_EQ(mdlElmdscr_appendElement(inner.get(), element.get()), MDL_SUCCESS);
        }
        mdlCell_create(element.get(), L"OUTER", &origin, 0);
        EXPECT_EQ(mdlElmdscr_new(outer.out(), nullptr, element.get()), MDL_SUCCESS);
        EXPECT_EQ(mdlElmdscr_appendDscr(outer.get(), inner.get()), MDL_SUCCESS);
        *inner.out() = nullptr;
        mdlCell_setRange(outer.get(), nullptr);
        return mdlElmdscr_add(outer.get());
    }
    // All texts of the drawing, in order of the file.
    static std::vector<std::string> texts() {
        std::vector<std::string> all;
        for (const FilePos position : mdl::Scan(mdlModelRef_getActive())) {
            const mdl::DescrPtr element = mdl::readDescr(position, mdlModelRef_getActive());
            mdlElmdscr_operation(
                element.get(),
                [](MSElementBuffer* e, void* texts, int32_t, int32_t, ElementDescr*) {
                    if (mdlElement_getType(e) == MDL_TEXT)
                        static_cast<std::vector<std::string>*>(texts)->push_back(textOf(*e));
                    return 0;
                },
                &all, MDL_DESCR_ALL);
        }
        return all;
    }
    static uint32_t elements() { return mdlModelRef_getElementCount(mdlModelRef_getActive()); }
};

TEST_F(Symbols, FindsTextsWithACornerInTheBox) {
    addEllipse({0, 0, 0}, 5, 5);
    const struct {
        Point3d origin;  // of a text of 2 x 2: lower left corner
        size_t found;
    } cases[] = {
        {{10, 10, 0}, 0}, {{10.1, 10.1, 0}, 1}, {{9, 9, 0}, 1},   {{11, 11, 0}, 1},
        {{8, 8, 0}, 0},   {{12, 10, 0}, 0},     {{10, 12, 0}, 0},
    };
    for (const auto& c : cases) {
        const FilePos text = addText("T", c.origin);
        SymbolSearch search(SEARCH_GROUP_CIRCLE);
        search.low = {{12, 10, 99}};  // the lower right one to begin with
        search.high = {{10, 12, 99}};
        EXPECT_EQ(count(search), c.found) << c.origin.x << ", " << c.origin.y;
        mdlElement_undoableDelete(nullptr, text, 0);
    }
    addText("LONG TEXT", {5, 10.5, 0}, {.height = 1});  // reaches through it, without a corner inside
    SymbolSearch search(SEARCH_GROUP_CIRCLE);
    search.low = {{10, 10, 0}};
    search.high = {{12, 12, 0}};
    EXPECT_THAT(recognised(search), IsEmpty());
}

TEST_F(Symbols, NeedsAllTextsAndOneThingInEachBox) {
    addEllipse({0, 0, 0}, 5, 5);
    addText("A", {10, 0, 0});
    addText("B", {-10, 0, 0});
    SymbolSearch search(SEARCH_GROUP_CIRCLE, {textsLike("A"), textsLike("B")});
    search.low = {{9, -1, 0}, {-11, -1, 0}};
    search.high = {{13, 3, 0}, {-7, 3, 0}};
    ASSERT_EQ(count(search), 1u);
    EXPECT_THAT(reports[0].texts, ElementsAre("A", "B"));
    search.texts.push_back(textsLike("C"));
    EXPECT_EQ(count(search), 0u);
    search.texts.resize(2);
    search.low.push_back({30, 30, 0});
    search.high.push_back({31, 31, 0});
    EXPECT_EQ(count(search), 0u) << "nothing stands in the last box";
}

TEST_F(Symbols, TakesTheFirstTextThatIsNearEnoughForEach) {
    addEllipse({0, 0, 0}, 5, 5);
    const FilePos near = addText("ABXD");
    addText("ABCD");
    SymbolSearch search(SEARCH_GROUP_CIRCLE, {textsLike("ABCD", 1)});
    ASSERT_EQ(count(search), 1u);
    EXPECT_TRUE(reports[0].isNear);
    EXPECT_THAT(reports[0].texts, ElementsAre("ABXD")) << "one that is found isn't replaced by a better one";
    EXPECT_THAT(reports[0].errors, ElementsAre(1));
    ASSERT_EQ(count(search, plain), 1u);
    EXPECT_FALSE(reports[0].isNear) << "without a function for near ones";
    EXPECT_THAT(reports[0].errors, ElementsAre(1));

    search.texts = {textsLike("ABCD", 1), textsLike("AB*", 1)};
    ASSERT_EQ(count(search), 1u);
    EXPECT_THAT(reports[0].texts, ElementsAre("ABXD", "ABXD")) << "a near text serves for both";
    mdlElement_undoableDelete(nullptr, near, 0);
    EXPECT_EQ(count(search), 0u) << "an exact one doesn't";
    addText("ABBA");
    ASSERT_EQ(count(search), 1u);
    EXPECT_FALSE(reports[0].isNear);
    EXPECT_THAT(reports[0].texts, ElementsAre("ABCD", "ABBA"));
}

TEST_F(Symbols, TagsAreTexts) {
    addEllipse({0, 0, 0}, 5, 5);
    const auto addTag = [](double x, int32_t display) {
        return add([&](MSElementBuffer* e) {
            const MdlTagValue value = {
                .type = MDL_TAG_DOUBLE, .shortValue = 0, .longValue = 0, .doubleValue = 2.5, .string = ""};
            const Point3d origin = {x, 0, 0};
            const TextSize size = {1, 1, 1, 1};
            return mdlTag_create(e, nullptr, &value, &origin, nullptr, &size, nullptr, display);
        });
    };
    addTag(0, 0);
    SymbolSearch search(SEARCH_GROUP_CIRCLE, {textsLike("2.500")});
    search.low = {{-1, -1, 0}};
    search.high = {{1, 1, 0}};
    EXPECT_EQ(count(search), 0u) << "hidden";
    addTag(0.5, 1);
    EXPECT_EQ(count(search), 1u);
    EXPECT_THAT(reports[0].texts, ElementsAre("2.500"));
    EXPECT_EQ(count(search, deleteTexts), 1u);
    EXPECT_EQ(elements(), 2u) << "the tag goes";
}

TEST_F(Symbols, TextsHaveTheLookThatIsAskedFor) {
    addEllipse({0, 0, 0}, 5, 5);
    addText("A", {}, {.color = 1, .height = 2});
    SymbolSearch search(SEARCH_GROUP_CIRCLE);
    const auto with = [&](void (*ask)(SearchTextSpec&)) {
        search.texts = {textsLike("a")};
        ask(search.texts[0]);
        return count(search);
    };
    EXPECT_EQ(with([](SearchTextSpec& s) { s.color = 1; }), 1u);
    EXPECT_EQ(with([](SearchTextSpec& s) { s.color = 2; }), 0u);
    EXPECT_EQ(with([](SearchTextSpec& s) { s.minHeight = 2.1; }), 0u);
    EXPECT_EQ(with([](SearchTextSpec& s) { s.minHeight = s.maxHeight = 2; }), 1u);
    EXPECT_EQ(with([](SearchTextSpec& s) { s.flags = SEARCH_CASE_SENSITIVE; }), 0u);
    EXPECT_EQ(with([](SearchTextSpec& s) { s.maxErrors = -1; }), 0u);
    EXPECT_EQ(with([](SearchTextSpec& s) { s.maxErrors = INT32_MAX; }), 1u);
}

TEST_F(Symbols, LooksAtSixtyFourCandidatesAndTellsOfMore) {
    addEllipse({0, 0, 0}, 5, 5);
    for (int i = 0; i < 63; ++i) addText("noise");
    addText("T");
    SymbolSearch search(SEARCH_GROUP_CIRCLE, {textsLike("T")});
    EXPECT_EQ(count(search), 1u);
    EXPECT_EQ(front().consoleText, "");
    addText("U");
    EXPECT_EQ(count(search), 1u);
    const std::string full = "Scan buffer full!!\n" + std::string(tcbP->designFileName) + " may be corrupt\n";
    EXPECT_EQ(front().consoleText, full);
    search.texts = {textsLike("U")};
    EXPECT_EQ(count(search), 0u) << "the first 64";
}

TEST_F(Symbols, ReportsADoneElementOnce) {
    addText("T");
    addArc({0, 0, 0}, 5, 0, pi);
    addArc({0, 0, 0}, 5, pi, pi);
    addEllipse({0, 0, 0}, 9, 9);
    SymbolSearch search(SEARCH_GROUP_CIRCLE, {textsLike("T")});
    EXPECT_EQ(count(search), 2u);
    EXPECT_EQ(count(search), 2u) << "without a list of what is done";
    EXPECT_EQ(mclibSearch_InitElement(), 0);
    status = 1;
    EXPECT_EQ(count(search), 2u) << "and kept off it";
    status = 0;
    EXPECT_EQ(count(search), 2u);
    EXPECT_EQ(count(search), 0u);
    search.texts = {textsLike("*")};
    EXPECT_EQ(count(search), 0u) << "by another description";
    EXPECT_EQ(mclibSearch_InitElement(), 0);
    search.texts = {textsLike("TX", 1)};
    status = 1;
    EXPECT_EQ(count(search), 2u);
    status = 0;
    EXPECT_EQ(count(search), 2u);
    EXPECT_TRUE(reports[0].isNear);
    EXPECT_EQ(count(search), 0u) << "near reports count";
}

TEST_F(Symbols, TheListOfWhatIsDoneGoesOnGrowing) {
    constexpr int many = 3500;
    for (int i = 0; i < many; ++i) {
        addLine({i * 10.0, 0, 0}, {i * 10.0 + 2, 0, 0});
        addText("T", {i * 10.0 + 1, 1, 0}, {.height = 0.5});
    }
    SymbolSearch search(SEARCH_GROUP_LINE);
    search.low = {{-2, 0, 0}};
    search.high = {{2, 2, 0}};
    mclibSearch_InitElement();
    EXPECT_EQ(count(search), many);
    EXPECT_EQ(count(search), 0u);
}

TEST_F(Symbols, DeletesTheTextsOfAllBoxesInOneStep) {
    addEllipse({0, 0, 0}, 5, 5);
    addCell({{"A", {10, 0, 0}}, {"keep", {10, 0, 0}}, {"B", {-10, 0, 0}}}, true);
    addCell({{"C", {10, 0, 0}}}, false);
    addText("D", {-10, 0, 0});
    const std::vector<std::string> before = texts();
    SymbolSearch search(SEARCH_GROUP_CIRCLE, {textsLike("A"), textsLike("B"), textsLike("C"), textsLike("D")});
    search.low = {{9, -1, 0}, {-11, -1, 0}};
    search.high = {{13, 3, 0}, {-7, 3, 0}};
    mdlUndo_mark("search");
    EXPECT_EQ(count(search, deleteTexts), 1u);
    EXPECT_THAT(reports[0].texts, ElementsAre("A", "B", "C", "D"));
    EXPECT_THAT(texts(), ElementsAre("keep"));
    EXPECT_EQ(elements(), 2u) << "a cell of which nothing is left goes";
    EXPECT_EQ(front().consoleText, "");
    EXPECT_EQ(count(search), 0u);
    EXPECT_EQ(mdlUndo_undo(), MDL_SUCCESS);
    EXPECT_EQ(texts(), before);
}

TEST_F(Symbols, DeletesNearTextsOnlyWhereNobodyWantsToHearOfThem) {
    addEllipse({0, 0, 0}, 5, 5);
    addText("AX");
    addCell({{"BX", {0, 0, 0}}, {"C", {0, 0, 0}}}, true);
    SymbolSearch search(SEARCH_GROUP_CIRCLE, {textsLike("A", 1), textsLike("B", 1), textsLike("C")});
    EXPECT_EQ(count(search, nearToo | deleteTexts), 1u);
    EXPECT_THAT(texts(), ElementsAre("AX", "BX", "C"));
    EXPECT_EQ(count(search, deleteTexts), 1u);
    EXPECT_THAT(texts(), ElementsAre("BX")) << "a near one stays in its cell";
}

TEST_F(Symbols, TellsWhatCannotBeDeleted) {
    addEllipse({0, 0, 0}, 5, 5);
    addText("A");
    ASSERT_EQ(mdlSystem_newDesignFile(path("test.mcd").c_str(), 1), MDL_SUCCESS);
    SymbolSearch search(SEARCH_GROUP_CIRCLE);
    EXPECT_EQ(count(search, deleteTexts), 1u);
    EXPECT_THAT(front().consoleText, HasSubstr("ERROR - The texts of element "));
    EXPECT_THAT(texts(), ElementsAre("A"));
}

TEST_F(Symbols, LooksInMasterUnitsWhateverTransformStands) {
    addEllipse({0, 0, 0}, 5, 5);
    addText("T", {20, 0, 0});
    SymbolSearch search(SEARCH_GROUP_CIRCLE);
    search.spec.minSizeA = search.spec.maxSizeA = 5;
    search.low = {{19, -1, 0}};
    search.high = {{21, 1, 0}};
    const mdl::CurrTransScope moved;
    ASSERT_EQ(mdlCurrTrans_scale(7, 7, 7), MDL_SUCCESS);
    ASSERT_EQ(count(search), 1u);
    EXPECT_NEAR(reports[0].axis1, 5, 1e-9) << "in the functions too";
}

TEST_F(Symbols, FunctionsMayChangeTheDrawingAndSearchAgain) {
    addText("T");
    addEllipse({0, 0, 0}, 5, 5);
    addEllipse({0, 0, 0}, 6, 6);
    static int inner, hits;
    inner = hits = 0;
    SymbolSearch search(SEARCH_GROUP_CIRCLE);
    const auto change = [](int*, ElementDescr* base, MSElementBuffer* texts, int32_t*, SearchElementSpec* spec, void*) {
        SearchElementSpec again = *spec;
        EXPECT_EQ(textOf(texts[0]), "T");
        mclibSearch_Element(
            &again, [](int*, ElementDescr*, MSElementBuffer*, int32_t*, SearchElementSpec*, void*) { ++inner; },
            nullptr, nullptr, nullptr, 0);
        EXPECT_EQ(textOf(texts[0]), "T");
        mdlElement_undoableDelete(nullptr, base->filePos, 0);
        addEllipse({0, 0, 0}, 7, 7);
        spec->group = SEARCH_GROUP_LINE;
        ++hits;
    };
    EXPECT_EQ(mclibSearch_Element(search.ready(), change, nullptr, nullptr, nullptr, 0), 0);
    EXPECT_EQ(hits, 2);
    EXPECT_EQ(inner, 2) << "the second time as lines";
    EXPECT_EQ(elements(), 3u);
}

TEST_F(Symbols, TellsWhatItCannotSearch) {
    addText("T");
    addEllipse({0, 0, 0}, 5, 5);
    const struct {
        const char* told;
        void (*spoil)(SymbolSearch&);
    } cases[] = {
        {"none of lines", [](SymbolSearch& s) { s.spec.group = 5; }},
        {"none of lines", [](SymbolSearch& s) { s.spec.group = 0; }},
        {"needs a text", [](SymbolSearch& s) { s.texts.clear(); }},
        {"needs a box", [](SymbolSearch& s) { s.low.clear(); }},
        {"isn't a number", [](SymbolSearch& s) { s.high[0].x = NAN; }},
    };
    for (const auto& c : cases) {
        SymbolSearch search(SEARCH_GROUP_CIRCLE);
        c.spoil(search);
        front().clear();
        EXPECT_THAT(recognised(search), IsEmpty());
        EXPECT_THAT(front().consoleText, HasSubstr(c.told));
        EXPECT_THAT(front().consoleText, HasSubstr("ERROR - Symbols can't be recognised: "));
    }
    front().clear();
    EXPECT_EQ(mclibSearch_Element(nullptr, nullptr, nullptr, nullptr, nullptr, 0), 0);
    EXPECT_THAT(front().consoleText, HasSubstr("no description"));
    mdlSystem_closeDesignFile();
    SymbolSearch search(SEARCH_GROUP_CIRCLE);
    EXPECT_THAT(recognised(search), IsEmpty());
    EXPECT_THAT(front().consoleText, HasSubstr("no design file"));
}

TEST_F(Symbols, AfterEachFailureOfMemoryTheSearchGoesOn) {
    for (int half = 0; half < 2; ++half) addArc({0, 0, 0}, 5, half * pi, pi);
    addCell({{"T", {0, 0, 0}}, {"keep", {0, 0, 0}}}, true);
    int told = 0;
    front().answer = [&](host::Dialog& dialog) {
        host::failMemoryFrom(0);  // the user made room
        ++told;
        return dialog.press(static_cast<size_t>(dialog.indexOf(ITEM_PUSH_BUTTON, MDL_BUTTON_FIRST)));
    };
    const auto search = [&](int failingCall) {
        SymbolSearch symbols(SEARCH_GROUP_CIRCLE, {textsLike("T")});
        host::failMemoryFrom(failingCall);
        mclibSearch_InitElement();
        count(symbols);
        host::failMemoryFrom(0);
    };
    const size_t before = host::memoryUse().blocks;
    int call = 1;
    for (; reports.empty() && call < 100; ++call) search(call);
    EXPECT_EQ(reports.size(), 1u);
    EXPECT_GT(told, 3);
    mclibSearch_InitElement();
    EXPECT_EQ(host::memoryUse().blocks, before);
}

// ---- a whole drawing ----

TEST_F(Symbols, RecognisesAThousandAmongNoise) {
    constexpr int symbols = 1000, kinds = 4;
    std::mt19937 random(7);
    const auto between = [&](double low, double high) { return std::uniform_real_distribution(low, high)(random); };
    std::vector<std::string> drawn[kinds];  // by group
    for (int i = 0; i < symbols; ++i) {
        const Point3d at = {i % 40 * 100.0, i / 40 * 100.0, 0};
        const double size = between(4, 6);
        const int group = static_cast<int>(random() % kinds), parts = 1 + static_cast<int>(random() % 4);
        // Noise: of other sizes, other texts, texts elsewhere, arcs that don't go round.
        addEllipse({at.x + 50, at.y, 0}, between(7, 9), between(7, 9));
        addLine({at.x - 30, at.y + 40, 0}, {at.x - 20, at.y + between(41, 49), 0});
        addArc({at.x + 50, at.y + 50, 0}, size, between(0, 6), between(1, 6));
        addText("X-99", {at.x + between(20, 70), at.y + between(20, 70), 0});
        addText("note", {at.x + size * 2, at.y, 0}, {.height = 1});
        if (random() % 4 == 0) continue;
        switch (group) {
            case 0: addLine({at.x - size / 2, at.y, 0}, {at.x + size / 2, at.y, 0}); break;
            case 1:
                if (parts == 1) addEllipse(at, size, size);
                for (int part = 0; parts > 1 && part < parts; ++part)
                    addArc(at, size, part * 2 * pi / parts, 2 * pi / parts);
                break;
            case 2: addBox(at, size, size); break;
            case 3: addText("BASE", at, {.height = size}); break;
        }
        const std::string text = "V-" + std::to_string(100 + i);
        addText(text.c_str(), {at.x + size * 2, at.y, 0}, {.height = 1});
        drawn[group].push_back(text);
    }
    for (int group = 0; group < kinds; ++group) {
        SymbolSearch search(group + 1, {textsLike("V-*")});
        search.spec.flags = SEARCH_SCALE_REGIONS;
        search.spec.minSizeA = 3.9;
        search.spec.maxSizeA = 6.1;
        std::strcpy(search.spec.pattern, "BASE");
        search.low = {{1.9, -0.1, 0}};
        search.high = {{2.1, 0.1, 0}};
        std::vector<std::string> found;
        for (const Report& report : recognised(search)) found.push_back(report.texts[0]);
        EXPECT_EQ(found, drawn[group]) << "group " << group + 1;
    }
    EXPECT_EQ(front().consoleText, "");
}

}  // namespace
