// Resource files as applications see them: languages, the order of search, sharing, and files that are refused.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <cstring>
#include <filesystem>

#include "mchost/base/sqlite.h"
#include "mchost/mdl/dialog.h"
#include "mchost/mdl/resource.h"
#include "mchost/mdl/system.h"
#include "mchost/resource/container.h"
#include "tests/support/session_fixture.h"

namespace {

using host::ResourceContents;

constexpr int32_t list = 20005;

ResourceContents withText(int32_t number, const std::string& english, const std::string& norwegian = {}) {
    ResourceContents contents;
    contents.strings[{list, number}].set("en", english);
    if (!norwegian.empty()) contents.strings[{list, number}].set("no", norwegian);
    return contents;
}

std::string load(RscHandle file, int32_t number) {
    char buffer[512];
    std::memset(buffer, '~', sizeof buffer);
    if (mdlResource_loadFromStringList(buffer, file, list, number) != MDL_SUCCESS) {
        EXPECT_EQ(buffer[0], '~') << "a failed load leaves the buffer as it was";
        return "(none)";
    }
    return buffer;
}

class ResourceFile : public SessionTest {
  protected:
    std::string make(std::string_view name, const ResourceContents& contents) {
        host::writeContainer(path(name), contents);
        return path(name);
    }
    RscHandle open(const std::string& file) {
        RscHandle handle = -1;
        EXPECT_EQ(mdlResource_openFile(&handle, file.c_str(), MDL_RSC_READ), MDL_SUCCESS);
        return handle;
    }
};

TEST_F(ResourceFile, TextsComeInTheLanguageOfTheUserAndElseInEnglish) {
    ResourceContents contents = withText(1, "wrong", "\xe6\xf8\xe5 feil");
    contents.strings[{list, 2}].set("en", "English alone");
    const RscHandle file = open(make("a.rsc", contents));
    EXPECT_EQ(load(file, 1), "wrong");
    mdlSystem_defineCfgVar("MS_LANGUAGE", "NO", 4);
    EXPECT_EQ(load(file, 1), "\xe6\xf8\xe5 feil");
    EXPECT_EQ(load(file, 2), "English alone");
    EXPECT_EQ(load(file, 3), "(none)");
    mdlSystem_defineCfgVar("MS_LANGUAGE", "fr", 4);
    EXPECT_EQ(load(file, 1), "wrong");
}

TEST_F(ResourceFile, AnyOpenFileMeansTheApplicationsOwnFirstAndTheLastOpenedOfThose) {
    const std::string first = make("first.rsc", withText(1, "first"));
    const std::string second = make("second.rsc", withText(1, "second"));
    ResourceContents both = withText(1, "other's");
    both.strings[{list, 2}].set("en", "only there");
    const std::string others = make("others.rsc", both);

    asApplication("one", [&] { return open(first), open(second); });
    asApplication("two", [&] { return open(others); });
    asApplication("one", [&] {
        EXPECT_EQ(load(0, 1), "second");
        EXPECT_EQ(load(0, 2), "only there");
    });
    asApplication("two", [&] { EXPECT_EQ(load(0, 1), "other's"); });
}

TEST_F(ResourceFile, FilesOfAnApplicationCloseWhenItEnds) {
    const std::string file = make("a.rsc", withText(1, "text"));
    const RscHandle handle = asApplication("one", [&] { return open(file); });
    EXPECT_EQ(load(handle, 1), "text");
    session().endApplication(application("one"));
    EXPECT_EQ(load(handle, 1), "(none)");
    EXPECT_EQ(mdlResource_closeFile(handle), MDL_ERROR);
}

TEST_F(ResourceFile, AFileThatChangedOnDiskIsReadAnewAndTheOpenOneStays) {
    const std::string file = make("a.rsc", withText(1, "before"));
    const RscHandle before = open(file);
    make("a.rsc", withText(1, "after, and longer"));
    const RscHandle after = open(file);
    EXPECT_EQ(load(before, 1), "before");
    EXPECT_EQ(load(after, 1), "after, and longer");
    EXPECT_EQ(mdlResource_closeFile(after), MDL_SUCCESS);
    EXPECT_EQ(load(before, 1), "before");
}

TEST_F(ResourceFile, ATextLongerThanTheBufferIsCut) {
    const RscHandle file = open(make("a.rsc", withText(1, std::string(600, 'x'))));
    EXPECT_EQ(load(file, 1), std::string(511, 'x'));
}

TEST_F(ResourceFile, AnApplicationWithoutItsOwnFileTakesTheOneThatTheVariableNames) {
    RscHandle handle = -1;
    EXPECT_EQ(mdlResource_openFile(&handle, nullptr, MDL_RSC_READ), MDL_ERROR);
    EXPECT_EQ(handle, 0);
    EXPECT_TRUE(front().messages.empty());
    mdlSystem_defineCfgVar("MS_APPRSC", path("none.rsc").c_str(), 1);
    EXPECT_EQ(mdlResource_openFile(&handle, nullptr, MDL_RSC_READ), MDL_ERROR);
    ASSERT_EQ(front().messages.size(), 1u);
    EXPECT_NE(front().messages[0].brief.find("none.rsc"), std::string::npos);
    mdlSystem_defineCfgVar("MS_APPRSC", make("shared.rsc", withText(1, "shared")).c_str(), 1);
    EXPECT_EQ(mdlResource_openFile(&handle, nullptr, MDL_RSC_READ), MDL_SUCCESS);
    EXPECT_EQ(load(handle, 1), "shared");
}

TEST_F(ResourceFile, AnApplicationsOwnFileLiesBeforeTheSharedOne) {
    ResourceContents shared = withText(1, "shared");
    shared.strings[{list, 2}].set("en", "shared alone");
    mdlSystem_defineCfgVar("MS_APPRSC", make("shared.rsc", shared).c_str(), 1);
    make("mine.rsc", withText(1, "mine"));
    std::filesystem::copy(BUILD_DIR "/lib/tests/probe.so", path("mine.so"));
    ASSERT_NE(session().loadApplication(path("mine.so"), "mine"), nullptr);
    asApplication("mine", [&] {
        RscHandle own = 0;
        EXPECT_EQ(mdlResource_openFile(&own, nullptr, MDL_RSC_READ), MDL_SUCCESS);
        EXPECT_EQ(load(0, 1), "mine");
        EXPECT_EQ(load(0, 2), "shared alone");
    });
    session().endApplication(application("mine"));
    EXPECT_EQ(load(0, 2), "(none)");
}

TEST_F(ResourceFile, OpeningForWritingMakesNoFile) {
    RscHandle handle = 0;
    for (const int mode : {MDL_RSC_READ, MDL_RSC_WRITE})
        EXPECT_EQ(mdlResource_openFile(&handle, path("new.rsc").c_str(), mode), MDL_ERROR);
    EXPECT_FALSE(std::filesystem::exists(path("new.rsc")));
    EXPECT_TRUE(front().messages.empty());
}

void execute(const std::string& file, const char* sql) {
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(file.c_str(), &db), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(db, sql, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(db);
    sqlite3_close(db);
}

TEST_F(ResourceFile, ForeignAndDamagedFilesAreRefusedWithOneLineAndStayAsTheyAre) {
    ResourceContents contents = withText(1, "text");
    for (int32_t i = 2; i < 300; ++i) contents.strings[{list, i}].set("en", "some text to fill the pages");
    contents.dialogs[1] = {1, 10, 10, 0, {}, {{ITEM_LABEL, 1, 0, 0, 5, 5, 0, "", "", {}, {}}}};
    const std::string sound = make("sound.rsc", contents);
    const std::string bytes = readFile("sound.rsc");

    const auto changed = [&](const char* name, const char* sql) {
        writeFile(name, bytes);
        execute(path(name), sql);
        return path(name);
    };
    struct Case {
        const char* what;
        std::string file;
        const char* line;
    };
    std::string noise = bytes;
    for (size_t i = 4096; i < noise.size(); ++i) noise[i] = static_cast<char>(i * 7);
    const Case cases[] = {
        {"a text file", writeFile("text.rsc", std::string(2000, 't')), "this is no resource file"},
        {"an empty file", writeFile("empty.rsc", ""), "this is no resource file"},
        {"the head alone", writeFile("head.rsc", bytes.substr(0, 100)), "can be made again"},
        {"half of the pages", writeFile("half.rsc", bytes.substr(0, bytes.size() / 2)), "can be made again"},
        {"noise behind the first page", writeFile("noise.rsc", noise), "can be made again"},
        {"another kind of container", changed("kind.rsc", "PRAGMA application_id = 7"), "this is no resource file"},
        {"a newer format", changed("newer.rsc", "PRAGMA user_version = 99"), "a newer version"},
        {"no tables", changed("tables.rsc", "DROP TABLE item"), "no such table: item"},
        {"an item without a dialog", changed("orphan.rsc", "UPDATE item SET dialog = 2"), "lacks parts"},
        {"a gap in the items", changed("gap.rsc", "UPDATE item SET place = 1000000"), "gaps"},
        {"a label out of the items", changed("label.rsc", "INSERT INTO label VALUES(1, 77, -1, 'en', 'x')"), "lacks"},
        {"a view in place of a table",
         changed("view.rsc",
                 "DROP TABLE string; CREATE VIEW string AS WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL "
                 "SELECT i + 1 FROM n) SELECT 1 AS list, i AS number, 'en' AS language, 'x' AS text FROM n"),
         "more than resources"},
        {"an icon without its pixels", changed("icon.rsc", "INSERT INTO icon VALUES(1, 40, '##', 'i')"), "pixels"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        front().clear();
        const std::string name = std::filesystem::path(c.file).filename();
        const std::string before = readFile(name);
        RscHandle handle = -1;
        EXPECT_EQ(mdlResource_openFile(&handle, c.file.c_str(), MDL_RSC_READ), MDL_ERROR);
        EXPECT_EQ(handle, 0);
        ASSERT_EQ(front().messages.size(), 1u);
        EXPECT_THAT(front().messages[0].brief, testing::StartsWith(c.file + ": "));
        EXPECT_THAT(front().messages[0].brief, testing::HasSubstr(c.line));
        EXPECT_EQ(readFile(name), before);
    }
}

TEST_F(ResourceFile, LayoutsComeBackAsTheyWereWritten) {
    ResourceContents contents;
    host::DialogLayout& dialog = contents.dialogs[20011];
    dialog = {20011, 300, 140, 20035, {}, {}};
    dialog.title.set("en", "Message");
    dialog.title.set("no", "Melding \xe5");
    host::ItemLayout item{ITEM_OPTION_BUTTON, -7, 1, 2, 3, 4, 9, "mgdP->printDevice", "%d", {}, {}};
    item.label.set("en", "Device");
    item.rows.push_back({5, {}});
    item.rows.push_back({-6, {}});
    item.rows[1].label.set("no", "siste");
    dialog.items = {host::ItemLayout{ITEM_GENERIC, 1, 0, 0, 0, 0, 0, "", "", {}, {}}, item};
    contents.icons[3] = {3, 2, {true, false, false, true}, "!"};
    contents.menus[4] = {4, {}, {{7, 20098, {}}, {-8, 0, {}}}};
    contents.menus[4].title.set("no", "Verkt\xf8y");
    contents.menus[4].entries[1].label.set("en", "Remove");

    const ResourceContents read = host::readContainer(make("layouts.rsc", contents));
    const host::DialogLayout& same = read.dialogs.at(20011);
    EXPECT_EQ(same.title.textIn("no"), "Melding \xe5");
    EXPECT_EQ(same.title.textIn("de"), "Message");
    ASSERT_EQ(same.items.size(), 2u);
    EXPECT_EQ(same.items[1].access, "mgdP->printDevice");
    EXPECT_EQ(same.items[1].label.textIn("en"), "Device");
    ASSERT_EQ(same.items[1].rows.size(), 2u);
    EXPECT_EQ(same.items[1].rows[1].value, -6);
    EXPECT_EQ(same.items[1].rows[1].label.textIn("no"), "siste");
    EXPECT_EQ(read.icons.at(3).pixels, contents.icons[3].pixels);
    const host::MenuLayout& menu = read.menus.at(4);
    EXPECT_EQ(menu.id, 4);
    EXPECT_EQ(menu.title.textIn("no"), "Verkt\xf8y");
    ASSERT_EQ(menu.entries.size(), 2u);
    EXPECT_EQ(menu.entries[0].value, 7);
    EXPECT_EQ(menu.entries[0].hook, 20098);
    EXPECT_EQ(menu.entries[1].label.textIn("en"), "Remove");
}

TEST_F(ResourceFile, AFileFromBeforeThereWereMenusIsRead) {
    ResourceContents contents;
    contents.icons[3] = {3, 1, {true}, "!"};
    const std::string file = make("old.rsc", contents);
    host::Database db;
    db.open(file, SQLITE_OPEN_READWRITE);
    db.run("DROP TABLE entry; DROP TABLE menu_label; PRAGMA user_version = 2");
    db.close();
    EXPECT_EQ(host::readContainer(file).icons.at(3).sign, "!");
}

}  // namespace
