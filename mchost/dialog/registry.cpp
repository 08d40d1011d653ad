#include "mchost/dialog/registry.h"

#include <algorithm>
#include <utility>

#include "mchost/base/guard.h"
#include "mchost/mdl/system.h"
#include "mchost/session/owned_state.h"
#include "mchost/session/session.h"

namespace host {

namespace {

// A dialog's handle is its serial number times this; those of its items follow it.
constexpr uintptr_t handlesPerDialog = 4096;

struct PublishedHook {
    MdlDesc* owner;  // null: outside any application
    DialogHook hook;
};

// Dialogs and hooks of an application leave it at the latest when the application ends.
struct Registry {
    std::vector<std::shared_ptr<Dialog>> dialogs;  // in order of opening
    std::vector<uintptr_t> queuedToClose;          // handles
    std::vector<PublishedHook> hooks;
    uintptr_t lastSerial = 0;
    int runningEvents = 0;

    Registry() { observeReturn(closeQueuedDialogs); }
};
Registry& registry() {
    return sessionState<Registry>();
}

// Runs while the application's code is still there, so that its hooks learn of the end.
void letGoOf(MdlDesc* desc) {
    for (const auto& dialog : std::vector(registry().dialogs))
        if (dialog->owner() == desc) dialog->close();
    std::erase_if(registry().hooks, [desc](const PublishedHook& hook) { return hook.owner == desc; });
}

uintptr_t numberOfHandle(const void* handle) {
    return reinterpret_cast<uintptr_t>(handle);
}

std::shared_ptr<Dialog> dialogWithHandle(uintptr_t number) {
    for (const auto& dialog : registry().dialogs)
        if (numberOfHandle(dialog->handle()) == number) return dialog;
    return nullptr;
}

}  // namespace

std::shared_ptr<Dialog> dialogOf(const MdlDialog* handle) {
    return dialogWithHandle(numberOfHandle(handle));
}

ItemRef itemOf(const MdlItem* handle) {
    const uintptr_t number = numberOfHandle(handle);
    const uintptr_t place = number % handlesPerDialog;
    std::shared_ptr<Dialog> dialog = place == 0 ? nullptr : dialogWithHandle(number - place);
    if (!dialog || place > dialog->items().size()) return {};
    return {std::move(dialog), place - 1};
}

MdlDialog* Dialog::handle() const {
    return reinterpret_cast<MdlDialog*>(serial_ * handlesPerDialog);
}

MdlItem* Dialog::itemHandle(size_t index) const {
    if (index >= items_.size() || index + 1 >= handlesPerDialog) return nullptr;
    return reinterpret_cast<MdlItem*>(serial_ * handlesPerDialog + index + 1);
}

std::shared_ptr<Dialog> findDialog(int32_t dialogId, MdlDesc* owner) {
    const auto& dialogs = registry().dialogs;
    for (auto dialog = dialogs.rbegin(); dialog != dialogs.rend(); ++dialog)
        if ((*dialog)->id() == dialogId && !(*dialog)->ending() && (!owner || (*dialog)->owner() == owner))
            return *dialog;
    return nullptr;
}

std::vector<std::shared_ptr<Dialog>> allDialogs() {
    std::vector<std::shared_ptr<Dialog>> open = registry().dialogs;
    std::erase_if(open, [](const auto& dialog) { return dialog->ending(); });
    return open;
}

std::vector<std::shared_ptr<Dialog>> openDialogs() {
    std::vector<std::shared_ptr<Dialog>> open = allDialogs();
    std::erase_if(open, [](const auto& dialog) { return dialog->modal(); });
    return open;
}

void registerDialog(std::shared_ptr<Dialog> dialog) {
    letGoAtEnd<letGoOf>(dialog->owner());
    registry().dialogs.push_back(std::move(dialog));
}

void forgetDialog(const Dialog& dialog) {
    std::erase_if(registry().dialogs, [&](const auto& known) { return known.get() == &dialog; });
}

uintptr_t nextDialogSerial() {
    return ++registry().lastSerial;
}

void queueClose(const Dialog& dialog) {
    registry().queuedToClose.push_back(numberOfHandle(dialog.handle()));
}

void closeQueuedDialogs() {
    for (const uintptr_t handle : std::exchange(registry().queuedToClose, {}))
        if (const auto dialog = dialogWithHandle(handle)) dialog->close();
}

EventScope::EventScope() {
    ++registry().runningEvents;
}

EventScope::~EventScope() {
    if (--registry().runningEvents == 0) guarded(closeQueuedDialogs);
}

void publishHook(MdlDesc* owner, const DialogHook& hook) {
    for (PublishedHook& known : registry().hooks)
        if (known.owner == owner && known.hook.id == hook.id) {
            known.hook = hook;
            return;
        }
    registry().hooks.push_back({owner, hook});
}

DialogHookFunction findHook(int32_t hookId, MdlDesc* owner) {
    DialogHookFunction others = nullptr;
    for (const PublishedHook& known : registry().hooks) {
        if (known.hook.id != hookId) continue;
        if (known.owner == owner) return known.hook.function;
        others = known.hook.function;
    }
    return others;
}

void callHook(int32_t hookId, MdlDesc* owner, DialogMessage& message) {
    const DialogHookFunction function = hookId == 0 ? nullptr : findHook(hookId, owner);
    if (function) dlmSystem_callAnyFunction("P", owner, reinterpret_cast<void*>(function), &message);
}

}  // namespace host

int mdlDialog_hookPublish(int32_t count, const DialogHook* hooks) noexcept {
    return host::guarded<int>(MDL_ERROR, [&]() -> int {
        if (count < 0 || (count > 0 && !hooks)) return MDL_ERROR;
        MdlDesc* const owner = mdlSystem_getCurrMdlDesc();
        for (int32_t i = 0; i < count; ++i) host::publishHook(owner, hooks[i]);
        host::letGoAtEnd<host::letGoOf>(owner);
        return MDL_SUCCESS;
    });
}
