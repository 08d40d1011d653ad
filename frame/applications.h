// The table of running applications. Internal: registration, and what is told to all of them.
#pragma once

#include "frame/export.h"

// The block that the library's dialogs reach as mgdP: that of the application whose dialog is about to open.
extern GlobalData* mgdP;

constexpr int32_t mostApplications = 49;  // that run side by side

// Takes a slot for the current application, after giving free the slots of those that have ended, and gives it a block
// with its defaults. Null, with a line on the console when the table is full.
GlobalData* registerApplication();
// Gives a slot back before its application ever worked. The block and what hangs on it stay the caller's.
void forgetApplication(const GlobalData* data);
// High-water mark of the slots handed out; 1 tells the first application of all.
int32_t slotsHandedOut();
// True when no application can register any more, whoever ends.
bool tableIsFull();

// The current application's block, as mclibMain_getGlobalDataP but without a word when there is none.
GlobalData* findGlobalData();

// Calls the scale function of every running application, with includeCurrent 0 of all but the current one.
void notifyScaleChange(double oldScale, double newScale, int includeCurrent);
