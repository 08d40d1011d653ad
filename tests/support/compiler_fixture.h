// A compiler of text sources, run as its users run it.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

struct Outcome {
    int status;
    std::string output;  // both streams
};

class CompilerTest : public testing::Test {
  protected:
    explicit CompilerTest(std::string compiler) : compiler_(std::move(compiler)) {
        std::string pattern = (std::filesystem::temp_directory_path() / (compiler_ + "-XXXXXX")).string();
        folder = mkdtemp(pattern.data());
    }
    ~CompilerTest() override { std::filesystem::remove_all(folder); }

    void source(const char* name, const std::string& text) const { std::ofstream(folder / name) << text; }

    Outcome run(const std::string& arguments) const {
        const std::string command =
            "cd " + folder.string() + " && " BUILD_DIR "/bin/" + compiler_ + " " + arguments + " 2>&1";
        std::FILE* pipe = popen(command.c_str(), "r");
        std::string output;
        for (int c; (c = std::fgetc(pipe)) != EOF;) output.push_back(static_cast<char>(c));
        return {WEXITSTATUS(pclose(pipe)), output};
    }

    std::filesystem::path folder;

  private:
    std::string compiler_;
};
