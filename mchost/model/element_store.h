// The elements of one model: their bytes in chunks that are only appended to, and for each file position where its
// bytes lie and what scans ask for most.
//
// A chunk holds records, and is the same in memory and in the file. A record is the 8-byte RecordHead and then the
// element and its components in depth-first order, each behind an 8-byte NodeHead and filled up with zeros to a
// multiple of 8 bytes. A later record of a position takes the place of an earlier one; a record without nodes deletes.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "mchost/element/layout.h"
#include "mchost/model/chunk_memory.h"

namespace host {

static_assert(std::endian::native == std::endian::little, "chunks are little-endian");

struct RecordHead {
    uint32_t position;
    uint32_t bytes;  // of the nodes that follow; 0 deletes the position
};
struct NodeHead {
    uint32_t depth;  // 0 for the element itself, 1 for its components, and so on
    uint32_t bytes;  // of the element, without the fill behind it
};

// One element of a stored unit. When it was read from the store, only its own bytes may be looked at.
struct StoredNode {
    uint32_t depth;
    const MSElementBuffer* element;
};

// What tests of a scan look at.
struct ElementKey {
    uint32_t level = 0;
    uint16_t type = 0;
    uint8_t elementClass = 0;
    bool live = false;
};
static_assert(sizeof(ElementKey) == 8);

// A bit for each type that elements have; types above 60 share theirs with lower ones.
constexpr uint64_t typeBit(uint16_t type) {
    return uint64_t{1} << type % 61;
}
static_assert(typeBit(MDL_APPLICATION_DATA) == 1 << 5, "a type that none of the host's other types shares");

inline uint32_t elementBytes(const MSElementBuffer* element) {
    return 2 * element->head.size;
}

inline uint32_t recordBytes(const RecordHead* record) {
    return sizeof(RecordHead) + record->bytes;
}

// Calls visit(node) for the element of a sound record and for its components.
template <class Visit>
void forEachNode(const RecordHead* record, Visit visit) {
    const auto* at = reinterpret_cast<const std::byte*>(record + 1);
    for (const std::byte* end = at + record->bytes; at < end;) {
        const auto* node = reinterpret_cast<const NodeHead*>(at);
        visit(StoredNode{node->depth, reinterpret_cast<const MSElementBuffer*>(node + 1)});
        at += sizeof(NodeHead) + filledToWord(node->bytes);
    }
}

class ElementStore {
  public:
    static constexpr uint32_t chunkBytes = 256 * 1024;  // larger only for a single record that needs more
    static constexpr uint32_t maxUnitBytes = 256 * 1024 * 1024;
    static constexpr uint32_t maxDepth =
        500;  // components in components: who walks them may call itself for each depth

    struct Chunk {
        std::byte* bytes = nullptr;  // in the store's memory
        uint32_t used = 0;
        uint32_t capacity = 0;
        bool changed = true;  // since it was last stored
    };

    ElementStore();

    // The unit's first node is the element, the others are its components. They are sound elements, nested no deeper
    // than maxDepth; the unit is no longer than maxUnitBytes (see unitBytes). Nothing has changed when these throw
    // std::bad_alloc.
    FilePos add(std::span<const StoredNode> unit);
    void replace(FilePos position, std::span<const StoredNode> unit);  // of a live element
    void remove(FilePos position);                                     // of a live element
    void restore(FilePos position);                                    // of a removed element
    // Gives a live element a record that it had before, and gives the one in force till now, which stays where it is.
    const RecordHead* putBack(FilePos position, const RecordHead* record);
    // Takes memory for records of so many bytes in all: replacing, removing and restoring that many can't fail then.
    void makeMemory(uint64_t bytes);
    static uint64_t unitBytes(std::span<const StoredNode> unit);

    bool isLive(FilePos position) const { return position < keys_.size() && keys_[position].live; }
    const MSElementBuffer* element(FilePos position) const;                          // null when there is none
    const RecordHead* record(FilePos position) const { return records_[position]; }  // the last one with nodes

    std::span<const ElementKey> keys() const { return keys_; }  // by position; the first one is no element
    // The bits of all types that elements at 64 positions, from a multiple of 64 on, have or had.
    static constexpr uint32_t positionsOfBits = 64;
    uint64_t typeBitsAt(FilePos position) const { return typeBits_[position / positionsOfBits]; }
    uint32_t liveCount() const { return liveCount_; }
    uint64_t removals() const { return removals_; }  // how often an element was removed so far
    uint32_t nextPosition() const { return static_cast<uint32_t>(keys_.size()); }

    // ---- the file ----
    std::span<Chunk> chunks() { return chunks_; }
    // Makes room for what is loaded: positions below `nextPosition`, and then one chunk after the other.
    void reservePositions(uint32_t nextPosition);
    Chunk& appendChunk(uint32_t capacity);
    // Reads the records of the last chunk. False when they aren't whole.
    bool takeRecords();

    // Bytes that are in chunks for nothing: records that were replaced or deleted.
    uint64_t wasteBytes() const { return wasteBytes_; }
    uint64_t usedBytes() const { return usedBytes_; }
    // Lays the live records anew, without the waste. What was deleted can't be restored then.
    void compact();

  private:
    std::byte* room(uint32_t bytes);
    const RecordHead* append(FilePos position, std::span<const StoredNode> unit, uint32_t bytes);
    const RecordHead* appendCopy(const RecordHead* record);
    bool takeRecord(const RecordHead* record);
    void setKey(FilePos position, const RecordHead* record);

    ChunkMemory memory_;
    std::vector<Chunk> chunks_;
    std::vector<const RecordHead*> records_;  // by position; the last one with nodes
    std::vector<ElementKey> keys_;            // by position
    std::vector<uint64_t> typeBits_;          // by position / positionsOfBits
    uint32_t liveCount_ = 0;
    uint64_t removals_ = 0;
    uint64_t wasteBytes_ = 0;
    uint64_t usedBytes_ = 0;
};

}  // namespace host
