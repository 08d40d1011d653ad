// Texts by pattern: one against a pattern that is told with it, against one that was prepared, with one error, and the
// texts of a whole drawing. The first three against fnmatch, SQLite's LIKE and, with errors, TRE.
#include "mclib/design/text_search.h"

#include <benchmark/benchmark.h>
#include <fnmatch.h>
#include <sqlite3.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "bench/race.h"
#include "bench/silent.h"
#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/text.h"
#include "mchost/session/session.h"
#include "mclib/design/pattern.h"

#ifdef HAVE_TRE
#include <tre/tre.h>
#endif

namespace {

using mc::design::Pattern;

struct Language {
    const char *ours, *shell, *like, *regular;
};
constexpr Language patterns[] = {{"A*B?C", "A*B?C", "A%B_C", "A.*B.C"},
                                 {"*AB", "*AB", "%AB", ".*AB"},
                                 {"ROAD-###", "ROAD-[0-9][0-9][0-9]", "ROAD-1__", "ROAD-[0-9][0-9][0-9]"}};

// Texts of which half fit a pattern and half nearly do. There is one way only to fit.
class Texts {
  public:
    explicit Texts(int pattern) {
        std::mt19937 random(7);
        const auto run = [&] {
            std::string text;
            for (size_t length = random() % 10; length > 0; --length) text += "ADRO-123XY"[random() % 10];
            return text;
        };
        for (int i = 0; i < 64; ++i) {
            const std::string number = std::to_string(10 + random() % 90);
            const std::string fitting[] = {"A" + run() + "B1C", run() + "AB", "ROAD-1" + number};
            const std::string near[] = {"A" + run() + "B11", run() + "ADB", "ROAD-A" + number};
            const std::string& text = (i % 2 == 0 ? fitting : near)[pattern];
            texts_.emplace_back(text.begin(), text.end());
            texts_.back().resize(MCLIB_SEARCH_TEXT_SIZE);
            sizes_.push_back(text.size());
        }
    }
    // Calls `errorsOf`(text, its length) for all texts, many times; how many fit.
    template <class ErrorsOf>
    int fitting(ErrorsOf errorsOf) {
        int count = 0;
        for (int round = 0; round < rounds; ++round)
            for (size_t i = 0; i < texts_.size(); ++i) count += errorsOf(texts_[i].data(), sizes_[i]) == 0;
        return count;
    }
    double calls() const { return rounds * static_cast<double>(texts_.size()); }

  private:
    static constexpr int rounds = 800;
    std::vector<std::vector<char>> texts_;
    std::vector<size_t> sizes_;
};

template <class Peer, class Ours>
void compare(benchmark::State& state, Peer peer, Ours ours, bool sameResults = true) {
    Texts texts(static_cast<int>(state.range(0)));
    int peers = 0, found = 0;
    const RaceTimes times = race(
        state, [&] { peers = texts.fitting(peer); }, [&] { found = texts.fitting(ours); });
    state.counters["ours_ns"] = times.ours / texts.calls() * 1e9;
    state.counters["peer_ns"] = times.peer / texts.calls() * 1e9;
    if (sameResults && peers != found) state.SkipWithError("the two found different texts");
}

const Language& languageOf(const benchmark::State& state) {
    return patterns[state.range(0)];
}

auto shell(const Language& language, int flags) {
    return [&language, flags](const char* text, size_t) { return fnmatch(language.shell, text, flags); };
}
auto prepared(const Pattern& pattern, int maxErrors) {
    return [&pattern, maxErrors](const char* text, size_t size) { return pattern.errorsOf({text, size}, maxErrors); };
}

void oneShot(benchmark::State& state) {
    const Language& language = languageOf(state);
    compare(state, shell(language, FNM_CASEFOLD),
            [&](char* text, size_t) { return mclibSearch_checkString(text, language.ours); });
}
BENCHMARK(oneShot)->DenseRange(0, 2)->Iterations(50);

void preparedAgainstFnmatch(benchmark::State& state) {
    const Language& language = languageOf(state);
    const Pattern pattern(language.ours, false);
    compare(state, shell(language, 0), prepared(pattern, 0));
}
BENCHMARK(preparedAgainstFnmatch)->DenseRange(0, 2)->Iterations(50);

void preparedAgainstLike(benchmark::State& state) {
    const Language& language = languageOf(state);
    const Pattern pattern(language.ours, false);
    compare(
        state, [&](const char* text, size_t) { return sqlite3_strlike(language.like, text, 0); }, prepared(pattern, 0));
}
BENCHMARK(preparedAgainstLike)->DenseRange(0, 2)->Iterations(50);

#ifdef HAVE_TRE
void oneErrorAgainstTre(benchmark::State& state) {
    const Language& language = languageOf(state);
    const Pattern pattern(language.ours, false);
    regex_t compiled;
    tre_regcomp(&compiled, (std::string("^") + language.regular + "$").c_str(), REG_EXTENDED | REG_ICASE | REG_NOSUB);
    regaparams_t parameters;
    tre_regaparams_default(&parameters);
    parameters.max_cost = 1;
    compare(
        state,
        [&](const char* text, size_t) {
            regamatch_t match = {};
            return tre_regaexec(&compiled, text, &match, parameters, 0);
        },
        prepared(pattern, 1), false);  // the two count errors in different ways
    tre_regfree(&compiled);
}
BENCHMARK(oneErrorAgainstTre)->DenseRange(0, 2)->Iterations(5);
#endif

// ---- a drawing ----

constexpr int textCount = 1'000'000;

class Drawing {
  public:
    Drawing() {
        const auto file = std::filesystem::temp_directory_path() / ("search-" + std::to_string(getpid()) + ".mcd");
        mdlSystem_createDesignFile(file.c_str(), 0);
        mdlSystem_newDesignFile(file.c_str(), 0);
        std::filesystem::remove(file);
        scope_.emplace(session_.startApplication("search", [](int, char**) { return 0; }));
        std::mt19937 random(7);
        static MSElementBuffer element;
        for (int i = 0; i < textCount; ++i) {
            constexpr const char* beginnings[] = {"ROAD-", "PUMP STATION NORTH, INLET VALVE ",
                                                  "GATE VALVE DN200 PN16 OF CAST IRON, LINE ", "INLET VALVE OF PUMP "};
            const std::string text = beginnings[random() % 4] + std::to_string(random() % 2000);
            const Point3d origin{i % 1000 * 100.0, i / 1000 * 100.0, 0};
            mdlText_create(&element, nullptr, text.c_str(), &origin, nullptr, nullptr, nullptr, 0);
            if (mdlElement_add(&element) == 0) std::abort();
            starts_.push_back(all_.size());
            all_ += text;
        }
        starts_.push_back(all_.size());
    }
    // With errors or without.
    int hits(const Pattern& pattern, int maxErrors) const {
        int count = 0;
        for (size_t i = 0; i + 1 < starts_.size(); ++i) {
            const std::string_view text(&all_[starts_[i]], starts_[i + 1] - starts_[i]);
            count += pattern.errorsOf(text, maxErrors) <= maxErrors;
        }
        return count;
    }

  private:
    host::Session session_{{.frontEnd = std::make_unique<SilentFrontEnd>(), .variables = {}}};
    std::optional<host::ApplicationScope> scope_;  // the search is one command of an application
    std::string all_;
    std::vector<size_t> starts_;
};

struct Wanted {
    const char* pattern;
    int maxErrors;
};
constexpr Wanted wanted[] = {{"ROAD-###", 0}, {"*VALVE_###", 0}, {"*PUMP*VALVE_###", 2}};

void scan(benchmark::State& state) {
    const Wanted& texts = wanted[state.range(0)];
    static const Drawing drawing;
    SearchTextSpec spec = {};
    std::strcpy(spec.pattern, texts.pattern);
    spec.maxErrors = texts.maxErrors;
    spec.weight = spec.style = spec.color = -1;
    spec.minHeight = spec.maxHeight = -1;
    const Pattern pattern(spec.pattern, false);
    int bare = 0, found = 0;
    const auto count = [](int*, MSElementBuffer*, FilePos, int32_t, SearchTextSpec*, void* arg) {
        ++*static_cast<int*>(arg);
    };
    race(
        state, [&] { bare = drawing.hits(pattern, texts.maxErrors); },
        [&] {
            found = 0;
            mclibSearch_Tekst(&spec, count, &found, count, &found);
        });
    if (bare != found) state.SkipWithError("the two found different texts");
}
BENCHMARK(scan)->DenseRange(0, 2)->Iterations(5)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
