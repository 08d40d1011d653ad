// Runs over many drawings: mchost --batch, as its users start it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "tests/support/application_test.h"

namespace {

using testing::HasSubstr;
using testing::Not;

class Batch : public ApplicationTest {
  protected:
    Batch() : ApplicationTest("./probe.so") {
        std::filesystem::create_symlink(BUILD_DIR "/lib/tests/probe.so", folder_ / "probe.so");
    }

    void list(int count, const std::map<int, std::string>& others = {}) const {
        std::ofstream out(folder_ / "list.txt");
        for (int i = 0; i < count; ++i)
            out << "job/" << (others.contains(i) ? others.at(i) : "plan") << 100 + i << ".mcd\n";
    }
    // How often each drawing was looked at.
    std::map<std::string, int> notes() const {
        std::map<std::string, int> counts;
        std::ifstream in(folder_ / "notes.txt");
        for (std::string line; std::getline(in, line);) ++counts[line];
        return counts;
    }
};

TEST_F(Batch, ADrawingThatFailsCrashesOrHangsTakesNoOtherAlong) {
    list(50, {{3, "bad"}, {20, "bad"}, {49, "bad"}, {10, "crash"}, {30, "hang"}});
    const Outcome outcome = run("like {}", "--batch @list.txt --jobs 8 --limit 2");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output, HasSubstr("45 good, 5 failed"));
    EXPECT_EQ(notes().size(), 50u);
    const std::string log = read("batch.log");
    EXPECT_EQ(std::ranges::count(log, '\n'), 52);
    EXPECT_THAT(log, HasSubstr("\tjob/plan100.mcd\tlooked at job/plan100.mcd\\n\n"));
    const struct {
        const char *status, *drawing;
    } failed[] = {{"status 1", "bad103"}, {"status 1", "bad149"}, {"signal 6", "crash110"}, {"time limit", "hang130"}};
    for (const auto& [status, drawing] : failed) {
        const std::string line = std::string("^") + status + "\t.*" + drawing;
        EXPECT_EQ(shell("grep -c '" + line + "' batch.log").output, "1\n") << drawing;
    }
}

TEST_F(Batch, AKilledRunGoesOnWhereItStopped) {
    constexpr int drawings = 60;
    list(drawings);
    const std::string command = " '" BUILD_DIR "/bin/mchost' --batch @list.txt --jobs 3 --resume " + application_;
    for (const char* after : {"0.1", "0.15", "0.2", "0.25"})
        shell(std::string("timeout -s KILL ") + after + command + " like {}");
    write("batch.log", read("batch.log") + "good\t0.01\tjob/pla");  // killed in the middle of its line
    const Outcome outcome = run("like {}", "--batch @list.txt --resume");
    EXPECT_EQ(outcome.status, 0) << outcome.output;
    const auto counts = notes();
    EXPECT_EQ(counts.size(), static_cast<size_t>(drawings));
    const auto inFlight = std::ranges::count_if(counts, [](const auto& one) { return one.second > 1; });
    EXPECT_LE(inFlight, 4 * 3);
    EXPECT_EQ(run("like {}", "--batch @list.txt --resume").status, 0);
    EXPECT_EQ(notes(), counts);  // nothing is left to do
}

TEST_F(Batch, WhatFailedIsDoneAgain) {
    list(3, {{1, "bad"}});
    EXPECT_EQ(run("like {}", "--batch @list.txt").status, 1);
    EXPECT_EQ(run("like {}", "--batch @list.txt --resume").status, 0);
    EXPECT_EQ(notes().at("job/bad101.mcd"), 1);
    EXPECT_EQ(run("like {}", "--batch @list.txt --retry --also-good 1").status, 0);
    EXPECT_EQ(notes().at("job/bad101.mcd"), 2);
    EXPECT_EQ(notes().at("job/plan100.mcd"), 1);
    EXPECT_THAT(run("like {}", "--batch @list.txt --retry").output, HasSubstr("0 good, 0 failed, 3 done before"));
}

TEST_F(Batch, MarksStandForTheDrawing) {
    shell("mkdir job && '" BUILD_DIR "/bin/mchost' --new job/a.mcd " + application_ + " draw");
    EXPECT_EQ(run("arguments {} {name}-x '{}:{name}'", "--batch job --set A=1").status, 0);
    EXPECT_THAT(read("batch.log"), HasSubstr("[arguments][job/a.mcd][a-x][job/a.mcd:a]"));
    EXPECT_EQ(run("draw", "--batch job --log draw.log").status, 0);
    EXPECT_THAT(read("draw.log"), HasSubstr("job/a.mcd\t2\\n"));  // it was open, and has another line
}

TEST_F(Batch, TellsWhatItCannotDo) {
    list(1);
    write("other.log", "notes of mine\n");
    const struct {
        const char *host, *arguments;
        int status;
        const char* told;
    } cases[] = {
        {"--batch @nix.txt", "like {}", 1, "nix.txt: the list of drawings can't be read"},
        {"--batch 'job/*.mcd'", "like {}", 1, "no file has such a name"},
        {"--batch @list.txt --log /nix/log", "like {}", 2, "the log can't be written"},
        {"--batch @list.txt --log other.log", "like {}", 2, "it is no log of a batch"},
        {"--batch @list.txt", "like {} --and x", 2, "--batch runs one application"},
        {"--batch @list.txt --jobs 0", "like {}", 2, "--jobs"},
        {"--jobs 2", "like {}", 2, "--jobs requires --batch"},
        {"--batch @list.txt", "like {}", 0, "1 good, 0 failed"},
        {"--batch @list.txt", "like {}", 2, "there is a log of an earlier run"},
        {"--batch @list.txt --resume", "return 0", 2, "it is the log of another command"},
    };
    for (const auto& c : cases) {
        const Outcome outcome = run(c.arguments, c.host);
        EXPECT_EQ(outcome.status, c.status) << c.host << '\n' << outcome.output;
        EXPECT_THAT(outcome.output, HasSubstr(c.told)) << c.host;
    }
    EXPECT_EQ(read("other.log"), "notes of mine\n");
}

}  // namespace
