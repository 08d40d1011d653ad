#include "mchost/front/line_editor.h"

#include <algorithm>
#include <utility>

namespace host {

namespace {

enum : char {
    CTRL_A = 1,
    CTRL_B = 2,
    CTRL_C = 3,
    CTRL_D = 4,
    CTRL_E = 5,
    CTRL_F = 6,
    CTRL_H = 8,
    TAB = 9,
    CTRL_K = 11,
    CTRL_N = 14,
    CTRL_P = 16,
    CTRL_U = 21,
    CTRL_W = 23,
    CTRL_Z = 26,
    ESCAPE = 27,
    DELETE = 127
};

}  // namespace

std::string printable(std::string text, std::string_view keep) {
    for (size_t i = 0; i < text.size(); ++i) {
        const auto code = static_cast<unsigned char>(text[i]);
        const auto next = i + 1 < text.size() ? static_cast<unsigned char>(text[i + 1]) : 0;
        const bool second = code == 0xC2 && next >= 0x80 && next < 0xA0;  // the control characters U+0080 to U+009F
        if (second) text.erase(i, 1);
        if (second || ((code < ' ' || code == 0x7F) && keep.find(text[i]) == keep.npos)) text[i] = ' ';
    }
    return text;
}

std::string commonBeginning(const std::vector<std::string>& texts) {
    const std::string& first = texts.front();
    size_t length = first.size();
    for (const std::string& text : texts)
        length = std::min(length, static_cast<size_t>(std::ranges::mismatch(first, text).in1 - first.begin()));
    while (length > 0 && length < first.size() && isContinuation(first[length])) --length;
    return first.substr(0, length);
}

// ---- the line ----

void LineEdit::left() {
    while (cursor_ > 0 && isContinuation(text_[--cursor_])) {
    }
}

void LineEdit::right() {
    if (cursor_ < text_.size()) ++cursor_;
    while (cursor_ < text_.size() && isContinuation(text_[cursor_])) ++cursor_;
}

void LineEdit::eraseBefore(size_t begin) {
    text_.erase(begin, cursor_ - begin);
    cursor_ = begin;
}

void LineEdit::complete() {
    if (!help_->complete) return;
    const std::string_view before = std::string_view(text_).substr(0, cursor_);
    Completion completion = help_->complete(before);
    if (completion.text == before) {
        choices_ = std::move(completion.choices);
        return;
    }
    text_.replace(0, cursor_, completion.text);
    cursor_ = completion.text.size();
}

void LineEdit::recall(int step) {
    if (step < 0 && recalled_ == 0) return;
    if (step > 0 && recalled_ == help_->history.size()) return;
    if (recalled_ == 0) ownText_ = text_;
    recalled_ = step > 0 ? recalled_ + 1 : recalled_ - 1;
    text_ = recalled_ == 0 ? ownText_ : help_->history[recalled_ - 1];
    cursor_ = text_.size();
}

LineEdit::State LineEdit::control(char byte) {
    const auto eraseNext = [&] {
        const size_t begin = cursor_;
        right();
        eraseBefore(begin);
    };
    const auto erasePrevious = [&] {
        const size_t end = cursor_;
        left();
        eraseBefore(std::exchange(cursor_, end));
    };
    switch (byte) {
        case '\r':
        case '\n': return State::done;
        case CTRL_C: return State::interrupted;
        case CTRL_Z: return State::suspended;
        case CTRL_D:
            if (text_.empty()) return State::givenUp;
            eraseNext();
            break;
        case CTRL_A: cursor_ = 0; break;
        case CTRL_E: cursor_ = text_.size(); break;
        case CTRL_B: left(); break;
        case CTRL_F: right(); break;
        case CTRL_P: recall(1); break;
        case CTRL_N: recall(-1); break;
        case CTRL_K: text_.resize(cursor_); break;
        case CTRL_U: eraseBefore(0); break;
        case CTRL_W: {
            const size_t end = text_.find_last_not_of("/\\ ", cursor_ == 0 ? 0 : cursor_ - 1);
            const size_t gap = end == std::string::npos ? end : text_.find_last_of("/\\ ", end);
            eraseBefore(gap == std::string::npos ? 0 : std::min(gap + 1, cursor_));
            break;
        }
        case CTRL_H:
        case DELETE: erasePrevious(); break;
        case TAB: complete(); break;
        case ESCAPE: sequence_ = ESCAPE; break;
        default: break;
    }
    return State::typing;
}

// The keys that come as more than one byte ("ANSI/VT220 control sequences").
void LineEdit::sequence() {
    const std::string key = std::exchange(sequence_, {});
    const std::string_view tail = std::string_view(key).substr(std::min<size_t>(key.size(), 2));
    if (tail == "A")
        recall(1);
    else if (tail == "B")
        recall(-1);
    else if (tail == "C")
        right();
    else if (tail == "D")
        left();
    else if (tail == "H" || tail == "1~" || tail == "7~")
        cursor_ = 0;
    else if (tail == "F" || tail == "4~" || tail == "8~")
        cursor_ = text_.size();
    else if (tail == "3~" && cursor_ < text_.size())
        control(CTRL_D);
}

LineEdit::State LineEdit::key(char byte) {
    if (!sequence_.empty()) {
        sequence_ += byte;
        const bool opens = sequence_.size() == 2 && (byte == '[' || byte == 'O');
        const bool ends = sequence_.size() == 2 ? !opens : byte >= '@' && byte <= '~';
        if (ends) sequence();
        return State::typing;
    }
    const auto code = static_cast<unsigned char>(byte);
    if (code < ' ' || byte == DELETE) return control(byte);
    text_.insert(cursor_++, 1, byte);
    return State::typing;
}

}  // namespace host
