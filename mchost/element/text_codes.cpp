// Windows-1252 text to wide text and back.
#include <algorithm>
#include <cstring>

#include "mchost/base/charset.h"
#include "mchost/mdl/text.h"

using namespace host;

namespace {

wchar_t wideOf(char c) {
    return static_cast<wchar_t>(unicodeOf(static_cast<unsigned char>(c)));
}

char narrowOf(wchar_t c) {
    return static_cast<char>(narrowCodeOf(static_cast<char32_t>(c)).value_or('?'));
}

// Characters of `text` up to its NUL; a `length` of 0 or more limits them.
template <class Char>
size_t countOf(const Char* text, int length) {
    size_t count = 0;
    while ((length < 0 || count < static_cast<size_t>(length)) && text[count] != 0) ++count;
    return count;
}

template <class From, class To>
int convert(const From* from, int length, To* to, int size, To (*character)(From)) {
    if (!from || !to || size < 1) return MDL_ERROR;
    const size_t wanted = countOf(from, length), count = std::min(wanted, static_cast<size_t>(size) - 1);
    std::transform(from, from + count, to, character);
    to[count] = 0;
    return count == wanted ? MDL_SUCCESS : MDL_ERROR;
}

// `out` may be `text`, which is then written to only where it is cut.
int copyNarrow(char* out, const char* text, int32_t size) {
    if (!out || !text || size < 1) return MDL_ERROR;
    const auto room = static_cast<size_t>(size);
    const size_t wanted = strnlen(text, room), count = std::min(wanted, room - 1);
    if (out != text) std::memmove(out, text, count);
    if (out != text || count < wanted) out[count] = '\0';
    return count == wanted ? MDL_SUCCESS : MDL_ERROR;
}

}  // namespace

int mdlCnv_convertMultibyteToUnicode(const char* text, int length, wchar_t* wide, int size) noexcept {
    return convert(text, length, wide, size, wideOf);
}

int mdlCnv_convertUnicodeToMultibyte(const wchar_t* wide, int length, char* text, int size) noexcept {
    return convert(wide, length, text, size, narrowOf);
}

int mdlText_compressString(char* out, const char* text, int32_t size, int32_t) noexcept {
    return copyNarrow(out, text, size);
}

int mdlText_expandString(char* out, const char* text, int32_t size, int32_t) noexcept {
    return copyNarrow(out, text, size);
}
