// faults: runs every program of the family again and again, each time with another call failing, and judges what it
// says and leaves.
//
//   faults BUILD PROJECT N          N runs of each case, spread over the kinds of calls and their places
//   faults BUILD PROJECT CASE FAULT one run, KIND:MODE:PLACE as a failing one was told; its folder stays
#include <sys/personality.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

#include "tests/faults/cases.h"
#include "tests/faults/judge.h"
#include "tests/faults/run.h"

namespace fs = std::filesystem;

namespace {

// Of the runs of a case, how many tenths go to a kind of fault. What a kind hasn't places for goes to none.
struct Share {
    const char *kind, *mode;
    int tenths;
};
constexpr Share shares[] = {
    {"alloc", "once", 30}, {"alloc", "on", 10},   {"write", "once", 8},  {"write", "on", 6},
    {"short", "once", 4},  {"open", "once", 8},   {"open", "on", 3},     {"close", "once", 5},
    {"read", "once", 5},   {"sync", "once", 3},   {"rename", "once", 3}, {"resize", "once", 2},
    {"map", "once", 3},    {"folder", "once", 2}, {"write", "term", 5},  {"open", "term", 3},
};

// Places spread evenly from the first call to the last.
std::vector<Fault> faultsFor(const Counts& counts, int runs) {
    std::vector<Fault> faults;
    for (const Share& share : shares) {
        const auto found = counts.find(share.kind);
        const long calls = found == counts.end() ? 0 : found->second;
        const long wanted = std::min<long>(calls, std::max(1, runs * share.tenths / 100));
        std::set<long> places;
        for (long i = 0; i < wanted; ++i) places.insert(1 + (2 * i + 1) * calls / (2 * wanted));
        for (const long place : places) faults.push_back({share.kind, std::min(place, calls), share.mode});
    }
    return faults;
}

class Judged {
  public:
    explicit Judged(const Place& place, const fs::path& folder) : place_(place), folder_(folder) {}

    // All places of a case, on all processors. The number of runs that ended as they mustn't.
    int judge(const Case& run, int runs);
    int judgeOne(const Case& run, const Fault& fault);

  private:
    // A good run in that folder: where files tell where they lie, those of other folders are other ones.
    Result runGood(const Case& run, const fs::path& folder, Files& good, Counts* counts) const;
    bool begin(const Case& run);
    std::string runOnce(const Case& run, const Fault& fault, const fs::path& folder, const Files& good,
                        Result& result) const;
    void tell(const Case& run, const Fault& fault, const std::string& what, const Result& result);

    Place place_;
    fs::path folder_;
    Files before_;
    Counts counts_;
    std::mutex telling_;
};

Result Judged::runGood(const Case& run, const fs::path& folder, Files& good, Counts* counts) const {
    fs::remove_all(folder);
    fs::copy(folder_ / "template", folder, fs::copy_options::recursive);
    Result result = runWith(run, place_, folder, {}, counts);
    good = filesIn(folder);
    return result;
}

// What is there before each run, and how many calls a good one makes.
bool Judged::begin(const Case& run) {
    prepare(run, place_, folder_ / "template");
    before_ = filesIn(folder_ / "template");
    counts_.clear();
    Files good;
    const Result result = runGood(run, folder_ / "runa", good, &counts_);
    if (result.status == 0) return true;
    std::cerr << run.name << ": the good run ends with " << result.status << "\n" << result.messages;
    return false;
}

std::string Judged::runOnce(const Case& run, const Fault& fault, const fs::path& folder, const Files& good,
                            Result& result) const {
    fs::remove_all(folder);
    fs::copy(folder_ / "template", folder, fs::copy_options::recursive);
    result = runWith(run, place_, folder, fault);
    return faultIn(run, result, fault, before_, good, filesIn(folder));
}

void Judged::tell(const Case& run, const Fault& fault, const std::string& what, const Result& result) {
    const std::lock_guard lock(telling_);
    std::cout << run.name << " " << fault.text() << "  " << what << "  "
              << result.messages.substr(0, result.messages.find('\n')).substr(0, 100) << std::endl;
}

int Judged::judge(const Case& run, int runs) {
    if (!begin(run)) return 1;
    const std::vector<Fault> faults = faultsFor(counts_, runs);
    std::atomic<size_t> next = 0;
    std::atomic<int> bad = 0;
    const auto work = [&](int number) {
        const fs::path folder = folder_ / (std::string("run") + static_cast<char>('a' + number));
        Files good;
        runGood(run, folder, good, nullptr);
        for (size_t i = next++; i < faults.size(); i = next++) {
            Result result;
            const std::string what = runOnce(run, faults[i], folder, good, result);
            if (!what.empty()) ++bad, tell(run, faults[i], what, result);
        }
    };
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < std::clamp(std::thread::hardware_concurrency(), 1U, 26U); ++i)
        threads.emplace_back(work, static_cast<int>(i));
    for (std::thread& thread : threads) thread.join();
    std::cout << run.name << ": " << faults.size() << " runs, " << bad << " bad" << std::endl;
    return bad;
}

int Judged::judgeOne(const Case& run, const Fault& fault) {
    if (!begin(run)) return 1;
    Result result;
    Files good;
    runGood(run, folder_ / "runa", good, nullptr);
    const std::string what = runOnce(run, fault, folder_ / "runa", good, result);
    std::cout << result.messages << "status " << result.status << ", in " << (folder_ / "runa") << "\n"
              << (what.empty() ? "as it must be" : what) << "\n";
    return what.empty() ? 0 : 1;
}

Fault faultNamed(const std::string& text) {
    const size_t first = text.find(':'), second = text.find(':', first + 1);
    return {text.substr(0, first), std::atol(text.substr(second + 1).c_str()),
            text.substr(first + 1, second - first - 1)};
}

int usage() {
    std::cerr << "usage: faults BUILD PROJECT N [CASE]\n       faults BUILD PROJECT CASE KIND:MODE:PLACE\n";
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 4) return usage();
    personality(ADDR_NO_RANDOMIZE);  // the same calls in each run; for the programs that are started
    std::string pattern = (fs::temp_directory_path() / "mcfaults.XXXXXX").string();
    const fs::path folder = mkdtemp(pattern.data());
    const fs::path build = fs::absolute(argv[1]), project = fs::absolute(argv[2]);
    Judged judged({build, project, build / "lib/faults.so"}, folder);
    const int runs = std::atoi(argv[3]);
    const std::string only = runs == 0 ? argv[3] : argc > 4 ? argv[4] : "";
    int bad = 0, known = 0;
    for (const Case& run : cases()) {
        if (!only.empty() && run.name != only) continue;
        ++known;
        bad += runs > 0 ? judged.judge(run, runs) : argc > 4 ? judged.judgeOne(run, faultNamed(argv[4])) : usage();
    }
    if (known == 0) return usage();
    if (runs > 0) fs::remove_all(folder);
    return bad == 0 ? 0 : 1;
}
