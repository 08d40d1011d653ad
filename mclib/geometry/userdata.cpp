// The user data linkage.
#include "mclib/geometry/userdata.h"

#include <array>
#include <bit>
#include <cstring>

#include "mchost/mdl/element.h"
#include "mchost/mdl/system.h"

namespace mc {

static_assert(std::endian::native == std::endian::little, "the linkage is stored as it lies in memory");

namespace {

constexpr size_t keysAt = sizeof(LinkageHeader);
constexpr size_t dataAt = keysAt + 2 * sizeof(int16_t);

// Length of the linkage that holds so many bytes of data, in words: a multiple of 4.
constexpr uint32_t linkageWords(uint32_t size) {
    return ((size + 1) / 2 + 7) / 4 * 4;
}
constexpr size_t maxLinkageBytes = 2 * linkageWords(MCLIB_MAX_USER_DATA);
static_assert(maxLinkageBytes == 8200);

struct Keys {
    int16_t key1, key2;
};

}  // namespace

}  // namespace mc

using namespace mc;

int mclibAttrib_appendElementUserData(short key1, short key2, MSElementBuffer* element, const void* data,
                                      unsigned size) {
    if (size > MCLIB_MAX_USER_DATA) {
        toolSubsystem_printf("Userdata er for stor. buffersize=%d\n", static_cast<int>(size));
        return MCLIB_ERROR;
    }
    alignas(LinkageHeader) std::array<uint8_t, maxLinkageBytes> block{};
    LinkageHeader header = {MDL_LINKAGE_USER, MCLIB_USER_DATA_ID};
    mdlLinkage_setWords(&header, linkageWords(size));
    const Keys keys = {key1, key2};
    std::memcpy(&block[keysAt], &keys, sizeof keys);
    if (size > 0) std::memcpy(&block[dataAt], data, size);
    return mdlLinkage_appendToElement(element, &header, &block[keysAt], 0, 0);
}

int mclibAttrib_extractElementUserData(const MSElementBuffer* element, int key1, int* key2P, void* data, int* sizeP) {
    std::array<uint8_t, maxLinkageBytes> block;
    if (mdlLinkage_extractFromElement(block.data(), element, MCLIB_USER_DATA_ID, nullptr, nullptr, nullptr, nullptr) !=
        MDL_SUCCESS) {
        return MCLIB_ERROR;
    }
    LinkageHeader header;
    Keys keys;
    std::memcpy(&header, block.data(), sizeof header);
    std::memcpy(&keys, &block[keysAt], sizeof keys);
    if (keys.key1 != key1) return MCLIB_ERROR;
    const int size = 2 * static_cast<int>(mdlLinkage_getWords(&header)) - static_cast<int>(dataAt);
    if (key2P) *key2P = keys.key2;
    if (sizeP) *sizeP = size;
    if (data) std::memcpy(data, &block[dataAt], size);
    return MCLIB_SUCCESS;
}
