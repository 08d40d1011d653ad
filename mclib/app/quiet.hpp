// The library tells on the console what its evaluators stumble over, in a line without file and place. An application
// that tells it better by itself keeps the console quiet meanwhile.
#pragma once

#include <fcntl.h>
#include <unistd.h>
#include <cstdio>

namespace mcapp {

class QuietConsole {
  public:
    QuietConsole() {
        std::fflush(stdout);
        const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
        kept_ = nowhere < 0 ? -1 : fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
        if (kept_ >= 0) dup2(nowhere, STDOUT_FILENO);
        if (nowhere >= 0) close(nowhere);
    }
    ~QuietConsole() {
        if (kept_ < 0) return;
        std::fflush(stdout);
        dup2(kept_, STDOUT_FILENO);
        close(kept_);
    }
    QuietConsole(const QuietConsole&) = delete;
    QuietConsole& operator=(const QuietConsole&) = delete;

  private:
    int kept_;
};

}  // namespace mcapp
