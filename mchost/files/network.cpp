#include "mchost/files/network.h"

#include <fstream>
#include <iterator>

#include <algorithm>
#include <array>
#include <filesystem>
#include <sstream>

#include "mchost/base/guard.h"
#include "mchost/base/packed_texts.h"
#include "mchost/base/paths.h"
#include "mchost/base/variables.h"
#include "mchost/mdl/win32.h"

namespace host {

namespace {

namespace fs = std::filesystem;

// A line of the table: blanks and backslashes in its fields are written as "\040" and the like.
struct Mount {
    std::string source, place, kind;
};

std::string withoutEscapes(const std::string& field) {
    const auto isDigit = [&](size_t at) { return at < field.size() && field[at] >= '0' && field[at] <= '7'; };
    std::string text;
    for (size_t i = 0; i < field.size(); ++i) {
        if (field[i] != '\\' || !isDigit(i + 1) || !isDigit(i + 2) || !isDigit(i + 3)) {
            text += field[i];
            continue;
        }
        text += static_cast<char>(std::stoi(field.substr(i + 1, 3), nullptr, 8));
        i += 3;
    }
    return text;
}

bool isBelow(const std::string& path, const std::string& place) {
    return path.starts_with(place) && (path.size() == place.size() || place == "/" || path[place.size()] == '/');
}

// The mount that the path lies on: the deepest one, and of several at one place the last.
Mount mountOf(const std::string& path, std::string_view mounts) {
    Mount deepest, next;
    std::istringstream lines{std::string(mounts)};
    for (std::string line; std::getline(lines, line);) {
        std::istringstream fields(line);
        if (!(fields >> next.source >> next.place >> next.kind)) continue;
        next.source = withoutEscapes(next.source);
        next.place = withoutEscapes(next.place);
        if (isBelow(path, next.place) && next.place.size() >= deepest.place.size()) deepest = next;
    }
    return deepest;
}

// "server/share" of "//server/share" (SMB) and "server:/share" (NFS); empty for what is no network drive.
std::string shareOf(const Mount& mount) {
    constexpr auto smb = std::to_array<std::string_view>({"cifs", "smb3", "smbfs"});
    if (std::ranges::find(smb, mount.kind) != smb.end() && mount.source.starts_with("//"))
        return mount.source.substr(2);
    const size_t colon = mount.source.find(":/");
    if (!mount.kind.starts_with("nfs") || colon == std::string::npos) return "";
    return mount.source.substr(0, colon) + mount.source.substr(colon + 1);
}

}  // namespace

std::string universalName(const std::string& path, std::string_view mounts) {
    std::error_code error;
    std::string whole = fs::weakly_canonical(fs::absolute(path, error), error);
    const Mount mount = mountOf(whole, mounts);
    const std::string share = shareOf(mount);
    if (share.empty()) return "";
    std::string name = "//" + share;
    while (name.ends_with('/')) name.pop_back();
    if (whole.size() > mount.place.size()) name += (mount.place == "/" ? "/" : "") + whole.substr(mount.place.size());
    std::ranges::replace(name, '/', '\\');
    return name;
}

namespace {

std::string mountTable() {
    const std::string named = variables().expandedValue("MC_MOUNTS").value_or("");
    std::ifstream file(named.empty() ? "/proc/mounts" : systemPath(named));
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

}  // namespace host

using namespace host;

uint32_t WNetGetUniversalNameA(const char* path, uint32_t infoLevel, void* buffer, uint32_t* sizeP) noexcept {
    return guarded<uint32_t>(WIN32_BAD_PARAMETER, [&]() -> uint32_t {
        if (!path || infoLevel != 1 || !sizeP) return WIN32_BAD_PARAMETER;
        const std::string name = universalName(systemPath(path), mountTable());
        if (name.empty()) return WIN32_NOT_CONNECTED;
        PackedTexts<Win32UniversalName> packed(1);
        packed.add(0, &Win32UniversalName::name, hostName(name));
        return packed.give(buffer, *sizeP, sizeP) ? WIN32_SUCCESS : WIN32_MORE_DATA;
    });
}
