// 10,000 attributes to a resource file and back, against the bare SQLite statements for blobs of the same size: a table
// with the same key, one transaction for each write and one query for each read, and the same settings of the database.
// Prints the ratios of one run: the least CPU time of all repetitions.
#include <sqlite3.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "bench/race.h"
#include "bench/silent.h"
#include "mchost/session/session.h"
#include "mclib/elmattr/attributes.h"
#include "mclib/elmattr/resources.h"
#include "mclib/frame/main.h"

namespace {

constexpr int attributeCount = 10'000;
constexpr int recordBytes = 1480;

// An application with all attributes, and a folder for both files.
class Application {
  public:
    Application()
        : session_({.frontEnd = std::make_unique<SilentFrontEnd>(), .variables = {{"MC_DIR", "/usr/share/"}}}),
          scope_(session_.startApplication(
              "bench", [](int argc, char** argv) { return mclibMain_initMcLib("bench", argc, argv); })) {
        std::filesystem::create_directories(folder_);
        ElmAttrData data{};
        for (int id = 0; id < attributeCount; ++id) {
            data.color = id;
            mclibElmAttr_addAttribute(id, "attribute", 1, ATTR_KIND_SYMBOLOGY, 0, nullptr, 0, &data);
        }
    }
    ~Application() {
        mclibElmAttr_freeAllAttribute();
        std::filesystem::remove_all(folder_);
    }
    std::string path(const char* name) const { return (folder_ / name).string(); }

  private:
    host::Session session_;
    host::ApplicationScope scope_;
    std::filesystem::path folder_ = std::filesystem::temp_directory_path() / ("bench" + std::to_string(getpid()));
};

void check(bool good) {
    if (!good) std::abort();
}

class PlainTable {
  public:
    explicit PlainTable(const std::string& path) {
        check(sqlite3_open(path.c_str(), &database_) == SQLITE_OK);
        run("PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL;"
            "CREATE TABLE IF NOT EXISTS block(type INTEGER, id INTEGER, data BLOB, PRIMARY KEY(type, id))");
    }
    ~PlainTable() {
        sqlite3_finalize(statement_);
        run("PRAGMA journal_mode = DELETE");
        sqlite3_close(database_);
    }
    void write() {
        prepare("INSERT OR REPLACE INTO block VALUES(?, ?, ?)");
        char record[recordBytes] = {};
        for (int id = 0; id < attributeCount; ++id) {
            bindKey(id);
            sqlite3_bind_blob(statement_, 3, record, recordBytes, SQLITE_STATIC);
            check(sqlite3_step(statement_) == SQLITE_DONE);
            sqlite3_reset(statement_);
        }
    }
    void read() {
        prepare("SELECT data FROM block WHERE type = ? AND id = ?");
        for (int id = 0; id < attributeCount; ++id) {
            bindKey(id);
            check(sqlite3_step(statement_) == SQLITE_ROW);
            benchmark::DoNotOptimize(sqlite3_column_blob(statement_, 0));
            sqlite3_reset(statement_);
        }
    }

  private:
    void run(const char* sql) { check(sqlite3_exec(database_, sql, nullptr, nullptr, nullptr) == SQLITE_OK); }
    void prepare(const char* sql) { check(sqlite3_prepare_v2(database_, sql, -1, &statement_, nullptr) == SQLITE_OK); }
    void bindKey(int id) {
        sqlite3_bind_int(statement_, 1, 1298350387);
        sqlite3_bind_int(statement_, 2, id);
    }
    sqlite3* database_ = nullptr;
    sqlite3_stmt* statement_ = nullptr;
};

void attributesWritten(benchmark::State& state) {
    const Application application;
    const std::string plain = application.path("plain"), ours = application.path("ours.rsc");
    race(
        state,
        [&] {
            std::filesystem::remove(plain);
            PlainTable(plain).write();
        },
        [&] {
            std::filesystem::remove(ours);
            check(mclibElmAttr_writeResource(ours.c_str()) == 0);
        });
}
BENCHMARK(attributesWritten)->Iterations(5)->Unit(benchmark::kMillisecond);

void attributesRead(benchmark::State& state) {
    const Application application;
    const std::string plain = application.path("plain"), ours = application.path("ours.rsc");
    PlainTable(plain).write();
    check(mclibElmAttr_writeResource(ours.c_str()) == 0);
    race(
        state, [&] { PlainTable(plain).read(); }, [&] { check(mclibElmAttr_readResource(ours.c_str()) == 0); });
}
BENCHMARK(attributesRead)->Iterations(10)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
