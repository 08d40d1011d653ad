#include "host/resource/container.h"

#include <sqlite3.h>

#include <filesystem>
#include <memory>
#include <system_error>

namespace host {

namespace {

constexpr const char* schema =
    "CREATE TABLE string(list INTEGER, number INTEGER, language TEXT, text BLOB NOT NULL,"
    " PRIMARY KEY(list, number, language)) WITHOUT ROWID;"
    "CREATE TABLE dialog(id INTEGER PRIMARY KEY, width INTEGER, height INTEGER, hook INTEGER);"
    "CREATE TABLE item(dialog INTEGER, place INTEGER, kind INTEGER, id INTEGER, x INTEGER, y INTEGER, width INTEGER,"
    " height INTEGER, hook INTEGER, access TEXT, format TEXT, box INTEGER, PRIMARY KEY(dialog, place))"
    " WITHOUT ROWID;"
    "CREATE TABLE row(dialog INTEGER, place INTEGER, number INTEGER, value INTEGER,"
    " PRIMARY KEY(dialog, place, number)) WITHOUT ROWID;"
    "CREATE TABLE label(dialog INTEGER, place INTEGER, number INTEGER, language TEXT, text BLOB NOT NULL,"
    " PRIMARY KEY(dialog, place, number, language)) WITHOUT ROWID;"
    "CREATE TABLE icon(id INTEGER PRIMARY KEY, size INTEGER, pixels TEXT, sign TEXT);";

constexpr int32_t ownText = -1;        // place of a dialog's title, number of an item's label
constexpr int32_t greatestIcon = 256;  // pixels a side

[[noreturn]] void refuse(const std::string& path, const std::string& why) {
    throw ResourceError(path + ": " + why);
}

// What SQLite says, or what is wrong with the layouts; readers and writers make a ResourceError of it.
struct Damage : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// A text to be stored as bytes of Windows-1252, not as UTF-8.
struct Bytes {
    const std::string& value;
};

class Statement {
  public:
    Statement(sqlite3* db, const std::string& sql) : db_(db) {
        check(sqlite3_prepare_v2(db, sql.c_str(), -1, &handle_, nullptr));
    }
    ~Statement() { sqlite3_finalize(handle_); }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    bool step() {
        const int status = sqlite3_step(handle_);
        if (status != SQLITE_ROW && status != SQLITE_DONE) throw Damage(sqlite3_errmsg(db_));
        return status == SQLITE_ROW;
    }
    int32_t number(int column) { return sqlite3_column_int(handle_, column); }
    std::string text(int column) {
        const void* bytes = sqlite3_column_blob(handle_, column);
        const auto size = static_cast<size_t>(sqlite3_column_bytes(handle_, column));
        return bytes ? std::string(static_cast<const char*>(bytes), size) : std::string();
    }

    // Runs an insertion with these values.
    template <class... Values>
    void insert(const Values&... values) {
        int place = 0;
        (bind(++place, values), ...);
        step();
        check(sqlite3_reset(handle_));
    }

  private:
    void bind(int place, int32_t value) { check(sqlite3_bind_int(handle_, place, value)); }
    void bind(int place, const std::string& value) {
        check(sqlite3_bind_text(handle_, place, value.data(), static_cast<int>(value.size()), SQLITE_TRANSIENT));
    }
    void bind(int place, const Bytes& bytes) {
        check(sqlite3_bind_blob(handle_, place, bytes.value.data(), static_cast<int>(bytes.value.size()),
                                SQLITE_TRANSIENT));
    }
    void check(int status) {
        if (status != SQLITE_OK) throw Damage(sqlite3_errmsg(db_));
    }

    sqlite3* db_;
    sqlite3_stmt* handle_ = nullptr;
};

struct CloseDatabase {
    void operator()(sqlite3* db) const { sqlite3_close(db); }
};
using Database = std::unique_ptr<sqlite3, CloseDatabase>;

Database openDatabase(const std::string& path, int flags) {
    sqlite3* handle = nullptr;
    const int status = sqlite3_open_v2(path.c_str(), &handle, flags, nullptr);
    Database db(handle);
    if (status != SQLITE_OK) throw Damage(db ? sqlite3_errmsg(db.get()) : "out of memory");
    return db;
}

void execute(sqlite3* db, const std::string& sql) {
    if (sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) throw Damage(sqlite3_errmsg(db));
}

int32_t pragma(sqlite3* db, const char* sql) {
    Statement statement(db, sql);
    return statement.step() ? statement.number(0) : 0;
}

// ---- reading ----

void readStrings(sqlite3* db, ResourceContents& contents) {
    Statement rows(db, "SELECT list, number, language, text FROM string");
    while (rows.step()) contents.strings[{rows.number(0), rows.number(1)}].set(rows.text(2), rows.text(3));
}

// Items and rows come in order, so that each one's place is the count of those before it; a gap is damage.
void requirePlace(size_t expected, int32_t place) {
    if (place < 0 || static_cast<size_t>(place) != expected) throw Damage("a dialog layout has gaps");
}

void readDialogs(sqlite3* db, int32_t version, ResourceContents& contents) {
    auto& dialogs = contents.dialogs;
    Statement boxes(db, "SELECT id, width, height, hook FROM dialog");
    while (boxes.step())
        dialogs[boxes.number(0)] = {boxes.number(0), boxes.number(1), boxes.number(2), boxes.number(3), {}, {}};

    const std::string box = version >= 2 ? "box" : "0";
    Statement items(db, "SELECT dialog, place, kind, id, x, y, width, height, hook, access, format, " + box +
                            " FROM item ORDER BY dialog, place");
    while (items.step()) {
        auto& all = dialogs.at(items.number(0)).items;
        requirePlace(all.size(), items.number(1));
        const auto n = [&](int column) { return items.number(column); };
        all.push_back({n(2), n(3), n(4), n(5), n(6), n(7), n(8), items.text(9), items.text(10), {}, {}, n(11)});
    }

    Statement rows(db, "SELECT dialog, place, number, value FROM row ORDER BY dialog, place, number");
    while (rows.step()) {
        auto& all = dialogs.at(rows.number(0)).items.at(static_cast<size_t>(rows.number(1))).rows;
        requirePlace(all.size(), rows.number(2));
        all.push_back({rows.number(3), {}});
    }

    Statement labels(db, "SELECT dialog, place, number, language, text FROM label");
    while (labels.step()) {
        DialogLayout& dialog = dialogs.at(labels.number(0));
        Texts* texts = &dialog.title;
        if (labels.number(1) != ownText) {
            ItemLayout& item = dialog.items.at(static_cast<size_t>(labels.number(1)));
            texts = &item.label;
            if (labels.number(2) != ownText) texts = &item.rows.at(static_cast<size_t>(labels.number(2))).label;
        }
        texts->set(labels.text(3), labels.text(4));
    }
}

void readIcons(sqlite3* db, ResourceContents& contents) {
    Statement rows(db, "SELECT id, size, pixels, sign FROM icon");
    while (rows.step()) {
        Icon icon{rows.number(0), rows.number(1), {}, rows.text(3)};
        const std::string pixels = rows.text(2);
        const auto size = static_cast<size_t>(icon.size);
        if (icon.size < 0 || icon.size > greatestIcon || pixels.size() != size * size)
            throw Damage("an icon has not as many pixels as its size tells");
        for (const char pixel : pixels) icon.pixels.push_back(pixel == '#');
        contents.icons[icon.id] = std::move(icon);
    }
}

void requireSound(sqlite3* db) {
    Statement check(db, "PRAGMA quick_check(1)");
    if (!check.step() || check.text(0) != "ok") throw Damage("its pages don't fit together");
}

// ---- writing ----

void writeTexts(Statement& insertion, int32_t dialog, int32_t place, int32_t number, const Texts& texts) {
    for (const auto& [language, text] : texts.all()) insertion.insert(dialog, place, number, language, Bytes{text});
}

void writeDialogs(sqlite3* db, const ResourceContents& contents) {
    Statement boxes(db, "INSERT INTO dialog VALUES(?,?,?,?)");
    Statement items(db, "INSERT INTO item VALUES(?,?,?,?,?,?,?,?,?,?,?,?)");
    Statement rows(db, "INSERT INTO row VALUES(?,?,?,?)");
    Statement labels(db, "INSERT INTO label VALUES(?,?,?,?,?)");
    for (const auto& [id, dialog] : contents.dialogs) {
        boxes.insert(id, dialog.width, dialog.height, dialog.hook);
        writeTexts(labels, id, ownText, ownText, dialog.title);
        int32_t place = 0;
        for (const ItemLayout& item : dialog.items) {
            items.insert(id, place, item.kind, item.id, item.x, item.y, item.width, item.height, item.hook, item.access,
                         item.format, item.group);
            writeTexts(labels, id, place, ownText, item.label);
            int32_t number = 0;
            for (const RowLayout& row : item.rows) {
                rows.insert(id, place, number, row.value);
                writeTexts(labels, id, place, number++, row.label);
            }
            ++place;
        }
    }
}

void writeStrings(sqlite3* db, const ResourceContents& contents) {
    Statement strings(db, "INSERT INTO string VALUES(?,?,?,?)");
    for (const auto& [key, texts] : contents.strings)
        for (const auto& [language, text] : texts.all()) strings.insert(key.first, key.second, language, Bytes{text});
}

void writeIcons(sqlite3* db, const ResourceContents& contents) {
    Statement icons(db, "INSERT INTO icon VALUES(?,?,?,?)");
    for (const auto& [id, icon] : contents.icons) {
        std::string pixels;
        for (const bool drawn : icon.pixels) pixels.push_back(drawn ? '#' : '.');
        icons.insert(id, icon.size, pixels, icon.sign);
    }
}

void writeAll(const std::string& path, const ResourceContents& contents) {
    const Database db = openDatabase(path, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    execute(db.get(), "PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF; PRAGMA application_id = " +
                          std::to_string(containerKind) +
                          "; PRAGMA user_version = " + std::to_string(containerVersion) + "; BEGIN");
    execute(db.get(), schema);
    writeStrings(db.get(), contents);
    writeDialogs(db.get(), contents);
    writeIcons(db.get(), contents);
    execute(db.get(), "COMMIT");
}

}  // namespace

const std::string* Texts::in(std::string_view language) const {
    auto found = byLanguage_.find(language);
    if (found == byLanguage_.end()) found = byLanguage_.find(fallbackLanguage);
    return found == byLanguage_.end() ? nullptr : &found->second;
}

const std::string& Texts::textIn(std::string_view language) const {
    static const std::string none;
    const std::string* text = in(language);
    return text ? *text : none;
}

ResourceContents readContainer(const std::string& path) {
    try {
        const Database db = openDatabase(path, SQLITE_OPEN_READONLY);
        if (pragma(db.get(), "PRAGMA application_id") != containerKind)
            refuse(path, "this is no resource file; make one with mcrsc");
        const int32_t version = pragma(db.get(), "PRAGMA user_version");
        if (version > containerVersion)
            refuse(path, "this resource file is of a newer make; make it again with this version's mcrsc");
        requireSound(db.get());
        ResourceContents contents;
        readStrings(db.get(), contents);
        readDialogs(db.get(), version, contents);
        readIcons(db.get(), contents);
        return contents;
    } catch (const Damage& damage) {
        refuse(path, "the resource file can't be read (" + std::string(damage.what()) + "); make it again with mcrsc");
    } catch (const std::out_of_range&) {
        refuse(path, "the resource file is damaged (a layout lacks parts); make it again with mcrsc");
    }
}

void writeContainer(const std::string& path, const ResourceContents& contents) {
    const std::string fresh = path + ".new";
    std::error_code ignored;
    std::filesystem::remove(fresh, ignored);
    try {
        writeAll(fresh, contents);
        std::filesystem::rename(fresh, path);
    } catch (const std::exception& error) {
        std::filesystem::remove(fresh, ignored);
        refuse(path, "can't be written (" + std::string(error.what()) + ")");
    }
}

}  // namespace host
