// Design files that are open: the active one and work files beside it, which cell libraries may be too.
#pragma once

#include <sys/types.h>

#include <string>

#include "mchost/model/container.h"
#include "mchost/model/model_ref.h"

namespace host {

// Holds a file against other writers, in this process and in others, for as long as it stands.
class WriterLock {
  public:
    WriterLock() = default;
    ~WriterLock();
    WriterLock(const WriterLock&) = delete;
    WriterLock& operator=(const WriterLock&) = delete;
    void take(const std::string& path);  // FileProblem when another one has it

  private:
    int file_ = -1;
};

class DesignFile {
  public:
    enum class Use {
        write,  // by one session at a time
        read,
        look,  // reading too, while isReadOnly tells of the file itself
    };

    // `path` is a full path of the system. Opened to write, a file that can't be written is read-only. FileProblem when
    // it can't be used.
    DesignFile(const std::string& path, Use use, FileKind kind = FileKind::designFile);
    DesignFile(const DesignFile&) = delete;
    DesignFile& operator=(const DesignFile&) = delete;

    const std::string& path() const { return path_; }
    const std::string& name() const { return name_; }  // as users write it
    bool isReadOnly() const { return readOnly_; }
    bool takesChanges() const { return use_ == Use::write && !readOnly_; }
    bool is(const std::string& path) const;  // whether that path leads to this file

    bool canBeStored() const;  // takes changes, and the file can still be written
    void save();               // what commands have changed. FileProblem when it can't be stored
    void saveWithViews();      // also when nothing but views was changed
    // Stores all in the one file, and gives back what deleted elements took, when that is much. FileProblem when that
    // can't be; the file is still open then, and can be stored and closed again.
    void close();
    bool shrinksAtClosing() const;  // closing lays the elements anew: addresses of records don't hold any more

    Model model;
    ModelRef place;  // the model shown by itself

  private:
    std::string path_, name_;
    Use use_;
    dev_t device_ = 0;
    ino_t inode_ = 0;
    bool readOnly_;
    WriterLock lock_;  // ends after the writer: closing any handle of a file drops the locks that SQLite has on it
    ContainerWriter writer_;
};

}  // namespace host
