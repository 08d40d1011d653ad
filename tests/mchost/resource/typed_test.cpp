// Typed blocks and string lists in resource files: what is stored, what is refused, and what damage does.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <string>

#include "mchost/mdl/files.h"
#include "mchost/mdl/lists.h"
#include "mchost/mdl/resource.h"
#include "mchost/resource/container.h"
#include "mchost/resource/store.h"
#include "tests/support/child.h"
#include "tests/support/session_fixture.h"

namespace {

constexpr int32_t type = MDL_RSC_TYPE('T', 'e', 's', 't');
static_assert(type == 0x54657374);

void execute(const std::string& file, const std::string& sql) {
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(file.c_str(), &db), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(db);
    sqlite3_close(db);
}

class Typed : public SessionTest {
  protected:
    std::string make(const char* name) {
        EXPECT_EQ(mdlResource_createFile(path(name).c_str(), "Tests", MDL_RSC_WRITE), MDL_SUCCESS);
        return path(name);
    }
    RscHandle open(const std::string& file, int mode = MDL_RSC_WRITE) {
        RscHandle handle = 0;
        EXPECT_EQ(mdlResource_openFile(&handle, file.c_str(), mode), MDL_SUCCESS);
        return handle;
    }
    static int add(RscHandle file, int32_t id, const std::string& bytes) {
        return mdlResource_add(file, type, id, bytes.data(), static_cast<int32_t>(bytes.size()), 0, "name");
    }
    static std::string load(RscHandle file, int32_t id) {
        void* block = mdlResource_load(file, type, id);
        if (!block) return "(none)";
        std::string bytes(static_cast<char*>(block), static_cast<size_t>(mdlResource_size(block)));
        EXPECT_EQ(mdlResource_free(block), MDL_SUCCESS);
        return bytes;
    }
    // Loads a block, changes it and writes it back.
    static int rewrite(RscHandle file, int32_t id, const std::string& bytes) {
        void* block = mdlResource_load(file, type, id);
        if (!block || mdlResource_size(block) < static_cast<int32_t>(bytes.size())) return -1;
        std::memcpy(block, bytes.data(), bytes.size());
        const int status = mdlResource_write(block);
        mdlResource_free(block);
        return status;
    }
};

TEST_F(Typed, BlocksOfAllSizesComeBackFromTheFile) {
    const std::string file = make("a.rsc");
    const std::string big(1'000'000, 'b');
    const std::string withNul("a\0b", 3);
    RscHandle handle = open(file);
    EXPECT_EQ(add(handle, 1, ""), MDL_SUCCESS);
    EXPECT_EQ(add(handle, -2, withNul), MDL_SUCCESS);
    EXPECT_EQ(add(handle, INT32_MAX, big), MDL_SUCCESS);
    EXPECT_EQ(mdlResource_closeFile(handle), MDL_SUCCESS);
    EXPECT_FALSE(std::filesystem::exists(file + "-wal")) << "a closed file is one file";

    handle = open(file, MDL_RSC_READ);
    EXPECT_EQ(load(handle, 1), "");
    EXPECT_EQ(load(handle, -2), withNul);
    EXPECT_EQ(load(handle, INT32_MAX), big);
    EXPECT_EQ(load(handle, 2), "(none)");
    EXPECT_EQ(mdlResource_load(handle, type + 1, 1), nullptr);
    EXPECT_TRUE(front().messages.empty()) << "a resource that isn't there is no fault";
}

TEST_F(Typed, AddingLeavesWhatIsThereAndWritingReplacesIt) {
    const RscHandle handle = open(make("a.rsc"));
    EXPECT_EQ(add(handle, 1, "old"), MDL_SUCCESS);
    EXPECT_EQ(add(handle, 1, "new"), MDL_ERROR);
    EXPECT_EQ(load(handle, 1), "old");
    EXPECT_EQ(rewrite(handle, 1, "new"), MDL_SUCCESS);
    EXPECT_EQ(load(handle, 1), "new");
    for (const int32_t size : {-1, 1'000'000'001})
        EXPECT_EQ(mdlResource_add(handle, type, 9, "x", size, 0, ""), MDL_ERROR);
    EXPECT_EQ(mdlResource_add(handle, type, 9, nullptr, 1, 0, ""), MDL_ERROR);
    EXPECT_EQ(mdlResource_add(handle + 1, type, 9, "x", 1, 0, ""), MDL_ERROR);
}

TEST_F(Typed, ABlockOutlivesItsFileButIsNotWrittenAnyMoreAndIsGivenBackOnce) {
    const std::string file = make("a.rsc");
    const RscHandle handle = open(file);
    ASSERT_EQ(add(handle, 1, "text"), MDL_SUCCESS);
    void* block = mdlResource_load(handle, type, 1);
    ASSERT_EQ(mdlResource_closeFile(handle), MDL_SUCCESS);
    EXPECT_EQ(mdlResource_size(block), 4);
    EXPECT_EQ(mdlResource_write(block), MDL_ERROR);
    EXPECT_EQ(mdlResource_free(block), MDL_SUCCESS);
    EXPECT_EQ(mdlResource_free(block), MDL_ERROR);
    EXPECT_EQ(mdlResource_size(block), 0);
    EXPECT_EQ(mdlResource_free(nullptr), MDL_SUCCESS);
}

TEST_F(Typed, AFileThatLostItsNameTakesNoMore) {
    for (const bool replaced : {false, true}) {
        SCOPED_TRACE(replaced);
        const std::string file = make("a.rsc");
        const RscHandle handle = open(file);
        ASSERT_EQ(add(handle, 1, "kept"), MDL_SUCCESS);
        std::filesystem::remove(file);
        if (replaced) std::filesystem::rename(make("b.rsc"), file);
        front().clear();
        EXPECT_EQ(add(handle, 2, "nowhere"), MDL_ERROR);
        EXPECT_EQ(rewrite(handle, 1, "none"), MDL_ERROR);
        ASSERT_EQ(front().messages.size(), 2u);
        EXPECT_THAT(front().messages[0].brief, testing::HasSubstr(file + ": the file was removed or replaced"));
        mdlResource_closeFile(handle);
        EXPECT_EQ(load(replaced ? open(file) : 0, 2), "(none)");
        std::filesystem::remove(file);
    }
}

TEST_F(Typed, WhyAFileCannotBeReadIsToldOnce) {
    const std::string file = writeFile("a.rsc", std::string(4096, 'x')), whole = make("b.rsc");
    RscHandle handle = 0;
    for (const int mode : {MDL_RSC_WRITE, MDL_RSC_READ, MDL_RSC_WRITE})
        EXPECT_EQ(mdlResource_openFile(&handle, file.c_str(), mode), MDL_ERROR);
    EXPECT_EQ(mdlResource_createFile(file.c_str(), "", MDL_RSC_WRITE), MDL_ERROR);
    EXPECT_EQ(front().messages.size(), 1u);
    std::filesystem::copy_file(whole, file, std::filesystem::copy_options::overwrite_existing);
    mdlResource_closeFile(open(file));
    writeFile("a.rsc", std::string(4096, 'x'));
    EXPECT_EQ(mdlResource_openFile(&handle, file.c_str(), MDL_RSC_READ), MDL_ERROR);
    EXPECT_EQ(front().messages.size(), 2u) << "it had become whole in between";
}

TEST_F(Typed, WithoutAHandleTheFilesOfTheApplicationAreSearchedLastOpenedFirst) {
    const std::string first = make("a.rsc"), second = make("b.rsc");
    asApplication("one", [&] {
        const RscHandle a = open(first), b = open(second);
        add(a, 1, "a");
        add(a, 2, "a");
        add(b, 2, "b");
        EXPECT_EQ(load(0, 1), "a");
        EXPECT_EQ(load(0, 2), "b");
        EXPECT_EQ(add(0, 3, "nowhere"), MDL_ERROR);
    });
    session().endApplication(application("one"));
    EXPECT_EQ(load(0, 1), "(none)") << "files of an application that has ended are closed";
}

TEST_F(Typed, AFileOpenedForReadingIsNotWrittenTo) {
    const std::string file = make("a.rsc");
    RscHandle handle = open(file);
    add(handle, 1, "old");
    mdlResource_closeFile(handle);
    handle = open(file, MDL_RSC_READ);
    EXPECT_EQ(add(handle, 2, "new"), MDL_RSC_READ_ONLY);
    EXPECT_EQ(rewrite(handle, 1, "new"), MDL_RSC_READ_ONLY);
    EXPECT_EQ(load(handle, 1), "old");
    ASSERT_EQ(front().messages.size(), 2u);
    EXPECT_THAT(front().messages[0].brief, testing::HasSubstr("opened for reading"));
}

TEST_F(Typed, AWriteProtectedFileOpensForReadingAlone) {
    const std::string file = make("a.rsc");
    RscHandle handle = open(file);
    add(handle, 1, "text");
    mdlResource_closeFile(handle);
    const WriteProtection protection(file);
    EXPECT_EQ(mdlResource_openFile(&handle, file.c_str(), MDL_RSC_WRITE), MDL_ERROR);
    EXPECT_TRUE(front().messages.empty()) << "the caller judges";
    EXPECT_EQ(mdlResource_createFile(file.c_str(), "", MDL_RSC_WRITE), MDL_RSC_READ_ONLY);
    EXPECT_EQ(mdlResource_createFile(path("new.rsc").c_str(), "", MDL_RSC_WRITE), MDL_RSC_READ_ONLY);
    EXPECT_EQ(load(open(file, MDL_RSC_READ), 1), "text");
}

TEST_F(Typed, AFileThatBecomesWriteProtectedKeepsWhatItHolds) {
    const std::string file = make("a.rsc");
    RscHandle handle = open(file);
    add(handle, 1, "text");
    mdlResource_closeFile(handle);
    handle = open(file);
    const WriteProtection protection(file);
    EXPECT_EQ(rewrite(handle, 1, "next"), MDL_RSC_READ_ONLY);
    EXPECT_EQ(load(handle, 1), "text");
}

TEST_F(Typed, AFullDiskKeepsTheOldContent) {
    const std::string file = make("a.rsc");
    {
        host::ResourceStore store(file);
        store.put(host::Put::add, type, 1, std::as_bytes(std::span("old", 3)), 0, "");
    }
    const int status = inChild([&] {
        limitFileSize(200'000);
        const std::string big(1'000'000, 'x');
        try {
            host::ResourceStore store(file);
            store.put(host::Put::replace, type, 1, std::as_bytes(std::span(big)), 0, "");
        } catch (const host::StoreFailure& failure) {
            return failure.readOnly ? 2 : 0;
        }
        return 1;
    });
    EXPECT_EQ(status, 0) << "1: the write went well, 2: it was taken for a protected file";
    EXPECT_EQ(load(open(file), 1), "old");
}

TEST_F(Typed, MakingAFileEmptiesAResourceFileAndLeavesOthersAlone) {
    const std::string file = make("a.rsc");
    RscHandle handle = open(file);
    add(handle, 1, "text");
    mdlResource_closeFile(handle);
    EXPECT_EQ(mdlResource_createFile(file.c_str(), "Anew", MDL_RSC_WRITE), MDL_SUCCESS);
    handle = open(file);
    EXPECT_EQ(load(handle, 1), "(none)");
    EXPECT_EQ(host::ResourceStore(file).title(), "Anew");
    mdlResource_closeFile(handle);

    const std::string design = path("d.mcd");
    writeFile("text.rsc", "some text");
    std::filesystem::create_directory(path("folder.rsc"));
    for (const char* name : {"text.rsc", "folder.rsc", "no/such.rsc", ""}) {
        SCOPED_TRACE(name);
        front().clear();
        const std::string whole = *name ? path(name) : "";
        EXPECT_EQ(mdlResource_createFile(whole.c_str(), "", MDL_RSC_WRITE), MDL_ERROR);
        EXPECT_EQ(front().messages.size(), 1u);
    }
    EXPECT_EQ(readFile("text.rsc"), "some text");
    EXPECT_EQ(mdlResource_createFile(writeFile("empty.rsc", "").c_str(), "", MDL_RSC_WRITE), MDL_SUCCESS);
    open(path("empty.rsc"));
    for (const auto& entry : std::filesystem::directory_iterator(path("")))
        EXPECT_THAT(entry.path().string(), testing::Not(testing::HasSubstr(".new"))) << "no scaffolding stays";
}

TEST_F(Typed, CompiledTextsStayBesideWhatIsAdded) {
    host::ResourceContents contents;
    contents.strings[{1, 1}].set("en", "text");
    host::writeContainer(path("a.rsc"), contents);
    const RscHandle handle = open(path("a.rsc"));
    EXPECT_EQ(load(handle, 1), "(none)");
    EXPECT_EQ(add(handle, 1, "block"), MDL_SUCCESS);
    mdlResource_closeFile(handle);
    const RscHandle again = open(path("a.rsc"), MDL_RSC_READ);
    char buffer[512];
    EXPECT_EQ(mdlResource_loadFromStringList(buffer, again, 1, 1), MDL_SUCCESS);
    EXPECT_STREQ(buffer, "text");
    EXPECT_EQ(load(again, 1), "block");
}

// ---- string lists ----

StringList* listOf(std::initializer_list<const char*> texts, int32_t fields) {
    StringList* list = mdlStringList_create(static_cast<int32_t>(texts.size()), fields);
    int32_t place = 0;
    for (const char* text : texts) {
        mdlStringList_setMember(list, place, text, nullptr);
        for (int32_t field = 0; field < fields; ++field)
            mdlStringList_setInfoField(list, place, field, place * 10 - field - 1);
        ++place;
    }
    return list;
}

// "text(info,info)" of each member.
std::string told(const StringList* list, int32_t fields) {
    if (!list) return "(none)";
    std::string all;
    for (int32_t i = 0; i < mdlStringList_size(list); ++i) {
        const char* text = nullptr;
        mdlStringList_getMember(&text, nullptr, list, i);
        all += text;
        for (int32_t field = 0; field < fields; ++field) {
            int32_t value = 0;
            EXPECT_EQ(mdlStringList_getInfoField(&value, list, i, field), MDL_SUCCESS);
            all += (field == 0 ? "(" : ",") + std::to_string(value);
        }
        all += fields > 0 ? ")" : ";";
    }
    return all;
}

std::string stored(RscHandle file, int32_t id, int32_t fields) {
    StringList* list = mdlStringList_loadResource(file, id);
    const std::string text = told(list, fields);
    mdlStringList_destroy(list);
    return text;
}

TEST_F(Typed, StringListsKeepTextsAndInfoFields) {
    const std::string file = make("a.rsc");
    RscHandle handle = open(file);
    StringList* list = listOf({"one", "", "tre \xe5"}, 2);
    StringList* shorter = listOf({"only"}, 0);
    StringList* empty = mdlStringList_create(0, 3);
    EXPECT_EQ(mdlStringList_writeResource(list, handle, 1, ""), MDL_ERROR) << "there is none to replace";
    EXPECT_EQ(mdlStringList_addResource(handle, 1, list, "name"), MDL_SUCCESS);
    EXPECT_EQ(mdlStringList_addResource(handle, 1, shorter, "name"), MDL_ERROR);
    EXPECT_EQ(mdlStringList_addResource(handle, 2, list, "name"), MDL_SUCCESS);
    EXPECT_EQ(mdlStringList_writeResource(shorter, handle, 2, "name"), MDL_SUCCESS);
    EXPECT_EQ(mdlStringList_addResource(handle, 3, empty, nullptr), MDL_SUCCESS);
    mdlResource_closeFile(handle);
    handle = open(file, MDL_RSC_READ);
    EXPECT_EQ(stored(handle, 1, 2), "one(-1,-2)(9,8)tre \xe5(19,18)");
    EXPECT_EQ(stored(handle, 2, 0), "only;");
    EXPECT_EQ(stored(handle, 3, 3), "");
    EXPECT_EQ(stored(handle, 4, 0), "(none)");
    EXPECT_EQ(mdlStringList_writeResource(list, handle, 1, ""), MDL_RSC_READ_ONLY);
    for (StringList* each : {list, shorter, empty}) mdlStringList_destroy(each);
}

// ---- damage ----

TEST_F(Typed, DamagedContentIsToldAndNeverReadBeyond) {
    struct Case {
        const char* what;
        std::string sql;
        std::string block, list;  // what is read afterwards
        const char* line;         // of the message centre
    };
    const std::string sound = "abc", members = "a(-1)b(9)c(19)";
    const Case cases[] = {
        {"nothing", "", sound, members, nullptr},
        {"another byte in a block", "UPDATE block SET data = 'abd'", "(none)", members, "is damaged"},
        {"a block cut short", "UPDATE block SET data = 'ab'", "(none)", members, "is damaged"},
        {"a block under another id", "UPDATE block SET id = 1 WHERE id = 2; UPDATE block SET type = 5 WHERE id = 9",
         sound, members, nullptr},
        {"a number for a block", "UPDATE block SET data = 123", "(none)", members, "is damaged"},
        {"a member missing", "DELETE FROM member WHERE place = 1", sound, "a(-1)", "behind its first 1"},
        {"the first member missing", "DELETE FROM member WHERE place = 0", sound, "", "behind its first 0"},
        {"the last member missing", "DELETE FROM member WHERE place = 2", sound, "a(-1)b(9)", "behind its first 2"},
        {"members that nobody counted", "UPDATE list SET members = 2", sound, "a(-1)b(9)", nullptr},
        {"more members counted", "UPDATE list SET members = 60000", sound, members, "behind its first 3"},
        {"a count that lies", "UPDATE list SET members = 3000000000", sound, "(none)", "is damaged"},
        {"a negative count", "UPDATE list SET members = -1", sound, "(none)", "is damaged"},
        {"negative fields", "UPDATE list SET fields = -1", sound, "(none)", "is damaged"},
        {"info cut short", "UPDATE member SET info = x'00' WHERE place = 1", sound, "a(-1)", "behind its first 1"},
        {"no table of members", "DROP TABLE member", sound, "(none)", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const std::string file = make("damage.rsc");
        RscHandle handle = open(file);
        StringList* list = listOf({"a", "b", "c"}, 1);
        add(handle, 1, sound);
        mdlStringList_addResource(handle, 1, list, "");
        mdlStringList_destroy(list);
        mdlResource_closeFile(handle);
        execute(file, c.sql);
        front().clear();
        handle = open(file);
        EXPECT_EQ(load(handle, 1), c.block);
        EXPECT_EQ(stored(handle, 1, 1), c.list);
        ASSERT_EQ(front().messages.size(), c.line ? 1u : 0u);
        if (c.line) {
            EXPECT_THAT(front().messages[0].brief,
                        testing::AllOf(testing::HasSubstr("damage.rsc: "), testing::HasSubstr(c.line)));
        }
        mdlResource_closeFile(handle);
    }
}

}  // namespace
