// What the message boxes and the list dialog show. Internal: mclib/frame/messages.cpp fills it, the hooks of the two
// dialogs (mclib/dialogs/message_dialogs.cpp) lay it out and draw it.
#pragma once

#include "mclib/frame/export.h"
#include "mclib/frame/room.h"

namespace mc {

enum { MSGBOX_NO_SECOND = 20000 };  // msgBoxSecondButton: there is no second button
constexpr int maxMessageLines = 24;

// One for the whole module, shared by all applications; a box that opens while another one is on show overwrites the
// lines and buttons of the first. The lines point into the text of the call that opened the dialog, and are null when
// no dialog is open.
struct MessageState {
    int32_t msgBoxKind = 1;                           // 1, 2, 4 or 8
    int32_t msgBoxFirstButton = 16;                   // 16, 32 or 64
    int32_t msgBoxSecondButton = MSGBOX_NO_SECOND;    // 128, 256, 512 or MSGBOX_NO_SECOND
    const char* messageLines[maxMessageLines + 1]{};  // the last used one is followed by a null
    int32_t messageLineCount = 0;
    StringList* messageList = nullptr;  // the collected lines; null while there are none
};
extern RoomState<MessageState> messageState;

// The collected lines, made when there are none yet; null when out of memory.
StringList* ensureMessageList();
// Forgets the collected lines: the list dialog is gone.
void dropMessageList();
// Forgets what a session that has ended left: its lines, and what was being asked.
void forgetMessages();
// The current application's title for boxes of a kind (1, 2, 4 or 8), 513 bytes; null for another kind or without a
// registered application.
char* messageTitle(int kind);

}  // namespace mc
