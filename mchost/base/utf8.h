// Wide text in files: UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace host {

// Characters that no text can hold (surrogates, beyond U+10FFFF) become U+FFFD.
std::string toUtf8(std::wstring_view wide);
// Bytes that aren't UTF-8 become U+FFFD.
std::wstring fromUtf8(std::string_view bytes);

// Whether a text comes back from UTF-8 as it was.
inline bool isUnicode(std::wstring_view wide) {
    return fromUtf8(toUtf8(wide)) == wide;
}

}  // namespace host
