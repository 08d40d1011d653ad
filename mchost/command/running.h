// The command that runs, for the files of this room.
#pragma once

#include <cstdint>
#include <string>

#include "mchost/mdl/state.h"
#include "mchost/session/session.h"

namespace host {

// What a modify command was started with, which a restart brings back.
struct ModifyFunctions {
    MdlResetFunction reset = nullptr;
    MdlDataPointFunction accept = nullptr;
    MdlDynamicsFunction dynamics = nullptr;
    MdlStateFunction show = nullptr, clean = nullptr;
};

struct Command {
    enum class Stage {
        points,     // a primitive command: each point is its own
        locating,   // a modify command: the next point locates
        following,  // an element is located: the next point accepts
    };

    uint64_t serial = 0;  // 0: the default command
    MdlDesc* owner = nullptr;
    uint64_t model = 0;  // serial of the model that it works in; 0 none
    Stage stage = Stage::points;
    MdlDataPointFunction dataPoint = nullptr;
    MdlResetFunction reset = nullptr, restart = nullptr;
    MdlDynamicsFunction dynamics = nullptr;
    ModifyFunctions modify = {};
    std::string message = {};  // the command message; Windows-1252
    std::string name = {};     // of its steps: the command message, or the name of the command that has started it
    std::string prompt = {};   // as it is now
    std::string given = {};    // the prompt message, which a restart shows again
};

Command& runningCommand();

// A turn of the command: what its functions change is one step that has the command's name. A command without a message
// that is started meanwhile goes on with that name.
class Turn {
  public:
    Turn();
    ~Turn();
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

  private:
    ApplicationScope whole_{nullptr};
};

// One run of a command: a restart begins another.
struct RunId {
    uint64_t serial, run;
    bool operator==(const RunId&) const = default;
};
RunId currentRun();
bool isStill(const RunId& run);  // false too when its design file isn't open any more

// A modify command locates again, with nothing located or shown.
void locateAgain();
// The default command runs.
void startDefault();

}  // namespace host
