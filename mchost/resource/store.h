// What applications keep in a resource file, in tables beside those of container.h:
//
//   block(type, id, attributes, name, digest, data)   a typed block; the digest is over its key and its bytes
//   list(id, name, fields, members)                   a string list, and how many members it has
//   member(list, place, text, info)                   info: `fields` 32-bit numbers, little-endian
//   about(title)
//
// The tables are made by the first write. Each write is one transaction of the database, which is in WAL mode from the
// first write until the store closes, so that a killed process, a full disk or a second writer leave whole content
// only.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace host {

class Database;

// What can't be read or written; what() says of which file and why, and what to do.
struct StoreFailure : std::runtime_error {
    StoreFailure(const std::string& line, bool protectedFile) : std::runtime_error(line), readOnly(protectedFile) {}
    bool readOnly;  // the file or its folder can't be written to
};

enum class Put { add, replace, either };

struct StoredList {
    int32_t fields = 0;              // info fields of a member
    std::vector<std::string> texts;  // Windows-1252
    std::vector<int32_t> info;       // `fields` values for each text
};

struct BlockHead {
    int32_t type, id, size, attributes;
    std::string name;
};

struct ListHead {
    int32_t id, members;
    std::string name;
};

// Which file it is, whatever its name; of no file: zeros.
struct FilePlace {
    dev_t device = 0;
    ino_t inode = 0;
    bool operator==(const FilePlace&) const = default;
};

class ResourceStore {
  public:
    explicit ResourceStore(std::string path);  // of a resource file that was read; it is opened when it is needed
    ~ResourceStore();                          // as close
    ResourceStore(const ResourceStore&) = delete;
    ResourceStore& operator=(const ResourceStore&) = delete;

    const std::string& path() const { return path_; }

    // Ends the database, which the next call opens again. A failure when what was written stays in the log beside the
    // file; nothing is lost then as long as the two stay together.
    void close();

    // Nothing when there is none.
    std::optional<std::vector<std::byte>> block(int32_t type, int32_t id);
    void put(Put how, int32_t type, int32_t id, std::span<const std::byte> bytes, int32_t attributes,
             std::string_view name);  // attributes and name of a replaced block stay
    // A list that lacks members, or has members that don't fit, ends in front of the first such one; *cut tells so.
    std::optional<StoredList> list(int32_t id, bool* cut);
    void put(Put how, int32_t id, const StoredList& list, std::string_view name);

    std::vector<BlockHead> blocks();  // all, in order of type and id
    std::vector<ListHead> lists();    // all, in order of id
    std::string title();

    // Takes away all content, that of container.h too, and sets the title.
    void clear(std::string_view title);

  private:
    struct Statements;
    Database& reading();
    Database& writing();
    void requireInPlace() const;
    bool hasTable(const char* name);
    template <class Head, class Make>
    std::vector<Head> heads(const char* table, const char* select, Make make);
    [[noreturn]] void fail(const std::string& why, bool readOnly = false) const;
    template <class Body>
    auto attempt(Body body);

    std::string path_;
    std::unique_ptr<Database> database_;
    std::unique_ptr<Statements> statements_;
    FilePlace place_;
    bool writable_ = false;  // the tables are there and the log is on
};

// Makes a resource file without content. Whatever bears the name already stays, with what is in it: another process may
// have made it at the same time. Throws StoreFailure.
void makeResourceFile(const std::string& path, std::string_view title);
// Makes a resource file without content under a name that is free, or empties the resource file of that name. Any other
// file is left as it is. Throws StoreFailure or ResourceError.
void createResourceFile(const std::string& path, std::string_view title);

}  // namespace host
