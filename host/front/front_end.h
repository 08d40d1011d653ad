// What a session needs of the place where people meet it. A front end only shows state and feeds events; everything it
// shows is UTF-8.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace host {

class Dialog;  // host/dialog/dialog.h

class FrontEnd {
  public:
    virtual ~FrontEnd() = default;
    virtual void console(std::string_view text) = 0;
    virtual void messageField(int field, std::string_view text) = 0;
    virtual void messageCenter(int priority, std::string_view brief, std::string_view details) = 0;
    // Feeds events to an open modal dialog until it has ended. False when nobody can answer.
    virtual bool runModal(Dialog& dialog) = 0;
    // A line of the user for the command that runs, which asks with `prompt`: a point as "x,y[,z] [view]", an empty
    // line for a reset, or "end". `complaint` is what was wrong with the line before, else empty. Nothing when nobody
    // answers.
    virtual std::optional<std::string> commandLine([[maybe_unused]] std::string_view prompt,
                                                   [[maybe_unused]] std::string_view complaint) {
        return std::nullopt;
    }
    // Shows one of the dialogs that are open without being modal, and takes one answer to it; one that nobody answers
    // is closed. False when none is open.
    virtual bool serveOpenDialog() { return false; }
};

}  // namespace host
