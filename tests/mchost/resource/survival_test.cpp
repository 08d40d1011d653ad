// Resource files against processes that are killed while they write, and against each other.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <thread>

#include "mchost/resource/container.h"
#include "mchost/resource/store.h"
#include "tests/support/child.h"

namespace {

namespace fs = std::filesystem;
using host::Put;
using host::ResourceStore;
using host::StoredList;

constexpr int32_t type = 0x54657374, id = 7;

std::vector<std::byte> blockOf(int value) {
    return std::vector<std::byte>(6000, static_cast<std::byte>(value));
}

StoredList listOf(int value) {
    StoredList list{1, {}, {}};
    list.texts.assign(20, std::to_string(value));
    list.info.assign(20, value);
    return list;
}

class Survival : public testing::Test {
  protected:
    Survival() {
        std::string pattern = (fs::temp_directory_path() / "survival-XXXXXX").string();
        folder = mkdtemp(pattern.data());
        file = folder / "a.rsc";
    }
    ~Survival() override { fs::remove_all(folder); }

    void make() {
        host::createResourceFile(file, "");
        ResourceStore store(file);
        store.put(Put::add, type, id, blockOf(0), 0, "");
        store.put(Put::add, id, listOf(0), "");
    }

    // Opens the file; the value that its block holds throughout.
    int wholeValue() {
        host::readContainer(file);
        ResourceStore store(file);
        const auto block = store.block(type, id);
        bool cut = false;
        const auto list = store.list(id, &cut);
        EXPECT_TRUE(block && list && !cut);
        if (!block || !list || block->size() != 6000 || list->texts.size() != 20) {
            ADD_FAILURE() << "the file lacks content";
            return -1;
        }
        EXPECT_EQ(*block, blockOf(static_cast<int>(block->front())));
        EXPECT_EQ(list->texts, listOf(list->info.front()).texts);
        EXPECT_EQ(list->info, listOf(list->info.front()).info);
        return static_cast<int>(block->front());
    }

    fs::path folder;
    std::string file;
};

TEST_F(Survival, AKilledWriterLeavesWholeContent) {
    make();
    int last = 0, changed = 0;
    const auto writeOn = [&](auto tell) {
        for (int value = last + 1;;) {
            ResourceStore store(file);  // opens, writes and closes, so that each of these is met
            for (int i = 0; i < 3; ++i, ++value) {
                store.put(Put::replace, type, id, blockOf(value), 0, "");
                store.put(Put::replace, id, listOf(value), "");
                tell();
            }
        }
    };
    killWriters(200, writeOn, [&] {
        const int value = wholeValue();
        changed += value != last;
        last = value;
    });
    EXPECT_GT(changed, 100);
}

TEST_F(Survival, AKilledMakerLeavesNoHalfFile) {
    std::mt19937 random(2);
    std::uniform_int_distribution<int> microseconds(0, 6000);
    for (int round = 0; round < 40; ++round) {
        fs::remove(file);
        const pid_t child = startChild([&] {
            host::createResourceFile(file, "title");
            return 0;
        });
        std::this_thread::sleep_for(std::chrono::microseconds(microseconds(random)));
        kill(child, SIGKILL);
        waitForChild(child);
        if (fs::exists(file)) {
            EXPECT_NO_THROW(host::readContainer(file));
        }
        EXPECT_NO_THROW(host::createResourceFile(file, "title"));
    }
}

TEST_F(Survival, ANewFileIsWholeWithoutALog) {
    host::makeResourceFile(file, "title");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1);
    char head[20] = "";
    std::ifstream(file, std::ios::binary).read(head, sizeof head);
    EXPECT_EQ(head[18], 1) << "a file that is known by its log alone is none before its name is there";
    ResourceStore store(file);
    EXPECT_EQ(store.title(), "title");
}

TEST_F(Survival, ALockedFolderIsToldAndNotWaitedForWithoutEnd) {
    const int lock = open(folder.c_str(), O_RDONLY | O_DIRECTORY);
    ASSERT_EQ(flock(lock, LOCK_EX), 0);
    EXPECT_EQ(inChild([&] {
                  alarm(20);
                  close(lock);
                  try {
                      host::makeResourceFile(file, "");
                  } catch (const host::StoreFailure& failure) {
                      return std::string(failure.what()).find("locked") != std::string::npos ? 0 : 1;
                  }
                  return 2;
              }),
              0);
    close(lock);
}

TEST_F(Survival, TwoMakersAtOnceKeepEachOthersContent) {
    constexpr int32_t makers = 4;
    for (int round = 0; round < 25; ++round) {
        fs::remove(file);
        int gate[2];
        ASSERT_EQ(pipe(gate), 0);
        std::vector<pid_t> children;
        for (int32_t own = 0; own < makers; ++own)
            children.push_back(startChild([&, own] {
                close(gate[1]);
                char byte;
                [[maybe_unused]] const ssize_t opened = read(gate[0], &byte, 1);  // all start when it closes
                host::makeResourceFile(file, "");
                ResourceStore(file).put(Put::add, type, own, blockOf(own), 0, "");
                return 0;
            }));
        close(gate[0]);
        close(gate[1]);
        for (const pid_t child : children) EXPECT_EQ(waitForChild(child), 0);
        ASSERT_EQ(ResourceStore(file).blocks().size(), size_t{makers}) << "round " << round;
    }
}

TEST_F(Survival, TwoWritersKeepEachOthersContent) {
    make();
    constexpr int each = 150;
    const auto writer = [&](int32_t own) {
        return startChild([&, own] {
            for (int n = 0; n < each; ++n) {
                ResourceStore store(file);
                store.put(Put::add, own, n, blockOf(n), 0, "");
                store.put(Put::replace, type, id, blockOf(own * 100 + n % 50), 0, "");
                store.put(Put::replace, id, listOf(n), "");
            }
            return 0;
        });
    };
    const pid_t first = writer(1), second = writer(2);
    for (int look = 0; look < 20; ++look) wholeValue();
    EXPECT_EQ(waitForChild(first), 0);
    EXPECT_EQ(waitForChild(second), 0);
    wholeValue();
    ResourceStore store(file);
    EXPECT_EQ(store.blocks().size(), 2u * each + 1);
    for (int32_t own : {1, 2})
        for (int n = 0; n < each; ++n) ASSERT_EQ(store.block(own, n), blockOf(n)) << own << " " << n;
}

}  // namespace
