// Attribute records as resource files hold them: the layout that is written and two older ones that are read, told byte
// by byte and used without a file.
#pragma once

#include <array>
#include <cwchar>
#include <optional>
#include <span>

#include "mchost/mdl/resource.h"
#include "mclib/elmattr/attributes.h"
#include "mclib/frame/stored_layout.h"

namespace mc::elmattr {

enum class RecordLayout { current, older, oldest };

struct RecordResource {
    RecordLayout layout;
    size_t bytes;
    int32_t plainType;  // under the attribute's id
    int32_t setType;    // under its number in the set, from 0
};
// In the order in which they are looked for.
constexpr RecordResource recordResources[] = {
    {RecordLayout::current, 1480, MDL_RSC_TYPE('M', 'c', 'A', '3'), MDL_RSC_TYPE('A', 'S', 'D', '3')},
    {RecordLayout::older, 1320, MDL_RSC_TYPE('M', 'c', 'A', '2'), MDL_RSC_TYPE('A', 'S', 'D', '2')},
    {RecordLayout::oldest, 320, MDL_RSC_TYPE('M', 'c', 'A', 's'), MDL_RSC_TYPE('A', 'S', 'D', 'a')},
};
constexpr size_t currentRecordBytes = recordResources[0].bytes;
using RecordBytes = std::array<uint8_t, currentRecordBytes>;  // room for a record of any layout

constexpr int32_t setCountType = MDL_RSC_TYPE('A', 'S', 'N', 'o');  // 32-bit number of records, under setCountId
constexpr int32_t setCountId = 1;
constexpr int32_t setLabelType = MDL_RSC_TYPE('A', 'S', 'N', 'a');  // setLabelBytes, under the number in the set
constexpr size_t setLabelBytes = 80;

// What the head of a record, its first 48 bytes, means. The rest of it are images of pointers: written as zeros, never
// looked at.
struct RecordHead {
    int32_t group = 0, kind = 0, id = 0;
    uint32_t lockMask = 0;
    int32_t optionCount = 0;
    int32_t textMaxLength = 0;
};

// Kinds with the values of a text where the others have those of a symbol.
constexpr bool isTextKind(int32_t kind) {
    return kind == ATTR_KIND_TEXT || kind == ATTR_KIND_LABELLED_TEXT || kind == ATTR_KIND_OPTION_TEXT;
}
// Text kinds with a text value, which takes the place of the slant.
constexpr bool hasTextValue(int32_t kind) {
    return kind == ATTR_KIND_LABELLED_TEXT || kind == ATTR_KIND_OPTION_TEXT;
}

// ---- fields; `Fields` is StoreFields or LoadFields ----

template <class Fields, class Head>
void headFields(Fields fields, Head& head) {
    fields.number(0, head.group);
    fields.number(4, head.kind);
    fields.number(8, head.id);
    fields.number(20, head.lockMask);
    fields.number(24, head.optionCount);
    fields.number(36, head.textMaxLength);
}

template <class Fields, class Data>
void namedStyleFields(Fields& fields, size_t at, Data& data) {
    fields.number(at, data.styleScale);
    fields.number(at + 8, data.styleWidth);
    fields.text(at + 16, 64, data.styleName);
}

template <class Fields, class Data>
void symbolFields(Fields& fields, size_t at, Data& data) {
    fields.number(at, data.symbolNumber);
    fields.number(at + 8, data.symbolSize);
    fields.text(at + 44, 84, data.symbolText);
}

template <class Fields, class Data>
void textSizeFields(Fields& fields, size_t at, Data& data) {
    fields.number(at, data.textWidth);
    fields.number(at + 8, data.textHeight);
    fields.number(at + 16, data.textJust);
    fields.number(at + 24, data.textLineSpacing);
    fields.number(at + 32, data.reserved2[0]);
}

// What the current and the older layout have at the same places.
template <class Fields, class Data>
void symbologyFields(Fields& fields, Data& data) {
    fields.number(48, data.color);
    fields.number(52, data.style);
    fields.number(56, data.weight);
    fields.wide(60, 512, data.levelName);
    fields.number(1084, data.elementClass);
    fields.number(1088, data.useFlags);
    fields.number(1092, data.reserved);
    namedStyleFields(fields, 1096, data);
}

template <class Fields, class Data>
void currentFields(Fields fields, Data& data, int32_t kind) {
    symbologyFields(fields, data);
    if (isTextKind(kind)) {
        fields.wide(1176, 82, data.textStyleName);
    } else {
        symbolFields(fields, 1176, data);
    }
    fields.number(1340, data.textFont);
    textSizeFields(fields, 1344, data);
    fields.number(1380, data.reserved2[1]);
    if (hasTextValue(kind)) {
        fields.text(1384, 84, data.optionText);
    } else {
        fields.number(1384, data.textSlant);
    }
    fields.number(1468, data.optionValue);
}

inline void olderFields(LoadFields fields, ElmAttrData& data, int32_t kind) {
    symbologyFields(fields, data);
    if (!isTextKind(kind)) return symbolFields(fields, 1176, data);
    fields.number(1176, data.textFont);
    textSizeFields(fields, 1184, data);
    if (kind == ATTR_KIND_TEXT) fields.number(1224, data.textSlant);
    if (hasTextValue(kind)) fields.text(1224, 84, data.optionText);
    if (kind == ATTR_KIND_OPTION_TEXT) fields.number(1308, data.optionValue);
}

// `styleNumber` gives the number that a line style of that name has in the model, or nothing.
template <class StyleNumber>
void oldestFields(LoadFields fields, ElmAttrData& data, int32_t kind, StyleNumber styleNumber) {
    constexpr int32_t namedStyle = 8;
    int32_t style = 0, level = 0;
    fields.number(48, data.color);
    fields.number(52, style);
    fields.number(56, data.weight);
    fields.number(60, level);
    fields.number(64, data.elementClass);
    fields.number(68, data.useFlags);
    fields.number(72, data.reserved);
    namedStyleFields(fields, 80, data);
    data.style = style == namedStyle ? styleNumber(data.styleName).value_or(data.style) : style;
    std::fill(std::begin(data.levelName), std::end(data.levelName), L'\0');
    std::swprintf(data.levelName, std::size(data.levelName), L"Level %d", level);
    if (!isTextKind(kind)) return symbolFields(fields, 160, data);
    fields.number(160, data.textFont);
    textSizeFields(fields, 168, data);
    if (kind == ATTR_KIND_TEXT) fields.number(208, data.textSlant);
    if (hasTextValue(kind)) fields.text(204, 84, data.optionText);
    if (kind == ATTR_KIND_OPTION_TEXT) fields.number(288, data.optionValue);
}

// ---- records ----

inline RecordBytes packRecord(const RecordHead& head, const ElmAttrData& data) {
    RecordBytes bytes = {};
    headFields(StoreFields(bytes), head);
    currentFields(StoreFields(bytes), data, head.kind);
    return bytes;
}

inline RecordHead headOf(std::span<const uint8_t> record) {
    RecordHead head;
    headFields(LoadFields(record), head);
    return head;
}

// Reads the values of an attribute of that kind. A record of the current layout replaces all of them; an older one
// those that it has.
template <class StyleNumber>
void unpackData(ElmAttrData& data, RecordLayout layout, std::span<const uint8_t> record, int32_t kind,
                StyleNumber styleNumber) {
    switch (layout) {
        case RecordLayout::current:
            data = {};
            currentFields(LoadFields(record), data, kind);
            break;
        case RecordLayout::older: olderFields(LoadFields(record), data, kind); break;
        case RecordLayout::oldest: oldestFields(LoadFields(record), data, kind, styleNumber); break;
    }
}

}  // namespace mc::elmattr
