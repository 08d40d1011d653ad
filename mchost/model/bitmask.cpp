#include "mchost/model/bitmask.h"

#include "mchost/base/guard.h"

using namespace host;

MdlBitMask* mdlBitMask_create(void) noexcept {
    return guarded<MdlBitMask*>(nullptr, [] { return new MdlBitMask; });
}

MdlBitMask* mdlBitMask_clone(const MdlBitMask* mask) noexcept {
    return guarded<MdlBitMask*>(nullptr, [&] { return mask ? new MdlBitMask(*mask) : nullptr; });
}

void mdlBitMask_free(MdlBitMask** maskPP) noexcept {
    if (!maskPP) return;
    delete *maskPP;
    *maskPP = nullptr;
}

int mdlBitMask_setBit(MdlBitMask* mask, uint32_t bit, int32_t on) noexcept {
    if (!mask || bit >= MDL_BITMASK_LIMIT) return MDL_ERROR;
    return guarded<int>(MDL_ERROR, [&]() -> int {
        if (bit >= mask->bits.size()) mask->bits.resize(bit + 1);
        mask->bits[bit] = on != 0;
        return MDL_SUCCESS;
    });
}

int mdlBitMask_testBit(const MdlBitMask* mask, uint32_t bit) noexcept {
    return mask && mask->test(bit) ? 1 : 0;
}
