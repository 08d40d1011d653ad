// The command that runs, for those who feed it: front ends, scripts and tests.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mchost/mdl/owned.hpp"

namespace host {

// Whether a command other than the default one runs.
bool commandRuns();
const std::string& commandPrompt();  // Windows-1252
// A number that no other command of the session has, also not the same one started anew; 0 is the default command.
uint64_t commandSerial();

// What the user does: points are UOR of the active model, and are snapped by the modes that are on (snap.h). False when
// no command runs, or there is no such view. A data point moves the cursor to its place first, so that a command sees
// it in its dynamics.
enum class Snapping { off, on };
bool moveCursor(const Point3d& point, int32_t view);
bool giveDataPoint(const Point3d& point, int32_t view, Snapping snapping = Snapping::on);
bool giveReset();

// What the dynamics of the command displayed at the last move of the cursor.
const std::vector<mdl::DescrPtr>& dynamicElements();

// Runs the loop: commands get their points and resets, from key-ins first, and the dialogs that are open can be used
// meanwhile. serve() until the front end says that nothing is left to do, serveCommands() until no command runs. False
// when nobody answers: a command is ended then.
bool serve();
bool serveCommands();

}  // namespace host
