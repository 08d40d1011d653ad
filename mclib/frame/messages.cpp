#include "mclib/frame/messages.h"

#include <bit>
#include <cstdarg>
#include <cstring>
#include <iterator>

#include "mchost/mdl/dialog.h"
#include "mchost/mdl/lists.h"
#include "mchost/mdl/resource.h"
#include "mchost/mdl/system.h"
#include "mclib/frame/applications.h"
#include "mclib/frame/errors.h"
#include "mclib/frame/global_data.h"
#include "mclib/frame/main.h"
#include "mclib/frame/text_buffer.h"
#include "resources/ids.h"

namespace mc {

constinit RoomState<MessageState> messageState;

namespace {

constexpr int32_t progressDialog = 20009;  // of an application that has one
static_assert(ids::errors::id == MCLIB_ERRORS && ids::questions::id == MCLIB_QUESTIONS &&
              ids::texts::id == MCLIB_LANGUAGE_TEXTS && ids::errors::outOfMemory.number == MCLIB_OUT_OF_MEMORY);

// The lowest set bit of a group of flags, or the group's default.
constexpr int32_t flagOf(int flags, int group, int32_t fallback) {
    const unsigned set = static_cast<unsigned>(flags & group);
    return set ? 1 << std::countr_zero(set) : fallback;
}
static_assert(flagOf(7, 15, 1) == 1 && flagOf(0, 0x70, 16) == 16 && flagOf(577, 0x380, MSGBOX_NO_SECOND) == 512);

void takeFlags(int flags) {
    messageState->msgBoxKind = flagOf(flags, 0x00F, 1);
    messageState->msgBoxFirstButton = flagOf(flags, 0x070, 16);
    messageState->msgBoxSecondButton = flagOf(flags, 0x380, MSGBOX_NO_SECOND);
}

// Cuts the text at its line ends, in place; runs of them count as one.
void takeLines(char* text) {
    int32_t count = 0;
    char* rest = nullptr;
    for (char* line = strtok_r(text, "\n", &rest); line && count < maxMessageLines;
         line = strtok_r(nullptr, "\n", &rest))
        messageState->messageLines[count++] = line;
    messageState->messageLines[count] = nullptr;
    messageState->messageLineCount = count;
}

void dropLines() {
    messageState->messageLines[0] = nullptr;
    messageState->messageLineCount = 0;
}

// For whoever built the application: what is missing, and what brings it.
void tellMissing(int listId, int messageId) {
    const GlobalData* data = findGlobalData();
    const bool own = listId != MCLIB_QUESTIONS && listId != MCLIB_ERRORS && listId != MCLIB_LANGUAGE_TEXTS;
    toolSubsystem_printf("%s: message %d of list %d isn't there. %s\n", data ? data->applicationName : "MCLib",
                         messageId, listId,
                         own ? "Put the application's resource file (.rsc), which has it, beside its module (.so)."
                             : "Check that MS_APPRSC names mclib.rsc.");
}

// The lines of a message whose dialog can't be shown, and those that were collected for it.
void tellLines() {
    for (int32_t i = 0; i < messageState->messageLineCount; ++i)
        mdlOutput_messageCenter(MDL_PRIORITY_WARNING, messageState->messageLines[i], "", 0);
}

void tellCollectedLines() {
    const char* line = nullptr;
    for (int32_t i = 0, count = mdlStringList_size(messageState->messageList); i < count; ++i)
        if (mdlStringList_getMember(&line, nullptr, messageState->messageList, i) == MDL_SUCCESS)
            toolSubsystem_printf("%s\n", line);
    dropMessageList();
}

// Opens a dialog above the lines of the text; its reply. Whoever can't be asked declines.
int showDialog(int dialogId, char* text) {
    takeLines(text);
    int32_t reply = MSGBOX_SECOND;
    if (mdlDialog_openModal(&reply, 0, dialogId) == MDL_DIALOG_NOT_SHOWN) {
        tellLines();
        if (dialogId == ids::messageList::id) tellCollectedLines();
    }
    dropLines();
    return reply;
}

int showBox(int flags, char* text) {
    takeFlags(flags);
    return showDialog(ids::messageBox::id, text);
}

// Adds a line; a full list drops its oldest one.
bool collectLine(const char* line) {
    StringList* list = ensureMessageList();
    if (!list) return false;
    int32_t index = -1;
    mdlStringList_insertMember(&index, list, -1, 1);
    if (index == -1) {
        mdlStringList_deleteMember(list, 0, 1);
        mdlStringList_insertMember(&index, list, -1, 1);
    }
    return index != -1 && mdlStringList_setMember(list, index, line, nullptr) == MDL_SUCCESS;
}

int collectLines(char* text) {
    char* rest = nullptr;
    for (char* line = strtok_r(text, "\n", &rest); line; line = strtok_r(nullptr, "\n", &rest))
        if (!collectLine(line)) return MCLIB_NOT_SHOWN;
    return MCLIB_STORED;
}

int showList(char* text) {
    mdlSystem_enterGraphics();
    if (MdlDialog* progress = mdlDialog_find(progressDialog, nullptr)) mdlDialog_closeCommandQueue(progress);
    messageState->msgBoxKind = 1;
    return showDialog(ids::messageList::id, text);
}

int listText(int mode, char* text) {
    switch (mode) {
        case LIST_COLLECT: return collectLines(text);
        case LIST_SHOW: return showList(text);
        case LIST_NOTHING: return MCLIB_STORED;
        default: toolSubsystem_printf("%.*s\n", static_cast<int>(strcspn(text, "\n")), text); return MCLIB_STORED;
    }
}

// The finished text of a message of a list; false when there is no such message.
bool formatMessage(char (&text)[messageTextSize], int listId, int messageId, va_list values) {
    char format[messageFormatSize];
    if (mdlResource_loadFromStringList(format, 0, listId, messageId) != MDL_SUCCESS) return false;
    formatTextV(text, sizeof text, format, values);
    return true;
}

// How a finished text is told: in a box or in the list.
using Tell = int (*)(int how, char* text);

int tellText(Tell tell, int how, const char* format, va_list values) {
    char text[messageTextSize];
    formatTextV(text, sizeof text, format, values);
    return tell(how, text);
}

int tellMessage(Tell tell, int how, int listId, int messageId, va_list values) {
    char text[messageTextSize];
    if (formatMessage(text, listId, messageId, values)) return tell(how, text);
    tellMissing(listId, messageId);
    return MCLIB_NOT_SHOWN;
}

// Asks whether to go on without the memory; the second button ends the application. What is asked can't be had before
// an application has its messages.
void reportNoMemory(int listId, int messageId, va_list values) {
    char text[messageTextSize];
    if (!formatMessage(text, listId, messageId, values)) {
        mdlOutput_messageCenter(MDL_PRIORITY_ERROR, "There is no memory for what is to be done",
                                "Close other programs, and start it again.", 0);
        return;
    }
    if (showBox(MSGBOX_KIND_1 | MSGBOX_FIRST_64 | MSGBOX_SECOND_512, text) == MSGBOX_SECOND) mdlSystem_exit(0, 1);
}

}  // namespace

StringList* ensureMessageList() {
    if (!messageState->messageList) messageState->messageList = mdlStringList_create(0, 1);
    return messageState->messageList;
}

void dropMessageList() {
    if (messageState->messageList) mdlStringList_destroy(messageState->messageList);
    messageState->messageList = nullptr;
}

void forgetMessages() {
    dropMessageList();
    messageState.end();
}

char* messageTitle(int kind) {
    static constexpr int kinds[] = {4, 8, 1, 2};  // in the order of GlobalData::messageTitles
    GlobalData* data = findGlobalData();
    for (size_t i = 0; data && i < std::size(kinds); ++i)
        if (kinds[i] == kind) return data->messageTitles[i];
    return nullptr;
}

}  // namespace mc

using namespace mc;

int mclibError_msgBoxPrintf(int flags, const char* format, ...) {
    va_list values;
    va_start(values, format);
    const int result = tellText(showBox, flags, format, values);
    va_end(values);
    return result;
}

int mclibError_rscMsgBoxPrintf(int flags, int listId, int messageId, ...) {
    va_list values;
    va_start(values, messageId);
    const int result = tellMessage(showBox, flags, listId, messageId, values);
    va_end(values);
    return result;
}

int mclibError_listPrintf(int mode, const char* format, ...) {
    va_list values;
    va_start(values, format);
    const int result = tellText(listText, mode, format, values);
    va_end(values);
    return result;
}

int mclibError_rscListPrintf(int mode, int listId, int messageId, ...) {
    va_list values;
    va_start(values, messageId);
    const int result = tellMessage(listText, mode, listId, messageId, values);
    va_end(values);
    return result;
}

void mclibError_setTitle(int kind, const char* format, ...) {
    if (kind != 1 && kind != 2 && kind != 4 && kind != 8) {
        toolSubsystem_printf("%s %d\n", "Feil under setting av tittel", kind);
        return;
    }
    char* title = messageTitle(kind);
    if (!title) return;
    va_list values;
    va_start(values, format);
    formatTextV(title, messageTitleSize, format, values);
    va_end(values);
}

void* mclibMem_mallocRscErrorPrintf(size_t size, int listId, int messageId, ...) {
    if (void* block = dlmSystem_mdlMalloc(size)) return std::memset(block, 0, size);
    va_list values;
    va_start(values, messageId);
    reportNoMemory(listId, messageId, values);
    va_end(values);
    return nullptr;
}

void* mclibMem_reallocRscErrorPrintf(void* p, size_t oldSize, size_t newSize, int listId, int messageId, ...) {
    if (void* block = dlmSystem_mdlRealloc(p, newSize)) {
        if (newSize > oldSize) std::memset(static_cast<char*>(block) + oldSize, 0, newSize - oldSize);
        return block;
    }
    va_list values;
    va_start(values, messageId);
    reportNoMemory(listId, messageId, values);
    va_end(values);
    return nullptr;
}

char* mclibUtil_getLanguageText(int n) {
    static char text[messageFormatSize];
    text[0] = '\0';  // what it stays when there is no such text
    mdlOutput_rscsPrintf(text, 0, MCLIB_LANGUAGE_TEXTS, n);
    return text;
}
