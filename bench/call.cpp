// A call by signature against a direct call through a pointer, from inside an application into another one.
#include <benchmark/benchmark.h>

#include "mchost/mdl/system.h"
#include "mchost/session/session.h"

namespace {

int32_t nothing() {
    return 1;
}

int32_t numbers(double a, double b) {
    return a < b;
}

int32_t mixed(const void* a, int32_t i, const void* b, const void* c) {
    return i + (a == b) + (b == c);
}

struct Applications {
    host::Session session;
    MdlDesc* caller = session.startApplication("caller", [](int, char**) { return 0; });
    MdlDesc* called = session.startApplication("called", [](int, char**) { return 0; });
    host::ApplicationScope turn{caller};
};

template <class Call>
void measure(benchmark::State& state, Call call) {
    const Applications applications;
    for (auto _ : state) benchmark::DoNotOptimize(call(applications.called));
}

template <class Function>
void* addressOf(Function* function) {
    return reinterpret_cast<void*>(function);
}

// The pointers are read each time, as a caller of a stored function does.
int32_t (*volatile direct)() = nothing;
int32_t (*volatile directNumbers)(double, double) = numbers;
int32_t (*volatile directMixed)(const void*, int32_t, const void*, const void*) = mixed;

void noneDirect(benchmark::State& state) {
    measure(state, [](MdlDesc*) { return direct(); });
}
void none(benchmark::State& state) {
    measure(state, [](MdlDesc* desc) { return dlmSystem_callAnyFunction("", desc, addressOf(nothing)); });
}
void twoDoublesDirect(benchmark::State& state) {
    measure(state, [](MdlDesc*) { return directNumbers(1.0, 2.0); });
}
void twoDoubles(benchmark::State& state) {
    measure(state, [](MdlDesc* desc) { return dlmSystem_callAnyFunction("DD", desc, addressOf(numbers), 1.0, 2.0); });
}
void mixedDirect(benchmark::State& state) {
    measure(state, [](MdlDesc* desc) { return directMixed(desc, 5, desc, nullptr); });
}
void mixedBySignature(benchmark::State& state) {
    measure(state, [](MdlDesc* desc) {
        return dlmSystem_callAnyFunction("PIPP", desc, addressOf(mixed), desc, 5, desc, static_cast<void*>(nullptr));
    });
}

}  // namespace

BENCHMARK(noneDirect)->Name("\"\"/direct");
BENCHMARK(none)->Name("\"\"/by signature");
BENCHMARK(twoDoublesDirect)->Name("DD/direct");
BENCHMARK(twoDoubles)->Name("DD/by signature");
BENCHMARK(mixedDirect)->Name("PIPP/direct");
BENCHMARK(mixedBySignature)->Name("PIPP/by signature");

BENCHMARK_MAIN();
