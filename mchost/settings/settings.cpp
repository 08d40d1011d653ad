#include "mchost/settings/settings.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>

#include "mchost/base/guard.h"
#include "mchost/base/paths.h"
#include "mchost/base/variables.h"
#include "mchost/base/words.h"
#include "mchost/mdl/system.h"
#include "mchost/mdl/win32.h"
#include "mchost/session/owned_state.h"

namespace host {

namespace {

namespace fs = std::filesystem;

// A key as it is compared: small letters, no separator at its ends.
std::string plainKey(std::string_view key) {
    std::string plain = lowerCase(trimmed(key));
    std::ranges::replace(plain, '/', '\\');
    while (plain.ends_with('\\')) plain.pop_back();
    return plain.erase(0, plain.find_first_not_of('\\'));
}

std::optional<Setting> numberSetting(std::string_view text) {
    const bool hex = text.starts_with("0x") || text.starts_with("0X");
    std::optional<uint32_t> value = hex ? numberIn<uint32_t>(text.substr(2), 16) : numberIn<uint32_t>(text);
    if (text.starts_with('-')) value = numberIn<int32_t>(text);
    if (!value) return std::nullopt;
    return Setting{WIN32_VALUE_NUMBER, std::string(reinterpret_cast<const char*>(&*value), sizeof *value)};
}

std::optional<Setting> bytesSetting(std::string_view text) {
    Setting setting{WIN32_VALUE_BYTES, ""};
    while (!(text = trimmed(text)).empty()) {
        const std::string_view digits = text.substr(0, text.find_first_of(" \t"));
        const auto byte = digits.size() == 2 ? numberIn<unsigned char>(digits, 16) : std::nullopt;
        if (!byte) return std::nullopt;
        setting.bytes += static_cast<char>(*byte);
        text.remove_prefix(digits.size());
    }
    return setting;
}

Setting textSetting(std::string_view text) {
    const bool quoted = text.size() >= 2 && text.starts_with('"') && text.ends_with('"');
    return {WIN32_VALUE_TEXT, hostName(utf8FromHost(quoted ? text.substr(1, text.size() - 2) : text)) + '\0'};
}

std::optional<Setting> settingIn(std::string_view value) {
    constexpr std::string_view number = "number:", bytes = "bytes:";
    if (value.starts_with(number)) return numberSetting(trimmed(value.substr(number.size())));
    if (value.starts_with(bytes)) return bytesSetting(value.substr(bytes.size()));
    return textSetting(value);
}

// Takes one line; false when it is none of a settings file.
bool takeLine(SettingsText& into, std::string_view line, const std::string& key, bool& inKey) {
    line = trimmed(line);
    if (line.empty() || line.starts_with('#')) return true;
    if (line.starts_with('[')) {
        inKey = line.ends_with(']') && plainKey(line.substr(1, line.size() - 2)) == key;
        into.hasKey |= inKey;
        return line.ends_with(']');
    }
    const size_t sign = line.find('=');
    const std::string name = lowerCase(trimmed(line.substr(0, sign)));
    if (sign == std::string_view::npos || name.empty()) return false;
    std::optional<Setting> setting = settingIn(trimmed(line.substr(sign + 1)));
    if (!setting) return false;
    if (inKey) into.settings.insert_or_assign(name == "@" ? "" : name, std::move(*setting));
    return true;
}

// ---- the two files ----

fs::path userFile() {
    const std::string named = variables().expandedValue("MC_USER_SETTINGS").value_or("");
    return named.empty() ? userDataFolder() / "settings.txt" : fs::path(systemPath(named));
}

fs::path machineFile() {
    const std::string named = variables().expandedValue("MC_MACHINE_SETTINGS").value_or("");
    return named.empty() ? "/etc/mchost/settings.txt" : fs::path(systemPath(named));
}

SettingsText settingsInFile(const fs::path& path, std::string_view key) {
    std::ifstream file(path, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    SettingsText found = settingsOf(text, key);
    for (const int line : found.badLines) {
        const std::string what = hostName(path.string()) + ":" + std::to_string(line) +
                                 ": no setting; write NAME = VALUE, NAME = number:12, NAME = bytes:0a 1f or [KEY]";
        mdlOutput_messageCenter(MDL_PRIORITY_WARNING, what.c_str(), "", 0);
    }
    return found;
}

// Keys that are open; a handle is the address of one.
struct OpenKeys {
    std::vector<std::unique_ptr<Settings>> all;
};
std::vector<std::unique_ptr<Settings>>& openKeys() {
    return sessionState<OpenKeys>().all;
}

Settings* openKey(const void* handle) {
    const auto key = std::ranges::find(openKeys(), handle, [](const auto& k) { return k.get(); });
    return key == openKeys().end() ? nullptr : key->get();
}

}  // namespace

SettingsText settingsOf(std::string_view text, std::string_view key) {
    constexpr std::string_view byteOrderMark = "\xef\xbb\xbf";
    if (text.starts_with(byteOrderMark)) text.remove_prefix(byteOrderMark.size());
    SettingsText found;
    bool inKey = false;
    const std::string plain = plainKey(key);
    for (int number = 1; !text.empty(); ++number) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(text.size(), line.size() + 1));
        if (!takeLine(found, line, plain, inKey)) found.badLines.push_back(number);
    }
    return found;
}

}  // namespace host

using namespace host;

int32_t RegOpenKeyExA(void* root, const char* key, uint32_t, uint32_t, void** handleP) noexcept {
    return guarded<int32_t>(WIN32_BAD_PARAMETER, [&]() -> int32_t {
        if (!handleP) return WIN32_BAD_PARAMETER;
        *handleP = nullptr;
        if (root != WIN32_CURRENT_USER && root != WIN32_LOCAL_MACHINE) return WIN32_INVALID_HANDLE;
        SettingsText found = settingsInFile(root == WIN32_CURRENT_USER ? userFile() : machineFile(), !key ? "" : key);
        if (!found.hasKey) return WIN32_FILE_NOT_FOUND;
        openKeys().push_back(std::make_unique<Settings>(std::move(found.settings)));
        *handleP = openKeys().back().get();
        return WIN32_SUCCESS;
    });
}

int32_t RegQueryValueExA(void* handle, const char* name, uint32_t*, uint32_t* typeP, void* data,
                         uint32_t* sizeP) noexcept {
    return guarded<int32_t>(WIN32_BAD_PARAMETER, [&]() -> int32_t {
        const Settings* key = openKey(handle);
        if (!key) return WIN32_INVALID_HANDLE;
        if (data && !sizeP) return WIN32_BAD_PARAMETER;
        const auto found = key->find(lowerCase(!name ? "" : name));
        if (found == key->end()) return WIN32_FILE_NOT_FOUND;
        const auto& [kind, bytes] = found->second;
        const bool fits = !data || bytes.size() <= *sizeP;
        if (typeP) *typeP = kind;
        if (data && fits) std::memcpy(data, bytes.data(), bytes.size());
        if (sizeP) *sizeP = static_cast<uint32_t>(bytes.size());
        return fits ? WIN32_SUCCESS : WIN32_MORE_DATA;
    });
}

int32_t RegCloseKey(void* handle) noexcept {
    return std::erase_if(openKeys(), [&](const auto& key) { return key.get() == handle; }) > 0 ? WIN32_SUCCESS
                                                                                               : WIN32_INVALID_HANDLE;
}
