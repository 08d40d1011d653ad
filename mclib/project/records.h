// The payloads of project and page records: which texts of a block stand in them and in which order, written and read
// without a design file.
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string>

#include "mchost/mdl/resource.h"
#include "mclib/frame/stored_layout.h"
#include "mclib/project/blocks.h"

namespace mc::project {

constexpr int32_t currentForm = 3;  // the sub id of records that are written

// A project in a resource file: the block as it is, sizeof(mclibProsjektData) bytes.
constexpr int32_t projectType = MDL_RSC_TYPE('C', 'm', 'P', 'r'), projectId = 3;

// A text of a block.
struct TextField {
    uint32_t offset, size;
    const char* name;
    uint32_t line = 0;  // from 1, of a field with several; else 0
};

// clang-format off
#define FIELD(member) {offsetof(Block, member), sizeof(Block::member), #member}
#define LINES(member, line) {offsetof(Block, member) + (line) * sizeof(Block::member[0]), sizeof(Block::member[0]), \
                             #member, (line) + 1}
#define FIVE_LINES(member, line) LINES(member, line), LINES(member, line + 1), LINES(member, line + 2), \
                                 LINES(member, line + 3), LINES(member, line + 4)

inline constexpr auto projectOrder = [] {
  using Block = mclibProsjektData;
  return std::to_array<TextField>({
    FIELD(pron),
    FIVE_LINES(pros, 0),
    FIELD(kost0), FIELD(kost1), FIELD(kost2), FIELD(kost3), FIELD(kost4),
    FIELD(USig), FIELD(UDat), FIELD(RSig), FIELD(RDat), FIELD(SSig), FIELD(SDat),
    FIVE_LINES(tegn, 0), FIVE_LINES(tegn, 5),
    FIELD(UNav), FIELD(RNav), FIELD(SNav),
  });
}();

inline constexpr auto pageOrder = [] {
  using Block = mclibSideData;
  return std::to_array<TextField>({
    FIELD(pageName),
    LINES(pros, 0), LINES(pros, 1), LINES(pros, 2), LINES(pros, 3),
    FIELD(USig), FIELD(UDat), FIELD(RSig), FIELD(RDat), FIELD(SSig), FIELD(SDat),
    FIVE_LINES(tegn, 0), FIVE_LINES(tegn, 5),
    FIELD(UNav), FIELD(RNav), FIELD(SNav),
    FIVE_LINES(kopo, 0), FIVE_LINES(kopo, 5), FIVE_LINES(kopo, 10), FIVE_LINES(kopo, 15),
    FIELD(revs),
  });
}();
#undef FIVE_LINES
#undef LINES
#undef FIELD
// clang-format on

// A form of a record: the texts in it, of which each from `doubledFrom` on is followed by one that nobody reads.
struct Form {
    int32_t subId;
    uint32_t texts, doubledFrom;
};
constexpr uint32_t none = UINT32_MAX;
inline constexpr Form projectForms[] = {{1, 30, 27}, {2, 30, none}, {currentForm, 30, none}};
inline constexpr Form pageForms[] = {{2, 24, none}, {currentForm, 45, none}};

// The order and the forms of a block's record.
template <class Block>
struct Layout;
template <>
struct Layout<mclibProsjektData> {
    static constexpr std::span<const TextField> order = projectOrder;
    static constexpr std::span<const Form> forms = projectForms;
};
template <>
struct Layout<mclibSideData> {
    static constexpr std::span<const TextField> order = pageOrder;
    static constexpr std::span<const Form> forms = pageForms;
};

// The longest payload of a block.
template <class Block>
constexpr size_t fullPayload = [] {
    size_t size = 0;
    for (const TextField& field : Layout<Block>::order) size += field.size;
    return size;
}();
static_assert(std::size(projectOrder) == 30 && fullPayload<mclibProsjektData> == 1603);
static_assert(std::size(pageOrder) == 45 && fullPayload<mclibSideData> == 1698);

// The payload of a record in the current form. A text that fills its field without a NUL loses its last character.
template <class Block>
std::string packRecord(const Block& block) {
    std::string payload;
    payload.reserve(fullPayload<Block>);
    for (const TextField& field : Layout<Block>::order) {
        const char* text = reinterpret_cast<const char*>(&block) + field.offset;
        payload.append(text, strnlen(text, field.size - 1));
        payload += '\0';
    }
    return payload;
}

// The texts of a payload, one by one; behind its end there are none.
class PayloadTexts {
  public:
    explicit PayloadTexts(std::span<const uint8_t> payload) : left_(payload) {}
    bool atEnd() const { return left_.empty(); }
    // Up to the NUL, or up to the payload's end where it is missing.
    std::string_view next() {
        const std::string_view text = textAt(left_);
        left_ = left_.subspan(std::min(text.size() + 1, left_.size()));
        return text;
    }

  private:
    std::span<const uint8_t> left_;
};

// Fills the block from the payload of a record; false, with the block as it was, for a form that isn't known. What is
// too long for its field is cut. Fields behind the end of a payload that is too short stay as they were.
template <class Block>
bool unpackRecord(Block& block, int32_t subId, std::span<const uint8_t> payload) {
    const auto forms = Layout<Block>::forms;
    const auto form = std::ranges::find(forms, subId, &Form::subId);
    if (form == forms.end()) return false;
    PayloadTexts texts(payload);
    for (uint32_t i = 0; i < form->texts && !texts.atEnd(); ++i) {
        const TextField& field = Layout<Block>::order[i];
        fillText({reinterpret_cast<char*>(&block) + field.offset, field.size}, texts.next());
        if (i >= form->doubledFrom) texts.next();
    }
    return true;
}

}  // namespace mc::project
