#include "mchost/embed/configuration.h"

#include <fstream>

#include "mchost/base/paths.h"
#include "mchost/base/variables.h"
#include "mchost/base/words.h"
#include "mchost/embed/installation.h"

namespace host {

namespace {

void replaceAll(std::string& text, std::string_view name, const std::string& value) {
    for (size_t at = text.find(name); at != std::string::npos; at = text.find(name, at + value.size()))
        text.replace(at, name.size(), value);
}

// NAME = VALUE.
bool defineLine(std::string_view line, int level) {
    const size_t sign = line.find('=');
    if (sign == std::string_view::npos) return false;
    return defineVariable(line.substr(0, sign), line.substr(sign + 1), level);
}

}  // namespace

bool defineVariable(std::string_view givenName, std::string_view givenValue, int level) {
    const std::string_view name = trimmed(givenName);
    std::string value(trimmed(givenValue));
    if (name.find_first_of(" \t") != std::string::npos) return false;
    replaceAll(value, "$(MCHOST_DIR)", programFolder().string());
    replaceAll(value, "$(MCHOST_DATA)", dataFolder().string());
    replaceAll(value, "$(MCHOST_USER)", userDataFolder().string());
    return variables().define(name, hostName(value), level);
}

std::optional<std::string> readConfiguration(const std::filesystem::path& path, int level) {
    std::ifstream file(path);
    std::string line;
    for (int number = 1; std::getline(file, line); ++number) {
        const std::string text(trimmed(line));
        if (text.empty() || text.starts_with('#') || defineLine(text, level)) continue;
        return path.string() + ":" + std::to_string(number) + ": not NAME = VALUE: " + text;
    }
    if (file.eof()) return std::nullopt;
    return path.string() + ": the configuration can't be read; give a file that is there";
}

}  // namespace host
