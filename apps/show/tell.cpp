#include <cstdio>

#include <mchost/mdl/system.h>
#include <mchost/mdl/text.h>
#include <mclib/app/numbers.hpp>
#include "show.h"

namespace show {

namespace {

std::string hexOf(uint8_t byte) {
    char digits[3];
    std::snprintf(digits, sizeof digits, "%02x", byte);
    return digits;
}

constexpr uint8_t quote = '"', backslash = '\\', deleted = 0x7F;

bool isPrintable(uint8_t c) {
    return c >= ' ' && c != deleted;
}

}  // namespace

void line(int step, const std::string& text) {
    toolSubsystem_printf("%*s%s\n", 2 * step, "", text.c_str());
}

std::string quoted(std::string_view text) {
    std::string out = "\"";
    for (const char c : text) {
        const auto byte = static_cast<uint8_t>(c);
        if (!isPrintable(byte)) {
            out += "\\x" + hexOf(byte);
            continue;
        }
        if (byte == quote || byte == backslash) out += '\\';
        out += c;
    }
    return out + '"';
}

std::string quoted(const wchar_t* text) {
    std::string narrow(std::wcslen(text) + 1, '\0');
    mdlCnv_convertUnicodeToMultibyte(text, -1, narrow.data(), static_cast<int>(narrow.size()));
    return quoted(std::string_view(narrow.c_str()));
}

std::string number(double value) {
    return mcapp::shown(value, mcapp::asNeeded);
}

std::string counted(size_t count, const char* noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string hex(std::span<const uint8_t> bytes, size_t most) {
    std::string text = counted(bytes.size(), "byte") + (bytes.empty() ? "" : ":");
    for (const uint8_t byte : bytes.first(std::min(most, bytes.size()))) text += " " + hexOf(byte);
    return text + (bytes.size() > most ? " ..." : "");
}

std::string left(std::string text, size_t width) {
    if (text.size() < width) text.append(width - text.size(), ' ');
    return text;
}

std::string right(std::string text, size_t width) {
    if (text.size() < width) text.insert(0, width - text.size(), ' ');
    return text;
}

std::string Record::shortForm() const {
    std::string text = title;
    const char* divider = ": ";
    for (const Field& field : fields) {
        if (!field.says) continue;
        text += divider + field.name + " " + field.value;
        divider = ", ";
    }
    return problem.empty() ? text : text + " (" + problem + ")";
}

void Record::tellFields(int step, bool all) const {
    size_t width = 0;
    for (const Field& field : fields)
        if (all || field.says) width = std::max(width, field.name.size());
    for (const Field& field : fields)
        if (all || field.says) line(step, left(field.name, width) + "  " + field.value);
}

}  // namespace show
