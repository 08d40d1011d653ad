// Messages and texts by their names (docs/sources.md): a wrong number or kind of values doesn't compile. C++20.
#pragma once

#include <mchost/mdl/names.hpp>

#include "mclib/frame/errors.h"

namespace mc {

// Messages of the library's lists, with the types of their values.
template <class... Values>
using Question = mdl::Message<MCLIB_QUESTIONS, Values...>;
template <class... Values>
using Error = mdl::Message<MCLIB_ERRORS, Values...>;
using Text = mdl::Message<MCLIB_LANGUAGE_TEXTS>;

// As mclibError_rscMsgBoxPrintf.
template <int32_t List, class... Values>
int showBox(int flags, mdl::Message<List, Values...> message, std::type_identity_t<Values>... values) {
    return mclibError_rscMsgBoxPrintf(flags, List, message.number, values...);
}

// A box with one button, which the user can only take note of.
template <int32_t List, class... Values>
void showNotice(mdl::Message<List, Values...> message, std::type_identity_t<Values>... values) {
    mclibError_rscMsgBoxPrintf(MSGBOX_NOTICE, List, message.number, values...);
}

// As mclibUtil_getLanguageText.
inline char* languageText(Text text) {
    return mclibUtil_getLanguageText(text.number);
}

}  // namespace mc
