#include "mchost/base/paths.h"

#include <algorithm>
#include <cstdlib>
#include <optional>

#include "mchost/base/charset.h"
#include "mchost/base/variables.h"

namespace host {

namespace {

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isSeparator(char c) {
    return c == '/' || c == '\\';
}

bool hasDrive(std::string_view name) {
    return name.size() >= 2 && isLetter(name[0]) && name[1] == ':';
}

bool isUtf8BeyondAscii(std::string_view text) {
    const bool ascii = std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    for (size_t position = 0; position < text.size();) {
        if (!nextUtf8(text, position)) return false;
    }
    return !ascii;
}

std::string withSlashes(std::string path) {
    std::ranges::replace(path, '\\', '/');
    return path;
}

// The folder of a drive that no variable names; made here, so that "c:\temp" is there on every machine.
std::string defaultDrive(char letter) {
    const std::filesystem::path folder = userDataFolder() / (std::string("drive_") + letter);
    std::error_code ignored;  // a folder that can't be made shows when a file in it is opened
    if (!std::filesystem::exists(folder, ignored)) std::filesystem::create_directories(folder / "temp", ignored);
    return folder;
}

std::string driveFolder(char letter) {
    const char upper = static_cast<char>(letter & ~0x20);
    const std::optional<std::string> folder = variables().expandedValue(std::string("MC_DRIVE_") + upper);
    // A value that names a drive again isn't followed.
    if (folder && !folder->empty() && !hasDrive(*folder)) return withSlashes(utf8FromHost(*folder));
    return defaultDrive(static_cast<char>(letter | 0x20));
}

}  // namespace

std::filesystem::path userDataFolder() {
    const char* data = std::getenv("XDG_DATA_HOME");
    if (data && data[0] == '/') return std::filesystem::path(data) / "mchost";
    const char* home = std::getenv("HOME");
    const std::filesystem::path folder = home != nullptr && home[0] != '\0' ? home : "/tmp";
    return folder / ".local/share/mchost";
}

std::string utf8FromHost(std::string_view text) {
    return isUtf8BeyondAscii(text) ? std::string(text) : utf8FromNarrow(text);
}

std::string fullPath(std::string_view name) {
    return std::filesystem::absolute(systemPath(name)).lexically_normal().string();
}

std::string systemPath(std::string_view name) {
    const std::string path = withSlashes(utf8FromHost(name));
    if (path.starts_with(":/")) return path.substr(1);
    if (!hasDrive(path)) return path;
    std::string folder = driveFolder(path[0]);
    if (!folder.ends_with('/')) folder += '/';
    const size_t below = std::min(path.find_first_not_of('/', 2), path.size());
    return folder + path.substr(below);
}

std::string hostName(std::string_view path) {
    NarrowText narrow = narrowFromUtf8(path);
    return narrow.badPosition ? std::string(path) : std::move(narrow.text);
}

NameParts partsOf(std::string_view name) {
    NameParts parts;
    if (hasDrive(name)) {
        parts.device = name.substr(0, 2);
        name.remove_prefix(2);
    } else if (name.size() >= 2 && name[0] == ':' && isSeparator(name[1])) {
        name.remove_prefix(1);
    }
    const size_t last = name.find_last_of("/\\");
    const size_t split = last == std::string_view::npos ? 0 : last + 1;
    parts.directory = name.substr(0, split);
    name.remove_prefix(split);
    const size_t dot = name.rfind('.');
    const bool onlyDots = name.find_first_not_of('.') == std::string_view::npos;
    parts.name = dot == 0 || onlyDots ? name : name.substr(0, dot);
    if (dot != std::string_view::npos && dot > 0 && !onlyDots) parts.extension = name.substr(dot + 1);
    return parts;
}

}  // namespace host
