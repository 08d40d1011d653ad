// Reading a file of numbers and words token by token, against fgets, strtok_r, strtol and strtod.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <random>
#include <string>

#include "bench/race.h"
#include "mclib/text/fii.h"

namespace {

constexpr size_t fileSize = 50'000'000;

// A text file of 50 MB in the temporary folder: each line has a whole number, a word, two numbers and a word.
class NumberFile {
  public:
    NumberFile() {
        std::mt19937 random(1);
        const char* words[] = {"line", "circle", "klotoide", "a", "station"};
        std::string text;
        char line[200];
        while (text.size() < fileSize) {
            const int n = std::snprintf(line, sizeof line, "%lu %s %.3f %.6f %s\n", random() % 1000000,
                                        words[random() % 5], static_cast<double>(random() % 100000000) / 1000,
                                        static_cast<double>(random()) / 1e5 - 20000, words[random() % 5]);
            text.append(line, static_cast<size_t>(n));
        }
        FILE* f = std::fopen(path.c_str(), "w");
        std::fwrite(text.data(), 1, text.size(), f);
        std::fclose(f);
    }
    ~NumberFile() { std::filesystem::remove(path); }

    const std::string path =
        (std::filesystem::temp_directory_path() / ("bench_fii_" + std::to_string(getpid()) + ".txt")).string();
};

// What was read, so that both readers can be held against each other.
struct Sum {
    long whole = 0;
    double real = 0;
    size_t letters = 0;
    bool operator==(const Sum&) const = default;
};

Sum readPlainly(const std::string& path) {
    Sum sum;
    FILE* f = std::fopen(path.c_str(), "r");
    char line[1024];
    while (std::fgets(line, sizeof line, f)) {
        char* rest = nullptr;
        sum.whole += std::strtol(strtok_r(line, " \t\n", &rest), nullptr, 10);
        sum.letters += std::strlen(strtok_r(nullptr, " \t\n", &rest));
        for (int i = 0; i < 2; ++i) sum.real += std::strtod(strtok_r(nullptr, " \t\n", &rest), nullptr);
        sum.letters += std::strlen(strtok_r(nullptr, " \t\n", &rest));
    }
    std::fclose(f);
    return sum;
}

Sum readWithFii(const std::string& path) {
    Sum sum;
    McFii fii;
    mclibFii_open(&fii, path.c_str(), "r");
    char word[256];
    while (mclibFii_readNewLine(&fii) == MCLIB_SUCCESS) {
        sum.whole += mclibFii_readLong(&fii, " ");
        sum.letters += std::strlen(mclibFii_readText(&fii, word));
        for (int i = 0; i < 2; ++i) sum.real += *mclibFii_readDoubleP(&fii, " ");
        sum.letters += std::strlen(mclibFii_readText(&fii, word));
    }
    mclibFii_close(&fii);
    return sum;
}

void readNumbersAndWords(benchmark::State& state) {
    const NumberFile file;
    Sum plain, fii;
    const RaceTimes best = race(
        state, [&] { plain = readPlainly(file.path); }, [&] { fii = readWithFii(file.path); });
    if (!(plain == fii)) state.SkipWithError("the readers differ");
    state.counters["MB_per_s"] = fileSize / best.ours * 1e-6;
}
BENCHMARK(readNumbersAndWords)->Iterations(5)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
