// The host's dialog for the choice of a printer.
#include <strings.h>

#include <algorithm>

#include "mchost/base/charset.h"
#include "mchost/dialog/layout.h"
#include "mchost/dialog/registry.h"
#include "mchost/plot/plotter.h"
#include "mchost/printing/printers.h"
#include "mchost/resource/open_files.h"
#include "mchost/session/session.h"

namespace host {
namespace {

enum { ID_OK = -3, ID_CANCEL = -4, ID_PRINTER = 1 };
constexpr int32_t replyOk = 3;

Texts text(const std::string& name) {
    Texts same;
    same.set("en", narrowFromUtf8(name).text);
    return same;
}

// What tells a printer from every other one: the path of one on a server, else its name.
std::string pathOf(const Printer& printer) {
    if (printer.server.empty()) return printer.name;
    return "\\\\" + printer.server + "\\" + (printer.share.empty() ? printer.name : printer.share);
}

bool isCalled(const Printer& printer, const std::string& name) {
    return printer.name == name || strcasecmp(pathOf(printer).c_str(), name.c_str()) == 0;
}

// Its place among the printers, or behind them.
size_t placeOf(const std::vector<Printer>& all, const std::string& name) {
    return static_cast<size_t>(
        std::ranges::find_if(all, [&](const Printer& printer) { return isCalled(printer, name); }) - all.begin());
}

// What can be chosen: the printers, and the one that is set where it is none of them.
std::vector<std::string> choices(const std::vector<Printer>& all, const std::string& current) {
    std::vector<std::string> paths;
    for (const Printer& printer : all) paths.push_back(pathOf(printer));
    if (placeOf(all, current) == all.size() && !current.empty()) paths.push_back(current);
    return paths;
}

DialogLayout layoutFor(const std::vector<std::string>& paths) {
    DialogLayout layout{.width = 320, .height = 90, .title = texts("Printer", "Skriver")};
    ItemLayout choice = itemAt(ITEM_OPTION_BUTTON, ID_PRINTER, {80, 12, 230, 24}, texts("Printer", "Skriver"));
    for (size_t i = 0; i < paths.size(); ++i)
        choice.rows.push_back({.value = static_cast<int32_t>(i), .label = text(paths[i])});
    layout.items = {choice, itemAt(ITEM_PUSH_BUTTON, ID_OK, {150, 54, 75, 26}, texts("OK", "OK")),
                    itemAt(ITEM_PUSH_BUTTON, ID_CANCEL, {235, 54, 75, 26}, texts("Cancel", "Avbryt"))};
    return layout;
}

}  // namespace

std::optional<PrinterChoice> choosePrinter(const std::string& current) {
    const std::vector<Printer> all = printers();
    if (!Session::current() || all.empty()) return std::nullopt;
    const std::vector<std::string> paths = choices(all, current);
    const auto dialog = std::make_shared<Dialog>(layoutFor(paths), nullptr, true, currentLanguage());
    registerDialog(dialog);
    if (!dialog->open()) return std::nullopt;
    dialog->setValue(0, std::to_string(placeOf(all, current)));
    const bool answered = runModal(*dialog);
    dialog->close();
    if (!answered) return std::nullopt;
    const size_t row = std::stoul(dialog->items()[0].value);
    return PrinterChoice{dialog->reply() == replyOk, paths[std::min(row, paths.size() - 1)]};
}

}  // namespace host
