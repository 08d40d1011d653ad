// A host session: the running applications, whose turn it is, variables, messages and time. One session at a time in a
// process; it begins with the constructor and ends with the destructor, which ends all applications and closes the
// design file.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "mchost/mdl/types.h"
#include "mchost/session/front_end.h"
#include "mchost/session/keyin.h"

namespace host {

struct SessionOptions {
    std::unique_ptr<FrontEnd> frontEnd;  // null: lines to the standard streams, and nobody answers
    std::vector<std::pair<std::string, std::string>> variables;  // configuration variables, defined at user level
    // Carries out a key-in to the host when control is back in the host; false for one that isn't its own, which stays
    // in the queue. None: all stay.
    std::function<bool(const KeyIn&)> carryOut = {};
};

// Makes the front end of a session that is begun without one; told by the room of front ends, which lies above.
using FrontEndMaker = std::unique_ptr<FrontEnd> (*)();
void setDefaultFrontEnd(FrontEndMaker make);

class Session {
  public:
    using MainFunction = int (*)(int argc, char** argv);

    explicit Session(SessionOptions options = {});
    ~Session();  // as finish
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    static Session* current();  // null when there is none

    // Starts an application that lies in this process: gives it a descriptor and a process number and runs `main` with
    // argv[0] = argv0 (the task name when empty), argv[1] = listName and the further arguments. The descriptor, also
    // when the application has ended itself by the time that `main` is over. What `main` returns goes to exitStatus;
    // the application stays.
    MdlDesc* startApplication(std::string_view taskName, MainFunction main, std::string_view listName = "USER",
                              const std::vector<std::string>& arguments = {}, std::string_view argv0 = {});
    // Loads a shared object and starts its `main`, with the object's full path as argv[0]. Null, with one line in the
    // message centre, when it can't be loaded.
    MdlDesc* loadApplication(const std::string& path, std::string_view taskName, std::string_view listName = "USER",
                             const std::vector<std::string>& arguments = {});
    // Ends an application, or, while a call into it hasn't come back, as soon as it has. Its process number is never
    // given again.
    void endApplication(MdlDesc* desc);
    // Ends all applications and stores and closes the design file; the session can still show messages.
    void finish();
    // The first non-zero value that a main function or mdlSystem_exit left behind, or 1 when a finished command
    // couldn't be stored or a failure was noted; 0 when all went well.
    int exitStatus() const;

    // The front end; never null.
    FrontEnd& frontEnd();

    // Turns the clock by hand: from the first call on time stands still between calls. Timers that fall due run.
    void advanceTicks(int32_t ticks);
    // Runs the timers that are due by now; whether there were any.
    bool runDueTimers();
    // Nothing when no timer is set.
    std::optional<std::chrono::milliseconds> timeToNextTimer() const;

    struct State;
    State& state();

  private:
    std::unique_ptr<State> state_;
};

// A call of the host into an application: makes it the current one for as long as this stands; null keeps the one that
// is current. With the end of the outermost call the command is finished: applications that asked for it are ended, and
// what was changed in the design file is stored.
class ApplicationScope {
  public:
    explicit ApplicationScope(MdlDesc* desc);
    ~ApplicationScope();
    ApplicationScope(const ApplicationScope&) = delete;
    ApplicationScope& operator=(const ApplicationScope&) = delete;

  private:
    MdlDesc* before_;
    MdlDesc* entered_;
};

// Full path of the module that the application was loaded from; empty for one that lies in this process, and for null.
std::string modulePath(MdlDesc* desc);

// Something that the session was to keep isn't kept, or not where it should be: its exit status is a failure.
void markFailed();
// Has `observer` called each time that control is back in the host, before the finished command is stored, for as long
// as the session lasts.
void observeReturn(void (*observer)());
// Tells those observers; for the loop, which has control while an application waits in it.
void tellReturn();

// Calls the new-design-file functions of all applications: state 0 before the open file is closed, 1 when the new one
// is open.
void fireNewDesignFile(const char* name, int state);

}  // namespace host
