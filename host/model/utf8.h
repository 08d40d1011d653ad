// Wide text in files: UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace host {

// Characters that no text can hold (surrogates, beyond U+10FFFF) become U+FFFD.
std::string toUtf8(std::wstring_view wide);
// Bytes that aren't UTF-8 become U+FFFD.
std::wstring fromUtf8(std::string_view bytes);

}  // namespace host
