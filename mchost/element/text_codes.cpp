// Windows-1252 text to wide text and back.
#include <algorithm>

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

}  // namespace

int mdlCnv_convertMultibyteToUnicode(const char* text, int length, wchar_t* wide, int size) noexcept {
    return convert(text, length, wide, size, wideOf);
}

int mdlCnv_convertUnicodeToMultibyte(const wchar_t* wide, int length, char* text, int size) noexcept {
    return convert(wide, length, text, size, narrowOf);
}

int mdlText_compressString(char* out, const char* text, int32_t size, int32_t) noexcept {
    return convert(
        text, -1, out, size, +[](char c) { return c; });
}
