// Searches over the texts of a drawing: what is found, in which way it is told, and what the console says.
#include "mclib/design/text_search.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "mchost/mdl/element.h"
#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/text.h"
#include "mclib/design/criteria.h"
#include "tests/mclib/design/design_fixture.h"

using namespace mc;

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Search : public DesignTest {
  protected:
    // What is found, each as its text, with its errors where it has any. `then` sees each hit's position.
    template <class Then>
    std::vector<std::string> found(SearchTextSpec spec, Then then) {
        struct Hits {
            std::vector<std::string> texts;
            SearchTextSpec* spec;
            Then* then;
        } hits = {{}, &spec, &then};
        const auto exact = [](int* stop, MSElementBuffer* element, FilePos position, int32_t errors,
                              SearchTextSpec* given, void* arg) {
            auto& all = *static_cast<Hits*>(arg);
            EXPECT_EQ(*stop, 0);
            EXPECT_EQ(given, all.spec);
            char text[MDL_TEXT_CHARACTERS + 1];
            EXPECT_EQ(mdlText_extractString(text, element), MDL_SUCCESS);
            all.texts.push_back(text + (errors == 0 ? std::string() : " " + std::to_string(errors)));
            *stop = (*all.then)(position);
        };
        const auto near = [](int* stop, MSElementBuffer* element, FilePos position, int32_t errors,
                             SearchTextSpec* given, void* arg) {
            EXPECT_GT(errors, 0);
            static_cast<Hits*>(arg)->texts.push_back("near");
            decltype(exact){}(stop, element, position, errors, given, arg);
        };
        EXPECT_EQ(mclibSearch_Tekst(&spec, exact, &hits, near, &hits), 0);
        return hits.texts;
    }
    std::vector<std::string> found(const SearchTextSpec& spec) {
        return found(spec, [](FilePos) { return 0; });
    }
};

TEST_F(Search, FindsTextsThatFitAndThoseThatLieNear) {
    for (const char* text : {"ABCD", "abcd", "ABXD", "A B C D", "ABXYD", "E"}) ASSERT_NE(addText(text), 0u);
    EXPECT_THAT(found(textsLike("ABCD")), ElementsAre("ABCD", "abcd"));
    EXPECT_THAT(found(textsLike("ABCD", 1)), ElementsAre("ABCD", "abcd", "near", "ABXD 1"));
    EXPECT_THAT(found(textsLike("ABCD", 2)), ElementsAre("ABCD", "abcd", "near", "ABXD 1", "near", "ABXYD 2"));
    SearchTextSpec spec = textsLike("ABCD");
    spec.flags = SEARCH_CASE_SENSITIVE | SEARCH_IGNORE_BLANKS | SEARCH_SCALE_REGIONS;
    EXPECT_THAT(found(spec), ElementsAre("ABCD", "A B C D"));
    spec = textsLike("ABXD", 1);
    EXPECT_EQ(mclibSearch_Tekst(&spec, nullptr, nullptr, nullptr, nullptr), 0) << "nobody wants to hear of it";
    std::memset(spec.pattern, '?', sizeof spec.pattern);
    EXPECT_THAT(found(spec), IsEmpty()) << "a pattern without a NUL";
    EXPECT_EQ(front().consoleText, "");
}

TEST_F(Search, TakesTextsOfTheLookThatIsAskedFor) {
    addText("plain");
    addText("level", {}, {.level = 70});
    addText("color", {}, {.color = 3});
    addText("weight", {}, {.weight = 4});
    addText("style", {}, {.style = 5});
    addText("tall", {}, {.height = 3});
    MdlBitMask* levels = mdlBitMask_create();
    mdlBitMask_setBit(levels, 69, 1);
    struct Case {
        const char* expected;
        void (*ask)(SearchTextSpec&);
    };
    for (const Case& c : {Case{"color", [](SearchTextSpec& s) { s.color = 3; }},
                          Case{"weight", [](SearchTextSpec& s) { s.weight = 4; }},
                          Case{"style", [](SearchTextSpec& s) { s.style = 5; }},
                          Case{"tall", [](SearchTextSpec& s) { s.minHeight = 3; }},
                          Case{"tall", [](SearchTextSpec& s) { s.minHeight = s.maxHeight = 3; }}}) {
        SearchTextSpec spec = textsLike("*");
        c.ask(spec);
        EXPECT_THAT(found(spec), ElementsAre(c.expected));
    }
    SearchTextSpec spec = textsLike("*");
    spec.levelMask = levels;
    EXPECT_THAT(found(spec), ElementsAre("level"));
    mdlBitMask_setBit(levels, 69, 0);
    EXPECT_THAT(found(spec), IsEmpty()) << "a mask without a level";
    mdlBitMask_free(&levels);
    spec = textsLike("*");
    spec.maxHeight = 2;
    EXPECT_EQ(found(spec).size(), 5u);
    spec.minHeight = 2;
    EXPECT_EQ(found(spec).size(), 5u);
    spec.color = spec.weight = spec.style = 0;
    EXPECT_THAT(found(spec), ElementsAre("plain", "level"));
}

TEST_F(Search, LooksInABoxOfMasterUnitsWhateverTransformStands) {
    addText("in", {10, 10, 500});
    addText("out", {100, 10, 0});
    SearchTextSpec spec = textsLike("*");
    spec.flags = SEARCH_USE_RANGE;
    spec.low = {0, 0, 9};
    spec.high = {20, 20, 9};
    const mdl::CurrTransScope moved;
    ASSERT_EQ(mdlCurrTrans_scale(7, 7, 7), MDL_SUCCESS);
    EXPECT_THAT(found(spec), ElementsAre("in"));
    std::swap(spec.low, spec.high);
    EXPECT_THAT(found(spec), ElementsAre("in")) << "corners in any order";
    spec.minHeight = spec.maxHeight = 2;
    EXPECT_THAT(found(spec), ElementsAre("in")) << "heights too";
    EXPECT_EQ(front().consoleText, "");
}

TEST_F(Search, CutsCornersToWholeUor) {
    addText("low", {-10, -10, 0});
    addText("high", {10, 10, 0});  // up to 12
    const double half = mdlCnv_UORToMaster(nullptr, 0.5, nullptr);
    SearchTextSpec spec = textsLike("*");
    spec.flags = SEARCH_USE_RANGE;
    spec.low = {-50, -50, 0};
    spec.high = {-10 - half, -10 - half, 0};
    EXPECT_THAT(found(spec), ElementsAre("low"));
    spec.low = {9, 12 + half, 0};
    spec.high = {50, 50, 0};
    EXPECT_THAT(found(spec), ElementsAre("high"));
    spec.low.y += half;
    EXPECT_THAT(found(spec), IsEmpty());
}

TEST_F(Search, EndsWhenAFunctionSaysSo) {
    for (const char* text : {"A", "xyz", "Ax", "A"}) addText(text);
    EXPECT_THAT(found(textsLike("A", 1), [](FilePos) { return 1; }), ElementsAre("A"));
    int hits = 0;
    EXPECT_THAT(found(textsLike("A", 1), [&](FilePos) { return ++hits == 2 ? -1 : 0; }),
                ElementsAre("A", "near", "Ax 1"));
}

TEST_F(Search, FunctionsMayChangeTheDrawing) {
    FilePos positions[3];
    for (FilePos& position : positions) position = addText("A");
    int hits = 0;
    EXPECT_EQ(found(textsLike("A"),
                    [&](FilePos position) {
                        EXPECT_EQ(position, positions[hits == 0 ? 0 : 2]);
                        if (++hits == 1) mdlElement_undoableDelete(nullptr, positions[1], 0);
                        addText("A");
                        return 0;
                    })
                  .size(),
              2u);
    EXPECT_THAT(found(textsLike("A"), [&](FilePos) { return found(textsLike("A")).size() == 4 ? 1 : 0; }),
                ElementsAre("A"))
        << "a search within a search";
}

TEST_F(Search, GoesOnAsItBeganWhenItsDescriptionChanges) {
    for (int i = 0; i < 3; ++i) addText("A");
    SearchTextSpec spec = textsLike("A");
    int hits = 0;
    const auto change = [](int*, MSElementBuffer*, FilePos, int32_t, SearchTextSpec* given, void* arg) {
        ++*static_cast<int*>(arg);
        *given = textsLike("B");
    };
    EXPECT_EQ(mclibSearch_Tekst(&spec, change, &hits, nullptr, nullptr), 0);
    EXPECT_EQ(hits, 3);
}

TEST_F(Search, TellsWhatItCannotSearch) {
    addText("A");
    auto damaged = std::make_unique<MSElementBuffer>();
    const Point3d points[2] = {{0, 0, 0}, {1, 1, 0}};
    mdlLine_create(damaged.get(), nullptr, points);
    damaged->head.type = MDL_TEXT;
    const FilePos position = mdlElement_add(damaged.get());
    EXPECT_THAT(found(textsLike("A")), ElementsAre("A"));
    EXPECT_EQ(front().consoleText, "error extract: element " + std::to_string(position) + "\n");
    front().clear();
    SearchTextSpec spec = textsLike("A");
    spec.flags = SEARCH_USE_RANGE;
    spec.high = {NAN, 1, 1};
    EXPECT_THAT(found(spec), IsEmpty());
    EXPECT_THAT(front().consoleText, HasSubstr("ERROR - Texts can't be searched: "));
    front().clear();
    EXPECT_EQ(mclibSearch_Tekst(nullptr, nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_THAT(front().consoleText, HasSubstr("no description"));
    front().clear();
    mdlSystem_closeDesignFile();
    EXPECT_THAT(found(textsLike("A")), IsEmpty());
    EXPECT_THAT(front().consoleText, HasSubstr("no design file"));
}

}  // namespace
