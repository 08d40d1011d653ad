// What a session needs of the place where people meet it. A front end only shows state and feeds events; everything it
// shows is UTF-8.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

class Dialog;  // mchost/dialog/dialog.h

// What a file dialog asks for. Texts are UTF-8, names as the host writes them.
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

class FrontEnd {
  public:
    virtual ~FrontEnd() = default;
    // Whether somebody is there who sees what is told and answers.
    virtual bool attended() const { return false; }
    virtual void console(std::string_view text) = 0;
    virtual void messageField(int field, std::string_view text) = 0;
    virtual void messageCenter(int priority, std::string_view brief, std::string_view details) = 0;
    // Waits until the user has taken note of the message that was told last, where somebody is there.
    virtual void takeNote() {}
    // Feeds events to an open modal dialog until it has ended. False when nobody can answer.
    virtual bool runModal(Dialog& dialog) = 0;
    // A line of the user for the command that runs, which asks with `prompt`: a point as "x,y[,z] [view]", an empty
    // line for a reset, or "end". `complaint` is what was wrong with the line before, else empty. Nothing when nobody
    // answers.
    virtual std::optional<std::string> commandLine([[maybe_unused]] std::string_view prompt,
                                                   [[maybe_unused]] std::string_view complaint) {
        return std::nullopt;
    }
    // A name or pattern of the user, the number of a remembered name, or an empty line for what is suggested. For a
    // list: a name or pattern to add, "-2" to take out the second member, or an empty line when it is complete. Nothing
    // when the dialog is cancelled or nobody answers.
    virtual std::optional<std::string> askFile([[maybe_unused]] const FileQuestion& question) { return std::nullopt; }
    // Whether the user agrees, to a question in one sentence.
    virtual bool confirm([[maybe_unused]] std::string_view question) { return false; }
    // Shows one of the dialogs that are open without being modal, and takes one answer to it; one that nobody answers
    // is closed. False when none is open.
    virtual bool serveOpenDialog() { return false; }
    // Gives a line of the user to the dialogs that are open without being modal; false when it fits none of them.
    virtual bool answerOpenDialog([[maybe_unused]] std::string_view line) { return false; }
};

}  // namespace host
