#include "tests/faults/judge.h"

#include <sqlite3.h>

#include <csignal>
#include <fstream>
#include <iterator>
#include <memory>

namespace fs = std::filesystem;

namespace {

bool isDatabase(const std::string& bytes) {
    return bytes.starts_with("SQLite format 3");
}

// All that is in a database, as text; nothing for a damaged one.
std::string contentOf(const std::string& bytes) {
    sqlite3* opened = nullptr;
    sqlite3_open(":memory:", &opened);
    const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> database(opened, sqlite3_close);
    auto* copy = static_cast<unsigned char*>(sqlite3_malloc64(bytes.size()));
    std::copy(bytes.begin(), bytes.end(), copy);
    if (bytes.size() > 19) copy[18] = copy[19] = 1;  // a file in memory has no log
    const auto size = static_cast<sqlite3_int64>(bytes.size());
    sqlite3_deserialize(opened, "main", copy, size, size, SQLITE_DESERIALIZE_FREEONCLOSE);
    std::string text;
    const auto add = [](void* to, int columns, char** values, char**) {
        for (int i = 0; i < columns; ++i)
            *static_cast<std::string*>(to) += std::string(values[i] ? values[i] : "-") + "|";
        *static_cast<std::string*>(to) += "\n";
        return 0;
    };
    sqlite3_exec(opened, "PRAGMA integrity_check", add, &text, nullptr);
    if (text != "ok|\n") return {};
    std::string tables;
    sqlite3_exec(opened,
                 "SELECT group_concat('SELECT * FROM \"' || name || '\"', ';') FROM sqlite_master "
                 "WHERE type = 'table'",
                 add, &tables, nullptr);
    if (tables.size() > 2) sqlite3_exec(opened, tables.substr(0, tables.size() - 2).c_str(), add, &text, nullptr);
    return text;
}

bool isSame(const std::string& a, const std::string& b) {
    if (a == b) return true;
    if (!isDatabase(a) || !isDatabase(b)) return false;
    const std::string content = contentOf(a);
    return !content.empty() && content == contentOf(b);
}

const std::string* in(const Files& files, const std::string& name) {
    const auto found = files.find(name);
    return found == files.end() ? nullptr : &found->second;
}

// What isn't there counts as an empty text here, and as the same as nothing else.
std::string compareGood(const Files& good, const Files& left) {
    for (const auto& [name, bytes] : good) {
        const std::string* found = in(left, name);
        if (!found) return "status 0, and " + name + " is missing";
        if (!isSame(*found, bytes)) return "status 0, and " + name + " is another one";
    }
    return {};
}

std::string compareFailed(const Files& before, const Files& good, const Files& left) {
    for (const auto& [name, bytes] : before) {
        const std::string* found = in(left, name);
        const std::string* made = in(good, name);
        if (!found) return name + " is lost";
        if (!isSame(*found, bytes) && !(made && isSame(*found, *made))) return name + " is damaged";
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

std::string faultIn(const Result& result, const Fault& fault, const Files& before, const Files& good,
                    const Files& left) {
    if (result.status == -1) return "it doesn't end";
    const bool asked = fault.mode == "term" && result.status == 128 + SIGTERM;
    if (result.status > 1 && !asked) return "status " + std::to_string(result.status);
    for (const auto& [name, bytes] : left) {
        const std::string* made = in(good, name);
        if (!made && !in(before, name)) return name + " is left over";
        if (made && !in(before, name) && !isSame(bytes, *made)) return name + " is no whole file";
    }
    if (result.status == 0) return compareGood(good, left);
    if (!asked && result.messages.empty()) return "status 1 without a message";
    return compareFailed(before, good, left);
}
