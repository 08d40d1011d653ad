// mchost: starts a host session, opens a design file, runs an application in it.
#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "mchost/base/charset.h"
#include "mchost/base/paths.h"
#include "mchost/command/command.h"
#include "mchost/front/line_editor.h"
#include "mchost/front/terminal.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/system.h"
#include "mchost/processes/open.h"
#include "mchost/session/keyin.h"
#include "mchost/session/program.h"
#include "mchost/session/session.h"
#include "programs/mchost_modules.h"

namespace {

MCHOST_FIRST const host::ProgramStart programStart;

namespace fs = std::filesystem;
using namespace mchost;

enum ExitStatus { statusGood = 0, statusFailed = 1, statusWrongCall = 2 };
constexpr const char *userList = "USER", *startList = "MS_INITAPPS", *fileList = "MS_DGNAPPS";
// Stands between the applications of one session on the command line.
constexpr std::string_view nextApplication = "--and";
enum Level { levelSystem = 0, levelProject = 3, levelUser = 4 };

// An application that is named on the command line.
struct Start {
    std::string application;
    std::vector<std::string> arguments;
};

struct Options {
    std::vector<std::string> settings;
    std::string configFile, openFile, newFile, answersFile;
    std::string listName = userList;
    bool is3d = false, yes = false;
    std::vector<Start> starts;
};

struct Variable {
    std::string name, value;
};

void tell(const std::string& line) {
    std::fflush(stdout);
    std::fprintf(stderr, "mchost: %s\n", host::printable(line, "\n").c_str());
}

std::string trimmed(std::string_view text) {
    const size_t first = text.find_first_not_of(" \t\r");
    if (first == std::string_view::npos) return {};
    return std::string(text.substr(first, text.find_last_not_of(" \t\r") - first + 1));
}

// NAME=VALUE with blanks around both parts dropped; nothing when it isn't one.
std::optional<Variable> variableIn(std::string_view text) {
    const size_t sign = text.find('=');
    if (sign == std::string_view::npos) return std::nullopt;
    Variable variable{trimmed(text.substr(0, sign)), trimmed(text.substr(sign + 1))};
    if (variable.name.empty() || variable.name.find_first_of(" \t") != std::string::npos) return std::nullopt;
    return variable;
}

// ---- where things lie ----

fs::path dataFolder() {
    const fs::path installed = programFolder() / "../share/mclib";
    return (isFile(installed / "mclib.rsc") ? installed : programFolder() / "../lib").lexically_normal();
}

// ---- configuration ----

void replaceAll(std::string& text, std::string_view name, const std::string& value) {
    for (size_t at = text.find(name); at != std::string::npos; at = text.find(name, at + value.size())) {
        text.replace(at, name.size(), value);
    }
}

bool define(Variable variable, Level level) {
    replaceAll(variable.value, "$(MCHOST_DIR)", programFolder().string());
    replaceAll(variable.value, "$(MCHOST_DATA)", dataFolder().string());
    replaceAll(variable.value, "$(MCHOST_USER)", host::userDataFolder().string());
    return mdlSystem_defineCfgVar(variable.name.c_str(), host::hostName(variable.value).c_str(), level) == MDL_SUCCESS;
}

bool readConfiguration(const fs::path& path, Level level) {
    std::ifstream file(path);
    std::string line;
    for (int number = 1; std::getline(file, line); ++number) {
        const std::string text = trimmed(line);
        if (text.empty() || text.starts_with('#')) continue;
        const std::optional<Variable> variable = variableIn(text);
        if (!variable || !define(*variable, level)) {
            tell(path.string() + ":" + std::to_string(number) + ": not NAME = VALUE: " + text);
            return false;
        }
    }
    if (file.eof()) return true;
    tell(path.string() + ": the configuration can't be read; give a file that is there");
    return false;
}

bool configure(const Options& options) {
    for (const fs::path& folder : {programFolder(), (programFolder() / "../share/mclib").lexically_normal()}) {
        if (!isFile(folder / "mchost.cfg")) continue;
        if (!readConfiguration(folder / "mchost.cfg", levelSystem)) return false;
        break;
    }
    if (!options.configFile.empty() && !readConfiguration(options.configFile, levelProject)) return false;
    for (const std::string& setting : options.settings) define(*variableIn(setting), levelUser);
    return true;
}

// ---- the run ----

// What can't be done has been told in the message centre.
bool openDesignFile(const Options& options) {
    const std::string& name = options.newFile.empty() ? options.openFile : options.newFile;
    if (name.empty()) return true;
    const std::string hostName = host::hostName(name);
    if (!options.newFile.empty() && mdlSystem_createDesignFile(hostName.c_str(), options.is3d) != MDL_SUCCESS)
        return false;
    return mdlSystem_newDesignFile(hostName.c_str(), 0) == MDL_SUCCESS;
}

bool opensDesignFile(const Options& options) {
    return !options.newFile.empty() || !options.openFile.empty();
}

bool isStartList(std::string_view listName) {
    return listName == startList || listName == fileList;
}

bool startApplication(host::Session& session, const Start& start, const std::string& listName) {
    const std::optional<fs::path> module = findApplication(start.application);
    if (!module) {
        tell("no application \"" + start.application + "\"" + (isStartList(listName) ? " of " + listName : "") +
             " as named, along MS_MDL or in the folder lib of mchost; give the path of its .so file. mchost --help "
             "lists those that are found");
        return false;
    }
    std::vector<std::string> arguments;
    for (const std::string& argument : start.arguments) arguments.push_back(host::hostName(argument));
    return session.loadApplication(host::hostName(module->string()), host::hostName(module->stem().string()), listName,
                                   arguments) != nullptr;
}

bool startListed(host::Session& session, const char* listName) {
    return std::ranges::all_of(entriesOf(listName), [&](const std::string& name) {
        return startApplication(session, {name, {}}, listName);
    });
}

bool startNamed(host::Session& session, const Options& options) {
    return std::ranges::all_of(options.starts,
                               [&](const Start& start) { return startApplication(session, start, options.listName); });
}

// Applications of a start list run before a design file is open, and hear of it then.
bool run(host::Session& session, const Options& options) {
    // Applications show pages of the web through this one; its part is done by carryOut.
    session.startApplication("WEBBROWS", [](int, char**) { return 0; });
    if (!startListed(session, startList)) return false;
    if (opensDesignFile(options) && !startListed(session, fileList)) return false;
    if (isStartList(options.listName)) return startNamed(session, options) && openDesignFile(options);
    return openDesignFile(options) && startNamed(session, options);
}

// What the application has left for its user: commands that wait for points, then dialogs that stay open, which may
// start commands again. False when nobody gives a command its points.
bool serve(host::Session& session) {
    do {
        if (!host::serveCommands()) return false;
    } while (session.frontEnd().serveOpenDialog());
    return true;
}

void tellNotCarriedOut(std::string_view keyIn) {
    tell("not carried out, do it by hand: " + host::utf8FromNarrow(keyIn));
}

// "% TEXT" hands the text to the operating system, "browse url ADDRESS" and "browse file NAME" open what they name.
bool carryOut(const host::KeyIn& keyIn) {
    struct Command {
        std::string_view begin;
        bool (*carryOut)(std::string_view text);
    };
    constexpr Command commands[] = {
        {"% ", host::handToSystem}, {"browse url ", host::openBySystem}, {"browse file ", host::openBySystem}};
    const std::string_view text = keyIn.text;
    for (const Command& command : commands) {
        if (!text.starts_with(command.begin)) continue;
        if (command.carryOut(text.substr(command.begin.size()))) return true;
        tellNotCarriedOut(text);
        mdlSystem_noteFailure();
        return true;
    }
    return false;
}

// Other key-ins are commands of a drawing program around the session; mchost has none to carry them out.
void tellKeyIns() {
    for (const host::KeyIn& keyIn : host::keyInQueue()) tellNotCarriedOut(keyIn.text);
}

bool isWritten(std::FILE* stream) {
    const bool good = std::fflush(stream) == 0 && std::ferror(stream) == 0;
    if (!good) tell("what the application printed couldn't be written in full; is the disk full?");
    return good;
}

int work(const Options& options) {
    host::TerminalOptions terminal{.yes = options.yes, .answersFile = options.answersFile};
    std::unique_ptr<host::FrontEnd> frontEnd;
    try {
        frontEnd = host::makeTerminalFrontEnd(std::move(terminal));
    } catch (const std::runtime_error& error) {
        tell(error.what());
        return statusFailed;
    }
    host::Session session({.frontEnd = std::move(frontEnd), .variables = {}, .carryOut = carryOut});
    const bool done = configure(options) && run(session, options) && serve(session);
    session.finish();
    tellKeyIns();
    if (mdlSystem_memoryFailures() != 0)
        tell("memory has run out, so not all was done; close other programs, try again");
    const bool written = isWritten(stdout);
    if (!done || !written) return statusFailed;
    const int status = session.exitStatus();  // an application may find its own arguments wrong
    return status == statusGood || status == statusWrongCall ? status : statusFailed;
}

// ---- the command line ----

struct HelpText : CLI::Formatter {
    std::string make_usage(const CLI::App*, std::string) const override {
        return "Usage: mchost [OPTIONS] APP [arguments of APP...] [--and APP [arguments of APP...]]...\n"
               "       mchost APP --help\n";
    }
    // What can't go together stands in the descriptions.
    std::string make_option_opts(const CLI::Option* option) const override {
        return option->get_type_size() == 0 ? "" : " " + option->get_type_name();
    }
};

constexpr const char* noneNamed = "no application is named";

int wrongCall(const CLI::App& cli, const std::string& what) {
    tell(what);
    std::fputs(cli.help().c_str(), stderr);
    return statusWrongCall;
}

void takeStarts(Options& options, const std::vector<std::string>& words) {
    options.starts.assign(words.empty() ? 0 : 1, {});
    bool named = false;
    for (const std::string& word : words) {
        if (word == nextApplication) {
            options.starts.emplace_back();
            named = false;
        } else if (std::exchange(named, true)) {
            options.starts.back().arguments.push_back(word);
        } else {
            options.starts.back().application = word;
        }
    }
}

std::string checkedSetting(const std::string& setting) {
    return variableIn(setting) ? "" : "not VAR=VALUE: " + setting;
}

int parse(CLI::App& cli, Options& options, int argc, char** argv) {
    cli.add_option("--set", options.settings, "Define a configuration variable")
        ->type_name("VAR=VALUE")
        ->allow_extra_args(false)
        ->check(CLI::Validator(checkedSetting, ""));
    cli.add_option("--config", options.configFile, "Read configuration variables from a file")->type_name("FILE");
    auto* open = cli.add_option("--open", options.openFile, "Open a design file")->type_name("FILE.mcd");
    auto* fresh = cli.add_option("--new", options.newFile, "Make a design file and open it; not with --open");
    fresh->type_name("FILE.mcd")->excludes(open);
    cli.add_flag("--3d", options.is3d, "Make the design file of --new a 3D one")->needs(fresh);
    cli.add_flag("--yes", options.yes, "Answer each question with its first button");
    cli.add_option("--answers", options.answersFile, "Answer questions from a file")->type_name("FILE");
    cli.add_option("--list-name", options.listName, "The list that the application is loaded by (USER)")
        ->type_name("NAME");
    cli.set_version_flag("--version", "mchost " MCHOST_VERSION);
    cli.prefix_command();
    cli.formatter(std::make_shared<HelpText>());
    try {
        cli.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() != 0) return wrongCall(cli, error.what());
        if (error.get_name() == "CallForHelp" && configure(options)) cli.footer(listOfApplications());
        return cli.exit(error);
    }
    takeStarts(options, cli.remaining());
    return -1;
}

// What is wrong with a call that could be read; empty when nothing is.
std::string faultOf(const Options& options) {
    for (const Start& start : options.starts) {
        if (start.application.empty()) return options.starts.size() == 1 ? noneNamed : "no application behind --and";
        if (start.application.starts_with('-')) return "no such option: " + start.application;
    }
    if (isStartList(options.listName) && !opensDesignFile(options))
        return "an application of " + options.listName + " waits for a design file; give one with --open or --new";
    return "";
}

// Whether there is something to start though nothing is named.
bool somethingIsListed(const Options& options) {
    return !entriesOf(startList).empty() || (opensDesignFile(options) && !entriesOf(fileList).empty());
}

int callWithoutApplication(CLI::App& cli) {
    const int status = wrongCall(cli, noneNamed);
    std::fputs(listOfApplications().c_str(), stderr);
    return status;
}

int runWith(int argc, char** argv) {
    CLI::App cli("Runs an application of the family.");
    Options options;
    const int ended = parse(cli, options, argc, argv);
    if (ended >= 0) return ended;
    if (const std::string fault = faultOf(options); !fault.empty()) return wrongCall(cli, fault);
    if (options.starts.empty()) {
        if (!configure(options)) return statusFailed;
        if (!somethingIsListed(options)) return callWithoutApplication(cli);
    }
    return work(options);
}

}  // namespace

int main(int argc, char** argv) {
    return host::runProgram("mchost", [&] { return runWith(argc, argv); });
}
