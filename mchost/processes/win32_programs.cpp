// Programs, network names and printers behind the calls of win32.h.
#include <fstream>
#include <iterator>
#include <vector>

#include "mchost/mdl/win32.h"
#include "mchost/base/guard.h"
#include "mchost/session/state.h"
#include "mchost/files/network.h"
#include "mchost/processes/packed_texts.h"
#include "mchost/base/paths.h"
#include "mchost/printing/printers.h"
#include "mchost/processes/programs.h"

namespace host {

namespace {

constexpr uint32_t waitTimeout = 258, waitFailed = 0xFFFFFFFF;

std::string mountTable() {
    const std::string named = variables().expandedValue("MC_MOUNTS").value_or("");
    std::ifstream file(named.empty() ? "/proc/mounts" : systemPath(named));
    return {std::istreambuf_iterator<char>(file), {}};
}

Win32ProcessInfo infoOf(Process& process) {
    return {.process = &process, .thread = nullptr, .processId = static_cast<uint32_t>(process.id), .threadId = 0};
}

}  // namespace

}  // namespace host

using namespace host;

void GetStartupInfoA(Win32StartupInfo* info) {
    if (info != nullptr) *info = {.size = sizeof(Win32StartupInfo), .flags = 0, .showWindow = 0};
}

int CreateProcessA(const char* application, char* commandLine, void*, void*, int, uint32_t creationFlags, void*,
                   const char* directory, const Win32StartupInfo*, Win32ProcessInfo* processInfo) {
    return guarded<int>(0, [&] {
        std::vector<std::string> words = wordsOf(commandLine == nullptr ? "" : commandLine);
        if (application == nullptr && words.empty()) return 0;
        const std::string program = application != nullptr ? application : words.front();
        if (!words.empty()) words.erase(words.begin());
        const StartOptions options = {.folder = directory == nullptr ? "" : directory,
                                      .idle = (creationFlags & WIN32_IDLE_PRIORITY) != 0,
                                      .output = Output::ofHost};
        Process* process = startProcess(program, words, options, processInfo != nullptr);
        if (process != nullptr && processInfo != nullptr) *processInfo = infoOf(*process);
        return process != nullptr ? 1 : 0;
    });
}

uint32_t WaitForSingleObject(void* handle, uint32_t milliseconds) {
    return guarded<uint32_t>(waitFailed, [&]() -> uint32_t {
        Process* process = keptProcess(handle);
        if (process == nullptr) return waitFailed;
        const bool ended = waitFor(*process, milliseconds == WIN32_INFINITE ? -1 : int64_t{milliseconds}).has_value();
        return ended ? 0 : waitTimeout;
    });
}

int CloseHandle(void* handle) {
    return guarded<int>(0, [&] {
        Process* process = keptProcess(handle);
        if (process != nullptr) release(*process);
        return process != nullptr || handle == nullptr ? 1 : 0;
    });
}

uint32_t WNetGetUniversalNameA(const char* path, uint32_t infoLevel, void* buffer, uint32_t* sizeP) {
    return guarded<uint32_t>(WIN32_BAD_PARAMETER, [&]() -> uint32_t {
        if (path == nullptr || infoLevel != 1 || sizeP == nullptr) return WIN32_BAD_PARAMETER;
        const std::string name = universalName(systemPath(path), mountTable());
        if (name.empty()) return WIN32_NOT_CONNECTED;
        PackedTexts<Win32UniversalName> packed(1);
        packed.add(0, &Win32UniversalName::name, hostName(name));
        return packed.give(buffer, *sizeP, sizeP) ? WIN32_SUCCESS : WIN32_MORE_DATA;
    });
}

int EnumPrintersA(uint32_t flags, const char* name, uint32_t level, void* buffer, uint32_t size, uint32_t* neededP,
                  uint32_t* countP) {
    if (neededP != nullptr) *neededP = 0;
    if (countP != nullptr) *countP = 0;
    return guarded<int>(0, [&] {
        const bool all = flags == WIN32_PRINTERS_LOCAL_AND_CONNECTED && (name == nullptr || name[0] == '\0');
        if (!all || level != 2) return 0;
        const std::vector<Printer> found = printers();
        PackedTexts<Win32PrinterInfo> packed(found.size());
        for (size_t i = 0; i < found.size(); ++i) {
            const Printer& printer = found[i];
            if (!printer.server.empty())
                packed.add(i, &Win32PrinterInfo::serverName, hostName("\\\\" + printer.server));
            if (!printer.share.empty()) packed.add(i, &Win32PrinterInfo::shareName, hostName(printer.share));
            packed.add(i, &Win32PrinterInfo::printerName, hostName(printer.name));
            packed.add(i, &Win32PrinterInfo::portName, hostName(printer.port));
        }
        if (!packed.give(buffer, size, neededP)) return 0;
        if (countP != nullptr) *countP = static_cast<uint32_t>(found.size());
        return 1;
    });
}
