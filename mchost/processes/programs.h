// Programs of the system: found whatever the case of their names, started without a shell, waited for.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// A program's path: a host path, or a name in a folder of PATH. Letter case doesn't count where no file has the name as
// it stands; quotes around it are dropped.
std::optional<std::string> findProgram(std::string_view name);

// The words of a line, divided at blanks and tabs. What stands between double quotes is kept together without them, and
// two quotes in it are one of the word's; a quote that isn't closed reaches to the end of the line.
std::vector<std::string> wordsOf(std::string_view line);

// Whether the word begins like a path on a drive: "c:\\" or "c:/".
bool beginsWithDrive(std::string_view word);

enum class Output {
    ofHost,    // where the host's own output goes
    discarded  // errors still go where the host's go
};

struct StartOptions {
    std::string folder = {};  // that the program starts in; empty for the current one
    bool idle = false;        // with the lowest priority
    Output output = Output::ofHost;
};

// A started program; its address is its handle.
struct Process {
    int32_t id = 0;
    std::optional<int> status = {};  // of one that has ended: the exit status, or 128 and the signal's number
    bool kept = false;               // until it is released; one that isn't goes when it has ended
};

// Starts a program with its arguments (texts of the host); null when it isn't found or can't be started. A kept process
// stays until `release`.
Process* startProcess(std::string_view program, const std::vector<std::string>& arguments, const StartOptions& options,
                      bool kept);
// The process with that handle, or null for what is none.
Process* keptProcess(const void* handle);
// Waits at most so many milliseconds, without limit when negative; the exit status when it has ended.
std::optional<int> waitFor(Process& process, int64_t milliseconds = -1);
void release(Process& process);

// What a program wrote in English, its errors aside, with its exit status; nothing when it can't be started.
struct Answer {
    std::string output;
    int status;
};
std::optional<Answer> askProgram(std::string_view program, const std::vector<std::string>& arguments);

}  // namespace host
