#include <string>

#include "mchost/element/range.h"
#include "mchost/mdl/locate.h"
#include "mchost/mdl/modify.h"
#include "tests/mchost/element/fixture.h"

namespace {

// Builds descriptors of small elements that are told apart by their colour.
class Descriptors : public testing::Test {
  protected:
    MSElementBuffer* line(uint32_t color, double length = 10) {
        const Point3d ends[] = {{0, 0, 0}, {length, 5, 0}};
        mdlLine_create(buffer, nullptr, ends);
        mdlElement_setSymbology(buffer, &color, nullptr, nullptr);
        return buffer;
    }
    MSElementBuffer* header(uint32_t color, int type = MDL_CELL_HEADER) {
        const Point3d origin{0, 0, 0};
        mdlCell_create(buffer, L"C", &origin, 1);
        buffer.get()->head.type = static_cast<uint16_t>(type);
        mdlElement_setSymbology(buffer, &color, nullptr, nullptr);
        return buffer;
    }
    // line 1, cell 2 with line 3 and cell 4 with line 5, line 6
    void makeTree() {
        ASSERT_EQ(mdlElmdscr_new(&tree.ed, nullptr, line(1)), MDL_SUCCESS);
        ElementDescr *outer = nullptr, *inner = nullptr;
        mdlElmdscr_new(&outer, nullptr, header(2));
        mdlElmdscr_new(&inner, nullptr, header(4));
        mdlElmdscr_appendElement(outer, line(3));
        mdlElmdscr_appendElement(inner, line(5));
        ASSERT_EQ(mdlElmdscr_appendDscr(outer, inner), MDL_SUCCESS);
        ASSERT_EQ(mdlElmdscr_appendDscr(tree.ed, outer), MDL_SUCCESS);
        ASSERT_EQ(mdlElmdscr_appendElement(tree.ed, line(6)), MDL_SUCCESS);
    }
    static std::string colors(ElementDescr* ed, int32_t order = 11) {
        std::string seen;
        const auto note = [](MSElementBuffer* e, void* arg, int32_t, int32_t, ElementDescr*) {
            *static_cast<std::string*>(arg) += std::to_string(e->head.color);
            return 0;
        };
        mdlElmdscr_operation(ed, note, &seen, order);
        return seen;
    }
    // Links of both directions and parents agree all over the chain.
    static void expectWhole(const ElementDescr* ed, const ElementDescr* parent = nullptr) {
        const ElementDescr* before = nullptr;
        for (; ed; before = ed, ed = ed->next) {
            EXPECT_EQ(ed->previous, before);
            EXPECT_EQ(ed->parent, parent);
            expectWhole(ed->firstChild, ed);
        }
        if (parent) {
            EXPECT_EQ(parent->lastChild, before);
        }
    }

    TestElement buffer;
    DescriptorHolder tree;
};

TEST_F(Descriptors, OperationVisitsHeadersBeforeTheirComponents) {
    makeTree();
    expectWhole(tree.ed);
    EXPECT_EQ(colors(tree.ed), "123456");
    EXPECT_EQ(colors(tree.ed, 1), "1356");
    EXPECT_EQ(colors(tree.ed, 2), "2");
    EXPECT_EQ(colors(tree.ed, 8), "4");
}

TEST_F(Descriptors, OperationStopsAtTheFirstResult) {
    makeTree();
    int calls = 0;
    const auto stop = [](MSElementBuffer* e, void* arg, int32_t, int32_t, ElementDescr*) -> int {
        ++*static_cast<int*>(arg);
        return e->head.color == 3 ? 77 : 0;
    };
    EXPECT_EQ(mdlElmdscr_operation(tree.ed, stop, &calls, 11), 77);
    EXPECT_EQ(calls, 3);
}

TEST_F(Descriptors, AppendingCopiesTheElement) {
    makeTree();
    line(9);
    EXPECT_EQ(colors(tree.ed), "123456");
    ElementDescr* copy = nullptr;
    ASSERT_EQ(mdlElmdscr_duplicate(&copy, tree.ed), MDL_SUCCESS);
    mdlElmdscr_freeAll(&tree.ed);
    EXPECT_EQ(tree.ed, nullptr);
    EXPECT_EQ(colors(copy), "123456");
    expectWhole(copy);
    mdlElmdscr_freeAll(&copy);
}

TEST_F(Descriptors, LongChainsAreBuiltQuickly) {
    ASSERT_EQ(mdlElmdscr_new(&tree.ed, nullptr, line(0)), MDL_SUCCESS);
    for (int i = 0; i < 100000; ++i) ASSERT_EQ(mdlElmdscr_appendElement(tree.ed, buffer), MDL_SUCCESS);
    EXPECT_EQ(colors(tree.ed).size(), 100001u);
}

TEST_F(Descriptors, PartsThatStandSomewhereCantBeAppendedAgain) {
    makeTree();
    EXPECT_EQ(mdlElmdscr_appendDscr(tree.ed, tree.ed), MDL_ERROR);
    EXPECT_EQ(mdlElmdscr_appendDscr(tree.ed, tree.ed->next->firstChild), MDL_ERROR);
    EXPECT_EQ(mdlElmdscr_appendDscr(tree.ed->next, tree.ed), MDL_ERROR) << "into its own chain";
    EXPECT_EQ(mdlElmdscr_appendDscr(tree.ed->next->firstChild, tree.ed), MDL_ERROR) << "into its own component";
    EXPECT_EQ(mdlElmdscr_appendElement(nullptr, line(1)), MDL_ERROR);
    expectWhole(tree.ed);
}

TEST_F(Descriptors, FreeingComponentsLeavesTheHeaderWhole) {
    makeTree();
    ElementDescr* part = tree.ed->next->firstChild->next;  // cell 4
    mdlElmdscr_freeAll(&part);
    EXPECT_EQ(colors(tree.ed), "1236");
    expectWhole(tree.ed);
    ElementDescr* end = tree.ed->next;
    mdlElmdscr_freeAll(&end);
    ASSERT_EQ(mdlElmdscr_appendElement(tree.ed, line(7)), MDL_SUCCESS);
    EXPECT_EQ(colors(tree.ed), "17");
    expectWhole(tree.ed);
}

TEST_F(Descriptors, RangeCoversComponentsAndIgnoresWhatHasNone) {
    Point3d low{7, 7, 7}, high{7, 7, 7};
    ASSERT_EQ(mdlElmdscr_new(&tree.ed, nullptr, header(1)), MDL_SUCCESS);
    EXPECT_EQ(mdlElmdscr_computeRange(&low, &high, tree.ed, nullptr), MDL_ERROR);
    expectNear(low, {7, 7, 7}, 0);
    mdlElmdscr_appendElement(tree.ed, line(2, -30));
    mdlElmdscr_appendElement(tree.ed, line(2, 20));
    {
        TestSystem system(4);
        ASSERT_EQ(mdlElmdscr_computeRange(&low, &high, tree.ed, nullptr), MDL_SUCCESS);
    }
    expectNear(low, {-30, 0, 0}, 0);
    expectNear(high, {20, 5, 0}, 0);
}

TEST_F(Descriptors, TransformMovesEveryKindOfElementAlike) {
    const Transform t{{{0, -2, 0, 100}, {2, 0, 0, 200}, {0, 0, 2, 0}}};
    const Point3d center{3, 4, 0};
    const TextSize size{1, 5, 5, 1};
    mdlElmdscr_new(&tree.ed, nullptr, line(1));
    mdlArc_create(buffer, nullptr, &center, 5, 2, nullptr, 0, 2);
    mdlElmdscr_appendElement(tree.ed, buffer);
    mdlText_createWide(buffer, nullptr, L"abc", &center, nullptr, &size, nullptr, 0);
    mdlElmdscr_appendElement(tree.ed, buffer);
    Point3d low, high, wantedLow, wantedHigh;
    ASSERT_EQ(mdlElmdscr_computeRange(&wantedLow, &wantedHigh, tree.ed, &t), MDL_SUCCESS);
    ASSERT_EQ(mdlElmdscr_transform(tree.ed, &t), MDL_SUCCESS);
    ASSERT_EQ(mdlElmdscr_computeRange(&low, &high, tree.ed, nullptr), MDL_SUCCESS);
    expectNear(low, wantedLow, 1e-9);
    expectNear(high, wantedHigh, 1e-9);
    const Transform endless{{{1e308, 0, 0, 0}, {0, 1e308, 0, 0}, {0, 0, 1, 0}}};
    EXPECT_EQ(mdlElmdscr_transform(tree.ed, &endless), MDL_ERROR);
    ASSERT_EQ(mdlElmdscr_computeRange(&low, &high, tree.ed, nullptr), MDL_SUCCESS);
    expectNear(low, wantedLow, 1e-9);
}

TEST_F(Descriptors, ComplexShapeIsStrokedAsOneClosedRun) {
    ASSERT_EQ(mdlElmdscr_new(&tree.ed, nullptr, header(1, MDL_COMPLEX_SHAPE)), MDL_SUCCESS);
    const Point3d base[] = {{-5, 0, 0}, {5, 0, 0}}, center{0, 0, 0};
    mdlLine_create(buffer, nullptr, base);
    mdlElmdscr_appendElement(tree.ed, buffer);
    mdlArc_create(buffer, nullptr, &center, 5, 5, nullptr, 0, M_PI);
    mdlElmdscr_appendElement(tree.ed, buffer);
    Point3d* points = nullptr;
    int32_t count = 0;
    ASSERT_EQ(mdlElmdscr_stroke(&points, &count, tree.ed, 0.01), MDL_SUCCESS);
    expectNear(points[count - 1], points[0], 0);
    double length = 0;
    for (int i = 1; i < count; ++i) {
        const double step = mdlVec_distance(&points[i - 1], &points[i]);
        EXPECT_GT(step, 1e-6) << "no point stands twice";
        length += step;
    }
    EXPECT_NEAR(length, 10 + 5 * M_PI, 0.1);
    dlmSystem_mdlFree(points);
    EXPECT_EQ(mdlElmdscr_stroke(&points, &count, tree.ed, 0), MDL_ERROR);
}

// Leaves, changes, removes or replaces by colour.
int modify(MSElementBuffer* e, void*, ModelRef*, ElementDescr*, ElementDescr** newDescrPP) {
    const int32_t color = e->head.color;
    if (color == 1 || color == 9) return MDL_MODIFY_REMOVE;
    if (color == 5) {
        Point3d many[100];
        for (int i = 0; i < 100; ++i) many[i] = {static_cast<double>(i), 0, 0};
        EXPECT_EQ(mdlLineString_create(e, e, many, 100), MDL_SUCCESS);  // outgrows its place
        const uint32_t changed = 8;
        mdlElement_setSymbology(e, &changed, nullptr, nullptr);
        return MDL_MODIFY_CHANGED;
    }
    if (color != 3) return MDL_MODIFY_NONE;
    e->head.color = 7;
    mdlElmdscr_new(newDescrPP, nullptr, e);
    mdlElmdscr_appendElement(*newDescrPP, e);
    return MDL_MODIFY_REPLACE_DESCR;
}

TEST_F(Descriptors, ModifyChangesRemovesAndReplaces) {
    makeTree();
    const auto run = [&] {
        return mdlModify_elementDescr2(&tree.ed, nullptr, MDL_MODIFY_NO_HEADERS, modify, nullptr, 0);
    };
    EXPECT_EQ(run(), 3);
    EXPECT_EQ(colors(tree.ed), "277486");
    expectWhole(tree.ed);
    ASSERT_EQ(mdlElmdscr_appendElement(tree.ed->next, line(9)), MDL_SUCCESS);
    EXPECT_EQ(colors(tree.ed), "2774869");
    EXPECT_EQ(mdlElmdscr_validate(tree.ed, nullptr), MDL_SUCCESS);
    EXPECT_EQ(run(), 1);
    EXPECT_EQ(colors(tree.ed), "277486");
    expectWhole(tree.ed);
    mdlElmdscr_freeAll(&tree.ed);
    mdlElmdscr_new(&tree.ed, nullptr, line(1));
    mdlElmdscr_appendElement(tree.ed, line(9));
    EXPECT_EQ(run(), 2);
    EXPECT_EQ(tree.ed, nullptr);
}

// Notes the colours that it is asked about and removes the cell of colour 4.
int noteAll(MSElementBuffer* e, void* seen, ModelRef*, ElementDescr*, ElementDescr**) {
    *static_cast<std::string*>(seen) += std::to_string(e->head.color);
    return e->head.color == 4 ? MDL_MODIFY_REMOVE : MDL_MODIFY_NONE;
}

TEST_F(Descriptors, ModifyAsksForHeadersOrForOneComponent) {
    makeTree();
    std::string seen;
    const auto asked = [&](int32_t request, int32_t offset) {
        seen.clear();
        const int changes = mdlModify_elementDescr2(&tree.ed, nullptr, request, noteAll, &seen, offset);
        return seen + "/" + std::to_string(changes);
    };
    EXPECT_EQ(asked(MDL_MODIFY_NO_HEADERS, MDL_COMPONENT_OFFSET + 2), "3/0");
    EXPECT_EQ(asked(MDL_MODIFY_ALL, MDL_COMPONENT_OFFSET + 4), "5/0");
    EXPECT_EQ(asked(MDL_MODIFY_ALL, MDL_COMPONENT_OFFSET + 9), "/0");
    EXPECT_EQ(asked(MDL_MODIFY_ALL, 3), "/0") << "no component has that offset";
    EXPECT_EQ(asked(3, 0), "/0");
    EXPECT_EQ(asked(MDL_MODIFY_ALL, 0), "12346/1") << "what is removed isn't looked into";
    EXPECT_EQ(colors(tree.ed), "1236");
    expectWhole(tree.ed);
}

TEST_F(Descriptors, ARemovedNodeLeavesTheRestWhole) {
    makeTree();
    const uint32_t group = 7;
    const LevelId level = 3;
    EXPECT_EQ(mdlElmdscr_setProperties(tree.ed, &level, nullptr), MDL_SUCCESS);
    EXPECT_EQ(mdlElmdscr_setProperties(tree.ed->next, nullptr, &group), MDL_SUCCESS);
    EXPECT_EQ(tree.ed->next->lastChild->firstChild->element->head.level, 3u);
    EXPECT_EQ(tree.ed->next->lastChild->firstChild->element->head.graphicGroup, 7u);
    EXPECT_EQ(tree.ed->element->head.graphicGroup, 0u);
    EXPECT_EQ(mdlElmdscr_removeElement(tree.ed->next->firstChild), MDL_SUCCESS);
    EXPECT_EQ(mdlElmdscr_removeElement(tree.ed->next->next), MDL_SUCCESS);
    EXPECT_EQ(colors(tree.ed), "1245");
    expectWhole(tree.ed);
    ElementDescr* const second = tree.ed->next;
    EXPECT_EQ(mdlElmdscr_removeElement(tree.ed), MDL_SUCCESS);
    tree.ed = second;
    ASSERT_EQ(mdlElmdscr_appendElement(tree.ed->firstChild, line(8)), MDL_SUCCESS);
    EXPECT_EQ(colors(tree.ed), "2458");
    expectWhole(tree.ed);
    EXPECT_EQ(mdlElmdscr_removeElement(nullptr), MDL_ERROR);
    EXPECT_EQ(mdlElmdscr_setProperties(nullptr, &level, nullptr), MDL_ERROR);
}

}  // namespace
