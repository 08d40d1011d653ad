#include "host/model/new_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace host {

namespace {

// 0, or the error number.
int waitForDisk(const std::string& path) {
    const int file = open(path.c_str(), O_RDWR | O_CLOEXEC);
    if (file < 0) return errno;
    const int error = fsync(file) == 0 ? 0 : errno;
    close(file);
    return error;
}

int giveNameOfAnother(const std::string& temporary, const std::string& path) {
    return rename(temporary.c_str(), path.c_str()) == 0 ? 0 : errno;
}

int giveName(const std::string& temporary, const std::string& path) {
    if (link(temporary.c_str(), path.c_str()) == 0) {
        unlink(temporary.c_str());
        return 0;
    }
    const int error = errno;
    const bool noLinks = error == EPERM || error == EOPNOTSUPP || error == ENOSYS;
    if (!noLinks) return error;
    if (access(path.c_str(), F_OK) == 0) return EEXIST;
    return giveNameOfAnother(temporary, path);
}

}  // namespace

std::string temporaryName(const std::string& path) {
    return path + "." + std::to_string(getpid()) + ".new";
}

namespace {

using Name = int (*)(const std::string& temporary, const std::string& path);

void publish(const std::string& temporary, const std::string& path, Name name) {
    int error = waitForDisk(temporary);
    if (error == 0) error = name(temporary, path);
    if (error == 0) return;
    unlink(temporary.c_str());
    throw std::system_error(error, std::generic_category());
}

}  // namespace

void publishFile(const std::string& temporary, const std::string& path) {
    publish(temporary, path, giveName);
}

void replaceFile(const std::string& temporary, const std::string& path) {
    publish(temporary, path, giveNameOfAnother);
}

}  // namespace host
