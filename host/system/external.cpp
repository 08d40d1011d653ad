// Starting programs.
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "host/mdl/external.h"
#include "host/session/guard.h"
#include "host/system/paths.h"

namespace host {

namespace {

// The programs that were started and not yet collected by the system.
std::vector<pid_t> children;

void collectEnded() {
    std::erase_if(children, [](pid_t child) { return waitpid(child, nullptr, WNOHANG) != 0; });
}

int start(const std::vector<std::string>& command) {
    std::vector<char*> argv;
    for (const std::string& word : command) argv.push_back(const_cast<char*>(word.c_str()));
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    pid_t child = 0;
    const int error = posix_spawnp(&child, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error == 0) children.push_back(child);
    return error == 0 ? MDL_SUCCESS : MDL_ERROR;
}

}  // namespace

}  // namespace host

int mdlExternal_extStartProgram(const char* program, int argumentCount, const char* const* arguments) {
    return host::guarded<int>(MDL_ERROR, [&]() -> int {
        if (program == nullptr || argumentCount < 0 || (argumentCount > 0 && arguments == nullptr)) return MDL_ERROR;
        host::collectEnded();
        std::vector<std::string> command = {host::systemPath(program)};
        for (int i = 0; i < argumentCount; ++i) command.emplace_back(arguments[i]);
        return host::start(command);
    });
}
