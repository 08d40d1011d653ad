// One process of a run: what it prints, how long it takes, how it ends.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <string>
#include <vector>

#include "job_log.h"

namespace batch {

class Process {
  public:
    using Clock = std::chrono::steady_clock;

    // Starts this very program with other arguments, in a process group of its own that ends with this process. Throws
    // std::system_error.
    Process(std::string drawing, const std::vector<std::string>& arguments);
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    const std::string& drawing() const { return drawing_; }
    int output() const { return output_; }  // to be polled
    // Takes what can be read at once. False at the end of the output.
    bool read();
    // Ends it when its time is over: first by asking, then for good.
    void keepTo(double limit);
    void stop();
    double seconds() const { return std::chrono::duration<double>(Clock::now() - begin_).count(); }
    // Whether it has ended; its outcome then.
    bool hasEnded(Outcome& outcome, const std::vector<int>& goodStatuses);

  private:
    void kill(int signal) const;

    const std::string drawing_;
    pid_t pid_ = -1;
    int output_ = -1;
    Clock::time_point begin_ = Clock::now(), asked_{};
    bool overTime_ = false;
    std::string said_;
};

}  // namespace batch
