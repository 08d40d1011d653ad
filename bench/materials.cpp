// The application materials as a user runs it: lists of 1,000, 10,000 and 100,000 items from their text file to the
// PostScript file of their forms. CPU time and peak memory are those of the process; both should grow in a straight
// line.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <string>

namespace {

namespace fs = std::filesystem;

constexpr int itemsOfGroup = 40;

void writeList(const fs::path& file, int64_t items) {
    std::mt19937 random(1);
    std::ofstream out(file);
    out << "TITLE \"A list\"\nSUM GROUPS\nSUM ALL\nSORT mark\n";
    for (int64_t i = 0; i < items; ++i) {
        if (i % itemsOfGroup == 0) out << "GROUP \"Group " << i / itemsOfGroup + 1 << "\"\n";
        out << "ITEM " << i / 100 << '.' << i % 100 << "; Item " << i << " of the list; DN " << 50 * (random() % 8 + 1)
            << "; " << random() % 90 + 1 << "; pc; =1.5*" << random() % 999 + 1 << '\n';
    }
}

// Runs mchost; what it used, or nothing when it failed.
bool run(const std::string& list, const std::string& out, rusage& used) {
    const pid_t child = fork();
    if (child == 0) {
        const int nowhere = open("/dev/null", O_WRONLY);
        dup2(nowhere, STDOUT_FILENO);
        const std::string mchost = fs::read_symlink("/proc/self/exe").parent_path() / "mchost";
        execl(mchost.c_str(), "mchost", "materials", list.c_str(), "--out", out.c_str(), "--overwrite", nullptr);
        _exit(127);
    }
    int status = 0;
    return child > 0 && wait4(child, &status, 0, &used) == child && status == 0;
}

double seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

void materials(benchmark::State& state) {
    const fs::path folder = fs::temp_directory_path() / ("bench_materials" + std::to_string(getpid()));
    fs::create_directories(folder);
    const std::string list = folder / "list.txt", out = folder / "list.ps";
    writeList(list, state.range(0));
    long peak = 0;
    for (auto _ : state) {
        rusage used{};
        if (!run(list, out, used)) {
            state.SkipWithError("mchost failed");
            break;
        }
        state.SetIterationTime(seconds(used.ru_utime) + seconds(used.ru_stime));
        peak = used.ru_maxrss;
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.counters["peak_MB"] = static_cast<double>(peak) / 1024;
    fs::remove_all(folder);
}
BENCHMARK(materials)->Arg(1000)->Arg(10000)->Arg(100000)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
