// mchost: starts a host session, opens a design file, runs an application in it.
#include <CLI/CLI.hpp>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "host/command/command.h"
#include "host/front/terminal.h"
#include "host/mdl/model.h"
#include "host/mdl/system.h"
#include "host/session/keyin.h"
#include "host/session/session.h"
#include "host/system/charset.h"
#include "host/system/open.h"
#include "host/system/paths.h"

namespace {

namespace fs = std::filesystem;

enum ExitStatus { statusGood = 0, statusFailed = 1, statusWrongCall = 2 };
enum Level { levelSystem = 0, levelProject = 3, levelUser = 4 };

struct Options {
    std::vector<std::string> settings;
    std::string configFile, openFile, newFile, answersFile;
    std::string listName = "USER";
    bool is3d = false, yes = false;
    std::string application;
    std::vector<std::string> arguments;  // of the application
};

struct Variable {
    std::string name, value;
};

void tell(const std::string& line) {
    std::fflush(stdout);
    std::fprintf(stderr, "mchost: %s\n", line.c_str());
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

fs::path programFolder() {
    std::error_code error;
    return fs::read_symlink("/proc/self/exe", error).parent_path();
}

bool isFile(const fs::path& path) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    return fs::exists(status) && !fs::is_directory(status);
}

fs::path dataFolder() {
    const fs::path installed = programFolder() / "../share/mclib";
    return (isFile(installed / "mclib.rsc") ? installed : programFolder() / "../lib").lexically_normal();
}

std::vector<std::string> foldersOf(const char* variable) {
    std::vector<std::string> folders;
    char* value = mdlSystem_getExpandedCfgVar(variable);
    for (std::string_view left = value == nullptr ? "" : value; !left.empty();) {
        const std::string_view folder = left.substr(0, left.find(';'));
        if (!folder.empty()) folders.push_back(host::systemPath(folder));
        left.remove_prefix(std::min(left.size(), folder.size() + 1));
    }
    dlmSystem_mdlFree(value);
    return folders;
}

// The module of an application in a folder: a name without its suffix is completed, so that a folder or a file of
// sources with the application's name doesn't stand in the way.
std::optional<fs::path> moduleAt(const fs::path& name) {
    const fs::path completed = name.string() + ".so";
    if (name.extension() == ".so" && isFile(name)) return name;
    if (isFile(completed)) return completed;
    return std::nullopt;
}

std::optional<fs::path> findApplication(const std::string& name) {
    if (auto module = moduleAt(host::systemPath(name))) return module;
    if (name.find('/') != std::string::npos) return std::nullopt;
    std::vector<std::string> folders = foldersOf("MS_MDL");
    folders.push_back(programFolder() / "lib");
    folders.push_back(programFolder() / "../lib");
    for (const std::string& folder : folders) {
        if (auto module = moduleAt(fs::path(folder) / name)) return module->lexically_normal();
    }
    return std::nullopt;
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

bool runApplication(host::Session& session, const Options& options) {
    const std::optional<fs::path> module = findApplication(options.application);
    if (!module) {
        tell("no application \"" + options.application +
             "\" as named, along MS_MDL or in the folder lib of mchost; give " + "the path of its .so file");
        return false;
    }
    std::vector<std::string> arguments;
    for (const std::string& argument : options.arguments) arguments.push_back(host::hostName(argument));
    return session.loadApplication(host::hostName(module->string()), host::hostName(module->stem().string()),
                                   options.listName, arguments) != nullptr;
}

// An application of a start list runs before a design file is open, and hears of it then.
bool run(host::Session& session, const Options& options) {
    const bool applicationFirst = options.listName == "MS_INITAPPS" || options.listName == "MS_DGNAPPS";
    if (applicationFirst) return runApplication(session, options) && openDesignFile(options);
    return openDesignFile(options) && runApplication(session, options);
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

// "% TEXT" hands the text to the operating system.
bool carryOut(const host::KeyIn& keyIn) {
    constexpr std::string_view toSystem = "% ";
    const std::string_view text = keyIn.text;
    if (!text.starts_with(toSystem)) return false;
    if (!host::handToSystem(text.substr(toSystem.size()))) tellNotCarriedOut(text);
    return true;
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
    const bool written = isWritten(stdout);
    if (!done || !written) return statusFailed;
    const int status = session.exitStatus();  // an application may find its own arguments wrong
    return status == statusGood || status == statusWrongCall ? status : statusFailed;
}

// ---- the command line ----

struct HelpText : CLI::Formatter {
    std::string make_usage(const CLI::App*, std::string) const override {
        return "Usage: mchost [OPTIONS] APP [arguments of APP...]\n";
    }
    // What can't go together stands in the descriptions.
    std::string make_option_opts(const CLI::Option* option) const override {
        return option->get_type_size() == 0 ? "" : " " + option->get_type_name();
    }
};

int wrongCall(const CLI::App& cli, const std::string& what) {
    tell(what);
    std::fputs(cli.help().c_str(), stderr);
    return statusWrongCall;
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
        return error.get_exit_code() == 0 ? cli.exit(error) : wrongCall(cli, error.what());
    }
    options.arguments = cli.remaining();
    return -1;
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App cli("Runs an application of the family.");
    Options options;
    const int ended = parse(cli, options, argc, argv);
    if (ended >= 0) return ended;
    if (options.arguments.empty() || options.arguments.front().empty() || options.arguments.front().starts_with('-')) {
        const bool noName = options.arguments.empty() || options.arguments.front().empty();
        return wrongCall(cli, noName ? "no application is named" : "no such option: " + options.arguments.front());
    }
    options.application = options.arguments.front();
    options.arguments.erase(options.arguments.begin());
    return work(options);
}
