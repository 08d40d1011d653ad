// What points, moves of the cursor and resets do in the command that runs.
#include "mchost/base/guard.h"
#include "mchost/command/command.h"
#include "mchost/command/locate.h"
#include "mchost/command/overlay.h"
#include "mchost/command/running.h"
#include "mchost/command/snap.h"
#include "mchost/session/owned_state.h"
#include "mchost/session/session.h"
#include "mchost/space/vector.h"
#include "mchost/space/view.h"

namespace host {
namespace {

// Published by its address, so it stands as long as the process; what it holds goes with the session.
MdlStateData data;

struct PublishedData {
    ~PublishedData() { data = {}; }
};

void publish(const Point3d& point, int32_t view) {
    sessionState<PublishedData>();
    data = {point, view};
}

// Calls a function of the command, as its application. The command may be another one afterwards.
template <class Function, class... Arguments>
void call(Function function, Arguments... arguments) {
    const ApplicationScope scope(runningCommand().owner);
    function(arguments...);
}

void callDynamics(const Point3d& point, int32_t view) {
    clearDynamics();
    const Command& running = runningCommand();
    if (!running.dynamics || running.stage == Command::Stage::locating) return;
    Point3d given = point;
    keepDynamics(true);
    call(running.dynamics, &given, view, int32_t{MDL_DYNAMICS});
    keepDynamics(false);
}

void locate(const Point3d& point, int32_t view) {
    const Turn turn;
    if (!locateAt(point, view)) return;
    Command& running = runningCommand();
    running.stage = Command::Stage::following;
    if (running.modify.show) call(running.modify.show);
}

// The clean function; whether the command still runs as before.
bool clean() {
    const RunId run = currentRun();
    clearDynamics();
    if (const MdlStateFunction clean = runningCommand().modify.clean) call(clean);
    return isStill(run);
}

void accept(const Point3d& point, int32_t view) {
    const Turn turn;
    if (runningCommand().stage == Command::Stage::following && !clean()) return;
    Point3d given = point;
    if (const MdlDataPointFunction take = runningCommand().dataPoint) {
        call(take, &given, view);
    } else if (runningCommand().stage == Command::Stage::following) {
        locateAgain();
    }
}

void letGo() {
    const Turn turn;
    if (!clean()) return;
    const RunId run = currentRun();
    if (const MdlResetFunction reset = runningCommand().reset) call(reset);
    if (isStill(run)) locateAgain();
}

void resetOrEnd() {
    const Turn turn;
    clearDynamics();
    if (const MdlResetFunction reset = runningCommand().reset)
        call(reset);
    else
        startDefault();
}

// A command runs, and what it follows is there: it locates again when that was deleted.
bool isReady() {
    if (!commandRuns()) return false;
    if (runningCommand().stage == Command::Stage::following && !isLocated()) locateAgain();
    return true;
}

bool moveTo(const Point3d& point, int32_t view, Snapping snapping) {
    if (!isReady() || !isView(view) || !isFinite(point)) return false;
    const bool snaps = runningCommand().stage != Command::Stage::locating || snapsToLocate();
    const Point3d place = snapping == Snapping::on && snaps ? snapped(point, view) : point;
    publish(place, view);
    callDynamics(place, view);
    return true;
}

}  // namespace

bool moveCursor(const Point3d& point, int32_t view) {
    return moveTo(point, view, Snapping::on);
}

bool giveDataPoint(const Point3d& point, int32_t view, Snapping snapping) {
    if (!moveTo(point, view, snapping) || !commandRuns()) return false;
    clearDynamics();
    const Point3d given = data.point;
    if (runningCommand().stage == Command::Stage::locating)
        locate(given, view);
    else
        accept(given, view);
    return true;
}

bool giveReset() {
    if (!isReady()) return false;
    if (runningCommand().stage == Command::Stage::following)
        letGo();
    else
        resetOrEnd();
    return true;
}

const std::vector<mdl::DescrPtr>& dynamicElements() {
    return overlay().dynamics;
}

}  // namespace host

MdlStateData* statedataP = &host::data;
