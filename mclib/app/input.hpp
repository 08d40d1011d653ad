// An application's input file, read with the Fii reader: lines that begin with a keyword, and tokens that tell an error
// by themselves, with file, line, column and a caret.
#pragma once

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include <mchost/mdl/files.h>
#include <mchost/mdl/text.h>
#include <mclib/mclib.h>
#include <mclib/app/numbers.hpp>
#include <mclib/app/system_path.hpp>
#include <mclib/app/tell.hpp>

namespace mcapp {

class Input {
  public:
    static constexpr size_t longestText = 255;

    Input() = default;
    ~Input();
    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;

    // Why a letter (Windows-1252) is refused; empty when it isn't. None, as it is at first: no letter is.
    using LetterRefusal = std::function<std::string(char letter)>;
    void setLetterRefusal(LetterRefusal refusal) { letterRefusal_ = std::move(refusal); }

    // False after a message.
    bool open(const std::string& fileName);
    // The next logical line, as Windows-1252. A line that can't be taken is told and passed: failed() is true from then
    // on. False at the end.
    bool nextLine();
    bool failed() const { return failed_; }
    // The file that the line stands in, and where in it.
    std::string fileName() const { return current()->name; }
    int lineNumber() const { return current()->lineNumber; }

    // ---- tokens: false after a message; `what` names the token in it ----
    bool number(double& value, const char* what);
    bool positive(double& value, const char* what);
    bool wholeNumber(int& value, const char* what);
    bool text(std::string& value, const char* what);  // in double quotes, longestText characters at most
    bool word(std::string& value, const char* what);  // up to a blank, as long as a text
    bool rest(std::string& value, const char* what);  // of the line; position() is then where it begins
    bool endOfLine();                                 // nothing follows
    // The row whose keyword begins the line, which is passed; null after a message.
    template <class Rows>
    auto keywordOf(const Rows& rows) -> decltype(&*rows.begin());

    // ---- without a message ----
    bool isKeyword(const char* name);  // passes it when it stands here as a whole word, in any case
    bool startsWith(const char* text) { return mclibFii_seekText(&fii_, text) == MCLIB_SUCCESS; }
    bool atEnd() { return mclibFii_eol(&fii_) != 0; }  // skips blanks

    // ---- places in the line ----
    char* position() const { return fii_.position; }
    char* lineStart() const { return fii_.line; }
    // An error at the position, or at another one. Behind the first mostErrors the others are counted alone.
    static constexpr int mostErrors = 20;
    bool failHere(const std::string& what);
    bool failAt(char* position, const std::string& what);

  private:
    const McFile* current() const;
    bool takeLetters();
    void failAtInclude();
    void tellUntold();

    McFii fii_{};
    LetterRefusal letterRefusal_;
    int errors_ = 0;
    bool open_ = false, failed_ = false;
};

// The names of a table's rows, as a message lists them.
template <class Rows>
std::string namesOf(const Rows& rows) {
    std::string names;
    for (const auto& row : rows) names += std::string(names.empty() ? "" : ", ") + row.name;
    return names;
}

namespace detail {

inline constexpr const char* blanks = " \t";
inline constexpr int fileBufferSize = 512;
inline constexpr int lineSize = 2048;

// A UTF-8 text as Windows-1252, with a "?" for each letter that has no code there. Nothing when it is no UTF-8.
struct Narrowed {
    std::string text;
    size_t lost = std::string::npos;  // where the first "?" for a letter stands
    uint32_t lostLetter = 0;          // which letter that is
};

// Of the letter that begins with this byte; 0: none does.
inline size_t utf8Length(unsigned char first) {
    if (first < 0x80) return 1;
    if (first < 0xC2 || first > 0xF4) return 0;
    if (first < 0xE0) return 2;
    return first < 0xF0 ? 3 : 4;
}

inline std::optional<Narrowed> narrowed(std::string_view utf8) {
    Narrowed out;
    while (!utf8.empty()) {
        const auto first = static_cast<unsigned char>(utf8[0]);
        const size_t length = utf8Length(first);
        if (length == 0 || utf8.size() < length) return {};
        uint32_t letter = length == 1 ? first : first & (0x7FU >> length);
        for (const char c : utf8.substr(1, length - 1)) {
            if ((c & 0xC0) != 0x80) return {};
            letter = letter << 6 | (c & 0x3F);
        }
        utf8.remove_prefix(length);
        const wchar_t wide[] = {static_cast<wchar_t>(letter), L'\0'};
        char one[2] = "?";
        mdlCnv_convertUnicodeToMultibyte(wide, 1, one, sizeof one);
        if (one[0] == '?' && letter != '?' && out.lost == out.text.npos) {
            out.lost = out.text.size();
            out.lostLetter = letter;
        }
        out.text += one;
    }
    return out;
}

// Why a file can't be read as text; empty when it can.
inline std::string refusalOf(const std::string& fileName) {
    std::error_code error;
    const std::filesystem::path path = systemPath(fileName);
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (fileName == "-") return "standard input isn't read; give the name of a file";
    if (!std::filesystem::exists(status)) return "there is no such file";
    if (std::filesystem::is_directory(status)) return "this is a folder; give the name of a file in it";
    if (!std::filesystem::is_regular_file(status)) return "this is a device and no file that can be read";
    std::string start(512, '\0');
    std::ifstream file(path, std::ios::binary);
    if (!file) return std::string("the file can't be read: ") + std::strerror(errno);
    file.read(start.data(), static_cast<std::streamsize>(start.size()));
    start.resize(static_cast<size_t>(file.gcount()));
    if (start.starts_with("\xFF\xFE") || start.starts_with("\xFE\xFF"))
        return "the file is UTF-16; save it as UTF-8 and try again";
    return start.find('\0') == start.npos ? "" : "this is no text file";
}

// Tabs apart. Windows-1252 has no letters for five codes above ASCII.
inline bool isControl(char c) {
    constexpr std::string_view unused = "\x7F\x81\x8D\x8F\x90\x9D";
    return (static_cast<unsigned char>(c) < ' ' && c != '\t') || unused.find(c) != unused.npos;
}

inline std::string missing(const char* what) {
    return std::string(what) + " is missing";
}

}  // namespace detail

inline Input::~Input() {
    if (open_) mclibFii_close(&fii_);
}

inline const McFile* Input::current() const {
    const McFile* file = fii_.file;
    while (file->child) file = file->child;
    return file;
}

inline bool Input::open(const std::string& fileName) {
    const std::string refusal = detail::refusalOf(fileName);
    if (!refusal.empty()) return fail(fileName + ": " + refusal);
    if (mclibFii_openExtended(&fii_, fileName.c_str(), "r", "\\", "#", detail::fileBufferSize, detail::lineSize,
                              nullptr) != MCLIB_SUCCESS) {
        return fail(fileName + ": the file can't be read");
    }
    open_ = true;
    return true;
}

inline bool Input::nextLine() {
    for (;;) {
        const bool read = mclibFii_readNewLine(&fii_) == MCLIB_SUCCESS;
        if (fii_.file->lostInclude > 0) failAtInclude();
        if (read && takeLetters() && !atEnd() && *position() != '#') return true;
        if (read) continue;
        // The library has told of a line that is too long, and of a disk that fails, behind which nothing is read.
        if (mclibFii_eof(&fii_) != 0 || mdlTextFile_error(current()->stream) != 0) break;
        failed_ = true;
    }
    failed_ = failed_ || mclibFii_eof(&fii_) == 0;
    tellUntold();
    return false;
}

// The line as Windows-1252. False after a message when it has a letter that can't be shown.
inline bool Input::takeLetters() {
    const std::optional<detail::Narrowed> line = detail::narrowed(fii_.line);
    if (line) std::strcpy(fii_.line, line->text.c_str());
    if (line && line->lost != line->text.npos) {
        char number[16];
        std::snprintf(number, sizeof number, "U+%04X", line->lostLetter);
        return failAt(fii_.line + line->lost, std::string("the letter ") + number +
                                                  ", shown as ? below, isn't one of Windows-1252, which drawings are "
                                                  "written in; write it with other letters");
    }
    for (char* letter = fii_.line; *letter != '\0'; ++letter) {
        if (detail::isControl(*letter)) {
            *letter = '?';
            return failAt(letter, "a control character stands here; is this a text file?");
        }
        const std::string refusal = letterRefusal_ ? letterRefusal_(*letter) : "";
        if (!refusal.empty()) return failAt(letter, refusal);
    }
    return true;
}

// The library has told which file is detail::missing, or includes itself.
inline void Input::failAtInclude() {
    failed_ = true;
    if (++errors_ <= mostErrors) {
        fail(std::string(fii_.file->name) + ", line " + std::to_string(fii_.file->lostInclude) +
             ": the file that %include names can't be opened; put it beside this one, or give its path. A file "
             "can't include itself");
    }
    fii_.file->lostInclude = 0;
}

// ---- errors ----

inline bool Input::failHere(const std::string& what) {
    failed_ = true;
    if (++errors_ > mostErrors) return false;
    std::string lines(2 * std::strlen(fii_.line) + 3, '\0');
    if (!mclibFii_makeErr2(&fii_, lines.data(), static_cast<int>(lines.size()))) lines.clear();
    lines.resize(std::strlen(lines.c_str()));
    const auto column = fii_.position - fii_.line + 1;
    return fail(fileName() + ", line " + std::to_string(lineNumber()) + ", column " + std::to_string(column) + ": " +
                what + "\n" + lines);
}

inline void Input::tellUntold() {
    const int untold = errors_ - mostErrors;
    if (untold > 0) fail("and " + std::to_string(untold) + (untold == 1 ? " more error" : " more errors"));
}

inline bool Input::failAt(char* position, const std::string& what) {
    fii_.position = position;
    return failHere(what);
}

// ---- tokens ----

inline bool Input::number(double& value, const char* what) {
    if (atEnd()) return failHere(detail::missing(what));
    if (mclibFii_isDouble(&fii_, detail::blanks) != MCLIB_SUCCESS)
        return failHere(std::string(what) + " must be a number" +
                        commaHint({fii_.position, std::strcspn(fii_.position, detail::blanks)}));
    value = *mclibFii_getDoubleP(&fii_);
    return true;
}

inline bool Input::positive(double& value, const char* what) {
    if (atEnd()) return failHere(detail::missing(what));
    char* const start = position();
    if (!number(value, what)) return false;
    return value > 0 || failAt(start, std::string(what) + " must be above 0");
}

inline bool Input::wholeNumber(int& value, const char* what) {
    if (atEnd()) return failHere(detail::missing(what));
    if (mclibFii_isLong(&fii_, detail::blanks) != MCLIB_SUCCESS)
        return failHere(std::string(what) + " must be a whole number");
    value = mclibFii_getLong(&fii_);
    return true;
}

inline bool Input::text(std::string& value, const char* what) {
    if (!startsWith("\"")) return failHere(detail::missing(what) + ": a text in double quotes");
    const char* const closing = std::strchr(fii_.position + 1, '"');
    if (!closing) return failHere("the text has no closing quote");
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

inline bool Input::word(std::string& value, const char* what) {
    if (atEnd()) return failHere(detail::missing(what));
    const size_t length = std::strcspn(fii_.position, detail::blanks);
    if (length > longestText) return failHere(std::string(what) + " is too long");
    char taken[longestText + 1];
    value = mclibFii_readSubString(&fii_, detail::blanks, taken);
    return true;
}

inline bool Input::rest(std::string& value, const char* what) {
    if (atEnd()) return failHere(detail::missing(what));
    char taken[detail::lineSize];
    mclibFii_getLine(&fii_, taken);
    value = taken;
    return true;
}

inline bool Input::endOfLine() {
    return atEnd() || failHere("nothing more is expected here");
}

template <class Rows>
auto Input::keywordOf(const Rows& rows) -> decltype(&*rows.begin()) {
    for (const auto& row : rows)
        if (isKeyword(row.name)) return &row;
    failHere("a line begins with a keyword, one of " + namesOf(rows));
    return nullptr;
}

inline bool Input::isKeyword(const char* name) {
    char* const before = fii_.position;
    if (mclibFii_isText(&fii_, name) != MCLIB_SUCCESS) return false;
    if (*fii_.position == '\0' || std::strchr(detail::blanks, *fii_.position)) {
        mclibFii_eol(&fii_);
        return true;
    }
    fii_.position = before;
    return false;
}

}  // namespace mcapp
