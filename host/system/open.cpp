#include "host/system/open.h"

#include <string>
#include <vector>

#include "host/session/state.h"
#include "host/system/paths.h"
#include "host/system/programs.h"

namespace host {

namespace {

bool start(const std::string& program, const std::vector<std::string>& arguments) {
    return startProcess(program, arguments, {}, false) != nullptr;
}

std::string_view withoutQuotes(std::string_view text) {
    const bool quoted = text.size() >= 2 && text.starts_with('"') && text.ends_with('"');
    return quoted ? text.substr(1, text.size() - 2) : text;
}

}  // namespace

bool handToSystem(std::string_view text) {
    const std::string opener = variables().expandedValue("MC_OPENER").value_or("xdg-open");
    const std::string_view name = withoutQuotes(text);
    if (name.find("://") != std::string_view::npos) return start(opener, {std::string(name)});
    if (const auto path = existingPath(systemPath(name)); path && !name.empty()) return start(opener, {*path});
    const std::vector<std::string> words = wordsOf(text);
    return !words.empty() && start(words[0], {words.begin() + 1, words.end()});
}

}  // namespace host
