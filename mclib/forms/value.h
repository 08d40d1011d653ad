// One value of a field as text, by the rules of printf, the same in every locale.
#pragma once

#include <cstring>
#include <span>
#include <string_view>

#include "mclib/forms/forms.h"

namespace mc::forms {

// Text in a buffer of at least one byte: always ended, and cut at the buffer's end.
class BoundedText {
  public:
    explicit BoundedText(std::span<char> buffer) : buffer_(buffer) { buffer_[0] = '\0'; }
    void put(char c) {
        if (length_ + 1 == buffer_.size()) return;
        buffer_[length_++] = c;
        buffer_[length_] = '\0';
    }
    void put(std::string_view text) {
        if (text.empty()) return;  // it may have no characters to point at
        length_ += text.copy(buffer_.data() + length_, buffer_.size() - 1 - length_);
        buffer_[length_] = '\0';
    }
    void fill(char c, size_t count) {
        const size_t room = buffer_.size() - 1 - length_;
        if (count > room) count = room;
        std::memset(buffer_.data() + length_, c, count);
        length_ += count;
        buffer_[length_] = '\0';
    }
    std::string_view view() const { return {buffer_.data(), length_}; }

  private:
    std::span<char> buffer_;
    size_t length_ = 0;
};

constexpr size_t longestPrefix = 18;  // of a format, its "%" included
constexpr size_t longestValue = 511;  // characters of one formatted value

// Appends the value of a row that is set, of a field of type 1 to 4, formatted by `prefix` and the letter of the type.
// A prefix is what stands before the letter of a printf format: usually "%", flags, width and precision. Characters
// before its "%" are text; without any "%" all of it is, and the letter too. What is no part of a format ("*" among
// others) is passed over. Prefix and value are cut at the lengths above.
void putValue(BoundedText& to, std::string_view prefix, const FormData& field, int32_t row);

}  // namespace mc::forms
