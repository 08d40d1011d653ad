// The table of running applications. Internal: registration, and what is told to all of them.
#pragma once

#include "mclib/frame/export.h"
#include "mclib/frame/room.h"

namespace mc {

// The block that the library's dialogs reach as mgdP: that of the application whose dialog is about to open.
extern GlobalData* mgdP;

constexpr int32_t mostApplications = 49;  // that run side by side

// Takes a slot for the current application, after giving free the slots of those that have ended, and gives it a block
// with its defaults; one that is registered already gets a new block in its slot. Null, with a line on the console when
// the table is full.
GlobalData* registerApplication();
// Puts another block into the slot of a block, or, for null, gives the slot back. The block stays the caller's.
void replaceBlock(const GlobalData* block, GlobalData* by);
// High-water mark of the slots handed out; 1 tells the first application of all.
int32_t slotsHandedOut();
// True when no application can register any more, whoever ends.
bool tableIsFull();
// The number of the session that the table is of; 0 for an empty one.
int32_t tableSession();
void setTableSession(int32_t number);
// Empties the table: what it holds is of a session that has ended.
void forgetAllApplications();

// The current application's block, as mclibMain_getGlobalDataP but without a word when there is none.
GlobalData* findGlobalData();

extern const Room frameRoom;

// Calls the scale function of every running application, with includeCurrent 0 of all but the current one.
void notifyScaleChange(double oldScale, double newScale, int includeCurrent);

}  // namespace mc
