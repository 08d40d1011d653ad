// Attribute records byte by byte: the layout that is written, and the two older ones, built by hand.
#include <gtest/gtest.h>

#include <cstring>
#include <cwchar>
#include <string>
#include <vector>

#include "mclib/elmattr/records.h"

using namespace mc;

namespace {

using mc::elmattr::RecordHead;
using mc::elmattr::RecordLayout;

// A record that is built from a table of offsets.
class Bytes {
  public:
    explicit Bytes(size_t size, uint8_t fill = 0) : bytes_(size, fill) {}
    Bytes& word(size_t at, int32_t value) { return put(at, &value, 4); }
    Bytes& real(size_t at, double value) { return put(at, &value, 8); }
    Bytes& text(size_t at, const char* value) { return put(at, value, std::strlen(value) + 1); }
    Bytes& wide(size_t at, const char16_t* value) {
        return put(at, value, 2 * (std::char_traits<char16_t>::length(value) + 1));
    }
    operator std::span<const uint8_t>() const { return bytes_; }
    const std::vector<uint8_t>& all() const { return bytes_; }

  private:
    Bytes& put(size_t at, const void* from, size_t size) {
        std::memcpy(&bytes_.at(at + size - 1) - (size - 1), from, size);
        return *this;
    }
    std::vector<uint8_t> bytes_;
};

std::optional<int32_t> noStyle(const char*) {
    return {};
}

void unpack(ElmAttrData& data, RecordLayout layout, std::span<const uint8_t> record, int32_t kind) {
    elmattr::unpackData(data, layout, record, kind, noStyle);
}

ElmAttrData symbology() {
    ElmAttrData data{};
    data.color = -1;
    data.style = -7;
    data.weight = 3;
    std::wcscpy(data.levelName, L"Bygg \x00C5\x20AC\U0001F600");
    data.elementClass = 1;
    data.useFlags = 0x7FFF;
    data.reserved = 77;
    data.styleScale = 0.5;
    data.styleWidth = 0.25;
    std::strcpy(data.styleName, "Kerb");
    data.textFont = 12;
    data.textWidth = 1.5;
    data.textHeight = 2.5;
    data.textJust = 7;
    data.textLineSpacing = 0.75;
    data.reserved2[0] = 88;
    data.reserved2[1] = 99;
    data.optionValue = 5;
    return data;
}

// The table of the current layout for what symbology() holds, with a head of that kind.
Bytes currentRecord(int32_t kind) {
    Bytes bytes(1480);
    bytes.word(0, 2).word(4, kind).word(8, 1001).word(20, 0x21).word(24, 4).word(36, 60);
    bytes.word(48, -1).word(52, -7).word(56, 3).wide(60, u"Bygg \u00C5\u20AC\U0001F600");
    bytes.word(1084, 1).word(1088, 0x7FFF).word(1092, 77).real(1096, 0.5).real(1104, 0.25).text(1112, "Kerb");
    bytes.word(1340, 12).real(1344, 1.5).real(1352, 2.5).word(1360, 7).real(1368, 0.75).word(1376, 88).word(1380, 99);
    return bytes.word(1468, 5);
}

constexpr RecordHead head(int32_t kind) {
    return {2, kind, 1001, 0x21, 4, 60};
}

void expectBytes(const elmattr::RecordBytes& packed, const Bytes& expected) {
    for (size_t i = 0; i < packed.size(); ++i) ASSERT_EQ(packed[i], expected.all()[i]) << "byte " << i;
}

TEST(AttributeRecord, SymbolsStandInTheirPlaces) {
    ElmAttrData data = symbology();
    data.symbolNumber = 17;
    data.symbolSize = 4.5;
    std::strcpy(data.symbolText, "valve");
    data.textSlant = 15;
    Bytes expected = currentRecord(ATTR_KIND_LABELLED_SYMBOL);
    expected.word(1176, 17).real(1184, 4.5).text(1220, "valve").real(1384, 15);
    expectBytes(elmattr::packRecord(head(ATTR_KIND_LABELLED_SYMBOL), data), expected);
}

TEST(AttributeRecord, TextsStandInTheirPlaces) {
    ElmAttrData data = symbology();
    std::wcscpy(data.textStyleName, L"Title");
    data.textSlant = 15;
    Bytes slanted = currentRecord(ATTR_KIND_TEXT);
    slanted.wide(1176, u"Title").real(1384, 15);
    expectBytes(elmattr::packRecord(head(ATTR_KIND_TEXT), data), slanted);
    for (const int kind : {ATTR_KIND_LABELLED_TEXT, ATTR_KIND_OPTION_TEXT}) {
        std::strcpy(data.optionText, "DN 150");
        Bytes expected = currentRecord(kind);
        expected.wide(1176, u"Title").text(1384, "DN 150");
        expectBytes(elmattr::packRecord(head(kind), data), expected);
    }
}

TEST(AttributeRecord, HeadIsReadWithoutItsPointerImages) {
    const RecordHead read =
        elmattr::headOf(currentRecord(4).word(12, -1).word(16, -1).word(28, -1).word(32, -1).word(40, -1));
    EXPECT_EQ(read.group, 2);
    EXPECT_EQ(read.kind, 4);
    EXPECT_EQ(read.id, 1001);
    EXPECT_EQ(read.lockMask, 0x21u);
    EXPECT_EQ(read.optionCount, 4);
    EXPECT_EQ(read.textMaxLength, 60);
}

TEST(AttributeRecord, TextsWithoutTheirEndStayInTheirFields) {
    ElmAttrData data;
    for (const int kind : {ATTR_KIND_LABELLED_SYMBOL, ATTR_KIND_LABELLED_TEXT}) {
        unpack(data, RecordLayout::current, Bytes(1480, 'x'), kind);
        EXPECT_EQ(std::wcslen(data.levelName), 511u);
        EXPECT_EQ(std::strlen(data.styleName), 63u);
        if (kind == ATTR_KIND_LABELLED_SYMBOL) {
            EXPECT_EQ(std::strlen(data.symbolText), 83u);
        } else {
            EXPECT_EQ(std::wcslen(data.textStyleName), 81u);
            EXPECT_EQ(std::strlen(data.optionText), 83u);
        }
    }
    for (const auto& [layout, size] : {std::pair{RecordLayout::older, 1320u}, {RecordLayout::oldest, 320u}})
        unpack(data, layout, Bytes(size, 'x'), ATTR_KIND_OPTION_TEXT);
    EXPECT_EQ(std::strlen(data.optionText), 83u);
}

TEST(AttributeRecord, WideTextIsCutBetweenCharacters) {
    ElmAttrData data{};
    std::wmemset(data.levelName, L'\U0001F600', 511);  // two units each
    const auto packed = elmattr::packRecord(head(1), data);
    ElmAttrData read;
    unpack(read, RecordLayout::current, packed, 1);
    EXPECT_EQ(std::wstring(read.levelName), std::wstring(255, L'\U0001F600'));
}

// ---- the record of 1320 bytes ----

Bytes olderRecord() {
    Bytes bytes(1320);
    bytes.word(48, 4).word(52, 2).word(56, 1).wide(60, u"Pipes").word(1084, 1).word(1088, 0x1F).word(1092, 7);
    return bytes.real(1096, 2).real(1104, 3).text(1112, "Main");
}

// A record of 1320 or 320 bytes with the texts of a kind from `at` on; the oldest one has the text value closer.
Bytes& withText(Bytes& bytes, size_t at, size_t text, size_t option) {
    bytes.word(at, 9).real(at + 8, 1.25).real(at + 16, 2.25).word(at + 24, 13).real(at + 32, 0.5).word(at + 40, 6);
    return text == 0 ? bytes.real(at + 48, 20) : bytes.text(text, "PN 10").word(option, 41);
}

// What each kind finds in memory, and keeps where an older record has nothing for it.
ElmAttrData before(int32_t kind) {
    ElmAttrData data{};
    data.color = 50;
    data.style = -3;
    data.textFont = 51;
    data.optionValue = 52;
    data.reserved2[1] = 53;
    if (elmattr::isTextKind(kind)) std::wcscpy(data.textStyleName, L"kept");
    if (elmattr::hasTextValue(kind)) {
        std::strcpy(data.optionText, "text before");
    } else {
        data.textSlant = 54;
    }
    return data;
}

void expectTextSizes(const ElmAttrData& data) {
    EXPECT_EQ(data.textFont, 9);
    EXPECT_EQ(data.textWidth, 1.25);
    EXPECT_EQ(data.textHeight, 2.25);
    EXPECT_EQ(data.textJust, 13);
    EXPECT_EQ(data.textLineSpacing, 0.5);
    EXPECT_EQ(data.reserved2[0], 6);
    EXPECT_EQ(data.reserved2[1], 53);
    EXPECT_STREQ(data.textStyleName, L"kept");
}

// What both older records are filled with here.
void expectSymbology(const ElmAttrData& data, const wchar_t* levelName) {
    EXPECT_EQ(data.color, 4);
    EXPECT_EQ(data.style, 2);
    EXPECT_EQ(data.weight, 1);
    EXPECT_STREQ(data.levelName, levelName);
    EXPECT_EQ(data.elementClass, 1);
    EXPECT_EQ(data.useFlags, 0x1Fu);
    EXPECT_EQ(data.reserved, 7);
    EXPECT_EQ(data.styleScale, 2);
    EXPECT_EQ(data.styleWidth, 3);
    EXPECT_STREQ(data.styleName, "Main");
    EXPECT_EQ(data.symbolNumber, 17);
    EXPECT_EQ(data.symbolSize, 4.5);
    EXPECT_STREQ(data.symbolText, "valve");
}

TEST(OlderAttributeRecord, KeepsSymbologyAndSymbols) {
    Bytes bytes = olderRecord();
    bytes.word(1176, 17).real(1184, 4.5).text(1220, "valve");
    ElmAttrData data = before(ATTR_KIND_LABELLED_SYMBOL);
    unpack(data, RecordLayout::older, bytes, ATTR_KIND_LABELLED_SYMBOL);
    expectSymbology(data, L"Pipes");
    EXPECT_EQ(data.textFont, 51);
    EXPECT_EQ(data.textSlant, 54);
}

struct TextCase {
    int kind;
    const char* text;  // null: the slant is read
    int option;
};
constexpr TextCase textCases[] = {
    {ATTR_KIND_TEXT, nullptr, 52}, {ATTR_KIND_LABELLED_TEXT, "PN 10", 52}, {ATTR_KIND_OPTION_TEXT, "PN 10", 41}};

void expectText(const ElmAttrData& data, const TextCase& c) {
    expectTextSizes(data);
    EXPECT_EQ(data.optionValue, c.option);
    if (c.text == nullptr) {
        EXPECT_EQ(data.textSlant, 20);
    } else {
        EXPECT_STREQ(data.optionText, c.text);
    }
}

TEST(OlderAttributeRecord, TextsGoToTheirNewPlaces) {
    for (const TextCase& c : textCases) {
        SCOPED_TRACE(c.kind);
        Bytes bytes = olderRecord();
        withText(bytes, 1176, c.text == nullptr ? 0 : 1224, 1308);
        ElmAttrData data = before(c.kind);
        unpack(data, RecordLayout::older, bytes, c.kind);
        expectText(data, c);
    }
}

// ---- the record of 320 bytes ----

Bytes oldestRecord(int32_t style = 2) {
    Bytes bytes(320);
    bytes.word(48, 4).word(52, style).word(56, 1).word(60, 17).word(64, 1).word(68, 0x1F).word(72, 7);
    return bytes.real(80, 2).real(88, 3).text(96, "Main");
}

TEST(OldestAttributeRecord, LevelNumberBecomesAName) {
    Bytes bytes = oldestRecord();
    bytes.word(160, 17).real(168, 4.5).text(204, "valve");
    ElmAttrData data = before(ATTR_KIND_LABELLED_SYMBOL);
    unpack(data, RecordLayout::oldest, bytes, ATTR_KIND_LABELLED_SYMBOL);
    expectSymbology(data, L"Level 17");
}

TEST(OldestAttributeRecord, TextsGoToTheirNewPlaces) {
    for (const TextCase& c : textCases) {
        SCOPED_TRACE(c.kind);
        Bytes bytes = oldestRecord();
        withText(bytes, 160, 0, 0);
        if (c.text != nullptr) bytes.text(204, c.text);
        if (c.kind == ATTR_KIND_OPTION_TEXT) bytes.word(288, 41);
        ElmAttrData data = before(c.kind);
        unpack(data, RecordLayout::oldest, bytes, c.kind);
        expectText(data, c);
    }
}

TEST(OldestAttributeRecord, StyleEightIsTheNamedStyleWhereTheModelKnowsIt) {
    const auto known = [](const char* name) { return std::string(name) == "Main" ? std::optional(-12) : std::nullopt; };
    ElmAttrData data = before(1);
    elmattr::unpackData(data, RecordLayout::oldest, oldestRecord(8), 1, known);
    EXPECT_EQ(data.style, -12);
    data = before(1);
    unpack(data, RecordLayout::oldest, oldestRecord(8), 1);
    EXPECT_EQ(data.style, -3) << "an unknown name leaves the style as it was";
}

// ---- written and read ----

}  // namespace
