#include "mclib/text/fii.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <limits>
#include <optional>
#include <string_view>

#include "mchost/mdl/system.h"
#include "mclib/frame/errors.h"
#include "mclib/frame/letters.h"
#include "mclib/text/char_set.h"
#include "mclib/text/decimal.h"

namespace mc {

namespace {

constexpr int defaultFileBufferSize = 512;
constexpr int defaultLineSize = 1024;
constexpr const char* defaultSeparators = " \n\t";
constexpr CharSet wholeCharacters("0123456789-+");
constexpr CharSet numberCharacters("0123456789.eE-+");

// Position after the last keyword test, of whichever reader: a hint that its separators are skipped already.
const char* lastSeekPosition = nullptr;

// Bytes that can be read behind a line's NUL.
constexpr size_t lineMargin = 8;

char noLine[1 + lineMargin] = "";  // the line of a closed reader

int failAt(McFii& f, int32_t code) {
    f.error = code;
    return MCLIB_ERROR;
}

// ---- tokens ----

constexpr size_t longestCopy = sizeof McFii{}.word - 1;

// Past the run of these characters at p.
char* pastRun(char* p, const char* characters) {
    for (;; ++p) {
        const char* c = characters;
        while (*c != *p && *c) ++c;
        if (*c == '\0') return p;
    }
}

// A token in the line: as much of it as a copy holds, and where it ends.
struct Token {
    std::string_view text;
    char* end;
};

Token copyToken(char* from, const char* delimiters, char* copy) {
    const size_t length = std::strcspn(from, delimiters);
    const size_t copied = std::min(length, longestCopy);
    std::memmove(copy, from, copied);  // unlike memcpy of so few bytes it isn't made a slow string instruction
    copy[copied] = '\0';
    return {{from, copied}, from + length};
}

char* takeToken(McFii& f, const char* delimiters, char* dest) {
    f.position = pastRun(copyToken(f.position, delimiters, dest).end, delimiters);
    return dest;
}

// A copy of a text, cut as a token's is.
std::string_view copyCut(char* out, std::string_view text) {
    const size_t length = text.copy(out, longestCopy);
    out[length] = '\0';
    return {out, length};
}

void skipSeparators(McFii& f) {
    f.position = pastRun(f.position, f.separators);
}

void skipUnlessPacked(McFii& f) {
    if (!f.pack) skipSeparators(f);
}

// ---- numbers ----

template <typename T>
int takeNumber(McFii& f, const char* delimiters, std::optional<T> (*parse)(std::string_view), T& value, int32_t error) {
    const Token token = copyToken(f.position, delimiters, f.word);
    const std::optional<T> parsed = parse(token.text);
    if (!parsed) return failAt(f, error);
    value = *parsed;
    f.position = pastRun(token.end, delimiters);
    return MCLIB_SUCCESS;
}

// ---- arrays of numbers ----

// The text at p in which a number can lie: leading blanks, then a run of its characters.
std::string_view numberAt(const char* p, const CharSet& characters) {
    return {p, static_cast<size_t>(characters.past(decimal::blanks.past(p)) - p)};
}

double takeDouble(McFii& f) {
    const double value = decimal::parseNumber<double>(numberAt(f.position, numberCharacters)).value;
    f.position = numberCharacters.past(f.position);
    return value;
}

int32_t takeWhole(McFii& f) {
    const decimal::Parsed<int32_t> parsed = decimal::parseNumber<int32_t>(numberAt(f.position, wholeCharacters));
    const bool negative = *decimal::blanks.past(f.position) == '-';
    f.position = wholeCharacters.past(f.position);
    if (parsed.inRange) return parsed.value;
    return negative ? std::numeric_limits<int32_t>::min() : std::numeric_limits<int32_t>::max();
}

enum { numericDoubles = 1, numericWholes = 2, numericPairs = 3 };

// ---- lines ----

// Removes blanks outside double quotes.
void packLine(char* line) {
    bool quoted = false;
    char* out = line;
    for (const char* p = line; *p; ++p) {
        if (*p == '"') quoted = !quoted;
        if (quoted || (*p != ' ' && *p != '\t')) *out++ = *p;
    }
    *out = '\0';
}

void resetLine(McFii& f) {
    f.line[0] = '\0';
    f.longValue = 0;
    f.doubleValue = 0;
    f.error = FII_NONE;
    f.lineNumber = 0;
}

const char* lineOf(const McFii& f) {
    return f.line ? f.line : noLine;
}

int columnOf(const McFii& f) {
    return f.line ? static_cast<int>(f.position - f.line) + 1 : 1;
}

template <typename T>
void storeUnlessNull(T* out, T value) {
    if (out) *out = value;
}

}  // namespace

}  // namespace mc

using namespace mc;

// ---- the reader ----

int mclibFii_open(McFii* f, const char* name, const char* mode) {
    return mclibFii_openExtended(f, name, mode, "\\", "#", defaultFileBufferSize, defaultLineSize, defaultSeparators);
}

int mclibFii_openExtended(McFii* f, const char* name, const char* mode, const char* continuation, const char* comment,
                          int fileBufferSize, int lineSize, const char* separators) {
    if (!f) return MCLIB_ERROR;
    *f = {};
    f->position = noLine;
    f->lineSize = lineSize;
    lastSeekPosition = nullptr;
    const std::string_view between = separators ? separators : defaultSeparators;
    f->file = mclibFile_openExtended(name, mode, continuation, comment, fileBufferSize);
    if (!f->file) return MCLIB_ERROR;
    if (lineSize >= 1 && between.size() < sizeof f->separators)
        f->line = static_cast<char*>(mclibMem_mallocRscErrorPrintf(static_cast<size_t>(lineSize) + 1 + lineMargin,
                                                                   MCLIB_ERRORS, MCLIB_OUT_OF_MEMORY));
    if (!f->line) {
        mclibFii_close(f);
        return MCLIB_ERROR;
    }
    between.copy(f->separators, between.size());
    f->position = f->line;
    resetLine(*f);
    return MCLIB_SUCCESS;
}

void mclibFii_close(McFii* f) {
    if (f->file) mclibFile_close(f->file);
    dlmSystem_mdlFree(f->line);
    f->file = nullptr;
    f->line = nullptr;
    f->position = noLine;
}

void mclibFii_rewind(McFii* f) {
    if (!f->file) return;
    mclibFile_rewind(f->file);
    resetLine(*f);
}

void mclibFii_packOn(McFii* f) {
    f->pack = 1;
}
void mclibFii_packOff(McFii* f) {
    f->pack = 0;
}
void mclibFii_caseSensitiveOn(McFii* f) {
    f->caseSensitive = 1;
}
void mclibFii_caseSensitiveOff(McFii* f) {
    f->caseSensitive = 0;
}

int mclibFii_readNewLine(McFii* f) {
    if (!f->file) return failAt(*f, FII_END_OF_FILE);
    f->position = f->line;
    const int lines = mclibFile_read(f->line, f->file, f->lineSize);
    if (lines <= 0) {
        f->line[0] = '\0';
        return failAt(*f, lines == 0 ? FII_END_OF_FILE : FII_READ_FAILED);
    }
    f->lineNumber += lines;
    if (f->pack)
        packLine(f->line);
    else
        skipSeparators(*f);
    f->error = FII_NONE;
    return MCLIB_SUCCESS;
}

int mclibFii_eol(McFii* f) {
    skipUnlessPacked(*f);
    return *f->position == '\0';
}

int mclibFii_eof(const McFii* f) {
    return f->error == FII_END_OF_FILE;
}

// ---- numbers ----

int mclibFii_isLong(McFii* f, const char* delimiters) {
    return takeNumber(*f, delimiters, decimal::wholeNumber, f->longValue, FII_NOT_WHOLE);
}

int mclibFii_isDouble(McFii* f, const char* delimiters) {
    return takeNumber(*f, delimiters, decimal::number, f->doubleValue, FII_NOT_NUMBER);
}

int32_t mclibFii_getLong(const McFii* f) {
    return f->longValue;
}

double* mclibFii_getDoubleP(McFii* f) {
    return &f->doubleValue;
}

int32_t mclibFii_readLong(McFii* f, const char* delimiters) {
    return mclibFii_isLong(f, delimiters) == MCLIB_SUCCESS ? f->longValue : 0;
}

double* mclibFii_readDoubleP(McFii* f, const char* delimiters) {
    static double zero;
    if (mclibFii_isDouble(f, delimiters) == MCLIB_SUCCESS) return &f->doubleValue;
    zero = 0.0;
    return &zero;
}

int mclibFii_readNumeric(McFii* f, int32_t reserved, ...) {
    va_list arguments;
    va_start(arguments, reserved);
    int status = MCLIB_SUCCESS;
    for (int count; status == MCLIB_SUCCESS && (count = va_arg(arguments, int)) >= 0;) {
        const int type = va_arg(arguments, int);
        if (type == numericDoubles) {
            double* values = va_arg(arguments, double*);
            for (int i = 0; i < count; ++i) values[i] = takeDouble(*f);
        } else if (type == numericWholes) {
            int* values = va_arg(arguments, int*);
            for (int i = 0; i < count; ++i) values[i] = takeWhole(*f);
        } else if (type == numericPairs) {
            double* first = va_arg(arguments, double*);
            double* second = va_arg(arguments, double*);
            for (int i = 0; i < count; ++i) {
                first[i] = takeDouble(*f);
                second[i] = takeDouble(*f);
            }
        } else {
            toolSubsystem_printf("Error from mclibFii_readNumeric\nUnknown type\n");
            status = MCLIB_ERROR;
        }
    }
    va_end(arguments);
    return status;
}

// ---- texts ----

char mclibFii_readChar(McFii* f) {
    skipUnlessPacked(*f);
    if (*f->position == '\0') return ' ';
    const char c = *f->position++;
    if (!isLetter(c)) f->error = FII_NOT_LETTER;
    return c;
}

char* mclibFii_readText(McFii* f, char* dest) {
    skipUnlessPacked(*f);
    return takeToken(*f, f->separators, dest);
}

char* mclibFii_readString(McFii* f, const char* quote, char* dest) {
    dest[0] = '\0';
    skipUnlessPacked(*f);
    if (mclibFii_isText(f, quote) != MCLIB_SUCCESS) return nullptr;
    takeToken(*f, quote, dest);
    skipSeparators(*f);
    return dest;
}

char* mclibFii_readSubString(McFii* f, const char* delimiters, char* dest) {
    skipUnlessPacked(*f);
    takeToken(*f, delimiters, dest);
    skipSeparators(*f);
    return dest;
}

int mclibFii_getLine(McFii* f, char* dest) {
    skipUnlessPacked(*f);
    std::strcpy(dest, f->position);
    return 0;
}

// ---- keywords ----

int mclibFii_seekText(McFii* f, const char* text) {
    if (f->position != lastSeekPosition) skipSeparators(*f);
    lastSeekPosition = f->position;
    const std::string_view wanted(text);
    const std::string_view found(f->position, ::strnlen(f->position, wanted.size()));
    if (f->caseSensitive) return found == wanted ? MCLIB_SUCCESS : MCLIB_ERROR;
    if (wanted.size() >= sizeof f->word) return MCLIB_ERROR;
    std::ranges::transform(copyCut(f->word, found), f->word, upper);
    return equalIgnoringCase(f->word, wanted) ? MCLIB_SUCCESS : MCLIB_ERROR;
}

int mclibFii_isText(McFii* f, const char* text) {
    if (mclibFii_seekText(f, text) != MCLIB_SUCCESS) return MCLIB_ERROR;
    f->position += std::strlen(text);
    return MCLIB_SUCCESS;
}

// ---- error reports ----

int mclibFii_reportErr(McFii* f, int* code, int* lineNumber, int* column, char* text) {
    if (f->error == FII_NONE) return MCLIB_ERROR;
    storeUnlessNull(code, f->error);
    storeUnlessNull(lineNumber, f->lineNumber);
    storeUnlessNull(column, columnOf(*f));
    if (text) copyCut(text, lineOf(*f));
    f->error = FII_NONE;
    return MCLIB_SUCCESS;
}

int mclibFii_formatErr(const McFii* f, int* code, char* text) {
    if (f->error == FII_NONE) return MCLIB_ERROR;
    storeUnlessNull(code, f->error);
    mclibFii_makeErr(f, text);
    return MCLIB_SUCCESS;
}

char* mclibFii_makeErr(const McFii* f, char* text) {
    std::sprintf(text, "(%d) %s", f->lineNumber, lineOf(*f));
    return text;
}

char* mclibFii_makeErr2(const McFii* f, char* text, int textSize) {
    const std::string_view line = lineOf(*f);
    const auto column = static_cast<size_t>(columnOf(*f));
    if (textSize < 0 || static_cast<size_t>(textSize) < line.size() + column + 2) {
        if (textSize > 0) text[0] = '\0';
        return nullptr;
    }
    char* p = text + line.copy(text, line.size());
    *p++ = '\n';
    p = std::fill_n(p, column - 1, ' ');
    *p++ = '^';
    *p = '\0';
    return text;
}

char* mclibFii_shrinkString(char*, char* result) {
    toolSubsystem_printf("mclibFii_shrinkString is dummy\n");
    return result;
}
