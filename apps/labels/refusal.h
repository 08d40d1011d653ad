// What a command can't do.
#pragma once

#include <type_traits>

#include <mchost/mdl/system.h>
#include <mchost/mdl/names.hpp>

namespace labels {

// Tells the user, and that what was asked for isn't done. Always false.
template <int32_t List, class... Values>
bool refuse(mdl::Message<List, Values...> why, std::type_identity_t<Values>... values) {
    mdl::printMessage(MDL_FIELD_ERROR, why, values...);
    mdlSystem_noteFailure();
    return false;
}

}  // namespace labels
