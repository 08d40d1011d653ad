// A design file or cell library on disk: an SQLite database whose application_id tells the kind and whose user_version
// tells the format. A cell library is one model whose elements are its cells.
//
// Tables: `model`, one row a model, with a digest of that row and of the model's rows in all other tables but
// `chunk`; `chunk`, the chunks of ElementStore in order, each with its digest. While changes are stored the
// database is in WAL mode, so a killed process leaves the last state that was stored whole; a file at rest is one plain
// file. A file that is only read isn't touched.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "mchost/base/sqlite.h"
#include "mchost/model/file_problem.h"
#include "mchost/model/model.h"

namespace host {

enum class FileKind { designFile, cellLibrary };

constexpr uint32_t applicationIds[] = {0x4D434431, 0x4D434331};  // by FileKind: "MCD1", "MCC1"
// The application_id of any database file; nothing for a file that isn't one. FileProblem when it can't be read.
std::optional<uint32_t> applicationIdOf(const std::string& path);

// Makes an empty file; FileProblem when the name is taken or it can't be written, and nothing is left then.
void createContainer(const std::string& path, bool is3d, FileKind kind = FileKind::designFile);

// Writes all of a model as a file, in place of any of that name that is at rest: whole, or FileProblem, and that file
// is as it was.
void replaceContainer(const std::string& path, Model& model, FileKind kind);

// Reads and checks all of a file. FileProblem when it can't be used.
void loadContainer(const std::string& path, Model& model, FileKind kind = FileKind::designFile);

// Stores the changes of a model that was loaded from the file.
class ContainerWriter {
  public:
    explicit ContainerWriter(std::string path) : path_(std::move(path)) {}
    ~ContainerWriter();

    // All changes, or none: FileProblem when they can't be stored, and they are still known as changes then.
    void save(Model& model);
    // Brings all into the one file and ends the database. FileProblem when the file isn't whole without its log then;
    // what was saved is safe in the two of them.
    void close();
    // Brings in what a killed session left beside the file. Where that can't be, the log goes on being read.
    void takeInLog() noexcept;
    // Gives the disk back what the file no longer needs; it stays as it is when that fails.
    void shrink() noexcept;

  private:
    void open();

    std::string path_;
    Database database_;
};

bool hasChanges(Model& model);

}  // namespace host
