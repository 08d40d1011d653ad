// Files that get their places when they are whole.
#include <gmock/gmock.h>

#include <cerrno>
#include <filesystem>
#include <string>

#include "mchost/mdl/files.h"
#include "tests/support/recorder.h"

namespace {

namespace fs = std::filesystem;

class WorkFolders : public SessionTest {
  protected:
    WorkFolders() {
        EXPECT_EQ(mdlWorkFolder_make(&folder, path("old.txt").c_str()), 0);
        fs::permissions(writeFile("old.txt", "old"), fs::perms::owner_read | fs::perms::owner_write);
    }
    ~WorkFolders() override { mdlWorkFolder_remove(folder); }
    void draft(const std::string& name) {
        writeFile(fs::path(mdlWorkFolder_name(folder)).filename().string() + "/" + name, "new");
    }
    int place(const std::string& first, const std::string& second, int32_t& failed) {
        const std::string firstPath = path(first), secondPath = path(second);
        const char* const names[] = {firstPath.c_str(), secondPath.c_str()};
        return mdlWorkFolder_place(folder, names, 2, &failed);
    }
    MdlWorkFolder* folder = nullptr;
    int32_t failed = -1;
};

TEST_F(WorkFolders, FilesTakeThePlacesAndPermissionsOfWhatWasThere) {
    draft("old.txt");
    draft("fresh.txt");
    EXPECT_EQ(place("old.txt", "fresh.txt", failed), 0);
    EXPECT_EQ(failed, -1);
    EXPECT_EQ(readFile("old.txt") + readFile("fresh.txt"), "newnew");
    EXPECT_EQ(fs::status(path("old.txt")).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(WorkFolders, AllFilesGetTheirPlacesOrNoneDoes) {
    fs::create_directory(path("taken.txt"));
    for (const char* first : {"old.txt", "fresh.txt"}) {
        draft(first);
        draft("taken.txt");
        EXPECT_EQ(place(first, "taken.txt", failed), EISDIR) << first;
        EXPECT_EQ(failed, 1) << first;
    }
    EXPECT_EQ(readFile("old.txt"), "old");
    EXPECT_FALSE(fs::exists(path("fresh.txt")));
}

}  // namespace
