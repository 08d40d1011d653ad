#include "batch.h"

#include <poll.h>
#include <signal.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <list>
#include <string_view>
#include <system_error>

#include "job_log.h"
#include "process.h"

namespace batch {

namespace {

constexpr std::string_view drawingMark = "{}", nameMark = "{name}";

volatile sig_atomic_t stopped = 0;

void tell(const std::string& line) {
    std::fprintf(stderr, "mchost: %s\n", line.c_str());
}

// ---- command lines ----

bool replace(std::string& text, std::string_view mark, const std::string& value) {
    bool any = false;
    for (size_t at = text.find(mark); at != text.npos; at = text.find(mark, at + value.size())) {
        text.replace(at, mark.size(), value);
        any = true;
    }
    return any;
}

std::vector<std::string> commandFor(const Order& order, const std::string& drawing) {
    std::vector<std::string> arguments = {"mchost"};
    std::vector<std::string> command = order.command;
    bool isNamed = false;
    for (std::string& word : command) {
        // The name goes first: it may have braces in it.
        isNamed = replace(word, nameMark, std::filesystem::path(drawing).stem()) || isNamed;
        isNamed = replace(word, drawingMark, drawing) || isNamed;
    }
    arguments.insert(arguments.end(), order.hostArguments.begin(), order.hostArguments.end());
    if (!isNamed) arguments.insert(arguments.end(), {"--open", drawing});
    arguments.insert(arguments.end(), command.begin(), command.end());
    return arguments;
}

std::string shownCommand(const Order& order) {
    std::string shown;
    for (const auto* words : {&order.hostArguments, &order.command})
        for (const std::string& word : *words) shown += (shown.empty() ? "" : " ") + word;
    return shown;
}

// ---- what is told ----

std::string_view lastLine(std::string_view text) {
    text = text.substr(0, text.find_last_not_of(" \t\r\n") + 1);
    return text.substr(text.find_last_of("\r\n") + 1);
}

struct Totals {
    size_t good = 0, failed = 0;
    double seconds = 0;
};

void tellOf(const std::string& drawing, const Outcome& outcome) {
    std::printf("%-11s %8.2f s  %s", outcome.status.c_str(), outcome.seconds, drawing.c_str());
    const std::string_view line = lastLine(outcome.said);
    if (!line.empty()) std::printf("  %.*s", static_cast<int>(line.size()), line.data());
    std::printf("\n");
    std::fflush(stdout);
}

// ---- the run ----

class Run {
  public:
    Run(const Order& order, JobLog& log, std::vector<std::string> drawings)
        : order_(order), log_(log), waiting_(std::move(drawings)) {}

    // False when the log can't be written any more; nothing is begun then.
    bool work() {
        bool kept = true;
        while (true) {
            if (!stopped && kept) begin();
            if (running_.empty()) return kept;
            if (stopped || !kept)
                for (Process& process : running_) process.stop();
            wait();
            kept = collect() && kept;
        }
    }
    size_t left() const { return waiting_.size() - next_; }
    const Totals& totals() const { return totals_; }

  private:
    void begin() {
        while (running_.size() < static_cast<size_t>(order_.jobs) && next_ < waiting_.size()) {
            running_.emplace_back(waiting_[next_], commandFor(order_, waiting_[next_]));
            ++next_;
        }
    }
    // Until something is printed or ends, or it is time to look at the clock.
    void wait() {
        constexpr int tick = 50;  // milliseconds
        std::vector<pollfd> outputs;
        for (const Process& process : running_) outputs.push_back({process.output(), POLLIN, 0});
        poll(outputs.data(), outputs.size(), tick);
        bool ended = false;
        for (Process& process : running_) {
            ended = !process.read() || ended;
            process.keepTo(order_.limit);
        }
        if (ended) poll(nullptr, 0, 1);  // the output ends a moment before its process
    }
    bool collect() {
        bool kept = true;
        for (auto process = running_.begin(); process != running_.end();) {
            Outcome outcome;
            if (!process->hasEnded(outcome, order_.good)) {
                ++process;
                continue;
            }
            if (!stopped || outcome.good) kept = keep(process->drawing(), outcome) && kept;
            process = running_.erase(process);
        }
        return kept;
    }
    bool keep(const std::string& drawing, const Outcome& outcome) {
        ++(outcome.good ? totals_.good : totals_.failed);
        totals_.seconds += outcome.seconds;
        tellOf(drawing, outcome);
        if (log_.add(drawing, outcome)) return true;
        tell(order_.log + ": the log can't be written: " + std::strerror(errno) + "; the run is stopped");
        return false;
    }

    const Order& order_;
    JobLog& log_;
    const std::vector<std::string> waiting_;
    size_t next_ = 0;
    std::list<Process> running_;
    Totals totals_;
};

void stopAtSignals() {
    struct sigaction action = {};
    action.sa_handler = [](int) { stopped = 1; };
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaction(signal, &action, nullptr);
}

std::vector<std::string> drawingsToDo(const Order& order, const JobLog& log) {
    std::vector<std::string> left;
    std::ranges::copy_if(order.drawings, std::back_inserter(left), [&](const std::string& drawing) {
        const auto found = log.done().find(drawing);
        return found == log.done().end() || (order.retry && !found->second);
    });
    return left;
}

}  // namespace

int run(const Order& order) {
    enum { allGood = 0, someFailed = 1, wrong = 2 };
    JobLog log(order.log);
    const std::string command = shownCommand(order);
    std::string why;
    if (!log.read(command, why)) return tell(order.log + ": " + why + "; give another one with --log"), wrong;
    if (log.exists() && !order.resume && !order.retry)
        return tell(order.log +
                    ": there is a log of an earlier run; --resume goes on with it, --retry also does again "
                    "what failed, and --log names another one"),
               wrong;
    if (!log.open(command)) return tell(order.log + ": the log can't be written: " + std::strerror(errno)), wrong;
    std::vector<std::string> drawings = drawingsToDo(order, log);
    const size_t passed = order.drawings.size() - drawings.size();
    stopAtSignals();
    Run run(order, log, std::move(drawings));
    const bool kept = run.work();
    const Totals& totals = run.totals();
    std::printf("%zu good, %zu failed", totals.good, totals.failed);
    if (passed > 0) std::printf(", %zu done before", passed);
    if (run.left() > 0) std::printf(", %zu left, which --resume does", run.left());
    std::printf("; %.1f s of work, told in %s\n", totals.seconds, order.log.c_str());
    const bool told = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
    return kept && !stopped && totals.failed == 0 && told ? allGood : someFailed;
}

}  // namespace batch
