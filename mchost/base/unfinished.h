// Files and folders that must not outlive the process when a signal ends it.
#pragma once

#include <csignal>

namespace host {

// While this stands, a signal that ends the process removes the file or folder first: a file with what a database keeps
// beside it ("-wal", "-shm", "-journal"), a folder with the files in it. Otherwise the owner removes it, or gives it
// another name.
class Unfinished {
  public:
    explicit Unfinished(const char* path) noexcept;
    ~Unfinished();
    Unfinished(const Unfinished&) = delete;
    Unfinished& operator=(const Unfinished&) = delete;

  private:
    int row_;  // in the table; below 0 when that was full
};

// The process takes no signal while this stands: what is made under a name that isn't known before can be noted.
class SignalsHeld {
  public:
    SignalsHeld();
    ~SignalsHeld();
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;

  private:
    sigset_t before_;
};

// Removes a folder with the files in it; `folder` is a descriptor of it where there is one. May be called by a signal
// handler.
void removeFolder(const char* path, int folder = -1);

// Removes all that is unfinished, before the process ends at once.
void removeUnfinished() noexcept;

// For a program's start: signals that end the process remove what is unfinished, unless the one who started it has them
// ignored; and a file that grows beyond the limit of the process fails to be written instead of ending it.
void tidyUpAtSignals();

}  // namespace host
