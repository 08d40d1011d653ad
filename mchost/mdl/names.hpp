// Numbers of resources by name: what the headers are made of that mcrsc writes from the sources (docs/sources.md).
// C++20.
#pragma once

#include <cstdint>
#include <type_traits>

#include "dialog.h"
#include "system.h"

namespace mdl {

// An item of a dialog.
struct ItemId {
    int32_t kind, id;
    friend bool operator==(const ItemId&, const ItemId&) = default;
};
// The item in the dialog; null when it has none.
inline MdlItem* itemOf(MdlDialog* dialog, const ItemId& item) {
    return mdlDialog_itemGetByTypeAndId(dialog, item.kind, item.id);
}

// A message of the string list `List`, whose text takes values of these types in this order.
template <int32_t List, class... Values>
struct Message {
    int32_t number;
};

// Shows the message in a field. MDL_ERROR, with the field as it was, when no open resource file has it.
template <int32_t List, class... Values>
int printMessage(int field, Message<List, Values...> message, std::type_identity_t<Values>... values) {
    return mdlOutput_rscPrintf(field, 0, List, message.number, values...);
}

}  // namespace mdl
