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

// Puts bytes of the input at places that it tells, and cuts what is behind such a place.
inline void patch(std::string& file, Bytes& input) {
    while (!input.empty()) {
        const size_t at = input.take<uint32_t>() % file.size();
        const auto what = input.take<uint8_t>();
        if (what == 0) file.resize(std::max<size_t>(at, 1));
        for (size_t i = at; i < at + what % 16 && i < file.size(); ++i) file[i] = input.take<char>();
    }
}
