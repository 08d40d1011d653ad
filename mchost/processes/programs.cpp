#include "mchost/processes/programs.h"

#include <fcntl.h>
#include <spawn.h>
#include <strings.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <thread>

#include "mchost/base/existing_path.h"
#include "mchost/base/paths.h"
#include "mchost/base/variables.h"
#include "mchost/base/words.h"
#include "mchost/session/state.h"

namespace host {

namespace {

namespace fs = std::filesystem;

// ---- finding ----

bool isProgram(const fs::path& path) {
    std::error_code error;
    return access(path.c_str(), X_OK) == 0 && !fs::is_directory(path, error);
}

// Most programs are called in small letters, which saves the look through the folder.
std::optional<std::string> programIn(const fs::path& folder, const std::string& name) {
    for (const fs::path& path : {folder / name, folder / lowerCase(name)})
        if (isProgram(path)) return path;
    const std::optional<std::string> entry = entryIgnoringCase(folder, name, isProgram);
    return entry ? std::optional(folder / *entry) : std::nullopt;
}

std::string withoutQuotes(std::string_view name) {
    std::string text(name);
    std::erase(text, '"');
    return text;
}

// ---- starting ----

// A word as a program of the system gets it.
std::string systemWord(const std::string& word) {
    return beginsWithDrive(word) ? systemPath(word) : utf8FromHost(word);
}

using Values = std::map<std::string, std::string>;

std::vector<std::string> environmentWith(const Values& further) {
    std::map<std::string, std::string, std::less<>> values;
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
        const std::string_view text = *entry;
        const size_t sign = std::min(text.find('='), text.size());
        values.emplace(text.substr(0, sign), text.substr(std::min(sign + 1, text.size())));
    }
    for (auto& [name, value] : variables().expandedValues("MC_")) values[name] = std::move(value);
    for (const auto& [name, value] : further) values[name] = value;
    std::vector<std::string> entries;
    for (const auto& [name, value] : values) entries.push_back(name + "=" + value);
    return entries;
}

// What is set up in the new process before the program runs.
class FileActions {
  public:
    FileActions() {
        posix_spawn_file_actions_init(&actions_);
        posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    }
    ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    void changeFolder(const std::string& folder) { posix_spawn_file_actions_addchdir_np(&actions_, folder.c_str()); }
    void discard(int descriptor) { posix_spawn_file_actions_addopen(&actions_, descriptor, "/dev/null", O_WRONLY, 0); }
    void outputTo(int descriptor) { posix_spawn_file_actions_adddup2(&actions_, descriptor, STDOUT_FILENO); }
    const posix_spawn_file_actions_t* get() const { return &actions_; }

  private:
    posix_spawn_file_actions_t actions_;
};

std::optional<pid_t> spawn(std::string_view program, const std::vector<std::string>& arguments,
                           const FileActions& actions, const Values& environmentValues = {}) {
    const std::optional<std::string> path = findProgram(program);
    if (!path) return std::nullopt;
    std::vector<std::string> words = {fs::absolute(*path)};
    for (const std::string& argument : arguments) words.push_back(systemWord(argument));
    std::vector<std::string> environment = environmentWith(environmentValues);
    std::fflush(stdout);  // what the host printed so far stands before what the program prints
    pid_t id = 0;
    const int error = posix_spawn(&id, words[0].c_str(), actions.get(), nullptr, pointersTo(words).data(),
                                  pointersTo(environment).data());
    return error == 0 ? std::optional(id) : std::nullopt;
}

// ---- the programs that were started ----

// For the life of the process.
struct Processes {
    std::vector<std::unique_ptr<Process>> all;
} processes;

// An end that the system can't tell of counts as a failure.
constexpr int unknownStatus = 255;

int exitStatusOf(int waitStatus) {
    return WIFSIGNALED(waitStatus) ? 128 + WTERMSIG(waitStatus) : WEXITSTATUS(waitStatus);
}

// Asks the system whether the process has ended.
void look(Process& process, int options) {
    if (process.status) return;
    int waitStatus = 0;
    pid_t ended = 0;
    do ended = waitpid(process.id, &waitStatus, options);
    while (ended < 0 && errno == EINTR);
    if (ended != 0) process.status = ended == process.id ? exitStatusOf(waitStatus) : unknownStatus;
}

void forgetEnded() {
    for (const auto& process : processes.all) look(*process, WNOHANG);
    std::erase_if(processes.all, [](const auto& process) { return process->status && !process->kept; });
}

std::string allFrom(int descriptor) {
    std::string text;
    std::array<char, 4096> piece;
    for (;;) {
        const ssize_t count = read(descriptor, piece.data(), piece.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return text;
        text.append(piece.data(), static_cast<size_t>(count));
    }
}

}  // namespace

bool beginsWithDrive(std::string_view word) {
    const char letter = word.size() < 3 ? '\0' : static_cast<char>(word[0] | 0x20);
    return letter >= 'a' && letter <= 'z' && word[1] == ':' && (word[2] == '\\' || word[2] == '/');
}

std::optional<std::string> findProgram(std::string_view name) {
    const std::string path = systemPath(withoutQuotes(name));
    if (path.empty()) return std::nullopt;
    if (path.find('/') != std::string::npos) {
        const std::optional<std::string> found = existingPath(path);
        return found && isProgram(*found) ? found : std::nullopt;
    }
    const std::string folders = variables().value("PATH").value_or("/usr/local/bin:/usr/bin:/bin");
    for (std::string_view left = folders; !left.empty();) {
        const std::string_view folder = left.substr(0, left.find(':'));
        left.remove_prefix(std::min(left.size(), folder.size() + 1));
        if (folder.empty()) continue;
        if (auto found = programIn(folder, path)) return found;
    }
    return std::nullopt;
}

std::vector<std::string> wordsOf(std::string_view line) {
    std::vector<std::string> words;
    bool inWord = false, inQuotes = false;
    for (size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        const bool divides = !inQuotes && (c == ' ' || c == '\t');
        if (!divides && !inWord) words.emplace_back();
        inWord = !divides;
        const bool twoQuotes = inQuotes && line.substr(i, 2) == "\"\"";
        if (c == '"' && !twoQuotes)
            inQuotes = !inQuotes;
        else if (!divides)
            words.back() += c;
        i += twoQuotes;
    }
    return words;
}

Process* startProcess(std::string_view program, const std::vector<std::string>& arguments, const StartOptions& options,
                      bool kept) {
    forgetEnded();
    FileActions actions;
    if (!options.folder.empty()) actions.changeFolder(systemPath(options.folder));
    if (options.output == Output::discarded) actions.discard(STDOUT_FILENO);
    const std::optional<pid_t> id = spawn(program, arguments, actions);
    if (!id) return nullptr;
    if (options.idle) setpriority(PRIO_PROCESS, static_cast<id_t>(*id), 19);
    processes.all.push_back(std::make_unique<Process>(Process{.id = *id, .status = {}, .kept = kept}));
    return processes.all.back().get();
}

Process* keptProcess(const void* handle) {
    const auto process = std::ranges::find(processes.all, handle, [](const auto& p) { return p.get(); });
    return process == processes.all.end() || !(*process)->kept ? nullptr : process->get();
}

std::optional<int> waitFor(Process& process, int64_t milliseconds) {
    constexpr auto pause = std::chrono::milliseconds(5);
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    look(process, milliseconds < 0 ? 0 : WNOHANG);
    while (!process.status && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(pause);
        look(process, WNOHANG);
    }
    return process.status;
}

void release(Process& process) {
    process.kept = false;
    forgetEnded();
}

std::optional<Answer> askProgram(std::string_view program, const std::vector<std::string>& arguments) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return std::nullopt;
    std::optional<pid_t> id;
    {
        FileActions actions;
        actions.outputTo(ends[1]);
        actions.discard(STDERR_FILENO);
        id = spawn(program, arguments, actions, {{"LC_ALL", "C"}});
    }
    close(ends[1]);
    Answer answer{.output = id ? allFrom(ends[0]) : "", .status = 0};
    close(ends[0]);
    if (!id) return std::nullopt;
    Process process{.id = *id};
    answer.status = *waitFor(process);
    return answer;
}

}  // namespace host
