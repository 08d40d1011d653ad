// Project and page records against processes that are killed while they write them.
#include <cstdlib>
#include <cstring>
#include <string>

#include "mclib/project/store.h"
#include "tests/support/child.h"
#include "tests/support/library_fixture.h"

namespace {

class RecordSurvival : public LibraryTest {
  protected:
    RecordSurvival() {
        mdlSystem_createDesignFile(file.c_str(), 0);
        open();
        write(0);
        mdlSystem_closeDesignFile();
    }
    void open() const { ASSERT_EQ(mdlSystem_newDesignFile(file.c_str(), 0), MDL_SUCCESS); }

    // What one command writes: a project and a page of that number.
    static void write(int number) {
        const std::string text = std::to_string(number);
        mclibProsjektData project{};
        mclibSideData page{};
        for (char* field : {project.pron, project.pros[4], project.tegn[9], project.SNav})
            std::strcpy(field, text.c_str());
        std::strcpy(page.pageName, "1");
        for (char* field : {page.pros[0], page.kopo[19], page.revs}) std::strcpy(field, text.c_str());
        mclibProject_writeProjectInfoToDesignFile(&project);
        mclibProject_writePageInfoToDesignFile(&page);
        ASSERT_EQ(mdlSystem_saveDesignFile(), MDL_SUCCESS);
    }
    // Opens the file; the number that both records have throughout.
    int wholeNumber() const {
        open();
        mclibProsjektData project;
        mclibSideData page;
        EXPECT_EQ(mclibProject_readProjectInfoFromDesignFile(&project), 1);
        mclibProject_readPageInfoFromDesignFile(&page, "1");
        EXPECT_STREQ(page.pageName, "1");
        for (const char* field :
             {project.pros[4], project.tegn[9], project.SNav, page.pros[0], page.kopo[19], page.revs})
            EXPECT_STREQ(field, project.pron);
        EXPECT_EQ(mdlModelRef_getElementCount(nullptr), 2u);
        EXPECT_EQ(mdlSystem_closeDesignFile(), MDL_SUCCESS);
        return std::atoi(project.pron);
    }

    const std::string file = path("a.mcd");
};

TEST_F(RecordSurvival, AKilledWriterLeavesTheRecordsOfOneCommand) {
    int last = 0, changed = 0;
    const auto writeOn = [&](auto tell) {
        open();
        for (int number = last + 1;; ++number) {
            write(number);
            tell();
        }
    };
    killWriters(200, writeOn, [&] {
        const int number = wholeNumber();
        EXPECT_GE(number, last);
        changed += number != last;
        last = number;
    });
    EXPECT_GT(changed, 100);
}

TEST_F(RecordSurvival, AFullDiskKeepsTheStoredRecords) {
    EXPECT_EQ(inChild([&] {
                  open();
                  limitFileSize(40'000);
                  front().clear();
                  for (int number = 1; number < 100; ++number) {
                      mclibProsjektData project{};
                      std::strcpy(project.pron, std::to_string(number).c_str());
                      mclibProject_writeProjectInfoToDesignFile(&project);
                  }
                  if (mdlSystem_saveDesignFile() != MDL_ERROR) return 1;
                  return front().messages.size() == 1 ? 0 : 2;
              }),
              0);
    EXPECT_EQ(wholeNumber(), 0);
}

}  // namespace
