// Texts rewritten in place, text nodes and their lines.
#include <cstring>
#include <string>

#include "tests/mchost/element/fixture.h"

namespace {

constexpr TextSize size{1, 20, 30, 0};

TestElement textAt(const Point3d& origin, const char* text, int32_t just = 2) {
    TestElement e;
    const TextParams params{7, just, -1, -1, TEXT_FLAG_SLANT, 0.2, 5};
    EXPECT_EQ(mdlText_create(e, nullptr, text, &origin, nullptr, &size, &params, 0), MDL_SUCCESS);
    return e;
}

std::string stringOf(const MSElementBuffer* element) {
    char text[MDL_TEXT_CHARACTERS + 1] = "none";
    mdlText_extractString(text, element);
    return text;
}

TEST(TextInPlace, OnlyTheWordsChange) {
    for (int kind = 0; kind < TestSystem::kinds; ++kind) {
        const TestSystem system(kind);
        TestElement e = textAt({100, 200, 0}, "old");
        const uint32_t data[2] = {0, 4711};
        LinkageHeader link{MDL_LINKAGE_USER, 0x4F33};
        mdlLinkage_setWords(&link, 4);
        ASSERT_EQ(mdlLinkage_appendToElement(e, &link, data, 0, 0), MDL_SUCCESS);
        const auto before = std::make_unique<MSElementBuffer>(*e.get());
        ASSERT_EQ(mdlText_create(e, e, "Gr\xF8nn, and longer than before", nullptr, nullptr, nullptr, nullptr, 0),
                  MDL_SUCCESS);
        EXPECT_EQ(stringOf(e), "Gr\xF8nn, and longer than before");
        uint8_t linkage[8200];
        EXPECT_EQ(mdlLinkage_extractFromElement(linkage, e, 0x4F33, nullptr, nullptr, nullptr, nullptr), MDL_SUCCESS);
        ASSERT_EQ(mdlText_create(e, e, "old", nullptr, nullptr, nullptr, nullptr, 0), MDL_SUCCESS);
        EXPECT_EQ(std::memcmp(e.get(), before.get(), mdlElement_bytes(before.get())), 0) << kind;
    }
}

TEST(TextInPlace, WhatIsGivenTakesThePlaceOfTheTemplates) {
    for (int kind = 0; kind < TestSystem::kinds; ++kind) {
        const TestSystem system(kind);
        TestElement e = textAt({100, 200, 0}, "old");
        const Point3d origin{-5, 7, 0};
        const TextSize larger{1, 40, 60, 0};
        ASSERT_EQ(mdlText_create(e, e, "new", &origin, nullptr, &larger, nullptr, 0), MDL_SUCCESS);
        Point3d at;
        TextSize found;
        TextParams params;
        wchar_t words[MDL_TEXT_CHARACTERS + 1];
        ASSERT_EQ(mdlText_extractWide(words, &at, nullptr, &found, &params, e), MDL_SUCCESS);
        EXPECT_STREQ(words, L"new");
        expectNear(at, origin, 1e-9);
        EXPECT_NEAR(found.width, 40, 1e-9);
        EXPECT_NEAR(found.height, 60, 1e-9);
        EXPECT_EQ(params.font, 7);
        EXPECT_EQ(params.slant, 0.2);
    }
}

TEST(TextInPlace, RefusesWhatATextCanNotHold) {
    TestElement e = textAt({}, "old");
    EXPECT_EQ(mdlText_create(e, e, std::string(256, 'x').c_str(), nullptr, nullptr, nullptr, nullptr, 0), MDL_ERROR);
    EXPECT_EQ(stringOf(e), "old");
    EXPECT_EQ(mdlText_create(e, e, std::string(255, 'x').c_str(), nullptr, nullptr, nullptr, nullptr, 0), MDL_SUCCESS);
    TestElement line;
    const Point3d ends[2] = {{0, 0, 0}, {1, 0, 0}};
    mdlLine_create(line, nullptr, ends);
    EXPECT_EQ(mdlText_extractString(nullptr, line), MDL_ERROR);
    EXPECT_EQ(mdlText_extractWide(nullptr, nullptr, nullptr, nullptr, nullptr, line), MDL_ERROR);
}

struct Node {
    explicit Node(int32_t just) {
        TestElement header;
        const TextParams params{7, just, -1, -1, 0, 0, 10};
        const Point3d origin{100, 200, 0};
        EXPECT_EQ(mdlTextNode_createWide(header, nullptr, nullptr, &origin, nullptr, &size, &params), MDL_SUCCESS);
        mdlElmdscr_new(&ed, nullptr, header);
    }
    ~Node() { mdlElmdscr_freeAll(&ed); }
    std::vector<double> heights() const {
        std::vector<double> found;
        for (const ElementDescr* line = ed->firstChild; line; line = line->next) {
            Point3d at;
            mdlText_extractWide(nullptr, &at, nullptr, nullptr, nullptr, line->element);
            EXPECT_NEAR(at.x, 100, 1e-9);
            found.push_back(at.y);
        }
        return found;
    }
    ElementDescr* ed = nullptr;
};

TEST(TextNode, LinesStandBelowEachOther) {
    const struct {
        int32_t just;
        std::vector<double> heights;
    } cases[] = {{0, {200, 160, 120}}, {2, {200, 160, 120}}, {7, {240, 200, 160}}};
    for (const auto& c : cases) {
        const Node node(c.just);
        ASSERT_EQ(mdlText_addStringsToNodeDscr(node.ed, "one\r\n\nthree"), MDL_SUCCESS);
        EXPECT_EQ(node.heights(), c.heights) << c.just;
        EXPECT_EQ(stringOf(node.ed->firstChild->element), "one");
        EXPECT_EQ(stringOf(node.ed->firstChild->next->element), " ");
        EXPECT_EQ(stringOf(node.ed->lastChild->element), "three");
    }
}

TEST(TextNode, LinesAddedLaterStandWhereTheNodeWasMovedTo) {
    const Node node(2);
    Transform move{{{1, 0, 0, 0}, {0, 1, 0, 50}, {0, 0, 1, 0}}};
    ASSERT_EQ(mdlElmdscr_transform(node.ed, &move), MDL_SUCCESS);
    ASSERT_EQ(mdlText_addStringsToNodeDscr(node.ed, "one"), MDL_SUCCESS);
    EXPECT_EQ(node.heights(), std::vector<double>{250});
}

TEST(TextNode, TooLongALineAddsNothing) {
    const Node node(2);
    EXPECT_EQ(mdlText_addStringsToNodeDscr(node.ed, ("one\n" + std::string(256, 'x')).c_str()), MDL_ERROR);
    EXPECT_EQ(node.ed->firstChild, nullptr);
    EXPECT_EQ(mdlText_addStringsToNodeDscr(nullptr, "one"), MDL_ERROR);
}

}  // namespace
