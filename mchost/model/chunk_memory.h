// Memory that is taken bit by bit and given back all at once.
#pragma once

#include <sys/mman.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <vector>

namespace host {

// Takes large blocks from the system. A small file gets by with a small one; the further ones ask for huge pages, since
// a file with a million elements would else spend a third of its opening time on page faults.
class ChunkMemory {
  public:
    // Uncleared, aligned to 64 bytes, valid as long as this stands. Throws std::bad_alloc.
    std::byte* take(size_t bytes) {
        bytes = roundedUp(bytes, 64);
        if (left_ < bytes) addBlock(bytes);
        std::byte* taken = next_;
        next_ += bytes;
        left_ -= bytes;
        return taken;
    }

    // What is taken next, that many bytes in all, is there already. Throws std::bad_alloc.
    void reserve(size_t bytes) {
        if (left_ < bytes) addBlock(roundedUp(bytes, 64));
    }

  private:
    static constexpr size_t hugePage = 2 << 20, firstBlock = 512 << 10, laterBlock = 16 << 20;

    struct Free {
        void operator()(std::byte* block) const { std::free(block); }
    };

    static constexpr size_t roundedUp(size_t bytes, size_t unit) { return (bytes + unit - 1) / unit * unit; }

    void addBlock(size_t atLeast) {
        const bool first = blocks_.empty();
        const size_t unit = first ? 4096 : hugePage;
        const size_t size = roundedUp(std::max(atLeast, first ? firstBlock : laterBlock), unit);
        std::unique_ptr<std::byte, Free> block(static_cast<std::byte*>(std::aligned_alloc(unit, size)));
        if (!block) throw std::bad_alloc();
        if (!first) madvise(block.get(), size, MADV_HUGEPAGE);  // a hint: nothing is lost when it isn't taken
        next_ = block.get();
        left_ = 0;
        blocks_.push_back(std::move(block));
        left_ = size;
    }

    std::vector<std::unique_ptr<std::byte, Free>> blocks_;
    std::byte* next_ = nullptr;
    size_t left_ = 0;
};

}  // namespace host
