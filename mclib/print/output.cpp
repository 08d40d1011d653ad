#include "mclib/print/output.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "mchost/mdl/files.h"
#include "mchost/mdl/system.h"
#include "mclib/frame/export.h"

namespace mc {

bool PrintOutput::open(const char* driverName, const char* name) {
    driver = driverName;
    if (!name) name = "";
    fileName[std::string_view(name).copy(fileName, sizeof fileName - 1)] = '\0';
    end = block;
    stream = dlmSystem_mdlFopen(name, "w");
    failed = !stream;
    if (failed) toolSubsystem_printf("%s: cannot open %s.\n", driver, name);
    return !failed;
}

void PrintOutput::close(const char* device, const char* remedy) {
    flush();
    if (dlmSystem_mdlFclose(stream) != 0) failed = true;
    if (failed)
        toolSubsystem_printf("%s: cannot write all of %s; make room on its disk and print again.\n", driver, fileName);
    else if (someNotShown)
        tellNotShown(device, remedy);
}

// One line; a code without a visible character is told as a number.
void PrintOutput::tellNotShown(const char* device, const char* remedy) const {
    constexpr std::string_view withoutInk = "\x81\x8D\x8F\x90\x9D\xA0\xAD";
    std::string letters;
    for (size_t code = 0; code < notShown.size(); ++code) {
        if (!notShown[code]) continue;
        const auto c = static_cast<char>(code);
        char number[16] = {c};
        if (withoutInk.find(c) != withoutInk.npos) snprintf(number, sizeof number, "(%zu)", code);
        letters += std::string(letters.empty() ? "" : " ") + number;
    }
    toolSubsystem_printf("%s: %s doesn't show these letters of %s: %s%s\n", driver, device, fileName, letters.c_str(),
                         remedy);
}

int32_t PrintOutput::status() const {
    return failed ? MCLIB_ERROR : MCLIB_SUCCESS;
}

void PrintOutput::repeat(char c, size_t count) {
    while (count > 0 && !failed) {
        const size_t part = std::min(count, lineRoom);
        char* p = line();
        std::memset(p, c, part);
        taken(p + part);
        count -= part;
    }
}

void PrintOutput::flush() {
    writeBytes({block, static_cast<size_t>(end - block)});
    end = block;
}

// Bytes to the stream; a NUL, which may stand in an included file, goes by itself.
void PrintOutput::writeBytes(std::string_view bytes) {
    while (!bytes.empty() && !failed) {
        const std::string_view text = bytes.substr(0, bytes.find('\0'));
        const int written = text.empty()
                                ? toolSubsystem_fprintf(stream, "%c", '\0')
                                : toolSubsystem_fprintf(stream, "%.*s", static_cast<int>(text.size()), text.data());
        if (written <= 0) failed = true;
        bytes.remove_prefix(std::max<size_t>(text.size(), 1));
    }
}

}  // namespace mc
