#include "programs/shell/commands.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <optional>

#include "mchost/base/existing_path.h"
#include "mchost/base/paths.h"
#include "mchost/files/copy.h"
#include "mchost/files/file_list.h"
#include "mchost/files/work_folder.h"
#include "mchost/printing/printers.h"
#include "programs/shell/shell.h"

namespace host::shell {

namespace {

namespace fs = std::filesystem;

int failAt(const CommandLine& line, const std::string& name, int error) {
    const char* what = error == ENXIO    ? "there is no such printer: MC_SPOOL has no folder for it, and the print "
                                           "system no queue"
                       : error == EIO    ? "the printer or the disk refused it"
                       : error == EISDIR ? "that is a folder"
                                         : std::strerror(error);
    return fail(line, name + ": " + what);
}

bool isFolder(const fs::path& path) {
    std::error_code error;
    return fs::is_directory(path, error);
}

bool isThere(const fs::path& path) {
    std::error_code error;
    return fs::exists(fs::symlink_status(path, error));
}

bool hasWildcard(std::string_view text) {
    return text.find_first_of("*?") != std::string_view::npos;
}

std::string withoutEndSeparators(std::string path) {
    while (path.size() > 1 && path.ends_with('/')) path.pop_back();
    return path;
}

// The path of a name as it is there, letter case aside, or as it would be.
fs::path pathOf(const std::string& name) {
    const std::string path = withoutEndSeparators(systemPath(name));
    return existingPath(path).value_or(path);
}

std::vector<fs::path> entriesOf(const fs::path& folder, std::string_view pattern) {
    std::vector<fs::path> found;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
        if (matchesPattern(pattern, entry->path().filename().string())) found.push_back(entry->path());
    std::ranges::sort(found);
    return found;
}

// What a name stands for: with * or ? in its last part all entries that match, in order of name.
std::vector<fs::path> entriesNamed(const std::string& name) {
    const fs::path path = withoutEndSeparators(systemPath(name));
    const std::string pattern = path.filename();
    if (!hasWildcard(pattern)) {
        const fs::path there = pathOf(name);
        return isThere(there) ? std::vector{there} : std::vector<fs::path>();
    }
    const fs::path folder = path.has_parent_path() ? pathOf(path.parent_path()) : fs::path();
    std::vector<fs::path> found = entriesOf(folder.empty() ? "." : folder, pattern);
    if (folder.empty())
        for (fs::path& entry : found) entry = entry.filename();
    return found;
}

std::vector<fs::path> filesNamed(const std::string& name) {
    std::vector<fs::path> found = entriesNamed(name);
    std::erase_if(found, isFolder);
    return found;
}

void tellCount(size_t count, const char* what) {
    std::printf("%zu file%s %s\n", count, count == 1 ? "" : "s", what);
}

// ---- folders ----

int changeFolder(const CommandLine& line) {
    if (line.names.empty()) {
        std::printf("%s\n", fs::current_path().c_str());
        return done;
    }
    return chdir(pathOf(line.names[0]).c_str()) == 0 ? int{done} : failAt(line, line.names[0], errno);
}

int makeFolder(const CommandLine& line) {
    int status = done;
    for (const std::string& name : line.names) {
        const fs::path path = withoutEndSeparators(systemPath(name));
        std::error_code error;
        if (isThere(path))
            status = fail(line, name + ": there is a file or folder of that name already");
        else if (!fs::create_directories(path, error))
            status = failAt(line, name, error.value());
    }
    return status;
}

std::string timeOf(const fs::path& path) {
    std::error_code error;
    const auto written = fs::last_write_time(path, error);
    const std::time_t time = std::chrono::system_clock::to_time_t(std::chrono::file_clock::to_sys(written));
    std::tm local{};
    char text[32] = "";
    localtime_r(&time, &local);
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M", &local);
    return text;
}

void listEntry(const fs::path& path, bool bare) {
    std::error_code error;
    if (bare)
        std::printf("%s\n", path.filename().c_str());
    else if (isFolder(path))
        std::printf("%s  %14s %s\n", timeOf(path).c_str(), "<folder>", path.filename().c_str());
    else
        std::printf("%s  %14ju %s\n", timeOf(path).c_str(), static_cast<uintmax_t>(fs::file_size(path, error)),
                    path.filename().c_str());
}

int listFolder(const CommandLine& line) {
    const std::string name = line.names.empty() ? "." : line.names[0];
    const fs::path path = pathOf(name);
    const std::vector<fs::path> entries = isFolder(path) ? entriesOf(path, "*") : entriesNamed(name);
    if (entries.empty() && !isFolder(path)) return failAt(line, name, ENOENT);
    for (const fs::path& entry : entries) listEntry(entry, line.has('B'));
    return done;
}

// ---- copies ----

// Sources joined by "+", and where they go.
struct CopyJob {
    std::vector<std::string> sources;
    std::string destination;  // empty: the current folder
    bool joined = false;
};

// "a+b c" and "a + b c"; a file with a "+" in its name goes before.
std::optional<CopyJob> copyJobOf(const CommandLine& line) {
    std::vector<std::string> parts;
    for (const std::string& name : line.names) {
        if (isThere(pathOf(name))) {
            parts.push_back(name);
            continue;
        }
        for (size_t begin = 0; begin <= name.size();) {
            const size_t plus = std::min(name.find('+', begin), name.size());
            if (plus > begin) parts.push_back(name.substr(begin, plus - begin));
            if (plus < name.size()) parts.emplace_back("+");
            begin = plus + 1;
        }
    }
    CopyJob job;
    bool expectsSource = true;
    for (const std::string& part : parts) {
        if (part == "+") {
            if (expectsSource || !job.destination.empty()) return std::nullopt;
            expectsSource = job.joined = true;
        } else if (expectsSource) {
            job.sources.push_back(part);
            expectsSource = false;
        } else if (job.destination.empty()) {
            job.destination = part;
        } else {
            return std::nullopt;
        }
    }
    return expectsSource ? std::nullopt : std::optional(job);
}

// Files joined to one that bears the name of the first, for as long as this stands.
class JoinedFile {
  public:
    explicit JoinedFile(const std::vector<fs::path>& files)
        : folder_(fs::temp_directory_path()), path_(folder_.path() / files.front().filename()) {
        if (folder_.error() != 0) return;
        std::ofstream to(path_, std::ios::binary);
        for (const fs::path& file : files) {
            std::ifstream from(file, std::ios::binary);
            if (from.peek() != std::ifstream::traits_type::eof()) to << from.rdbuf();
            complete_ = complete_ && from.is_open() && !from.bad();
        }
        complete_ = complete_ && to.flush().good();
    }
    bool isComplete() const { return folder_.error() == 0 && complete_; }
    const fs::path& path() const { return path_; }

  private:
    WorkFolder folder_;
    fs::path path_;
    bool complete_ = true;
};

// Where copies go: a printer, a folder that takes them under their own names, one file, or nowhere.
struct CopyTarget {
    std::string name;  // as it was written
    std::optional<PrintTarget> printer;
    fs::path path;

    explicit CopyTarget(const std::string& written)
        : name(written.empty() ? "." : written),
          printer(printTargetOf(name)),
          path(printer ? fs::path() : pathOf(name)) {}
    bool takesSeveral() const { return printer || isFolder(path); }
    int take(const fs::path& file) const {
        if (strcasecmp(name.c_str(), "NUL") == 0) return 0;
        if (printer) return printFile(file, *printer);
        if (name.starts_with("\\\\")) return ENOENT;  // on a server, and no printer
        return copyFile(isFolder(path) ? path / file.filename() : path, file);
    }
};

int copyAll(const CommandLine& line, const std::vector<fs::path>& files, const CopyTarget& target) {
    for (const fs::path& file : files)
        if (const int error = target.take(file))
            return failAt(line, error == EEXIST ? file.string() + " onto itself" : target.name, error);
    tellCount(files.size(), "copied");
    return done;
}

int copy(const CommandLine& line) {
    const std::optional<CopyJob> job = copyJobOf(line);
    if (!job) return wrong(line, "write COPY SOURCE [DESTINATION], or COPY A+B [DESTINATION]");
    std::vector<fs::path> files;
    for (const std::string& source : job->sources) {
        const std::vector<fs::path> found = filesNamed(source);
        if (found.empty()) return failAt(line, source, isFolder(pathOf(source)) ? EISDIR : ENOENT);
        files.insert(files.end(), found.begin(), found.end());
    }
    const CopyTarget target(job->destination);
    if (!job->joined && (files.size() == 1 || target.takesSeveral())) return copyAll(line, files, target);
    const JoinedFile joined(files);
    if (!joined.isComplete()) return fail(line, "the files can't be read and joined in the folder for temporary files");
    return copyAll(line, {joined.path()}, target);
}

// To LPT1 unless told.
int print(const CommandLine& line) {
    const CopyTarget target(line.has('D') ? line.switches.at('D') : "LPT1");
    int copies = 1;
    if (line.has('N')) {
        const std::string& number = line.switches.at('N');
        const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), copies);
        if (error != std::errc() || *end != '\0' || copies < 0) return wrong(line, "/N: takes the number of copies");
    }
    for (const std::string& name : line.names) {
        const std::vector<fs::path> files = filesNamed(name);
        if (files.empty()) return failAt(line, name, ENOENT);
        for (const fs::path& file : files)
            for (int i = 0; i < copies; ++i)
                if (const int error = target.take(file)) return failAt(line, target.name, error);
    }
    return done;
}

// ---- files that go or change their names ----

int removeFiles(const CommandLine& line) {
    int status = done;
    for (const std::string& name : line.names) {
        if (isFolder(pathOf(name))) {
            status = fail(line, name + ": that is a folder; write " + name + "\\* for the files in it");
            continue;
        }
        const std::vector<fs::path> files = filesNamed(name);
        if (files.empty()) status = failAt(line, name, ENOENT);
        for (const fs::path& file : files)
            if (unlink(file.c_str()) != 0) status = failAt(line, file, errno);
    }
    return status;
}

int moveOne(const fs::path& from, const fs::path& to) {
    if (::rename(from.c_str(), to.c_str()) == 0) return 0;
    if (errno != EXDEV || isFolder(from)) return errno;
    const int error = copyFile(to, from);
    return error != 0 ? error : unlink(from.c_str()) == 0 ? 0 : errno;
}

int move(const CommandLine& line) {
    const std::vector<fs::path> entries =
        hasWildcard(line.names[0]) ? filesNamed(line.names[0]) : entriesNamed(line.names[0]);
    if (entries.empty()) return failAt(line, line.names[0], ENOENT);
    const fs::path target = line.names.size() > 1 ? pathOf(line.names[1]) : fs::path(".");
    const bool intoFolder = isFolder(target);
    if (entries.size() > 1 && !intoFolder) return fail(line, line.names[1] + ": several files need a folder to go to");
    for (const fs::path& entry : entries)
        if (const int error = moveOne(entry, intoFolder ? target / entry.filename() : target))
            return failAt(line, entry, error);
    tellCount(entries.size(), "moved");
    return done;
}

// One part of a new name: "*" takes the rest of the old part, "?" the character at its place.
std::string fromMask(std::string_view mask, std::string_view old) {
    std::string name;
    for (size_t i = 0; i < mask.size(); ++i) {
        if (mask[i] == '*') return name.append(old.substr(std::min(i, old.size())));
        if (mask[i] != '?')
            name += mask[i];
        else if (i < old.size())
            name += old[i];
    }
    return name;
}

std::string newNameOf(const std::string& mask, const std::string& old) {
    if (!hasWildcard(mask)) return mask;
    const NameParts to = partsOf(mask), from = partsOf(old);
    const std::string name = fromMask(to.name, from.name), extension = fromMask(to.extension, from.extension);
    return extension.empty() ? name : name + "." + extension;
}

int rename(const CommandLine& line) {
    const std::string& mask = line.names[1];
    if (mask.find_first_of("/\\:") != std::string::npos)
        return wrong(line, mask + ": the new name is one without a folder; MOVE takes files elsewhere");
    const std::vector<fs::path> entries = entriesNamed(line.names[0]);
    if (entries.empty()) return failAt(line, line.names[0], ENOENT);
    for (const fs::path& entry : entries) {
        const fs::path to = entry.parent_path() / newNameOf(utf8FromHost(mask), entry.filename());
        if (isThere(to)) return failAt(line, to, EEXIST);
        if (::rename(entry.c_str(), to.c_str()) != 0) return failAt(line, entry, errno);
    }
    return done;
}

// ---- copies of trees ----

struct TreeCopy {
    const CommandLine& line;
    size_t copied = 0;

    bool isWanted(const fs::path& from, const fs::path& to) const {
        std::error_code error;
        return !line.has('D') || !isThere(to) || fs::last_write_time(from, error) > fs::last_write_time(to, error);
    }

    int file(const fs::path& from, const fs::path& to) {
        if (!isWanted(from, to)) return done;
        std::error_code error;
        if (to.has_parent_path()) fs::create_directories(to.parent_path(), error);
        if (const int failure = error ? error.value() : copyFile(to, from)) return failAt(line, to, failure);
        ++copied;
        return done;
    }

    int folder(const fs::path& from, const fs::path& to) {
        std::error_code error;
        if (line.has('E')) fs::create_directories(to, error);
        for (const fs::path& entry : entriesOf(from, "*")) {
            const bool below = isFolder(entry);
            if (below && !line.has('S') && !line.has('E')) continue;
            const fs::path place = to / entry.filename();
            if (const int status = below ? folder(entry, place) : file(entry, place)) return status;
        }
        return done;
    }
};

bool liesIn(const fs::path& folder, const fs::path& path) {
    const fs::path inside = fs::weakly_canonical(path), outside = fs::weakly_canonical(folder);
    return std::mismatch(outside.begin(), outside.end(), inside.begin(), inside.end()).first == outside.end();
}

int copyTree(const CommandLine& line) {
    const std::string& name = line.names[0];
    const fs::path target = line.names.size() > 1 ? pathOf(line.names[1]) : fs::path(".");
    TreeCopy tree{line};
    int status = done;
    if (const fs::path source = pathOf(name); isFolder(source)) {
        if (liesIn(source, target)) return fail(line, name + ": the folder can't be copied into itself");
        status = tree.folder(source, target);
    } else {
        const std::vector<fs::path> files = filesNamed(name);
        if (files.empty()) return failAt(line, name, ENOENT);
        const bool toFolder = isFolder(target) || hasWildcard(name) || line.has('I') ||
                              (line.names.size() > 1 && line.names[1].find_last_of("/\\") == line.names[1].size() - 1);
        for (const fs::path& file : files)
            if (status == done) status = tree.file(file, toFolder ? target / file.filename() : target);
    }
    if (status == done) tellCount(tree.copied, "copied");
    return status;
}

// ---- the search path ----

int path(const CommandLine& line) {
    if (line.names.empty()) {
        const char* value = std::getenv("PATH");
        std::printf("PATH=%s\n", !value ? "" : value);
        return done;
    }
    std::string folders;
    for (std::string_view left = line.names[0]; !left.empty();) {
        const std::string_view folder = left.substr(0, left.find(';'));
        left.remove_prefix(std::min(left.size(), folder.size() + 1));
        if (!folder.empty()) folders += (folders.empty() ? "" : ":") + systemPath(folder);
    }
    return setenv("PATH", folders.c_str(), 1) == 0 ? int{done} : failAt(line, line.names[0], errno);
}

constexpr size_t many = 1000;

// clang-format off
constexpr Command commands[] = {
    // name    switches          names     usage                                              runs
    {"CD",     "D",              0, 1,     "[FOLDER]",                                        changeFolder},
    {"CHDIR",  "D",              0, 1,     "[FOLDER]",                                        changeFolder},
    {"CHDSK",  "",               1, 1,     "DRIVE:",                                          changeDrive},
    {"COPY",   "ABDLNVYZ",       1, many,  "SOURCE [DESTINATION]",                            copy},
    {"DEL",    "FQ",             1, many,  "FILE...",                                         removeFiles},
    {"DIR",    "B",              0, 1,     "[FOLDER or FILES] [/B]",                          listFolder},
    {"MKDIR",  "",               1, many,  "FOLDER...",                                       makeFolder},
    {"MD",     "",               1, many,  "FOLDER...",                                       makeFolder},
    {"MOVE",   "Y",              1, 2,     "SOURCE [DESTINATION]",                            move},
    {"PATH",   "",               0, 1,     "[FOLDER;FOLDER...]",                              path},
    {"PRINT",  "DN",             1, many,  "[/D:PRINTER] [/N:COPIES] FILE...",                print},
    {"RENAME", "",               2, 2,     "FILE NEWNAME",                                    rename},
    {"REN",    "",               2, 2,     "FILE NEWNAME",                                    rename},
    {"XCOPY",  "CDEFHIKQRSVY",   1, 2,     "SOURCE [DESTINATION] [/S] [/E] [/I] [/D]",        copyTree},
};
// clang-format on

}  // namespace

int fail(const CommandLine& line, const std::string& what) {
    std::fflush(stdout);
    std::fprintf(stderr, "mcshell: %s: %s\n", line.command.c_str(), what.c_str());
    return failed;
}

int wrong(const CommandLine& line, const std::string& what) {
    fail(line, what);
    return wrongUse;
}

const Command* findCommand(std::string_view name) {
    const Command* command = std::ranges::find(commands, name, &Command::name);
    return command == std::end(commands) ? nullptr : command;
}

int changeDrive(const CommandLine& line) {
    const std::string& drive = line.names[0];
    if (drive.size() != 2 || drive[1] != ':') return wrong(line, "write CHDSK and a drive, such as C:");
    return chdir(systemPath(drive + "/").c_str()) == 0 ? int{done} : failAt(line, drive, errno);
}

}  // namespace host::shell
