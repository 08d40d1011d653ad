#include "mclib/frame/win32.h"

#include <cstring>
#include <string>

#include "mchost/mdl/external.h"
#include "mchost/mdl/win32.h"

namespace mc {

namespace {

constexpr uint16_t windowHidden = 0, windowShown = 5;
constexpr uint32_t readAccess = 1;
constexpr uint32_t universalNameLevel = 1;
constexpr size_t universalNameSize = 260;

std::string commandLineOf(const char* command, const char* arguments) {
    return std::string(command ? command : "").append(" ").append(arguments ? arguments : "");
}

uint32_t valueBelow(void* root, const char* key, const char* value, uint32_t* type, void* data, uint32_t size) {
    void* handle = nullptr;
    if (RegOpenKeyExA(root, key, 0, readAccess, &handle) != WIN32_SUCCESS) return 0;
    const int32_t status = RegQueryValueExA(handle, value, nullptr, type, data, &size);
    RegCloseKey(handle);
    return status == WIN32_SUCCESS ? size : 0;
}

}  // namespace

}  // namespace mc

using namespace mc;

int mclibWin32_execCommand(const char* command, const char* arguments) {
    return mdlExternal_runShellLine(commandLineOf(command, arguments).c_str());
}

int mclibWin32_execCommandAndWait(const char* command, const char* arguments, int showWindow) {
    std::string commandLine = commandLineOf(command, arguments);
    Win32StartupInfo startup;
    GetStartupInfoA(&startup);
    startup.flags = WIN32_USE_SHOW_WINDOW;
    startup.showWindow = showWindow ? windowShown : windowHidden;
    Win32ProcessInfo process;
    const int started = CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, 0, WIN32_IDLE_PRIORITY, nullptr,
                                       nullptr, &startup, &process);
    if (!started) return started;
    WaitForSingleObject(process.process, WIN32_INFINITE);
    CloseHandle(process.process);
    CloseHandle(process.thread);
    return started;
}

uint32_t mclibWin32_getRegistryValue(const char* key, const char* value, uint32_t* type, void* data, uint32_t size) {
    const uint32_t read = valueBelow(WIN32_CURRENT_USER, key, value, type, data, size);
    return read != 0 ? read : valueBelow(WIN32_LOCAL_MACHINE, key, value, type, data, size);
}

int mclibWin32_getGetUniversalFileName(const char* path, char* universalName) {
    if (!path || !universalName) return 0;
    alignas(Win32UniversalName) char buffer[universalNameSize];
    uint32_t size = sizeof buffer;
    if (WNetGetUniversalNameA(path, universalNameLevel, buffer, &size) != WIN32_SUCCESS) return 0;
    std::strcpy(universalName, reinterpret_cast<const Win32UniversalName*>(buffer)->name);
    return 1;
}
