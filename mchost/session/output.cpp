// Console, message fields and message centre: narrow text from the applications, UTF-8 to the front end.
#include <cstdarg>
#include <cstdio>
#include <string>

#include "mchost/base/charset.h"
#include "mchost/base/guard.h"
#include "mchost/mdl/system.h"
#include "mchost/session/loop.h"
#include "mchost/session/output.h"
#include "mchost/session/owned_state.h"
#include "mchost/session/state.h"

namespace host {

namespace {

struct LastError {
    std::string text;
};

// Nothing for a format that can't be followed.
std::optional<std::string> formatted(const char* format, va_list arguments) {
    char brief[512];
    va_list again;
    va_copy(again, arguments);
    const int length = mdlOutput_formatText(brief, sizeof brief, format, arguments);
    std::optional<std::string> text;
    if (length >= 0 && static_cast<size_t>(length) < sizeof brief) {
        text.emplace(brief, static_cast<size_t>(length));
    } else if (length >= 0) {
        text.emplace(static_cast<size_t>(length) + 1, '\0');
        mdlOutput_formatText(text->data(), text->size(), format, again);
        text->pop_back();
    }
    va_end(again);
    return text;
}

void toConsole(std::string_view narrow) {
    const std::string utf8 = utf8FromNarrow(narrow);
    if (activeState) {
        activeState->frontEnd->console(utf8);
    } else {
        std::fwrite(utf8.data(), 1, utf8.size(), stderr);
    }
}

std::string utf8Of(const char* narrow) {
    return !narrow ? std::string() : utf8FromNarrow(narrow);
}

void toMessageCenter(int priority, const std::string& brief, const std::string& details, bool alert = false) {
    if (priority == MDL_PRIORITY_ERROR) lastError() = brief + (details.empty() ? "" : ": ") + details;
    if (activeState) {
        activeState->frontEnd->message({priority, brief, details, alert});
    } else {
        std::fprintf(stderr, "%s%s%s\n", brief.c_str(), details.empty() ? "" : ": ", details.c_str());
    }
}

void noteMemoryFailure() {
    if (!activeState) return;
    ++activeState->memoryFailures;
    if (activeState->exitStatus == 0) activeState->exitStatus = 1;
}

[[maybe_unused]] const bool hears =
    (setFailureHearers({.error = [](const char* what) { toMessageCenter(MDL_PRIORITY_ERROR, utf8Of(what), {}); },
                        .memoryRanOut = noteMemoryFailure}),
     true);

}  // namespace

std::string& lastError() {
    return sessionState<LastError>().text;
}

int printToField(int field, const char* format, va_list arguments) {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        const std::optional<std::string> text = formatted(format, arguments);
        if (!text || field < 0 || field > 4) return MDL_ERROR;
        if (activeState) activeState->frontEnd->messageField(field, utf8FromNarrow(*text));
        return MDL_SUCCESS;
    });
}

}  // namespace host

using namespace host;

int toolSubsystem_printf(const char* format, ...) noexcept {
    va_list arguments;
    va_start(arguments, format);
    const int length = guarded<int>(-1, [&] {
        const std::optional<std::string> text = formatted(format, arguments);
        if (!text) return -1;
        toConsole(*text);
        return static_cast<int>(text->size());
    });
    va_end(arguments);
    return length;
}

int toolSubsystem_fprintf(FILE* stream, const char* format, ...) noexcept {
    if (!stream) return -1;
    va_list arguments;
    va_start(arguments, format);
    const int length = guarded<int>(-1, [&] {
        const std::optional<std::string> text = formatted(format, arguments);
        if (!text || std::fwrite(text->data(), 1, text->size(), stream) != text->size()) return -1;
        return static_cast<int>(text->size());
    });
    va_end(arguments);
    return length;
}

int mdlOutput_printf(int field, const char* format, ...) noexcept {
    va_list arguments;
    va_start(arguments, format);
    const int status = printToField(field, format, arguments);
    va_end(arguments);
    return status;
}

int mdlOutput_messageCenter(int priority, const char* brief, const char* details, int openAlert) noexcept {
    return guarded<int>(MDL_ERROR, [&] {
        toMessageCenter(priority, utf8Of(brief), utf8Of(details), openAlert != 0);
        if (openAlert != 0) answerTo<Noted>(Note{});
        return MDL_SUCCESS;
    });
}

void mdlSystem_enterGraphics(void) noexcept {}
