// The calls of a program that holds a session.
#include "mchost/mdl/embed.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "mchost/base/charset.h"
#include "mchost/base/guard.h"
#include "mchost/base/paths.h"
#include "mchost/base/variables.h"
#include "mchost/command/command.h"
#include "mchost/embed/configuration.h"
#include "mchost/embed/installation.h"
#include "mchost/front/line_editor.h"
#include "mchost/front/terminal.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/system.h"
#include "mchost/processes/open.h"
#include "mchost/session/keyin.h"
#include "mchost/session/output.h"
#include "mchost/session/owned_state.h"
#include "mchost/session/program.h"
#include "mchost/session/session.h"

namespace host {

namespace {

constexpr int systemLevel = 0;

// The session that the calls have begun.
struct Held {
    Session* session = nullptr;
    McHostSettings settings{};
};

Held& held() {
    return sessionState<Held>();
}

// A line beside what applications tell.
void tell(const std::string& line) {
    lastError() = line;
    if (const McHostSettings& settings = held().settings; settings.write) {
        settings.write(settings.data, MCHOST_TEXT_MESSAGE, (line + "\n").c_str());
        return;
    }
    std::fflush(stdout);
    std::fprintf(stderr, "%s: %s\n", program_invocation_short_name, printable(line, "\n").c_str());
}

void tellNotCarriedOut(std::string_view keyIn) {
    tell("not carried out, do it by hand: " + utf8FromNarrow(keyIn));
}

// A key-in that is a request to the system.
bool carryOutBySystem(std::string_view text) {
    struct Command {
        std::string_view begin;
        bool (*carryOut)(std::string_view text);
    };
    constexpr Command commands[] = {
        {"% ", handToSystem}, {"browse url ", openBySystem}, {"browse file ", openBySystem}};
    for (const Command& command : commands) {
        if (!text.starts_with(command.begin)) continue;
        if (command.carryOut(text.substr(command.begin.size()))) return true;
        tellNotCarriedOut(text);
        mdlSystem_noteFailure();
        return true;
    }
    return false;
}

bool carryOut(const KeyIn& keyIn) {
    const McHostSettings& settings = held().settings;
    const bool known = settings.keyIn && settings.keyIn(settings.data, utf8FromNarrow(keyIn.text).c_str()) != 0;
    return known || carryOutBySystem(keyIn.text);
}

TerminalOptions optionsOf(const McHostSettings& settings) {
    TerminalOptions options{.yes = settings.yes != 0, .answersFile = settings.answers ? settings.answers : ""};
    if (settings.answer) {
        options.ask = [settings](const std::string& question) -> std::optional<std::string> {
            const char* const answer = settings.answer(settings.data, question.c_str());
            return answer ? std::optional<std::string>(answer) : std::nullopt;
        };
    } else if (settings.ask != MCHOST_ASK_TERMINAL) {
        options.asks = false;
    }
    if (settings.write)
        options.write = [settings](bool console, const std::string& text) {
            settings.write(settings.data, console ? MCHOST_TEXT_CONSOLE : MCHOST_TEXT_MESSAGE, text.c_str());
        };
    return options;
}

// As much of the settings as the caller knows.
McHostSettings settingsFrom(const McHostSettings* given) {
    McHostSettings settings{};
    if (given) std::memcpy(&settings, given, std::min(given->size, sizeof settings));
    return settings;
}

void begin(const McHostSettings& settings) {
    if (Session::current()) throw std::runtime_error("a session is running already in this process");
    auto frontEnd = makeTerminalFrontEnd(optionsOf(settings));
    auto session = std::make_unique<Session>(SessionOptions{std::move(frontEnd), {}, carryOut});
    const std::filesystem::path configuration = defaultConfiguration();
    if (!configuration.empty())
        if (const auto fault = readConfiguration(configuration, systemLevel)) throw std::runtime_error(*fault);
    // Applications show pages of the web through this one; its part is done by carryOut.
    session->startApplication("WEBBROWS", [](int, char**) { return 0; });
    held() = {session.release(), settings};
}

int end() {
    Session& session = *held().session;
    session.finish();
    for (const KeyIn& keyIn : keyInQueue()) tellNotCarriedOut(keyIn.text);
    if (mdlSystem_memoryFailures() != 0)
        tell("memory has run out, so not all was done; close other programs, try again");
    sessionOwner().end();  // what can't be kept is a failure too
    const int status = session.exitStatus();
    delete &session;
    return status;
}

std::vector<std::string> textsFrom(int count, const char* const* texts) {
    std::vector<std::string> narrow;
    for (int i = 0; texts && i < count; ++i) narrow.push_back(hostName(texts[i] ? texts[i] : ""));
    return narrow;
}

constexpr const char* usualList = "USER";

int load(const std::string& application, const std::string& listName, const std::vector<std::string>& arguments) {
    const auto module = findApplication(application);
    if (!module) {
        tell("no application \"" + application + "\"" + (listName.starts_with("MS_") ? " of " + listName : "") +
             " as named, along MS_MDL or in the folder lib of mchost; give the path of its .so file. mchost --help "
             "lists those that are found");
        return MDL_ERROR;
    }
    const std::string path = hostName(module->string()), task = hostName(module->stem().string());
    return held().session->loadApplication(path, task, listName, arguments) ? int{MDL_SUCCESS} : int{MDL_ERROR};
}

// Runs a call of the running session; MDL_ERROR without one.
template <class Body>
int inSession(Body body) {
    return guarded<int>(MDL_ERROR, [&]() -> int { return held().session ? body(*held().session) : MDL_ERROR; });
}

}  // namespace

}  // namespace host

using namespace host;

int mchost_begin(const McHostSettings* settings) noexcept {
    try {
        begin(settingsFrom(settings));
        return MDL_SUCCESS;
    } catch (const std::bad_alloc&) {
        lastError() = noMemory;
    } catch (const std::exception& error) {
        lastError() = error.what();
    }
    return MDL_ERROR;
}

int mchost_end(void) noexcept {
    return inSession([](Session&) { return end(); });
}

int mchost_define(const char* name, const char* value, int level) noexcept {
    return inSession([&](Session&) -> int {
        return name && defineVariable(name, value ? value : "", level) ? MDL_SUCCESS : MDL_ERROR;
    });
}

int mchost_configure(const char* file, int level) noexcept {
    return inSession([&](Session&) -> int {
        const auto fault = readConfiguration(file ? file : "", level);
        if (fault) tell(*fault);
        return fault ? MDL_ERROR : MDL_SUCCESS;
    });
}

int mchost_openDesignFile(const char* file) noexcept {
    return inSession([&](Session&) { return mdlSystem_newDesignFile(hostName(file ? file : "").c_str(), 0); });
}

int mchost_newDesignFile(const char* file, int is3d) noexcept {
    return inSession([&](Session&) -> int {
        const int status = mdlSystem_createDesignFile(hostName(file ? file : "").c_str(), is3d);
        return status == MDL_SUCCESS ? mchost_openDesignFile(file) : status;
    });
}

int mchost_start(const char* taskName, int (*start)(int, char**), const char* listName, int count,
                 const char* const* arguments) noexcept {
    return inSession([&](Session& session) -> int {
        if (!taskName || !start) return MDL_ERROR;
        session.startApplication(hostName(taskName), start, listName ? listName : usualList,
                                 textsFrom(count, arguments));
        return MDL_SUCCESS;
    });
}

int mchost_load(const char* application, const char* listName, int count, const char* const* arguments) noexcept {
    return inSession([&](Session&) {
        return load(application ? application : "", listName ? listName : usualList, textsFrom(count, arguments));
    });
}

int mchost_loadListed(const char* variable) noexcept {
    int loaded = 0;
    const int status = inSession([&](Session&) -> int {
        for (const std::string& name : variableEntries(variable)) {
            if (load(name, variable, {}) != MDL_SUCCESS) return MDL_ERROR;
            ++loaded;
        }
        return MDL_SUCCESS;
    });
    return status == MDL_SUCCESS ? loaded : -1;
}

int mchost_listApplications(void (*found)(void*, const char*, const char*), void* data) noexcept {
    return inSession([&](Session&) -> int {
        if (!found) return MDL_ERROR;
        for (const auto& [name, description] : describedApplications()) found(data, name.c_str(), description.c_str());
        return MDL_SUCCESS;
    });
}

int mchost_serve(void) noexcept {
    return inSession([](Session&) -> int { return serve() ? MDL_SUCCESS : MDL_ERROR; });
}

const char* mchost_lastError(void) noexcept {
    return guarded<const char*>("", [] { return lastError().c_str(); });
}

void mchost_tell(const char* line) noexcept {
    guarded([&] { tell(line ? line : ""); });
}

void mchost_startProgram(void) noexcept {
    startProgram();
}

void mchost_tellThrown(const char* program) noexcept {
    tellThrown(program);
}
