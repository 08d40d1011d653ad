#include "programs/resource_names.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <sstream>
#include <system_error>

#include "mchost/base/new_file.h"

namespace {

constexpr std::string_view letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
constexpr std::string_view digits = "0123456789";

bool isName(std::string_view text) {
    const auto isNamePart = [](char c) { return letters.find(c) != letters.npos || digits.find(c) != digits.npos; };
    return !text.empty() && letters.find(text[0]) != letters.npos && std::ranges::all_of(text, isNamePart);
}

struct ValueType {
    std::string_view conversion;  // with its length
    std::string_view type;
};
constexpr auto valueTypes = std::to_array<ValueType>({
    {"s", "const char*"},
    {"d", "int"},
    {"i", "int"},
    {"c", "int"},
    {"u", "unsigned"},
    {"x", "unsigned"},
    {"X", "unsigned"},
    {"o", "unsigned"},
    {"ld", "long"},
    {"lu", "unsigned long"},
    {"lld", "long long"},
    {"zu", "size_t"},
    {"f", "double"},
    {"e", "double"},
    {"g", "double"},
    {"p", "const void*"},
});

std::string_view typeOf(std::string_view conversion) {
    const auto row = std::ranges::find(valueTypes, conversion, &ValueType::conversion);
    return row == valueTypes.end() ? "?" : row->type;
}

std::string contentsOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

}  // namespace

std::string valueTypesOf(std::string_view format) {
    std::string types;
    for (size_t i = format.find('%'); i < format.size(); i = format.find('%', i + 1)) {
        for (++i; i < format.size() && std::string_view("0123456789.+-# '*").find(format[i]) != std::string_view::npos;
             ++i)
            if (format[i] == '*') types += ", int";
        const size_t end = format.find_first_not_of("hlLqjzt", i);
        if (end == std::string_view::npos) break;
        if (format[end] != '%') types.append(", ").append(typeOf(format.substr(i, end - i + 1)));
        i = end;
    }
    return types;
}

std::string ResourceNames::add(const std::string& scope, const NamedNumber& number) {
    if (scope.empty()) return "the dialog or list of \"" + number.name + "\" has no name itself";
    for (const std::string& name : {scope, number.name})
        if (!isName(name)) return "the name \"" + name + "\" must be letters and digits, a letter first";
    std::vector<NamedNumber>& known = scopes_[scope];
    if (std::ranges::find(known, number.name, &NamedNumber::name) != known.end())
        return "the name \"" + number.name + "\" comes twice in \"" + scope + "\"";
    known.push_back(number);
    return {};
}

std::string ResourceNames::write(const std::string& path) const {
    std::string text =
        "// Written by mcrsc from resource sources: change those.\n#pragma once\n\n#include <mchost/mdl/names.hpp>\n";
    for (const auto& [scope, numbers] : scopes_) {
        text += "\nnamespace ids::" + scope + " {\n";
        for (const auto& [name, type, value] : numbers) text += "constexpr " + type + " " + name + "{" + value + "};\n";
        text += "}\n";
    }
    if (contentsOf(path) == text) return {};
    try {
        host::NewFile file(path);
        std::ofstream stream(file.name(), std::ios::binary);
        if (stream << text && stream.flush()) {
            file.replace();
            return {};
        }
    } catch (const std::system_error&) {  // told as any other failure
    }
    return path +
           ": can't be written; make sure that its folder is there and can be written to, and that there is room";
}
