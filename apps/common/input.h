// An application's input file, read with the Fii reader: lines that begin with a keyword, and tokens that tell an error
// by themselves, with file, line, column and a caret.
#pragma once

#include <span>
#include <string>

#include "mclib.h"

namespace app {

class Input {
  public:
    static constexpr size_t longestText = 255;

    Input() = default;
    ~Input();
    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;

    // False after a message.
    bool open(const std::string& fileName);
    // The next logical line, as Windows-1252. False at the end, and after a message; failed() tells which.
    bool nextLine();
    bool failed() const { return failed_; }

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
    // An error at the position, or at another one.
    bool failHere(const std::string& what) const;
    bool failAt(char* position, const std::string& what);

  private:
    bool fail();  // remembers that the reading failed
    bool failAtInclude();

    McFii fii_{};
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
