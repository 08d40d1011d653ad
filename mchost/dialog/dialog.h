// Open dialogs. A dialog is state: its items with their values, and the drawing that hooks left. A front end shows that
// state, is told what changes in it, and gives events, which call the event functions; hooks run inside them and may
// close, open or change any dialog meanwhile.
//
// Handles (MdlDialog*, MdlItem*) are numbers that are never given twice, not addresses: one that outlives its dialog
// finds nothing and does no harm.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "mchost/mdl/dialog.h"
#include "mchost/mdl/view.h"
#include "mchost/resource/container.h"
#include "mchost/session/front_end.h"

namespace host {

constexpr int32_t rowHeight = 16;  // of a list box, in pixels

// Fixed colours in the place of a line's colour: this and the 15 behind it.
constexpr int32_t firstFixedColor = 256, fixedColors = 16;

struct LineLook {
    int32_t style = 0;
    int32_t width = 1;  // pixels
};

// What hooks draw; pixels of the content area.
struct DrawnText {
    DialogRect rect;
    std::string text;
    int32_t font;
};
struct DrawnEdge {
    DialogRect rect;
    bool sunken;
};
struct DrawnBevel {
    DialogRect rect;
    bool sunken, filled;
};
struct DrawnFill {
    DialogRect rect;
    int32_t color;  // from 0: a fixed one
};
struct DrawnIcon {
    DialogRect rect;
    std::shared_ptr<const Icon> icon;
    int32_t color;  // from 0: a fixed one
};
struct DrawnLine {
    std::vector<int32_t> points;  // x and y in turn
    int32_t color;                // below firstFixedColor an element's
    LineLook look = {};
};
// Elements of a drawing that the window shows, as they lie on its paper.
struct ElementLine {
    std::vector<double> points;  // x and y in turn
    int32_t color;
    bool filled;
    double width;
    std::vector<double> dashes;  // and gaps in turn; none: solid
    double gray;                 // of the fill, 0 black to 1 white, and there is no line then; else below 0
};
// It fills its box: from the lower left corner along its base line, and up. y goes downwards.
struct ElementText {
    std::string text;
    int32_t color;
    double x, y, alongX, alongY, upX, upY;
};
using DrawCall =
    std::variant<DrawnText, DrawnEdge, DrawnBevel, DrawnFill, DrawnIcon, DrawnLine, ElementLine, ElementText>;

struct OptionRow {
    std::string label;
    int32_t value;
    bool enabled = true;
};

struct DialogItem {
    int32_t kind;  // ITEM_...
    int32_t id;
    int32_t hook;  // 0: none
    DialogRect rect;
    std::string label;
    std::string access;  // access string, or empty
    std::string format;  // of a number, or empty
    std::string value;   // a text; "0" or "1" of a toggle; the chosen row's value of an option button; else its number
    int32_t group = 0;   // id of the group box that it is a member of; 0: none
    std::vector<OptionRow> rows;
    bool shown = true;
    bool enabled = true;
    bool takesFocus = true;
    bool isDefault = false;
    bool drawn = false;                   // false: its hook has to draw it
    StringList* list = nullptr;           // of a list box or combo box; its owner's
    ListModel* model = nullptr;           // of a list box, in the place of a list; its owner's
    int32_t columns = 1;                  // members of the list in a row, or of the model
    bool several = false;                 // more than one row may be chosen
    int32_t topRow = 0;                   // the first one in sight
    std::vector<int32_t> selection = {};  // rows, in the order in which they were chosen
    std::vector<DrawCall> drawing = {};

    int32_t selectedRow() const { return selection.empty() ? -1 : selection.back(); }
};

struct Menu;  // mchost/dialog/menus.h

// The row alone, or none for -1.
inline std::vector<int32_t> rowAlone(int32_t row) {
    std::vector<int32_t> rows;
    if (row >= 0) rows.push_back(row);
    return rows;
}

class Dialog : public std::enable_shared_from_this<Dialog> {
  public:
    Dialog(const DialogLayout& layout, MdlDesc* owner, bool modal, const std::string& language);

    // ---- what a front end shows ----

    int32_t id() const { return id_; }
    bool modal() const { return modal_; }
    bool ended() const { return life_ == Life::ended; }
    int32_t width() const { return width_; }
    int32_t height() const { return height_; }
    bool sizable() const { return attributes_ & DIALOG_SIZABLE; }
    const std::string& title() const { return title_; }
    const std::vector<DialogItem>& items() const { return items_; }
    // What hooks drew: of the dialog itself first, then of the items that are shown.
    std::vector<DrawCall> drawing() const;
    // Has the items drawn whose drawing is out of date. To be called before the dialog is shown.
    void refresh();
    // Neither the item nor its group box is hidden.
    bool isVisible(const DialogItem& item) const;
    // A cell of a list box that is being edited: the value that the list box is given next goes into it.
    struct EditedCell {
        size_t item;
        int32_t row, column;
    };
    const std::optional<EditedCell>& editedCell() const { return editedCell_; }
    // The text that is being typed into a text item, which the item hasn't taken yet; null when none is.
    const std::string* edit(size_t index) const;
    size_t focus() const { return focus_; }  // the item that has it, or noItem
    static constexpr size_t noItem = SIZE_MAX;
    // Text in a cell of a list box or combo box; empty where there is none.
    static std::string cellText(const DialogItem& item, int32_t row, int32_t column);
    static int32_t rowCount(const DialogItem& item);
    // The menu that pops up over it, null for none.
    const std::shared_ptr<const Menu>& offeredMenu() const { return offeredMenu_; }

    // ---- events; false when the item isn't there, isn't one of that kind, or can't be used ----

    // Presses a push button. Those with the ids -3 and -4 end the dialog.
    bool press(size_t index);
    // Sets a text, a toggle or the choice of an option button. Also false for a value that the item can't take.
    bool setValue(size_t index, std::string_view value);
    // Why the last value was refused, as the end of a sentence such as "isn't a number"; empty when it was taken, or
    // for a reason of another kind.
    const std::string& refusal() const { return refusal_; }
    // All rows that are to be chosen, in their order; more than one only where the list box allows it.
    bool selectRows(size_t index, std::vector<int32_t> rows);
    bool scrollTo(size_t index, int32_t row);
    // Types into a text item without leaving it: it takes the text when the focus moves, or the first button is
    // pressed.
    bool type(size_t index, std::string text);
    // Draws the window to another size.
    bool resize(int32_t width, int32_t height);
    // A double click or Enter on an item; in a list box on its selected row, in that column.
    bool activate(size_t index, int32_t column = 0);
    // The second mouse button on an item.
    bool askForMenu(size_t index);
    // An entry of the menu that is offered, which goes with it.
    bool choose(size_t entry);
    void close() { end(0); }

    // ---- for the calls of the host; an index is that of an item ----

    MdlDesc* owner() const { return owner_; }
    int32_t reply() const { return reply_; }          // id of the action that ended it, 0 when it was closed otherwise
    int32_t indexOf(int32_t kind, int32_t id) const;  // -1: none
    void setTitle(std::string title);
    void moveItem(size_t index, int32_t left, int32_t top);
    void setItemExtent(size_t index, int32_t width, int32_t height);
    void setLabel(size_t index, std::string label);
    void showItem(size_t index, bool show);
    void enableItem(size_t index, bool enable);
    void setFormat(size_t index, std::string format);
    void setList(size_t index, StringList* list, int32_t columns);
    void setModel(size_t index, ListModel* model);
    bool editCell(size_t index, int32_t row, int32_t column);
    void clearRows(size_t index);
    void addRow(size_t index, std::string label, int32_t value);
    void enableRow(size_t index, size_t row, bool enable);
    void setExtent(int32_t width, int32_t height);
    int32_t font() const { return font_; }
    void setFont(int32_t font) { font_ = font; }
    LineLook lineLook() const { return lineLook_; }
    int32_t lineColor() const { return lineColor_; }
    void setLine(LineLook look, int32_t color) { lineLook_ = look, lineColor_ = color; }
    const MdlPaper& paper() const { return paper_; }
    void setPaper(const MdlPaper& paper) { paper_ = paper; }
    void clear();  // the display list
    bool open();   // sends the messages of creation; false when a hook closed it meanwhile
    void end(int32_t reply);
    bool synch(size_t index);
    bool change(size_t index, std::string_view value);  // as a user would, whatever the item's state
    bool setFocus(size_t index);                        // noItem: away from all; a running edit ends
    void signal(size_t index, int32_t signal, int32_t value);
    // Without a message; the access string keeps the last row, or -1.
    bool select(size_t index, std::vector<int32_t> rows);
    void allowSeveral(size_t index, bool several);
    void offer(std::shared_ptr<const Menu> menu);
    void draw(size_t index);  // at once; an item that isn't on show yet when it is
    void add(DrawCall call);  // to the item whose hook is drawing, else to the dialog
    // Its end has begun: no event reaches it any more.
    bool ending() const { return life_ == Life::closing || life_ == Life::ended; }
    MdlDialog* handle() const;
    MdlItem* itemHandle(size_t index) const;

  private:
    enum class Life { opening, open, closing, ended };

    bool usable(size_t index) const;
    void tellChanged(size_t index);  // noItem: the dialog itself
    void sendToDialog(int32_t type, int32_t resized = 0);
    // The message as the hook left it. `state` is that of ITEM_BUTTON; other messages take the item's value.
    DialogMessage sendToItem(size_t index, int32_t type, int32_t state = 0, int32_t changed = 0);
    void forgetRowsBeyond(DialogItem& item);
    bool endCellEdit(std::string_view text);
    void sendClick(size_t index, int32_t clicks, int32_t column);
    DialogMessage messageTo(size_t index, int32_t type) const;
    void endEdit();
    void createItems();
    void synchItems();
    bool changeSelection(size_t index, std::vector<int32_t> rows);

    uintptr_t serial_;  // above 0, never given twice
    int32_t id_;
    int32_t hook_;
    int32_t width_, height_;
    int32_t attributes_ = 0;
    int32_t reply_ = 0;
    int32_t font_;
    MdlPaper paper_{};
    LineLook lineLook_;
    int32_t lineColor_ = firstFixedColor + 7;
    bool modal_;
    Life life_ = Life::opening;
    MdlDesc* owner_;
    std::string title_;
    std::string refusal_;
    std::shared_ptr<const Menu> offeredMenu_;
    std::vector<DialogItem> items_;
    std::vector<DrawCall> drawing_;
    int32_t drawingItem_ = -1;
    size_t focus_ = noItem;
    std::optional<std::string> edit_;  // of the item that has the focus
    std::optional<EditedCell> editedCell_;
};

// All dialogs that are open, in order of opening.
std::vector<std::shared_ptr<Dialog>> allDialogs();
// Those that aren't modal.
std::vector<std::shared_ptr<Dialog>> openDialogs();

// Carries out what was done to a dialog; false when it can't be done.
bool carryOut(const DialogEvent& event);

// Runs the loop for a dialog that has been opened as a modal one until it has ended; false when nobody answers.
bool runModal(Dialog& dialog);

// Dialogs that were told to close when control is back in the host. The host calls this where it has control.
void closeQueuedDialogs();

// ---- fonts ----
int32_t widthOfText(std::string_view narrow, int32_t font);

}  // namespace host
