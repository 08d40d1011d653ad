// An application's input file, read with the Fii reader: lines that begin with a keyword, and tokens that tell an error
// by themselves, with file, line, column and a caret.
#pragma once

#include <functional>
#include <string>
#include <utility>

#include <mclib/mclib.h>

namespace app {

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

}  // namespace app
