// mchost: starts a host session, opens a design file, runs an application in it.
#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "batch/batch.h"
#include "mchost/mdl/drawing_names.h"
#include "mchost/mdl/embed.h"
#include "mchost/mdl/files.h"

namespace {

// Made before all other static objects: what they throw is told too.
struct ProgramStart {
    ProgramStart() { mchost_startProgram(); }
};
__attribute__((init_priority(101))) const ProgramStart programStart;

enum ExitStatus { statusGood = 0, statusFailed = 1, statusWrongCall = 2 };
constexpr const char *userList = "USER", *startList = "MS_INITAPPS", *fileList = "MS_DGNAPPS";
// Stands between the applications of one session on the command line.
constexpr std::string_view nextApplication = "--and";
enum Level { levelProject = 3, levelUser = 4 };

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
    std::vector<std::string> batch;  // names of drawings, and with @ in front of them of lists
    batch::Order order;
};

void tell(const std::string& line) {
    mchost_tell(line.c_str());
}

// ---- configuration ----

// NAME=VALUE.
bool define(const std::string& setting) {
    const size_t sign = setting.find('=');
    const std::string name = setting.substr(0, sign), value = setting.substr(sign + 1);
    return mchost_define(name.c_str(), value.c_str(), levelUser) == MDL_SUCCESS;
}

bool configure(const Options& options) {
    if (!options.configFile.empty() && mchost_configure(options.configFile.c_str(), levelProject) != MDL_SUCCESS)
        return false;
    return std::ranges::all_of(options.settings, define);
}

// ---- the run ----

// What can't be done has been told.
bool openDesignFile(const Options& options) {
    if (!options.newFile.empty()) return mchost_newDesignFile(options.newFile.c_str(), options.is3d) == MDL_SUCCESS;
    return options.openFile.empty() || mchost_openDesignFile(options.openFile.c_str()) == MDL_SUCCESS;
}

bool opensDesignFile(const Options& options) {
    return !options.newFile.empty() || !options.openFile.empty();
}

bool isStartList(std::string_view listName) {
    return listName == startList || listName == fileList;
}

bool startNamed(const Options& options) {
    return std::ranges::all_of(options.starts, [&](const Start& start) {
        std::vector<const char*> arguments;
        for (const std::string& argument : start.arguments) arguments.push_back(argument.c_str());
        return mchost_load(start.application.c_str(), options.listName.c_str(), static_cast<int>(arguments.size()),
                           arguments.data()) == MDL_SUCCESS;
    });
}

constexpr const char* noneNamed = "no application is named";

enum class Ran { good, failed, nothing };

// Applications of a start list run before a design file is open, and hear of it then.
Ran run(const Options& options) {
    int listed = mchost_loadListed(startList);
    if (listed >= 0 && opensDesignFile(options)) {
        const int more = mchost_loadListed(fileList);
        listed = more < 0 ? more : listed + more;
    }
    if (listed < 0) return Ran::failed;
    if (listed == 0 && options.starts.empty()) return Ran::nothing;
    const bool early = isStartList(options.listName);
    const bool done =
        early ? startNamed(options) && openDesignFile(options) : openDesignFile(options) && startNamed(options);
    return done && mchost_serve() == MDL_SUCCESS ? Ran::good : Ran::failed;
}

bool isWritten(std::FILE* stream) {
    const bool good = std::fflush(stream) == 0 && std::ferror(stream) == 0;
    if (!good) tell("what the application printed couldn't be written in full; is the disk full?");
    return good;
}

bool begin(const Options& options) {
    McHostSettings settings{};
    settings.size = sizeof settings;
    settings.answers = options.answersFile.empty() ? nullptr : options.answersFile.c_str();
    settings.yes = options.yes;
    settings.ask = MCHOST_ASK_TERMINAL;
    if (mchost_begin(&settings) == MDL_SUCCESS) return true;
    tell(mchost_lastError());
    return false;
}

struct ListedApplication {
    std::string name, description;
};

std::string listOfApplications() {
    std::vector<ListedApplication> found;
    const auto keep = [](void* data, const char* name, const char* description) {
        static_cast<std::vector<ListedApplication>*>(data)->push_back({name, description});
    };
    if (mchost_listApplications(keep, &found) != MDL_SUCCESS || found.empty())
        return "No applications are found along MS_MDL.\n";
    size_t width = 0;
    for (const ListedApplication& one : found) width = std::max(width, one.name.size());
    std::string text = "Applications:\n";
    for (const auto& [name, description] : found)
        text +=
            "  " + name + (description.empty() ? "" : std::string(width + 2 - name.size(), ' ') + description) + "\n";
    return text;
}

// ---- the command line ----

struct HelpText : CLI::Formatter {
    std::string make_usage(const CLI::App*, std::string) const override {
        return "Usage: mchost [OPTIONS] APP [arguments of APP...] [--and APP [arguments of APP...]]...\n"
               "       mchost [OPTIONS] --batch DRAWINGS APP [arguments of APP...]\n"
               "       mchost APP --help\n";
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
    const size_t sign = setting.find('='), begin = setting.find_first_not_of(" \t");
    const size_t end = std::min(setting.find_first_of(" \t", begin), sign);
    const bool good = sign != std::string::npos && begin < end && setting.find_first_not_of(" \t", end) == sign;
    return good ? "" : "not VAR=VALUE: " + setting;
}

// Without the answers, which nobody is asked for here.
void addApplications(CLI::App& cli, Options options) {
    options.answersFile.clear();
    if (!begin(options)) return;
    if (configure(options)) cli.footer(listOfApplications());
    mchost_end();
}

void addBatch(CLI::App& cli, Options& options) {
    auto* batch = cli.add_option("--batch", options.batch,
                                 "Run APP for each of these drawings: a file, a pattern, a folder, or @LIST; may be "
                                 "given again. {} in the arguments stands for the drawing, {name} for its bare name; "
                                 "without either it is opened");
    batch->type_name("DRAWINGS")->allow_extra_args(false)->excludes("--open")->excludes("--new");
    batch::Order& order = options.order;
    order.jobs = static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
    order.log = "batch.log";
    cli.add_option("--jobs", order.jobs, "So many at a time (as many as there are cores)")
        ->type_name("N")
        ->check(CLI::Range(1, 1000))
        ->needs(batch);
    cli.add_option("--limit", order.limit, "End one that takes longer")
        ->type_name("SECONDS")
        ->check(CLI::PositiveNumber)
        ->needs(batch);
    cli.add_option("--log", order.log, "Where a line is kept for each drawing (batch.log)")
        ->type_name("FILE")
        ->needs(batch);
    cli.add_flag("--resume", order.resume, "Go on with the log of a run that was stopped")->needs(batch);
    cli.add_flag("--retry", order.retry, "The same, and do again what failed")->needs(batch);
    cli.add_option("--also-good", order.good, "An exit status that counts as good beside 0")
        ->type_name("STATUS")
        ->allow_extra_args(false)
        ->needs(batch);
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
    addBatch(cli, options);
    cli.set_version_flag("--version", "mchost " MCHOST_VERSION);
    cli.prefix_command();
    cli.formatter(std::make_shared<HelpText>());
    try {
        cli.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() != 0) return wrongCall(cli, error.what());
        if (error.get_name() == "CallForHelp") addApplications(cli, options);
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

int work(const Options& options, CLI::App& cli) {
    if (!begin(options)) return statusFailed;
    const Ran ran = configure(options) ? run(options) : Ran::failed;
    std::string applications;
    if (ran == Ran::nothing) applications = listOfApplications();
    const int status = mchost_end();
    if (ran == Ran::nothing) {
        wrongCall(cli, noneNamed);
        std::fputs(applications.c_str(), stderr);
        return statusWrongCall;
    }
    const bool whole = isWritten(stdout) && ran != Ran::failed;
    if (status == statusWrongCall) return status;  // the application's arguments were wrong, or it tells more by it
    return status == statusGood && whole ? statusGood : statusFailed;
}

// ---- many drawings ----

// The options that each of the runs gets.
std::vector<std::string> hostArguments(const Options& options) {
    std::vector<std::string> arguments;
    for (const std::string& setting : options.settings) arguments.insert(arguments.end(), {"--set", setting});
    if (!options.configFile.empty()) arguments.insert(arguments.end(), {"--config", options.configFile});
    if (!options.answersFile.empty()) arguments.insert(arguments.end(), {"--answers", options.answersFile});
    if (options.listName != userList) arguments.insert(arguments.end(), {"--list-name", options.listName});
    if (options.yes) arguments.emplace_back("--yes");
    return arguments;
}

// Names of the system. False after a message, with those that could be told.
bool listDrawings(const Options& options, std::vector<std::string>& drawings) {
    const std::unique_ptr<MdlDrawingNames, void (*)(MdlDrawingNames*)> names(mdlDrawingNames_create(),
                                                                             mdlDrawingNames_free);
    bool whole = true;
    for (const std::string& name : options.batch) {
        const int status = name.starts_with('@') ? mdlDrawingNames_addList(names.get(), name.c_str() + 1)
                                                 : mdlDrawingNames_add(names.get(), name.c_str());
        whole = whole && status == MDL_SUCCESS;
    }
    for (int32_t i = 0; i < mdlDrawingNames_count(names.get()); ++i) {
        char path[4096];
        whole = mdlFile_getSystemPath(path, sizeof path, mdlDrawingNames_get(names.get(), i)) == MDL_SUCCESS && whole;
        drawings.emplace_back(path);
    }
    return whole;
}

int workBatch(Options& options, CLI::App& cli) {
    if (options.starts.size() != 1) return wrongCall(cli, "--batch runs one application");
    batch::Order& order = options.order;
    if (!begin(options)) return statusFailed;
    const bool listed = configure(options) && listDrawings(options, order.drawings);
    mchost_end();
    if (order.drawings.empty()) return listed ? statusGood : statusFailed;
    order.hostArguments = hostArguments(options);
    order.command = {options.starts[0].application};
    order.command.insert(order.command.end(), options.starts[0].arguments.begin(), options.starts[0].arguments.end());
    const int status = batch::run(order);
    return status == statusGood && !listed ? statusFailed : status;
}

int runWith(int argc, char** argv) {
    CLI::App cli("Runs an application of the family.");
    Options options;
    const int ended = parse(cli, options, argc, argv);
    if (ended >= 0) return ended;
    if (const std::string fault = faultOf(options); !fault.empty()) return wrongCall(cli, fault);
    return options.batch.empty() ? work(options, cli) : workBatch(options, cli);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return runWith(argc, argv);
    } catch (...) {
        mchost_tellThrown("mchost");
        return statusFailed;
    }
}
