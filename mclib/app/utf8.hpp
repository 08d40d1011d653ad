// UTF-8 for those who read the text files that are made.
#pragma once

#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include <mchost/mdl/text.h>
#include <mclib/app/system_path.hpp>

namespace mcapp {

// From Windows-1252.
std::string utf8From(std::string_view narrow);
// Rewrites a file of Windows-1252 in UTF-8. False when it can't be read or written.
bool makeUtf8(const std::string& file);

inline std::string utf8From(std::string_view narrow) {
    std::string out;
    for (const char letter : narrow) {
        const char one[] = {letter, '\0'};
        wchar_t wide[2] = L"";
        mdlCnv_convertMultibyteToUnicode(one, 1, wide, 2);
        const auto code = static_cast<uint32_t>(wide[0]);  // below 0x10000
        if (code < 0x80) {
            out += letter;
            continue;
        }
        if (code >= 0x800) out += static_cast<char>(0xE0 | code >> 12);
        out += static_cast<char>(code >= 0x800 ? 0x80 | (code >> 6 & 0x3F) : 0xC0 | code >> 6);
        out += static_cast<char>(0x80 | (code & 0x3F));
    }
    return out;
}

inline bool makeUtf8(const std::string& file) {
    const std::filesystem::path path = systemPath(file);
    std::ifstream in(path, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(in), {}};
    if (!in.is_open() || in.bad()) return false;
    std::ofstream out(path, std::ios::binary);
    out << utf8From(text);
    out.close();
    return out.good();
}

}  // namespace mcapp
