#include "mchost/resource/store.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <iterator>
#include <system_error>
#include <thread>
#include <utility>

#include "mchost/base/new_file.h"
#include "mchost/base/sqlite.h"
#include "mchost/model/digest.h"
#include "mchost/resource/container.h"

namespace host {

namespace {

constexpr const char* schema =
    "CREATE TABLE IF NOT EXISTS block(type INTEGER, id INTEGER, attributes INTEGER, name BLOB, digest INTEGER,"
    " data BLOB NOT NULL, PRIMARY KEY(type, id));"
    "CREATE TABLE IF NOT EXISTS list(id INTEGER PRIMARY KEY, name BLOB, fields INTEGER, members INTEGER);"
    "CREATE TABLE IF NOT EXISTS member(list INTEGER, place INTEGER, text BLOB, info BLOB,"
    " PRIMARY KEY(list, place)) WITHOUT ROWID;"
    "CREATE TABLE IF NOT EXISTS about(title BLOB)";

constexpr const char* emptied =
    "DELETE FROM string; DELETE FROM dialog; DELETE FROM item; DELETE FROM row; DELETE FROM label; DELETE FROM icon;"
    "DELETE FROM block; DELETE FROM list; DELETE FROM member; DELETE FROM about";

constexpr int32_t mostFields = 1000;
constexpr int64_t mostMembers = 65535;  // what a string list holds

std::span<const std::byte> bytesOf(std::string_view text) {
    return std::as_bytes(std::span(text));
}

// A block that was put under another key is noticed too.
int64_t digestOf(int32_t type, int32_t id, std::span<const std::byte> bytes) {
    const uint64_t words[] = {static_cast<uint32_t>(type), static_cast<uint32_t>(id), digest(bytes)};
    return static_cast<int64_t>(digest(std::as_bytes(std::span(words))));
}

std::string littleEndian(std::span<const int32_t> values) {
    std::string bytes;
    for (const int32_t value : values)
        for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(static_cast<uint32_t>(value) >> shift);
    return bytes;
}

void appendNumbers(std::vector<int32_t>& values, std::span<const std::byte> bytes) {
    for (size_t at = 0; at + 4 <= bytes.size(); at += 4) {
        uint32_t value = 0;
        for (size_t i = 4; i-- > 0;) value = value << 8 | static_cast<uint32_t>(bytes[at + i]);
        values.push_back(static_cast<int32_t>(value));
    }
}

// As "McA3", or as a number when its characters can't be shown.
std::string typeName(int32_t type) {
    std::string name = "\"";
    for (int shift = 24; shift >= 0; shift -= 8) {
        const auto c = static_cast<unsigned char>(static_cast<uint32_t>(type) >> shift);
        if (c < ' ' || c > '~') return std::to_string(type);
        name += static_cast<char>(c);
    }
    return name + '"';
}

std::string keyName(int32_t type, int32_t id) {
    return "resource " + typeName(type) + " " + std::to_string(id);
}

struct Reason {
    std::string text;
    bool readOnly = false;
};

Reason reasonOf(const SqliteFailure& failure) {
    switch (failure.code) {
        case SQLITE_FULL: return {"the disk is full; make room on it and try again"};
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB: return {"the resource file is damaged; use a copy of it"};
        case SQLITE_BUSY:
        case SQLITE_LOCKED: return {"another program is writing to the file; try again when it has ended"};
        case SQLITE_READONLY:
        case SQLITE_PERM:
        case SQLITE_CANTOPEN:
            return {"the file or its folder can't be written to; check their permissions, or copy the file elsewhere",
                    true};
        default:
            return {"the disk or its file system fails (" + std::string(failure.what()) +
                    "); make sure that there is room, and try again"};
    }
}

FilePlace placeOf(const std::string& path) {
    struct stat info;
    return stat(path.c_str(), &info) == 0 ? FilePlace{info.st_dev, info.st_ino} : FilePlace{};
}

[[noreturn]] void failWith(const std::string& path, const Reason& reason) {
    throw StoreFailure(path + ": " + reason.text, reason.readOnly);
}

}  // namespace

// Those that are run once for each block of a large set.
struct ResourceStore::Statements {
    explicit Statements(Database& db)
        : load(db, "SELECT digest, data FROM block WHERE type = ? AND id = ?"),
          add(db, "INSERT OR IGNORE INTO block VALUES(?, ?, ?, ?, ?, ?)"),
          replace(db, "UPDATE block SET digest = ?, data = ? WHERE type = ? AND id = ?"),
          either(db,
                 "INSERT INTO block VALUES(?, ?, ?, ?, ?, ?)"
                 " ON CONFLICT(type, id) DO UPDATE SET digest = excluded.digest, data = excluded.data") {}
    Statement load, add, replace, either;
};

ResourceStore::ResourceStore(std::string path) : path_(std::move(path)) {}

ResourceStore::~ResourceStore() {
    try {
        close();
    } catch (const std::exception&) {
        // Those who can still tell somebody have closed it before.
    }
}

// The last one to close takes the log into the file; another process that has the file open does it later.
void ResourceStore::close() {
    if (!database_) return;
    const std::unique_ptr<Database> database = std::move(database_);
    statements_.reset();
    if (!std::exchange(writable_, false)) return;
    try {
        database->run("PRAGMA wal_checkpoint(TRUNCATE)");
    } catch (const SqliteFailure& failure) {
        failWith(path_ + "-wal", {"the last changes of \"" + path_ + "\" are here and couldn't be brought into it (" +
                                  reasonOf(failure).text + "); keep the two together and open it again"});
    }
}

void ResourceStore::fail(const std::string& why, bool readOnly) const {
    failWith(path_, {why, readOnly});
}

// Runs a body that uses the database.
template <class Body>
auto ResourceStore::attempt(Body body) {
    try {
        return body();
    } catch (const SqliteFailure& failure) {
        failWith(path_, reasonOf(failure));
    }
}

Database& ResourceStore::reading() {
    if (database_) return *database_;
    auto database = std::make_unique<Database>();
    openResourceDatabase(*database, path_);
    database_ = std::move(database);
    place_ = placeOf(path_);
    return *database_;
}

// What would be written to a file that has lost its name is lost with it.
void ResourceStore::requireInPlace() const {
    if (placeOf(path_) == place_) return;
    fail("the file was removed or replaced while it was open, so nothing more is kept in it; open it again");
}

Database& ResourceStore::writing() {
    Database& db = reading();
    requireInPlace();
    if (writable_) return db;
    try {
        if (db.text("PRAGMA journal_mode = WAL") == "wal") db.run("PRAGMA synchronous = NORMAL");
    } catch (const SqliteFailure& failure) {
        // A reader is at work: the database then keeps a journal, which is as safe and slower.
        if (failure.code != SQLITE_BUSY) throw;
    }
    if (!hasTable("about")) {
        Transaction transaction(db);
        db.run(schema);
        transaction.commit();
    }
    writable_ = true;
    return db;
}

bool ResourceStore::hasTable(const char* name) {
    Statement table(reading(), "SELECT 1 FROM sqlite_schema WHERE type = 'table' AND name = ?");
    table.begin(std::string_view(name));
    return table.step();
}

std::optional<std::vector<std::byte>> ResourceStore::block(int32_t type, int32_t id) {
    return attempt([&]() -> std::optional<std::vector<std::byte>> {
        if (!statements_) {
            if (!hasTable("block")) return std::nullopt;
            statements_ = std::make_unique<Statements>(reading());
        }
        Statement& load = statements_->load;
        load.begin(type, id);
        if (!load.step()) return std::nullopt;
        const std::span<const std::byte> data = load.blob(1);
        std::vector<std::byte> bytes(data.begin(), data.end());
        const int64_t digest = load.integer(0);
        load.reset();
        if (digest != digestOf(type, id, bytes))
            fail("the " + keyName(type, id) + " is damaged and was left as it is; use a copy of the file");
        return bytes;
    });
}

void ResourceStore::put(Put how, int32_t type, int32_t id, std::span<const std::byte> bytes, int32_t attributes,
                        std::string_view name) {
    attempt([&] {
        Database& db = writing();
        if (!statements_) statements_ = std::make_unique<Statements>(db);
        const int64_t digest = digestOf(type, id, bytes);
        if (how == Put::replace)
            statements_->replace.execute(digest, bytes, type, id);
        else
            (how == Put::add ? statements_->add : statements_->either)
                .execute(type, id, attributes, bytesOf(name), digest, bytes);
        if (sqlite3_changes(db.handle()) == 0)
            fail("the " + keyName(type, id) + (how == Put::add ? " is there already" : " isn't there any more"));
    });
}

std::optional<StoredList> ResourceStore::list(int32_t id, bool* cut) {
    if (cut) *cut = false;
    return attempt([&]() -> std::optional<StoredList> {
        if (!hasTable("list")) return std::nullopt;
        // One statement, so that all of it comes from one state of the file.
        Statement rows(reading(),
                       "SELECT fields, members, coalesce(place, -1), text, info FROM list"
                       " LEFT JOIN member ON member.list = list.id WHERE list.id = ? ORDER BY place");
        rows.begin(id);
        if (!rows.step()) return std::nullopt;
        const int64_t fields = rows.integer(0), members = rows.integer(1);
        if (fields < 0 || fields > mostFields || members < 0 || members > mostMembers)
            fail("the string list " + std::to_string(id) + " is damaged and was left as it is; use a copy of the file");
        StoredList list{static_cast<int32_t>(fields), {}, {}};
        const auto fits = [&] {
            return rows.integer(2) == std::ssize(list.texts) && rows.blob(4).size() == static_cast<size_t>(fields) * 4;
        };
        do {
            if (std::ssize(list.texts) == members || !fits()) break;
            list.texts.emplace_back(rows.text(3));
            appendNumbers(list.info, rows.blob(4));
        } while (rows.step());
        if (cut) *cut = std::ssize(list.texts) != members;
        return list;
    });
}

void ResourceStore::put(Put how, int32_t id, const StoredList& list, std::string_view name) {
    if (list.fields > mostFields)
        fail("a string list with more than " + std::to_string(mostFields) + " info fields can't be stored");
    attempt([&] {
        Database& db = writing();
        Transaction transaction(db);
        const auto members = static_cast<int64_t>(list.texts.size());
        if (how == Put::add)
            Statement(db, "INSERT OR IGNORE INTO list VALUES(?, ?, ?, ?)")
                .execute(id, bytesOf(name), list.fields, members);
        else
            Statement(db, "UPDATE list SET name = ?, fields = ?, members = ? WHERE id = ?")
                .execute(bytesOf(name), list.fields, members, id);
        if (sqlite3_changes(db.handle()) == 0)
            fail("the string list " + std::to_string(id) +
                 (how == Put::add ? " is there already" : " isn't there any more"));
        Statement(db, "DELETE FROM member WHERE list = ?").execute(id);
        Statement member(db, "INSERT INTO member VALUES(?, ?, ?, ?)");
        const auto fields = static_cast<size_t>(list.fields);
        for (size_t i = 0; i < list.texts.size(); ++i) {
            const std::string info = littleEndian(std::span(list.info).subspan(i * fields, fields));
            member.execute(id, static_cast<int64_t>(i), bytesOf(list.texts[i]), bytesOf(info));
        }
        transaction.commit();
    });
}

// What `select` gives of each row of a table, if the file has it.
template <class Head, class Make>
std::vector<Head> ResourceStore::heads(const char* table, const char* select, Make make) {
    return attempt([&] {
        std::vector<Head> all;
        if (!hasTable(table)) return all;
        Statement rows(reading(), select);
        const auto number = [&](int column) { return static_cast<int32_t>(rows.integer(column)); };
        const auto text = [&](int column) { return std::string(rows.text(column)); };
        while (rows.step()) all.push_back(make(number, text));
        return all;
    });
}

std::vector<BlockHead> ResourceStore::blocks() {
    return heads<BlockHead>("block", "SELECT type, id, length(data), attributes, name FROM block ORDER BY type, id",
                            [](const auto& number, const auto& text) {
                                return BlockHead{number(0), number(1), number(2), number(3), text(4)};
                            });
}

std::vector<ListHead> ResourceStore::lists() {
    return heads<ListHead>("list", "SELECT id, members, name FROM list ORDER BY id",
                           [](const auto& number, const auto& text) {
                               return ListHead{number(0), number(1), text(2)};
                           });
}

std::string ResourceStore::title() {
    return attempt([&] {
        if (!hasTable("about")) return std::string();
        Statement rows(reading(), "SELECT title FROM about");
        return rows.step() ? std::string(rows.text(0)) : std::string();
    });
}

void ResourceStore::clear(std::string_view title) {
    attempt([&] {
        Database& db = writing();
        Transaction transaction(db);
        db.run(emptied);
        Statement(db, "INSERT INTO about VALUES(?)").execute(bytesOf(title));
        transaction.commit();
    });
}

// ---- new files ----

namespace {

void requireFolder(const std::string& path) {
    if (folderCanBeWritten(path)) return;
    const bool missing = errno == ENOENT || errno == ENOTDIR;
    failWith(path, {missing ? "its folder isn't there; make it, or give another name"
                            : "its folder can't be written to; check its permissions, or give another name",
                    !missing});
}

// Gives a file that nobody knows yet its tables, without a log and without waiting for the disk.
void prepare(const std::string& path, std::string_view title) {
    Database db;
    db.open(path, SQLITE_OPEN_READWRITE);
    db.run("PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF");
    Transaction transaction(db);
    db.run(schema);
    Statement(db, "INSERT INTO about VALUES(?)").execute(bytesOf(title));
    transaction.commit();
}

// Lets one process at a time make files in a folder. Where the file system has no locks, nobody waits. A StoreFailure
// when others have the folder for longer than any file takes.
class FolderLock {
  public:
    explicit FolderLock(const std::string& path) {
        const std::filesystem::path folder = std::filesystem::path(path).parent_path();
        folder_ = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (folder_ < 0 || take()) return;
        close(folder_);
        failWith(path, {"another program has its folder locked; try again when it has ended, or give another folder"});
    }
    ~FolderLock() {
        if (folder_ >= 0) close(folder_);
    }
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

  private:
    bool take() const {
        constexpr std::chrono::milliseconds longest(5000), pause(10);
        const auto end = std::chrono::steady_clock::now() + longest;
        while (flock(folder_, LOCK_EX | LOCK_NB) != 0) {
            if (errno != EWOULDBLOCK && errno != EINTR) return true;
            if (std::chrono::steady_clock::now() >= end) return false;
            std::this_thread::sleep_for(pause);
        }
        return true;
    }

    int folder_;
};

}  // namespace

void makeResourceFile(const std::string& path, std::string_view title) {
    requireFolder(path);
    const FolderLock lock(path);
    if (access(path.c_str(), F_OK) == 0) return;
    // The log of a file that was removed would be taken for the new file's own.
    for (const char* companion : {"-wal", "-shm", "-journal"}) unlink((path + companion).c_str());
    try {
        NewFile file(path);
        fillContainer(file.name(), {});
        prepare(file.name(), title);
        file.publish();
    } catch (const std::system_error& error) {
        if (error.code() == std::errc::file_exists) return;
        failWith(path,
                 {"can't be made (" + error.code().message() + "); check the name, its folder and the disk",
                  error.code() == std::errc::permission_denied || error.code() == std::errc::read_only_file_system});
    } catch (const SqliteFailure& failure) {
        failWith(path, reasonOf(failure));
    }
}

void createResourceFile(const std::string& path, std::string_view title) {
    struct stat info;
    bool exists = stat(path.c_str(), &info) == 0;
    if (exists && !S_ISREG(info.st_mode)) failWith(path, {"this is no file; give another name"});
    if (exists && access(path.c_str(), W_OK) != 0)
        failWith(path, {"the file can't be written to; check its permissions, or give another name", true});
    if (exists && info.st_size == 0) exists = unlink(path.c_str()) != 0;  // nothing is lost
    if (!exists) return makeResourceFile(path, title);
    readContainer(path);  // throws for what isn't a sound resource file
    ResourceStore(path).clear(title);
}

}  // namespace host
