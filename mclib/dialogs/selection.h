// What the selection dialogs have in common. Internal.
#pragma once

#include <cstdint>
#include <string>

#include "mchost/mdl/owned.hpp"
#include "mclib/frame/global_data.h"
#include "mclib/frame/room.h"

namespace mc::dialogs {

constexpr const char* rootFolder = "c:\\";

struct SelectionState {
    std::string shownDirectory;  // whose files and folders the lists show
};
extern RoomState<SelectionState> selectionState;

// The title and the label that a dialog shows, for as long as this stands. Null or empty: the dialog's own.
class DialogTexts {
  public:
    DialogTexts(GlobalData& data, const char* title, const char* label = nullptr);
    ~DialogTexts();
    DialogTexts(const DialogTexts&) = delete;
    DialogTexts& operator=(const DialogTexts&) = delete;

  private:
    GlobalData& data_;
};

void showTitle(const GlobalData& data, MdlDialog* dialog);

// Opens a dialog of this room; whether its user agreed.
bool agreedIn(int32_t dialogId);

// The chosen rows go to selectionRows and selectionCount; none, with a line on the console, when they can't be had.
void takeSelection(GlobalData& data, const MdlItem* listBox);
void forgetSelection(GlobalData& data);

// Adds a member; false when out of memory.
bool append(StringList* list, const char* text);
// The text of a member; empty where there is none.
const char* memberOf(const StringList* list, int32_t index);

// Gives a list box another list, and destroys the one before.
void replaceList(MdlItem* listBox, StringList* list);
void destroyList(MdlItem* listBox);

void tellOutOfMemory();

// ---- folders ----

// With a separator at its end.
void endInSeparator(char (&directory)[256]);
// What an entry of a directory list leads to from a directory; false when the name would be too long.
bool changeDirectory(char (&directory)[256], const char* entry);

extern const DialogHook searchHooks[];
extern const DialogHook stringListHooks[];

}  // namespace mc::dialogs
