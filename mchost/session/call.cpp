// Calls by signature through libffi. A call description is prepared once for each signature and kept.
#include <ffi.h>

#include <array>
#include <cstdarg>
#include <memory>
#include <unordered_map>

#include "mchost/base/guard.h"
#include "mchost/mdl/system.h"
#include "mchost/session/session.h"
#include "mchost/session/state.h"

namespace host {

namespace {

constexpr size_t mostArguments = 16;

ffi_type* typeOf(char letter) {
    switch (letter) {
        case 'P': return &ffi_type_pointer;
        case 'I': return &ffi_type_sint32;
        case 'D': return &ffi_type_double;
        default: return nullptr;
    }
}

struct CallDescription {
    ffi_cif cif{};
    std::array<ffi_type*, mostArguments> types{};
    bool valid = false;

    explicit CallDescription(std::string_view signature) {
        if (signature.size() > mostArguments) return;
        for (size_t i = 0; i < signature.size(); ++i) {
            types[i] = typeOf(signature[i]);
            if (!types[i]) return;
        }
        valid = ffi_prep_cif(&cif, FFI_DEFAULT_ABI, static_cast<unsigned>(signature.size()), &ffi_type_sint32,
                             types.data()) == FFI_OK;
    }
};

// Two bits a letter; the length is told by the first letter, since none has the code 0. 0 for a bad signature, and for
// the empty one.
uint64_t keyOf(const char* signature) {
    uint64_t key = 0;
    for (size_t i = 0; signature[i] != '\0'; ++i) {
        const uint64_t code = signature[i] == 'P' ? 1 : signature[i] == 'I' ? 2 : signature[i] == 'D' ? 3 : 0;
        if (code == 0 || i == mostArguments) return 0;
        key = key << 2 | code;
    }
    return key;
}

// Null for a bad signature.
const CallDescription* describe(const char* signature) {
    static std::unordered_map<uint64_t, std::unique_ptr<CallDescription>> known;
    static uint64_t lastKey = 0;
    static const CallDescription* last = nullptr;
    const uint64_t key = keyOf(signature);
    if (key == 0 && signature[0] != '\0') return nullptr;
    if (last && key == lastKey) return last;
    auto& description = known[key];
    if (!description) description = std::make_unique<CallDescription>(signature);
    if (!description->valid) return nullptr;
    lastKey = key;
    return last = description.get();
}

union Argument {
    void* pointer;
    int32_t integer;
    double number;
};

int32_t call(const char* signature, MdlDesc* desc, void* function, va_list list) {
    if (!signature || !function || (desc != nullptr && desc->ended)) return MDL_ERROR;
    const CallDescription* description = describe(signature);
    if (!description) return MDL_ERROR;
    std::array<Argument, mostArguments> arguments;
    std::array<void*, mostArguments> places;
    for (size_t i = 0; signature[i] != '\0'; ++i) {
        places[i] = &arguments[i];
        switch (signature[i]) {
            case 'P': arguments[i].pointer = va_arg(list, void*); break;
            case 'I': arguments[i].integer = va_arg(list, int32_t); break;
            default: arguments[i].number = va_arg(list, double); break;
        }
    }
    ffi_arg result = 0;
    ApplicationScope scope(desc);
    ffi_call(const_cast<ffi_cif*>(&description->cif), FFI_FN(function), &result, places.data());
    return static_cast<int32_t>(result);
}

int32_t guardedCall(const char* signature, MdlDesc* desc, void* function, va_list list) {
    return guarded<int32_t>(MDL_ERROR, [&] { return call(signature, desc, function, list); });
}

}  // namespace
}  // namespace host

int32_t dlmSystem_callAnyFunction(const char* signature, MdlDesc* desc, void* function, ...) noexcept {
    va_list list;
    va_start(list, function);
    const int32_t result = host::guardedCall(signature, desc, function, list);
    va_end(list);
    return result;
}

int32_t dlmSystem_callMdlFunction(const char* signature, MdlDesc* desc, void* function, ...) noexcept {
    va_list list;
    va_start(list, function);
    const int32_t result = host::guardedCall(signature, desc, function, list);
    va_end(list);
    return result;
}
