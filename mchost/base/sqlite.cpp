#include "mchost/base/sqlite.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "mchost/base/guard.h"

namespace host {

int64_t fileSize(const std::string& path) {
    struct stat info;
    return stat(path.c_str(), &info) == 0 ? info.st_size : 0;
}

bool folderCanBeWritten(const std::string& path) {
    const std::string folder = path.substr(0, path.find_last_of('/') + 1) + ".";
    return faccessat(AT_FDCWD, folder.c_str(), W_OK, AT_EACCESS) == 0;
}

SqliteFailure::SqliteFailure(int resultCode, const char* text) : std::runtime_error(text), code(resultCode) {
    if (code == SQLITE_NOMEM) noteMemoryRanOut();
}

void Database::open(const std::string& name, int flags) {
    const int result = sqlite3_open_v2(name.c_str(), &handle_, flags, nullptr);
    if (result == SQLITE_OK) return;
    const SqliteFailure failure(result & 0xFF, handle_ ? sqlite3_errmsg(handle_) : sqlite3_errstr(result));
    close();
    throw failure;
}

void Database::openImmutable(const std::string& path) {
    std::string name = "file:";
    for (const char c : path) {
        constexpr char hex[] = "0123456789ABCDEF";
        if (c == '%' || c == '?' || c == '#') {
            name += {'%', hex[c >> 4], hex[c & 15]};
        } else {
            name += c;
        }
    }
    open(name + "?immutable=1", SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
}

void Database::run(const std::string& sql) {
    const int result = sqlite3_exec(handle_, sql.c_str(), nullptr, nullptr, nullptr);
    if (result != SQLITE_OK) throw SqliteFailure(result & 0xFF, sqlite3_errmsg(handle_));
}

int64_t Database::number(const std::string& sql) {
    Statement statement(*this, sql);
    return statement.step() ? statement.integer(0) : 0;
}

std::string Database::text(const std::string& sql) {
    Statement statement(*this, sql);
    return statement.step() ? std::string(statement.text(0)) : std::string();
}

void Database::close() noexcept {
    sqlite3_close_v2(handle_);
    handle_ = nullptr;
}

Statement::Statement(Database& database, std::string_view sql) : database_(database) {
    check(sqlite3_prepare_v2(database.handle(), sql.data(), static_cast<int>(sql.size()), &handle_, nullptr));
}

bool Statement::step() {
    const int result = sqlite3_step(handle_);
    if (result == SQLITE_ROW) return true;
    if (result == SQLITE_DONE) return false;
    const SqliteFailure failure(result & 0xFF, sqlite3_errmsg(database_.handle()));
    sqlite3_reset(handle_);
    throw failure;
}

std::string_view Statement::text(int column) const {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(handle_, column));
    return {text ? text : "", static_cast<size_t>(sqlite3_column_bytes(handle_, column))};
}

std::span<const std::byte> Statement::blob(int column) const {
    const auto* bytes = static_cast<const std::byte*>(sqlite3_column_blob(handle_, column));
    return {bytes, static_cast<size_t>(sqlite3_column_bytes(handle_, column))};
}

void Statement::bind(int index, std::string_view value) {
    check(sqlite3_bind_text(handle_, index, value.data() ? value.data() : "", static_cast<int>(value.size()),
                            SQLITE_STATIC));
}

void Statement::bind(int index, std::span<const std::byte> value) {
    if (value.empty()) return check(sqlite3_bind_zeroblob(handle_, index, 0));
    check(sqlite3_bind_blob64(handle_, index, value.data(), value.size(), SQLITE_STATIC));
}

void Statement::check(int result) const {
    if (result != SQLITE_OK) throw SqliteFailure(result & 0xFF, sqlite3_errmsg(database_.handle()));
}

uint32_t BlobReader::open(int64_t row) {
    check(handle_ ? sqlite3_blob_reopen(handle_, row)
                  : sqlite3_blob_open(database_.handle(), "main", table_, column_, row, 0, &handle_));
    return static_cast<uint32_t>(sqlite3_blob_bytes(handle_));
}

void BlobReader::read(std::span<std::byte> bytes) {
    check(sqlite3_blob_read(handle_, bytes.data(), static_cast<int>(bytes.size()), 0));
}

void BlobReader::check(int result) const {
    if (result != SQLITE_OK) throw SqliteFailure(result & 0xFF, sqlite3_errmsg(database_.handle()));
}

Transaction::~Transaction() {
    if (open_ && !sqlite3_get_autocommit(database_.handle())) {
        sqlite3_exec(database_.handle(), "ROLLBACK", nullptr, nullptr, nullptr);
    }
}

}  // namespace host
