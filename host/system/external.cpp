// Starting programs for applications.
#include "host/mdl/external.h"

#include <csignal>
#include <cstddef>

#include "host/session/guard.h"
#include "host/system/programs.h"

namespace host {

namespace {

// A handle is the process itself, seen through its first field.
static_assert(offsetof(Process, id) == 0 && sizeof(MdlExternalProgram) == sizeof(Process::id));

MdlExternalProgram* handleOf(Process* process) {
    return reinterpret_cast<MdlExternalProgram*>(process);
}

int endOf(Process* process) {
    const int status = *waitFor(*process);
    release(*process);
    return status;
}

}  // namespace

}  // namespace host

using namespace host;

MdlExternalProgram* mdlExternal_startProgram(const char* program, const char* arguments) {
    return guarded<MdlExternalProgram*>(nullptr, [&]() -> MdlExternalProgram* {
        if (program == nullptr) return nullptr;
        return handleOf(startProcess(program, wordsOf(arguments == nullptr ? "" : arguments), {}, true));
    });
}

int mdlExternal_wait(int* statusP, MdlExternalProgram* program) {
    if (statusP != nullptr) *statusP = -1;
    return guarded<int>(MDL_ERROR, [&]() -> int {
        Process* process = keptProcess(program);
        if (process == nullptr) return MDL_ERROR;
        const int status = endOf(process);
        if (statusP != nullptr) *statusP = status;
        return MDL_SUCCESS;
    });
}

int mdlExternal_terminateProgram(MdlExternalProgram* program) {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        Process* process = keptProcess(program);
        if (process == nullptr) return MDL_ERROR;
        if (!waitFor(*process, 0)) kill(process->id, SIGTERM);
        release(*process);
        return MDL_SUCCESS;
    });
}

int mdlExternal_extStartProgram(const char* program, int argumentCount, const char* const* arguments) {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        if (program == nullptr || argumentCount < 0 || (argumentCount > 0 && arguments == nullptr)) return MDL_ERROR;
        const std::vector<std::string> words(arguments, arguments + argumentCount);
        return startProcess(program, words, {}, false) != nullptr ? MDL_SUCCESS : MDL_ERROR;
    });
}
