// The application merge, run by mchost as a user would: drawings that show others become whole by themselves.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/reference.h"
#include "mchost/mdl/view.h"
#include "mchost/session/session.h"
#include "tests/support/application_test.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

constexpr double uor = 10000;

// "plan.mcd" has a line along y = 0 and shows "parts/kerb.mcd" (a line along y = 1) from x = 2 to x = 6, and that shows
// "parts/post.mcd" (a line along y = 2).
class Merge : public ApplicationTest {
  protected:
    Merge() : ApplicationTest("merge") {
        fs::create_directories(folder_ / "parts");
        draw("parts/post.mcd", 2, {});
        draw("parts/kerb.mcd", 1, {"parts/post.mcd"});
        draw("plan.mcd", 0, {"parts/kerb.mcd"}, {{2, -5, 0}, {6, -5, 0}, {6, 5, 0}, {2, 5, 0}});
    }
    std::string full(const std::string& name) const { return (folder_ / name).string(); }

    void draw(const std::string& name, double y, const std::vector<std::string>& shown,
              std::vector<Point3d> clip = {}) const {
        const host::Session session;
        ASSERT_EQ(mdlSystem_createDesignFile(full(name).c_str(), 0), MDL_SUCCESS);
        ASSERT_EQ(mdlSystem_newDesignFile(full(name).c_str(), 0), MDL_SUCCESS);
        const Point3d ends[] = {{0, y * uor, 0}, {10 * uor, y * uor, 0}};
        ASSERT_EQ(mdlLine_create(dgnBufP, nullptr, ends), MDL_SUCCESS);
        ASSERT_NE(mdlElement_add(dgnBufP), 0u);
        for (Point3d& p : clip) p = {p.x * uor, p.y * uor, 0};
        for (const std::string& other : shown) {
            ASSERT_EQ(mdlRefFile_attach(nullptr, nullptr, full(other).c_str(), nullptr, clip.data(),
                                        static_cast<int32_t>(clip.size())),
                      MDL_SUCCESS);
        }
        ASSERT_EQ(mdlSystem_closeDesignFile(), MDL_SUCCESS);
    }
    // The lines of a drawing, "y: x to x" each, and how many files are attached to it.
    std::string lines(const std::string& name) const {
        const host::Session session;
        if (mdlSystem_newDesignFile(full(name).c_str(), 1) != MDL_SUCCESS) return "can't be opened";
        std::string text;
        for (FilePos position = 1; position < 20; ++position) {
            Point3d ends[2] = {};
            if (mdlElement_read(dgnBufP, nullptr, position) == 0 ||
                mdlLinear_extract(ends, nullptr, dgnBufP, 2) != MDL_SUCCESS)
                continue;
            const auto rounded = [](double value) { return std::to_string(std::lround(value / uor)); };
            text += rounded(ends[0].y) + ": " + rounded(ends[0].x) + " to " + rounded(ends[1].x) + "\n";
        }
        ModelRefIterator* places = nullptr;
        EXPECT_EQ(mdlModelRefIterator_create(&places, nullptr, MDL_ITERATE_REFERENCES, 1), MDL_SUCCESS);
        const bool any = mdlModelRefIterator_getFirst(places);
        mdlModelRefIterator_free(&places);
        return text + (any ? "files are attached" : "");
    }
    static constexpr const char* merged = "0: 0 to 10\n1: 2 to 6\n2: 2 to 6\n";
    static constexpr const char* unmerged = "0: 0 to 10\nfiles are attached";
};

TEST_F(Merge, WhatIsShownBecomesPartOfACopyOfTheDrawing) {
    const std::string before = read("plan.mcd");
    const Outcome outcome = run("plan.mcd --out whole");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "whole/plan.mcd: 2 elements of 2 references merged\n");
    EXPECT_EQ(lines("whole/plan.mcd"), merged);
    EXPECT_TRUE(read("plan.mcd") == before);
    EXPECT_EQ(shell("ls -A whole").output, "plan.mcd\n");
    EXPECT_THAT(run("plan.mcd --out whole").output, HasSubstr("--overwrite"));
    EXPECT_EQ(run("plan.mcd --out whole --overwrite").status, 0);
}

// Files beside the copies have the names of the files that are attached, and aren't taken for them.
TEST_F(Merge, EachDrawingOfAFolderShowsItsOwnFiles) {
    fs::create_directories(folder_ / "whole/parts");
    draw("whole/parts/kerb.mcd", 7, {});
    const Outcome outcome = run("plan.mcd parts --out whole");
    EXPECT_EQ(outcome.status, 0) << outcome.output;
    EXPECT_EQ(lines("whole/plan.mcd"), merged);
    EXPECT_EQ(lines("whole/kerb.mcd"), "1: 0 to 10\n2: 0 to 10\n");
    EXPECT_EQ(lines("whole/post.mcd"), "2: 0 to 10\n");
    EXPECT_THAT(run("plan.mcd whole/plan.mcd --out other").output, HasSubstr("is that of another drawing"));
}

TEST_F(Merge, TheViewDecidesOnWhatIsShown) {
    {
        const host::Session session;
        ASSERT_EQ(mdlSystem_newDesignFile(full("plan.mcd").c_str(), 0), MDL_SUCCESS);
        ModelRefIterator* places = nullptr;
        ASSERT_EQ(mdlModelRefIterator_create(&places, nullptr, MDL_ITERATE_REFERENCES, 1), MDL_SUCCESS);
        ASSERT_EQ(mdlRefFile_setLevelOn(mdlModelRefIterator_getFirst(places), 2, 1, 0), MDL_SUCCESS);
        mdlModelRefIterator_free(&places);
        ASSERT_EQ(mdlSystem_closeDesignFile(), MDL_SUCCESS);
    }
    EXPECT_EQ(run("plan.mcd --out whole --view 3").status, 0);
    EXPECT_EQ(lines("whole/plan.mcd"), "0: 0 to 10\n2: 2 to 6\n") << "the level is off in one of the two files";
}

TEST_F(Merge, WhatIsMissingIsToldAndTheDrawingRefusedUnlessItIsLeftOut) {
    fs::rename(folder_ / "parts/post.mcd", folder_ / "gone.mcd");
    const Outcome refused = run("plan.mcd parts/kerb.mcd --out whole");
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.output, HasSubstr("plan.mcd: \"post.mcd\", which is attached, isn't found"));
    EXPECT_THAT(refused.output, HasSubstr("--leave-out"));
    EXPECT_EQ(shell("ls -A whole").output, "");
    const Outcome left = run("plan.mcd --out whole --leave-out");
    EXPECT_EQ(left.status, 0) << left.output;
    EXPECT_THAT(left.output, HasSubstr("it is left out"));
    EXPECT_EQ(lines("whole/plan.mcd"), "0: 0 to 10\n1: 2 to 6\n");
    fs::create_directories(folder_ / "store");
    fs::rename(folder_ / "gone.mcd", folder_ / "store/post.mcd");
    const Outcome found = run("plan.mcd --out whole --overwrite", "--set MC_REFERENCES=store");
    EXPECT_EQ(found.status, 0) << found.output;
    EXPECT_EQ(lines("whole/plan.mcd"), merged);
}

TEST_F(Merge, AFullDiskLeavesEverythingAsItWas) {
    draw("full.mcd", 0, std::vector<std::string>(40, "parts/kerb.mcd"));
    const std::string before = read("full.mcd");
    // So many blocks of 512 bytes a file may have: too few for the copy, or for what is changed in it.
    for (const char* call :
         {"ulimit -f 100; mchost merge full.mcd --out whole", "ulimit -f 185; mchost merge full.mcd --out whole",
          "ulimit -f 100; mchost --open full.mcd merge"}) {
        const Outcome outcome = shell("PATH='" BUILD_DIR "/bin':$PATH; " + std::string(call));
        EXPECT_EQ(outcome.status, 1) << call << outcome.output;
        EXPECT_EQ(shell("ls -A whole 2>/dev/null").output, "") << call;
        EXPECT_EQ(lines("full.mcd"), unmerged) << call;
        EXPECT_TRUE(read("full.mcd") == before || !std::strstr(call, "--out")) << call;
    }
}

TEST_F(Merge, ShowTellsWhatIsAttached) {
    fs::remove(folder_ / "parts/post.mcd");
    const std::string shown = shell("'" BUILD_DIR "/bin/mchost' show plan.mcd parts/kerb.mcd 2>/dev/null").output;
    EXPECT_THAT(shown, HasSubstr("  references\n       1  \"" + full("parts/kerb.mcd") + "\", clip of 4 corners\n"));
    EXPECT_THAT(shown, HasSubstr("1  \"post.mcd\", missing\n"));
}

TEST_F(Merge, TheOpenDrawingIsChangedInOneStep) {
    write("lines.txt", "undo\nreference list\nredo\nclose\n");
    const Outcome outcome = run("--and find '*'", "--open plan.mcd --answers lines.txt");
    EXPECT_EQ(outcome.status, 0) << outcome.output;
    EXPECT_THAT(outcome.output, HasSubstr("Taken back: "));
    EXPECT_THAT(outcome.output, HasSubstr("1: parts/kerb.mcd, on"));
    EXPECT_EQ(lines("plan.mcd"), merged);
}

TEST_F(Merge, WrongCallsAndDrawingsAreTold) {
    write("text.mcd", "text");
    const struct {
        const char* arguments;
        int status;
        const char* why;
    } cases[] = {
        {"", 2, "the drawings are missing"},
        {"plan.mcd", 2, "--out is missing"},
        {"plan.mcd --out whole --view 9", 2, "1 to 8"},
        {"plan.mcd --out whole --all", 2, "don't know what to do"},
        {"text.mcd --out whole", 1, "isn't a design file"},
        {"plan.mcd --out .", 1, "that is the input"},
        {"plan.mcd --out plan.mcd", 1, "the folder can't be made"},
        {"none.mcd --out whole", 1, "none.mcd"},
    };
    for (const auto& [arguments, status, why] : cases) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.status, status) << arguments;
        EXPECT_THAT(outcome.output, HasSubstr(why)) << arguments;
    }
    EXPECT_EQ(lines("plan.mcd"), unmerged);
}

TEST_F(Merge, TheExampleIsWholeByItself) {
    ASSERT_EQ(shell("'" PROJECT_SOURCE_DIR "/apps/merge/examples/site' '" BUILD_DIR "/bin/mchost' site").output, "");
    const Outcome outcome = run("site/plan.mcd --out site/whole");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, HasSubstr("of 3 references merged"));
}

}  // namespace
