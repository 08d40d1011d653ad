// SQLite with owners for its handles and exceptions for its failures.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

namespace host {

struct SqliteFailure : std::runtime_error {
    SqliteFailure(int resultCode, const char* text);
    int code;  // SQLite's result code without the extended bits
};

// Size in bytes; 0 when there is no such file.
int64_t fileSize(const std::string& path);
// Whether companion files can be made beside `path`.
bool folderCanBeWritten(const std::string& path);

class Statement;

class Database {
  public:
    Database() = default;
    ~Database() { close(); }
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    void open(const std::string& name, int flags);  // one that is closed
    // One that nobody changes and that has no companion files, without leaving a trace beside it.
    void openImmutable(const std::string& path);
    void run(const std::string& sql);
    int64_t number(const std::string& sql);    // the first value of the first row; 0 without one
    std::string text(const std::string& sql);  // the same; empty without one
    void close() noexcept;
    bool isOpen() const { return handle_ != nullptr; }
    sqlite3* handle() const { return handle_; }

  private:
    sqlite3* handle_ = nullptr;
};

// A prepared statement. Values bound as views must live until the next step or bind.
class Statement {
  public:
    Statement(Database& database, std::string_view sql);
    ~Statement() { sqlite3_finalize(handle_); }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    // Binds all parameters in order and runs a statement without rows.
    template <class... Values>
    void execute(const Values&... values) {
        int index = 0;
        (bind(++index, values), ...);
        step();
        sqlite3_reset(handle_);
    }
    // Binds all parameters in order; step() then gives the rows from the first one on.
    template <class... Values>
    void begin(const Values&... values) {
        reset();
        int index = 0;
        (bind(++index, values), ...);
    }
    bool step();                                       // true for a row
    void reset() noexcept { sqlite3_reset(handle_); }  // gives up the rows that are left

    bool isInteger(int column) const { return sqlite3_column_type(handle_, column) == SQLITE_INTEGER; }
    int64_t integer(int column) const { return sqlite3_column_int64(handle_, column); }
    double real(int column) const { return sqlite3_column_double(handle_, column); }
    std::string_view text(int column) const;
    std::span<const std::byte> blob(int column) const;

  private:
    void bind(int index, int64_t value) { check(sqlite3_bind_int64(handle_, index, value)); }
    void bind(int index, int32_t value) { bind(index, int64_t{value}); }
    void bind(int index, uint32_t value) { bind(index, int64_t{value}); }
    void bind(int index, double value) { check(sqlite3_bind_double(handle_, index, value)); }
    void bind(int index, std::string_view value);
    void bind(int index, std::span<const std::byte> value);
    void check(int result) const;

    Database& database_;
    sqlite3_stmt* handle_ = nullptr;
};

// Reads blobs of one column straight into the reader's memory, one row after the other.
class BlobReader {
  public:
    BlobReader(Database& database, const char* table, const char* column)
        : database_(database), table_(table), column_(column) {}
    ~BlobReader() { sqlite3_blob_close(handle_); }
    BlobReader(const BlobReader&) = delete;
    BlobReader& operator=(const BlobReader&) = delete;

    uint32_t open(int64_t row);             // the size of the row's blob
    void read(std::span<std::byte> bytes);  // its first bytes

  private:
    void check(int result) const;

    Database& database_;
    const char *table_, *column_;
    sqlite3_blob* handle_ = nullptr;
};

// A transaction for writing; rolled back when it isn't committed.
class Transaction {
  public:
    explicit Transaction(Database& database) : database_(database) { database_.run("BEGIN IMMEDIATE"); }
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    void commit() {
        database_.run("COMMIT");
        open_ = false;
    }

  private:
    Database& database_;
    bool open_ = true;
};

}  // namespace host
