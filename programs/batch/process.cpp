#include "process.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

namespace batch {

namespace {

constexpr size_t mostSaid = 4000;   // bytes of what a process printed last
constexpr double graceSeconds = 2;  // between asking it to end and ending it

[[noreturn]] void become(const std::vector<std::string>& arguments, int output, pid_t parent) {
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) _exit(127);  // it has ended in between
    const int nothing = open("/dev/null", O_RDONLY);
    dup2(nothing, STDIN_FILENO);
    dup2(output, STDOUT_FILENO);
    dup2(output, STDERR_FILENO);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    std::vector<char*> argv;
    for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    execv("/proc/self/exe", argv.data());
    _exit(127);
}

}  // namespace

Process::Process(std::string drawing, const std::vector<std::string>& arguments) : drawing_(std::move(drawing)) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) throw std::system_error(errno, std::generic_category(), "no pipe can be made");
    const pid_t parent = getpid();
    pid_ = fork();
    if (pid_ == 0) become(arguments, ends[1], parent);
    const int error = errno;
    close(ends[1]);
    output_ = ends[0];
    if (pid_ < 0) {
        close(output_);
        throw std::system_error(error, std::generic_category(), "no process can be started");
    }
    setpgid(pid_, pid_);  // whichever of the two comes first
    fcntl(output_, F_SETFL, O_NONBLOCK);
}

Process::~Process() {
    if (pid_ > 0) {
        kill(SIGKILL);
        waitpid(pid_, nullptr, 0);
    }
    close(output_);
}

bool Process::read() {
    std::array<char, 4096> part;
    for (;;) {
        const ssize_t count = ::read(output_, part.data(), part.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return count < 0 && errno == EAGAIN;
        said_.append(part.data(), static_cast<size_t>(count));
        if (said_.size() > 2 * mostSaid) said_.erase(0, said_.size() - mostSaid);
    }
}

void Process::kill(int signal) const {
    ::kill(-pid_, signal);
}

void Process::stop() {
    if (std::exchange(asked_, Clock::now()) == Clock::time_point{}) kill(SIGTERM);
}

void Process::keepTo(double limit) {
    const Clock::time_point never{};
    if (limit > 0 && asked_ == never && seconds() > limit) {
        overTime_ = true;
        stop();
    }
    if (asked_ != never && std::chrono::duration<double>(Clock::now() - asked_).count() > graceSeconds) kill(SIGKILL);
}

bool Process::hasEnded(Outcome& outcome, const std::vector<int>& goodStatuses) {
    int status = 0;
    if (waitpid(pid_, &status, WNOHANG) != pid_) return false;
    kill(SIGKILL);  // what it started and left behind
    pid_ = -1;
    read();
    if (said_.size() > mostSaid) said_.erase(0, said_.size() - mostSaid);
    outcome = {.good = false, .status = "good", .seconds = seconds(), .said = said_};
    const int exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    outcome.good = exitStatus == 0 || std::ranges::find(goodStatuses, exitStatus) != goodStatuses.end();
    if (outcome.good) return true;
    outcome.status = overTime_         ? "time limit"
                     : exitStatus >= 0 ? "status " + std::to_string(exitStatus)
                                       : "signal " + std::to_string(WTERMSIG(status));
    return true;
}

}  // namespace batch
