// Structures with pointers to texts, given to a caller in one buffer: the structures first, their texts behind.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace host {

template <class Structure>
class PackedTexts {
  public:
    explicit PackedTexts(size_t count) : count_(count) {}

    // A text that a member of structure `index` points to. Members without one are null.
    void add(size_t index, char* Structure::*member, std::string_view text) {
        entries_.push_back({index, member, texts_.size()});
        texts_.append(text).append(1, '\0');
    }

    // Fills the buffer, which may lie at any address, and tells the size needed; false when that is more than `size`.
    bool give(void* buffer, uint32_t size, uint32_t* neededP) const {
        const size_t front = count_ * sizeof(Structure);
        const size_t needed = front + texts_.size();
        if (neededP) *neededP = static_cast<uint32_t>(needed);
        if (needed > size || (!buffer && needed > 0)) return false;
        char* const texts = static_cast<char*>(buffer) + front;
        std::vector<Structure> structures(count_);
        for (const Entry& entry : entries_) structures[entry.index].*entry.member = texts + entry.offset;
        if (front > 0) std::memcpy(buffer, structures.data(), front);
        if (!texts_.empty()) std::memcpy(texts, texts_.data(), texts_.size());
        return true;
    }

  private:
    struct Entry {
        size_t index;
        char* Structure::*member;
        size_t offset;
    };
    size_t count_;
    std::vector<Entry> entries_;
    std::string texts_;
};

}  // namespace host
