#include "mchost/base/unfinished.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <climits>
#include <cstring>
#include <span>

namespace host {

namespace {

enum RowState { rowFree, rowBeingFilled, rowInUse };

struct Row {
    std::atomic<int> state;
    char path[PATH_MAX];
};

// Fixed, as a signal handler reads it. Few files are unfinished at a time.
constinit std::array<Row, 32> table{};

// 1 or more when entries were removed, which may have hidden others from the look.
int removeEntries(int folder) {
    alignas(dirent64) std::array<char, 4096> entries;
    int removed = 0;
    lseek(folder, 0, SEEK_SET);
    for (;;) {
        const ssize_t size = getdents64(folder, entries.data(), entries.size());
        if (size <= 0) return removed;
        for (ssize_t at = 0; at < size;) {
            const auto* entry = reinterpret_cast<const dirent64*>(entries.data() + at);
            if (unlinkat(folder, entry->d_name, 0) == 0) ++removed;
            at += entry->d_reclen;
        }
    }
}

void removeCompanions(const char* path) {
    std::array<char, PATH_MAX + 16> name;
    const size_t length = std::strlen(path);
    for (const char* companion : {"-wal", "-shm", "-journal"}) {
        std::memcpy(name.data(), path, length);
        std::strcpy(name.data() + length, companion);
        unlink(name.data());
    }
}

void endBySignal(int signal) {
    removeUnfinished();
    raise(signal);  // the handler is gone; carried out when this returns
}

// False for a path that is too long.
bool fill(std::span<char> row, const char* path) {
    size_t length = 0;
    if (path[0] != '/') {
        if (!getcwd(row.data(), row.size())) return false;
        length = std::strlen(row.data());
        if (length + 1 < row.size()) row[length++] = '/';
    }
    if (std::strlen(path) >= row.size() - length) return false;
    std::strcpy(row.data() + length, path);
    return true;
}

void handle(int signal, void (*handler)(int), int flags) {
    struct sigaction before {};
    if (sigaction(signal, nullptr, &before) != 0 || before.sa_handler == SIG_IGN) return;
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = flags;
    sigaction(signal, &action, nullptr);
}

}  // namespace

Unfinished::Unfinished(const char* path) noexcept : row_(-1) {
    for (size_t i = 0; i < table.size() && row_ < 0; ++i) {
        int expected = rowFree;
        if (table[i].state.compare_exchange_strong(expected, rowBeingFilled)) row_ = static_cast<int>(i);
    }
    if (row_ >= 0) table[row_].state = fill(table[row_].path, path) ? rowInUse : rowFree;
}

Unfinished::~Unfinished() {
    if (row_ >= 0) table[row_].state = rowFree;
}

SignalsHeld::SignalsHeld() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before_);
}

SignalsHeld::~SignalsHeld() {
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

void removeFolder(const char* path, int folder) {
    const int opened = folder >= 0 ? -1 : open(path, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    while (removeEntries(folder >= 0 ? folder : opened) > 0) {
    }
    if (opened >= 0) close(opened);
    rmdir(path);
}

void removeUnfinished() noexcept {
    for (const Row& row : table) {
        if (row.state.load() != rowInUse) continue;
        removeFolder(row.path);
        unlink(row.path);
        removeCompanions(row.path);
    }
}

void tidyUpAtSignals() {
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGTERM, SIGXCPU})
        handle(signal, endBySignal, static_cast<int>(SA_RESETHAND));
    handle(
        SIGXFSZ, [](int) {}, SA_RESTART);  // the write that was too much then fails
}

}  // namespace host
