#include "mchost/files/copy.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "mchost/base/guard.h"
#include "mchost/base/paths.h"
#include "mchost/mdl/files.h"

namespace host {

namespace {

namespace fs = std::filesystem;

class Descriptor {
  public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() { close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    operator int() const { return number_; }
    // 0, or the error that storing what was written met.
    int close() {
        const int number = std::exchange(number_, -1);
        return number >= 0 && ::close(number) != 0 ? errno : 0;
    }

  private:
    int number_;
};

int writeAll(int to, const char* bytes, size_t size) {
    while (size > 0) {
        const ssize_t written = write(to, bytes, size);
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return errno;
        bytes += written;
        size -= static_cast<size_t>(written);
    }
    return 0;
}

int copyBytes(int to, int from) {
    std::vector<char> piece(size_t{1} << 18);
    for (;;) {
        const ssize_t count = read(from, piece.data(), piece.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return errno;
        if (count == 0) return 0;
        if (const int error = writeAll(to, piece.data(), static_cast<size_t>(count))) return error;
    }
}

int copyInto(int to, const fs::path& source) {
    const Descriptor from(open(source.c_str(), O_RDONLY | O_CLOEXEC));
    return from < 0 ? errno : copyBytes(to, from);
}

// Such as a printer's device: it has its place and takes bytes.
int copyToDevice(const fs::path& device, const fs::path& source) {
    Descriptor to(open(device.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY));
    if (to < 0) return errno;
    const int error = copyInto(to, source);
    return error != 0 ? error : to.close();
}

}  // namespace

TemporaryFile::TemporaryFile(const fs::path& folder) : path_((folder / ".mcXXXXXX").string()) {
    const SignalsHeld held;
    descriptor_ = mkostemp(path_.data(), O_CLOEXEC);
    if (descriptor_ < 0)
        error_ = errno;
    else
        noted_.emplace(path_.c_str());
}

TemporaryFile::~TemporaryFile() {
    if (descriptor_ < 0) return;
    close(descriptor_);
    if (!path_.empty()) unlink(path_.c_str());
}

int TemporaryFile::fillFrom(const fs::path& source) {
    if (error_ != 0) return error_;
    struct stat status {};
    if (stat(source.c_str(), &status) != 0) return errno;
    if (S_ISDIR(status.st_mode)) return EISDIR;
    if (const int error = copyInto(descriptor_, source)) return error;
    return fchmod(descriptor_, status.st_mode & 0777) != 0 || fsync(descriptor_) != 0 ? errno : 0;
}

int TemporaryFile::putInPlace(const fs::path& destination) {
    struct stat status {};
    if (stat(destination.c_str(), &status) == 0 && fchmod(descriptor_, status.st_mode & 0777) != 0) return errno;
    if (rename(path_.c_str(), destination.c_str()) != 0) return errno;
    noted_.reset();
    path_.clear();
    return 0;
}

int copyFile(const fs::path& destination, const fs::path& source) {
    if (access(source.c_str(), R_OK) != 0) return errno;
    std::error_code error;
    const fs::file_status there = fs::status(destination, error);
    if (fs::is_directory(there) || fs::is_directory(source, error)) return EISDIR;
    if (!fs::exists(there)) {
        TemporaryFile copy(destination.has_parent_path() ? destination.parent_path() : ".");
        const int failed = copy.fillFrom(source);
        return failed != 0 ? failed : copy.putInPlace(destination);
    }
    if (fs::equivalent(destination, source, error)) return EEXIST;
    if (access(destination.c_str(), W_OK) != 0) return errno;
    if (!fs::is_regular_file(there)) return copyToDevice(destination, source);
    const fs::path place = fs::canonical(destination);  // a link stays a link
    TemporaryFile copy(place.parent_path());
    const int failed = copy.fillFrom(source);
    return failed != 0 ? failed : copy.putInPlace(place);
}

}  // namespace host
