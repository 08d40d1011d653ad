#include "tests/faults/judge.h"

#include <sqlite3.h>
#include <stdlib.h>

#include <csignal>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;

namespace {

constexpr const char* companions[] = {"-wal", "-shm", "-journal"};

const std::string* in(const Files& files, const std::string& name) {
    const auto found = files.find(name);
    return found == files.end() ? nullptr : &found->second;
}

// What a database of `files` keeps beside it is a part of it.
bool isCompanion(const std::string& name, const Files& files) {
    for (const char* ending : companions)
        if (name.ends_with(ending) && in(files, name.substr(0, name.rfind('-')))) return true;
    return false;
}

int addRow(void* text, int columns, char** values, char**) {
    for (int i = 0; i < columns; ++i) *static_cast<std::string*>(text) += values[i] ? values[i] : "-";
    *static_cast<std::string*>(text) += "\n";
    return 0;
}

// All rows of all tables as text; nothing for a damaged database.
std::string rowsIn(const fs::path& path) {
    sqlite3* database = nullptr;
    std::string check, selects, rows;
    sqlite3_open(path.c_str(), &database);
    sqlite3_exec(database, "PRAGMA integrity_check", addRow, &check, nullptr);
    sqlite3_exec(
        database,
        "SELECT 'SELECT ' || group_concat('quote(\"' || c.name || '\")', '||'',''||') || ' FROM \"' || t.name || "
        "'\" ORDER BY 1;' FROM sqlite_master t, pragma_table_info(t.name) c WHERE t.type = 'table' "
        "GROUP BY t.name ORDER BY t.name",
        addRow, &selects, nullptr);
    sqlite3_exec(database, selects.c_str(), addRow, &rows, nullptr);
    sqlite3_close(database);
    return check == "ok\n" ? selects + rows : std::string();
}

// The same for a database among files, with its log.
std::string contentOf(const Files& files, const std::string& name) {
    std::string pattern = (fs::temp_directory_path() / "mcjudge.XXXXXX").string();
    const fs::path folder = mkdtemp(pattern.data()), copy = folder / "copy";
    std::ofstream(copy, std::ios::binary) << files.at(name);
    for (const char* companion : companions)
        if (const std::string* log = in(files, name + companion))
            std::ofstream(copy.string() + companion, std::ios::binary) << *log;
    const std::string content = rowsIn(copy);
    fs::remove_all(folder);
    return content;
}

// Whether a file that both have is the same in them.
bool isSame(const Files& a, const Files& b, const std::string& name) {
    if (!in(a, name) || !in(b, name)) return false;
    if (a.at(name) == b.at(name)) return true;
    if (!a.at(name).starts_with("SQLite format 3")) return false;
    const std::string content = contentOf(a, name);
    return !content.empty() && content == contentOf(b, name);
}

// The user's preferences are kept beside the work: when they can't be, that is told, and the work is done.
bool isPreference(const std::string& name) {
    return name.starts_with("home/");
}

// Resource files get their records one by one, and the open drawing what each command makes; what is there is sound.
bool isGrowing(const std::string& name) {
    return name.ends_with(".rsc") || name.ends_with(".upf") || name == "plan.mcd";
}

std::string leftOver(const Files& before, const Files& good, const Files& left) {
    for (const auto& [name, bytes] : left)
        if (!in(good, name) && !in(before, name) && !isCompanion(name, before) && !isCompanion(name, good))
            return name + " is left over";
    return {};
}

std::string damageIn(const Files& before, const Files& good, const Files& left) {
    for (const auto& [name, bytes] : before)
        if (!in(left, name) && !isCompanion(name, before)) return name + " is lost";
    for (const auto& [name, bytes] : left) {
        const bool known = isSame(left, before, name) || isSame(left, good, name) || isCompanion(name, left);
        if (!known && !(isGrowing(name) && !contentOf(left, name).empty())) return name + " is damaged";
    }
    return {};
}

std::string lackIn(const Result& result, const Files& good, const Files& left) {
    for (const auto& [name, bytes] : good) {
        if (isSame(left, good, name) || isCompanion(name, good)) continue;
        if (!isPreference(name) || result.messages.empty())
            return "status 0, and " + name + (in(left, name) ? " is another one" : " is missing");
    }
    return {};
}

}  // namespace

Files filesIn(const fs::path& folder) {
    Files files;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_directory()) continue;
        std::ifstream file(entry.path(), std::ios::binary);
        files[fs::relative(entry.path(), folder)].assign(std::istreambuf_iterator<char>(file), {});
    }
    return files;
}

std::string faultIn(const Case& run, const Result& result, const Fault& fault, const Files& before, const Files& good,
                    const Files& left) {
    if (result.status == -1) return "it doesn't end";
    const bool asked = fault.mode == "term" && result.status == 128 + SIGTERM;
    const bool failed = result.status == 1 || result.status == run.failed;
    if (result.status != 0 && !failed && !asked) return "status " + std::to_string(result.status);
    if (failed && result.messages.empty()) return "a failure without a message";
    if (std::string what = leftOver(before, good, left); !what.empty()) return what;
    if (std::string what = damageIn(before, good, left); !what.empty()) return what;
    return result.status == 0 ? lackIn(result, good, left) : std::string();
}
