// What goes wrong with a file: thrown inside, told in one line at the edge.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "mchost/base/guard.h"
#include "mchost/mdl/types.h"

namespace host {

// Why a file can't be used: words that go behind the file's name and a colon, what to do included.
struct FileProblem : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Adds a line to the message centre that says what went wrong, with which file, and what to do. Gives MDL_ERROR.
int fileProblem(std::string_view line);
// The same: "Can't WHAT "NAME": WHY".
int fileProblem(const char* what, std::string_view name, const FileProblem& why);

// The status of a body that works with a file: MDL_SUCCESS, or MDL_ERROR with a line.
template <class Body>
int withFile(const char* what, std::string_view name, Body body) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        const std::string told(name);  // which may be the file's own, and go with it
        try {
            body();
            return MDL_SUCCESS;
        } catch (const FileProblem& problem) {
            return fileProblem(what, told, problem);
        }
    });
}

}  // namespace host
