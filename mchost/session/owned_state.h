// State of a room that lasts: sessionState<T>() for what belongs to the session (mchost/base/state_owner.h), and the
// same for what belongs to an application. T's destructor sees the end: of an application while it is the current one
// and its code is still loaded, of the session when all applications have ended and the design file is closed, while
// the front end still shows messages. Nothing that a destructor calls may throw out of it.
#pragma once

#include <type_traits>

#include "mchost/base/guard.h"
#include "mchost/base/state_owner.h"
#include "mchost/mdl/types.h"

namespace host {

// The session's owner for null and for an application that has ended.
StateOwner& applicationOwner(MdlDesc* application) noexcept;

// The T of the application; one that can be made from an MdlDesc* is told whose it is, null outside any application.
template <class T>
T& applicationState(MdlDesc* application) {
    StateOwner& owner = applicationOwner(application);
    if constexpr (std::is_constructible_v<T, MdlDesc*>)
        return owner.state<T>(&owner == &sessionOwner() ? nullptr : application);
    else
        return owner.state<T>();
}

template <void (*letGo)(MdlDesc*)>
struct LetGoAtEnd {
    MdlDesc* application;
    explicit LetGoAtEnd(MdlDesc* whose) : application(whose) {}
    ~LetGoAtEnd() {
        guarded([this] { letGo(application); });
    }
};

// Has `letGo` called when the application ends; outside any application, null, when the session ends. Once, however
// often this is called. What `letGo` uses of the session is made before.
template <void (*letGo)(MdlDesc*)>
void letGoAtEnd(MdlDesc* application) {
    applicationState<LetGoAtEnd<letGo>>(application);
}

}  // namespace host
