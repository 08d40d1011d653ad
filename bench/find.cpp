// The application find as a user runs it, over a folder of 1,000 drawings of 1,000 texts, against a process that opens
// them in the same host and does the bare work: each text held against the prepared pattern. CPU time of the processes.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "bench/silent.h"
#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/files.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/text.h"
#include "mchost/session/session.h"
#include "mclib/design/pattern.h"

namespace {

namespace fs = std::filesystem;

constexpr int drawingCount = 1000, textCount = 1000;
constexpr const char* pattern = "*VALVE_1##";

host::Session newSession() {
    return host::Session({.frontEnd = std::make_unique<SilentFrontEnd>(), .variables = {}});
}

// Runs the body in a process; the CPU seconds that it used, or none when it failed.
template <class Body>
double secondsOf(Body body) {
    const pid_t child = fork();
    if (child == 0) _exit(body());
    rusage used{};
    int status = 0;
    if (child < 0 || wait4(child, &status, 0, &used) != child || status != 0) return 0;
    const auto seconds = [](const timeval& time) { return time.tv_sec + time.tv_usec * 1e-6; };
    return seconds(used.ru_utime) + seconds(used.ru_stime);
}

int makeDrawings(const fs::path& folder) {
    const host::Session session = newSession();
    std::mt19937 random(7);
    for (int drawing = 0; drawing < drawingCount; ++drawing) {
        const std::string name = folder / (std::to_string(drawing) + ".mcd");
        if (mdlSystem_createDesignFile(name.c_str(), 0) != 0 || mdlSystem_newDesignFile(name.c_str(), 0) != 0) return 1;
        for (int i = 0; i < textCount; ++i) {
            constexpr const char* beginnings[] = {"ROAD-", "INLET VALVE ", "GATE VALVE DN200 PN16, LINE ", "PUMP "};
            const std::string text = beginnings[random() % 4] + std::to_string(random() % 2000);
            const Point3d origin{i % 100 * 100.0, i / 100 * 100.0, 0};
            if (mdlText_create(dgnBufP, nullptr, text.c_str(), &origin, nullptr, nullptr, nullptr, 0) != 0 ||
                mdlElement_add(dgnBufP) == 0)
                return 1;
        }
    }
    return mdlSystem_closeDesignFile();
}

int bareLoop(const std::vector<std::string>& names) {
    const host::Session session = newSession();
    const mc::design::Pattern prepared(pattern, false);
    int found = 0;
    for (const std::string& name : names) {
        ModelRef* model = nullptr;
        if (mdlWorkDgn_openFile(&model, name.c_str()) != MDL_SUCCESS) return 1;
        for (const FilePos position : mdl::Scan(model)) {
            char text[MDL_TEXT_CHARACTERS + 1];
            if (mdlElement_read(dgnBufP, model, position) == 0 || mdlText_extractString(text, dgnBufP) != MDL_SUCCESS)
                return 1;
            found += prepared.errorsOf(text, 0) == 0;
        }
        if (mdlWorkDgn_closeFile(model) != MDL_SUCCESS) return 1;
    }
    return found > 0 ? 0 : 1;
}

int runFind(const fs::path& folder) {
    const int nowhere = open("/dev/null", O_WRONLY);
    dup2(nowhere, STDOUT_FILENO);
    const std::string mchost = fs::read_symlink("/proc/self/exe").parent_path() / "mchost";
    execl(mchost.c_str(), "mchost", "find", pattern, folder.c_str(), nullptr);
    return 127;
}

void find(benchmark::State& state) {
    const fs::path folder = fs::temp_directory_path() / ("bench_find" + std::to_string(getpid()));
    fs::create_directories(folder);
    if (secondsOf([&] { return makeDrawings(folder); }) == 0) state.SkipWithError("the drawings can't be made");
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path());
    double peer = std::numeric_limits<double>::max(), ours = peer;
    for (auto _ : state) {
        const double bare = secondsOf([&] { return bareLoop(names); });
        const double whole = secondsOf([&] { return runFind(folder); });
        if (bare == 0 || whole == 0) {
            state.SkipWithError("one of the two failed");
            break;
        }
        peer = std::min(peer, bare);
        ours = std::min(ours, whole);
    }
    state.counters["peer_ms"] = peer * 1e3;
    state.counters["ours_ms"] = ours * 1e3;
    state.counters["times_its_time"] = ours / peer;
    fs::remove_all(folder);
}
BENCHMARK(find)->Iterations(3)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
