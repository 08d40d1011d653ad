// Data points and resets from key-ins and from the user.
#include "mchost/command/input.h"

#include <algorithm>
#include <charconv>
#include <string>

#include "mchost/base/charset.h"
#include "mchost/command/command.h"
#include "mchost/mdl/state.h"
#include "mchost/mdl/transform.h"
#include "mchost/session/front_end.h"
#include "mchost/session/keyin.h"
#include "mchost/session/session.h"
#include "mchost/space/vector.h"
#include "mchost/space/view.h"

namespace host {
namespace {

constexpr std::string_view pointKeyIn = "xy=", resetKeyIn = "reset";

void skipBlanks(std::string_view& text) {
    text.remove_prefix(std::min(text.size(), text.find_first_not_of(" \t\r")));
}

bool take(std::string_view& text, char c) {
    skipBlanks(text);
    if (!text.starts_with(c)) return false;
    text.remove_prefix(1);
    return true;
}

template <class Number>
std::optional<Number> takeNumber(std::string_view& text) {
    skipBlanks(text);
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc()) return std::nullopt;
    text.remove_prefix(static_cast<size_t>(end - text.data()));
    return value;
}

std::optional<CommandInput> pointIn(std::string_view text) {
    const auto x = takeNumber<double>(text);
    const auto y = x && take(text, ',') ? takeNumber<double>(text) : std::nullopt;
    const bool three = y && take(text, ',');
    const auto z = three ? takeNumber<double>(text) : std::optional(0.0);
    if (!y || !z || !isFinite({*x, *y, *z})) return std::nullopt;
    skipBlanks(text);
    const auto view = text.empty() ? std::optional(1) : takeNumber<int32_t>(text);
    skipBlanks(text);
    if (!text.empty() || !view || !isView(*view - 1)) return std::nullopt;
    return CommandInput{CommandInput::Kind::point, {*x, *y, *z}, *view - 1};
}

// The first key-in to the host that gives a point or a reset, as a line of the user.
std::optional<std::string> takeKeyIn() {
    std::vector<KeyIn>& queue = keyInQueue();
    const auto found = std::ranges::find_if(queue, [](const KeyIn& keyIn) {
        return keyIn.task.empty() && (keyIn.text.starts_with(pointKeyIn) || keyIn.text == resetKeyIn);
    });
    if (found == queue.end()) return std::nullopt;
    std::string line = found->text.starts_with(pointKeyIn) ? found->text.substr(pointKeyIn.size()) : "";
    queue.erase(found);
    return line;
}

std::optional<std::string> nextLine(std::string_view complaint) {
    if (auto keyIn = takeKeyIn()) return keyIn;
    Session* session = Session::current();
    if (session == nullptr) return std::nullopt;
    session->runDueTimers();
    if (!commandRuns()) return "";
    return session->frontEnd().commandLine(utf8FromNarrow(commandPrompt()), complaint);
}

// A reset first, so that the command can let go of what it holds.
void leaveCommand() {
    const uint64_t serial = commandSerial();
    giveReset();
    if (commandSerial() == serial) mdlState_startDefaultCommand();
}

void follow(const CommandInput& input) {
    switch (input.kind) {
        case CommandInput::Kind::point: {
            const double uor = mdlCnv_masterToUOR(nullptr, 1, nullptr);
            giveDataPoint(input.point * uor, input.view);
            break;
        }
        case CommandInput::Kind::reset: giveReset(); break;
        case CommandInput::Kind::end: leaveCommand(); break;
    }
}

}  // namespace

std::optional<CommandInput> commandInputIn(std::string_view line) {
    skipBlanks(line);
    while (!line.empty() && (line.back() == ' ' || line.back() == '\t' || line.back() == '\r')) line.remove_suffix(1);
    if (line.empty() || line == "r" || line == resetKeyIn) return CommandInput{CommandInput::Kind::reset};
    if (line == "end") return CommandInput{CommandInput::Kind::end};
    return pointIn(line);
}

bool serveCommands() {
    std::string complaint;
    while (commandRuns()) {
        const std::optional<std::string> line = nextLine(complaint);
        if (!line) {
            leaveCommand();
            return false;
        }
        const std::optional<CommandInput> input = commandInputIn(*line);
        // Open windows can be used meanwhile.
        const bool taken = input || Session::current()->frontEnd().answerOpenDialog(*line);
        complaint = taken ? "" : "\"" + *line + "\" isn't a point";
        if (input) follow(*input);
    }
    return true;
}

}  // namespace host
