// The commands that change several labels at once: the user points at them one after the other, and a reset does it.
#pragma once

namespace labels {

void startAligningEdges();
void startAligningRow();
void startCollecting();
void startRenumbering();

}  // namespace labels
