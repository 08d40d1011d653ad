// The host's dialog for the choice of a printer.
#include "host/dialog/registry.h"
#include "host/plot/plotter.h"
#include "host/resource/open_files.h"
#include "host/session/session.h"
#include "host/system/charset.h"
#include "host/system/printers.h"

namespace host {
namespace {

enum { ID_OK = -3, ID_CANCEL = -4, ID_PRINTER = 1 };
constexpr int32_t replyOk = 3;

Texts texts(const char* english, const char* norwegian) {
    Texts both;
    both.set("en", english);
    both.set("no", norwegian);
    return both;
}

Texts text(const std::string& name) {
    Texts same;
    same.set("en", narrowFromUtf8(name).text);
    return same;
}

DialogLayout layoutFor(const std::vector<Printer>& all) {
    DialogLayout layout{.width = 320, .height = 90, .title = texts("Printer", "Skriver")};
    ItemLayout choice{.kind = ITEM_OPTION_BUTTON, .id = ID_PRINTER, .x = 80, .y = 12, .width = 230, .height = 24};
    choice.label = texts("Printer", "Skriver");
    for (size_t i = 0; i < all.size(); ++i)
        choice.rows.push_back({.value = static_cast<int32_t>(i), .label = text(all[i].name)});
    ItemLayout ok{.kind = ITEM_PUSH_BUTTON, .id = ID_OK, .x = 150, .y = 54, .width = 75, .height = 26};
    ok.label = texts("OK", "OK");
    ItemLayout cancel{.kind = ITEM_PUSH_BUTTON, .id = ID_CANCEL, .x = 235, .y = 54, .width = 75, .height = 26};
    cancel.label = texts("Cancel", "Avbryt");
    layout.items = {choice, ok, cancel};
    return layout;
}

size_t placeOf(const std::vector<Printer>& all, const std::string& name) {
    for (size_t i = 0; i < all.size(); ++i)
        if (all[i].name == name) return i;
    return 0;
}

}  // namespace

std::optional<PrinterChoice> choosePrinter(const std::string& current) {
    Session* session = Session::current();
    const std::vector<Printer> all = printers();
    if (session == nullptr || all.empty()) return std::nullopt;
    const auto dialog = std::make_shared<Dialog>(layoutFor(all), nullptr, true, currentLanguage());
    registerDialog(dialog);
    if (!dialog->open()) return std::nullopt;
    dialog->setValue(0, std::to_string(placeOf(all, current)));
    const bool answered = session->frontEnd().runModal(*dialog) && dialog->ended();
    dialog->close();
    if (!answered) return std::nullopt;
    const size_t row = std::stoul(dialog->items()[0].value);
    return PrinterChoice{dialog->reply() == replyOk, all[std::min(row, all.size() - 1)].name};
}

}  // namespace host
