// The edge between the C interface and the C++ inside: nothing that is thrown leaves a host call.
#pragma once

#include <exception>
#include <new>
#include <utility>

namespace host {

constexpr const char* noMemory = "There is not enough memory. Close other programs and try again.";

// Who hears of errors that no caller asked about (Windows-1252), and that something was left out for want of memory;
// told by the room of sessions, which lies above.
struct FailureHearers {
    void (*error)(const char* what);
    void (*memoryRanOut)();
};
void setFailureHearers(const FailureHearers& hearers);

// Tells an error that no caller asked about: one line in the message centre, or on standard error without a session.
void reportError(const char* what) noexcept;
// The same for what is being caught and is no std::exception: its type is told.
void reportUnknownError() noexcept;
// The session's run can't end well any more: something was left out for want of memory.
void noteMemoryRanOut() noexcept;

// Runs the body of a host call; `failed` is the result when it throws.
template <class Result, class Body>
Result guarded(Result failed, Body&& body) noexcept {
    try {
        return std::forward<Body>(body)();
    } catch (const std::bad_alloc&) {
        noteMemoryRanOut();
        reportError(noMemory);
    } catch (const std::exception& e) {
        reportError(e.what());
    } catch (...) {
        reportUnknownError();
    }
    return failed;
}

// The same for a body without a result, such as that of a destructor.
template <class Body>
void guarded(Body&& body) noexcept {
    guarded<bool>(false, [&] {
        std::forward<Body>(body)();
        return true;
    });
}

}  // namespace host
