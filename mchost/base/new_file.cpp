#include "mchost/base/new_file.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>

namespace host {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view ending = ".new";

// 0, or the error number.
int waitForDisk(const std::string& path) {
    const int file = open(path.c_str(), O_RDWR | O_CLOEXEC);
    if (file < 0) return errno;
    const int error = fsync(file) == 0 ? 0 : errno;
    close(file);
    return error;
}

int nameInPlace(const std::string& from, const std::string& to) {
    return rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

int nameIfFree(const std::string& from, const std::string& to) {
    if (link(from.c_str(), to.c_str()) == 0) {
        unlink(from.c_str());
        return 0;
    }
    const int error = errno;
    const bool noLinks = error == EPERM || error == EOPNOTSUPP || error == ENOSYS;
    if (!noLinks) return error;
    if (access(to.c_str(), F_OK) == 0) return EEXIST;
    return nameInPlace(from, to);
}

// The process of a name "BASE.PROCESS.new"; nothing for other names.
std::optional<pid_t> makerOf(std::string_view name, std::string_view base) {
    if (!name.starts_with(base) || !name.ends_with(ending)) return std::nullopt;
    name.remove_suffix(ending.size());
    name.remove_prefix(std::min(base.size(), name.size()));
    if (!name.starts_with('.')) return std::nullopt;
    pid_t maker = 0;
    const char* const last = name.data() + name.size();
    const auto [end, error] = std::from_chars(name.data() + 1, last, maker);
    return error == std::errc() && end == last && maker > 0 ? std::optional(maker) : std::nullopt;
}

bool isGone(pid_t process) {
    return kill(process, 0) != 0 && errno == ESRCH;
}

void removeStale(const fs::path& path) {
    const std::string base = path.filename();
    std::error_code failed;
    fs::directory_iterator entry(path.has_parent_path() ? path.parent_path() : ".", failed);
    for (; !failed && entry != fs::directory_iterator(); entry.increment(failed)) {
        const std::optional<pid_t> maker = makerOf(entry->path().filename().string(), base);
        if (maker && isGone(*maker)) unlink(entry->path().c_str());
    }
}

// 0, or the error number.
int makeEmpty(const std::string& name) {
    const int file = open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0644);
    if (file < 0) return errno;
    close(file);
    return 0;
}

}  // namespace

NewFile::NewFile(const std::string& path)
    : path_(path), name_(path + "." + std::to_string(getpid()) + std::string(ending)) {
    removeStale(path);
    unlink(name_.c_str());  // of a killed process that had our number
    const SignalsHeld held;
    if (const int error = makeEmpty(name_)) throw std::system_error(error, std::generic_category());
    noted_.emplace(name_.c_str());
}

NewFile::~NewFile() {
    if (noted_) unlink(name_.c_str());
}

void NewFile::giveName(Naming naming) {
    const SignalsHeld held;
    int error = waitForDisk(name_);
    if (error == 0) error = naming(name_, path_);
    if (error != 0) throw std::system_error(error, std::generic_category());
    noted_.reset();
}

void NewFile::publish() {
    giveName(nameIfFree);
}

void NewFile::replace() {
    giveName(nameInPlace);
}

}  // namespace host
