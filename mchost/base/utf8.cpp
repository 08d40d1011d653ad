#include "mchost/base/utf8.h"

#include "mchost/base/charset.h"

namespace host {
namespace {

constexpr char32_t replacement = 0xFFFD;

bool isCharacter(char32_t c) {
    return c <= 0x10FFFF && (c < 0xD800 || c > 0xDFFF);
}

}  // namespace

std::string toUtf8(std::wstring_view wide) {
    std::string out;
    for (const wchar_t w : wide) {
        const auto c = static_cast<char32_t>(w);
        appendUtf8(out, isCharacter(c) ? c : replacement);
    }
    return out;
}

std::wstring fromUtf8(std::string_view bytes) {
    std::wstring out;
    for (size_t at = 0; at < bytes.size();) out += static_cast<wchar_t>(nextUtf8(bytes, at).value_or(replacement));
    return out;
}

}  // namespace host
