// A test of an application as a user runs it: mchost in a shell, in a folder of the test's own.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

struct Outcome {
    int status;
    std::string output;  // both streams, unless the command sends one elsewhere
};

// For a test that has another fixture of its own.
class ApplicationRun {
  protected:
    explicit ApplicationRun(const std::string& application)
        : application_(application),
          folder_(std::filesystem::temp_directory_path() / (application + "_test_" + std::to_string(getpid()))) {
        std::filesystem::create_directories(folder_);
        setenv("XDG_DATA_HOME", userFolder().c_str(), 1);
        // mchost is run with the sanitizers of the build; what the font library keeps to the end is no leak of ours.
        setenv("LSAN_OPTIONS", "suppressions=" TEST_SOURCE_DIR "/support/leaks.txt:print_suppressions=0", 1);
    }
    ~ApplicationRun() {
        std::filesystem::remove_all(folder_);
        std::filesystem::remove_all(userFolder());
    }

    // Where mchost keeps what the user of the test chose.
    std::string userFolder() const { return folder_.string() + "_user"; }

    // Runs a command of the shell in the test's folder.
    Outcome shell(const std::string& command) const {
        FILE* pipe = popen(("cd '" + folder_.string() + "' && exec 2>&1 </dev/null; " + command).c_str(), "r");
        Outcome outcome{};
        char part[4096];
        while (const size_t n = std::fread(part, 1, sizeof part, pipe)) outcome.output.append(part, n);
        outcome.status = WEXITSTATUS(pclose(pipe));
        return outcome;
    }
    // Runs the application; what stands in front of its name is for mchost.
    Outcome run(const std::string& arguments, const std::string& hostArguments = "") const {
        return shell("'" BUILD_DIR "/bin/mchost' " + hostArguments + " " + application_ + " " + arguments);
    }

    void write(const std::string& name, const std::string& text) const { std::ofstream(folder_ / name) << text; }
    std::string read(const std::string& name) const {
        std::ifstream in(folder_ / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    std::vector<std::string> files() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder_)) names.push_back(entry.path().filename());
        std::ranges::sort(names);
        return names;
    }
    bool canRun(const std::string& program) const { return shell("command -v " + program).status == 0; }

    const std::string application_;
    const std::filesystem::path folder_;
};

class ApplicationTest : public testing::Test, protected ApplicationRun {
  protected:
    using ApplicationRun::ApplicationRun;
};
