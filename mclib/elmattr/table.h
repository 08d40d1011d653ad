// The attribute table of an application: what its records look like, and the operations that only the library uses.
#pragma once

#include <string_view>

#include "mclib/elmattr/attributes.h"
#include "mclib/frame/room.h"

namespace mc {

constexpr int maxAttributeLabel = 79;  // characters; stored labels have 80 bytes
constexpr int attributeRowCells = 7;   // members of the list box's string list for each attribute

struct ElmAttrGroup {
    char* name;  // owned
    int32_t id;
    uint32_t flags;                       // ATTR_GROUP_...
    ElmAttrGroupChanged changedFunction;  // may be null
};

struct ElmAttrRecord {
    int32_t group;
    int32_t kind;  // 0 in the active record: nothing is selected
    int32_t id;
    char* label;  // owned
    ElmAttrHook hook;
    uint32_t lockMask;
    int32_t optionCount;    // kinds 2, 3, 5, 7
    int32_t* optionValues;  // owned
    int32_t* optionIcons;   // owned; kinds 2, 3, 5
    char** optionLabels;    // owned, as is each label; kind 7
    int32_t textMaxLength;
    char* textLabel;  // owned; kinds 5, 6, 7
    ElmAttrData data;
    ElmAttrRecord* next;
};

// The block of the dialog that edits a label.
struct ElmAttrEditBlock {
    char label[84];
    int32_t kind;
    uint32_t lockMask;
};

}  // namespace mc

namespace mc::elmattr {

constexpr int32_t dialogId = 20013;  // of an application that has the attribute dialog

// What the options of a kind show; the other kinds have none.
constexpr bool hasIcons(int32_t kind) {
    return kind == ATTR_KIND_SYMBOL || kind == ATTR_KIND_SIZED_SYMBOL || kind == ATTR_KIND_LABELLED_SYMBOL;
}
constexpr bool hasOptionLabels(int32_t kind) {
    return kind == ATTR_KIND_OPTION_TEXT;
}

// A zero-filled record with that label, cut at maxAttributeLabel characters; null when out of memory.
ElmAttrRecord* createRecord(std::string_view label);
// Frees a record that is in no list, with all that it owns.
void freeRecord(ElmAttrRecord* record);

// Free the application's list and its group table.
void freeRecords(GlobalData& gd);
void freeGroups(GlobalData& gd);

// The first record of that id; null when there is none.
ElmAttrRecord* findRecord(const GlobalData& gd, int id);

// Swap the record with its neighbour in the list, whatever that one's group; nothing happens to the first or last
// record of its group. The dialog is brought up to date. MCLIB_ERROR for an unknown id.
int moveUp(GlobalData& gd, int id);
int moveDown(GlobalData& gd, int id);

// The rows of the group's attributes for the dialog's list box: attributeRowCells members each, the id in info field 1
// of the first. Raises nextAttributeId above every id met (but INT32_MAX). The caller owns the list; null when out of
// memory.
StringList* createRows(GlobalData& gd, int group);
// Sets the cells behind the label of a row.
void setRow(StringList* list, int row, const ElmAttrRecord& record);

// Rebuilds the list box of the attribute dialog and selects `id` when it isn't negative; does nothing while the dialog
// isn't open.
void refreshDialog(GlobalData& gd, int id);

// Brings the numbers of named line styles in line with the active model, and fills missing names, for the current
// application.
void bringStyleNumbersInStep();

}  // namespace mc::elmattr

namespace mc {

extern const Room elmattrRoom;

}  // namespace mc
