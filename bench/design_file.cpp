// A design file with 1,000,000 elements of 256 bytes against a plain SQLite table with the same bytes, ranges, types
// and levels, and against an R-tree of Boost in memory. Prints the ratios of one run: the least CPU time of all
// repetitions.
#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <unistd.h>

#include <algorithm>
#include <boost/geometry.hpp>
#include <boost/geometry/index/rtree.hpp>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "mchost/mdl/element.h"
#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/scan.h"

namespace {

namespace bg = boost::geometry;
namespace bgi = boost::geometry::index;
using Point2 = bg::model::point<double, 2, bg::cs::cartesian>;
using Box2 = bg::model::box<Point2>;
using BoostEntry = std::pair<Box2, FilePos>;
using BoostTree = bgi::rtree<BoostEntry, bgi::quadratic<16>>;

constexpr size_t elementCount = 1'000'000;
constexpr int pointCount = 9;
constexpr size_t elementSize = 256;
constexpr double side = 1e7;              // of the square that the elements lie in, UOR
constexpr double windowSide = side / 10;  // a window holds 1% of them
constexpr int windowCount = 16;

struct TestElement {
    alignas(8) std::byte bytes[elementSize];
    Range3d range;
    const MSElementBuffer* element() const { return reinterpret_cast<const MSElementBuffer*>(bytes); }
};

// Line strings of 9 points, each in a square of 2,000 UOR.
std::vector<TestElement> makeElements() {
    std::mt19937_64 random(20240229);
    std::uniform_real_distribution<double> place(0, side), step(0, 2000);
    std::vector<TestElement> elements(elementCount);
    static MSElementBuffer buffer;
    for (TestElement& e : elements) {
        const double x = place(random), y = place(random);
        Point3d points[pointCount];
        e.range = {{side * 2, side * 2, 0}, {0, 0, 0}};
        for (Point3d& p : points) {
            p = {x + step(random), y + step(random), 0};
            e.range.low = {std::min(e.range.low.x, p.x), std::min(e.range.low.y, p.y), 0};
            e.range.high = {std::max(e.range.high.x, p.x), std::max(e.range.high.y, p.y), 0};
        }
        mdlLineString_create(&buffer, nullptr, points, pointCount);
        buffer.head.level = 1 + static_cast<uint32_t>(random() % 8);
        if (mdlElement_bytes(&buffer) != elementSize) std::abort();
        std::memcpy(e.bytes, &buffer, elementSize);
    }
    return elements;
}

const std::vector<TestElement>& elements() {
    static const std::vector<TestElement> all = makeElements();
    return all;
}

std::vector<Range3d> makeWindows() {
    std::mt19937_64 random(4711);
    std::uniform_real_distribution<double> place(0, side - windowSide);
    std::vector<Range3d> windows;
    for (int i = 0; i < windowCount; ++i) {
        const double x = place(random), y = place(random);
        windows.push_back({{x, y, -1}, {x + windowSide, y + windowSide, 1}});
    }
    return windows;
}
const std::vector<Range3d> windows = makeWindows();

void require(bool good, const char* what) {
    if (good) return;
    std::fprintf(stderr, "design_file: %s failed\n", what);
    std::exit(1);
}

// ---- a folder for all files ----

std::string folder() {
    static const std::string made = [] {
        std::string pattern = (std::filesystem::temp_directory_path() / "bench-design-XXXXXX").string();
        require(mkdtemp(pattern.data()) != nullptr, "making a folder");
        return pattern;
    }();
    return made;
}
const std::string designName() {
    return folder() + "/design.mcd";
}
const std::string smallName() {
    return folder() + "/small.mcd";
}
const std::string plainName() {
    return folder() + "/plain.db";
}

void removeFile(const std::string& name) {
    for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(name + suffix);
}

// ---- the plain table ----

class Plain {
  public:
    Plain() {
        require(sqlite3_open(plainName().c_str(), &db_) == SQLITE_OK, "opening the plain table");
        run("PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL");
    }
    ~Plain() { sqlite3_close(db_); }
    void run(const char* sql) { require(sqlite3_exec(db_, sql, nullptr, nullptr, nullptr) == SQLITE_OK, sql); }
    sqlite3_stmt* prepare(const char* sql) {
        sqlite3_stmt* statement = nullptr;
        require(sqlite3_prepare_v2(db_, sql, -1, &statement, nullptr) == SQLITE_OK, sql);
        return statement;
    }

    void insertAll() {
        run("CREATE TABLE element(id INTEGER PRIMARY KEY,type INTEGER,level INTEGER,x1 REAL,y1 REAL,x2 REAL,y2 REAL,"
            "bytes BLOB); BEGIN");
        sqlite3_stmt* s = prepare("INSERT INTO element(type,level,x1,y1,x2,y2,bytes)VALUES(?,?,?,?,?,?,?)");
        for (const TestElement& e : elements()) {
            sqlite3_bind_int(s, 1, e.element()->head.type);
            sqlite3_bind_int(s, 2, static_cast<int>(e.element()->head.level));
            sqlite3_bind_double(s, 3, e.range.low.x);
            sqlite3_bind_double(s, 4, e.range.low.y);
            sqlite3_bind_double(s, 5, e.range.high.x);
            sqlite3_bind_double(s, 6, e.range.high.y);
            sqlite3_bind_blob(s, 7, e.bytes, elementSize, SQLITE_STATIC);
            require(sqlite3_step(s) == SQLITE_DONE, "inserting");
            sqlite3_reset(s);
        }
        sqlite3_finalize(s);
        run("COMMIT");
    }

    // Reads each element into a buffer, as mdlElement_read does.
    size_t readAll() {
        static MSElementBuffer buffer;
        sqlite3_stmt* s = prepare("SELECT bytes FROM element");
        size_t bytes = 0;
        while (sqlite3_step(s) == SQLITE_ROW) {
            const auto size = static_cast<size_t>(sqlite3_column_bytes(s, 0));
            std::memcpy(&buffer, sqlite3_column_blob(s, 0), size);
            benchmark::DoNotOptimize(buffer);
            bytes += size;
        }
        sqlite3_finalize(s);
        return bytes;
    }

    size_t find(const Range3d& window, std::vector<FilePos>& found) {
        found.clear();
        sqlite3_stmt* s = prepare("SELECT id FROM element WHERE x1<=? AND x2>=? AND y1<=? AND y2>=?");
        sqlite3_bind_double(s, 1, window.high.x);
        sqlite3_bind_double(s, 2, window.low.x);
        sqlite3_bind_double(s, 3, window.high.y);
        sqlite3_bind_double(s, 4, window.low.y);
        while (sqlite3_step(s) == SQLITE_ROW) found.push_back(static_cast<FilePos>(sqlite3_column_int64(s, 0)));
        sqlite3_finalize(s);
        return found.size();
    }

  private:
    sqlite3* db_ = nullptr;
};

void needPlainTable() {
    static const bool made = [] {
        removeFile(plainName());
        Plain().insertAll();
        return true;
    }();
    benchmark::DoNotOptimize(made);
}

// ---- the design file ----

void openNewFile(const std::string& name) {
    removeFile(name);
    require(mdlSystem_createDesignFile(name.c_str(), 0) == MDL_SUCCESS, "making a design file");
    require(mdlSystem_newDesignFile(name.c_str(), 0) == MDL_SUCCESS, "opening a design file");
}

void addAll() {
    for (const TestElement& e : elements()) require(mdlElement_add(e.element()) != 0, "adding");
}

// The design file with all elements is open behind this.
void needDesignFile() {
    static const bool made = [] {
        openNewFile(designName());
        addAll();
        require(mdlSystem_saveDesignFile() == MDL_SUCCESS, "storing");
        openNewFile(smallName());
        return true;
    }();
    benchmark::DoNotOptimize(made);
    if (mdlModelRef_getElementCount(nullptr) != elementCount) {
        require(mdlSystem_newDesignFile(designName().c_str(), 0) == MDL_SUCCESS, "opening");
    }
}

size_t scanAll(const Range3d* window, std::vector<FilePos>& buffer) {
    ScanCriteria* scan = mdlScanCriteria_create();
    if (window) mdlScanCriteria_setRangeTest(scan, window);
    auto words = static_cast<int32_t>(2 * buffer.size());
    require(mdlScanCriteria_scan(scan, buffer.data(), &words, nullptr) == MDL_SUCCESS, "a scan in one portion");
    mdlScanCriteria_free(&scan);
    return static_cast<size_t>(words / 2);
}

// ---- adding ----

void addPlain(benchmark::State& state) {
    elements();
    for (auto _ : state) {
        state.PauseTiming();
        removeFile(plainName());
        auto plain = std::make_unique<Plain>();
        state.ResumeTiming();
        plain->insertAll();
        state.PauseTiming();
        plain.reset();
        state.ResumeTiming();
    }
}

template <bool Store>
void addDesign(benchmark::State& state) {
    elements();
    for (auto _ : state) {
        state.PauseTiming();
        openNewFile(smallName());
        openNewFile(designName());
        state.ResumeTiming();
        addAll();
        if (Store) require(mdlSystem_saveDesignFile() == MDL_SUCCESS, "storing");
        state.PauseTiming();
        require(mdlSystem_newDesignFile(smallName().c_str(), 0) == MDL_SUCCESS, "closing");
        state.ResumeTiming();
    }
}

// ---- reading ----

void scanPlain(benchmark::State& state) {
    needPlainTable();
    Plain plain;
    for (auto _ : state) require(plain.readAll() == elementCount * elementSize, "reading all");
}

void scanDesign(benchmark::State& state) {
    needDesignFile();
    static MSElementBuffer buffer;
    for (auto _ : state) {
        FilePos portion[128];
        size_t bytes = 0;
        ScanCriteria* scan = mdlScanCriteria_create();
        for (int status = MDL_SCAN_MORE; status == MDL_SCAN_MORE;) {
            int32_t words = 2 * 128;
            status = mdlScanCriteria_scan(scan, portion, &words, nullptr);
            for (int32_t i = 0; i < words / 2; ++i) {
                bytes += mdlElement_read(&buffer, nullptr, portion[i]);
                benchmark::DoNotOptimize(buffer);
            }
        }
        mdlScanCriteria_free(&scan);
        require(bytes == elementCount * elementSize, "reading all");
    }
}

void openPlain(benchmark::State& state) {
    needPlainTable();
    for (auto _ : state) require(Plain().readAll() == elementCount * elementSize, "reading all");
}

void openDesign(benchmark::State& state) {
    needDesignFile();
    for (auto _ : state) {
        state.PauseTiming();
        require(mdlSystem_newDesignFile(smallName().c_str(), 0) == MDL_SUCCESS, "closing");
        state.ResumeTiming();
        require(mdlSystem_newDesignFile(designName().c_str(), 0) == MDL_SUCCESS, "opening");
    }
}

// ---- windows: one iteration is one of 16 windows ----

void windowPlain(benchmark::State& state) {
    needPlainTable();
    Plain plain;
    std::vector<FilePos> found;
    size_t next = 0;
    for (auto _ : state) benchmark::DoNotOptimize(plain.find(windows[next++ % windowCount], found));
}

const BoostTree& boostTree() {
    static const BoostTree tree = [] {
        std::vector<BoostEntry> entries;
        FilePos position = 0;
        for (const TestElement& e : elements()) {
            entries.push_back({{{e.range.low.x, e.range.low.y}, {e.range.high.x, e.range.high.y}}, ++position});
        }
        return BoostTree(entries.begin(), entries.end());
    }();
    return tree;
}

// An output iterator: the query form that is the fast one of Boost.
struct TakePosition {
    std::vector<FilePos>* found;
    TakePosition& operator=(const BoostEntry& entry) {
        found->push_back(entry.second);
        return *this;
    }
    TakePosition& operator*() { return *this; }
    TakePosition& operator++() { return *this; }
    TakePosition operator++(int) { return *this; }
};

size_t findInBoost(const Range3d& window, std::vector<FilePos>& found) {
    found.clear();
    const Box2 box({window.low.x, window.low.y}, {window.high.x, window.high.y});
    return boostTree().query(bgi::intersects(box), TakePosition{&found});
}

// `Sorted`: in file order, as a scan gives them.
template <bool Sorted>
void windowBoost(benchmark::State& state) {
    boostTree();
    std::vector<FilePos> found;
    size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(findInBoost(windows[next++ % windowCount], found));
        if (Sorted) std::sort(found.begin(), found.end());
    }
}

void windowDesign(benchmark::State& state) {
    needDesignFile();
    std::vector<FilePos> buffer(elementCount + 1), expected;
    for (const Range3d& window : windows) {
        const size_t count = scanAll(&window, buffer);
        require(count == findInBoost(window, expected), "finding the same as Boost");
        std::sort(expected.begin(), expected.end());
        require(std::equal(expected.begin(), expected.end(), buffer.begin()), "finding the same as Boost");
    }
    size_t next = 0;
    for (auto _ : state) benchmark::DoNotOptimize(scanAll(&windows[next++ % windowCount], buffer));
}

// The first search by window in a file makes the index.
void firstWindowDesign(benchmark::State& state) {
    needDesignFile();
    std::vector<FilePos> buffer(elementCount + 1);
    for (auto _ : state) {
        state.PauseTiming();
        require(mdlSystem_newDesignFile(designName().c_str(), 0) == MDL_SUCCESS, "opening");
        state.ResumeTiming();
        benchmark::DoNotOptimize(scanAll(&windows[0], buffer));
    }
}

// ---- ratios ----

class LeastTimes : public benchmark::ConsoleReporter {
  public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration) continue;
            const double time = run.cpu_accumulated_time / static_cast<double>(run.iterations);
            auto [at, isNew] = least_.try_emplace(run.run_name.function_name, time);
            if (!isNew) at->second = std::min(at->second, time);
        }
        ConsoleReporter::ReportRuns(runs);
    }
    void printRatio(const char* what, const char* peer, const char* ours, double target) const {
        const auto p = least_.find(peer), o = least_.find(ours);
        if (p == least_.end() || o == least_.end()) return;
        const double ratio = p->second / o->second;
        std::printf("%-58s %10.3f ms %10.3f ms %8.2f x (at least %.2f)%s\n", what, 1e3 * p->second, 1e3 * o->second,
                    ratio, target, ratio >= target ? "" : "  MISSED");
    }

  private:
    std::map<std::string, double> least_;
};

}  // namespace

int main(int argc, char** argv) {
    const auto add = [](const char* name, void (*f)(benchmark::State&), int iterations, int repetitions) {
        benchmark::RegisterBenchmark(name, f)
            ->Iterations(iterations)
            ->Repetitions(repetitions)
            ->Unit(benchmark::kMillisecond)
            ->ReportAggregatesOnly(false);
    };
    add("addPlain", addPlain, 1, 3);
    add("addDesign", addDesign<false>, 1, 3);
    add("storeDesign", addDesign<true>, 1, 3);
    add("scanPlain", scanPlain, 1, 3);
    add("scanDesign", scanDesign, 1, 5);
    add("openPlain", openPlain, 1, 3);
    add("openDesign", openDesign, 1, 5);
    add("firstWindowDesign", firstWindowDesign, 1, 3);
    add("windowPlain", windowPlain, windowCount, 2);
    add("windowBoost", windowBoost<false>, 50 * windowCount, 5);
    add("windowBoostSorted", windowBoost<true>, 50 * windowCount, 5);
    add("windowDesign", windowDesign, 50 * windowCount, 5);

    benchmark::Initialize(&argc, argv);
    LeastTimes times;
    benchmark::RunSpecifiedBenchmarks(&times);
    std::printf("\n%-58s %13s %13s\n", "least CPU time", "peer", "ours");
    times.printRatio("adding in memory, against SQLite inserts", "addPlain", "addDesign", 5);
    times.printRatio("adding and storing, against SQLite inserts", "addPlain", "storeDesign", 1);
    times.printRatio("full scan with reading, against SQLite rows", "scanPlain", "scanDesign", 3);
    times.printRatio("opening, against reading all SQLite rows", "openPlain", "openDesign", 1 / 1.5);
    times.printRatio("window with 1%, against SQLite without an index", "windowPlain", "windowDesign", 50);
    times.printRatio("window with 1%, against an R-tree of Boost, in file order", "windowBoostSorted", "windowDesign",
                     1);
    times.printRatio("window with 1%, against an R-tree of Boost, in no order", "windowBoost", "windowDesign", 0.5);
    mdlSystem_newDesignFile(smallName().c_str(), 0);
    std::filesystem::remove_all(folder());
    return 0;
}
