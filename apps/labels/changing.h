// The commands that change labels one by one.
#pragma once

namespace labels {

void startMovingTip();
void startMovingText();
void startMovingAll();
void startChangingText();
void startInsertingVertex();
void startDeletingVertex();
void startAddingLeader();
void startDeletingLeader();
void startReplacingHead();

}  // namespace labels
