#include "apps/common/input.h"

#include <cstring>
#include <filesystem>

#include "apps/common/system_path.h"
#include "apps/common/tell.h"
#include "host/mdl/text.h"

namespace app {

namespace {

constexpr const char* blanks = " \t";
constexpr int fileBufferSize = 512;
constexpr int lineSize = 2048;

// Turns UTF-8 into Windows-1252 in place, so that files of either kind can be read; what is no UTF-8 stays.
void narrow(char* text) {
    std::string out;
    for (const auto* p = reinterpret_cast<const unsigned char*>(text); *p != 0; ++p) {
        const int more = *p < 0x80 ? 0 : *p >= 0xC2 && *p < 0xE0 ? 1 : *p >= 0xE0 && *p < 0xF0 ? 2 : -1;
        wchar_t wide[2] = {static_cast<wchar_t>(more == 0 ? *p : more == 1 ? *p & 0x1F : *p & 0x0F), L'\0'};
        if (more < 0) return;
        for (int i = 0; i < more; ++i) {
            if ((*++p & 0xC0) != 0x80) return;
            wide[0] = wide[0] << 6 | (*p & 0x3F);
        }
        char one[2] = "";
        mdlCnv_convertUnicodeToMultibyte(wide, 1, one, sizeof one);
        out += one;
    }
    std::strcpy(text, out.c_str());
}

std::string missing(const char* what) {
    return std::string(what) + " is missing";
}

}  // namespace

Input::~Input() {
    if (open_) mclibFii_close(&fii_);
}

bool Input::fail() {
    failed_ = true;
    return false;
}

bool Input::open(const std::string& fileName) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(systemPath(fileName), error))
        return app::fail(fileName + ": there is no such file");
    if (mclibFii_openExtended(&fii_, fileName.c_str(), "r", "\\", "#", fileBufferSize, lineSize, nullptr) !=
        MCLIB_SUCCESS) {
        return app::fail(fileName + ": the file can't be read");
    }
    open_ = true;
    return true;
}

bool Input::nextLine() {
    const bool read = mclibFii_readNewLine(&fii_) == MCLIB_SUCCESS;
    if (!read && mclibFii_eof(&fii_) == 0) {
        failHere("the line can't be read; it has " + std::to_string(lineSize - 1) + " characters at most");
        return fail();
    }
    if (fii_.file->lostInclude > 0) return failAtInclude();
    if (read) narrow(fii_.line);
    return read;
}

// The library has told which file is missing.
bool Input::failAtInclude() {
    app::fail(std::string(fii_.file->name) + ", line " + std::to_string(fii_.file->lostInclude) +
              ": the file that %include names can't be opened; put it beside this one, or give its path");
    return fail();
}

// ---- errors ----

bool Input::failHere(const std::string& what) const {
    const McFile* file = fii_.file;
    while (file->child != nullptr) file = file->child;
    std::string lines(2 * std::strlen(fii_.line) + 3, '\0');
    if (mclibFii_makeErr2(&fii_, lines.data(), static_cast<int>(lines.size())) == nullptr) lines.clear();
    lines.resize(std::strlen(lines.c_str()));
    const auto column = fii_.position - fii_.line + 1;
    return app::fail(std::string(file->name) + ", line " + std::to_string(file->lineNumber) + ", column " +
                     std::to_string(column) + ": " + what + "\n" + lines);
}

bool Input::failAt(char* position, const std::string& what) {
    fii_.position = position;
    return failHere(what);
}

// ---- tokens ----

bool Input::number(double& value, const char* what) {
    if (atEnd()) return failHere(missing(what));
    if (mclibFii_isDouble(&fii_, blanks) != MCLIB_SUCCESS) return failHere(std::string(what) + " must be a number");
    value = *mclibFii_getDoubleP(&fii_);
    return true;
}

bool Input::positive(double& value, const char* what) {
    if (atEnd()) return failHere(missing(what));
    char* const start = position();
    if (!number(value, what)) return false;
    return value > 0 || failAt(start, std::string(what) + " must be above 0");
}

bool Input::wholeNumber(int& value, const char* what) {
    if (atEnd()) return failHere(missing(what));
    if (mclibFii_isLong(&fii_, blanks) != MCLIB_SUCCESS) return failHere(std::string(what) + " must be a whole number");
    value = mclibFii_getLong(&fii_);
    return true;
}

bool Input::text(std::string& value, const char* what) {
    if (!startsWith("\"")) return failHere(missing(what) + ": a text in double quotes");
    const char* const closing = std::strchr(fii_.position + 1, '"');
    if (closing == nullptr) return failHere("the text has no closing quote");
    const size_t length = closing - fii_.position - 1;
    if (length > longestText) {
        return failHere("the text has " + std::to_string(length) + " characters; " + std::to_string(longestText) +
                        " is the most");
    }
    // Taken here: a reader's quoted text ends with a run of quotes, and an empty text is one.
    value.assign(fii_.position + 1, length);
    fii_.position += length + 2;
    return true;
}

bool Input::word(std::string& value, const char* what) {
    if (atEnd()) return failHere(missing(what));
    const size_t length = std::strcspn(fii_.position, blanks);
    if (length > longestText) return failHere(std::string(what) + " is too long");
    char taken[longestText + 1];
    value = mclibFii_readSubString(&fii_, blanks, taken);
    return true;
}

bool Input::rest(std::string& value, const char* what) {
    if (atEnd()) return failHere(missing(what));
    char taken[lineSize];
    mclibFii_getLine(&fii_, taken);
    value = taken;
    return true;
}

bool Input::endOfLine() {
    return atEnd() || failHere("nothing more is expected here");
}

bool Input::isKeyword(const char* name) {
    char* const before = fii_.position;
    if (mclibFii_isText(&fii_, name) != MCLIB_SUCCESS) return false;
    if (*fii_.position == '\0' || std::strchr(blanks, *fii_.position) != nullptr) {
        mclibFii_eol(&fii_);
        return true;
    }
    fii_.position = before;
    return false;
}

}  // namespace app
