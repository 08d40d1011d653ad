// The log of a run: a text file with a line for each drawing, written when it is done. A run that was killed has the
// lines of what it did; the next one goes on behind them.
#pragma once

#include <cstdio>
#include <map>
#include <memory>
#include <string>

namespace batch {

// How one drawing ended.
struct Outcome {
    bool good;
    std::string status;  // "good", "status 2", "signal 11", "time limit"
    double seconds;
    std::string said;  // the end of what it printed
};

class JobLog {
  public:
    // Reads what the file has, when it is there.
    explicit JobLog(std::string file) : file_(std::move(file)) {}

    // False when the file can't be read or isn't the log of such a command, with the reason in `why`.
    bool read(const std::string& command, std::string& why);
    bool exists() const { return exists_; }
    // Whether each drawing that it has ended well.
    const std::map<std::string, bool>& done() const { return done_; }

    // Ready to be written; a new one begins with the command. False, with errno, when it can't be.
    bool open(const std::string& command);
    bool add(const std::string& drawing, const Outcome& outcome);

  private:
    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    const std::string file_;
    bool exists_ = false;
    size_t wholeSize_ = 0;  // without a line that was begun when its run was killed
    std::map<std::string, bool> done_;
    std::unique_ptr<std::FILE, Close> out_;
};

}  // namespace batch
