#include "mchost/model/element_store.h"

#include <algorithm>
#include <cstring>

#include "mchost/element/range.h"

namespace host {
namespace {

const std::byte* nodesOf(const RecordHead* record) {
    return reinterpret_cast<const std::byte*>(record + 1);
}

const MSElementBuffer* elementBehind(const NodeHead* node) {
    return reinterpret_cast<const MSElementBuffer*>(node + 1);
}

// Whether the nodes of a record, which has record->bytes bytes, are whole and well nested.
bool nodesAreSound(const RecordHead* record) {
    const std::byte* at = nodesOf(record);
    uint64_t left = record->bytes;
    for (uint32_t deepest = 0; left != 0;) {
        if (left < sizeof(NodeHead)) return false;
        const auto* node = reinterpret_cast<const NodeHead*>(at);
        const uint64_t bytes = sizeof(NodeHead) + filledToWord(node->bytes);
        const bool first = at == nodesOf(record);
        if (bytes > left || node->depth > deepest || (node->depth == 0) != first) return false;
        if (!elementIsSound(node + 1, node->bytes) || elementBytes(elementBehind(node)) != node->bytes) return false;
        deepest = std::min(node->depth + 1, ElementStore::maxDepth);
        at += bytes;
        left -= bytes;
    }
    return true;
}

}  // namespace

ElementStore::ElementStore() : records_(1), keys_(1), typeBits_(1) {}

uint64_t ElementStore::unitBytes(std::span<const StoredNode> unit) {
    uint64_t bytes = 0;
    for (const StoredNode& node : unit) bytes += sizeof(NodeHead) + filledToWord(elementBytes(node.element));
    return bytes;
}

FilePos ElementStore::add(std::span<const StoredNode> unit) {
    const FilePos position = nextPosition();
    if (records_.capacity() == position) records_.reserve(2 * records_.size());
    if (keys_.capacity() == position) keys_.reserve(2 * keys_.size());
    if (position / positionsOfBits == typeBits_.size()) typeBits_.push_back(0);
    const RecordHead* record = append(position, unit, static_cast<uint32_t>(unitBytes(unit)));
    records_.push_back(nullptr);
    keys_.emplace_back();
    setKey(position, record);
    return position;
}

void ElementStore::replace(FilePos position, std::span<const StoredNode> unit) {
    const RecordHead* before = records_[position];
    setKey(position, append(position, unit, static_cast<uint32_t>(unitBytes(unit))));
    wasteBytes_ += recordBytes(before);
}

void ElementStore::remove(FilePos position) {
    append(position, {}, 0);
    keys_[position].live = false;
    --liveCount_;
    ++removals_;
    wasteBytes_ += recordBytes(records_[position]) + sizeof(RecordHead);
}

void ElementStore::restore(FilePos position) {
    setKey(position, appendCopy(records_[position]));
}

const RecordHead* ElementStore::putBack(FilePos position, const RecordHead* record) {
    const RecordHead* before = records_[position];
    setKey(position, appendCopy(record));
    wasteBytes_ += recordBytes(before);
    return before;
}

// A chunk may stay half empty in front of the next record.
void ElementStore::makeMemory(uint64_t bytes) {
    const uint64_t needed = 2 * bytes + 2 * chunkBytes;
    memory_.reserve(needed);
    chunks_.reserve(chunks_.size() + needed / chunkBytes + 1);
}

const MSElementBuffer* ElementStore::element(FilePos position) const {
    if (!isLive(position)) return nullptr;
    return elementBehind(reinterpret_cast<const NodeHead*>(records_[position] + 1));
}

// Room at the end of the last chunk, or in a new one.
std::byte* ElementStore::room(uint32_t bytes) {
    if (chunks_.empty() || chunks_.back().capacity - chunks_.back().used < bytes) {
        appendChunk(std::max(bytes, chunkBytes));
    }
    Chunk& chunk = chunks_.back();
    std::byte* at = chunk.bytes + chunk.used;
    chunk.used += bytes;
    chunk.changed = true;
    usedBytes_ += bytes;
    return at;
}

const RecordHead* ElementStore::append(FilePos position, std::span<const StoredNode> unit, uint32_t bytes) {
    std::byte* at = room(sizeof(RecordHead) + bytes);
    auto* record = new (at) RecordHead{position, bytes};
    at += sizeof(RecordHead);
    for (const StoredNode& node : unit) {
        const uint32_t size = elementBytes(node.element);
        new (at) NodeHead{node.depth, size};
        at += sizeof(NodeHead);
        std::memcpy(at, node.element, size);
        std::memset(at + size, 0, filledToWord(size) - size);
        at += filledToWord(size);
    }
    return record;
}

const RecordHead* ElementStore::appendCopy(const RecordHead* record) {
    const uint32_t bytes = recordBytes(record);
    std::byte* at = room(bytes);
    std::memcpy(at, record, bytes);
    return reinterpret_cast<const RecordHead*>(at);
}

void ElementStore::setKey(FilePos position, const RecordHead* record) {
    const ElementHead& head = elementBehind(reinterpret_cast<const NodeHead*>(record + 1))->head;
    liveCount_ += !keys_[position].live;
    records_[position] = record;
    typeBits_[position / positionsOfBits] |= typeBit(head.type);
    keys_[position] = {head.level, head.type, static_cast<uint8_t>(head.properties & MDL_PROP_CLASS), true};
}

void ElementStore::reservePositions(uint32_t nextPosition) {
    records_.resize(nextPosition);
    keys_.resize(nextPosition);
    typeBits_.resize((nextPosition - 1) / positionsOfBits + 1);
}

ElementStore::Chunk& ElementStore::appendChunk(uint32_t capacity) {
    return chunks_.emplace_back(Chunk{memory_.take(capacity), 0, capacity, true});
}

bool ElementStore::takeRecords() {
    const Chunk& chunk = chunks_.back();
    usedBytes_ += chunk.used;
    for (uint64_t at = 0; at < chunk.used;) {
        const uint64_t left = chunk.used - at;
        const auto* record = reinterpret_cast<const RecordHead*>(chunk.bytes + at);
        if (left < sizeof(RecordHead) || left - sizeof(RecordHead) < record->bytes || !takeRecord(record)) return false;
        at += recordBytes(record);
    }
    return true;
}

bool ElementStore::takeRecord(const RecordHead* record) {
    const FilePos position = record->position;
    if (position == 0 || position >= keys_.size() || record->bytes % 8 != 0 || !nodesAreSound(record)) return false;
    if (keys_[position].live) wasteBytes_ += recordBytes(records_[position]);
    if (record->bytes != 0) {
        setKey(position, record);
        return true;
    }
    liveCount_ -= keys_[position].live;
    keys_[position].live = false;
    wasteBytes_ += sizeof(RecordHead);
    return true;
}

void ElementStore::compact() {
    ElementStore lean;
    lean.reservePositions(nextPosition());
    for (FilePos position = 1; position < nextPosition(); ++position) {
        if (keys_[position].live) lean.setKey(position, lean.appendCopy(records_[position]));
    }
    *this = std::move(lean);
}

}  // namespace host
