// What a room of the library does for applications and sessions. Each room ends with its row; mclib/startup has the
// list.
#pragma once

#include <array>
#include <cstdlib>
#include <optional>
#include <span>

#include "mchost/mdl/dialog.h"
#include "mclib/frame/errors.h"
#include "mclib/frame/global_data.h"

namespace mc {

// A structure that dialogs reach by name.
struct PublishedBlock {
    const char* structName;
    const StructField* fields;
    const char* name;  // null for one that only a field of another leads to
    void* pointer;     // address of the module-wide pointer, so a dialog sees what it holds when it looks
};

// How an application was started.
struct Start {
    int argc;
    char** argv;
    bool isFirst;  // no other one has been there in this session: the blocks that all share are made
};

constexpr DialogHook endOfHooks{};

// All functions but `begin` may be null.
struct Room {
    const char* name;
    std::array<const DialogHook*, 4> hooks;  // tables, each ended by endOfHooks; null for none
    std::span<const PublishedBlock> published;

    // An application starts, whose hooks and blocks are published already: makes what the room has in its block, and
    // loads what the room keeps. False when out of memory, which the user has been told.
    bool (*begin)(GlobalData& data, const Start& start);
    // All rooms have begun.
    void (*ready)(GlobalData& data, const Start& start);
    // A design file has been opened.
    void (*newDesignFile)(GlobalData& data);
    // The current application ends; its dialogs are still open.
    void (*applicationEnds)();
    // The block goes: frees what the room made in it, as far as it has begun.
    void (*release)(GlobalData& data);
    // The session has ended: forgets it.
    void (*end)();
};

// What a room remembers from call to call: made at its first use, destroyed by the room's `end`.
template <class State>
class RoomState {
  public:
    State* operator->() {
        if (!state_) state_.emplace();
        return &*state_;
    }
    void end() { state_.reset(); }

  private:
    std::optional<State> state_;
};

// A zero-filled block of an application's own; false when out of memory, which the user has been told.
template <class Block>
bool makeBlock(Block*& block) {
    block = static_cast<Block*>(mclibMem_mallocRscErrorPrintf(sizeof(Block), MCLIB_ERRORS, MCLIB_OUT_OF_MEMORY));
    return block;
}

// A zero-filled block that all applications share and that outlives them; false when out of memory.
template <class Block>
bool makeSharedBlock(Block*& block) {
    std::free(block);  // of the only application before, which has ended
    block = static_cast<Block*>(std::calloc(1, sizeof(Block)));
    return block;
}
template <class Block>
void freeSharedBlock(Block*& block) {
    std::free(block);
    block = nullptr;
}

}  // namespace mc
