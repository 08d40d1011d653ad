// Finding the block of the calling application with 49 of them running: every call of the library starts with it.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "bench/silent.h"
#include "mchost/session/session.h"
#include "mclib/frame/main.h"

namespace {

constexpr int applicationCount = 49;

int registerApplication(int argc, char** argv) {
    return mclibMain_initMcLib("bench", argc, argv);
}

struct Applications {
    Applications() : session(options()) {
        for (int i = 0; i < applicationCount; ++i)
            descs.push_back(session.startApplication("bench" + std::to_string(i), registerApplication));
    }
    static host::SessionOptions options() {
        return {.frontEnd = std::make_unique<SilentFrontEnd>(), .variables = {{"MC_DIR", "/usr/share/"}}};
    }
    host::Session session;
    std::vector<MdlDesc*> descs;
};

void globalDataOf(benchmark::State& state) {
    static Applications applications;
    host::ApplicationScope scope(applications.descs[static_cast<size_t>(state.range(0))]);
    if (!mclibMain_getGlobalDataP()) state.SkipWithError("the application isn't registered");
    for (auto _ : state) benchmark::DoNotOptimize(mclibMain_getGlobalDataP());
}
BENCHMARK(globalDataOf)->ArgName("application")->Arg(0)->Arg(applicationCount - 1);

}  // namespace

BENCHMARK_MAIN();
