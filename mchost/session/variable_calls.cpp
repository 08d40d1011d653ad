// The calls that read and define configuration variables.
#include <algorithm>
#include <cstring>
#include <optional>
#include <string_view>

#include "mchost/base/guard.h"
#include "mchost/base/variables.h"
#include "mchost/base/words.h"
#include "mchost/mdl/system.h"

namespace host {

namespace {

char* newBlock(std::string_view text) {
    auto* block = static_cast<char*>(dlmSystem_mdlMalloc(text.size() + 1));
    if (block) copyCut(block, text.size() + 1, text);
    return block;
}

// Copies a value that is defined; the status of the call.
int give(char* buffer, int size, const std::optional<std::string>& value) {
    if (!value) return MDL_ERROR;
    if (size > 0) copyCut(buffer, static_cast<size_t>(size), *value);
    return MDL_SUCCESS;
}

}  // namespace

}  // namespace host

using namespace host;

int mdlSystem_getenv(char* buffer, const char* name, int size) noexcept {
    return guarded<int>(MDL_ERROR, [&] { return !name ? MDL_ERROR : give(buffer, size, variables().value(name)); });
}

int mdlSystem_getCfgVar(char* buffer, const char* name, int size) noexcept {
    return guarded<int>(MDL_ERROR,
                        [&] { return !name ? MDL_ERROR : give(buffer, size, variables().expandedValue(name)); });
}

int mdlSystem_defineCfgVar(const char* name, const char* value, int level) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        if (!name) return MDL_ERROR;
        return variables().define(name, !value ? "" : value, level) ? MDL_SUCCESS : MDL_ERROR;
    });
}

int mdlSystem_deleteCfgVar(const char* name) noexcept {
    return guarded<int>(MDL_ERROR,
                        [&]() -> int { return name != nullptr && variables().remove(name) ? MDL_SUCCESS : MDL_ERROR; });
}

char* mdlSystem_expandCfgVar(const char* text) noexcept {
    return guarded<char*>(nullptr, [&]() -> char* { return !text ? nullptr : newBlock(variables().expand(text)); });
}

char* mdlSystem_getExpandedCfgVar(const char* name) noexcept {
    return guarded<char*>(nullptr, [&]() -> char* {
        const std::optional<std::string> value = !name ? std::nullopt : variables().expandedValue(name);
        return value ? newBlock(*value) : nullptr;
    });
}
