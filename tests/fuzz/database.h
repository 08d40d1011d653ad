// A container whose rows are changed as a fuzzer's input tells, so that what lies behind the database itself is
// reached.
#pragma once

#include <sqlite3.h>

#include <string>
#include <string_view>
#include <vector>

#include "bytes.h"

class FuzzDatabase {
  public:
    explicit FuzzDatabase(const std::string& path) {
        require(sqlite3_open_v2(path.c_str(), &handle_, SQLITE_OPEN_READWRITE, nullptr) == SQLITE_OK);
        run("PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF; BEGIN");
        each("SELECT name FROM sqlite_schema WHERE type='table'", [&](sqlite3_stmt* row) {
            tables_.push_back({textOf(row, 0), {}});
        });
        for (Table& table : tables_) {
            each("PRAGMA table_info(" + table.name + ")", [&](sqlite3_stmt* row) {
                table.columns.push_back(textOf(row, 1));
                if (sqlite3_column_int(row, 5) != 0) (table.key += table.key.empty() ? "" : ",") += textOf(row, 1);
            });
            if (table.key.empty()) table.key = "rowid";
        }
    }
    ~FuzzDatabase() {
        run("COMMIT");
        sqlite3_close(handle_);
    }
    FuzzDatabase(const FuzzDatabase&) = delete;
    FuzzDatabase& operator=(const FuzzDatabase&) = delete;

    sqlite3* handle() const { return handle_; }
    void run(const std::string& sql) { sqlite3_exec(handle_, sql.c_str(), nullptr, nullptr, nullptr); }

    // Calls visit(statement) at each row.
    template <class Visit>
    void each(const std::string& sql, Visit visit) const {
        sqlite3_stmt* row = nullptr;
        require(sqlite3_prepare_v2(handle_, sql.c_str(), -1, &row, nullptr) == SQLITE_OK);
        while (sqlite3_step(row) == SQLITE_ROW) visit(row);
        sqlite3_finalize(row);
    }
    static std::string textOf(sqlite3_stmt* row, int column) {
        const auto* bytes = static_cast<const char*>(sqlite3_column_blob(row, column));
        return bytes ? std::string(bytes, static_cast<size_t>(sqlite3_column_bytes(row, column))) : std::string();
    }

    // Changes a value, or the bytes of one; adds a row that differs in one value; takes one away; or tells another
    // make.
    void change(Bytes& input) {
        const auto what = input.take<uint8_t>();
        if (what % 16 == 15) return run("PRAGMA user_version=" + std::to_string(input.take<int8_t>()));
        const Table& table = tables_[input.take<uint8_t>() % tables_.size()];
        const std::string& column = table.columns[input.take<uint8_t>() % table.columns.size()];
        const int row = input.take<uint8_t>();
        const std::string there = "FROM " + table.name + " LIMIT 1 OFFSET " + std::to_string(row);
        const std::string at = " WHERE (" + table.key + ") = (SELECT " + table.key + " " + there + ")";
        switch (what % 5) {
            case 0: return withValue("UPDATE OR IGNORE " + table.name + " SET " + column + "=?" + at, input);
            case 1: return withValue(insertion(table, column, there), input);
            case 2: return run("DELETE FROM " + table.name + at);
            default: return patch(table, column, at, input);
        }
    }

  private:
    struct Table {
        std::string name;
        std::vector<std::string> columns;
        std::string key;
    };

    static std::string insertion(const Table& table, const std::string& changed, const std::string& there) {
        std::string values;
        for (const std::string& column : table.columns)
            (values += values.empty() ? "" : ",") += column == changed ? "?" : column;
        return "INSERT OR IGNORE INTO " + table.name + " SELECT " + values + " " + there;
    }

    void withValue(const std::string& sql, Bytes& input) {
        const auto kind = input.take<uint8_t>();
        const std::string text = kind % 5 >= 3 ? input.text() : std::string();
        execute(sql, [&](sqlite3_stmt* s) {
            switch (kind % 5) {
                case 0: sqlite3_bind_int(s, 1, input.take<int8_t>()); break;
                case 1: sqlite3_bind_int64(s, 1, input.take<int64_t>()); break;
                case 2: sqlite3_bind_double(s, 1, input.take<double>()); break;
                case 3: sqlite3_bind_text(s, 1, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT); break;
                default: bindBytes(s, text); break;
            }
        });
    }

    void patch(const Table& table, const std::string& column, const std::string& at, Bytes& input) {
        std::string bytes;
        each("SELECT " + column + " FROM " + table.name + at, [&](sqlite3_stmt* row) { bytes = textOf(row, 0); });
        const size_t from = input.take<uint16_t>() % (bytes.size() + 1);
        const size_t count = input.take<uint8_t>() % 32;
        if (count == 0) bytes.resize(from);
        if (from + count > bytes.size()) bytes.resize(from + count);
        for (size_t i = 0; i < count; ++i) bytes[from + i] = input.take<char>();
        execute("UPDATE OR IGNORE " + table.name + " SET " + column + "=?" + at,
                [&](sqlite3_stmt* s) { bindBytes(s, bytes); });
    }

    static void bindBytes(sqlite3_stmt* s, const std::string& bytes) {
        sqlite3_bind_blob(s, 1, bytes.data(), static_cast<int>(bytes.size()), SQLITE_TRANSIENT);
    }

    // A change that the tables don't take is none.
    template <class Bind>
    void execute(const std::string& sql, Bind bind) {
        sqlite3_stmt* s = nullptr;
        require(sqlite3_prepare_v2(handle_, sql.c_str(), -1, &s, nullptr) == SQLITE_OK);
        bind(s);
        sqlite3_step(s);
        sqlite3_finalize(s);
    }

    sqlite3* handle_ = nullptr;
    std::vector<Table> tables_;
};
