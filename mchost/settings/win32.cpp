// Calls of the operating system by their old names.
#include <link.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>

#include "mchost/base/guard.h"
#include "mchost/base/paths.h"
#include "mchost/base/words.h"
#include "mchost/mdl/win32.h"

namespace host {

namespace {

// "MCLib.dll" and "libmclib.so.6.14" both give "mclib".
std::string moduleStem(std::string_view fileName) {
    std::string name = lowerCase(fileName.substr(fileName.find_last_of("/\\") + 1));
    name = name.substr(0, std::min(name.find(".so"), name.find(".dll")));
    return name.starts_with("lib") ? name.substr(3) : name;
}

// Calls `visit` with each loaded module until it gives true.
template <class Visit>
void visitModules(Visit visit) {
    dl_iterate_phdr(
        [](dl_phdr_info* info, size_t, void* data) {
            if (!info->dlpi_name || info->dlpi_name[0] == '\0') return 0;
            return (*static_cast<Visit*>(data))(*info) ? 1 : 0;
        },
        &visit);
}

std::string pathOfModule(void* module) {
    std::string path = !module ? "/proc/self/exe" : "";
    visitModules([&](const dl_phdr_info& info) {
        const bool found = module != nullptr && reinterpret_cast<void*>(info.dlpi_addr) == module;
        if (found) path = info.dlpi_name;
        return found;
    });
    std::error_code error;
    return path.empty() ? path : std::filesystem::canonical(path, error).string();
}

}  // namespace

}  // namespace host

using namespace host;

int DeleteFileA(const char* name) noexcept {
    return guarded<int>(0, [&] { return name != nullptr && unlink(systemPath(name).c_str()) == 0 ? 1 : 0; });
}

uint32_t GetShortPathNameA(const char* path, char* buffer, uint32_t size) noexcept {
    return guarded<uint32_t>(0, [&]() -> uint32_t {
        if (!path || path[0] == '\0') return 0;
        const std::string systemName = systemPath(path);
        std::error_code error;
        if (!std::filesystem::exists(systemName, error)) return 0;
        const std::string name = hostName(systemName);
        if (!buffer || size <= name.size()) return static_cast<uint32_t>(name.size()) + 1;
        return static_cast<uint32_t>(copyCut(buffer, size, name));
    });
}

void* GetModuleHandleA(const char* name) noexcept {
    return guarded<void*>(nullptr, [&] {
        void* module = nullptr;
        if (!name) return module;
        const std::string stem = moduleStem(name);
        visitModules([&](const dl_phdr_info& info) {
            const bool found = moduleStem(info.dlpi_name) == stem;
            if (found) module = reinterpret_cast<void*>(info.dlpi_addr);
            return found;
        });
        return module;
    });
}

uint32_t GetModuleFileNameA(void* module, char* buffer, uint32_t size) noexcept {
    return guarded<uint32_t>(
        0, [&]() -> uint32_t { return static_cast<uint32_t>(copyCut(buffer, size, hostName(pathOfModule(module)))); });
}
