// Design files from making to closing: what is kept, and what happens beside other sessions and on bad disks.
#include <fcntl.h>
#include <signal.h>
#include <sys/mount.h>
#include <unistd.h>

#include <fstream>
#include <random>

#include "mchost/mdl/files.h"
#include "mchost/mdl/level.h"
#include "tests/mchost/model/model_fixture.h"
#include "tests/support/child.h"

namespace {

std::vector<uint32_t> allNumbers() {
    std::vector<uint32_t> numbers;
    for (const FilePos position : allPositions()) numbers.push_back(numberOf(position));
    return numbers;
}

using DesignFile = DesignFileTest;

TEST_F(DesignFile, ChangesAreThereAfterClosing) {
    create();
    open();
    for (uint32_t i = 1; i <= 3000; ++i) mdlElement_add(numbered(i));
    const auto numbers = allNumbers();
    EXPECT_EQ(numbers.size(), 3000u);
    close();
    EXPECT_FALSE(std::filesystem::exists(file + "-wal"));
    open();
    EXPECT_EQ(allNumbers(), numbers);
    mdlElement_add(numbered(9999));
    endSession();
    host::Session session;
    open();
    EXPECT_EQ(mdlModelRef_getElementCount(nullptr), 3001u);
}

TEST_F(DesignFile, OpeningAndClosingLeavesTheFileAsItIs) {
    create();
    open();
    mdlElement_add(numbered(1));
    close();
    const std::string before = readFile("a.mcd");
    open();
    EXPECT_EQ(allNumbers(), (std::vector<uint32_t>{1}));
    close();
    EXPECT_EQ(readFile("a.mcd"), before);
}

TEST_F(DesignFile, ClosedFileMayBeMoved) {
    EXPECT_EQ(mdlSystem_closeDesignFile(), MDL_ERROR);
    create();
    open();
    mdlElement_add(numbered(1));
    EXPECT_EQ(mdlSystem_closeDesignFile(), MDL_SUCCESS);
    EXPECT_EQ(mdlModelRef_getActive(), nullptr);
    EXPECT_STREQ(tcbP->designFileName, "");
    const std::string moved = path("moved.mcd");
    std::filesystem::rename(file, moved);
    EXPECT_EQ(mdlSystem_newDesignFile(moved.c_str(), 0), MDL_SUCCESS);
    EXPECT_EQ(allNumbers(), (std::vector<uint32_t>{1}));
}

TEST_F(DesignFile, NewFileTellsItsKindAndUnits) {
    for (const int is3d : {0, 1}) {
        const std::string name = path(is3d ? "3d.mcd" : "2d.mcd");
        EXPECT_EQ(mdlSystem_createDesignFile(name.c_str(), is3d), MDL_SUCCESS);
        EXPECT_EQ(mdlSystem_newDesignFile(name.c_str(), 0), MDL_SUCCESS);
        EXPECT_EQ(mdlModelRef_is3D(nullptr), is3d);
        EXPECT_EQ(mgds_modesP[0], is3d);
        EXPECT_EQ(mdlModelRef_getUorPerMaster(nullptr), 10000);
        EXPECT_EQ(mdlLevel_isValidByName(nullptr, L"Default"), 1);
        EXPECT_EQ(tcbP->designFileName, name);
    }
    endSession();
    EXPECT_EQ(mdlModelRef_getActive(), nullptr);
    EXPECT_EQ(mdlModelRef_getUorPerMaster(nullptr), 1);
    EXPECT_STREQ(tcbP->designFileName, "");
}

TEST_F(DesignFile, NameThatIsTakenIsRefused) {
    writeFile("taken.mcd", "something else");
    EXPECT_EQ(mdlSystem_createDesignFile(path("taken.mcd").c_str(), 0), MDL_ERROR);
    onlyMessage("taken.mcd");
    EXPECT_EQ(readFile("taken.mcd"), "something else");
    EXPECT_EQ(mdlSystem_createDesignFile(path("no such folder/a.mcd").c_str(), 0), MDL_ERROR);
    onlyMessage("no such folder");
}

TEST_F(DesignFile, FileStaysOpenWhenTheNextOneCannotBeOpened) {
    create();
    open();
    mdlElement_add(numbered(1));
    const std::string foreign = writeFile("foreign.mcd", std::string(5000, 'x'));
    for (const std::string& name : {foreign, path("missing.mcd"), path(""), std::string()}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(mdlSystem_newDesignFile(name.c_str(), 0), MDL_ERROR);
        onlyMessage(name);
        EXPECT_EQ(tcbP->designFileName, file);
        EXPECT_EQ(mdlModelRef_getElementCount(nullptr), 1u);
    }
    EXPECT_EQ(readFile("foreign.mcd"), std::string(5000, 'x'));
}

struct Event {
    std::string name;
    int state;
    uint32_t elements;
    bool operator==(const Event&) const = default;
};
std::vector<Event> events;

TEST_F(DesignFile, ApplicationsLearnOfANewDesignFile) {
    create();
    open();
    mdlElement_add(numbered(1));
    asApplication("LISTENER", [] {
        return mdlSystem_setFunction(MDL_FUNCTION_NEW_DESIGN_FILE, reinterpret_cast<void*>(+[](char* name, int state) {
                                         events.push_back({name, state, mdlModelRef_getElementCount(nullptr)});
                                     }));
    });
    close();
    EXPECT_EQ(events, (std::vector<Event>{{path("other.mcd"), 0, 1}, {path("other.mcd"), 1, 0}}));
}

TEST_F(DesignFile, NewFileTakesNothingFromARemovedOne) {
    create();
    EXPECT_EQ(inChild([&] {
                  mdlSystem_newDesignFile(file.c_str(), 0);
                  mdlElement_add(numbered(1));
                  return mdlSystem_saveDesignFile();  // and its log stays behind
              }),
              0);
    EXPECT_TRUE(std::filesystem::exists(file + "-wal"));
    std::filesystem::remove(file);
    create();
    open();
    EXPECT_EQ(mdlModelRef_getElementCount(nullptr), 0u);
}

// ---- read only ----

TEST_F(DesignFile, FileOpenToBeReadTakesNoChange) {
    create();
    open();
    mdlElement_add(numbered(1));
    close();
    const std::string before = readFile("a.mcd");
    open(true);
    EXPECT_EQ(mdlModelRef_isReadOnly(nullptr), 1);
    EXPECT_EQ(mdlElement_add(numbered(2)), 0u);
    EXPECT_NE(onlyMessage(file).find("read only"), std::string::npos);
    EXPECT_EQ(mdlElement_undoableDelete(nullptr, 1, 0), MDL_ERROR);
    LevelId id = 0;
    EXPECT_EQ(mdlLevel_create(&id, nullptr, L"New"), MDL_ERROR);
    EXPECT_EQ(mdlSystem_saveDesignFile(), MDL_SUCCESS);
    close();
    EXPECT_EQ(readFile("a.mcd"), before);
}

// Runs the body as a user who may write neither the file nor, when it says so, its folder.
template <class Body>
int asOtherUser(Body body) {
    return inChild([&] {
        constexpr uid_t nobody = 65534;
        if (geteuid() == 0 && seteuid(nobody) != 0) return 99;
        return body();
    });
}

TEST_F(DesignFile, ProtectedFileOrFolderOpensReadOnly) {
    namespace fs = std::filesystem;
    create();
    open();
    mdlElement_add(numbered(1));
    close();
    const fs::path folder = fs::path(file).parent_path();
    struct Case {
        fs::perms folder, file;
    };
    const auto readable = fs::perms(0555), writable = fs::perms(0777);
    for (const Case& c :
         {Case{writable, fs::perms(0444)}, Case{readable, fs::perms(0666)}, Case{readable, fs::perms(0444)}}) {
        fs::permissions(file, c.file);
        fs::permissions(folder, c.folder);
        EXPECT_EQ(asOtherUser([&] {
                      if (mdlSystem_newDesignFile(file.c_str(), 0) != MDL_SUCCESS) return 1;
                      if (mdlModelRef_isReadOnly(nullptr) != 1 || allNumbers() != std::vector<uint32_t>{1}) return 2;
                      ModelRef* work = nullptr;
                      return mdlElement_add(numbered(2)) == 0 && mdlWorkDgn_openFile(&work, file.c_str()) == 0 ? 0 : 3;
                  }),
                  0);
    }
    fs::permissions(folder, fs::perms(0700));
}

TEST_F(DesignFile, WorkFileIsReadBesideTheActiveOne) {
    create();
    open();
    mdlElement_add(numbered(7));
    ModelRef *same = nullptr, *work = nullptr;
    EXPECT_EQ(mdlWorkDgn_openFile(&same, file.c_str()), MDL_SUCCESS);
    EXPECT_EQ(same, mdlModelRef_getActive());
    EXPECT_EQ(mdlWorkDgn_closeFile(same), MDL_SUCCESS);
    close();
    EXPECT_EQ(mdlWorkDgn_openFile(&work, file.c_str()), MDL_SUCCESS);
    EXPECT_EQ(mdlModelRef_isReadOnly(work), 0) << "the file itself can be written";
    EXPECT_EQ(allPositions(work), (std::vector<FilePos>{1}));
    EXPECT_EQ(numberOf(1, work), 7u);
    ElementDescr* copy = nullptr;
    EXPECT_EQ(mdlElmdscr_read(&copy, 1, work), 1u);
    EXPECT_EQ(mdlElmdscr_rewrite(copy, 1), 0u) << "a work file isn't written";
    mdlElmdscr_freeAll(&copy);
    EXPECT_EQ(mdlWorkDgn_closeFile(work), MDL_SUCCESS);
    EXPECT_EQ(mdlWorkDgn_closeFile(work), MDL_ERROR);
    EXPECT_EQ(numberOf(1, work), UINT32_MAX) << "a closed model is no model";
}

TEST_F(DesignFile, WorkFileThatIsOpenToBeWrittenIsStoredWhenItIsClosed) {
    create();
    const std::string other = path("work.mcd");
    mdlSystem_createDesignFile(other.c_str(), 0);
    open();
    const auto addTo = [&](ModelRef* work, uint32_t number) {
        ElementDescr* ed = nullptr;
        mdlElmdscr_new(&ed, work, numbered(number));
        const FilePos position = mdlElmdscr_add(ed);
        mdlElmdscr_freeAll(&ed);
        return position;
    };
    ModelRef *work = nullptr, *again = nullptr;
    ASSERT_EQ(mdlWorkDgn_openFileToWrite(&work, other.c_str()), MDL_SUCCESS);
    EXPECT_EQ(mdlWorkDgn_openFileToWrite(&again, other.c_str()), MDL_ERROR) << "one writer";
    onlyMessage(other);
    EXPECT_EQ(mdlWorkDgn_openFileToWrite(&again, file.c_str()), MDL_ERROR) << "it is the active one";
    onlyMessage(file);
    EXPECT_EQ(addTo(work, 7), 1u);
    EXPECT_EQ(mdlWorkDgn_closeFile(work), MDL_SUCCESS);
    EXPECT_EQ(addTo(work, 8), 0u) << "a closed model is no model";
    front().clear();
    ASSERT_EQ(mdlWorkDgn_openFileToWrite(&work, other.c_str()), MDL_SUCCESS);
    EXPECT_EQ(addTo(work, 9), 2u);
    endSession();
    host::Session next;
    ASSERT_EQ(mdlWorkDgn_openFile(&work, other.c_str()), MDL_SUCCESS);
    EXPECT_EQ(numberOf(1, work), 7u);
    EXPECT_EQ(numberOf(2, work), 9u) << "stored with the end of the session";
    {
        const WriteProtection protection(other);
        EXPECT_EQ(mdlWorkDgn_openFileToWrite(&again, other.c_str()), MDL_ERROR);
    }
}

// ---- other sessions ----

// A child process that has the file open to write, with one element stored and another one not stored yet.
class RivalSession {
  public:
    explicit RivalSession(const std::string& file) {
        int ready[2], stop[2];
        EXPECT_EQ(pipe(ready) + pipe(stop), 0);
        child_ = fork();
        if (child_ == 0) {
            ::close(stop[1]);
            mdlSystem_newDesignFile(file.c_str(), 0);
            mdlElement_add(numbered(1));
            mdlSystem_saveDesignFile();
            mdlElement_add(numbered(2));
            const bool told = write(ready[1], "r", 1) == 1;
            char byte;
            while (read(stop[0], &byte, 1) > 0) continue;
            _exit(told && mdlSystem_saveDesignFile() == MDL_SUCCESS ? 0 : 1);
        }
        ::close(ready[1]);
        ::close(stop[0]);
        stop_ = stop[1];
        char byte;
        EXPECT_EQ(read(ready[0], &byte, 1), 1);
        ::close(ready[0]);
    }
    int end() {
        ::close(stop_);
        int status = 0;
        waitpid(child_, &status, 0);
        return status;
    }

  private:
    pid_t child_;
    int stop_;
};

TEST_F(DesignFile, SecondWriterIsRefusedAndReadersSeeWhatWasStored) {
    create();
    RivalSession rival(file);
    EXPECT_EQ(mdlSystem_newDesignFile(file.c_str(), 0), MDL_ERROR);
    EXPECT_NE(onlyMessage(file).find("another session"), std::string::npos);
    open(true);
    EXPECT_EQ(allNumbers(), (std::vector<uint32_t>{1}));
    EXPECT_EQ(rival.end(), 0);
    open();
    EXPECT_EQ(allNumbers(), (std::vector<uint32_t>{1, 2}));
    EXPECT_EQ(mdlElement_add(numbered(3)), 3u);
}

// A process that adds elements two by two, storing each pair, until it is killed; tells each stored count through the
// pipe.
[[noreturn]] void writeUntilKilled(const std::string& file, int pipe) {
    if (mdlSystem_newDesignFile(file.c_str(), 0) != MDL_SUCCESS) _exit(1);
    for (uint32_t count = mdlModelRef_getElementCount(nullptr);; count += 2) {
        mdlElement_add(numbered(count + 1));
        mdlElement_add(numbered(count + 2));
        if (mdlSystem_saveDesignFile() != MDL_SUCCESS) _exit(2);
        const uint32_t stored = count + 2;
        if (write(pipe, &stored, sizeof stored) != sizeof stored) _exit(3);
    }
}

uint32_t lastNumberIn(int pipe) {
    uint32_t number = 0, last = 0;
    while (read(pipe, &number, sizeof number) == sizeof number) last = number;
    return last;
}

TEST_F(DesignFile, KilledWriterLeavesTheLastStoredState) {
    create();
    std::mt19937 random(4711);
    uint32_t stored = 0;
    for (int round = 0; round < 200; ++round) {
        SCOPED_TRACE(round);
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        const pid_t writer = fork();
        if (writer == 0) writeUntilKilled(file, ends[1]);
        ::close(ends[1]);
        // Some are killed while they open the file, the others while they store.
        uint32_t first = 0;
        if (round % 4 != 0) {
            ASSERT_EQ(read(ends[0], &first, sizeof first), ssize_t{sizeof first});
        }
        usleep(500 + random() % 4'000);
        kill(writer, SIGKILL);
        int status = 0;
        waitpid(writer, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status)) << "the writer gave up with " << WEXITSTATUS(status);
        stored = std::max({stored, first, lastNumberIn(ends[0])});
        ::close(ends[0]);

        ModelRef* model = nullptr;
        ASSERT_EQ(mdlWorkDgn_openFile(&model, file.c_str()), MDL_SUCCESS) << front().messages.back().brief;
        const uint32_t count = mdlModelRef_getElementCount(model);
        EXPECT_GE(count, stored);
        EXPECT_EQ(count % 2, 0u) << "half a command";
        for (FilePos position = 1; position <= count; ++position) ASSERT_EQ(numberOf(position, model), position);
        mdlWorkDgn_closeFile(model);
    }
    EXPECT_GE(stored, 300u);
    open();
    EXPECT_FALSE(std::filesystem::exists(file + "-wal")) << "one file again";
    EXPECT_GE(mdlModelRef_getElementCount(nullptr), stored);
}

// Files can't grow beyond 500,000 bytes, as on a full disk, when 19,900 elements are to be stored behind the first 100.
TEST_F(DesignFile, FullDiskLosesNothing) {
    for (const bool roomIsMade : {false, true}) {
        SCOPED_TRACE(roomIsMade);
        std::filesystem::remove(file);
        create();
        EXPECT_EQ(inChild([&] {
                      if (mdlSystem_newDesignFile(file.c_str(), 0) != MDL_SUCCESS) return 1;
                      for (uint32_t i = 1; i <= 100; ++i) mdlElement_add(numbered(i));
                      if (mdlSystem_saveDesignFile() != MDL_SUCCESS) return 2;
                      for (uint32_t i = 101; i <= 20000; ++i) mdlElement_add(numbered(i));
                      limitFileSize(500'000);
                      front().clear();
                      if (mdlSystem_saveDesignFile() != MDL_ERROR || front().messages.size() != 1) return 3;
                      if (mdlSystem_newDesignFile(file.c_str(), 0) != MDL_ERROR) return 4;
                      if (mdlModelRef_getElementCount(nullptr) != 20000) return 5;
                      if (!roomIsMade) return mdlSystem_closeDesignFile() == MDL_ERROR ? 0 : 6;
                      limitFileSize(RLIM_INFINITY);
                      return mdlSystem_saveDesignFile() == MDL_SUCCESS ? 0 : 7;
                  }),
                  0);
        const uint32_t kept = roomIsMade ? 20000 : 100;
        ModelRef* model = nullptr;
        ASSERT_EQ(mdlWorkDgn_openFile(&model, file.c_str()), MDL_SUCCESS);
        EXPECT_EQ(mdlModelRef_getElementCount(model), kept);
        EXPECT_EQ(numberOf(kept, model), kept);
        mdlWorkDgn_closeFile(model);
    }
}

// A small disk of its own. Nothing stands where this process may not have one.
class SmallDisk {
  public:
    explicit SmallDisk(std::string folder) : folder_(std::move(folder)) {
        std::filesystem::create_directory(folder_);
        there_ = mount("none", folder_.c_str(), "tmpfs", 0, "size=2m") == 0;
    }
    ~SmallDisk() {
        if (there_) umount(folder_.c_str());
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;
    bool isThere() const { return there_; }
    void fill() const {
        std::ofstream filler(folder_ + "/filler");
        while (filler << std::string(4096, 'x') << std::flush) continue;
    }

  private:
    std::string folder_;
    bool there_;
};

// The log of the last changes fits on the disk, but the file that should take it in can't grow any more.
TEST_F(DesignFile, AFileThatIsNotWholeWithoutItsLogIsNotClosedWell) {
    const SmallDisk disk(path("disk"));
    if (!disk.isThere()) GTEST_SKIP() << "no disk can be made here";
    const std::string name = path("disk/a.mcd");
    create();
    ASSERT_EQ(mdlSystem_createDesignFile(name.c_str(), 0), MDL_SUCCESS);
    ASSERT_EQ(mdlSystem_newDesignFile(name.c_str(), 0), MDL_SUCCESS);
    for (uint32_t i = 1; i <= 1500; ++i) mdlElement_add(numbered(i));
    ASSERT_EQ(mdlSystem_saveDesignFile(), MDL_SUCCESS);
    disk.fill();
    EXPECT_EQ(mdlSystem_newDesignFile(file.c_str(), 0), MDL_ERROR);
    EXPECT_EQ(tcbP->designFileName, name) << "it stays open";
    EXPECT_NE(onlyMessage(name + "-wal").find("disk is full"), std::string::npos);
    EXPECT_EQ(mdlSystem_closeDesignFile(), MDL_ERROR);
    EXPECT_NE(onlyMessage(name + "-wal").find("disk is full"), std::string::npos);
    EXPECT_EQ(mdlModelRef_getActive(), nullptr);

    ASSERT_EQ(mdlSystem_newDesignFile(name.c_str(), 0), MDL_SUCCESS);
    EXPECT_EQ(mdlModelRef_getElementCount(nullptr), 1500u) << "what is in the log counts";
    session().finish();
    EXPECT_EQ(session().exitStatus(), 1) << "nothing was changed, and the log is there still";
    front().clear();
    for (const char* end : {"", "-wal"}) std::filesystem::copy_file(name + end, path("moved.mcd") + end);
    ASSERT_EQ(mdlSystem_newDesignFile(path("moved.mcd").c_str(), 0), MDL_SUCCESS);
    EXPECT_EQ(mdlModelRef_getElementCount(nullptr), 1500u);
    EXPECT_EQ(mdlSystem_closeDesignFile(), MDL_SUCCESS);
    EXPECT_FALSE(std::filesystem::exists(path("moved.mcd-wal")));
}

TEST_F(DesignFile, NewFilesTakeTheirTemporaryNameFromNobody) {
    const pid_t gone = startChild([] { return 0; });
    waitForChild(gone);
    const std::string victim = writeFile("victim", "whole"), own = file + "." + std::to_string(getpid()) + ".new";
    const std::string stale = writeFile("a.mcd." + std::to_string(gone) + ".new", "half");
    const std::string running = writeFile("a.mcd." + std::to_string(getppid()) + ".new", "half");
    const std::string other = writeFile("a.mcd.x.new", "another");
    std::filesystem::create_symlink(victim, own);
    create();
    EXPECT_EQ(readFile("victim"), "whole");
    EXPECT_FALSE(std::filesystem::exists(stale));
    EXPECT_TRUE(std::filesystem::exists(running) && std::filesystem::exists(other));
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(own)));
    open();
}

}  // namespace
