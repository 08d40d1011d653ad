// Linkages: blocks of user data behind an element's body, each with its length in its first word.
#include "mchost/element/linkage.h"

#include "mchost/element/range.h"

namespace host {
namespace {

constexpr uint32_t mostWords = MDL_MAX_LINKAGE_WORDS;
// The low twelve bits of the header word are the length in units of four words.
constexpr uint16_t lengthMask = 0x0FFF;
constexpr uint32_t unitWords = 4;

constexpr bool isLength(uint32_t words) {
    return words > 0 && words <= mostWords && words % unitWords == 0;
}

struct Found {
    LinkageHeader header;
    size_t offset, bytes;  // in the element
};

// Goes along the linkages of an element. It ends at the first whose length can't be right.
class LinkageWalk {
  public:
    explicit LinkageWalk(const MSElementBuffer* element) : element_(element) {
        const ElementHead head = headOf(element);
        if (!elementIsSound(element, size_t{head.size} * 2)) return;
        offset_ = size_t{head.attributeOffset} * 2;
        end_ = size_t{head.size} * 2;
    }

    bool next(Found& found) {
        if (end_ - offset_ < sizeof(LinkageHeader)) return false;
        found.header = loadAt<LinkageHeader>(element_, offset_);
        const uint32_t words = mdlLinkage_getWords(&found.header);
        if (!isLength(words) || words * 2 > end_ - offset_) return false;
        found.offset = offset_;
        found.bytes = words * 2;
        offset_ += found.bytes;
        return true;
    }

    bool nextUser(Found& found, uint16_t primaryId) {
        while (next(found))
            if ((found.header.header & MDL_LINKAGE_USER) && found.header.primaryId == primaryId) return true;
        return false;
    }

  private:
    const MSElementBuffer* element_;
    size_t offset_ = 0, end_ = 0;
};

// Takes the bytes out of the element.
void removeBytes(MSElementBuffer* element, const Found& found) {
    ElementHead head = headOf(element);
    const size_t behind = found.offset + found.bytes;
    std::memmove(element->bytes + found.offset, element->bytes + behind, size_t{head.size} * 2 - behind);
    head.size -= static_cast<uint32_t>(found.bytes / 2);
    storeAt(element, 0, head);
}

}  // namespace

bool readLineStyleLinkage(const MSElementBuffer* element, LineStyleLinkage& style) {
    Found found;
    LinkageWalk walk(element);
    if (!walk.nextUser(found, linkageLineStyle)) return false;
    if (found.bytes != sizeof style && found.bytes != offsetof(LineStyleLinkage, dashScale)) return false;
    style = {};
    std::memcpy(&style, element->bytes + found.offset, found.bytes);
    return true;
}

void setWordsOf(LineStyleLinkage& style) {
    const bool whole = (style.modifiers & (LINE_STYLE_DASH_SCALE | LINE_STYLE_GAP_SCALE)) != 0;
    mdlLinkage_setWords(&style.header, (whole ? sizeof style : offsetof(LineStyleLinkage, dashScale)) / 2);
}

}  // namespace host

using namespace host;

void mdlLinkage_setWords(LinkageHeader* header, uint32_t words) noexcept {
    const uint32_t length = isLength(words) ? words / unitWords : 0;
    header->header = static_cast<uint16_t>((header->header & ~lengthMask) | length);
}

uint32_t mdlLinkage_getWords(const LinkageHeader* header) noexcept {
    return (header->header & lengthMask) * unitWords;
}

int mdlLinkage_appendToElement(MSElementBuffer* element, const LinkageHeader* header, const void* data, int32_t,
                               int32_t) noexcept {
    if (!element || !header || !data) return MDL_ERROR;
    ElementHead head = headOf(element);
    const size_t end = size_t{head.size} * 2;
    const uint32_t words = mdlLinkage_getWords(header);
    if (!elementIsSound(element, end) || !isLength(words) || end + words * 2 > MDL_ELEMENT_BYTES) return MDL_ERROR;
    storeAt(element, end, *header);
    std::memmove(element->bytes + end + sizeof *header, data, words * 2 - sizeof *header);
    head.size += words;
    storeAt(element, 0, head);
    return MDL_SUCCESS;
}

int mdlLinkage_extractFromElement(void* linkage, const MSElementBuffer* element, uint16_t primaryId, void*, void*,
                                  uint32_t* wordsP, uint32_t* offsetP) noexcept {
    if (!element) return MDL_ERROR;
    Found found;
    LinkageWalk walk(element);
    if (!walk.nextUser(found, primaryId)) return MDL_ERROR;
    if (linkage) std::memcpy(linkage, element->bytes + found.offset, found.bytes);
    if (wordsP) *wordsP = static_cast<uint32_t>(found.bytes / 2);
    if (offsetP) *offsetP = static_cast<uint32_t>(found.offset / 2);
    return MDL_SUCCESS;
}

int mdlLinkage_deleteFromElement(MSElementBuffer* element, uint16_t primaryId, void*, void*, void*,
                                 int32_t* countP) noexcept {
    if (!element || !elementIsSound(element, size_t{headOf(element).size} * 2)) return MDL_ERROR;
    int32_t count = 0;
    for (Found found; LinkageWalk(element).nextUser(found, primaryId); ++count) removeBytes(element, found);
    if (countP) *countP = count;
    return MDL_SUCCESS;
}
