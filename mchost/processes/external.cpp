// Starting programs for applications.
#include "mchost/mdl/external.h"

#include <algorithm>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "mchost/base/charset.h"
#include "mchost/base/guard.h"
#include "mchost/base/paths.h"
#include "mchost/processes/programs.h"

namespace host {

namespace {

// A handle is the process itself, seen through its first field.
static_assert(offsetof(Process, id) == 0 && sizeof(MdlExternalProgram) == sizeof(Process::id));

MdlExternalProgram* handleOf(Process* process) {
    return reinterpret_cast<MdlExternalProgram*>(process);
}

// The path of the system in the manner of what it stands in: the shell takes it as one word.
std::string shellText(const std::string& path, char quote) {
    std::string text;
    for (const char c : path) {
        const bool apart = quote == '\'' ? c == '\'' : std::string_view("\\\"$`").find(c) != std::string_view::npos;
        const bool divides = quote == 0 && std::string_view(" \t'&;|<>()*?[]#~!{}").find(c) != std::string_view::npos;
        if (quote == '\'' && apart)
            text += "'\\''";
        else
            text += (apart || divides ? "\\" : "") + std::string(1, c);
    }
    return text;
}

// A line for a shell of this system, in which no drive is left.
std::string shellLine(std::string_view line) {
    std::string text;
    char quote = 0;  // that the place lies in
    for (size_t i = 0; i < line.size();) {
        const char c = line[i];
        const bool begins = i == 0 || std::string_view(" \t'\"=<>|&;(").find(line[i - 1]) != std::string_view::npos;
        if (begins && beginsWithDrive(line.substr(i))) {
            const std::string ends = quote ? std::string(1, quote) : " \t'\"&|;<>()";
            const size_t end = std::min(line.find_first_of(ends, i), line.size());
            text += shellText(systemPath(line.substr(i, end - i)), quote);
            i = end;
            continue;
        }
        if ((c == '"' || c == '\'') && (quote == 0 || quote == c)) quote = quote == 0 ? c : 0;
        text += utf8FromNarrow(line.substr(i, 1));
        ++i;
    }
    return text;
}

// Our command interpreter gets the line as it stands: it knows quotes and what redirects output.
std::vector<std::string> argumentsFor(const char* program, std::string_view line) {
    constexpr std::string_view command = "/C ";
    const std::optional<std::string> path = findProgram(program);
    const bool isInterpreter = path && std::filesystem::path(*path).filename() == "mcshell";
    if (!isInterpreter || !line.starts_with(command)) return wordsOf(line);
    return {"/C", std::string(line.substr(command.size()))};
}

int endOf(Process* process) {
    const int status = *waitFor(*process);
    release(*process);
    return status;
}

}  // namespace

}  // namespace host

using namespace host;

MdlExternalProgram* mdlExternal_startProgram(const char* program, const char* arguments) noexcept {
    return guarded<MdlExternalProgram*>(nullptr, [&]() -> MdlExternalProgram* {
        if (!program) return nullptr;
        return handleOf(startProcess(program, argumentsFor(program, !arguments ? "" : arguments), {}, true));
    });
}

int mdlExternal_wait(int* statusP, MdlExternalProgram* program) noexcept {
    if (statusP) *statusP = -1;
    return guarded<int>(MDL_ERROR, [&]() -> int {
        Process* process = keptProcess(program);
        if (!process) return MDL_ERROR;
        const int status = endOf(process);
        if (statusP) *statusP = status;
        return MDL_SUCCESS;
    });
}

int mdlExternal_terminateProgram(MdlExternalProgram* program) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        Process* process = keptProcess(program);
        if (!process) return MDL_ERROR;
        if (!waitFor(*process, 0)) kill(process->id, SIGTERM);
        release(*process);
        return MDL_SUCCESS;
    });
}

int mdlExternal_extStartProgram(const char* program, int argumentCount, const char* const* arguments) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        if (!program || argumentCount < 0 || (argumentCount > 0 && !arguments)) return MDL_ERROR;
        const std::vector<std::string> words(arguments, arguments + argumentCount);
        return startProcess(program, words, {}, false) != nullptr ? MDL_SUCCESS : MDL_ERROR;
    });
}

int mdlExternal_runShellLine(const char* line) noexcept {
    return guarded<int>(-1, [&] {
        if (!line) return -1;
        std::fflush(stdout);  // what the host printed so far stands before what the line prints
        return std::system(shellLine(line).c_str());
    });
}
