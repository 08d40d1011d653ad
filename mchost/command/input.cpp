// Data points and resets from key-ins and from the user.
#include "mchost/command/input.h"

#include <algorithm>
#include <charconv>
#include <string>

#include "mchost/base/charset.h"
#include "mchost/base/words.h"
#include "mchost/command/command.h"
#include "mchost/command/overlay.h"
#include "mchost/dialog/dialog.h"
#include "mchost/mdl/state.h"
#include "mchost/mdl/transform.h"
#include "mchost/session/loop.h"
#include "mchost/session/session.h"
#include "mchost/space/vector.h"
#include "mchost/space/view.h"

namespace host {
namespace {

constexpr std::string_view pointKeyIn = "xy=", resetKeyIn = "reset";

void skipBlanks(std::string_view& text) {
    text.remove_prefix(std::min(text.size(), text.find_first_not_of(" \t\r")));
}

bool skip(std::string_view& text, char c) {
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

std::optional<CommandInput> placeIn(std::string_view text, CommandInput::Kind kind) {
    const auto x = takeNumber<double>(text);
    const auto y = x && skip(text, ',') ? takeNumber<double>(text) : std::nullopt;
    const bool three = y && skip(text, ',');
    const auto z = three ? takeNumber<double>(text) : std::optional(0.0);
    if (!y || !z || !isFinite({*x, *y, *z})) return std::nullopt;
    skipBlanks(text);
    const auto view = text.empty() ? std::optional(1) : takeNumber<int32_t>(text);
    skipBlanks(text);
    if (!text.empty() || !view || !isView(*view - 1)) return std::nullopt;
    return CommandInput{kind, {*x, *y, *z}, *view - 1};
}

bool isForCommand(const KeyIn& keyIn) {
    return keyIn.text.starts_with(pointKeyIn) || keyIn.text == resetKeyIn;
}

// A reset first, so that the command can let go of what it holds.
void leaveCommand() {
    const uint64_t serial = commandSerial();
    giveReset();
    if (commandSerial() == serial) mdlState_startDefaultCommand();
}

bool follow(const CommandInput& input) {
    switch (input.kind) {
        case CommandInput::Kind::point: return giveDataPoint(inUor(input.point), input.view);
        case CommandInput::Kind::move: return moveCursor(inUor(input.point), input.view);
        case CommandInput::Kind::reset: return giveReset();
        case CommandInput::Kind::end: leaveCommand(); return true;
    }
    return false;
}

bool isForHost(const KeyIn& keyIn) {
    return hostWordOf(keyIn.text);
}

// One of the host is carried out, one that a command takes goes to it, any other waits for the end of what runs.
bool take(const KeyIn& keyIn) {
    if (isForHost(keyIn)) {
        const ApplicationScope control(nullptr);
        return carryOutHostWord(keyIn.text);
    }
    if (!isForCommand(keyIn) || !commandRuns()) {
        const ApplicationScope control(nullptr);
        keyInQueue().push_back(keyIn);
        return true;
    }
    const std::string_view text = keyIn.text;
    const auto input = commandInputIn(text.starts_with(pointKeyIn) ? text.substr(pointKeyIn.size()) : text);
    return input && follow(*input);
}

// Whether the event was carried out.
struct CarryOut {
    bool operator()(const KeyIn& keyIn) const { return take(keyIn); }
    bool operator()(const DataPoint& given) const { return giveDataPoint(given.point, given.view); }
    bool operator()(const CursorMove& move) const { return moveCursor(move.point, move.view); }
    bool operator()(const Reset&) const { return giveReset(); }
    bool operator()(const CommandEnd&) const { return leaveCommand(), true; }
    bool operator()(const DialogEvent& event) const { return carryOut(event); }
    bool operator()(const Nothing&) const { return true; }
    template <class Other>
    bool operator()(const Other&) const {
        return false;
    }
};

Event nextOfAny() {
    if (!commandRuns()) return nextEvent(AnyEvent{}, isForHost);
    return nextEvent(AnyEvent{utf8FromNarrow(commandPrompt()), commandSerial()},
                     [](const KeyIn& keyIn) { return isForCommand(keyIn) || isForHost(keyIn); });
}

// Serves for as long as `isToGoOn`; false when nobody answers.
bool serveWhile(bool (*isToGoOn)()) {
    while (isToGoOn()) {
        const Event event = nextOfAny();
        const bool quits = std::holds_alternative<Quit>(event);
        if (quits || std::holds_alternative<NobodyThere>(event)) {
            if (commandRuns()) leaveCommand();
            return quits;
        }
        if (!std::visit(CarryOut{}, event)) tellRefused(event);
        tellWhatIsSeen();
    }
    return true;
}

}  // namespace

std::optional<CommandInput> commandInputIn(std::string_view line) {
    skipBlanks(line);
    while (!line.empty() && (line.back() == ' ' || line.back() == '\t' || line.back() == '\r')) line.remove_suffix(1);
    if (line.empty() || line == "r" || line == resetKeyIn) return CommandInput{CommandInput::Kind::reset};
    if (line == "end") return CommandInput{CommandInput::Kind::end};
    if (std::string_view rest = line; takeWord(rest) == "move") return placeIn(rest, CommandInput::Kind::move);
    return placeIn(line, CommandInput::Kind::point);
}

Point3d inUor(const Point3d& masterUnits) {
    return masterUnits * mdlCnv_masterToUOR(nullptr, 1, nullptr);
}

bool serve() {
    return serveWhile([] { return true; });
}

bool serveCommands() {
    return serveWhile(commandRuns);
}

}  // namespace host
