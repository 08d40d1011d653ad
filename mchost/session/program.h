// What the main function of a program is made of.
#pragma once

#include <utility>

namespace host {

// Tells what a program threw in one line, which begins with its name. Inside a catch.
void tellThrown(const char* program) noexcept;

// For a program's start: see tidyUpAtSignals(); and what escapes every other catch ends the process with a line and
// status 1.
void startProgram() noexcept;

// A program has one as a static object, which is made before all others: theirs may throw too.
struct ProgramStart {
    ProgramStart() { startProgram(); }
};
#define MCHOST_FIRST __attribute__((init_priority(101)))

// A program's work, with its exit status; 1 behind a line when it throws.
template <class Work>
int runProgram(const char* program, Work&& work) noexcept {
    try {
        return std::forward<Work>(work)();
    } catch (...) {
        tellThrown(program);
    }
    return 1;
}

}  // namespace host
