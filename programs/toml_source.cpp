#include "programs/toml_source.h"

#include <algorithm>
#include <cstdio>

#include "mchost/base/charset.h"

void TomlSource::begin(std::string path) {
    path_ = std::move(path);
    subject_.clear();
}

void TomlSource::fault(const std::string& what) {
    std::fprintf(stderr, "%s: %s\n", program_.c_str(), what.c_str());
    ++faults_;
}

void TomlSource::fault(const toml::node& where, const std::string& what) {
    const std::string subject = subject_.empty() ? "" : subject_ + ": ";
    fault(path_ + ":" + std::to_string(where.source().begin.line) + ": " + subject + what);
}

std::optional<toml::table> TomlSource::read(const std::string& path) {
    begin(path);
    try {
        return toml::parse_file(path);
    } catch (const toml::parse_error& error) {
        const auto line = error.source().begin.line;  // 0: the file couldn't be read at all
        fault((line == 0 ? path : path + ":" + std::to_string(line)) + ": " + std::string(error.description()));
        return std::nullopt;
    }
}

void TomlSource::requireKeys(const toml::table& table, std::initializer_list<std::string_view> known) {
    for (const auto& [key, node] : table)
        if (std::ranges::find(known, key.str()) == known.end()) fault(node, "unknown key " + inQuotes(key.str()));
}

std::optional<std::string> TomlSource::narrow(const toml::node& node, const std::string& what) {
    const auto utf8 = node.value_exact<std::string_view>();
    if (!utf8) {
        fault(node, what + " must be a text in quotes");
        return std::nullopt;
    }
    host::NarrowText narrow = host::narrowFromUtf8(*utf8);
    if (!narrow.badPosition) return std::move(narrow.text);
    size_t end = *narrow.badPosition;
    host::nextUtf8(*utf8, end);
    const auto letter = utf8->substr(*narrow.badPosition, end - *narrow.badPosition);
    fault(node, what + ": the character " + inQuotes(letter) + " has no code in Windows-1252; write it otherwise");
    return std::nullopt;
}
