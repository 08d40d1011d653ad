#include "programs/shell/dispatch.h"

#include <algorithm>
#include <cstdio>
#include <optional>

#include "mchost/base/words.h"
#include "mchost/processes/programs.h"
#include "programs/shell/batch.h"
#include "programs/shell/commands.h"
#include "programs/shell/shell.h"

namespace host::shell {

namespace {

int tell(const std::string& place, const std::string& what, int status) {
    std::fflush(stdout);
    std::fprintf(stderr, "mcshell: %s%s\n", place.c_str(), what.c_str());
    return status;
}

// Letter and value of "/Y", "/-Y" or "/N:3" when the command takes it; any other word is a name, since a path of the
// system begins with "/" too.
std::optional<std::pair<char, std::string>> switchIn(const Command& command, const std::string& word) {
    if (!word.starts_with('/')) return std::nullopt;
    const std::string upper = upperCase(word.substr(word.starts_with("/-") ? 2 : 1));
    if (upper.empty() || command.switches.find(upper[0]) == std::string_view::npos) return std::nullopt;
    if (upper.size() == 1) return std::pair(upper[0], std::string());
    if (upper[1] != ':') return std::nullopt;
    return std::pair(upper[0], word.substr(word.find(':') + 1));
}

int runCommand(const Command& command, const std::vector<std::string>& words, const std::string& place) {
    CommandLine line{.command = place + std::string(command.name), .names = {}, .switches = {}};
    for (size_t i = 1; i < words.size(); ++i) {
        if (auto found = switchIn(command, words[i]))
            line.switches.insert(*found);
        else
            line.names.push_back(words[i]);
    }
    if (line.names.size() >= command.leastNames && line.names.size() <= command.mostNames) return command.run(line);
    return wrong(line, std::string("write ") + std::string(command.name) + " " + command.usage);
}

int runProgram(const std::vector<std::string>& words, const std::string& place) {
    if (!findProgram(words[0]))
        return tell(place, words[0] + ": no command of mcshell, no batch file, and no program along PATH", notFound);
    Process* program = startProcess(words[0], {words.begin() + 1, words.end()}, {}, true);
    if (!program) return tell(place, words[0] + ": the program can't be started", failed);
    const int status = *waitFor(*program);
    release(*program);
    return status;
}

// "ECHO OFF" and the like change nothing: commands aren't shown here anyway.
int echo(const std::vector<Word>& words) {
    std::string text;
    for (size_t i = 1; i < words.size(); ++i) text += (i > 1 ? " " : "") + words[i].written;
    if (upperCase(text) != "ON" && upperCase(text) != "OFF") std::printf("%s\n", text.c_str());
    return done;
}

// "CD.." and "CD\jobs" are "CD" and a folder.
void divideChangeOfFolder(std::vector<Word>& words) {
    const std::string name = upperCase(words[0].text);
    const size_t length = name.starts_with("CD") ? 2 : name.starts_with("CHDIR") ? 5 : name.size();
    if (length >= name.size() || std::string_view(".\\").find(name[length]) == std::string_view::npos) return;
    const std::string folder = words[0].text.substr(length);
    words[0].text.resize(length);
    words.insert(words.begin() + 1, Word{folder, false, words[0].begin, folder});
}

bool isDrive(const std::string& word) {
    return word.size() == 2 && word[1] == ':' && ((word[0] | 0x20) >= 'a' && (word[0] | 0x20) <= 'z');
}

}  // namespace

int runWords(std::vector<Word> words, const std::string& place) {
    Redirection redirection;
    if (const std::string error = redirection.takeFrom(words); !error.empty()) return tell(place, error, wrongUse);
    if (words.empty()) return done;
    divideChangeOfFolder(words);
    const std::string name = upperCase(words[0].text);
    if (name == "ECHO" || name == "ECHO.") return echo(words);
    std::vector<std::string> texts;
    for (Word& word : words) texts.push_back(std::move(word.text));
    if (const Command* command = findCommand(name)) return runCommand(*command, texts, place);
    if (isDrive(texts[0])) return changeDrive({.command = place + texts[0], .names = {texts[0]}, .switches = {}});
    if (const std::string batch = findBatchFile(texts[0]); !batch.empty())
        return runBatchFile(batch, {texts.begin() + 1, texts.end()});
    return runProgram(texts, place);
}

int run(const std::vector<std::string>& words) {
    return runWords(wordsOfArguments(words), "");
}

}  // namespace host::shell
