// The contract between a session and the place where people meet it: a terminal, a script, a window, a test. A front
// end is told what there is to see, and is asked for what is done next. Texts are UTF-8.
//
// What it is told it may show at once or when it is next asked; it calls nothing of the session while it is told. The
// dialogs, the points and the key-ins of its user are events: it gives them when it is asked and leaves what they do to
// the session. It is asked by the loop alone (loop.h), also while the work of an event before waits for its answer: a
// modal dialog, a file or a note is asked for then, and no other event is taken.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "mchost/mdl/types.h"
#include "mchost/session/keyin.h"

namespace host {

class Dialog;  // mchost/dialog/dialog.h

// ---- what is told ----

struct Message {
    int priority;  // 10 error, 11 warning, 12 information
    std::string_view brief, details;
    bool alert;  // the user is to take note: the session asks for Note behind it
};

// ---- what is asked for ----

// Any event. With a command that waits for its user: what it asks for, and a number that no other command of the
// session has; 0 while the default command runs.
struct AnyEvent {
    std::string prompt;
    uint64_t command = 0;
};

// An event of this dialog, until it has ended.
struct ModalDialog {
    std::shared_ptr<Dialog> dialog;
};

// A FileAnswer. Names as the host writes them.
struct FileQuestion {
    enum class Kind { open, create, directory, list };
    Kind kind = Kind::open;
    std::string title, listTitle;
    std::string directory;                // where a name without one is looked for; with its last separator
    std::string filter;                   // patterns divided by ";"
    std::string suggested;                // what an empty answer means for one file; may be empty
    std::vector<std::string> remembered;  // files, or directories; "1" stands for the first one
    std::vector<std::string> members;     // of a list
    std::string complaint;                // what was wrong with the answer before, else empty
};

// An Agreement, to a question in one sentence.
struct Confirmation {
    std::string question;
};

// Noted, for the message that was told last.
struct Note {};

using Awaited = std::variant<AnyEvent, ModalDialog, FileQuestion, Confirmation, Note>;

// ---- events ----

// Places are UOR of the active model, views are 0 to 7.
struct DataPoint {
    Point3d point;
    int32_t view;
};
struct CursorMove {
    Point3d point;
    int32_t view;
};
struct Reset {};
struct CommandEnd {};  // the command that runs is left

// Something done to an item of a dialog, or to the dialog; as the function of Dialog with that name.
struct DialogEvent {
    enum class Kind { press, setValue, selectRows, scroll, type, activate, offerMenu, chooseEntry, resize, close };
    Kind kind;
    std::shared_ptr<Dialog> dialog;
    size_t item = 0;
    std::string value = {};          // of setValue and type; Windows-1252, as items keep it
    std::vector<int32_t> rows = {};  // of selectRows; of scroll, activate and chooseEntry the first
    int32_t column = 0;              // of activate in a list box
    int32_t width = 0, height = 0;   // of resize, in pixels
};

// A name or pattern, the number of a remembered name, or empty for what is suggested. For a list: a name or pattern to
// add, "-2" to take out the second member, or empty when it is complete. Nothing when the user cancels.
struct FileAnswer {
    std::optional<std::string> text;
};
struct Agreement {
    bool yes;
};
struct Noted {};

struct Nothing {};      // the time is over, or what was awaited should be looked at again
struct NobodyThere {};  // nobody answers what was asked
struct Quit {};         // nothing is left to do for the user, or they leave

using Event = std::variant<Nothing, KeyIn, DataPoint, CursorMove, Reset, CommandEnd, DialogEvent, FileAnswer, Agreement,
                           Noted, NobodyThere, Quit>;

class FrontEnd {
  public:
    virtual ~FrontEnd() = default;

    // Whether somebody is there who sees what is told and answers.
    virtual bool attended() const { return false; }

    virtual void console(std::string_view text) = 0;
    virtual void messageField(int field,
                              std::string_view text) = 0;  // 0 message, 1 status, 2 prompt, 3 error, 4 command
    virtual void message(const Message& message) = 0;
    virtual void dialogOpened(Dialog&) {}
    virtual void dialogChanged(Dialog&, size_t /*item: Dialog::noItem for the dialog itself*/) {}
    virtual void dialogClosed(Dialog&) {}
    virtual void viewChanged(int32_t /*view*/) {}
    // Elements are drawn, erased or highlighted (MDL_DRAW and its like), or seen in the dynamics of the command that
    // runs.
    virtual void displayed(const ElementDescr&, int32_t /*drawMode*/) {}
    // The last event wasn't carried out, such as a value that an item doesn't take.
    virtual void refused(const Event&) {}

    // The next event, of the kind that is awaited. `limit` is how long it may take at most; none: as long as it takes.
    // A front end that can't wait for a time may wait for its user.
    virtual Event wait(const Awaited& awaited, std::optional<std::chrono::milliseconds> limit) = 0;
};

}  // namespace host
