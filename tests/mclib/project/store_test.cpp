// Project and page records in the design file: their bytes, older forms, and what is read, replaced and deleted.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "mchost/dialog/dialog.h"
#include "mchost/mdl/dialog.h"
#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/undo.h"
#include "mclib/project/application_data.h"
#include "mclib/project/records.h"
#include "mclib/project/store.h"
#include "tests/support/drawn.h"
#include "tests/support/library_fixture.h"

using namespace mc;

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

mclibProsjektData projectOf(const char* number, const char* name = "") {
    mclibProsjektData project{};
    std::strcpy(project.pron, number);
    std::strcpy(project.pros[0], name);
    return project;
}

// The texts "<prefix>0", "<prefix>1", ... each with its NUL.
std::string numberedTexts(const char* prefix, int count) {
    std::string payload;
    for (int i = 0; i < count; ++i) (payload += prefix + std::to_string(i)) += '\0';
    return payload;
}

std::span<const uint8_t> bytesOf(const std::string& payload) {
    return {reinterpret_cast<const uint8_t*>(payload.data()), payload.size()};
}

// The fields of a project in the order of its record, as the record's table names them.
std::vector<const char*> projectTexts(const mclibProsjektData& p) {
    std::vector<const char*> texts = {p.pron,  p.pros[0], p.pros[1], p.pros[2], p.pros[3], p.pros[4],
                                      p.kost0, p.kost1,   p.kost2,   p.kost3,   p.kost4,   p.USig,
                                      p.UDat,  p.RSig,    p.RDat,    p.SSig,    p.SDat};
    for (const auto& line : p.tegn) texts.push_back(line);
    texts.insert(texts.end(), {p.UNav, p.RNav, p.SNav});
    return texts;
}

std::vector<const char*> pageTexts(const mclibSideData& s) {
    std::vector<const char*> texts = {s.pageName, s.pros[0], s.pros[1], s.pros[2], s.pros[3], s.USig,
                                      s.UDat,     s.RSig,    s.RDat,    s.SSig,    s.SDat};
    for (const auto& line : s.tegn) texts.push_back(line);
    texts.insert(texts.end(), {s.UNav, s.RNav, s.SNav});
    for (const auto& line : s.kopo) texts.push_back(line);
    texts.push_back(s.revs);
    return texts;
}

std::string joined(const std::vector<const char*>& texts) {
    std::string payload;
    for (const char* text : texts) (payload += text) += '\0';
    return payload;
}

// ---- payloads ----

TEST(ProjectRecord, CurrentFormsStandInTheirOrder) {
    mclibProsjektData project{};
    ASSERT_TRUE(project::unpackRecord(project, 3, bytesOf(numberedTexts("p", 30))));
    EXPECT_EQ(joined(projectTexts(project)), numberedTexts("p", 30));
    EXPECT_EQ(project::packRecord(project), numberedTexts("p", 30));

    mclibSideData page{};
    ASSERT_TRUE(project::unpackRecord(page, 3, bytesOf(numberedTexts("s", 45))));
    EXPECT_EQ(joined(pageTexts(page)), numberedTexts("s", 45));
    EXPECT_EQ(project::packRecord(page), numberedTexts("s", 45));
    EXPECT_EQ(page.wantedPageName[0], '\0');
}

TEST(ProjectRecord, OlderFormsReadIntoTheSameFields) {
    std::string oldest = numberedTexts("p", 27);
    for (const char* text : {"p27", "dropped", "p28", "dropped too", "p29", "last dropped"}) (oldest += text) += '\0';
    for (const auto& [subId, payload] : {std::pair{1, oldest}, {2, numberedTexts("p", 30)}}) {
        mclibProsjektData project{};
        ASSERT_TRUE(project::unpackRecord(project, subId, bytesOf(payload)));
        EXPECT_EQ(joined(projectTexts(project)), numberedTexts("p", 30)) << subId;
    }
    mclibSideData page{};
    ASSERT_TRUE(project::unpackRecord(page, 2, bytesOf(numberedTexts("s", 45))));
    EXPECT_EQ(joined(pageTexts(page)), numberedTexts("s", 24) + std::string(21, '\0'));
}

TEST(ProjectRecord, UnknownFormsLeaveTheBlock) {
    mclibProsjektData project = projectOf("as it was");
    mclibSideData page{};
    for (const int subId : {0, 4, -1})
        EXPECT_FALSE(project::unpackRecord(project, subId, bytesOf(numberedTexts("p", 30))));
    EXPECT_FALSE(project::unpackRecord(page, 1, bytesOf(numberedTexts("s", 45))));
    EXPECT_STREQ(project.pron, "as it was");
}

TEST(ProjectRecord, FullAndOverlongTextsAreCutAtTheirFields) {
    mclibProsjektData full;
    std::memset(&full, 'x', sizeof full);  // no NUL anywhere
    const std::string payload = project::packRecord(full);
    EXPECT_EQ(payload.size(), 1603u);
    mclibProsjektData read{};
    EXPECT_TRUE(project::unpackRecord(read, 3, bytesOf(payload)));
    EXPECT_EQ(std::strlen(read.pron), 30u);
    EXPECT_EQ(std::strlen(read.tegn[9]), 39u);

    std::string overlong(3000, 'y');
    overlong += '\0';
    overlong += "second";
    project::unpackRecord(read, 3, bytesOf(overlong));
    EXPECT_EQ(std::string(read.pron), std::string(30, 'y'));
    EXPECT_STREQ(read.pros[0], "second");
}

TEST(ProjectRecord, PayloadWithoutItsEndIsReadAsFarAsItHolds) {
    const std::string whole = numberedTexts("p", 30);
    for (size_t length = 0; length <= whole.size(); ++length) {
        const std::vector<uint8_t> exact(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        mclibProsjektData project{};
        EXPECT_TRUE(project::unpackRecord(project, 3, exact));
        const std::string texts = joined(projectTexts(project));
        EXPECT_EQ(texts.substr(0, length), whole.substr(0, length));
        EXPECT_EQ(texts.find_first_not_of('\0', length), std::string::npos);
    }
}

// ---- records in the file ----

class ProjectStore : public LibraryTest {
  protected:
    ProjectStore() {
        openDesignFile();
        front().answer = [this](host::Dialog& dialog) {
            dialog.refresh();
            boxes.push_back(textDrawnIn(dialog));
            return false;
        };
    }

    static void save(int application, int subId, const std::string& payload) {
        FilePos position = 0;
        EXPECT_EQ(
            mclib66Elem_saveDataToFile(application, subId, payload.data(), static_cast<int>(payload.size()), &position),
            0);
    }
    static void writePage(const char* name, const char* revision = "") {
        mclibSideData page{};
        std::string_view(name).copy(page.pageName, sizeof page.pageName - 1);
        std::strcpy(page.revs, revision);
        mclibProject_writePageInfoToDesignFile(&page);
    }
    static mclibSideData readPage(const char* name) {
        mclibSideData page;
        std::memset(&page, 'x', sizeof page);
        mclibProject_readPageInfoFromDesignFile(&page, name);
        return page;
    }
    // What page records the file holds, by name; "#4" for one of form 4.
    static std::vector<std::string> pages() {
        std::vector<std::string> names;
        const auto visit = [](void* userData, int32_t subId, MSElementBuffer*, FilePos, int32_t, void* data, int32_t) {
            const std::string name = subId == 3 ? static_cast<const char*>(data) : "#" + std::to_string(subId);
            static_cast<std::vector<std::string>*>(userData)->push_back(name);
            return 0;
        };
        mclib66Elem_scanDataFromFileExtended(&names, MCLIB_PAGE_DATA, mdlModelRef_getActive(), visit, 1);
        return names;
    }

    std::vector<std::string> boxes;
};

TEST_F(ProjectStore, FileWithoutRecordsClearsTheBlock) {
    mclibProsjektData project;
    std::memset(&project, 'x', sizeof project);
    EXPECT_EQ(mclibProject_readProjectInfoFromDesignFile(&project), 0);
    EXPECT_EQ(joined(projectTexts(project)), std::string(30, '\0'));
    EXPECT_EQ(mdlModelRef_getElementCount(nullptr), 0u);
    EXPECT_TRUE(boxes.empty());
}

TEST_F(ProjectStore, WritingPutsOneRecordInThePlaceOfAll) {
    save(MCLIB_PROJECT_DATA, 1, "old");
    save(MCLIB_PROJECT_DATA, 9, "from another version");
    mclibProsjektData project = projectOf("1042", "Water main");
    mclibProject_writeProjectInfoToDesignFile(&project);
    EXPECT_EQ(front().field(1), "The project data stands in the design file now.");
    mclibProsjektData read;
    EXPECT_EQ(mclibProject_readProjectInfoFromDesignFile(&read), 1);
    EXPECT_EQ(std::memcmp(&read, &project, sizeof read), 0);
    while (mdlUndo_lastDelete() != 0) {
    }
    EXPECT_EQ(mclibProject_readProjectInfoFromDesignFile(&read), 3);
    EXPECT_THAT(boxes, ElementsAre(HasSubstr("form 9")));
}

TEST_F(ProjectStore, LastOfTwoProjectRecordsWins) {
    save(MCLIB_PROJECT_DATA, 2, numberedTexts("first", 30));
    save(MCLIB_PROJECT_DATA, 3, numberedTexts("second", 30));
    mclibProsjektData project;
    EXPECT_EQ(mclibProject_readProjectInfoFromDesignFile(&project), 2);
    EXPECT_EQ(joined(projectTexts(project)), numberedTexts("second", 30));
}

TEST_F(ProjectStore, IsReadWhenADesignFileIsOpened) {
    mclibProsjektData project = projectOf("1042");
    mclibProject_writeProjectInfoToDesignFile(&project);
    ASSERT_EQ(mdlSystem_createDesignFile(path("other.mcd").c_str(), 0), MDL_SUCCESS);
    for (const auto& [name, number] : {std::pair{"test.mcd", "1042"}, {"other.mcd", ""}, {"test.mcd", "1042"}}) {
        ASSERT_EQ(mdlSystem_newDesignFile(path(name).c_str(), 0), MDL_SUCCESS);
        char value[40] = "?";
        EXPECT_EQ(mdlDialog_getAccessValue(value, sizeof value, "mclibpd->pron"), MDL_SUCCESS);
        EXPECT_STREQ(value, number);
    }
}

TEST_F(ProjectStore, PageIsReadByItsExactName) {
    EXPECT_STREQ(readPage("Plan").wantedPageName, "Plan");
    EXPECT_EQ(front().field(1), "") << "there was nothing to read";
    writePage("Plan", "A");
    writePage("plan", "B");
    EXPECT_EQ(front().field(1), "The page data stands in the design file now.");
    EXPECT_STREQ(readPage("Plan").revs, "A");
    EXPECT_STREQ(readPage("plan").revs, "B");
    front().clear();
    const mclibSideData none = readPage("Section");
    EXPECT_STREQ(none.pageName, "");
    EXPECT_STREQ(none.wantedPageName, "Section");
    EXPECT_STREQ(none.revs, "");
    EXPECT_EQ(front().field(1), "The page data was read from the design file.");
    mclibSideData page = readPage("plan");
    mclibProject_readPageInfoFromDesignFile(&page, page.pageName);
    EXPECT_STREQ(page.revs, "B") << "the name may lie in the block";
}

TEST_F(ProjectStore, RecordOfAnUnknownFormDoesNotHideThePageAndStaysInTheFile) {
    save(MCLIB_PAGE_DATA, 4, numberedTexts("s", 45));
    writePage("Plan", "A");
    save(MCLIB_PAGE_DATA, 1, numberedTexts("s", 45));
    EXPECT_STREQ(readPage("Plan").revs, "A");
    EXPECT_THAT(boxes, ElementsAre(HasSubstr("form 4"), HasSubstr("form 1")));
    writePage("", "nameless");
    EXPECT_THAT(pages(), ElementsAre("#4", "Plan", "#1", ""));
}

TEST_F(ProjectStore, WritingAPageReplacesItsRecordAlone) {
    writePage("Plan", "A");
    writePage("Section", "B");
    writePage("Plan", "C");
    EXPECT_THAT(pages(), ElementsAre("Section", "Plan"));
    EXPECT_STREQ(readPage("Plan").revs, "C");
}

TEST_F(ProjectStore, DeletingPagesGoesByNameOrByWhatIsKept) {
    const char* const keepSome[] = {"B", "C", nullptr};
    const char* const keepNone[] = {nullptr};
    struct Case {
        const char* pageName;
        const char* const* keepNames;
        std::vector<std::string> left;
    };
    for (const Case& c :
         {Case{"B", nullptr, {"A", "C", "#4"}}, Case{"b", nullptr, {"A", "B", "C", "#4"}},
          Case{nullptr, keepSome, {"B", "C"}}, Case{"B", keepSome, {"B", "C"}}, Case{nullptr, keepNone, {}},
          Case{nullptr, nullptr, {}}, Case{"", nullptr, {"A", "B", "C"}}}) {
        SCOPED_TRACE(c.pageName == nullptr ? "(null)" : c.pageName);
        for (const char* name : {"A", "B", "C"}) writePage(name);
        save(MCLIB_PAGE_DATA, 4, "newer");
        EXPECT_EQ(mclibProject_deletePageInfoFromDesignFile(c.pageName, c.keepNames), 4);
        EXPECT_EQ(pages(), c.left);
        mclibProject_deletePageInfoFromDesignFile(nullptr, nullptr);
    }
}

TEST_F(ProjectStore, NamesOfPagesCountAsFarAsARecordKeepsThem) {
    const std::string name(104, 'x'), other = std::string(79, 'x') + "y";
    writePage(name.c_str(), "A");
    writePage(other.c_str(), "B");
    EXPECT_STREQ(readPage(name.c_str()).revs, "A");
    const char* const keep[] = {name.c_str(), nullptr};
    mclibProject_deletePageInfoFromDesignFile(nullptr, keep);
    EXPECT_STREQ(readPage(name.c_str()).revs, "A");
    EXPECT_STREQ(readPage(other.c_str()).revs, "");
    mclibProject_deletePageInfoFromDesignFile(name.c_str(), nullptr);
    EXPECT_STREQ(readPage(name.c_str()).revs, "");
}

TEST_F(ProjectStore, FailedWriteIsToldAndUndoBringsBackTheRecord) {
    mclibProsjektData project = projectOf("1042");
    mclibProject_writeProjectInfoToDesignFile(&project);
    ASSERT_EQ(mdlSystem_newDesignFile(path("test.mcd").c_str(), 1), MDL_SUCCESS);
    project = projectOf("1043");
    mclibProject_writeProjectInfoToDesignFile(&project);
    writePage("Plan");
    EXPECT_THAT(boxes, testing::AllOf(testing::SizeIs(2), testing::Each(HasSubstr("couldn't be added"))));
    EXPECT_EQ(mclibProject_readProjectInfoFromDesignFile(&project), 1);
    EXPECT_STREQ(project.pron, "1042");
}

}  // namespace
