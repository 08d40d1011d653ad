// The bytes of an application data element, written and read without a design file.
#pragma once

#include <array>
#include <optional>
#include <span>

#include "mclib/frame/stored_layout.h"
#include "mclib/project/application_data.h"

namespace mc::application_data {

constexpr uint16_t elementType = 66;
constexpr uint32_t elementLevel = 20;
constexpr int16_t signature = 157;
constexpr size_t payloadOffset = 38;
constexpr size_t mostElementBytes = 8192;
static_assert(MCLIB_APPLICATION_DATA_BYTES + 40 == mostElementBytes);

// An element with the zeros behind it.
struct alignas(8) ElementBytes : std::array<uint8_t, mostElementBytes> {};

struct ElementFields {
    uint16_t type;
    uint32_t words, attributeOffset;  // in 16-bit words
    uint32_t level;
    int16_t signature, applicationId, subId;
};

template <class Fields, class Values>
void elementFields(Fields fields, Values& values) {
    fields.number(0, values.type);
    fields.number(4, values.words);
    fields.number(8, values.attributeOffset);
    fields.number(12, values.level);
    fields.number(32, values.signature);
    fields.number(34, values.applicationId);
    fields.number(36, values.subId);
}

// The element of a payload that isn't longer than MCLIB_APPLICATION_DATA_BYTES.
inline ElementBytes makeElement(int32_t applicationId, int32_t subId, std::span<const uint8_t> payload) {
    ElementBytes element = {};
    const auto words = static_cast<uint32_t>((payload.size() + 1) / 2 + payloadOffset / 2);
    const ElementFields values = {elementType,
                                  words,
                                  words,
                                  elementLevel,
                                  signature,
                                  static_cast<int16_t>(applicationId),
                                  static_cast<int16_t>(subId)};
    elementFields(StoreFields(element), values);
    std::ranges::copy(payload, element.begin() + payloadOffset);
    return element;
}

struct Block {
    int32_t applicationId, subId;
    std::span<const uint8_t> payload;  // in the element
};

// What an element holds; nothing when it isn't a block or isn't there as a whole.
inline std::optional<Block> readElement(std::span<const uint8_t> element) {
    if (element.size() < payloadOffset) return {};
    ElementFields values;
    elementFields(LoadFields(element), values);
    const uint64_t bytes = uint64_t{values.words} * 2;
    if (values.signature != signature || bytes < payloadOffset || bytes > element.size()) return {};
    return Block{values.applicationId, values.subId, element.subspan(payloadOffset, bytes - payloadOffset)};
}

}  // namespace mc::application_data
