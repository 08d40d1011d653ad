// Programs behind the calls of win32.h.
#include <vector>

#include "mchost/base/guard.h"
#include "mchost/base/paths.h"
#include "mchost/mdl/win32.h"
#include "mchost/processes/programs.h"

namespace host {

namespace {

constexpr uint32_t waitTimeout = 258, waitFailed = 0xFFFFFFFF;

Win32ProcessInfo infoOf(Process& process) {
    return {.process = &process, .thread = nullptr, .processId = static_cast<uint32_t>(process.id), .threadId = 0};
}

}  // namespace

}  // namespace host

using namespace host;

void GetStartupInfoA(Win32StartupInfo* info) noexcept {
    if (info) *info = {.size = sizeof(Win32StartupInfo), .flags = 0, .showWindow = 0};
}

int CreateProcessA(const char* application, char* commandLine, void*, void*, int, uint32_t creationFlags, void*,
                   const char* directory, const Win32StartupInfo*, Win32ProcessInfo* processInfo) noexcept {
    return guarded<int>(0, [&] {
        std::vector<std::string> words = wordsOf(!commandLine ? "" : commandLine);
        if (!application && words.empty()) return 0;
        const std::string program = application ? application : words.front();
        if (!words.empty()) words.erase(words.begin());
        const StartOptions options = {.folder = !directory ? "" : directory,
                                      .idle = (creationFlags & WIN32_IDLE_PRIORITY) != 0,
                                      .output = Output::ofHost};
        Process* process = startProcess(program, words, options, processInfo != nullptr);
        if (process && processInfo) *processInfo = infoOf(*process);
        return process ? 1 : 0;
    });
}

uint32_t WaitForSingleObject(void* handle, uint32_t milliseconds) noexcept {
    return guarded<uint32_t>(waitFailed, [&]() -> uint32_t {
        Process* process = keptProcess(handle);
        if (!process) return waitFailed;
        const bool ended = waitFor(*process, milliseconds == WIN32_INFINITE ? -1 : int64_t{milliseconds}).has_value();
        return ended ? 0 : waitTimeout;
    });
}

int CloseHandle(void* handle) noexcept {
    return guarded<int>(0, [&] {
        Process* process = keptProcess(handle);
        if (process) release(*process);
        return process != nullptr || !handle ? 1 : 0;
    });
}
