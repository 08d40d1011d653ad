#include "programs/shell/words.h"

#include <fcntl.h>
#include <strings.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "mchost/base/paths.h"
#include "mchost/printing/printers.h"

namespace host::shell {

namespace {

// Longer ones before those that they begin with.
constexpr auto operators =
    std::to_array<std::string_view>({"2>&1", "2>>", "2>", "1>>", "1>", ">>", ">", "<", "||", "|", "&&", "&", "(", ")"});

// The operator that the text begins with; empty when there is none. A digit belongs to one at the start of a word only.
std::string_view operatorAt(std::string_view text, bool startsWord) {
    const auto found = std::ranges::find_if(operators, [&](std::string_view sign) {
        return text.starts_with(sign) && (startsWord || sign[0] > '9' || sign[0] < '0');
    });
    return found == operators.end() ? std::string_view() : *found;
}

bool isRedirection(std::string_view sign) {
    return sign.find('>') != std::string_view::npos;
}

std::string openError(const std::string& name) {
    return name + ": the output can't go there: " + std::strerror(errno);
}

}  // namespace

std::vector<Word> wordsOfLine(std::string_view line) {
    std::vector<Word> words;
    bool inWord = false, inQuotes = false;
    for (size_t i = 0; i < line.size(); ++i) {
        const std::string_view sign = inQuotes ? std::string_view() : operatorAt(line.substr(i), !inWord);
        if (!sign.empty()) {
            words.push_back({std::string(sign), true, i, std::string(sign)});
            i += sign.size() - 1;
            inWord = false;
            continue;
        }
        const bool divides = !inQuotes && (line[i] == ' ' || line[i] == '\t');
        if (!divides && !inWord) words.push_back({"", false, i, ""});
        inWord = !divides;
        if (divides) continue;
        words.back().written += line[i];
        if (line[i] == '"')
            inQuotes = !inQuotes;
        else
            words.back().text += line[i];
    }
    return words;
}

std::vector<Word> wordsOfArguments(const std::vector<std::string>& arguments) {
    if (arguments.size() == 1) return wordsOfLine(arguments[0]);
    std::vector<Word> words;
    for (const std::string& argument : arguments) words.push_back({argument, false, 0, argument});
    return words;
}

Redirection::Redirection() : before_{dup(STDOUT_FILENO), dup(STDERR_FILENO)} {}

Redirection::~Redirection() {
    std::fflush(stdout);
    for (const int number : {STDOUT_FILENO, STDERR_FILENO}) {
        dup2(before_[number - STDOUT_FILENO], number);
        close(before_[number - STDOUT_FILENO]);
    }
}

std::string Redirection::apply(const std::string& sign, const std::string& name) {
    if (printTargetOf(name)) return name + ": output can't go to a printer; write it to a file, and COPY that";
    const bool toEnd = sign.ends_with(">>");
    const bool isNull = strcasecmp(name.c_str(), "NUL") == 0;
    const int mode = O_WRONLY | O_CREAT | O_CLOEXEC | (toEnd ? O_APPEND : O_TRUNC);
    const int file = open(isNull ? "/dev/null" : systemPath(name).c_str(), mode, 0666);
    if (file < 0) return openError(name);
    dup2(file, sign.starts_with('2') ? STDERR_FILENO : STDOUT_FILENO);
    close(file);
    return "";
}

std::string Redirection::takeFrom(std::vector<Word>& words) {
    std::fflush(stdout);
    for (auto word = words.begin(); word != words.end();) {
        if (!word->isOperator) {
            ++word;
            continue;
        }
        const bool joins = word->text == "2>&1";
        const auto name = word + 1;
        if (!isRedirection(word->text)) return "\"" + word->text + "\" isn't understood here; write one command only";
        if (joins)
            dup2(STDOUT_FILENO, STDERR_FILENO);
        else if (name == words.end() || name->isOperator)
            return "the name of a file is missing behind \"" + word->text + "\"";
        else if (std::string error = apply(word->text, name->text); !error.empty())
            return error;
        word = words.erase(word, joins ? name : name + 1);
    }
    return "";
}

}  // namespace host::shell
