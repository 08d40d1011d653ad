// Cell libraries against compilers that are killed, and against full disks.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "tests/support/cell_file.h"
#include "tests/support/child.h"

namespace {

namespace fs = std::filesystem;

class LibrarySurvival : public testing::Test {
  protected:
    LibrarySurvival() {
        std::string pattern = (fs::temp_directory_path() / "library-XXXXXX").string();
        folder = mkdtemp(pattern.data());
        file = folder / "a.cel";
    }
    ~LibrarySurvival() override { fs::remove_all(folder); }

    static constexpr int lines = 300;
    void write(int length, int count = lines) const { CellFile().add(L"C", L"", count, length).write(file); }
    // Opens the library; the length that all lines of its cell have.
    int wholeLength() const {
        const host::CellLibrary library(file);
        EXPECT_EQ(library.cells().size(), 1u);
        ElementDescr* cell = library.read(library.cells().front(), nullptr);
        int count = 0, length = 0;
        for (const ElementDescr* node = cell->firstChild; node; node = node->next, ++count) {
            Point3d ends[2];
            int32_t points = 0;
            EXPECT_EQ(mdlLinear_extract(ends, &points, node->element, 2), MDL_SUCCESS);
            const int own = static_cast<int>(ends[1].x / 10000);
            EXPECT_TRUE(count == 0 || own == length);
            length = own;
        }
        EXPECT_EQ(count, lines);
        mdlElmdscr_freeAll(&cell);
        return length;
    }
    std::string bytes() const {
        std::ifstream in(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    fs::path folder;
    std::string file;
};

TEST_F(LibrarySurvival, AKilledWriterLeavesTheOldOrTheNewLibrary) {
    write(1);
    int last = 1, changed = 0;
    const auto writeOn = [&](auto tell) {
        for (int length = last + 1;; ++length) {
            write(length);
            tell();
        }
    };
    killWriters(200, writeOn, [&] {
        const int length = wholeLength();
        changed += length != last;
        last = length;
    });
    EXPECT_GT(changed, 100);
}

TEST_F(LibrarySurvival, AFullDiskKeepsTheOldLibraryAndLeavesNothingBeside) {
    write(1);
    const std::string before = bytes();
    for (const rlim_t room : {0, 4096, 60'000, 250'000}) {
        SCOPED_TRACE(room);
        EXPECT_EQ(inChild([&] {
                      limitFileSize(room);
                      try {
                          write(2, 3000);
                      } catch (const std::exception& error) {
                          return std::string(error.what()).find("room") != std::string::npos ? 0 : 1;
                      }
                      return 2;
                  }),
                  0);
        EXPECT_TRUE(bytes() == before);
        EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1);
    }
}

}  // namespace
