// Reads a fuzzer's input as values; zeros follow behind its end.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

class Bytes {
  public:
    Bytes(const uint8_t* data, size_t size) : at(data), left(size) {}

    template <class Value>
    Value take() {
        Value value{};
        const size_t count = std::min(left, sizeof value);
        if (count > 0) std::memcpy(&value, at, count);
        skip(count);
        return value;
    }
    // Up to the next NUL, which goes with it.
    std::string text() {
        const std::string value(reinterpret_cast<const char*>(at), strnlen(reinterpret_cast<const char*>(at), left));
        skip(std::min(left, value.size() + 1));
        return value;
    }
    bool empty() const { return left == 0; }

  private:
    void skip(size_t count) {
        at += count;
        left -= count;
    }
    const uint8_t* at;
    size_t left;
};

// Ends the run as a finding.
inline void require(bool good) {
    if (!good) __builtin_trap();
}
