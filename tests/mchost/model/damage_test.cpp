// Files that aren't whole design files: refused with one clear line, and left as they are.
#include <sqlite3.h>

#include <fstream>
#include <functional>
#include <random>

#include "mchost/mdl/files.h"
#include "mchost/mdl/level.h"
#include "mchost/mdl/reference.h"
#include "mchost/mdl/text.h"
#include "mchost/mdl/view.h"
#include "tests/mchost/model/model_fixture.h"
#include "tests/support/model_digests.h"

namespace {

class DamagedFile : public DesignFileTest {
  protected:
    // A file with elements, levels and styles, and with free pages from what was deleted.
    void makeWhole() {
        create();
        open();
        LevelId level = 0;
        for (const wchar_t* name : {L"Kerb", L"Centre line"}) mdlLevel_create(&level, nullptr, name);
        mdlLevelTable_rewrite(nullptr);
        const double dashes[] = {2, 1};
        mdlLineStyle_define(nullptr, nullptr, "fence", dashes, 2);
        mdlTextStyle_define(nullptr, L"Large", nullptr, nullptr);
        const Point3d clip[] = {{0, 0, 0}, {9, 0, 0}, {9, 9, 0}};
        EXPECT_EQ(mdlRefFile_attach(nullptr, nullptr, file.c_str(), nullptr, clip, 3), MDL_SUCCESS);
        ModelRef* second = nullptr;
        EXPECT_EQ(mdlRefFile_attach(&second, nullptr, file.c_str(), nullptr, nullptr, 0), MDL_SUCCESS);
        EXPECT_EQ(mdlElement_add(shape()), 1u);
        EXPECT_EQ(mdlRefFile_setClipElement(1, second), MDL_SUCCESS);
        EXPECT_EQ(mdlRefFile_setLevelOn(second, 2, level, 0), MDL_SUCCESS);
        mdlView_setLevelOn(2, nullptr, level, 0);
        for (uint32_t i = 1; i <= 200; ++i) mdlElement_add(numbered(i, level));
        close();
        whole_ = readFile("a.mcd");
    }
    const std::string& whole() const { return whole_; }

    // Everything that the file holds, as text; nothing when it is refused.
    std::optional<std::string> contents(const std::string& name) {
        ModelRef* model = nullptr;
        if (mdlWorkDgn_openFile(&model, name.c_str()) != MDL_SUCCESS) return std::nullopt;
        std::string text;
        static MSElementBuffer element;
        for (const FilePos position : allPositions(model)) {
            const uint32_t bytes = mdlElement_read(&element, model, position);
            text += std::to_string(position) + ":" + std::string(reinterpret_cast<char*>(&element), bytes);
        }
        for (LevelId id = 1; id < 5; ++id) {
            wchar_t level[512] = L"";
            int32_t code = 0;
            mdlLevel_getName(level, 512, model, id);
            mdlLevel_getCode(&code, model, id);
            for (const wchar_t* c = level; *c != 0; ++c) text += static_cast<char>(*c);
            text += std::to_string(code);
        }
        char style[64] = "";
        double pattern[32] = {};
        mdlLineStyle_nameFromNumber(style, -1, model);
        mdlLineStyle_getPattern(pattern, nullptr, -1, model);
        text += style + std::to_string(pattern[0]) + std::to_string(pattern[1]);
        text += attachmentsOf(model);
        mdlWorkDgn_closeFile(model);
        return text;
    }

    static std::string attachmentsOf(ModelRef* model) {
        std::string text;
        ModelRefIterator* places = nullptr;
        mdlModelRefIterator_create(&places, model, MDL_ITERATE_REFERENCES, 1);
        while (ModelRef* place = mdlModelRefIterator_getNext(places)) {
            Point3d clip[8] = {};
            Transform toParent = {};
            mdlRefFile_getClip(clip, nullptr, place);
            mdlRefFile_getTransform(&toParent, place);
            text += std::to_string(clip[2].x) + std::to_string(toParent.form[0][0]);
        }
        mdlModelRefIterator_free(&places);
        return text;
    }

    // Refused, with one line, as design file and as work file; its bytes as before.
    void expectRefused(const std::string& bytes, const std::string& why) {
        const std::string name = writeFile("bad.mcd", bytes);
        front().clear();
        EXPECT_EQ(mdlSystem_newDesignFile(name.c_str(), 0), MDL_ERROR);
        EXPECT_NE(onlyMessage(name).find(why), std::string::npos);
        EXPECT_FALSE(contents(name));
        front().clear();
        EXPECT_TRUE(readFile("bad.mcd") == bytes) << "it was changed";
        for (const char* companion : {"bad.mcd-wal", "bad.mcd-journal"}) {
            EXPECT_FALSE(std::filesystem::exists(path(companion))) << companion;
        }
    }

    // The whole file after some SQL; then with its digests made right again.
    std::string after(const std::string& sql, bool digests = false) {
        const std::string name = writeFile("changed.mcd", whole_);
        sqlite3* database = nullptr;
        EXPECT_EQ(sqlite3_open(name.c_str(), &database), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
            << sqlite3_errmsg(database);
        if (digests) setModelDigests(database);
        sqlite3_close(database);
        return readFile("changed.mcd");
    }

  private:
    std::string whole_;
};

TEST_F(DamagedFile, ForeignFilesAreRefused) {
    makeWhole();
    expectRefused("", "isn't a design file");
    expectRefused("a text", "isn't a design file");
    expectRefused(std::string(100'000, '\0'), "isn't a design file");
    expectRefused(whole().substr(0, 99), "isn't a design file");
    expectRefused(after("PRAGMA application_id=7"), "isn't a design file");
}

TEST_F(DamagedFile, NewerVersionIsRefused) {
    makeWhole();
    expectRefused(after("PRAGMA user_version=5"), "newer version");
}

TEST_F(DamagedFile, ChangedTablesAreRefused) {
    makeWhole();
    for (const char* sql : {"DELETE FROM chunk",
                            "DELETE FROM model",
                            "UPDATE chunk SET number=1",
                            "UPDATE chunk SET digest=digest+1",
                            "UPDATE chunk SET bytes=substr(bytes,1,length(bytes)-8)",
                            "UPDATE level SET name='Curb' WHERE name='Kerb'",
                            "DELETE FROM level WHERE id=1",
                            "UPDATE line_style SET pattern=zeroblob(8)",
                            "DROP TABLE text_style",
                            "PRAGMA user_version=2",
                            "UPDATE view SET open=1",
                            "DELETE FROM view_level",
                            "UPDATE attachment SET hidden=1",
                            "DELETE FROM attachment_clip",
                            "DELETE FROM attachment_level",
                            "UPDATE model SET next_position=5",
                            "UPDATE model SET next_position=4000000000",
                            "CREATE TABLE more(x)",
                            "INSERT INTO chunk VALUES(1,1,0,x'')",
                            "ALTER TABLE level RENAME COLUMN code TO cod"}) {
        SCOPED_TRACE(sql);
        expectRefused(after(sql), "damaged");
    }
}

// What no call would have taken, in a file whose digests are right.
TEST_F(DamagedFile, TablesThatNoCallWouldMakeAreRefused) {
    makeWhole();
    writeFile("same.mcd", after("UPDATE level SET name=name", true));
    ASSERT_TRUE(contents(path("same.mcd"))) << "the digests aren't made right";
    for (const char* sql : {"UPDATE level SET name='' WHERE id=1",
                            "UPDATE level SET name=printf('%0600d',1) WHERE id=1",
                            "UPDATE level SET id=0 WHERE id=1",
                            "UPDATE level SET code=2147483647 WHERE id=1",
                            "UPDATE level SET style_scale=9e999 WHERE id=1",
                            "UPDATE model SET next_level=2",
                            "UPDATE model SET uor_per_master=0",
                            "UPDATE line_style SET number=-2",
                            "UPDATE line_style SET number=1",
                            "UPDATE line_style SET name=CAST(printf('%064d',1) AS BLOB)",
                            "UPDATE line_style SET pattern=zeroblob(33*8)",
                            "UPDATE line_style SET pattern=x'000000000000F0BF'",
                            "UPDATE text_style SET name=''",
                            "UPDATE text_style SET width=-9e999",
                            "UPDATE attachment SET number=0 WHERE number=1",
                            "UPDATE attachment SET file=''",
                            "UPDATE attachment SET clip=zeroblob(32) WHERE number=1",
                            "UPDATE attachment SET clip=zeroblob(50)",
                            "UPDATE attachment SET transform=zeroblob(96)",
                            "UPDATE attachment SET transform=zeroblob(80)",
                            "DELETE FROM view WHERE number=8",
                            "UPDATE view SET number=9 WHERE number=8",
                            "UPDATE view SET controls=1",
                            "UPDATE view SET rotation=zeroblob(72)",
                            "UPDATE view SET extent=x'000000000000F03F'",
                            "UPDATE view SET extent=x'000000000000F03F000000000000F07F0000000000000000'",
                            "UPDATE view_level SET view=9",
                            "UPDATE view_level SET name=''",
                            "UPDATE attachment_clip SET element=0",
                            "UPDATE attachment_clip SET attachment=1",
                            "UPDATE attachment_clip SET attachment=3",
                            "UPDATE attachment_level SET attachment=3",
                            "UPDATE attachment_level SET view=0",
                            "UPDATE attachment_level SET name=''",
                            "UPDATE chunk SET number=0.5"}) {
        SCOPED_TRACE(sql);
        expectRefused(after(sql, true), "damaged");
    }
}

TEST_F(DamagedFile, TruncatedFilesAreRefused) {
    makeWhole();
    for (size_t size = 100; size < whole().size(); size += 1777) {
        SCOPED_TRACE(size);
        expectRefused(whole().substr(0, size), "damaged");
    }
}

// A flipped bit is found, or lies where it says nothing: the contents are then what they were.
TEST_F(DamagedFile, FlippedBitsAreFoundOrHarmless) {
    makeWhole();
    const std::optional<std::string> expected = contents(file);
    ASSERT_TRUE(expected);
    std::mt19937 random(20240229);
    const std::string name = path("flipped.mcd");
    size_t refused = 0;
    for (int round = 0; round < 900; ++round) {
        std::string bytes = whole();
        // Every third flip goes into the first page, where the file describes itself.
        const size_t bit = random() % (8 * (round % 3 == 0 ? 4096 : bytes.size()));
        bytes[bit / 8] = static_cast<char>(bytes[bit / 8] ^ (1 << bit % 8));
        writeFile("flipped.mcd", bytes);
        const std::optional<std::string> got = contents(name);
        refused += !got;
        ASSERT_TRUE(!got || *got == *expected) << "bit " << bit;
        ASSERT_TRUE(readFile("flipped.mcd") == bytes) << "bit " << bit;
    }
    EXPECT_GT(refused, 100u);
}

}  // namespace
