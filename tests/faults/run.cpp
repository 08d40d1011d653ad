#include "tests/faults/run.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <vector>

#include "mchost/base/words.h"

namespace fs = std::filesystem;

namespace {

constexpr auto timeLimit = std::chrono::seconds(30);

std::vector<std::string> wordsOf(const std::string& line) {
    std::istringstream in(line);
    return {std::istream_iterator<std::string>(in), {}};
}

// The same for each run of a case, so that the same calls are made: only the letters of the folder differ.
std::vector<std::string> environmentFor(const Place& place, const fs::path& folder, const Fault& fault, bool counts) {
    std::vector<std::string> entries = {"PATH=/usr/bin:/bin",
                                        "TERM=dumb",
                                        "HOME=" + (folder / "home").string(),
                                        "TMPDIR=" + folder.string(),
                                        "XDG_DATA_HOME=" + (folder / "home/data").string(),
                                        "LD_PRELOAD=" + place.faults.string()};
    if (counts) entries.push_back("MCFAULT_COUNTS=" + folder.string() + ".counts");
    if (fault.kind.empty()) return entries;
    entries.push_back("MCFAULT_KIND=" + fault.kind);
    entries.push_back("MCFAULT_MODE=" + fault.mode);
    entries.push_back("MCFAULT_AT=" + std::to_string(fault.at));
    return entries;
}

[[noreturn]] void become(const fs::path& folder, char* const* words, char* const* environment) {
    setpgid(0, 0);
    const int null = open("/dev/null", O_RDONLY);
    const int out = open((folder.string() + ".out").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    const int errors = open((folder.string() + ".err").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    dup2(null, 0), dup2(out, 1), dup2(errors, 2);
    for (const int file : {null, out, errors}) close(file);
    if (chdir(folder.c_str()) == 0) execve(words[0], words, environment);
    _exit(126);
}

int waitFor(pid_t child) {
    const auto end = std::chrono::steady_clock::now() + timeLimit;
    int status = 0;
    while (waitpid(child, &status, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() > end) {
            kill(-child, SIGKILL);
            waitpid(child, &status, 0);
            return -1;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

Result start(const std::string& command, const Place& place, const fs::path& folder, const Fault& fault, bool counts) {
    std::vector<std::string> words = wordsOf(command), environment = environmentFor(place, folder, fault, counts);
    words[0] = (place.build / "bin" / words[0]).string();
    const std::vector<char*> arguments = host::pointersTo(words), values = host::pointersTo(environment);
    const pid_t child = fork();
    if (child == 0) become(folder, arguments.data(), values.data());
    Result result{.status = waitFor(child), .messages = {}};
    std::ifstream errors(folder.string() + ".err");
    result.messages.assign(std::istreambuf_iterator<char>(errors), {});
    return result;
}

}  // namespace

void prepare(const Case& run, const Place& place, const fs::path& folder) {
    fs::remove_all(folder);
    fs::create_directories(run.emptyHome ? folder : folder / "home/data");
    for (const std::string& input : run.inputs)
        fs::copy_file(place.project / input, folder / fs::path(input).filename());
    for (const auto& [name, text] : run.files) std::ofstream(folder / name) << text;
    std::vector<std::string> before = run.before;
    if (!run.emptyHome) before.insert(before.begin(), "mchost formula --help");
    for (const std::string& command : before) start(command, place, folder, {}, false);
}

Result runWith(const Case& run, const Place& place, const fs::path& folder, const Fault& fault, Counts* counts) {
    Result result = start(run.command, place, folder, fault, counts != nullptr);
    std::ifstream in(folder.string() + ".counts");
    std::string kind;
    for (long count = 0; counts && in >> kind >> count;) (*counts)[kind] = count;
    return result;
}
