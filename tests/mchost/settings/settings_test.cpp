// Stored settings and network names.
#include <cstring>
#include <string>
#include <vector>

#include "mchost/files/network.h"
#include "mchost/mdl/system.h"
#include "mchost/mdl/win32.h"
#include "mchost/settings/settings.h"
#include "tests/support/session_fixture.h"

namespace {

TEST(Settings, AreReadByKeyAndName) {
    const std::string text =
        "\xef\xbb\xbf# head\n"
        "Before = a key\n"
        "[A\\B]\r\n"
        "Text = two words \r\n"
        "Quoted = \" x \"\n"
        "Half = \"x\n"
        "Empty =\n"
        "Name=number:0x10\n"
        "Minus = number: -2\n"
        "Bytes = bytes:00 fF\n"
        "None = bytes:\n"
        "@ = own\n"
        "[A]\n"
        "Text = other\n"
        "[/a/b/]\n"
        "Text = bl\xc3\xa5 \xc3\x98\n"
        "[A\\B\\C]\nText = deep";
    const host::SettingsText found = host::settingsOf(text, "\\a\\B");
    EXPECT_TRUE(found.hasKey);
    EXPECT_TRUE(found.badLines.empty());
    const auto words = [](uint32_t number) { return std::string(reinterpret_cast<const char*>(&number), 4); };
    using namespace std::string_literals;
    const std::vector<std::tuple<std::string, uint32_t, std::string>> expected = {
        {"text", WIN32_VALUE_TEXT, "bl\xe5 \xd8\0"s},
        {"quoted", WIN32_VALUE_TEXT, " x \0"s},
        {"half", WIN32_VALUE_TEXT, "\"x\0"s},
        {"empty", WIN32_VALUE_TEXT, "\0"s},
        {"name", WIN32_VALUE_NUMBER, words(16)},
        {"minus", WIN32_VALUE_NUMBER, words(0xFFFFFFFE)},
        {"bytes", WIN32_VALUE_BYTES, "\0\xff"s},
        {"none", WIN32_VALUE_BYTES, ""},
        {"", WIN32_VALUE_TEXT, "own\0"s},
    };
    EXPECT_EQ(found.settings.size(), expected.size());
    for (const auto& [name, kind, bytes] : expected) {
        ASSERT_TRUE(found.settings.contains(name)) << name;
        EXPECT_EQ(found.settings.at(name).kind, kind) << name;
        EXPECT_EQ(found.settings.at(name).bytes, bytes) << name;
    }
    EXPECT_FALSE(host::settingsOf(text, "B").hasKey);
    EXPECT_FALSE(host::settingsOf("", "").hasKey);
}

TEST(Settings, LinesThatAreNoneAreCounted) {
    const host::SettingsText found = host::settingsOf(
        "[K]\nno sign\n= x\n[open\nA = number:x\nB = number:99999999999\nC = bytes:1 2\nD = bytes:gg\nE = good\n", "k");
    EXPECT_EQ(found.badLines, (std::vector<int>{2, 3, 4, 5, 6, 7, 8}));
}

using SettingCalls = SessionTest;

TEST_F(SettingCalls, GiveKindSizeAndBytes) {
    mdlSystem_defineCfgVar("MC_USER_SETTINGS", writeFile("user.txt", "[K]\nText = abc\nbad\n@ = own\n").c_str(), 4);
    void* key = nullptr;
    EXPECT_EQ(RegOpenKeyExA(nullptr, "K", 0, 1, &key), WIN32_INVALID_HANDLE);
    EXPECT_EQ(RegOpenKeyExA(WIN32_CURRENT_USER, "none", 0, 1, &key), WIN32_FILE_NOT_FOUND);
    EXPECT_EQ(key, nullptr);
    front().clear();
    ASSERT_EQ(RegOpenKeyExA(WIN32_CURRENT_USER, "K", 0, 1, &key), WIN32_SUCCESS);
    ASSERT_EQ(front().messages.size(), 1u);
    EXPECT_NE(front().messages[0].brief.find("user.txt:3: "), std::string::npos);
    char data[4] = "...";
    uint32_t size = 3, type = 0;
    EXPECT_EQ(RegQueryValueExA(key, "TEXT", nullptr, &type, data, &size), WIN32_MORE_DATA);
    EXPECT_EQ(size, 4u);
    EXPECT_STREQ(data, "...");
    EXPECT_EQ(RegQueryValueExA(key, "TEXT", nullptr, &type, data, &size), WIN32_SUCCESS);
    EXPECT_STREQ(data, "abc");
    EXPECT_EQ(RegQueryValueExA(key, nullptr, nullptr, nullptr, nullptr, &size), WIN32_SUCCESS);
    EXPECT_EQ(size, 4u);
    EXPECT_EQ(RegQueryValueExA(key, "none", nullptr, nullptr, nullptr, nullptr), WIN32_FILE_NOT_FOUND);
    EXPECT_EQ(RegCloseKey(key), WIN32_SUCCESS);
    EXPECT_EQ(RegCloseKey(key), WIN32_INVALID_HANDLE);
    EXPECT_EQ(RegQueryValueExA(key, "Text", nullptr, nullptr, nullptr, nullptr), WIN32_INVALID_HANDLE);
}

TEST(NetworkNames, ComeFromTheDeepestMount) {
    constexpr const char* mounts =
        "/dev/sda1 / ext4 rw 0 0\n"
        "//srv/Plans /net/plans cifs rw 0 0\n"
        "box:/export/jobs /net/jobs nfs4 rw 0 0\n"
        "tmpfs /net/plans/tmp tmpfs rw 0 0\n"
        "//srv/a\\040b /net/a\\040b cifs rw 0 0\n"
        "//srv/odd /net/odd ext4 rw 0 0\n"
        "broken\n";
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"/net/plans/a/b.mcd", "\\\\srv\\Plans\\a\\b.mcd"},
        {"/net/plans", "\\\\srv\\Plans"},
        {"/net/./plans/x/../b", "\\\\srv\\Plans\\b"},
        {"/net/jobs/b", "\\\\box\\export\\jobs\\b"},
        {"/net/a b/c", "\\\\srv\\a b\\c"},
        {"/net/plansx/b", ""},
        {"/net/plans/tmp/b", ""},
        {"/net/odd/b", ""},
        {"/home/b", ""},
        {"", ""},
    };
    for (const auto& [path, name] : cases) EXPECT_EQ(host::universalName(path, mounts), name) << path;
    EXPECT_EQ(host::universalName("/a/b", "//srv/root / cifs rw 0 0\n"), "\\\\srv\\root\\a\\b");
}

}  // namespace
