// Runs over design files: how they are picked, what is shown meanwhile, and which file is open when.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "mchost/dialog/dialog.h"
#include "mchost/front/scripted.h"
#include "mchost/mdl/file_dialogs.h"
#include "mchost/mdl/lists.h"
#include "mchost/mdl/owned.hpp"
#include "mclib/batch/design_file_lists.h"
#include "tests/support/library_fixture.h"

namespace {

using host::Dialog;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Names = std::vector<std::string>;

std::string openFile() {
    return std::filesystem::path(tcbP->designFileName).filename();
}

// What a process is given.
struct Visits {
    Names files;
    MdlDesc* application = nullptr;
    bool closes = false;
};
void visit(void* userArg) {
    auto& visits = *static_cast<Visits*>(userArg);
    visits.files.push_back(openFile());
    visits.application = mdlSystem_getCurrMdlDesc();
    if (visits.closes) {
        EXPECT_EQ(mdlSystem_closeDesignFile(), MDL_SUCCESS);
    }
}

class DesignFileLists : public LibraryTest {
  protected:
    DesignFileLists() {
        front().answer = std::ref(script);
        std::filesystem::create_directory(path("d"));
        for (const char* name : {"d/a.mcd", "d/b.mcd", "d/c.mcd"})
            EXPECT_EQ(mdlSystem_createDesignFile(path(name).c_str(), 0), MDL_SUCCESS);
        openDesignFile();
    }
    ~DesignFileLists() override { EXPECT_EQ(script.fault(), ""); }

    // The percentages of the bar; a text that takes it away isn't one.
    Names percents() {
        Names all;
        for (const auto& [field, text] : front().fields)
            if (field == MDL_FIELD_MESSAGE && !text.empty()) all.push_back(std::to_string(std::stoi(text)));
        return all;
    }
    void fromFile(const std::string& lines, int32_t id = 0) {
        front().files.answer(writeFile("list.txt", lines));
        mclibDgnList_processDgnFilesFromFile(visit, &visits, "*.txt", "", id);
    }
    // The list of messages that follows a run.
    void expectList(Names expected) {
        script
            .check([=](Dialog& d) {
                EXPECT_EQ(d.id(), 20010);
                const auto& list = d.items().at(static_cast<size_t>(d.indexOf(ITEM_LIST_BOX, 20000)));
                for (size_t i = 0; i < expected.size(); ++i)
                    EXPECT_THAT(Dialog::cellText(list, static_cast<int32_t>(i), 0), HasSubstr(expected[i]));
                EXPECT_EQ(Dialog::rowCount(list), static_cast<int32_t>(expected.size()));
            })
            .press(-3);
    }

    host::DialogScript script;
    Visits visits;
};

TEST_F(DesignFileLists, AnEditedListIsRunOverAndBecomesTheCallers) {
    StringList* list = mdlStringList_create(1, 1);
    mdlStringList_setMember(list, 0, path("d/c.mcd").c_str(), nullptr);
    front().files.answer("a.mcd").answer("b.mcd").answer("");
    mclibDgnList_selectAndProcessDgnFiles(visit, &list, &visits, path("d").c_str(), "*.mcd", 0);
    EXPECT_THAT(visits.files, ElementsAre("c.mcd", "a.mcd", "b.mcd"));
    EXPECT_EQ(visits.application, application("tester"));
    EXPECT_THAT(percents(), ElementsAre("0", "33", "66", "100"));
    EXPECT_EQ(openFile(), "test.mcd");
    EXPECT_EQ(mdlStringList_size(list), 3);
    mdlStringList_destroy(list);
}

TEST_F(DesignFileLists, CancellingDoesNothingAndAnEmptyListCallsOnceInTheOpenFile) {
    front().files.cancel();
    mclibDgnList_selectAndProcessDgnFiles(visit, nullptr, &visits, nullptr, nullptr, 0);
    front().files.cancel();
    mclibDgnList_processDgnFilesFromFile(visit, &visits, "*.txt", "", 0);
    script.press(-4);
    mclibDgnList_findAndProcessDgnFiles(visit, &visits, nullptr, nullptr, 0);
    EXPECT_THAT(visits.files, IsEmpty());
    front().files.answer("");
    mclibDgnList_selectAndProcessDgnFiles(visit, nullptr, &visits, nullptr, nullptr, 0);
    script.press(-3);
    mclibDgnList_findAndProcessDgnFiles(visit, &visits, nullptr, nullptr, 0);
    EXPECT_THAT(visits.files, ElementsAre("test.mcd", "test.mcd"));
    EXPECT_THAT(percents(), IsEmpty());
}

TEST_F(DesignFileLists, WithoutANumberTheLastChoiceIsRememberedWhileTheApplicationRuns) {
    constexpr int32_t directory = 20069, filter = 20061, search = 20070;
    const auto begins = [&](const std::string& folder, const char* pattern) {
        script.check([=](Dialog& d) {
            EXPECT_EQ(d.items().at(static_cast<size_t>(d.indexOf(ITEM_TEXT, directory))).value, folder);
            EXPECT_EQ(d.items().at(static_cast<size_t>(d.indexOf(ITEM_TEXT, filter))).value, pattern);
        });
    };
    begins(path(""), "*.*");
    script.setValue(ITEM_TEXT, directory, path("d")).setValue(ITEM_TEXT, filter, "a*;c*").press(search).press(-3);
    mclibDgnList_findAndProcessDgnFiles(visit, &visits, "c:\\", "*.cel", 0);
    EXPECT_THAT(visits.files, ElementsAre("a.mcd", "c.mcd"));
    begins(path("d"), "a*;c*");
    script.press(-4);
    mclibDgnList_findAndProcessDgnFiles(visit, &visits, "c:\\", "*.cel", 0);
}

TEST_F(DesignFileLists, AListFileIsRunOverAndWhatIsMissingIsTold) {
    writeFile("d/noDrawing.mcd", "text");
    expectList({"gone.mcd\" not found", "noDrawing.mcd"});
    fromFile("# files\n" + path("d/a.mcd") + "\n" + path("d/gone.mcd") + "\n" + path("d/noDrawing.mcd") + "\n" +
             path("d/b.mcd") + "\n");
    EXPECT_THAT(visits.files, ElementsAre("a.mcd", "b.mcd"));
    EXPECT_THAT(percents(), ElementsAre("25", "50", "75", "100"));
    EXPECT_EQ(openFile(), "test.mcd");
    EXPECT_TRUE(script.finished());

    expectList({"noDrawing.mcd"});
    fromFile(path("d/noDrawing.mcd") + "\n" + path("d/c.mcd") + "\n");
    EXPECT_THAT(visits.files, ElementsAre("a.mcd", "b.mcd", "c.mcd"));
    fromFile("# nothing\n");
    EXPECT_EQ(visits.files.size(), 3u);
    EXPECT_TRUE(script.finished());
}

TEST_F(DesignFileLists, AProcessMayCloseTheFileAndARunMayBeginWithoutOne) {
    visits.closes = true;
    fromFile(path("d/a.mcd") + "\n" + path("d/b.mcd") + "\n");
    EXPECT_EQ(openFile(), "test.mcd");
    ASSERT_EQ(mdlSystem_closeDesignFile(), MDL_SUCCESS);
    visits.closes = false;
    fromFile(path("d/c.mcd") + "\n");
    EXPECT_THAT(visits.files, ElementsAre("a.mcd", "b.mcd", "c.mcd"));
    EXPECT_EQ(mdlModelRef_getActive(), nullptr);
}

}  // namespace
