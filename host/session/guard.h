// The edge between the C interface and the C++ inside: nothing that is thrown leaves a host call.
#pragma once

#include <exception>
#include <utility>

namespace host {

// Tells an error that no caller asked about: one line in the message centre, or on standard error without a session.
void reportError(const char* what) noexcept;

// Runs the body of a host call; `failed` is the result when it throws.
template <class Result, class Body>
Result guarded(Result failed, Body&& body) noexcept {
    try {
        return std::forward<Body>(body)();
    } catch (const std::exception& e) {
        reportError(e.what());
    } catch (...) {
        reportError("unknown error");
    }
    return failed;
}

}  // namespace host
