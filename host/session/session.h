// A host session: the running applications, whose turn it is, variables, messages and time. One session at a time in a
// process; it begins with the constructor and ends with the destructor, which ends all applications and closes the
// design file.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/front/front_end.h"
#include "host/mdl/types.h"

namespace host {

#define HOST_EXPORT __attribute__((visibility("default")))

struct SessionOptions {
    std::unique_ptr<FrontEnd> frontEnd;  // null: lines to the standard streams, and nobody answers
    std::vector<std::pair<std::string, std::string>> variables;  // configuration variables, defined at user level
};

class HOST_EXPORT Session {
  public:
    using MainFunction = int (*)(int argc, char** argv);

    explicit Session(SessionOptions options = {});
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    static Session* current();  // null when there is none

    // Starts an application that lies in this process: gives it a descriptor and a process number and runs `main` with
    // argv[0] = argv0 (the task name when empty), argv[1] = listName and the further arguments.
    MdlDesc* startApplication(std::string_view taskName, MainFunction main, std::string_view listName = "USER",
                              const std::vector<std::string>& arguments = {}, std::string_view argv0 = {});
    // Loads a shared object and starts its `main`. Null, with one line in the message centre, when it can't be loaded.
    MdlDesc* loadApplication(const std::string& path, std::string_view taskName, std::string_view listName = "USER",
                             const std::vector<std::string>& arguments = {});
    void endApplication(MdlDesc* desc);  // its process number is never given again
    int exitStatus() const;              // what main functions and mdlSystem_exit left behind; 0 when all went well

    // The front end; never null.
    FrontEnd& frontEnd();

    // Turns the clock by hand: from the first call on time stands still between calls. Timers that fall due run.
    void advanceTicks(int32_t ticks);

    struct State;
    State& state();

  private:
    std::unique_ptr<State> state_;
};

// Makes an application the current one for as long as this stands.
class HOST_EXPORT ApplicationScope {
  public:
    explicit ApplicationScope(MdlDesc* desc);
    ~ApplicationScope();
    ApplicationScope(const ApplicationScope&) = delete;
    ApplicationScope& operator=(const ApplicationScope&) = delete;

  private:
    MdlDesc* before_;
};

// Full path of the module that the application was loaded from; empty for one that lies in this process, and for null.
HOST_EXPORT std::string modulePath(MdlDesc* desc);

// Has `observer` called, as the current application, for each application that ends, while its code is still loaded: a
// room then lets go of what it keeps for it. Observers stay for the life of the process and are told once each.
HOST_EXPORT void observeApplicationEnd(void (*observer)(MdlDesc* desc));

}  // namespace host
