// Positions of elements, as bits: what a search has looked at.
#pragma once

#include <cstdint>
#include <cstring>

#include "mchost/mdl/owned.hpp"
#include "mclib/frame/errors.h"

namespace mc::design {

class PositionSet {
  public:
    bool has(FilePos position) const {
        const size_t word = position / bitsOfWord;
        return word < count_ && (words_.get()[word] >> position % bitsOfWord & 1) != 0;
    }
    // Without memory for it, which the user has been told, the set stays as it is.
    void add(FilePos position) {
        const size_t word = position / bitsOfWord;
        if (word >= count_ && !grow(word + 1)) return;
        words_.get()[word] |= uint64_t{1} << position % bitsOfWord;
    }
    void clear() {
        words_.reset();
        count_ = 0;
    }

  private:
    static constexpr size_t bitsOfWord = 64;

    bool grow(size_t needed) {
        const size_t count = needed * 2;
        auto* const words = static_cast<uint64_t*>(
            mclibMem_mallocRscErrorPrintf(count * sizeof(uint64_t), MCLIB_ERRORS, MCLIB_OUT_OF_MEMORY));
        if (!words) return false;
        if (words_) std::memcpy(words, words_.get(), count_ * sizeof(uint64_t));
        words_.reset(words);
        count_ = count;
        return true;
    }

    mdl::HostPtr<uint64_t> words_;
    size_t count_ = 0;
};

}  // namespace mc::design
