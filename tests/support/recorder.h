// Programs for tests of command lines: each writes its name and arguments to a log, as "[name][argument]...", one run
// to a line, and ends with a status of its own.
#pragma once

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "mchost/mdl/system.h"
#include "tests/support/session_fixture.h"

class Recorder {
  public:
    // In a folder "bin" of the test's own, which is put in front of PATH.
    explicit Recorder(const std::string& testFolder) : folder_(testFolder + "/bin"), log_(testFolder + "/log") {
        std::filesystem::create_directories(folder_);
        char path[4096] = "";
        mdlSystem_getenv(path, "PATH", sizeof path);
        mdlSystem_defineCfgVar("PATH", (folder_ + ":" + path).c_str(), 4);
    }

    // Makes a program that runs `before` in front of its line in the log; its path.
    std::string add(const std::string& name, int status = 0, const std::string& before = "") const {
        const std::string path = folder_ + "/" + name;
        std::ofstream(path) << "#!/bin/sh\n"
                            << before << "\nprintf '[%s]' '" << name << "' \"$@\" >>'" << log_ << "'\necho >>'" << log_
                            << "'\nexit " << status << "\n";
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        return path;
    }

    // What was logged since the last look.
    std::string take() const {
        std::ostringstream text;
        text << std::ifstream(log_).rdbuf();
        std::filesystem::remove(log_);
        return text.str();
    }

  private:
    std::string folder_, log_;
};
