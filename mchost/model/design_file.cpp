#include "mchost/model/design_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "mchost/base/paths.h"

namespace host {
namespace {

constexpr uint64_t littleWaste = 1024 * 1024;

bool canWrite(const std::string& path) {
    return faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0;
}

bool fileAndFolderCanBeWritten(const std::string& path) {
    return canWrite(path) && canWrite(path.substr(0, path.find_last_of('/') + 1));
}

}  // namespace

WriterLock::~WriterLock() {
    if (file_ >= 0) ::close(file_);
}

void WriterLock::take(const std::string& path) {
    file_ = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file_ >= 0 && flock(file_, LOCK_EX | LOCK_NB) == 0) return;
    if (file_ >= 0 && errno == EWOULDBLOCK) {
        throw FileProblem("another session has it open. Close it there first, or open a copy of it.");
    }
    throw FileProblem(std::string("it can't be opened (") + std::strerror(errno) +
                      "). Check its name and permissions.");
}

DesignFile::DesignFile(const std::string& path, Use use, FileKind kind)
    : place{this},
      path_(path),
      name_(hostName(path)),
      use_(use),
      readOnly_(use == Use::read || !fileAndFolderCanBeWritten(path)),
      writer_(path) {
    const bool writes = takesChanges();
    if (writes) lock_.take(path);
    loadContainer(path, model, kind);
    if (writes) writer_.takeInLog();
    struct stat info;
    if (stat(path.c_str(), &info) == 0) {
        device_ = info.st_dev;
        inode_ = info.st_ino;
    }
}

bool DesignFile::is(const std::string& path) const {
    struct stat info;
    return stat(path.c_str(), &info) == 0 && info.st_dev == device_ && info.st_ino == inode_;
}

void DesignFile::save() {
    if (takesChanges()) writer_.save(model);
}

void DesignFile::saveWithViews() {
    if (model.views.changed) model.tablesChanged = true;
    save();
}

bool DesignFile::canBeStored() const {
    return takesChanges() && fileAndFolderCanBeWritten(path_);
}

bool DesignFile::shrinksAtClosing() const {
    const ElementStore& elements = model.elements;
    return takesChanges() && elements.wasteBytes() > littleWaste && elements.wasteBytes() > elements.usedBytes() / 2;
}

void DesignFile::close() {
    const bool shrinks = shrinksAtClosing();
    if (shrinks) model.elements.compact();
    saveWithViews();
    if (shrinks) writer_.shrink();
    if (takesChanges()) writer_.close();
}

}  // namespace host
