#include "mchost/base/guard.h"

#include <cxxabi.h>

#include <cstdio>
#include <cstdlib>
#include <typeinfo>

namespace host {

namespace {

FailureHearers hearers{.error = [](const char* what) { std::fprintf(stderr, "%s\n", what); }, .memoryRanOut = [] {}};

}  // namespace

void setFailureHearers(const FailureHearers& these) {
    hearers = these;
}

void reportError(const char* what) noexcept {
    try {
        hearers.error(what);
    } catch (...) {
        std::fputs("error while an error was told\n", stderr);
    }
}

void reportUnknownError() noexcept {
    const std::type_info* const type = abi::__cxa_current_exception_type();
    int status = 0;
    char* const name = type ? abi::__cxa_demangle(type->name(), nullptr, nullptr, &status) : nullptr;
    char text[256];
    std::snprintf(text, sizeof text, "A value of the type %s was thrown, and nobody in the application caught it",
                  name ? name : "that nobody knows");
    std::free(name);
    reportError(text);
}

void noteMemoryRanOut() noexcept {
    hearers.memoryRanOut();
}

}  // namespace host
