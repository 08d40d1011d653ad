#include "mchost/processes/open.h"

#include <string>
#include <vector>

#include "mchost/base/existing_path.h"
#include "mchost/base/paths.h"
#include "mchost/base/variables.h"
#include "mchost/processes/programs.h"
#include "mchost/session/state.h"

namespace host {

namespace {

bool start(const std::string& program, const std::vector<std::string>& arguments) {
    return startProcess(program, arguments, {}, false) != nullptr;
}

bool isAddress(std::string_view name) {
    return name.find("://") != std::string_view::npos;
}

std::string_view withoutQuotes(std::string_view text) {
    const bool quoted = text.size() >= 2 && text.starts_with('"') && text.ends_with('"');
    return quoted ? text.substr(1, text.size() - 2) : text;
}

}  // namespace

bool openBySystem(std::string_view name) {
    const std::string opener = variables().expandedValue("MC_OPENER").value_or("xdg-open");
    name = withoutQuotes(name);
    if (isAddress(name)) return start(opener, {std::string(name)});
    const auto path = existingPath(systemPath(name));
    return path && !name.empty() && start(opener, {*path});
}

bool handToSystem(std::string_view text) {
    const std::string_view name = withoutQuotes(text);
    if (isAddress(name) || (!name.empty() && existingPath(systemPath(name)))) return openBySystem(name);
    const std::vector<std::string> words = wordsOf(text);
    return !words.empty() && start(words[0], {words.begin() + 1, words.end()});
}

}  // namespace host
