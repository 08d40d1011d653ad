#include "mchost/model/recent_libraries.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <ctime>
#include <optional>

namespace host {
namespace {

int64_t nanoseconds(const timespec& time) {
    return int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

// Nothing for a file that isn't there, that is being written, or that changed so lately that another change could bear
// the same time.
std::optional<FileStamp> stampOf(const std::string& path) {
    constexpr int64_t settled = 50'000'000;
    struct stat state;
    timespec now;
    const bool isWritten = access((path + "-wal").c_str(), F_OK) == 0 || access((path + "-journal").c_str(), F_OK) == 0;
    if (isWritten || stat(path.c_str(), &state) != 0 || clock_gettime(CLOCK_REALTIME, &now) != 0) return std::nullopt;
    const int64_t changed = nanoseconds(state.st_ctim);
    if (nanoseconds(now) - changed < settled) return std::nullopt;
    return FileStamp{state.st_dev, state.st_ino, state.st_size, changed};
}

}  // namespace

std::shared_ptr<const CellLibrary> RecentLibraries::load(const std::string& path) {
    const std::optional<FileStamp> stamp = stampOf(path);
    const auto known = std::ranges::find_if(kept_, [&](const Kept& k) { return k.library->path() == path; });
    if (known != kept_.end() && stamp == known->stamp) {
        std::rotate(kept_.begin(), known, known + 1);
        return kept_.front().library;
    }
    if (known != kept_.end()) kept_.erase(known);
    auto library = std::make_shared<const CellLibrary>(path);
    if (stamp) kept_.insert(kept_.begin(), {*stamp, library});
    if (kept_.size() > most) kept_.pop_back();
    return library;
}

}  // namespace host
