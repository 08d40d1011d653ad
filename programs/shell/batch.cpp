#include "programs/shell/batch.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <utility>

#include "mchost/base/existing_path.h"
#include "mchost/base/paths.h"
#include "mchost/base/words.h"
#include "mchost/processes/programs.h"
#include "programs/shell/commands.h"
#include "programs/shell/dispatch.h"
#include "programs/shell/shell.h"

namespace host::shell {

namespace {

namespace fs = std::filesystem;

constexpr int deepestCall = 16;
int depth = 0;  // batch files that call each other

bool exists(const std::string& name) {
    return existingPath(systemPath(name)).has_value();
}

// The first word of a line in capitals, and the line behind it. The name of a command ends at other signs too:
// "GOTO:end", "SET,".
struct FirstWord {
    std::string word;
    std::string_view rest;
};

FirstWord firstWordOf(std::string_view line) {
    const size_t end = std::min(line.find_first_of(" \t:;,=/"), line.size());
    return {upperCase(line.substr(0, end)), line.substr(end)};
}

class BatchFile {
  public:
    BatchFile(const std::string& path, const std::vector<std::string>& arguments);
    bool isRead() const { return read_; }
    int run();

  private:
    int runLine(std::string_view line);
    int runIf(std::string_view rest);
    int runCall(std::string_view rest);
    std::optional<bool> condition(const std::vector<Word>& words, size_t& at, bool anyCase);
    int runExit(std::string_view rest);
    int runSet(std::string_view rest);
    int goTo(std::string_view rest);
    int wrong(const std::string& what);
    std::string expanded(std::string_view line) const;
    std::pair<std::string, size_t> reference(std::string_view text) const;
    std::string variable(const std::string& name) const;
    std::string place() const;

    std::string path_;
    std::vector<std::string> arguments_;  // %0 first
    std::vector<std::string> lines_;
    bool read_ = false;
    size_t next_ = 0;  // line that comes next
    int status_ = 0;   // of the last command
    bool ended_ = false;
};

BatchFile::BatchFile(const std::string& path, const std::vector<std::string>& arguments)
    : path_(path), arguments_{path} {
    arguments_.insert(arguments_.end(), arguments.begin(), arguments.end());
    std::ifstream file(path, std::ios::binary);
    for (std::string line; std::getline(file, line);) lines_.push_back(utf8FromHost(line));
    read_ = file.eof();
}

std::string BatchFile::place() const {
    return path_ + ":" + std::to_string(next_) + ": ";
}

int BatchFile::wrong(const std::string& what) {
    std::fflush(stdout);
    std::fprintf(stderr, "mcshell: %s%s\n", place().c_str(), what.c_str());
    return wrongUse;
}

int BatchFile::run() {
    while (!ended_ && next_ < lines_.size()) {
        const std::string& line = lines_[next_++];
        status_ = runLine(expanded(line));
    }
    return status_;
}

int BatchFile::runLine(std::string_view line) {
    line.remove_prefix(std::min(line.find_first_not_of("@ \t"), line.size()));
    line = trimmed(line);
    if (line.empty() || line.starts_with(':')) return status_;
    const auto [word, rest] = firstWordOf(line);
    if (word == "REM") return status_;
    if (word == "GOTO") return goTo(rest);
    if (word == "EXIT") return runExit(trimmed(rest));
    if (word == "SET") return runSet(trimmed(rest));
    if (word == "IF") return runIf(rest);
    if (word == "CALL") return runCall(trimmed(rest));
    if (word == "FOR") return wrong("FOR isn't understood by mcshell");
    const std::vector<Word> words = wordsOfLine(line);
    const int status = runWords(words, place());
    // A batch file that isn't called takes over.
    ended_ |= !findCommand(upperCase(words[0].text)) && !findBatchFile(words[0].text).empty();
    return status;
}

int BatchFile::runCall(std::string_view rest) {
    if (rest.empty() || rest.starts_with(':')) return wrong("CALL takes the name of a batch file or program");
    return runWords(wordsOfLine(rest), place());
}

int BatchFile::goTo(std::string_view rest) {
    const std::string label = upperCase(trimmed(rest.substr(std::min(rest.find_first_not_of(" \t:"), rest.size()))));
    if (label == "EOF") {
        ended_ = true;
        return status_;
    }
    for (size_t i = 0; i < lines_.size(); ++i) {
        const std::string_view line = trimmed(lines_[i]);
        if (!line.starts_with(':') || upperCase(trimmed(line.substr(1))) != label) continue;
        next_ = i + 1;
        return status_;
    }
    ended_ = true;
    return wrong("there is no line \":" + label + "\" to go to");
}

int BatchFile::runExit(std::string_view rest) {
    ended_ = true;
    if (upperCase(rest).starts_with("/B")) rest = trimmed(rest.substr(2));
    if (rest.empty()) return status_;
    const std::optional<int> status = host::numberIn<int>(rest);
    return status ? *status : wrong("EXIT takes a number, not \"" + std::string(rest) + "\"");
}

int BatchFile::runSet(std::string_view rest) {
    if (rest.starts_with('"') && rest.ends_with('"') && rest.size() > 1) rest = rest.substr(1, rest.size() - 2);
    const size_t sign = rest.find('=');
    if (sign == std::string_view::npos || sign == 0) return wrong("write SET NAME=VALUE");
    const std::string name(trimmed(rest.substr(0, sign))), value(rest.substr(sign + 1));
    if (value.empty())
        unsetenv(name.c_str());
    else
        setenv(name.c_str(), value.c_str(), 1);
    return done;
}

// IF [/I] [NOT] EXIST name | ERRORLEVEL number | text==text  command
int BatchFile::runIf(std::string_view rest) {
    const std::vector<Word> words = wordsOfLine(rest);
    size_t at = 0;
    const auto isNext = [&](const char* word) { return at < words.size() && upperCase(words[at].text) == word; };
    const bool anyCase = isNext("/I");
    at += anyCase ? 1 : 0;
    const bool negated = isNext("NOT");
    at += negated ? 1 : 0;
    const std::optional<bool> holds = condition(words, at, anyCase);
    if (!holds || at >= words.size())
        return wrong("write IF [NOT] EXIST NAME, IF [NOT] ERRORLEVEL NUMBER or IF [NOT] A==B, and a command behind it");
    return *holds != negated ? runLine(rest.substr(words[at].begin)) : status_;
}

// Whether the condition at word `at`, which moves behind it, holds; nothing when there is none.
std::optional<bool> BatchFile::condition(const std::vector<Word>& words, size_t& at, bool anyCase) {
    const auto next = [&] { return at < words.size() ? words[at++].text : std::string(); };
    const std::string first = next();
    if (upperCase(first) == "EXIST") return exists(next());
    if (upperCase(first) == "ERRORLEVEL") {
        const std::optional<int> level = host::numberIn<int>(next());
        return level ? std::optional(status_ >= *level) : std::nullopt;
    }
    constexpr std::string_view sign = "==";
    std::string left = first, right;
    if (const size_t split = first.find(sign); split != std::string::npos) {
        left = first.substr(0, split);
        right = first.substr(split + sign.size());
    } else if (const std::string second = next(); second.starts_with(sign)) {
        right = second == sign ? next() : second.substr(sign.size());
    } else {
        return std::nullopt;
    }
    return anyCase ? upperCase(left) == upperCase(right) : left == right;
}

// ---- %1, %*, %NAME% ----

std::string quotedWhereNeeded(const std::string& text) {
    const bool asItIs = text.find_first_of(" \t") == std::string::npos || text.starts_with('"');
    return asItIs ? text : '"' + text + '"';
}

// The argument with that number as the letters of "%~dp0" want it: d its drive, p its folder, n its name, x its suffix,
// f all of its path.
std::string partOf(const std::string& argument, std::string_view letters) {
    if (letters.empty()) return argument;
    const fs::path path = fs::absolute(systemPath(argument)).lexically_normal();
    std::string part;
    for (const char letter : upperCase(letters)) {
        if (letter == 'F') part += path.string();
        if (letter == 'P') part += (path.parent_path() / "").string();
        if (letter == 'N') part += path.stem().string();
        if (letter == 'X') part += path.extension().string();
    }
    return part;
}

std::string BatchFile::variable(const std::string& name) const {
    if (upperCase(name) == "ERRORLEVEL") return std::to_string(status_);
    if (upperCase(name) == "CD") return fs::current_path();
    for (const std::string& written : {name, upperCase(name)})
        if (const char* value = std::getenv(written.c_str())) return value;
    return "";
}

// What stands for the reference behind a "%", and how many characters it takes: "1", "*", "~1", "~dp0", "NAME%". None
// for a "%" that stands alone.
std::pair<std::string, size_t> BatchFile::reference(std::string_view text) const {
    const auto argument = [&](char digit) {
        const size_t number = static_cast<size_t>(digit - '0');
        return number < arguments_.size() ? arguments_[number] : std::string();
    };
    const auto isDigit = [&](size_t at) { return at < text.size() && text[at] >= '0' && text[at] <= '9'; };
    if (text.starts_with('%')) return {"%", 1};
    if (text.starts_with('*')) {
        std::string all;
        for (size_t i = 1; i < arguments_.size(); ++i) all += (i > 1 ? " " : "") + quotedWhereNeeded(arguments_[i]);
        return {all, 1};
    }
    if (isDigit(0)) return {quotedWhereNeeded(argument(text[0])), 1};
    if (text.starts_with('~')) {
        const size_t digit = std::min(text.find_first_not_of("dpnxfDPNXF", 1), text.size());
        if (isDigit(digit)) return {partOf(argument(text[digit]), text.substr(1, digit - 1)), digit + 1};
    }
    const size_t end = text.find('%');
    if (end == std::string_view::npos) return {"%", 0};
    return {variable(std::string(text.substr(0, end))), end + 1};
}

std::string BatchFile::expanded(std::string_view line) const {
    std::string text;
    while (!line.empty()) {
        const size_t percent = std::min(line.find('%'), line.size());
        text += line.substr(0, percent);
        line.remove_prefix(percent);
        if (line.empty()) break;
        const auto [value, length] = reference(line.substr(1));
        text += value;
        line.remove_prefix(1 + length);
    }
    return text;
}

// The file that is there under a folder, with or without one of the endings of batch files.
std::string batchFileAt(const fs::path& name) {
    const std::string ending = upperCase(name.extension().string());
    const bool complete = name.filename().string().size() > 4 && (ending == ".BAT" || ending == ".CMD");
    for (const char* added : {"", ".bat", ".cmd"}) {
        if (complete != (added[0] == '\0')) continue;
        const std::optional<std::string> found = existingPath(name.string() + added);
        std::error_code error;
        if (found && fs::is_regular_file(*found, error)) return *found;
    }
    return "";
}

}  // namespace

std::string findBatchFile(std::string_view word) {
    const fs::path name = systemPath(word);
    if (name.empty() || !name.has_filename()) return "";
    if (std::string found = batchFileAt(name); !found.empty() || name.has_parent_path()) return found;
    const char* path = std::getenv("PATH");
    for (std::string_view left = !path ? "" : path; !left.empty();) {
        const std::string_view folder = left.substr(0, left.find(':'));
        left.remove_prefix(std::min(left.size(), folder.size() + 1));
        if (std::string found = batchFileAt(fs::path(folder) / name); !found.empty()) return found;
    }
    return "";
}

int runBatchFile(const std::string& path, const std::vector<std::string>& arguments) {
    BatchFile file(path, arguments);
    if (!file.isRead() || depth == deepestCall) {
        std::fprintf(stderr, "mcshell: %s: %s\n", path.c_str(),
                     file.isRead() ? "batch files call each other too deeply" : "the batch file can't be read");
        return failed;
    }
    ++depth;
    const int status = file.run();
    --depth;
    return status;
}

}  // namespace host::shell
