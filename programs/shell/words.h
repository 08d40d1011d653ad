// Command lines as words, and where their output goes.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace host::shell {

struct Word {
    std::string text;
    bool isOperator = false;   // > >> 2> 2>> 2>&1 < | || & && ( )
    size_t begin = 0;          // where it stands in its line
    std::string written = {};  // with its quotes
};

// The words of a line of a batch file: divided at blanks and tabs, kept together by double quotes, which go. Operators
// outside of quotes are words of their own.
std::vector<Word> wordsOfLine(std::string_view line);
// One argument is a line. Several are words as they stand: who divided them has seen their quotes, and an operator that
// is left is a part of a name.
std::vector<Word> wordsOfArguments(const std::vector<std::string>& arguments);

// Sends the standard output and error of this process elsewhere for as long as it stands.
class Redirection {
  public:
    Redirection();
    ~Redirection();
    Redirection(const Redirection&) = delete;
    Redirection& operator=(const Redirection&) = delete;

    // Takes the operators, with the names behind them, out of the words; an empty text, or what is wrong with them.
    std::string takeFrom(std::vector<Word>& words);

  private:
    std::string apply(const std::string& sign, const std::string& name);
    int before_[2];  // standard output and error as they were
};

}  // namespace host::shell
