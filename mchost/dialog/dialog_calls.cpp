// The calls on whole dialogs.
#include <algorithm>

#include "mchost/base/guard.h"
#include "mchost/dialog/registry.h"
#include "mchost/mdl/dialog_items.h"
#include "mchost/mdl/system.h"
#include "mchost/resource/open_files.h"
#include "mchost/session/loop.h"
#include "mchost/session/session.h"

namespace host {

namespace {

enum { REPLY_SECOND = 4 };

std::shared_ptr<Dialog> makeDialog(RscHandle file, int32_t dialogId, bool modal) {
    const auto layout = findDialogLayout(file, dialogId);
    if (!layout) {
        const std::string text = "Dialog " + std::to_string(dialogId) +
                                 " can't be shown: no open resource file has its layout. Check MS_APPRSC.";
        mdlOutput_messageCenter(MDL_PRIORITY_ERROR, text.c_str(), "", 0);
        return nullptr;
    }
    auto dialog = std::make_shared<Dialog>(*layout, mdlSystem_getCurrMdlDesc(), modal, currentLanguage());
    registerDialog(dialog);
    return dialog->open() ? dialog : nullptr;
}

}  // namespace

bool carryOut(const DialogEvent& event) {
    Dialog& dialog = *event.dialog;
    switch (event.kind) {
        case DialogEvent::Kind::press: return dialog.press(event.item);
        case DialogEvent::Kind::setValue: return dialog.setValue(event.item, event.value);
        case DialogEvent::Kind::selectRows: return dialog.selectRows(event.item, event.rows);
        case DialogEvent::Kind::scroll: return !event.rows.empty() && dialog.scrollTo(event.item, event.rows[0]);
        case DialogEvent::Kind::type: return dialog.type(event.item, event.value);
        case DialogEvent::Kind::activate:
            if (!event.rows.empty() && !dialog.selectRows(event.item, event.rows)) return false;
            return dialog.activate(event.item, event.column);
        case DialogEvent::Kind::offerMenu:
            if (!event.rows.empty() && !dialog.selectRows(event.item, event.rows)) return false;
            return dialog.askForMenu(event.item);
        case DialogEvent::Kind::chooseEntry:
            return !event.rows.empty() && event.rows[0] >= 0 && dialog.choose(static_cast<size_t>(event.rows[0]));
        case DialogEvent::Kind::resize: return dialog.resize(event.width, event.height);
        case DialogEvent::Kind::close: dialog.close(); return true;
    }
    return false;
}

bool runModal(Dialog& dialog) {
    const auto self = dialog.shared_from_this();
    while (!dialog.ended()) {
        const Event event = nextEvent(ModalDialog{self});
        if (std::holds_alternative<NobodyThere>(event) || std::holds_alternative<Quit>(event)) return false;
        const auto* done = std::get_if<DialogEvent>(&event);
        if (done && done->dialog == self && !carryOut(*done)) tellRefused(event);
    }
    return true;
}

}  // namespace host

MdlDialog* mdlDialog_open(RscHandle rscFile, int32_t dialogId) noexcept {
    return host::guarded<MdlDialog*>(nullptr, [&]() -> MdlDialog* {
        if (const auto open = host::findDialog(dialogId, mdlSystem_getCurrMdlDesc()); open && !open->modal())
            return open->handle();
        const auto dialog = host::makeDialog(rscFile, dialogId, false);
        return dialog ? dialog->handle() : nullptr;
    });
}

int mdlDialog_openModal(int32_t* replyP, RscHandle rscFile, int32_t dialogId) noexcept {
    if (replyP) *replyP = host::REPLY_SECOND;
    return host::guarded<int>(MDL_ERROR, [&]() -> int {
        const auto dialog = host::makeDialog(rscFile, dialogId, true);
        if (!dialog || !host::Session::current()) return MDL_DIALOG_NOT_SHOWN;
        const bool answered = host::runModal(*dialog);
        dialog->close();
        if (replyP && dialog->reply() != 0) *replyP = dialog->reply();
        return answered ? MDL_SUCCESS : MDL_ERROR;
    });
}

MdlDialog* mdlDialog_find(int32_t dialogId, MdlDesc* desc) noexcept {
    const auto dialog = host::findDialog(dialogId, desc);
    return dialog ? dialog->handle() : nullptr;
}

MdlDialog* mdlDialog_findByTypeAndId(int32_t type, int32_t dialogId, MdlDesc* desc) noexcept {
    return type == MDL_DIALOG_BOX ? mdlDialog_find(dialogId, desc) : nullptr;
}

int mdlWindow_close(MdlDialog* handle, int32_t, int32_t) noexcept {
    return host::guarded<int>(MDL_ERROR, [&]() -> int {
        const auto dialog = host::dialogOf(handle);
        if (!dialog) return MDL_ERROR;
        dialog->close();
        return MDL_SUCCESS;
    });
}

int mdlDialog_closeCommandQueue(MdlDialog* handle) noexcept {
    return host::guarded<int>(MDL_ERROR, [&]() -> int {
        const auto dialog = host::dialogOf(handle);
        if (!dialog) return MDL_ERROR;
        host::queueClose(*dialog);
        return MDL_SUCCESS;
    });
}

int32_t mdlDialog_getId(const MdlDialog* handle) noexcept {
    const auto dialog = host::dialogOf(handle);
    return dialog ? dialog->id() : 0;
}

void mdlWindow_titleSet(MdlDialog* handle, const char* title) noexcept {
    host::guarded<int>(MDL_ERROR, [&]() -> int {
        if (const auto dialog = host::dialogOf(handle); dialog && title) dialog->setTitle(title);
        return MDL_SUCCESS;
    });
}

void mdlWindow_extentSet(MdlDialog* handle, int32_t width, int32_t height) noexcept {
    if (const auto dialog = host::dialogOf(handle)) dialog->setExtent(width, height);
}

void mdlWindow_contentRectGet(DialogRect* rect, const MdlDialog* handle) noexcept {
    const auto dialog = host::dialogOf(handle);
    if (rect) *rect = dialog ? DialogRect{0, 0, dialog->width(), dialog->height()} : DialogRect{};
}

MdlDialog* mdlDialog_getOpen(int32_t index) noexcept {
    return host::guarded<MdlDialog*>(nullptr, [&]() -> MdlDialog* {
        const auto all = host::allDialogs();
        return index >= 0 && static_cast<size_t>(index) < all.size() ? all[static_cast<size_t>(index)]->handle()
                                                                     : nullptr;
    });
}

int mdlDialog_synchShown(const char* publishedName) noexcept {
    return host::guarded<int>(MDL_ERROR, [&]() -> int {
        if (!publishedName) return MDL_ERROR;
        const std::string begin = std::string(publishedName) + "->";
        for (const auto& dialog : host::allDialogs())
            for (size_t i = 0; i < dialog->items().size(); ++i)
                if (dialog->items()[i].access.starts_with(begin)) dialog->synch(i);
        return MDL_SUCCESS;
    });
}
