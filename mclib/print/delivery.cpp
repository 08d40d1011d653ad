#include "mclib/print/delivery.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "mchost/mdl/files.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/plot.h"
#include "mchost/mdl/system.h"
#include "mchost/mdl/win32.h"
#include "mclib/frame/external.h"

namespace mc {

namespace {

// ---- copies ----

constexpr std::string_view ports[] = {"LPT1", "LPT2", "LPT3", "LPT4", "LPT5", "LPT6", "LPT7", "LPT8", "LPT9"};

bool isCopied(std::string_view printer) {
    return std::ranges::find(ports, printer) != std::end(ports) || printer.starts_with('$') ||
           printer.starts_with('\\');
}

// ---- commands ----

constexpr std::string_view blanks = " \t", fileMark = "%s", copiesMark = "%d";

// The commands between semicolons without the blanks in front of them; empty ones are left out.
std::vector<std::string_view> commandsIn(std::string_view text) {
    std::vector<std::string_view> commands;
    while (!text.empty()) {
        std::string_view command = text.substr(0, text.find(';'));
        text.remove_prefix(std::min(text.size(), command.size() + 1));
        command.remove_prefix(std::min(command.find_first_not_of(blanks), command.size()));
        if (!command.empty()) commands.push_back(command);
    }
    return commands;
}

// The words of a command, as the host divides a line: at blanks, and what stands between quotes is kept together.
std::vector<std::string> wordsIn(std::string_view command) {
    std::vector<std::string> words;
    bool inWord = false, inQuotes = false;
    for (const char c : command) {
        const bool divides = !inQuotes && blanks.find(c) != blanks.npos;
        if (!divides && !inWord) words.emplace_back();
        inWord = !divides;
        if (c == '"')
            inQuotes = !inQuotes;
        else if (!divides)
            words.back() += c;
    }
    return words;
}

// A text with the file's name for "%s" and the number of copies for "%d".
std::string filled(std::string_view text, std::string_view fileName, int copies) {
    std::string result;
    while (!text.empty()) {
        const std::string_view mark = text.substr(0, 2);
        if (mark == fileMark)
            result += fileName;
        else if (mark == copiesMark)
            result += std::to_string(copies);
        else
            result += mark[0];
        text.remove_prefix(mark == fileMark || mark == copiesMark ? 2 : 1);
    }
    return result;
}

// A word as it stands in a line of words.
std::string quoted(const std::string& word) {
    if (!word.empty() && word.find_first_of(" \t\"") == word.npos) return word;
    std::string result = "\"";
    for (const char c : word) result.append(c == '"' ? 2 : 1, c);
    return result + '"';
}

// A name that a command would take for an option or a redirection is one in the current folder.
std::string asArgument(std::string_view fileName) {
    const bool isName = !fileName.starts_with('-') && fileName.substr(0, 2).find('>') == fileName.npos;
    return std::string(isName ? "" : "./").append(fileName);
}

// The words are divided first and filled in then, so whatever a name holds stays in its word.
std::string commandLine(std::string_view command, std::string_view fileName, int copies) {
    std::string line;
    for (const std::string& word : wordsIn(command))
        line.append(line.empty() ? "" : " ").append(quoted(filled(word, asArgument(fileName), copies)));
    return line;
}

// 0, or what a command failed with, which the user is told.
int runCommand(const std::string& command) {
    int exitStatus = 0;
    const int notStarted = mclibExternal_executeCommandLine(command.c_str(), &exitStatus);
    const int status = notStarted != MCLIB_SUCCESS ? notStarted : exitStatus;
    if (status != MCLIB_SUCCESS)
        toolSubsystem_printf("Error executing\n%s\nReturn status = %d\n", command.c_str(), status);
    return status;
}

int refuse(std::string_view printer) {
    toolSubsystem_printf(
        "The printer \"%s\" is no port and no network printer, and as a command it has no place for the file, so "
        "nothing "
        "is sent. Write %%s in it where the file's name belongs, as in \"lp -d office %%s\".\n",
        printer.data());
    return MCLIB_ERROR;
}

int runCommands(const char* fileName, const char* printer, int copies) {
    const std::string_view commands = printer;
    if (commands.find(fileMark) == commands.npos) return refuse(commands);
    int firstFailure = MCLIB_SUCCESS;
    for (int round = commands.find(copiesMark) != commands.npos ? 1 : copies; round > 0; --round)
        for (const std::string_view command : commandsIn(commands))
            if (const int status = runCommand(commandLine(command, fileName, copies)); firstFailure == MCLIB_SUCCESS)
                firstFailure = status;
    return firstFailure;
}

// ---- the list of printers ----

constexpr uint32_t printerInfoLevel = 2;
constexpr const char* workspaceRoot = "_USTN_WORKSPACEROOT";
constexpr const char* printerDriverFile = "\\System\\plotdrv\\printer.plt";
constexpr int32_t stringsPerPrinter = 2, infoFieldsPerString = 2, defaultMark = 1;

// The printers of the system, in the block that their texts lie in too.
struct Printers {
    mdl::HostPtr<Win32PrinterInfo> block;
    uint32_t count = 0;
};

Printers systemPrinters() {
    uint32_t size = 0;
    Printers printers;
    EnumPrintersA(WIN32_PRINTERS_LOCAL_AND_CONNECTED, "", printerInfoLevel, nullptr, 0, &size, &printers.count);
    if (size == 0) return {};
    printers.block.reset(static_cast<Win32PrinterInfo*>(dlmSystem_mdlMalloc(size)));
    if (!printers.block) return {};
    const int read = EnumPrintersA(WIN32_PRINTERS_LOCAL_AND_CONNECTED, "", printerInfoLevel, printers.block.get(), size,
                                   &size, &printers.count);
    return read ? std::move(printers) : Printers{};
}

// The system printer that the host's printer plot driver file names, or its path; empty when there is none.
std::string defaultPrinter() {
    const mdl::HostPtr<char> root{mdlSystem_getExpandedCfgVar(workspaceRoot)};
    if (!root) return {};
    const std::string driverFile = std::string(root.get()) + printerDriverFile;
    if (mdlFile_find(nullptr, driverFile.c_str(), nullptr, nullptr) != MDL_SUCCESS) return {};
    char name[MDL_PLOT_TEXT_BYTES] = "";
    if (MdlPlotDesc* plot = mdlPlotDesc_createFromTCBAndPltFile(driverFile.c_str())) {
        mdlPlotDesc_getSysPrinter(name, plot);
        mdlPlotDesc_destroy(plot);
    }
    return name;
}

// A printer on a server has its share there, or else a port.
std::string pathOf(const Win32PrinterInfo& printer) {
    if (!printer.shareName || !printer.shareName[0]) return printer.portName ? printer.portName : "";
    return std::string(printer.serverName) + "\\" + printer.shareName;
}

bool addPrinter(StringList* list, const Win32PrinterInfo& printer, const std::string& defaultName) {
    int32_t index = 0;
    if (mdlStringList_insertMember(&index, list, -1, stringsPerPrinter) != MDL_SUCCESS) return false;
    const std::string name = printer.printerName ? printer.printerName : "", path = pathOf(printer);
    mdlStringList_setMember(list, index, name.c_str(), nullptr);
    mdlStringList_setMember(list, index + 1, path.c_str(), nullptr);
    if (!defaultName.empty() && (name == defaultName || path == defaultName))
        mdlStringList_setInfoField(list, index + 1, defaultMark, 1);
    return true;
}

}  // namespace

}  // namespace mc

using namespace mc;

int mclibPrint_sendFileToPrinter(const char* fileName, const char* printer, int copies) {
    if (!fileName || !printer) return MCLIB_ERROR;
    return isCopied(printer) ? mclibPrint_sendFileToPrinterPort(fileName, printer, copies)
                             : runCommands(fileName, printer, copies);
}

int mclibPrint_sendFileToPrinterPort(const char* fileName, const char* port, int copies) {
    const mdl::HostPtr<char> destination{mdlSystem_expandCfgVar(port)};
    if (!destination) return MCLIB_ERROR;
    int status = MCLIB_SUCCESS;
    for (int copy = 0; copy < copies && status == MCLIB_SUCCESS; ++copy)
        status = mdlFile_copy(destination.get(), fileName);
    return status;
}

StringList* mclibWin32_findWindowsPrinterNames(void) {
    const Printers printers = systemPrinters();
    if (printers.count == 0) return nullptr;
    const std::string defaultName = defaultPrinter();
    StringList* list = mdlStringList_create(0, infoFieldsPerString);
    for (uint32_t i = 0; list && i < printers.count; ++i) {
        const Win32PrinterInfo& printer = printers.block.get()[i];
        const bool onServer = printer.serverName && printer.serverName[0];
        if (onServer && !addPrinter(list, printer, defaultName)) break;
    }
    return list;
}
