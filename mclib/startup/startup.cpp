// Start-up: the one place that knows all rooms of the library. It registers an application and has every room begin, in
// order.
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

#include "mchost/mdl/resource.h"
#include "mchost/mdl/system.h"
#include "mclib/arrows/state.h"
#include "mclib/design/room.h"
#include "mclib/dialogs/hooks.h"
#include "mclib/elmattr/table.h"
#include "mclib/forms/preview_dialog.h"
#include "mclib/frame/applications.h"
#include "mclib/frame/main.h"
#include "mclib/frame/room.h"
#include "mclib/frame/text_buffer.h"
#include "mclib/print/shared.h"
#include "mclib/project/shared.h"

namespace mc {

namespace {

constexpr const Room* rooms[] = {&frameRoom,   &dialogsRoom, &printRoom,   &formsRoom,
                                 &projectRoom, &arrowsRoom,  &elmattrRoom, &designRoom};

// Calls a function of each room that has it.
template <class Function, class... Arguments>
void eachRoom(Function Room::*function, Arguments&&... arguments) {
    for (const Room* room : rooms)
        if (room->*function) (room->*function)(arguments...);
}

// ---- what dialogs reach ----

void publishHooks(const DialogHook* hooks) {
    int32_t count = 0;
    while (hooks[count].function) ++count;
    mdlDialog_hookPublish(count, hooks);
}

void publishBlocks() {
    SymbolSet* set = mdlCExpression_initializeSet(4, 0, 0);
    if (!set) return;
    for (const Room* room : rooms)
        for (const PublishedBlock& block : room->published) {
            mdlDialog_publishStructure(set, block.structName, block.fields);
            if (block.name) mdlDialog_publishComplexPtr(set, block.structName, block.name, block.pointer);
        }
}

void publish() {
    for (const Room* room : rooms)
        for (const DialogHook* hooks : room->hooks)
            if (hooks) publishHooks(hooks);
    publishBlocks();
}

// ---- applications ----

bool beginRooms(GlobalData& data, const Start& start) {
    for (const Room* room : rooms) {
        if (room->begin(data, start)) continue;
        const std::string brief =
            std::string("There is no memory for ") + data.applicationName + " (" + room->name + ")";
        mdlOutput_messageCenter(MDL_PRIORITY_ERROR, brief.c_str(), "Close other programs, and start it again.", 0);
        return false;
    }
    return true;
}

// The last room lets go first.
void release(GlobalData* data) {
    for (size_t i = std::size(rooms); i-- > 0;)
        if (rooms[i]->release) rooms[i]->release(*data);
    dlmSystem_mdlFree(data);
}

void endApplication() {
    eachRoom(&Room::applicationEnds);
}

bool isInitList(std::string_view listName) {
    return listName == "MS_DGNAPPS" || listName == "MS_INITAPPS";
}

void describe(GlobalData& data, const char* applicationName, const Start& start, int rscMode) {
    data.isInitApp = start.argc > 1 && start.argv && start.argv[1] && isInitList(start.argv[1]);
    mdlResource_openFile(&data.appRscHandle, nullptr, rscMode);
    copyText(data.applicationName, applicationName ? applicationName : "");
}

void reportFullTable(const char* applicationName) {
    const std::string brief = std::string("The application ") + (applicationName ? applicationName : "") +
                              " can't start: " + std::to_string(mostApplications) +
                              " applications have been started, which is the most of a session";
    mdlOutput_messageCenter(MDL_PRIORITY_ERROR, brief.c_str(), "End the session, and start it with fewer applications.",
                            0);
}

// ---- sessions ----

// Lets go of what belongs to a session that has ended; the last room first.
void noticeSession() {
    const int32_t running = mdlSystem_getSessionNumber();
    if (running == tableSession()) return;
    for (size_t i = std::size(rooms); i-- > 0;)
        if (rooms[i]->end) rooms[i]->end();
    setTableSession(running);
}

}  // namespace

}  // namespace mc

using namespace mc;

int mclibMain_initMcLib(const char* applicationName, int argc, char** argv) {
    return mclibMain_initMcLibExtended(applicationName, argc, argv, MDL_RSC_READ);
}

int mclibMain_initMcLibExtended(const char* applicationName, int argc, char** argv, int rscMode) {
    noticeSession();
    GlobalData* const before = findGlobalData();
    GlobalData* const data = registerApplication();
    if (!data) {
        if (tableIsFull()) reportFullTable(applicationName);
        return MCLIB_ERROR;
    }
    // What is shared stays with an application that registers again.
    const Start start{argc, argv, slotsHandedOut() <= 1 && !before};
    GlobalData* const shown = std::exchange(mgdP, data);
    describe(*data, applicationName, start, rscMode);
    publish();
    if (!beginRooms(*data, start)) {  // one that was registered before goes on as it was
        mgdP = shown;
        replaceBlock(data, before);
        release(data);
        return MCLIB_ERROR;
    }
    if (before) release(before);
    mdlSystem_setFunction(MDL_FUNCTION_NEW_DESIGN_FILE, reinterpret_cast<void*>(mclibMain_newDesignFile));
    mdlSystem_setFunction(MDL_FUNCTION_END, reinterpret_cast<void*>(endApplication));
    eachRoom(&Room::ready, *data, start);
    return MCLIB_SUCCESS;
}

void mclibMain_newDesignFile(char*, int state) {
    if (GlobalData* data = state == 1 ? mclibMain_getGlobalDataP() : nullptr) eachRoom(&Room::newDesignFile, *data);
}
