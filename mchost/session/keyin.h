// Key-ins: lines that the user types, or that applications send on the user's behalf.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace host {

struct KeyIn {
    std::string text;  // Windows-1252
    bool literal;
    std::string task;  // empty for the host
};

// The input queue, in the order in which the key-ins are to be taken. Whoever takes one removes it.
std::vector<KeyIn>& keyInQueue();

// The first word, or words, of key-ins that the host carries out itself, such as "view" of "view 1 fit". The room that
// it belongs to tells it before anything runs.
struct HostWord {
    std::string_view word;  // small letters; users may write others
    std::string_view help;  // lines for people: how it is written, and what it does
    // Carries out what stands behind the word (Windows-1252, without blanks around it). std::runtime_error, with a line
    // for the user, when that can't be.
    void (*carryOut)(std::string_view rest);
};
bool addHostWord(const HostWord& word);  // true
std::span<const HostWord> hostWords();
// The longest one that the line begins with; null when it begins with none.
const HostWord* hostWordOf(std::string_view line);
// Carries the line out, or tells what is wrong with it; false for one that begins with none of them.
bool carryOutHostWord(std::string_view line);

}  // namespace host
