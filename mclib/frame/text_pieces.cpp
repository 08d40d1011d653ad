// Text pieces: tokens, blanks, line breaks, wide and narrow text.
#include <cstring>
#include <cwchar>

#include "mchost/mdl/system.h"
#include "mchost/mdl/text.h"
#include "mclib/frame/errors.h"
#include "mclib/frame/util.h"

namespace mc {

namespace {

constexpr int convertedTextSize = 512;
constexpr size_t tokensAtOnce = 20;

char* checkedCopy(const char* text) {
    const size_t size = std::strlen(text) + 1;
    void* copy = mclibMem_mallocRscErrorPrintf(size, MCLIB_ERRORS, MCLIB_OUT_OF_MEMORY);
    return copy ? static_cast<char*>(std::memcpy(copy, text, size)) : nullptr;
}

// The tokens found so far, in an array that grows.
struct TokenList {
    char** tokens = nullptr;
    size_t capacity = 0;
    int count = 0;

    bool add(const char* token) {
        if (static_cast<size_t>(count) == capacity && !grow()) return false;
        tokens[count] = checkedCopy(token);
        return tokens[count] && ++count;
    }

    bool grow() {
        const size_t oldSize = capacity * sizeof(char*), newSize = (capacity + tokensAtOnce) * sizeof(char*);
        void* grown = tokens
                          ? mclibMem_reallocRscErrorPrintf(tokens, oldSize, newSize, MCLIB_ERRORS, MCLIB_OUT_OF_MEMORY)
                          : mclibMem_mallocRscErrorPrintf(newSize, MCLIB_ERRORS, MCLIB_OUT_OF_MEMORY);
        if (!grown) return false;
        tokens = static_cast<char**>(grown);
        capacity += tokensAtOnce;
        return true;
    }
};

// The length of a line break at `text`: a line feed, or \n or \N written out; 0 for none.
size_t lineBreakLength(const char* text) {
    if (*text == '\n') return 1;
    return text[0] == '\\' && (text[1] == 'n' || text[1] == 'N') ? 2 : 0;
}

}  // namespace

}  // namespace mc

using namespace mc;

char** mclibString_tokenize(int* count, char* text, const char* delimiters) {
    if (!count) return nullptr;
    *count = 0;
    if (!text || !delimiters) return nullptr;
    TokenList list;
    char* rest = nullptr;
    for (char* token = strtok_r(text, delimiters, &rest); token; token = strtok_r(nullptr, delimiters, &rest))
        if (!list.add(token)) {
            mclibString_freeTokenList(list.tokens, list.count ? list.count : -1);
            return nullptr;
        }
    *count = list.count;
    return list.tokens;
}

char** mclibString_tokenize2(int* count, const char* text, const char* delimiters) {
    if (!count) return nullptr;
    *count = 0;
    char* copy = text ? checkedCopy(text) : nullptr;
    if (!copy) return nullptr;
    char** tokens = mclibString_tokenize(count, copy, delimiters);
    dlmSystem_mdlFree(copy);
    return tokens;
}

void mclibString_freeTokenList(char** list, int count) {
    if (!list || count == 0) return;
    for (int i = 0; i < count; ++i) {
        dlmSystem_mdlFree(list[i]);
        list[i] = nullptr;
    }
    dlmSystem_mdlFree(list);
}

char* mclibUtil_removeSpaces(char* text) {
    if (!text) return text;
    char* to = text;
    for (const char* from = text; *from; ++from)
        if (*from != ' ' && *from != '\t') *to++ = *from;
    *to = '\0';
    return text;
}

int mclibUtil_splitText(char* text, char* rest) {
    for (char* at = text; at && *at; ++at) {
        const size_t length = lineBreakLength(at);
        if (!length) continue;
        const bool more = at[length] != '\0';
        if (more && rest) std::memmove(rest, at + length, std::strlen(at + length) + 1);
        *at = '\0';
        return more;
    }
    return 0;
}

wchar_t* mclibUtil_convertToUnicodeText(const char* text) {
    static wchar_t wide[convertedTextSize];
    wide[0] = L'\0';
    if (text) mdlCnv_convertMultibyteToUnicode(text, static_cast<int>(std::strlen(text)), wide, convertedTextSize);
    return wide;
}

char* mclibUtil_convertToMultibyteText(const wchar_t* text) {
    static char narrow[convertedTextSize];
    narrow[0] = '\0';
    if (text) mdlCnv_convertUnicodeToMultibyte(text, static_cast<int>(std::wcslen(text)), narrow, convertedTextSize);
    return narrow;
}
