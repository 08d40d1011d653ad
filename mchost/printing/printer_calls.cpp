// Printers behind the calls of win32.h.
#include <vector>

#include "mchost/base/guard.h"
#include "mchost/base/packed_texts.h"
#include "mchost/base/paths.h"
#include "mchost/mdl/win32.h"
#include "mchost/printing/printers.h"

using namespace host;

int EnumPrintersA(uint32_t flags, const char* name, uint32_t level, void* buffer, uint32_t size, uint32_t* neededP,
                  uint32_t* countP) noexcept {
    if (neededP) *neededP = 0;
    if (countP) *countP = 0;
    return guarded<int>(0, [&] {
        const bool all = flags == WIN32_PRINTERS_LOCAL_AND_CONNECTED && (!name || name[0] == '\0');
        if (!all || level != 2) return 0;
        const std::vector<Printer> found = printers();
        PackedTexts<Win32PrinterInfo> packed(found.size());
        for (size_t i = 0; i < found.size(); ++i) {
            const Printer& printer = found[i];
            if (!printer.server.empty())
                packed.add(i, &Win32PrinterInfo::serverName, hostName("\\\\" + printer.server));
            if (!printer.share.empty()) packed.add(i, &Win32PrinterInfo::shareName, hostName(printer.share));
            packed.add(i, &Win32PrinterInfo::printerName, hostName(printer.name));
            packed.add(i, &Win32PrinterInfo::portName, hostName(printer.port));
        }
        if (!packed.give(buffer, size, neededP)) return 0;
        if (countP) *countP = static_cast<uint32_t>(found.size());
        return 1;
    });
}
