// A 64-bit check value over bytes, to notice damage (not tampering).
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <span>

namespace host {

// Four lanes of multiply and rotate over 32 bytes at a time, then mixed. Each step is one-to-one in its lane, so a
// change within one 8-byte word always changes the lane.
inline uint64_t digest(std::span<const std::byte> bytes) {
    constexpr uint64_t odd1 = 0x9E3779B97F4A7C15, odd2 = 0xC2B2AE3D27D4EB4F;
    const auto mix = [](uint64_t lane, uint64_t word) { return std::rotl((lane ^ word) * odd1, 29) * odd2; };
    uint64_t lanes[4] = {odd1, odd2, ~odd1, ~odd2};
    const auto feed = [&](const std::byte* from) {
        uint64_t words[4];
        std::memcpy(words, from, sizeof words);
        for (int i = 0; i < 4; ++i) lanes[i] = mix(lanes[i], words[i]);
    };
    size_t at = 0;
    for (; at + 32 <= bytes.size(); at += 32) feed(bytes.data() + at);
    std::byte rest[32] = {};
    if (at < bytes.size()) std::memcpy(rest, bytes.data() + at, bytes.size() - at);
    feed(rest);
    uint64_t sum = bytes.size();
    for (const uint64_t lane : lanes) sum = mix(sum, lane);
    sum ^= sum >> 32;
    return sum * odd1;
}

}  // namespace host
