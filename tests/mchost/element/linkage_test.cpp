#include <cstring>
#include <random>
#include <string>

#include "mchost/element/range.h"
#include "tests/mchost/element/fixture.h"

namespace {

constexpr uint16_t userId = 0x4F33, otherId = 0x1234;
const Point3d ends[] = {{0, 0, 0}, {1, 1, 0}};

struct Block {
    std::vector<uint8_t> bytes;
    LinkageHeader header{MDL_LINKAGE_USER, userId};
    explicit Block(uint32_t words, uint8_t fill = 1, uint16_t id = userId) : bytes(words * 2 - 4, fill) {
        header.primaryId = id;
        mdlLinkage_setWords(&header, words);
    }
    int appendTo(MSElementBuffer* e) const { return mdlLinkage_appendToElement(e, &header, bytes.data(), 0, 0); }
};

TEST(Linkages, EveryLengthComesBack) {
    for (const uint32_t words : {4u, 8u, 252u, 256u, 260u, 4092u, 4096u, 4100u}) {
        SCOPED_TRACE(words);
        TestElement e;
        mdlLine_create(e, nullptr, ends);
        ASSERT_EQ(Block(words).appendTo(e), MDL_SUCCESS);
        std::vector<uint8_t> back(8200, 9);
        uint32_t found = 0;
        ASSERT_EQ(mdlLinkage_extractFromElement(back.data(), e, userId, nullptr, nullptr, &found, nullptr),
                  MDL_SUCCESS);
        EXPECT_EQ(found, words);
        EXPECT_EQ(back[words * 2 - 1], 1);
        EXPECT_EQ(back[1] & 0x10, 0x10) << "the flag for user data";
    }
}

TEST(Linkages, LengthsThatNoneCanHaveAreRefused) {
    TestElement e;
    mdlLine_create(e, nullptr, ends);
    const uint32_t before = mdlElement_bytes(e);
    for (const uint32_t words : {0u, 1u, 3u, 6u, 4097u, 4104u, 0xFFFFFFFCu}) {
        Block block(4100);
        mdlLinkage_setWords(&block.header, words);
        EXPECT_EQ(block.appendTo(e), MDL_ERROR) << words;
    }
    EXPECT_EQ(mdlElement_bytes(e), before);
}

TEST(Linkages, AreRefusedWhenTheElementIsFull) {
    TestElement e;
    mdlLine_create(e, nullptr, ends);
    int count = 0;
    while (Block(4096).appendTo(e) == MDL_SUCCESS) ++count;
    EXPECT_EQ(count, 15);
    EXPECT_LE(mdlElement_bytes(e), uint32_t{MDL_ELEMENT_BYTES});
    int32_t deleted = 0;
    EXPECT_EQ(mdlLinkage_deleteFromElement(e, userId, nullptr, nullptr, nullptr, &deleted), MDL_SUCCESS);
    EXPECT_EQ(deleted, count);
    EXPECT_EQ(mdlElement_bytes(e), 32u + 48u);
}

TEST(Linkages, DeletingKeepsThoseOfOthers) {
    TestElement e;
    mdlLine_create(e, nullptr, ends);
    Block(4, 1).appendTo(e);
    Block(8, 2, otherId).appendTo(e);
    Block(12, 3).appendTo(e);
    int32_t deleted = 0;
    ASSERT_EQ(mdlLinkage_deleteFromElement(e, userId, nullptr, nullptr, nullptr, &deleted), MDL_SUCCESS);
    EXPECT_EQ(deleted, 2);
    uint8_t back[8200];
    EXPECT_EQ(mdlLinkage_extractFromElement(back, e, otherId, nullptr, nullptr, nullptr, nullptr), MDL_SUCCESS);
    EXPECT_EQ(back[15], 2);
    EXPECT_EQ(mdlLinkage_extractFromElement(nullptr, e, userId, nullptr, nullptr, nullptr, nullptr), MDL_ERROR);
    EXPECT_EQ(mdlLinkage_deleteFromElement(e, userId, nullptr, nullptr, nullptr, &deleted), MDL_SUCCESS);
    EXPECT_EQ(deleted, 0);
}

TEST(Linkages, DamagedLengthEndsTheWalk) {
    TestElement e;
    mdlLine_create(e, nullptr, ends);
    const uint32_t first = mdlElement_bytes(e);
    Block(4, 1, otherId).appendTo(e);
    Block(4).appendTo(e);
    for (const uint16_t word : {uint16_t{0x1FFF}, uint16_t{0x1004}, uint16_t{0x1000}}) {
        std::memcpy(e.get()->bytes + first, &word, 2);
        EXPECT_EQ(mdlLinkage_extractFromElement(nullptr, e, userId, nullptr, nullptr, nullptr, nullptr), MDL_ERROR);
    }
}

TEST(Cells, NamesAndDescriptionsOfFullLengthComeBack) {
    const std::wstring longest(511, L'\u00d8'), over(512, L'x');
    for (const int32_t is3d : {0, 1}) {
        TestElement e;
        const Point3d origin{11, 22, 33};
        ASSERT_EQ(mdlCell_create(e, longest.c_str(), &origin, is3d), MDL_SUCCESS);
        double stored[3] = {};
        std::memcpy(stored, e.get()->bytes + (is3d ? 232 : 176), is3d ? 24 : 16);
        EXPECT_EQ(stored[1], 22);
        wchar_t text[512];
        ASSERT_EQ(mdlCell_extractName(text, 512, e), MDL_SUCCESS);
        EXPECT_EQ(text, longest);
        EXPECT_EQ(mdlCell_extractDescription(text, 512, e), MDL_ERROR) << "it has none";
        ASSERT_EQ(mdlCell_setDescription(e, L"north arrow"), MDL_SUCCESS);
        ASSERT_EQ(mdlCell_setName(e, L"N"), MDL_SUCCESS);
        EXPECT_EQ(mdlCell_setName(e, over.c_str()), MDL_ERROR);
        EXPECT_EQ(mdlCell_setName(e, nullptr), MDL_ERROR);
        mdlCell_extractName(text, 512, e);
        EXPECT_EQ(std::wstring(text), L"N");
        mdlCell_extractDescription(text, 6, e);
        EXPECT_EQ(std::wstring(text), L"north");
        TestElement bare;
        ASSERT_EQ(mdlElement_stripAttributes(bare, e), MDL_SUCCESS);
        EXPECT_EQ(mdlCell_extractName(text, 512, bare), MDL_ERROR);
    }
}

// Whatever bytes an element has, nobody reads beyond them (the blocks are exactly as large as the elements say).
TEST(DamagedElements, AreReadWithinTheirBytes) {
    std::mt19937 random(7);
    const auto upTo = [&](uint32_t most) { return static_cast<uint32_t>(random() % (most + 1)); };
    for (int round = 0; round < 5000; ++round) {
        const uint32_t words = 16 + upTo(120);
        std::vector<uint64_t> block((words * 2 + 7) / 8);
        auto* e = reinterpret_cast<MSElementBuffer*>(block.data());
        auto* bytes = reinterpret_cast<uint8_t*>(block.data());
        for (uint32_t i = 32; i < words * 2; ++i) bytes[i] = static_cast<uint8_t>(upTo(3) ? upTo(5) : random());
        constexpr uint16_t types[] = {2, 3, 4, 6, 7, 14, 15, 16, 17, 27, 33, 66};
        const ElementHead head{types[upTo(11)], 0, words, 16 + upTo(words - 16), 1, 0, 0, 0, 0, 0};
        std::memcpy(bytes, &head, sizeof head);
        ASSERT_TRUE(host::elementIsSound(e, words * 2));
        EXPECT_FALSE(host::elementIsSound(e, words * 2 - 1));
        Range3d range;
        host::elementRange(e, range);
        strokeOf(e, 1e300);
        Point3d points[8];
        int32_t count = 0;
        mdlLinear_extract(points, &count, e, 8);
        mdlLinear_getClosestSegment(points, nullptr, nullptr, e);
        char text[256];
        mdlText_extract(nullptr, nullptr, nullptr, nullptr, text, nullptr, nullptr, nullptr, nullptr, nullptr, e);
        mdlText_extractShape(points, nullptr, e, 0, 0);
        wchar_t wide[512];
        mdlCell_extractName(wide, 512, e);
        mdlArc_extract(points, nullptr, nullptr, nullptr, nullptr, nullptr, e);
        BsplineCurve curve{};
        if (mdlBspline_extractCurve(&curve, e) == MDL_SUCCESS) mdlBspline_freeCurve(&curve);
        LineStyleParams params;
        mdlElement_getLineStyleParams(&params, e);
        DescriptorHolder d;
        ASSERT_EQ(mdlElmdscr_new(&d.ed, nullptr, e), MDL_SUCCESS);
        mdlElmdscr_validate(d.ed, nullptr);
        const Transform shift{{{1, 0, 0, 5}, {0, 1, 0, 5}, {0, 0, 1, 5}}};
        mdlElmdscr_transform(d.ed, &shift);
    }
}

TEST(DamagedElements, HeadsThatContradictThemselvesAreNotSound) {
    TestElement e;
    mdlLine_create(e, nullptr, ends);
    const ElementHead good = e.get()->head;
    const auto broken = [&](auto change) {
        e.get()->head = good;
        change(e.get()->head);
        return !host::elementIsSound(e, MDL_ELEMENT_BYTES) && mdlElement_bytes(e) == 0;
    };
    EXPECT_TRUE(broken([](ElementHead& h) { h.type = 0; }));
    EXPECT_TRUE(broken([](ElementHead& h) { h.zero = 1; }));
    EXPECT_TRUE(broken([](ElementHead& h) { h.size = 15; }));
    EXPECT_TRUE(broken([](ElementHead& h) { h.size = MDL_ELEMENT_BYTES / 2 + 1; }));
    EXPECT_TRUE(broken([](ElementHead& h) { h.attributeOffset = h.size + 1; }));
    EXPECT_TRUE(broken([](ElementHead& h) { h.attributeOffset = 15; }));
    EXPECT_FALSE(host::elementIsSound(e, 31));
    ElementDescr* ed = nullptr;
    EXPECT_EQ(mdlElmdscr_new(&ed, nullptr, e), MDL_ERROR);
    EXPECT_EQ(ed, nullptr);
}

}  // namespace
