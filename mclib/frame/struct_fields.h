// Field tables of the structures that dialogs reach by name: a field's kind and size follow from its type.
#pragma once

#include <cstddef>
#include <type_traits>

#include "mchost/mdl/dialog.h"

namespace mc {

template <class Member>
constexpr StructField fieldOf(const char* name, size_t offset) {
    const auto at = static_cast<uint32_t>(offset);
    if constexpr (std::is_array_v<std::remove_extent_t<Member>>)  // lines of text
        return {name, FIELD_CHARS, at, sizeof(std::remove_extent_t<Member>), std::extent_v<Member>, nullptr};
    else if constexpr (std::is_same_v<std::remove_extent_t<Member>, char>)
        return {name, FIELD_CHARS, at, sizeof(Member), 1, nullptr};
    else if constexpr (std::is_same_v<Member, double>)
        return {name, FIELD_DOUBLE, at, sizeof(double), 1, nullptr};
    else {
        static_assert(std::is_same_v<Member, int32_t>);
        return {name, FIELD_INT32, at, sizeof(int32_t), 1, nullptr};
    }
}

}  // namespace mc

#define MCLIB_FIELD(Struct, member) fieldOf<decltype(Struct::member)>(#member, offsetof(Struct, member))
#define MCLIB_POINTER_FIELD(Struct, member, structName)                                \
    StructField {                                                                      \
#member, FIELD_POINTER, offsetof(Struct, member), sizeof(void*), 1, structName \
    }
constexpr StructField endOfFields{};
