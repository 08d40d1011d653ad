// The dialogs that are open and the hooks that are published. For the files of this room.
#pragma once

#include <memory>
#include <vector>

#include "mchost/dialog/dialog.h"

namespace host {

// Null for a handle whose dialog has ended.
std::shared_ptr<Dialog> dialogOf(const MdlDialog* handle);

// An item and the dialog that it lives in, which stays alive with this.
struct ItemRef {
    std::shared_ptr<Dialog> dialog;
    size_t index = 0;
    const DialogItem* operator->() const { return &dialog->items()[index]; }
    const DialogItem& operator*() const { return dialog->items()[index]; }
    explicit operator bool() const { return dialog != nullptr; }
};
ItemRef itemOf(const MdlItem* handle);

// An open dialog of that id whose end hasn't begun; owner null: of any application. The last opened first.
std::shared_ptr<Dialog> findDialog(int32_t dialogId, MdlDesc* owner);

void registerDialog(std::shared_ptr<Dialog> dialog);
void forgetDialog(const Dialog& dialog);
uintptr_t nextDialogSerial();
void queueClose(const Dialog& dialog);

// Stands while a dialog's hooks run, within others where a hook opens a modal dialog. Control is back in the host when
// the outermost is over.
struct EventScope {
    EventScope();
    ~EventScope();
    EventScope(const EventScope&) = delete;
    EventScope& operator=(const EventScope&) = delete;
};

// Publishes a hook of the application, or with null of the host itself.
void publishHook(MdlDesc* owner, const DialogHook& hook);
// The hook of that id: the application's own, else another's; null for none.
DialogHookFunction findHook(int32_t hookId, MdlDesc* owner);
// Calls it with that application current; the hook 0, and one that nobody has published, takes nothing.
void callHook(int32_t hookId, MdlDesc* owner, DialogMessage& message);

}  // namespace host
