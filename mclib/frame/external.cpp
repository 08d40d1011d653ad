#include "mclib/frame/external.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>

#include "mchost/mdl/external.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/system.h"
#include "mclib/frame/letters.h"
#include "mclib/frame/util.h"

namespace mc {

namespace {

constexpr std::string_view shellWords[] = {"CD", "CHDIR", "CHDSK", "COPY",  "DEL",    "DIR", "MKDIR",
                                           "MD", "MOVE",  "PATH",  "PRINT", "RENAME", "REN", "XCOPY"};
constexpr std::string_view batchEndings[] = {".BAT", ".CMD"};
constexpr const char* shellVariable = "COMSPEC";
constexpr int startFailed = -101;
constexpr int dontWait = -1;

bool isForShell(std::string_view word) {
    if (std::ranges::find(shellWords, word) != std::end(shellWords)) return true;
    return word.size() > 4 && std::ranges::find(batchEndings, word.substr(word.size() - 4)) != std::end(batchEndings);
}

std::string_view textOf(const char* text) {
    return text ? text : "";
}

int waitOrRelease(MdlExternalProgram* program, int* status) {
    if (program->processId != 0)
        mdlExternal_wait(status, program);
    else
        mdlExternal_terminateProgram(program);
    return MCLIB_SUCCESS;
}

}  // namespace

}  // namespace mc

using namespace mc;

int mclibExternal_executeCommandLine(const char* commandLine, int* status) {
    std::string_view line = textOf(commandLine);
    line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
    const size_t space = line.find(' ');
    const std::string word = uppered(line.substr(0, space));
    const std::string arguments(space == line.npos ? "" : line.substr(space + 1));
    const auto run = isForShell(word) ? mclibExternal_executeShellCommand : mclibExternal_executeProgram;
    return run(word.c_str(), arguments.c_str(), status);
}

int mclibExternal_executeProgram(const char* program, const char* arguments, int* status) {
    if (mclibUtil_runningPowerDraft() == 1) return MCLIB_SUCCESS;
    MdlExternalProgram* started = mdlExternal_startProgram(program, arguments);
    if (!started) {
        toolSubsystem_printf("Error executing external program\n<%s %s>\nErrorcode %d\n", textOf(program).data(),
                             textOf(arguments).data(), startFailed);
        return MCLIB_ERROR;
    }
    return status && *status == dontWait ? MCLIB_SUCCESS : waitOrRelease(started, status);
}

int mclibExternal_executeShellCommand(const char* command, const char* arguments, int* status) {
    const mdl::HostPtr<char> interpreter{mdlSystem_getExpandedCfgVar(shellVariable)};
    const std::string line = std::string("/C ").append(textOf(command)).append(" ").append(textOf(arguments));
    // Without an interpreter the variable's name stands in the message that nothing can be started.
    return mclibExternal_executeProgram(interpreter ? interpreter.get() : shellVariable, line.c_str(), status);
}

int mclibExternal_executeSystemCommand(const char* command, const char* arguments, int* status) {
    return mclibExternal_executeShellCommand(command, arguments, status);
}

int mclibExternal_openFile(const char* file) {
    const std::string keyIn = std::string("% ").append(textOf(file));
    mdlInput_sendKeyin(keyIn.c_str(), 0, -1, nullptr);
    return MCLIB_SUCCESS;
}
