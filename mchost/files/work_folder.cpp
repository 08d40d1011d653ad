#include "mchost/files/work_folder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <vector>

#include "mchost/base/guard.h"
#include "mchost/base/paths.h"
#include "mchost/mdl/files.h"

namespace host {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view prefix = ".mcpart-";

// A folder opened and locked; below 0 when another process has it. Where there are no locks, it is opened.
int takeFolder(const char* path) {
    const int folder = open(path, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (folder < 0) return -1;
    const bool isTaken = flock(folder, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    if (!isTaken && access(path, F_OK) == 0) return folder;
    close(folder);
    errno = EAGAIN;
    return -1;
}

// Locked by this process, where there are locks.
bool isLocked(int folder) {
    return flock(folder, LOCK_EX | LOCK_NB) == 0;
}

bool isOurs(int folder) {
    struct stat status {};
    return fstat(folder, &status) == 0 && status.st_uid == geteuid();
}

// Removes what processes left behind that were killed.
void clearStale(const fs::path& folder) {
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        if (!entry->path().filename().string().starts_with(prefix)) continue;
        const int lock = takeFolder(entry->path().c_str());
        if (lock < 0) continue;
        if (isLocked(lock) && isOurs(lock)) removeFolder(entry->path().c_str());
        close(lock);
    }
}

// What had the name of a target, for as long as the files behind it may fail.
fs::path keptFor(const fs::path& draft) {
    return draft.string() + ".kept";
}

// 0, or the error number. `isNew`: nothing had the name.
int putInPlace(const fs::path& draft, const fs::path& target, bool& isNew) {
    std::error_code error;
    const fs::file_status before = fs::symlink_status(target, error);
    isNew = before.type() == fs::file_type::not_found;
    if (before.type() == fs::file_type::regular) fs::permissions(draft, before.permissions(), error);
    fs::create_hard_link(target, keptFor(draft), error);
    fs::rename(draft, target, error);
    return error.value();
}

void takeBack(const fs::path& draft, const fs::path& target, bool isNew) {
    std::error_code error;
    fs::rename(keptFor(draft), target, error);
    if (isNew) fs::remove(target, error);
}

}  // namespace

WorkFolder::WorkFolder(const fs::path& folder) {
    clearStale(folder.empty() ? fs::path(".") : folder);
    const std::string pattern = (folder / prefix).string() + "XXXXXX";
    constexpr int tries = 5;  // another process may take a folder that isn't locked yet for a stale one
    for (int i = 0; i < tries && !make(pattern); ++i) {
    }
}

bool WorkFolder::make(const std::string& pattern) {
    path_ = pattern;
    const SignalsHeld held;
    if (!mkdtemp(path_.data())) {
        error_ = errno;
        path_.clear();
        return true;
    }
    noted_.emplace(path_.c_str());
    lock_ = takeFolder(path_.c_str());
    error_ = lock_ < 0 ? errno : 0;
    if (lock_ < 0) removeFolder(path_.c_str());
    return lock_ >= 0;
}

WorkFolder::~WorkFolder() {
    if (!path_.empty()) removeFolder(path_.c_str(), lock_);
    if (lock_ >= 0) close(lock_);
}

WorkFolder::Placed WorkFolder::place(std::span<const fs::path> targets) const {
    std::vector<char> wasNew;
    for (size_t i = 0; i < targets.size(); ++i) {
        bool isNew = false;
        const int error = putInPlace(draftOf(targets[i]), targets[i], isNew);
        wasNew.push_back(isNew);
        if (error == 0) continue;
        for (size_t placed = i; placed-- > 0;) takeBack(draftOf(targets[placed]), targets[placed], wasNew[placed]);
        return {error, i};
    }
    return {};
}

}  // namespace host

// ---- for applications ----

struct MdlWorkFolder {
    host::WorkFolder folder;
    std::string name;
};

int mdlWorkFolder_make(MdlWorkFolder** folderP, const char* beside) noexcept {
    return host::guarded<int>(ENOMEM, [&]() -> int {
        if (!folderP) return EINVAL;
        *folderP = nullptr;
        const host::fs::path place = host::systemPath(beside ? beside : "");
        auto made = std::unique_ptr<MdlWorkFolder>(new MdlWorkFolder{host::WorkFolder(place.parent_path()), {}});
        if (made->folder.error() != 0) return made->folder.error();
        made->name = host::hostName(made->folder.path());
        *folderP = made.release();
        return 0;
    });
}

const char* mdlWorkFolder_name(const MdlWorkFolder* folder) noexcept {
    return folder ? folder->name.c_str() : "";
}

int mdlWorkFolder_place(MdlWorkFolder* folder, const char* const* names, int32_t count, int32_t* failedP) noexcept {
    return host::guarded<int>(ENOMEM, [&]() -> int {
        if (!folder || !names) return EINVAL;
        std::vector<host::fs::path> targets;
        for (int32_t i = 0; i < count; ++i) targets.emplace_back(host::systemPath(names[i]));
        const host::WorkFolder::Placed placed = folder->folder.place(targets);
        if (placed.error != 0 && failedP) *failedP = static_cast<int32_t>(placed.at);
        return placed.error;
    });
}

void mdlWorkFolder_remove(MdlWorkFolder* folder) noexcept {
    delete folder;
}
