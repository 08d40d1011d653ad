// Stored arrows: the commands that locate them, reading one and what its elements tell, and writing it again.
#pragma once

#include "mchost/mdl/state.h"
#include "mclib/arrows/edit_state.h"

namespace mc::arrows {

// A command on stored arrows. The functions may be null.
struct EditCommand {
    CommandKind kind;
    bool textAlone;
    MdlDataPointFunction accept;
    MdlStateFunction show, clean;
};
// MCLIB_SUCCESS, or MCLIB_ERROR when it can't be started.
int startEditing(const EditCommand& command, const EditHooks& hooks, int commandMessage, int promptMessage);
// Which elements the command that runs locates; what startEditing sets.
void setLocateRules(EditState& edit, CommandKind kind);

// Reads the arrow that was located, and the leader of it in commands that work on one. False when it is no arrow that
// can be edited, which the user has been told.
bool readLocated(EditState& edit);
// Reads the arrow at a position of the active model; the same without a leader that was located.
bool readArrow(EditState& edit, FilePos position);

// The first leader of the cell; null when it has none, which the user has been told.
ElementDescr* firstLeader(const EditState& edit);
bool isLeader(const ElementDescr* node);
// Notes where the first leader ends and which way the underline in front of it goes.
void findAnchor(EditState& edit, const ElementDescr* leader);
// Takes leaders and heads out of the cell. False when there are none, which the user has been told.
bool splitCell(EditState& edit);

// Writes the arrow in its place. False when the design file doesn't take it, which the user has been told.
bool rewrite(EditState& edit);
// The same, and the command locates again.
void rewriteAndRestart(EditState& edit);

}  // namespace mc::arrows
