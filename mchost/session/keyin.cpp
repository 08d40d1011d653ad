#include "mchost/session/keyin.h"

#include <optional>

#include "mchost/base/guard.h"
#include "mchost/base/words.h"
#include "mchost/mdl/system.h"
#include "mchost/session/owned_state.h"

namespace host {

namespace {

struct InputQueue {
    std::vector<KeyIn> waiting;
};

// Told by the rooms above before anything runs.
std::vector<HostWord>& words() {
    static std::vector<HostWord> all;
    return all;
}

// What stands behind the word; nothing when the line doesn't begin with it.
std::optional<std::string_view> restBehind(std::string_view word, std::string_view line) {
    line = trimmed(line);
    if (line.size() < word.size() || !sameName(line.substr(0, word.size()), word)) return std::nullopt;
    const std::string_view rest = line.substr(word.size());
    return rest.empty() || trimmed(rest).size() < rest.size() ? std::optional(trimmed(rest)) : std::nullopt;
}

}  // namespace

bool addHostWord(const HostWord& word) {
    words().push_back(word);
    return true;
}

std::span<const HostWord> hostWords() {
    return words();
}

const HostWord* hostWordOf(std::string_view line) {
    const HostWord* longest = nullptr;
    for (const HostWord& word : words()) {
        if (restBehind(word.word, line) && (!longest || longest->word.size() < word.word.size())) longest = &word;
    }
    return longest;
}

bool carryOutHostWord(std::string_view line) {
    const HostWord* const word = hostWordOf(line);
    if (!word) return false;
    const bool done = guarded<bool>(false, [&] {
        word->carryOut(*restBehind(word->word, line));
        return true;
    });
    if (!done) mdlSystem_noteFailure();
    return true;
}

std::vector<KeyIn>& keyInQueue() {
    return sessionState<InputQueue>().waiting;
}

}  // namespace host

int mdlInput_sendKeyin(const char* text, int literal, int position, const char* task) noexcept {
    return host::guarded<int>(MDL_ERROR, [&]() -> int {
        if (!text || position < -1) return MDL_ERROR;
        auto& queue = host::keyInQueue();
        const bool atEnd = position == -1 || static_cast<size_t>(position) > queue.size();
        queue.insert(atEnd ? queue.end() : queue.begin() + position, {text, literal != 0, !task ? "" : task});
        return MDL_SUCCESS;
    });
}
