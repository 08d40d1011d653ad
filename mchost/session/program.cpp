#include "mchost/session/program.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <exception>
#include <new>

#include "mchost/base/guard.h"
#include "mchost/base/unfinished.h"

namespace host {

namespace {

[[noreturn]] void endByException() {
    tellThrown(program_invocation_short_name);
    removeUnfinished();
    _exit(1);
}

}  // namespace

void tellThrown(const char* program) noexcept {
    std::fflush(stdout);
    const char* what = "an error that has no text";
    try {
        if (std::current_exception()) throw;
    } catch (const std::bad_alloc&) {
        what = noMemory;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", program, error.what());
        return;
    } catch (...) {
    }
    std::fprintf(stderr, "%s: %s\n", program, what);
}

void startProgram() noexcept {
    std::set_terminate(endByException);
    tidyUpAtSignals();
}

}  // namespace host
