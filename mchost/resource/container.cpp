#include "mchost/resource/container.h"

#include <span>
#include <system_error>

#include "mchost/base/new_file.h"
#include "mchost/base/sqlite.h"

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
    "CREATE TABLE icon(id INTEGER PRIMARY KEY, size INTEGER, pixels TEXT, sign TEXT);"
    "CREATE TABLE entry(menu INTEGER, place INTEGER, value INTEGER, hook INTEGER, PRIMARY KEY(menu, place))"
    " WITHOUT ROWID;"
    "CREATE TABLE menu_label(menu INTEGER, place INTEGER, language TEXT, text BLOB NOT NULL,"
    " PRIMARY KEY(menu, place, language)) WITHOUT ROWID;";

constexpr int32_t ownText = -1;        // place of the title of a dialog or menu, number of an item's label
constexpr int32_t greatestIcon = 256;  // pixels a side

[[noreturn]] void refuse(const std::string& path, const std::string& why) {
    throw ResourceError(path + ": " + why);
}

// What is wrong with the layouts; readers make a ResourceError of it.
struct Damage : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// A text of the user's, as bytes of Windows-1252.
std::span<const std::byte> bytesOf(const std::string& text) {
    return std::as_bytes(std::span(text));
}

int32_t numberAt(const Statement& rows, int column) {
    return static_cast<int32_t>(rows.integer(column));
}

std::string textAt(const Statement& rows, int column) {
    return std::string(rows.text(column));
}

// What becomes of a damaged file depends on who made it.
const std::string remedy =
    "use a copy of it; texts and dialogs can be made again with mcrsc, preferences by removing it";

std::string reasonOf(const SqliteFailure& failure) {
    switch (failure.code) {
        case SQLITE_BUSY:
        case SQLITE_LOCKED: return "another program is writing to the resource file; try again when it has ended";
        case SQLITE_PERM:
        case SQLITE_CANTOPEN:
        case SQLITE_READONLY:
            return "the resource file can't be opened (" + std::string(failure.what()) +
                   "); check its permissions and those of its folder";
        default: return "the resource file is damaged (" + std::string(failure.what()) + "); " + remedy;
    }
}

// ---- reading ----

void readStrings(Database& db, ResourceContents& contents) {
    Statement rows(db, "SELECT list, number, language, text FROM string");
    while (rows.step()) contents.strings[{numberAt(rows, 0), numberAt(rows, 1)}].set(textAt(rows, 2), textAt(rows, 3));
}

// Items and rows come in order, so that each one's place is the count of those before it; a gap is damage.
void requirePlace(size_t expected, int32_t place) {
    if (place < 0 || static_cast<size_t>(place) != expected) throw Damage("a dialog layout has gaps");
}

void readDialogs(Database& db, int32_t version, ResourceContents& contents) {
    auto& dialogs = contents.dialogs;
    Statement boxes(db, "SELECT id, width, height, hook FROM dialog");
    while (boxes.step())
        dialogs[numberAt(boxes, 0)] = {
            numberAt(boxes, 0), numberAt(boxes, 1), numberAt(boxes, 2), numberAt(boxes, 3), {}, {}};

    const std::string box = version >= 2 ? "box" : "0";
    Statement items(db, "SELECT dialog, place, kind, id, x, y, width, height, hook, access, format, " + box +
                            " FROM item ORDER BY dialog, place");
    while (items.step()) {
        auto& all = dialogs.at(numberAt(items, 0)).items;
        requirePlace(all.size(), numberAt(items, 1));
        const auto n = [&](int column) { return numberAt(items, column); };
        all.push_back({n(2), n(3), n(4), n(5), n(6), n(7), n(8), textAt(items, 9), textAt(items, 10), {}, {}, n(11)});
    }

    Statement rows(db, "SELECT dialog, place, number, value FROM row ORDER BY dialog, place, number");
    while (rows.step()) {
        auto& all = dialogs.at(numberAt(rows, 0)).items.at(static_cast<size_t>(numberAt(rows, 1))).rows;
        requirePlace(all.size(), numberAt(rows, 2));
        all.push_back({numberAt(rows, 3), {}});
    }

    Statement labels(db, "SELECT dialog, place, number, language, text FROM label");
    while (labels.step()) {
        DialogLayout& dialog = dialogs.at(numberAt(labels, 0));
        Texts* texts = &dialog.title;
        if (numberAt(labels, 1) != ownText) {
            ItemLayout& item = dialog.items.at(static_cast<size_t>(numberAt(labels, 1)));
            texts = &item.label;
            if (numberAt(labels, 2) != ownText) texts = &item.rows.at(static_cast<size_t>(numberAt(labels, 2))).label;
        }
        texts->set(textAt(labels, 3), textAt(labels, 4));
    }
}

void readIcons(Database& db, ResourceContents& contents) {
    Statement rows(db, "SELECT id, size, pixels, sign FROM icon");
    while (rows.step()) {
        Icon icon{numberAt(rows, 0), numberAt(rows, 1), {}, textAt(rows, 3)};
        const std::string pixels = textAt(rows, 2);
        const auto size = static_cast<size_t>(icon.size);
        if (icon.size < 0 || icon.size > greatestIcon || pixels.size() != size * size)
            throw Damage("an icon has not as many pixels as its size tells");
        for (const char pixel : pixels) icon.pixels.push_back(pixel == '#');
        contents.icons[icon.id] = std::move(icon);
    }
}

// A menu has entries or a title.
void readMenus(Database& db, ResourceContents& contents) {
    auto& menus = contents.menus;
    Statement entries(db, "SELECT menu, place, value, hook FROM entry ORDER BY menu, place");
    while (entries.step()) {
        auto& all = menus[numberAt(entries, 0)].entries;
        requirePlace(all.size(), numberAt(entries, 1));
        all.push_back({numberAt(entries, 2), numberAt(entries, 3), {}});
    }
    Statement labels(db, "SELECT menu, place, language, text FROM menu_label");
    while (labels.step()) {
        MenuLayout& menu = menus[numberAt(labels, 0)];
        const int32_t place = numberAt(labels, 1);
        Texts& texts = place == ownText ? menu.title : menu.entries.at(static_cast<size_t>(place)).label;
        texts.set(textAt(labels, 2), textAt(labels, 3));
    }
    for (auto& [id, menu] : menus) menu.id = id;
}

void requireSound(Database& db) {
    Statement check(db, "PRAGMA quick_check(1)");
    if (!check.step() || check.text(0) != "ok") throw Damage("its pages don't fit together");
    // A view or a trigger would run whatever somebody else wrote, without end if he likes.
    if (db.number("SELECT count(*) FROM sqlite_schema WHERE type IN ('view', 'trigger')") != 0)
        throw Damage("it holds more than resources");
}

// ---- writing ----

void writeTexts(Statement& insertion, int32_t dialog, int32_t place, int32_t number, const Texts& texts) {
    for (const auto& [language, text] : texts.all()) insertion.execute(dialog, place, number, language, bytesOf(text));
}

void writeDialogs(Database& db, const ResourceContents& contents) {
    Statement boxes(db, "INSERT INTO dialog VALUES(?,?,?,?)");
    Statement items(db, "INSERT INTO item VALUES(?,?,?,?,?,?,?,?,?,?,?,?)");
    Statement rows(db, "INSERT INTO row VALUES(?,?,?,?)");
    Statement labels(db, "INSERT INTO label VALUES(?,?,?,?,?)");
    for (const auto& [id, dialog] : contents.dialogs) {
        boxes.execute(id, dialog.width, dialog.height, dialog.hook);
        writeTexts(labels, id, ownText, ownText, dialog.title);
        int32_t place = 0;
        for (const ItemLayout& item : dialog.items) {
            items.execute(id, place, item.kind, item.id, item.x, item.y, item.width, item.height, item.hook,
                          item.access, item.format, item.group);
            writeTexts(labels, id, place, ownText, item.label);
            int32_t number = 0;
            for (const RowLayout& row : item.rows) {
                rows.execute(id, place, number, row.value);
                writeTexts(labels, id, place, number++, row.label);
            }
            ++place;
        }
    }
}

void writeStrings(Database& db, const ResourceContents& contents) {
    Statement strings(db, "INSERT INTO string VALUES(?,?,?,?)");
    for (const auto& [key, texts] : contents.strings)
        for (const auto& [language, text] : texts.all())
            strings.execute(key.first, key.second, language, bytesOf(text));
}

void writeIcons(Database& db, const ResourceContents& contents) {
    Statement icons(db, "INSERT INTO icon VALUES(?,?,?,?)");
    for (const auto& [id, icon] : contents.icons) {
        std::string pixels;
        for (const bool drawn : icon.pixels) pixels.push_back(drawn ? '#' : '.');
        icons.execute(id, icon.size, pixels, icon.sign);
    }
}

void writeMenus(Database& db, const ResourceContents& contents) {
    Statement entries(db, "INSERT INTO entry VALUES(?,?,?,?)");
    Statement labels(db, "INSERT INTO menu_label VALUES(?,?,?,?)");
    const auto write = [&](int32_t menu, int32_t place, const Texts& texts) {
        for (const auto& [language, text] : texts.all()) labels.execute(menu, place, language, bytesOf(text));
    };
    for (const auto& [id, menu] : contents.menus) {
        write(id, ownText, menu.title);
        int32_t place = 0;
        for (const EntryLayout& entry : menu.entries) {
            entries.execute(id, place, entry.value, entry.hook);
            write(id, place++, entry.label);
        }
    }
}

}  // namespace

void fillContainer(const std::string& path, const ResourceContents& contents) {
    Database db;
    db.open(path, SQLITE_OPEN_READWRITE);
    db.run("PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF; PRAGMA application_id = " +
           std::to_string(containerKind) + "; PRAGMA user_version = " + std::to_string(containerVersion));
    Transaction transaction(db);
    db.run(schema);
    writeStrings(db, contents);
    writeDialogs(db, contents);
    writeIcons(db, contents);
    writeMenus(db, contents);
    transaction.commit();
}

namespace {

int32_t readVersion(Database& db, const std::string& path) {
    if (db.number("PRAGMA application_id") != containerKind)
        refuse(path, "this is no resource file; give the name of one (.rsc)");
    const int64_t version = db.number("PRAGMA user_version");
    if (version > containerVersion)
        refuse(path, "this resource file was made by a newer version; open it with that version");
    return static_cast<int32_t>(version);
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

void openResourceDatabase(Database& db, const std::string& path) {
    // A database that may be written can go back to what stood before a process was killed. A file that can't be
    // written is opened for reading alone; one that was left with a log wants a new index beside it, which a folder
    // that can't be written doesn't take, and is whole by itself when the log is gone.
    db.open(path, SQLITE_OPEN_READWRITE);
    db.run("PRAGMA busy_timeout = 5000");
    try {
        db.number("PRAGMA schema_version");
    } catch (const SqliteFailure&) {
        if (folderCanBeWritten(path) || fileSize(path + "-wal") != 0) throw;
        db.close();
        db.openImmutable(path);
    }
}

ResourceContents readContainer(const std::string& path) {
    try {
        Database db;
        openResourceDatabase(db, path);
        const int32_t version = readVersion(db, path);
        requireSound(db);
        ResourceContents contents;
        readStrings(db, contents);
        readDialogs(db, version, contents);
        readIcons(db, contents);
        if (version >= 3) readMenus(db, contents);
        return contents;
    } catch (const SqliteFailure& failure) {
        if (failure.code == SQLITE_NOTADB) refuse(path, "this is no resource file; give the name of one (.rsc)");
        refuse(path, reasonOf(failure));
    } catch (const Damage& damage) {
        refuse(path, "the resource file is damaged (" + std::string(damage.what()) + "); " + remedy);
    } catch (const std::out_of_range&) {
        refuse(path, "the resource file is damaged (a layout lacks parts); " + remedy);
    }
}

void writeContainer(const std::string& path, const ResourceContents& contents) {
    try {
        NewFile file(path);
        fillContainer(file.name(), contents);
        file.replace();
    } catch (const std::exception& error) {
        refuse(path, "can't be written (" + std::string(error.what()) +
                         "); make sure that its folder is there and can be written to, and that there is room");
    }
}

}  // namespace host
