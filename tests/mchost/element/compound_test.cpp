// Elements that are shown by others: tags, and compounds of plain elements.
#include "mchost/mdl/compound.h"

#include <cstring>
#include <string>

#include "mchost/element/geometry.h"
#include "mchost/element/range.h"
#include "mchost/mdl/tag.h"
#include "tests/mchost/element/fixture.h"

using namespace host;

namespace {

constexpr TextSize tenHigh{1, 10, 10, 1};

MdlTagValue stringValue(const std::string& text) {
    MdlTagValue value{};
    value.type = MDL_TAG_STRING;
    std::memcpy(value.string, text.data(), text.size());
    return value;
}

MdlTagValue realValue(double number) {
    MdlTagValue value{};
    value.type = MDL_TAG_DOUBLE;
    value.doubleValue = number;
    return value;
}

TEST(Tags, GiveBackWhatTheyWereMadeWithInEverySystem) {
    for (int kind = 0; kind < TestSystem::kinds; ++kind) {
        SCOPED_TRACE(kind);
        TestSystem system(kind);
        TestElement e;
        MdlTagValue value{}, back;
        value.type = MDL_TAG_SHORT;
        value.shortValue = -7;
        const Point3d origin{5, 6, 0};
        const TextSize size{1, 3, 2.5, 1.2};
        TextParams params{}, foundParams;
        params.just = 12;
        RotMatrix turned, rotation;
        mdlRMatrix_fromAngle(&turned, 0.4);
        ASSERT_EQ(mdlTag_create(e, nullptr, &value, &origin, &turned, &size, &params, 1), MDL_SUCCESS);
        Point3d found;
        TextSize foundSize;
        int32_t display = 0;
        ASSERT_EQ(mdlTag_extract(&found, &foundSize, &rotation, &display, &foundParams, &back, e, nullptr),
                  MDL_SUCCESS);
        expectNear(found, origin, 1e-9);
        EXPECT_NEAR(foundSize.width, 3, 1e-9);
        EXPECT_NEAR(foundSize.height, 2.5, 1e-9);
        EXPECT_NEAR(rotation.form[1][0], std::sin(0.4), 1e-9);
        EXPECT_EQ(foundParams.just, 12);
        EXPECT_EQ(display, 1);
        EXPECT_EQ(std::tuple(back.type, back.shortValue, back.longValue), std::tuple(MDL_TAG_SHORT, -7, 0));
    }
}

TEST(Tags, TakeThePlaceOfTheTextThatTheyShow) {
    const Point3d origin{100, 200, 0};
    TestElement tag, text;
    const MdlTagValue value = realValue(2);
    ASSERT_EQ(mdlTag_create(tag, nullptr, &value, &origin, nullptr, &tenHigh, nullptr, 1), MDL_SUCCESS);
    ASSERT_EQ(mdlText_createWide(text, nullptr, L"2.000", &origin, nullptr, &tenHigh, nullptr, 0), MDL_SUCCESS);
    const Transform turned{{{0, -2, 0, 7}, {2, 0, 0, 8}, {0, 0, 1, 0}}};
    for (MSElementBuffer* e : {tag.get(), text.get()}) ASSERT_EQ(mdlElement_transform(e, e, &turned), MDL_SUCCESS);
    Range3d ofTag, ofText;
    ASSERT_TRUE(elementRange(tag, ofTag) && elementRange(text, ofText));
    expectNear(ofTag.low, ofText.low, 0);
    expectNear(ofTag.high, ofText.high, 0);
    ASSERT_EQ(mdlTag_create(tag, nullptr, &value, &origin, nullptr, &tenHigh, nullptr, 0), MDL_SUCCESS);
    EXPECT_FALSE(elementRange(tag, ofTag)) << "a hidden one";
}

TEST(Tags, RefuseValuesWithoutAText) {
    TestElement e;
    MdlTagValue endless{};
    endless.type = MDL_TAG_STRING;
    std::memset(endless.string, 'x', sizeof endless.string);
    for (const MdlTagValue& value : {endless, realValue(NAN), realValue(-HUGE_VAL), realValue(1e300)})
        EXPECT_EQ(mdlTag_create(e, nullptr, &value, nullptr, nullptr, &tenHigh, nullptr, 1), MDL_ERROR);
    EXPECT_EQ(mdlElement_bytes(e), 0u);
    const MdlTagValue longest = stringValue(std::string(MDL_TEXT_CHARACTERS, 'x')), full = realValue(-1e249);
    for (const MdlTagValue& value : {longest, full}) {
        MdlTagValue back;
        ASSERT_EQ(mdlTag_create(e, nullptr, &value, nullptr, nullptr, &tenHigh, nullptr, 1), MDL_SUCCESS);
        ASSERT_EQ(mdlTag_extract(nullptr, nullptr, nullptr, nullptr, nullptr, &back, e, nullptr), MDL_SUCCESS);
        EXPECT_STREQ(back.string, value.string);
        EXPECT_EQ(back.doubleValue, value.doubleValue);
    }
}

class Compounds : public testing::Test {
  protected:
    Compounds() {
        const Point3d ends[] = {{0, 0, 0}, {10, 0, 0}}, centre{20, 0, 0}, origin{5, 30, 0};
        mdlLine_create(buffer, nullptr, ends);
        setLook(buffer, 1, 4);
        EXPECT_EQ(mdlElmdscr_new(&parts.ed, nullptr, buffer), MDL_SUCCESS);
        mdlArc_create(buffer, nullptr, &centre, 5, 5, nullptr, 0, 1);
        setLook(buffer, 2, 5);
        EXPECT_EQ(mdlElmdscr_appendElement(parts.ed, buffer), MDL_SUCCESS);
        mdlText_createWide(buffer, nullptr, L"odd", &origin, nullptr, &tenHigh, nullptr, 0);
        setLook(buffer, 3, 6);
        EXPECT_EQ(mdlElmdscr_appendElement(parts.ed, buffer), MDL_SUCCESS);
    }
    static void setLook(MSElementBuffer* e, uint32_t color, uint32_t level) {
        mdlElement_setSymbology(e, &color, nullptr, nullptr);
        mdlElement_setProperties(e, &level, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    }
    // Types, colours and levels of a chain.
    static std::string told(const ElementDescr* ed) {
        std::string all;
        for (; ed; ed = ed->next)
            all += std::to_string(ed->element->head.type) + " colour " + std::to_string(ed->element->head.color) +
                   " level " + std::to_string(ed->element->head.level) + "; ";
        return all;
    }

    TestElement buffer;
    DescriptorHolder parts;
};

TEST_F(Compounds, OpenAsTheElementsThatTheyHold) {
    TestElement e;
    ASSERT_EQ(mdlCompound_create(e, nullptr, parts.ed), MDL_SUCCESS);
    setLook(e, 9, 7);
    const Transform moved{{{2, 0, 0, 100}, {0, 2, 0, 0}, {0, 0, 2, 0}}};
    ASSERT_EQ(mdlElement_transform(e, e, &moved), MDL_SUCCESS);
    DescriptorHolder opened;
    ASSERT_EQ(mdlElmdscr_fromCompoundElement(&opened.ed, e, nullptr), MDL_SUCCESS);
    EXPECT_EQ(told(opened.ed), "3 colour 1 level 7; 16 colour 2 level 7; 17 colour 3 level 7; ");
    Range3d whole, sum;
    ASSERT_TRUE(elementRange(e, whole));
    mdlElmdscr_computeRange(&sum.low, &sum.high, opened.ed, nullptr);
    expectNear(whole.low, sum.low, 0);
    expectNear(whole.high, sum.high, 0);
    EXPECT_EQ(whole.low.x, 100);
    e.get()->head.type = MDL_DIMENSION;
    mdlElmdscr_freeAll(&opened.ed);
    ASSERT_EQ(mdlElmdscr_fromCompoundElement(&opened.ed, e, nullptr), MDL_SUCCESS);
    EXPECT_EQ(told(opened.ed), "3 colour 9 level 7; 16 colour 9 level 7; 17 colour 9 level 7; ");
}

TEST_F(Compounds, HoldPlainElementsAlone) {
    TestElement e;
    EXPECT_EQ(mdlCompound_create(e, nullptr, nullptr), MDL_ERROR);
    const std::vector<Point3d> many(MDL_MAX_POINTS, Point3d{1, 2, 3});
    ASSERT_EQ(mdlLineString_create(buffer, nullptr, many.data(), MDL_MAX_POINTS), MDL_SUCCESS);
    ASSERT_EQ(mdlElmdscr_appendElement(parts.ed, buffer), MDL_SUCCESS);
    ASSERT_EQ(mdlCompound_create(e, nullptr, parts.ed), MDL_SUCCESS);
    ASSERT_EQ(mdlElmdscr_appendElement(parts.ed, buffer), MDL_SUCCESS);
    const std::string before(reinterpret_cast<char*>(e.get()), sizeof(MSElementBuffer));
    EXPECT_EQ(mdlCompound_create(e, nullptr, parts.ed), MDL_ERROR) << "too large";
    DescriptorHolder nested;
    ASSERT_EQ(mdlElmdscr_new(&nested.ed, nullptr, e), MDL_SUCCESS);
    EXPECT_EQ(mdlCompound_create(e, nullptr, nested.ed), MDL_ERROR) << "in a compound";
    EXPECT_EQ(std::memcmp(e.get(), before.data(), before.size()), 0);
}

TEST_F(Compounds, DamagedOnesAreNeitherOpenedNorMeasured) {
    TestElement e;
    ASSERT_EQ(mdlCompound_create(e, nullptr, parts.ed), MDL_SUCCESS);
    const ElementHead whole = e.get()->head;
    DescriptorHolder opened;
    Range3d range;
    const auto expectDamaged = [&](const char* what) {
        EXPECT_EQ(mdlElmdscr_fromCompoundElement(&opened.ed, e, nullptr), MDL_ERROR) << what;
        EXPECT_FALSE(opened.ed) << what;
        EXPECT_FALSE(elementRange(e, range)) << what;
    };
    for (uint32_t words = headBytes / 2; words < whole.size; ++words) {
        e.get()->head.size = e.get()->head.attributeOffset = words;
        expectDamaged("cut");
    }
    e.get()->head = whole;
    for (const uint32_t count : {0u, 4u, 0xFFFFFFFFu}) {
        storeAt(e.get(), headBytes, count);
        expectDamaged("count");
    }
    storeAt(e.get(), headBytes, 3u);
    for (const uint16_t type : {MDL_COMPOUND, MDL_CELL_HEADER, MDL_TAG}) {
        storeAt(e.get(), headBytes + sizeof(PartsBody), type);
        expectDamaged("part of another type");
    }
    EXPECT_EQ(mdlElmdscr_fromCompoundElement(&opened.ed, parts.ed->element, nullptr), MDL_ERROR) << "a line";
}

// ---- dimensions and multi-lines ----

// What shows an element: types, and the points of lines or the words of texts.
std::string shown(const MSElementBuffer* e) {
    DescriptorHolder parts;
    if (mdlElmdscr_fromCompoundElement(&parts.ed, e, nullptr) != MDL_SUCCESS) return "";
    std::string all;
    for (const ElementDescr* ed = parts.ed; ed; ed = ed->next) {
        char text[MDL_TEXT_CHARACTERS + 1] = "";
        mdlText_extractString(text, ed->element);
        all += text;
        for (const Point3d& p : strokeOf(ed->element, 1))
            all += std::to_string(std::lround(p.x)) + "," + std::to_string(std::lround(p.y)) + " ";
        all += "| ";
    }
    return all;
}

TEST(Dimensions, ShowTheDistanceBesideThePoints) {
    const Point3d ends[] = {{0, 0, 0}, {25000, 0, 0}}, through{0, 4000, 0};
    const TextSize size{1, 1000, 1000, 1};
    TestElement e;
    ASSERT_EQ(mdlDimension_create(e, nullptr, ends, &through, L"A", &size), MDL_SUCCESS);
    EXPECT_EQ(shown(e),
              "0,0 0,4500 | 25000,0 25000,4500 | 0,4000 25000,4000 | 0,4000 1000,4175 1000,3825 0,4000 | "
              "25000,4000 24000,4175 24000,3825 25000,4000 | A| ");
    EXPECT_EQ(mdlElement_getType(e), MDL_DIMENSION);
}

TEST(Dimensions, ReadFromBelowOrFromTheRightInEverySystem) {
    const TextSize size{1, 1, 1, 1};
    for (int kind = 0; kind < TestSystem::kinds; ++kind) {
        TestSystem system(kind);
        for (int eighth = 0; eighth < 8; ++eighth) {
            const double angle = eighth * 0.785398163397448;
            const Point3d ends[] = {{0, 0, 0}, {10 * std::cos(angle), 10 * std::sin(angle), 0}}, through{3, -7, 0};
            TestElement e;
            ASSERT_EQ(mdlDimension_create(e, nullptr, ends, &through, nullptr, &size), MDL_SUCCESS);
            DescriptorHolder parts;
            ASSERT_EQ(mdlElmdscr_fromCompoundElement(&parts.ed, e, nullptr), MDL_SUCCESS);
            const ElementDescr* text = parts.ed;
            while (text->next) text = text->next;
            RotMatrix rotation;
            ASSERT_EQ(mdlText_extractWide(nullptr, nullptr, &rotation, nullptr, nullptr, text->element), MDL_SUCCESS);
            EXPECT_TRUE(rotation.form[0][0] > 1e-6 || rotation.form[1][0] > 0.999) << kind << ' ' << eighth;
        }
    }
}

TEST(Dimensions, OfNoDistanceOrWithoutAPlaceAreRefused) {
    const Point3d same[] = {{1, 1, 0}, {1, 1, 5}}, nowhere[] = {{0, 0, 0}, {NAN, 0, 0}}, through{0, 4, 0};
    const TextSize size{1, 1, 1, 1};
    TestElement e;
    EXPECT_EQ(mdlDimension_create(e, nullptr, same, &through, nullptr, &size), MDL_ERROR);
    EXPECT_EQ(mdlDimension_create(e, nullptr, nowhere, &through, nullptr, &size), MDL_ERROR);
    const std::wstring endless(256, L'x');
    const Point3d ends[] = {{0, 0, 0}, {1, 0, 0}};
    EXPECT_EQ(mdlDimension_create(e, nullptr, ends, &through, endless.c_str(), &size), MDL_ERROR);
    EXPECT_EQ(mdlElement_bytes(e), 0u);
}

TEST(Multilines, LinesMeetAtTheCornersOfTheRun) {
    const double offsets[] = {0, 1, -2};
    struct Case {
        const char* what;
        std::vector<Point3d> run;
        std::string lines;
    };
    for (const Case& c : {
             Case{"straight", {{0, 0, 0}, {10, 0, 0}}, "0,0 10,0 | 0,1 10,1 | 0,-2 10,-2 | "},
             Case{"a corner, and a point again",
                  {{0, 0, 0}, {10, 0, 0}, {10, 0, 0}, {10, 10, 0}},
                  "0,0 10,0 10,10 | 0,1 9,1 9,10 | 0,-2 12,-2 12,10 | "},
             Case{"a ring",
                  {{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}, {0, 0, 0}},
                  "0,0 10,0 10,10 0,10 0,0 | 1,1 9,1 9,9 1,9 1,1 | -2,-2 12,-2 12,12 -2,12 -2,-2 | "},
             Case{"back", {{0, 0, 0}, {10, 0, 0}, {0, 0, 0}}, "0,0 10,0 0,0 | 0,1 10,1 0,-1 | 0,-2 10,-2 0,2 | "},
         }) {
        TestElement e;
        ASSERT_EQ(mdlMultiline_create(e, nullptr, c.run.data(), static_cast<int32_t>(c.run.size()), offsets, 3),
                  MDL_SUCCESS);
        EXPECT_EQ(shown(e), c.lines) << c.what;
        EXPECT_EQ(mdlElement_getType(e), MDL_MULTILINE);
    }
}

TEST(Multilines, WithoutALengthOrTooManyLinesAreRefused) {
    const std::vector<Point3d> same(3, Point3d{1, 2, 0});
    const std::vector<double> offsets(2000, 1.0);
    const Point3d ends[] = {{0, 0, 0}, {1, 0, 0}};
    TestElement e;
    EXPECT_EQ(mdlMultiline_create(e, nullptr, same.data(), 3, offsets.data(), 1), MDL_ERROR);
    EXPECT_EQ(mdlMultiline_create(e, nullptr, ends, 2, offsets.data(), 0), MDL_ERROR);
    EXPECT_EQ(mdlMultiline_create(e, nullptr, ends, 2, offsets.data(), 2000), MDL_ERROR);
    EXPECT_EQ(mdlElement_bytes(e), 0u);
}

}  // namespace
