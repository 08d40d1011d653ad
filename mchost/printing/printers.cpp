#include "mchost/printing/printers.h"

#include <strings.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <filesystem>

#include "mchost/base/existing_path.h"
#include "mchost/base/paths.h"
#include "mchost/base/variables.h"
#include "mchost/base/words.h"
#include "mchost/files/copy.h"
#include "mchost/processes/programs.h"
#include "mchost/session/state.h"

namespace host {

namespace {

namespace fs = std::filesystem;

bool isSeparator(char c) {
    return c == '/' || c == '\\';
}

// 1 to 9 for "LPT1" to "LPT9" with or without a colon, else 0.
int portNumber(std::string_view name) {
    if (name.ends_with(':')) name.remove_suffix(1);
    if (name.size() != 4 || strncasecmp(name.data(), "LPT", 3) != 0) return 0;
    return name[3] >= '1' && name[3] <= '9' ? name[3] - '0' : 0;
}

// A name that can stand for a folder of its own.
bool isFolderName(std::string_view name) {
    return !name.empty() && !name.starts_with('.') && std::ranges::none_of(name, isSeparator);
}

std::string portName(int port) {
    return "LPT" + std::to_string(port);
}

// ---- the spool folder: "LPT1" and "server/printer" in it are printers ----

std::optional<fs::path> spoolFolder() {
    const std::string named = variables().expandedValue("MC_SPOOL").value_or("");
    return named.empty() ? std::nullopt : std::optional<fs::path>(systemPath(named));
}

std::optional<fs::path> spoolFolderOf(const PrintTarget& target) {
    const std::optional<fs::path> spool = spoolFolder();
    if (!spool) return std::nullopt;
    const fs::path name = target.port != 0 ? fs::path(portName(target.port)) : fs::path(target.server) / target.printer;
    const std::optional<std::string> folder = existingPath(*spool / name);
    std::error_code error;
    return folder && fs::is_directory(*folder, error) ? std::optional<fs::path>(*folder) : std::nullopt;
}

// "sheet.ps", then "sheet-2.ps" and so on.
fs::path jobName(const fs::path& folder, const fs::path& source, int number) {
    if (number == 1) return folder / source.filename();
    return folder / (source.stem().string() + "-" + std::to_string(number) + source.extension().string());
}

// A job shows under its name when all of it is there, and never replaces another one.
int spool(const fs::path& source, const fs::path& folder) {
    TemporaryFile job(folder);
    if (const int error = job.fillFrom(source)) return error;
    for (int number = 1;; ++number) {
        if (link(job.path().c_str(), jobName(folder, source, number).c_str()) == 0) return 0;
        if (errno != EEXIST) return errno;
    }
}

std::vector<std::string> foldersIn(const fs::path& folder) {
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        std::error_code ignored;
        std::string name = entry->path().filename();
        if (isFolderName(name) && entry->is_directory(ignored)) names.push_back(std::move(name));
    }
    std::ranges::sort(names);
    return names;
}

std::vector<Printer> spoolPrinters() {
    std::vector<Printer> found;
    const std::optional<fs::path> spool = spoolFolder();
    for (const std::string& name : spool ? foldersIn(*spool) : std::vector<std::string>()) {
        if (portNumber(name) != 0) {
            found.push_back({.server = "", .name = name, .share = "", .port = name});
            continue;
        }
        for (const std::string& printer : foldersIn(*spool / name))
            found.push_back({.server = name, .name = printer, .share = printer, .port = (*spool / name / printer)});
    }
    return found;
}

// ---- queues of the print system ----

// The server in a device such as "ipp://user@server:631/printers/sheet"; empty for one that hangs on this machine.
std::string serverOf(std::string_view device) {
    const size_t scheme = device.find("://");
    if (scheme == std::string_view::npos) return "";
    const std::string_view kind = device.substr(0, scheme);
    constexpr auto local = std::to_array<std::string_view>({"usb", "file", "serial", "parallel", "cups-pdf", "hp"});
    if (std::ranges::find(local, kind) != local.end()) return "";
    std::string_view server = device.substr(scheme + 3);
    server = server.substr(0, server.find_first_of("/?"));
    server.remove_prefix(server.rfind('@') + 1);
    if (server.starts_with('[')) return std::string(server.substr(1, server.find(']') - 1));
    return std::string(server.substr(0, server.find(':')));
}

// "Big%20One" is "Big One".
std::string withoutEscapes(std::string_view text) {
    std::string plain;
    for (size_t i = 0; i < text.size(); ++i) {
        unsigned char code = 0;
        const char* const digits = text.data() + i + 1;
        const bool escape =
            text[i] == '%' && i + 2 < text.size() && std::from_chars(digits, digits + 2, code, 16).ptr == digits + 2;
        plain += escape ? static_cast<char>(code) : text[i];
        i += escape ? 2 : 0;
    }
    return plain;
}

// The share in a device such as "smb://server/sheet"; the queue's own name for every other one.
std::string shareOf(std::string_view device, const std::string& queue) {
    if (!device.starts_with("smb://")) return queue;
    return withoutEscapes(device.substr(device.rfind('/') + 1));
}

std::vector<Printer> queues() {
    const std::optional<Answer> answer = askProgram("lpstat", {"-v"});
    return answer && answer->status == 0 ? queuesIn(answer->output) : std::vector<Printer>();
}

// The queue that a job for the target goes to.
std::optional<std::string> queueOf(const PrintTarget& target) {
    const std::string named =
        target.port == 0 ? "" : variables().expandedValue("MC_" + portName(target.port)).value_or("");
    const std::string wanted = target.port == 0 ? target.printer : named.empty() ? portName(target.port) : named;
    for (const Printer& queue : queues()) {
        const bool called = sameName(queue.name, wanted) || (target.port == 0 && sameName(queue.share, wanted));
        if (called && (target.port != 0 || sameName(queue.server, target.server))) return queue.name;
    }
    return std::nullopt;
}

int sendToQueue(const std::string& path, const std::string& queue) {
    const std::string file = fs::absolute(path);
    Process* lp = startProcess("lp", {"-s", "-d", queue, "--", file}, {.output = Output::discarded}, true);
    if (!lp) return ENXIO;
    const int status = *waitFor(*lp);
    release(*lp);
    return status == 0 ? 0 : EIO;
}

}  // namespace

std::optional<PrintTarget> printTargetOf(std::string_view destination) {
    if (const int port = portNumber(destination)) return PrintTarget{.port = port, .server = "", .printer = ""};
    if (!destination.starts_with("\\\\")) return std::nullopt;
    destination.remove_prefix(2);
    const size_t split = destination.find_first_of("/\\");
    if (split == std::string_view::npos) return std::nullopt;
    const std::string_view server = destination.substr(0, split), printer = destination.substr(split + 1);
    if (!isFolderName(server) || !isFolderName(printer)) return std::nullopt;
    return PrintTarget{.port = 0, .server = utf8FromHost(server), .printer = utf8FromHost(printer)};
}

int printFile(const std::string& path, const PrintTarget& target) {
    if (access(path.c_str(), R_OK) != 0) return errno;
    if (const std::optional<fs::path> folder = spoolFolderOf(target)) return spool(path, *folder);
    const std::optional<std::string> queue = queueOf(target);
    return queue ? sendToQueue(path, *queue) : ENXIO;
}

std::vector<Printer> printers() {
    std::vector<Printer> all = spoolPrinters();
    std::ranges::copy(queues(), std::back_inserter(all));
    return all;
}

std::vector<Printer> queuesIn(std::string_view deviceLines) {
    constexpr std::string_view start = "device for ";
    std::vector<Printer> found;
    for (std::string_view left = deviceLines; !left.empty();) {
        std::string_view line = left.substr(0, left.find('\n'));
        left.remove_prefix(std::min(left.size(), line.size() + 1));
        const size_t colon = line.find(": ");
        if (!line.starts_with(start) || colon == std::string_view::npos) continue;
        const std::string name(line.substr(start.size(), colon - start.size()));
        const std::string_view device = line.substr(colon + 2);
        found.push_back({serverOf(device), name, shareOf(device, name), std::string(device)});
    }
    std::ranges::sort(found, {}, &Printer::name);
    return found;
}

}  // namespace host
