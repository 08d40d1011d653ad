// What a form gets of the project and of the page that is being made.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "mchost/mdl/dialog.h"
#include "mclib/forms/forms.h"
#include "mclib/frame/global_data.h"
#include "mclib/project/dialog.h"
#include "mclib/project/store.h"
#include "tests/support/library_fixture.h"

using namespace mc;

namespace {

class TitleBlock : public LibraryTest {
  protected:
    TitleBlock() {
        openDesignFile();
        std::strcpy(project.pron, "4711");
        std::strcpy(project.pros[0], "Water main");
        std::strcpy(project.pros[2], "Section north");
        std::strcpy(project.UNav, "Kari Berg");
        std::strcpy(project.kost4, "9");
        std::strcpy(project.tegn[9], "last");
        mclibProject_writeProjectInfoToDesignFile(&project);
        std::strcpy(page.pageName, "p1");
    }
    ~TitleBlock() override { mclibMatList_destroyFormDataArray(form); }

    void makeForm(const char* pageName) {
        mclibProject_writePageInfoToDesignFile(&page);
        std::strcpy(mclibMain_getGlobalDataP()->currentPageName, pageName);
        mclibMatList_destroyFormDataArray(form);
        form = mclibMatList_createFormDataArray(4, 20);
        mclibProject_insertProjectData(form);
    }
    // The text of a row; "-" when the form has none there.
    std::string at(const char* name, int row) const {
        for (const FormData* field = form->next; field; field = field->next)
            if (field->isSet[row] && std::strcmp(field->name, name) == 0) return field->values[row].text;
        return "-";
    }

    mclibProsjektData project{};
    mclibSideData page{};
    FormData* form = nullptr;
};

TEST_F(TitleBlock, GetsAllOfTheProjectAlsoWhatIsEmpty) {
    mdlDialog_setAccessValue("mclibpd->pron", "typed");
    makeForm("no such page");
    EXPECT_EQ(at("pron", 0), "4711") << "read from the design file";
    mclibProject_insertProjectData(nullptr);
    EXPECT_EQ(at("pros", 0), "Water main");
    EXPECT_EQ(at("pros", 1), "");
    EXPECT_EQ(at("kost", 4), "9");
    EXPECT_EQ(at("tegn", 9), "last");
    for (const char* key : {"UNav", "USig", "UDat", "SSig", "SNav", "SDat", "RSig", "RNav", "RDat"})
        EXPECT_NE(at(key, 0), "-") << key;
    EXPECT_EQ(at("kopo", 0), "-");
    EXPECT_EQ(at("revs", 0), "-");
}

TEST_F(TitleBlock, PageGoesBeforeTheProjectFieldByField) {
    std::strcpy(page.pros[1], "Bend 7");
    std::strcpy(page.tegn[9], "page's own");
    std::strcpy(page.kopo[19], "copy");
    std::strcpy(page.RNav, "Per");
    std::strcpy(page.USig, "KB");
    std::strcpy(page.SDat, "1.2.");
    std::strcpy(page.revs, "B");
    makeForm("p1");
    EXPECT_EQ(at("pros", 0), "Water main");
    EXPECT_EQ(at("pros", 2), "Bend 7");
    EXPECT_EQ(at("UNav", 0), "Kari Berg");
    EXPECT_EQ(at("RNav", 0), "Per");
    EXPECT_EQ(at("USig", 0), "KB");
    EXPECT_EQ(at("SDat", 0), "1.2.");
    EXPECT_EQ(at("revs", 0), "B");
    EXPECT_EQ(at("tegn", 9), "page's own");
    EXPECT_EQ(at("kopo", 19), "copy");
    EXPECT_EQ(at("kopo", 0), "-");
}

TEST_F(TitleBlock, ARecordWithoutAPageNameAddsNothing) {
    *page.pageName = '\0';
    std::strcpy(page.revs, "B");
    makeForm("");
    EXPECT_EQ(at("revs", 0), "-");
    EXPECT_EQ(at("pron", 0), "4711");
}

}  // namespace
