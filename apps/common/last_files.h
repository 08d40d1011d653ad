// The files that an application's user worked with last. They stand in the application's own preference file, in the
// folder of the host's (the configuration variable MS_USERPREF), each kind of file in a record of its own.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace app {

class LastFiles {
  public:
    // The preference file has the name that the configuration variable `variable` tells, or `defaultName`. It is
    // opened, and made, when it is needed; without MS_USERPREF there is none, and nothing is remembered.
    LastFiles(const char* variable, const char* defaultName) : variable_(variable), defaultName_(defaultName) {}
    ~LastFiles();
    LastFiles(const LastFiles&) = delete;
    LastFiles& operator=(const LastFiles&) = delete;

    // The file that was remembered last in the record `id`. Nothing after a message.
    std::optional<std::string> last(int32_t id);
    // Asks for a file to read, and offers the remembered ones. Nothing when nobody answers.
    std::optional<std::string> ask(int32_t id, const char* filter, const char* title);
    // A name whose full form has more than 255 characters isn't remembered.
    void remember(int32_t id, const std::string& name);

  private:
    bool open();

    const char *variable_, *defaultName_;
};

}  // namespace app
