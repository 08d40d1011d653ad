#include "mchost/model/container.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>

#include "mchost/base/new_file.h"
#include "mchost/base/paths.h"
#include "mchost/base/utf8.h"
#include "mchost/model/digest.h"
#include "mchost/model/format.h"
#include "mchost/model/table_rules.h"

namespace host {
namespace {

// What is wrong with a file that isn't of the kind, by FileKind.
constexpr const char* otherFile[] = {
    "it isn't a design file. Give the name of a design file (.mcd).",
    "it isn't a cell library. Give the name of a cell library (.cel).",
};
constexpr int pageBytes = 8192;
constexpr int64_t onlyModel = 1;
constexpr uint32_t mostChunkBytes = ElementStore::maxUnitBytes + sizeof(RecordHead);

const char* const newer = "it was made by a newer version. Open it with that version.";
const char* const damaged = "it is damaged and was left as it is. Open a copy of it from before the damage.";

std::span<const std::byte> bytesOf(std::string_view text) {
    return std::as_bytes(std::span(text));
}

std::string systemReason(int error) {
    return std::strerror(error);
}

// ---- the model's own rows ----

// The values of the model and its tables in one string of bytes, for the digest of the model's row.
class Description {
  public:
    void add(int64_t value) { bytes_.append(reinterpret_cast<const char*>(&value), sizeof value); }
    void add(double value) {
        value += 0.0;  // the database doesn't keep the sign of -0
        bytes_.append(reinterpret_cast<const char*>(&value), sizeof value);
    }
    void add(std::string_view text) {
        add(static_cast<int64_t>(text.size()));
        bytes_.append(text);
    }
    template <class... Values>
    void row(const Values&... values) {
        (add(static_cast<
             std::conditional_t<std::is_integral_v<Values>, int64_t,
                                std::conditional_t<std::is_floating_point_v<Values>, double, std::string_view>>>(
             values)),
         ...);
    }
    int64_t digest() const { return static_cast<int64_t>(host::digest(bytesOf(bytes_))); }

  private:
    std::string bytes_;
};

template <class Numbers>
std::string_view numberBytes(const Numbers& numbers) {
    return {reinterpret_cast<const char*>(std::data(numbers)), std::size(numbers) * sizeof *std::data(numbers)};
}

std::string_view bytesOfPoint(const Point3d& p) {
    return {reinterpret_cast<const char*>(&p), sizeof p};
}

// Calls row(values...) with the columns of each table's rows behind their first one, the model's number.
template <class Row>
void forEachLevelRow(const Model& model, Row row) {
    for (const Level& l : model.levels) {
        if (!l.stored) continue;
        const auto& [color, style, weight, fillColor, params] = l.byLevel;
        row(l.id, l.code, toUtf8(l.name), color, style, weight, fillColor, params.modifiers, params.scale,
            params.startWidth, params.endWidth, l.override.color, l.override.style, l.override.weight);
    }
}

template <class Row>
void forEachTextStyleRow(const Model& model, Row row) {
    for (const auto& [name, style] : model.textStyles) {
        const auto& [p, s] = style;
        row(toUtf8(name), p.font, p.just, p.textStyle, p.styleFields, p.flags, p.slant, p.lineSpacing, s.mode, s.width,
            s.height, s.aspect);
    }
}

template <class Row>
void forEachAttachmentRow(const Model& model, Row row) {
    for (const Attachment& a : model.attachments)
        row(a.number, a.file, numberBytes(a.toParent.form), numberBytes(a.clip), a.shown, a.hidden);
}

template <class Row>
void forEachAttachmentClipRow(const Model& model, Row row) {
    for (const Attachment& a : model.attachments) {
        if (a.clipElement != 0) row(a.number, a.clipElement);
    }
}

// Views are counted from 1 in files.
template <class Row>
void forEachAttachmentLevelRow(const Model& model, Row row) {
    for (const Attachment& a : model.attachments) {
        for (int32_t view = 0; view < viewCount; ++view) {
            for (const std::wstring& name : a.levelsOff[static_cast<size_t>(view)])
                row(a.number, view + 1, toUtf8(name));
        }
    }
}

template <class Row>
void forEachViewRow(const Model& model, Row row) {
    for (int32_t view = 0; view < viewCount; ++view) {
        const View& v = model.views.views[static_cast<size_t>(view)];
        row(view + 1, v.isOpen, numberBytes(v.rotation.form), bytesOfPoint(v.origin), bytesOfPoint(v.extent),
            v.controls);
    }
}

template <class Row>
void forEachViewLevelRow(const Model& model, Row row) {
    for (int32_t view = 0; view < viewCount; ++view) {
        for (const std::wstring& name : model.views.views[static_cast<size_t>(view)].levelsOff)
            row(view + 1, toUtf8(name));
    }
}

int64_t modelDigest(const Model& model, int64_t nextPosition, int64_t chunkCount, uint32_t format) {
    Description all;
    const auto row = [&](const auto&... values) { all.row(values...); };
    all.row(model.is3d, model.uorPerMaster, nextPosition, model.nextLevel, chunkCount);
    forEachLevelRow(model, row);
    for (const LineStyle& style : model.lineStyles) all.row(style.number, style.name, numberBytes(style.pattern));
    forEachTextStyleRow(model, row);
    forEachAttachmentRow(model, row);
    if (format >= viewsSince) {
        forEachViewRow(model, row);
        forEachViewLevelRow(model, row);
    }
    if (format >= attachmentLevelsSince) {
        forEachAttachmentClipRow(model, row);
        forEachAttachmentLevelRow(model, row);
    }
    return all.digest();
}

void storeAttachments(Database& database, const Model& model) {
    Statement row(database, "INSERT INTO attachment VALUES(?,?,?,?,?,?,?)");
    for (const Attachment& a : model.attachments) {
        row.execute(onlyModel, a.number, std::string_view(a.file), bytesOf(numberBytes(a.toParent.form)),
                    bytesOf(numberBytes(a.clip)), int32_t{a.shown}, int32_t{a.hidden});
    }
    Statement clip(database, "INSERT INTO attachment_clip VALUES(?,?,?)");
    forEachAttachmentClipRow(model, [&](const auto&... values) { clip.execute(onlyModel, values...); });
    Statement level(database, "INSERT INTO attachment_level VALUES(?,?,?,?)");
    forEachAttachmentLevelRow(model, [&](const auto&... values) { level.execute(onlyModel, values...); });
}

void storeViews(Database& database, const Model& model) {
    Statement row(database, "INSERT INTO view VALUES(?,?,?,?,?,?,?)");
    forEachViewRow(model, [&](int32_t number, bool open, std::string_view rotation, std::string_view origin,
                              std::string_view extent, uint32_t controls) {
        row.execute(onlyModel, number, int32_t{open}, bytesOf(rotation), bytesOf(origin), bytesOf(extent), controls);
    });
    Statement level(database, "INSERT INTO view_level VALUES(?,?,?)");
    forEachViewLevelRow(model, [&](const auto&... values) { level.execute(onlyModel, values...); });
}

void storeTables(Database& database, const Model& model) {
    database.run(
        "DELETE FROM level; DELETE FROM line_style; DELETE FROM text_style; DELETE FROM attachment;"
        "DELETE FROM view; DELETE FROM view_level; DELETE FROM attachment_clip; DELETE FROM attachment_level");
    Statement level(database, "INSERT INTO level VALUES(?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)");
    forEachLevelRow(model, [&](const auto&... values) { level.execute(onlyModel, values...); });
    Statement lineStyle(database, "INSERT INTO line_style VALUES(?,?,?,?)");
    for (const LineStyle& style : model.lineStyles) {
        lineStyle.execute(onlyModel, style.number, bytesOf(style.name), bytesOf(numberBytes(style.pattern)));
    }
    Statement textStyle(database, "INSERT INTO text_style VALUES(?,?,?,?,?,?,?,?,?,?,?,?,?)");
    forEachTextStyleRow(model, [&](const auto&... values) { textStyle.execute(onlyModel, values...); });
    storeAttachments(database, model);
    storeViews(database, model);
}

void storeModelRow(Database& database, const Model& model, int64_t chunkCount) {
    Statement row(database, "INSERT OR REPLACE INTO model VALUES(?,?,?,?,?,?,?)");
    row.execute(onlyModel, int32_t{model.is3d}, model.uorPerMaster, model.elements.nextPosition(), model.nextLevel,
                chunkCount, modelDigest(model, model.elements.nextPosition(), chunkCount, newestFormat));
}

void loadLevels(Database& database, Model& model) {
    Statement s(database, "SELECT * FROM level WHERE model=1 ORDER BY id");
    while (s.step()) {
        const auto word = [&](int column) { return static_cast<uint32_t>(s.integer(column)); };
        const auto number = [&](int column) { return static_cast<int32_t>(s.integer(column)); };
        model.levels.push_back(
            {.id = word(1),
             .code = number(2),
             .name = fromUtf8(s.text(3)),
             .byLevel = {word(4), number(5), word(6), word(7), {word(8), s.real(9), s.real(10), s.real(11), 1, 1}},
             .override = {word(12), number(13), word(14)},
             .stored = true});
    }
}

void loadLineStyles(Database& database, Model& model) {
    Statement s(database, "SELECT * FROM line_style WHERE model=1 ORDER BY number DESC");
    while (s.step()) {
        const auto pattern = s.blob(3);
        LineStyle style = {static_cast<int32_t>(s.integer(1)), std::string(s.text(2)),
                           std::vector<double>(pattern.size() / sizeof(double))};
        if (!style.pattern.empty()) std::memcpy(style.pattern.data(), pattern.data(), style.pattern.size() * 8);
        model.lineStyles.push_back(std::move(style));
    }
}

void loadTextStyles(Database& database, Model& model) {
    Statement s(database, "SELECT * FROM text_style WHERE model=1");
    while (s.step()) {
        const auto number = [&](int column) { return static_cast<int32_t>(s.integer(column)); };
        const TextParams params = {number(2), number(3), number(4), number(5), static_cast<uint32_t>(s.integer(6)),
                                   s.real(7), s.real(8)};
        model.textStyles[fromUtf8(s.text(1))] = {params, {number(9), s.real(10), s.real(11), s.real(12)}};
    }
}

bool readNumbers(std::span<const std::byte> from, void* to, size_t bytes) {
    if (from.size() != bytes) return false;
    if (bytes != 0) std::memcpy(to, from.data(), bytes);
    return true;
}

Attachment& attachmentOfRow(Model& model, int64_t number) {
    const auto found = std::ranges::find(model.attachments, number, &Attachment::number);
    if (found == model.attachments.end()) throw FileProblem(damaged);
    return *found;
}

void loadAttachmentClips(Database& database, Model& model) {
    Statement s(database, "SELECT attachment,element FROM attachment_clip WHERE model=1");
    while (s.step()) {
        const int64_t element = s.integer(1);
        if (element < 1 || element > UINT32_MAX) throw FileProblem(damaged);
        attachmentOfRow(model, s.integer(0)).clipElement = static_cast<FilePos>(element);
    }
}

size_t viewOfRow(int64_t number) {
    if (number < 1 || number > viewCount) throw FileProblem(damaged);
    return static_cast<size_t>(number - 1);
}

void loadAttachmentLevels(Database& database, Model& model) {
    Statement s(database, "SELECT attachment,view,name FROM attachment_level WHERE model=1");
    while (s.step())
        attachmentOfRow(model, s.integer(0)).levelsOff[viewOfRow(s.integer(1))].insert(fromUtf8(s.text(2)));
}

void loadAttachments(Database& database, Model& model) {
    if (formatOf(database) < attachmentsSince) return;
    Statement s(database, "SELECT * FROM attachment WHERE model=1 ORDER BY number");
    while (s.step()) {
        Attachment a = {.number = static_cast<uint32_t>(s.integer(1)),
                        .file = std::string(s.text(2)),
                        .clip = Ring(s.blob(4).size() / sizeof(Point2)),
                        .shown = s.integer(5) != 0,
                        .hidden = s.integer(6) != 0};
        if (!readNumbers(s.blob(3), &a.toParent, sizeof a.toParent)) throw FileProblem(damaged);
        if (!readNumbers(s.blob(4), a.clip.data(), a.clip.size() * sizeof(Point2))) throw FileProblem(damaged);
        model.attachments.push_back(std::move(a));
    }
    if (formatOf(database) < attachmentLevelsSince) return;
    loadAttachmentClips(database, model);
    loadAttachmentLevels(database, model);
}

void loadViewLevels(Database& database, Model& model) {
    Statement s(database, "SELECT * FROM view_level WHERE model=1");
    while (s.step()) model.views.views[viewOfRow(s.integer(1))].levelsOff.insert(fromUtf8(s.text(2)));
}

void loadViews(Database& database, Model& model) {
    if (formatOf(database) < viewsSince) return;
    Statement s(database, "SELECT * FROM view WHERE model=1 ORDER BY number");
    for (View& view : model.views.views) {
        if (!s.step()) throw FileProblem(damaged);
        view.isOpen = s.integer(2) != 0;
        view.controls = static_cast<uint32_t>(s.integer(6));
        if (!readNumbers(s.blob(3), &view.rotation, sizeof view.rotation)) throw FileProblem(damaged);
        if (!readNumbers(s.blob(4), &view.origin, sizeof view.origin)) throw FileProblem(damaged);
        if (!readNumbers(s.blob(5), &view.extent, sizeof view.extent)) throw FileProblem(damaged);
    }
    if (s.step()) throw FileProblem(damaged);
    loadViewLevels(database, model);
}

// ---- reading a file ----

uint32_t bigEndian(const unsigned char* at) {
    return at[0] << 24 | at[1] << 16 | at[2] << 8 | at[3];
}

// The first bytes of a database file ("SQLite Database File Format", the database header).
using FileHead = std::array<unsigned char, 100>;
uint32_t headVersion(const FileHead& head) {
    return bigEndian(&head[60]);
}
uint32_t headApplication(const FileHead& head) {
    return bigEndian(&head[68]);
}
bool headHasFreePages(const FileHead& head) {
    return bigEndian(&head[32]) != 0 || bigEndian(&head[36]) != 0;
}
bool headIsWal(const FileHead& head) {
    return head[18] == 2 || head[19] == 2;
}

// Nothing for a file that isn't a database.
std::optional<FileHead> databaseHead(const std::string& path) {
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);  // nobody may write to a pipe
    if (file < 0) throw FileProblem("it can't be read (" + systemReason(errno) + "). Check its name and permissions.");
    FileHead head = {};
    const ssize_t got = read(file, head.data(), head.size());
    ::close(file);
    constexpr std::string_view magic("SQLite format 3\0", 16);
    if (got != ssize_t{100} || std::memcmp(head.data(), magic.data(), magic.size()) != 0) return std::nullopt;
    return head;
}

FileHead readHead(const std::string& path, FileKind kind) {
    const std::optional<FileHead> head = databaseHead(path);
    const auto row = static_cast<size_t>(kind);
    if (!head || headApplication(*head) != applicationIds[row]) throw FileProblem(otherFile[row]);
    if (headVersion(*head) > newestFormat) throw FileProblem(newer);
    return *head;
}

// A database to read from. A file that was left in WAL mode needs its companion files, which can't be made in a folder
// that can't be written; without a log that holds something the file by itself is whole. A session that was killed
// while it changed the mode has left a journal, which only a database that may be written goes back by.
void openForReading(Database& database, const std::string& path, const FileHead& head) {
    if (headIsWal(head) && fileSize(path + "-wal") == 0 && !folderCanBeWritten(path)) {
        return database.openImmutable(path);
    }
    database.open(path, fileSize(path + "-journal") != 0 ? SQLITE_OPEN_READWRITE : SQLITE_OPEN_READONLY);
    database.run("PRAGMA busy_timeout=2000");
}

// What a log beside the file holds counts, so the head of the file alone doesn't tell.
void checkFormat(Database& database) {
    if (formatOf(database) > newestFormat) throw FileProblem(newer);
    if (!hasItsTables(database)) throw FileProblem(damaged);
}

bool isWholeAlone(const std::string& path) {
    return fileSize(path + "-wal") == 0 && fileSize(path + "-journal") == 0;
}

// The end of a page that is cut would be read as zeros. Whoever reads already keeps others from writing to the file.
void checkPages(const std::string& path, const FileHead& head) {
    const int64_t bytes = std::max(head[16] << 8 | head[17], 512);
    if (isWholeAlone(path) && fileSize(path) % bytes != 0) throw FileProblem(damaged);
}

// Free pages are never looked at while reading, but would be written to later.
void checkFreePages(Database& database, const FileHead& head) {
    if (!headHasFreePages(head)) return;
    Statement s(database, "PRAGMA quick_check(1)");
    if (!s.step() || s.text(0) != "ok") throw FileProblem(damaged);
}

void loadChunks(Database& database, Model& model, int64_t count) {
    Statement s(database, "SELECT rowid,number,digest FROM chunk WHERE model=1 ORDER BY number");
    BlobReader blob(database, "chunk", "bytes");
    for (int64_t number = 0; number < count; ++number) {
        if (!s.step() || !s.isInteger(1) || s.integer(1) != number) throw FileProblem(damaged);
        const uint32_t used = blob.open(s.integer(0));
        if (used > mostChunkBytes) throw FileProblem(damaged);
        const bool isLast = number + 1 == count;  // it goes on being filled
        ElementStore::Chunk& chunk =
            model.elements.appendChunk(isLast ? std::max(used, ElementStore::chunkBytes) : used);
        chunk.used = used;
        chunk.changed = false;
        const std::span<std::byte> bytes(chunk.bytes, used);
        blob.read(bytes);
        if (static_cast<int64_t>(digest(bytes)) != s.integer(2)) throw FileProblem(damaged);
        if (!model.elements.takeRecords()) throw FileProblem(damaged);
    }
    if (s.step()) throw FileProblem(damaged);
}

void loadModel(Database& database, Model& model) {
    Statement s(database, "SELECT * FROM model");
    if (!s.step() || s.integer(0) != onlyModel) throw FileProblem(damaged);
    model.is3d = s.integer(1) != 0;
    model.uorPerMaster = s.real(2);
    model.nextLevel = static_cast<LevelId>(s.integer(4));
    const int64_t nextPosition = s.integer(3), chunkCount = s.integer(5), sum = s.integer(6);
    if (s.step() || nextPosition < 1 || nextPosition > UINT32_MAX) throw FileProblem(damaged);
    loadLevels(database, model);
    loadLineStyles(database, model);
    loadTextStyles(database, model);
    loadAttachments(database, model);
    loadViews(database, model);
    if (modelDigest(model, nextPosition, chunkCount, formatOf(database)) != sum || !tablesAreSound(model))
        throw FileProblem(damaged);
    model.elements.reservePositions(static_cast<uint32_t>(nextPosition));
    loadChunks(database, model, chunkCount);
}

std::string sqliteReason(const SqliteFailure& failure) {
    switch (failure.code) {
        case SQLITE_FULL: return "the disk is full. Make room on it and try again.";
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB: return damaged;
        case SQLITE_BUSY:
        case SQLITE_LOCKED: return "another program has it open. Close it there first.";
        case SQLITE_READONLY:
        case SQLITE_PERM:
        case SQLITE_CANTOPEN:
            return "the file or its folder can't be written (" + std::string(failure.what()) +
                   "). Check their permissions, or copy the file to another folder.";
        default:
            return "the disk or its file system fails (" + std::string(failure.what()) +
                   "). Make sure that there is room, and try again.";
    }
}

void storeChunks(Database& database, Model& model) {
    Statement row(database, "INSERT OR REPLACE INTO chunk VALUES(?,?,?,?)");
    int64_t number = 0;
    for (const ElementStore::Chunk& chunk : model.elements.chunks()) {
        const std::span<const std::byte> bytes(chunk.bytes, chunk.used);
        if (chunk.changed) row.execute(onlyModel, number, static_cast<int64_t>(digest(bytes)), bytes);
        ++number;
    }
    Statement(database, "DELETE FROM chunk WHERE model=? AND number>=?").execute(onlyModel, number);
}

// Writes all of a model to a new file. Nobody knows the file before it has its name, so it needs no journal, and one
// wait for the disk behind it all is enough.
void writeWhole(const std::string& path, Model& model, FileKind kind) {
    Database database;
    database.open(path, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    database.run("PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF");
    database.run("PRAGMA page_size=" + std::to_string(pageBytes) +
                 "; PRAGMA application_id=" + std::to_string(applicationIds[static_cast<size_t>(kind)]));
    Transaction transaction(database);
    bringUpToDate(database);
    for (ElementStore::Chunk& chunk : model.elements.chunks()) chunk.changed = true;
    storeChunks(database, model);
    storeTables(database, model);
    storeModelRow(database, model, static_cast<int64_t>(model.elements.chunks().size()));
    transaction.commit();
}

// Writes a file under a name of its own, and then gives it the path.
void writeAndPublish(const std::string& path, Model& model, FileKind kind, void (NewFile::*publish)()) {
    try {
        NewFile file(path);
        writeWhole(file.name(), model, kind);
        (file.*publish)();
    } catch (const SqliteFailure& failure) {
        throw FileProblem(sqliteReason(failure));
    } catch (const std::system_error& error) {
        throw FileProblem("it can't be made (" + error.code().message() + "). Give another name or folder.");
    }
}

void removeCompanions(const std::string& path) {
    for (const char* companion : {"-wal", "-shm", "-journal"}) unlink((path + companion).c_str());
}

}  // namespace

std::optional<uint32_t> applicationIdOf(const std::string& path) {
    const std::optional<FileHead> head = databaseHead(path);
    return head ? std::optional(headApplication(*head)) : std::nullopt;
}

void createContainer(const std::string& path, bool is3d, FileKind kind) {
    struct stat there;
    if (lstat(path.c_str(), &there) == 0) throw FileProblem("a file of that name is there. Give another name.");
    removeCompanions(path);  // the log of a file that was removed would be taken for the new file's own
    Model model = {};
    model.is3d = is3d;
    addFirstLevel(model);
    writeAndPublish(path, model, kind, &NewFile::publish);
}

void replaceContainer(const std::string& path, Model& model, FileKind kind) {
    writeAndPublish(path, model, kind, &NewFile::replace);
}

void loadContainer(const std::string& path, Model& model, FileKind kind) {
    const FileHead head = readHead(path, kind);
    try {
        Database database;
        openForReading(database, path, head);
        database.run("BEGIN");
        checkFormat(database);
        checkPages(path, head);
        checkFreePages(database, head);
        loadModel(database, model);
    } catch (const SqliteFailure& failure) {
        throw FileProblem(failure.code == SQLITE_ERROR ? damaged : sqliteReason(failure));
    }
}

namespace {

// The database keeps to one file from now on. A reader holds that up, and nothing is lost then: its log is empty.
// Readers that follow each other leave short gaps, so the log waits long for one.
void endLog(Database& database) {
    database.run("PRAGMA busy_timeout=10000; PRAGMA wal_checkpoint(TRUNCATE)");
    try {
        database.run("PRAGMA journal_mode=DELETE");
    } catch (const SqliteFailure& failure) {
        if (failure.code != SQLITE_BUSY) throw;
    }
}

}  // namespace

bool hasChanges(Model& model) {
    return model.tablesChanged ||
           std::ranges::any_of(model.elements.chunks(), [](const ElementStore::Chunk& c) { return c.changed; });
}

void ContainerWriter::open() {
    if (database_.isOpen()) return;
    database_.open(path_, SQLITE_OPEN_READWRITE);
    database_.run("PRAGMA busy_timeout=2000; PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL");
}

void ContainerWriter::save(Model& model) {
    if (!hasChanges(model)) return;
    try {
        open();
        Transaction transaction(database_);
        const bool lacksTables = formatOf(database_) != newestFormat;
        bringUpToDate(database_);
        storeChunks(database_, model);
        if (lacksTables || model.tablesChanged || model.views.differ) storeTables(database_, model);
        storeModelRow(database_, model, static_cast<int64_t>(model.elements.chunks().size()));
        transaction.commit();
    } catch (const SqliteFailure& failure) {
        throw FileProblem(sqliteReason(failure));
    }
    for (ElementStore::Chunk& chunk : model.elements.chunks()) chunk.changed = false;
    model.tablesChanged = model.views.differ = model.views.changed = false;
}

void ContainerWriter::takeInLog() noexcept {
    if (access((path_ + "-wal").c_str(), F_OK) != 0) return;
    try {
        open();
        close();
    } catch (const std::exception&) {
        database_.close();
    }
}

void ContainerWriter::shrink() noexcept {
    try {
        if (database_.isOpen()) database_.run("VACUUM");
    } catch (const SqliteFailure&) {
        // Nothing has changed.
    }
}

ContainerWriter::~ContainerWriter() {
    try {
        if (database_.isOpen()) close();
    } catch (const std::exception&) {
        // Those who can still tell somebody have closed it before.
    }
}

void ContainerWriter::close() {
    if (!database_.isOpen() && isWholeAlone(path_)) return;
    std::string reason;
    try {
        open();
        endLog(database_);
    } catch (const SqliteFailure& failure) {
        reason = sqliteReason(failure);
    }
    database_.close();
    if (reason.empty() && !isWholeAlone(path_)) reason = "another program reads it. Close it there.";
    if (reason.empty()) return;
    throw FileProblem("its last changes are in \"" + hostName(path_) + "-wal\" and couldn't be brought into it: " +
                      reason + " Keep the two together until it has been opened and closed again.");
}

}  // namespace host
